#include "browser/forms/selector.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "browser/forms/editor.h"
#include "shell/ajustes.h"
#include "shell/asistente.h"
#include "shell/forms/cabecera.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

namespace {

enum Columna { FICHERO = 0, MODIFICADO = 1, TAMANO = 2 };

}  // namespace

selector::selector(Programa& programa, Lanzador& lanzador, QWidget* padre)
    : QDialog(padre), programa_(programa), lanzador_(lanzador) {
  setObjectName(QStringLiteral("selector"));
  setWindowTitle(q("Edición de Ficheros"_cp));
  setModal(true);
  resize(720, 520);
  construye();
  carga();
}

void selector::construye() {
  const Cabecera banda = cabecera(this, q("Edición de Ficheros"_cp), 14, QStringLiteral("raiz"));
  QFrame* cabecera = banda.marco;
  raiz_ = banda.detalle;

  TreeView1_ = new QTreeWidget(this);
  TreeView1_->setObjectName(QStringLiteral("TreeView1"));
  TreeView1_->setColumnCount(3);
  TreeView1_->setHeaderLabels({QStringLiteral("Fichero"), QStringLiteral("Modificado"), q("Tamaño"_cp)});
  TreeView1_->setRootIsDecorated(true);
  TreeView1_->setUniformRowHeights(true);
  TreeView1_->setAlternatingRowColors(true);
  TreeView1_->setIconSize(QSize(18, 18));
  QHeaderView* columnas = TreeView1_->header();
  columnas->setStretchLastSection(false);
  columnas->setSectionResizeMode(FICHERO, QHeaderView::Stretch);
  columnas->setSectionResizeMode(MODIFICADO, QHeaderView::ResizeToContents);
  columnas->setSectionResizeMode(TAMANO, QHeaderView::ResizeToContents);
  TreeView1_->installEventFilter(this);
  connect(TreeView1_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* nodo) { pulsaNodo(nodo); });

  resumen_ = new QLabel(this);
  resumen_->setObjectName(QStringLiteral("resumen"));

  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(12, 10, 12, 12);
  cuerpo->setSpacing(8);
  cuerpo->addWidget(TreeView1_, 1);
  cuerpo->addWidget(resumen_);

  auto* capa = new QVBoxLayout(this);
  capa->setContentsMargins(0, 0, 0, 0);
  capa->setSpacing(0);
  capa->addWidget(cabecera);
  capa->addLayout(cuerpo, 1);
}

void selector::carga() {
  // The route as the settings file holds it now: the configuration may have changed it
  // since the start.
  // A settings file that cannot be read is told, and the route of the start stays.
  REGINTERCAMBIO leido = programa_.registro;
  try {
    FicheroAjustes ajustes(programa_.carpetas().trabajo);
    if (ajustes.lee(leido)) programa_.registro.RUTAWINSUITE = leido.RUTAWINSUITE;
  } catch (const ErrorAjustes& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
  }

  arbol_ = cargaSelector(programa_.registro.RUTAWINSUITE, programa_.entornoWine);
  setWindowTitle(q(arbol_.titulo));
  raiz_->setText(q(arbol_.titulo));

  QStyle* estilo = style();
  const QIcon carpeta = estilo->standardIcon(QStyle::SP_DirIcon);
  const QIcon fichero = estilo->standardIcon(QStyle::SP_FileIcon);
  const QLocale espanol(QLocale::Spanish, QLocale::Spain);
  TreeView1_->clear();
  int ficheros = 0;
  for (const RamaSelector& rama : arbol_.ramas) {
    auto* nodo = new QTreeWidgetItem(TreeView1_, {q(rama.nodo.texto)});
    nodo->setData(FICHERO, Qt::UserRole, q(rama.nodo.clave));
    nodo->setIcon(FICHERO, carpeta);
    QFont negrita = nodo->font(FICHERO);
    negrita.setBold(true);
    nodo->setFont(FICHERO, negrita);
    for (const NodoSelector& hijo : rama.hijos) {
      auto* hoja = new QTreeWidgetItem(nodo, {q(hijo.texto)});
      hoja->setData(FICHERO, Qt::UserRole, q(hijo.clave));
      hoja->setIcon(FICHERO, fichero);
      const QFileInfo datos(QString::fromStdString(rutaNativa(hijo.texto, programa_.entornoWine).string()));
      hoja->setText(MODIFICADO, espanol.toString(datos.lastModified(), QStringLiteral("dd/MM/yyyy HH:mm")));
      hoja->setText(TAMANO, espanol.formattedDataSize(datos.size(), 1, QLocale::DataSizeTraditionalFormat));
      hoja->setTextAlignment(TAMANO, Qt::AlignRight | Qt::AlignVCenter);
      ++ficheros;
    }
    nodo->setExpanded(true);
  }
  resumen_->setText(ficheros == 0 ? q("No hay ficheros de intercambio en estas carpetas."_cp)
                    : ficheros == 1
                        ? QStringLiteral("1 fichero. Pulse sobre un fichero para revisarlo y corregirlo.")
                        : QStringLiteral("%1 ficheros. Pulse sobre un fichero para revisarlo y corregirlo.")
                              .arg(ficheros));
  // The main window put up the busy pointer before showing the selector: the user
  // chooses with the arrow.
  programa_.dialogos().puntero(Puntero::Normal);
}

void selector::pulsaNodo(QTreeWidgetItem* nodo) {
  if (!nodo) return;
  Globales& g = programa_.g;
  g.FICHEROSALIDA = aCp1252(nodo->text(FICHERO));
  const std::optional<std::string> fichero = ficheroDelNodo(g.FICHEROSALIDA);
  if (!fichero) return;
  g.FICHEROEDITADO = *fichero;
  formularios::EDITOR editor(programa_, lanzador_, this);
  editor.exec();
}

// Enter on a file opens it as a click does.
bool selector::eventFilter(QObject* objeto, QEvent* evento) {
  if (objeto == TreeView1_ && evento->type() == QEvent::KeyPress) {
    const int tecla = static_cast<QKeyEvent*>(evento)->key();
    if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) {
      pulsaNodo(TreeView1_->currentItem());
      return true;
    }
  }
  return QDialog::eventFilter(objeto, evento);
}

void abreSelector(Programa& programa, Lanzador& lanzador, QWidget* padre) {
  selector ficheros(programa, lanzador, padre);
  ficheros.exec();
}

}  // namespace valdor::formularios
