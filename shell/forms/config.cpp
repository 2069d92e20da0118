#include "shell/forms/config.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/forms/cabecera.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace fs = std::filesystem;

namespace valdor::formularios {

namespace {

constexpr int FILARUTA = 4;
constexpr int ANCHOETIQUETAS = 113;  // 1700 twips, widened when the font needs it

// The mask "99/99/9999" of the date row: a digit or nothing in each place, the two
// slashes fixed. Qt writes "a digit, not required" as 0; the blanks show as "_".
const QString MASCARAFECHA = QStringLiteral("00/00/0000;_");

// The text of a masked box as the rules see it: untyped places are blanks, and a box
// with no digit at all is empty.
QString textoDeMascara(const QLineEdit& caja) {
  QString t = caja.displayText();
  t.replace(QLatin1Char('_'), QLatin1Char(' '));
  for (const QChar c : t)
    if (c.isDigit()) return t;
  return {};
}

// The value cells of rows 0 to 3: each row's edit limit, and the mask of the date row.
class DelegadoConfiguracion : public QStyledItemDelegate {
 public:
  DelegadoConfiguracion(const std::array<FilaConfiguracion, 5>& filas, QObject* padre)
      : QStyledItemDelegate(padre), filas_(filas) {}

  QWidget* createEditor(QWidget* padre, const QStyleOptionViewItem&, const QModelIndex& indice) const override {
    auto* caja = new QLineEdit(padre);
    const FilaConfiguracion& fila = filas_.at(static_cast<std::size_t>(indice.row()));
    caja->setMaxLength(static_cast<int>(fila.limite));
    if (!fila.mascara.empty()) caja->setInputMask(MASCARAFECHA);
    abierta_ = caja;
    return caja;
  }

  void setEditorData(QWidget* editor, const QModelIndex& indice) const override {
    static_cast<QLineEdit*>(editor)->setText(indice.data(Qt::EditRole).toString());
  }

  void setModelData(QWidget* editor, QAbstractItemModel* modelo, const QModelIndex& indice) const override {
    const auto* caja = static_cast<QLineEdit*>(editor);
    modelo->setData(indice, caja->inputMask().isEmpty() ? caja->text() : textoDeMascara(*caja), Qt::EditRole);
  }

  // Takes into the grid what the open box holds, for a close that comes in the middle
  // of an edit.
  void confirma() {
    if (abierta_ && abierta_->isVisible()) emit commitData(abierta_);
  }

 private:
  const std::array<FilaConfiguracion, 5>& filas_;
  mutable QPointer<QLineEdit> abierta_;
};

// The Windows form of a path chosen on this machine: inside the Wine prefix a path is a
// path of a Windows drive, which is how the rules and the tool know it.

}  // namespace

config::config(Programa& programa, EntornoWine entorno, QWidget* padre)
    : QDialog(padre), programa_(programa), entorno_(std::move(entorno)) {
  setObjectName(QStringLiteral("config"));
  setWindowTitle(QStringLiteral("Propiedades de VALDOR+"));
  setModal(true);
  resize(560, 330);

  auto* pestanas = new QTabWidget(this);
  auto* general = new QWidget(pestanas);
  pestanas->addTab(general, QStringLiteral("&General"));

  Combo1_ = new QComboBox(general);
  Combo1_->setObjectName(QStringLiteral("Combo1"));

  CONFI_ = new QTableWidget(5, 2, general);
  CONFI_->setObjectName(QStringLiteral("CONFI"));
  CONFI_->horizontalHeader()->hide();
  CONFI_->verticalHeader()->hide();
  CONFI_->horizontalHeader()->setStretchLastSection(true);
  CONFI_->setSelectionMode(QAbstractItemView::SingleSelection);
  CONFI_->setEditTriggers(QAbstractItemView::AllEditTriggers);
  CONFI_->setItemDelegateForColumn(1, new DelegadoConfiguracion(filas_, CONFI_));
  // Tab leaves the grid for the next control; the arrows move from row to row.
  CONFI_->setTabKeyNavigation(false);

  auto* rotuloCombo1 = new QLabel(QStringLiteral("&Empresa:"), general);
  rotuloCombo1->setBuddy(Combo1_);
  auto* rotuloCONFI = new QLabel(QStringLiteral("&Datos del intercambio:"), general);
  rotuloCONFI->setBuddy(CONFI_);
  auto* capaCombo1 = new QHBoxLayout;
  capaCombo1->addWidget(rotuloCombo1);
  capaCombo1->addWidget(Combo1_, 1);
  auto* capa = new QVBoxLayout(general);
  capa->addLayout(capaCombo1);
  capa->addWidget(rotuloCONFI);
  capa->addWidget(CONFI_);

  auto* botones = new QDialogButtonBox(this);
  QPushButton* aceptar = botones->addButton(QStringLiteral("&Aceptar"), QDialogButtonBox::AcceptRole);
  aceptar->setObjectName(QStringLiteral("Aceptar"));
  aceptar->setDefault(true);
  QPushButton* cancelar = botones->addButton(QStringLiteral("&Cancelar"), QDialogButtonBox::RejectRole);
  cancelar->setObjectName(QStringLiteral("Cancelar"));
  connect(botones, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* principal = new QVBoxLayout(this);
  principal->addWidget(pestanas);
  principal->addWidget(botones);

  cargaRejilla();
  // The order of the keyboard, top to bottom after the tab: the company, the grid and
  // the route in its last row with its "...", then the two buttons.
  ordenTab({Combo1_, CONFI_, rutaWinsuite_, buscaWinsuite_, aceptar, cancelar});
}

void config::cargaRejilla() {
  // A settings file that cannot be read is told, and the grid takes the dialog's own
  // fill: closing the dialog then writes a sound record in its place.
  try {
    FicheroAjustes fichero(programa_.carpetas().trabajo);
    filas_ = cargaConfiguracion(fichero, programa_.g.EMISORNOMBRE);
  } catch (const ErrorAjustes& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
    filas_ = filasDeConfiguracion(registroDeConfiguracion(), programa_.g.EMISORNOMBRE);
  }
  const QColor fondoEtiquetas = palette().color(QPalette::Button);
  int anchoEtiquetas = ANCHOETIQUETAS;
  for (int f = 0; f < static_cast<int>(filas_.size()); ++f) {
    const FilaConfiguracion& fila = filas_.at(static_cast<std::size_t>(f));
    auto* etiqueta = new QTableWidgetItem(aQString(fila.etiqueta));
    etiqueta->setFlags(Qt::ItemIsEnabled);
    etiqueta->setBackground(fondoEtiquetas);
    anchoEtiquetas = std::max(anchoEtiquetas, CONFI_->fontMetrics().horizontalAdvance(etiqueta->text()) + 14);
    CONFI_->setItem(f, 0, etiqueta);
    auto* valor = new QTableWidgetItem(aQString(fila.valor));
    valor->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // The route is edited in its own box over the cell, never in the grid's editor.
    if (f == FILARUTA) valor->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    CONFI_->setItem(f, 1, valor);
  }

  CONFI_->setColumnWidth(0, anchoEtiquetas);
  CONFI_->setWordWrap(false);

  // The route's cell keeps its "..." button in sight: a box of its own beside it.
  auto* celda = new QWidget(CONFI_);
  rutaWinsuite_ = new QLineEdit(aQString(filas_[FILARUTA].valor), celda);
  rutaWinsuite_->setObjectName(QStringLiteral("RutaWinsuite"));
  rutaWinsuite_->setMaxLength(static_cast<int>(filas_[FILARUTA].limite));
  rutaWinsuite_->setFrame(false);
  buscaWinsuite_ = new QToolButton(celda);
  buscaWinsuite_->setObjectName(QStringLiteral("BuscaWinsuite"));
  buscaWinsuite_->setText(QStringLiteral("..."));
  auto* capa = new QHBoxLayout(celda);
  capa->setContentsMargins(0, 0, 0, 0);
  capa->setSpacing(0);
  capa->addWidget(rutaWinsuite_);
  capa->addWidget(buscaWinsuite_);
  CONFI_->setCellWidget(FILARUTA, 1, celda);
  connect(buscaWinsuite_, &QToolButton::clicked, this, &config::buscaWinsuite);
  // The arrows reach the route's box as they reach the other rows, whose cells open
  // for editing as they become current (and so take the focus back from the box).
  connect(CONFI_, &QTableWidget::currentCellChanged, this, [this](int fila) {
    QWidget* foco = QApplication::focusWidget();
    if (fila == FILARUTA && (foco == CONFI_ || CONFI_->isAncestorOf(foco))) rutaWinsuite_->setFocus();
  });
  CONFI_->setCurrentCell(0, 1);

  for (const std::string& nombre : listaCombo1(programa_)) Combo1_->addItem(aQString(nombre));
  Combo1_->setCurrentIndex(0);
}

std::string config::valor(int fila) const {
  if (fila == FILARUTA) return aCp1252(rutaWinsuite_->text());
  const QTableWidgetItem* celda = CONFI_->item(fila, 1);
  return celda ? aCp1252(celda->text()) : std::string();
}

void config::buscaWinsuite() {
  programa_.dialogos().puntero(Puntero::Reloj);
  const QString elegido =
      QFileDialog::getOpenFileName(this, aQString("Seleccionar ubicación de WINSUITE"_cp),
                                   QString::fromStdString(fs::current_path().string()),
                                   QStringLiteral("Programas(*.exe)"));
  // A cancelled dialog gives an empty name, and the cell takes it.
  rutaWinsuite_->setText(elegido.isEmpty() ? QString() : aQString(rutaWindows(elegido.toStdString(), entorno_)));
  programa_.dialogos().puntero(Puntero::Normal);
}

void config::guarda() {
  static_cast<DelegadoConfiguracion*>(CONFI_->itemDelegateForColumn(1))->confirma();
  for (int f = 0; f < static_cast<int>(filas_.size()); ++f) filas_.at(static_cast<std::size_t>(f)).valor = valor(f);
  try {
    FicheroAjustes fichero(programa_.carpetas().trabajo);
    programa_.registro = guardaConfiguracion(fichero, filas_);
  } catch (const ErrorAjustes& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
  }
}

void config::done(int resultado) {
  if (resultado == QDialog::Accepted) guarda();
  QDialog::done(resultado);
}

}  // namespace valdor::formularios
