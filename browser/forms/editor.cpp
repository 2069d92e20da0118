#include "browser/forms/editor.h"

#include <QApplication>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QSplitter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTextLayout>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>
#include <functional>
#include <map>
#include <system_error>
#include <utility>

#include "shell/asistente.h"
#include "shell/forms/cabecera.h"
#include "shell/forms/barralista.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "shell/rutas.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor::formularios {

namespace {

// The length of every line of an exchange file, and the edit limit of a line.
constexpr int LONGITUDLINEA = 70;

// A marked row: its findings in dark red on light red.
constexpr QRgb FONDOOBSERVACION = 0xf8d7d7;
constexpr QRgb TEXTOOBSERVACION = 0x9c1c1c;
// A field in error inside its line: white on dark red, so that it stands out of the row
// whether the row is selected or not.
constexpr QRgb FONDOCAMPO = 0xc62828;
constexpr QRgb TEXTOCAMPO = 0xffffff;

// The cells around the line only show: neither the number, nor the length, nor the
// findings are edited.
QTableWidgetItem* celdaFija(const QString& texto = {}) {
  auto* c = new QTableWidgetItem(texto);
  c->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  return c;
}

QString cuenta(long n, const QString& uno, const QString& varios) {
  return QStringLiteral("%1 %2").arg(n).arg(n == 1 ? uno : varios);
}

}  // namespace

// The edit of a line: one line of text cut at 70 characters. The model takes the text
// only when `acepta` lets it; a refused edit leaves the cell as it was. The line's cell
// is drawn with its fields in error (EDITOR::MARCAS) in their colour, and the pointer
// over one of them shows its rule.
class EdicionLinea : public QStyledItemDelegate {
 public:
  EdicionLinea(std::function<bool(const QString&)> acepta, QObject* padre)
      : QStyledItemDelegate(padre), acepta_(std::move(acepta)) {}

  QWidget* createEditor(QWidget* padre, const QStyleOptionViewItem&, const QModelIndex&) const override {
    auto* e = new QLineEdit(padre);
    e->setObjectName(QStringLiteral("edicion"));
    e->setMaxLength(LONGITUDLINEA);
    e->setFrame(false);
    abierta_ = e;
    return e;
  }

  void setModelData(QWidget* editor, QAbstractItemModel* modelo, const QModelIndex& indice) const override {
    if (auto* e = qobject_cast<QLineEdit*>(editor); e && acepta_ && !acepta_(e->text())) return;
    QStyledItemDelegate::setModelData(editor, modelo, indice);
  }

  // The cell as the style draws it, without its text; then the text, one layout with the
  // marked fields' colours.
  void paint(QPainter* pintor, const QStyleOptionViewItem& opcion, const QModelIndex& indice) const override {
    const QVariantList marcas = indice.data(EDITOR::MARCAS).toList();
    if (marcas.isEmpty()) {
      QStyledItemDelegate::paint(pintor, opcion, indice);
      return;
    }
    QStyleOptionViewItem o = opcion;
    initStyleOption(&o, indice);
    const QString texto = o.text;
    o.text.clear();
    const QWidget* vista = o.widget;
    QStyle* estilo = vista ? vista->style() : QApplication::style();
    estilo->drawControl(QStyle::CE_ItemViewItem, &o, pintor, vista);
    QTextLayout capa(texto, o.font);
    QList<QTextLayout::FormatRange> formatos;
    for (const QVariant& m : marcas) {
      const QVariantMap marca = m.toMap();
      QTextLayout::FormatRange f;
      f.start = marca.value(QStringLiteral("desde")).toInt();
      f.length = marca.value(QStringLiteral("ancho")).toInt();
      f.format.setBackground(QColor(FONDOCAMPO));
      f.format.setForeground(QColor(TEXTOCAMPO));
      formatos << f;
    }
    capa.setFormats(formatos);
    capa.beginLayout();
    QTextLine linea = capa.createLine();
    capa.endLayout();
    const QRect zona = zonaTexto(o);
    pintor->save();
    pintor->setPen(o.palette.color(o.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text));
    capa.draw(pintor, QPointF(zona.left(), zona.top() + (zona.height() - linea.height()) / 2));
    pintor->restore();
  }

  // Over a marked field, its rule; elsewhere, what the cell says.
  bool helpEvent(QHelpEvent* evento, QAbstractItemView* vista, const QStyleOptionViewItem& opcion,
                 const QModelIndex& indice) override {
    if (evento->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(evento, vista, opcion, indice);
    QStyleOptionViewItem o = opcion;
    initStyleOption(&o, indice);
    QTextLayout capa(o.text, o.font);
    capa.beginLayout();
    QTextLine linea = capa.createLine();
    capa.endLayout();
    const int caracter = linea.xToCursor(evento->pos().x() - zonaTexto(o).left(), QTextLine::CursorOnCharacter);
    for (const QVariant& m : indice.data(EDITOR::MARCAS).toList()) {
      const QVariantMap marca = m.toMap();
      const int desde = marca.value(QStringLiteral("desde")).toInt();
      if (caracter >= desde && caracter < desde + marca.value(QStringLiteral("ancho")).toInt()) {
        QToolTip::showText(evento->globalPos(), marca.value(QStringLiteral("regla")).toString(), vista);
        return true;
      }
    }
    return QStyledItemDelegate::helpEvent(evento, vista, opcion, indice);
  }

  // Ends the edit still open as Enter would: the bar's commands do not take the focus, so
  // without this they would see the line as it was before the typing.
  void confirma() {
    if (!abierta_) return;
    QLineEdit* e = abierta_;
    abierta_ = nullptr;
    emit commitData(e);
    emit closeEditor(e, QAbstractItemDelegate::NoHint);
  }

  // The edit open now, if any.
  QLineEdit* abierta() const { return abierta_; }

  // The form is going away: nothing of it is asked any more.
  void suelta() { acepta_ = nullptr; }

 private:
  // Where the style puts a cell's text, inside its margin.
  static QRect zonaTexto(const QStyleOptionViewItem& o) {
    const QWidget* vista = o.widget;
    QStyle* estilo = vista ? vista->style() : QApplication::style();
    const int margen = estilo->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, vista) + 1;
    return estilo->subElementRect(QStyle::SE_ItemViewItemText, &o, vista).adjusted(margen, 0, -margen, 0);
  }

  std::function<bool(const QString&)> acepta_;
  mutable QPointer<QLineEdit> abierta_;
};

EDITOR::EDITOR(Programa& programa, Lanzador& lanzador, QWidget* padre)
    : QDialog(padre), programa_(programa), lanzador_(lanzador) {
  setObjectName(QStringLiteral("EDITOR"));
  // The file being edited, and "*" while it has unsaved edits.
  setWindowTitle(q("Edición del fichero "_cp) + q(recorta(programa_.g.FICHEROSALIDA)) + QStringLiteral("[*]"));
  setModal(true);
  resize(1120, 680);
  construye();
  carga();
}

void EDITOR::construye() {
  auto* barra = new BarraLista(QStringLiteral("Editor"), this);
  QStyle* estilo = style();
  barra->agrega(QStringLiteral("guar"), QStringLiteral("&Guardar"), estilo->standardIcon(QStyle::SP_DialogSaveButton));
  barra->agrega(QStringLiteral("BUSCA"), QStringLiteral("&Buscar"),
                estilo->standardIcon(QStyle::SP_FileDialogContentsView));
  barra->agrega(QStringLiteral("IMPRI"), QStringLiteral("&Imprimir"),
                estilo->standardIcon(QStyle::SP_FileDialogDetailedView));
  barra->agrega(QStringLiteral("can"), QStringLiteral("&Cancelar"), estilo->standardIcon(QStyle::SP_DialogCancelButton));
  connect(barra, &BarraLista::pulsado, this, &EDITOR::pulsaBarraLista);

  // The title panel with the file that is being edited.
  const Cabecera banda = cabecera(this, q("Edición del fichero"_cp), 13, QStringLiteral("fichero"));
  QFrame* cabecera = banda.marco;
  fichero_ = banda.detalle;
  fichero_->setTextInteractionFlags(Qt::TextSelectableByMouse);

  // The grid: the lines in a type of fixed pitch, so that the fields line up as in the
  // file; the headers in the form's type.
  REJILLA_ = new QTableWidget(0, COLUMNAS, this);
  REJILLA_->setObjectName(QStringLiteral("REJILLA"));
  REJILLA_->setHorizontalHeaderLabels(
      {QStringLiteral("Orden"), q("Líneas del fichero"_cp), QStringLiteral("Longitud"), q("Revisión"_cp)});
  QFont fija = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  fija.setPointSizeF(font().pointSizeF());
  REJILLA_->setFont(fija);
  REJILLA_->horizontalHeader()->setFont(font());
  REJILLA_->verticalHeader()->hide();
  REJILLA_->verticalHeader()->setDefaultSectionSize(REJILLA_->fontMetrics().height() + 8);
  REJILLA_->setSelectionBehavior(QAbstractItemView::SelectRows);
  REJILLA_->setSelectionMode(QAbstractItemView::SingleSelection);
  REJILLA_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
  REJILLA_->setAlternatingRowColors(true);
  REJILLA_->setWordWrap(false);
  REJILLA_->setTextElideMode(Qt::ElideNone);
  edicion_ = new EdicionLinea([this](const QString& texto) { return aceptaLinea(texto); }, REJILLA_);
  REJILLA_->setItemDelegateForColumn(LINEA, edicion_);
  const QFontMetrics medida = REJILLA_->fontMetrics();
  QHeaderView* columnas = REJILLA_->horizontalHeader();
  columnas->setHighlightSections(false);
  columnas->setStretchLastSection(true);
  REJILLA_->setColumnWidth(ORDEN, std::max(medida.horizontalAdvance(QStringLiteral("000000")) + 16,
                                           columnas->fontMetrics().horizontalAdvance(QStringLiteral("Orden")) + 20));
  REJILLA_->setColumnWidth(LINEA, medida.horizontalAdvance(QString(LONGITUDLINEA, QLatin1Char('0'))) + 24);
  REJILLA_->setColumnWidth(ESTADO, columnas->fontMetrics().horizontalAdvance(QStringLiteral("Longitud")) + 28);
  connect(REJILLA_, &QTableWidget::itemChanged, this, &EDITOR::cambiaCelda);

  // The status line: the trailer's counts against the lines, and the marked lines.
  cierre_ = new QLabel(this);
  cierre_->setObjectName(QStringLiteral("cierre"));
  campos_ = new QLabel(this);
  campos_->setObjectName(QStringLiteral("campos"));
  observaciones_ = new QLabel(this);
  observaciones_->setObjectName(QStringLiteral("observaciones"));
  observaciones_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto* estado = new QFrame(this);
  estado->setObjectName(QStringLiteral("estado"));
  estado->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  auto* capaEstado = new QHBoxLayout(estado);
  capaEstado->setContentsMargins(8, 4, 8, 4);
  capaEstado->addWidget(cierre_, 1);
  capaEstado->addWidget(campos_);
  capaEstado->addSpacing(16);
  capaEstado->addWidget(observaciones_);

  construyePanel();
  auto* division = new QSplitter(Qt::Vertical, this);
  division->setChildrenCollapsible(false);
  division->addWidget(REJILLA_);
  division->addWidget(HALLAZGOS_);
  division->setStretchFactor(0, 4);
  division->setStretchFactor(1, 1);

  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(12, 10, 12, 12);
  cuerpo->setSpacing(6);
  cuerpo->addWidget(division, 1);
  cuerpo->addWidget(estado);

  colocaForma(this, barra, cabecera, cuerpo);
}

// The panel of field findings: one row each, in the file's order; a click goes to it.
void EDITOR::construyePanel() {
  HALLAZGOS_ = new QTableWidget(0, H_COLUMNAS, this);
  HALLAZGOS_->setObjectName(QStringLiteral("HALLAZGOS"));
  HALLAZGOS_->setHorizontalHeaderLabels({q("Línea"_cp), QStringLiteral("Posiciones"), QStringLiteral("Campo"),
                                         QStringLiteral("Valor"), QStringLiteral("Regla")});
  HALLAZGOS_->verticalHeader()->hide();
  HALLAZGOS_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  HALLAZGOS_->setSelectionBehavior(QAbstractItemView::SelectRows);
  HALLAZGOS_->setSelectionMode(QAbstractItemView::SingleSelection);
  HALLAZGOS_->setWordWrap(false);
  HALLAZGOS_->horizontalHeader()->setStretchLastSection(true);
  HALLAZGOS_->horizontalHeader()->setHighlightSections(false);
  const QFontMetrics medida = HALLAZGOS_->fontMetrics();
  HALLAZGOS_->setColumnWidth(H_LINEA, medida.horizontalAdvance(QStringLiteral("000000")) + 24);
  HALLAZGOS_->setColumnWidth(H_POSICIONES, medida.horizontalAdvance(QStringLiteral("Posiciones")) + 24);
  HALLAZGOS_->setColumnWidth(H_CAMPO, medida.horizontalAdvance(QStringLiteral("cuenta de cotización")) + 24);
  HALLAZGOS_->setColumnWidth(H_VALOR, medida.horizontalAdvance(QStringLiteral("00000000000000")) + 24);
  connect(HALLAZGOS_, &QTableWidget::cellClicked, this, [this](int fila, int) { vaAHallazgo(fila); });
  connect(HALLAZGOS_, &QTableWidget::cellActivated, this, [this](int fila, int) { vaAHallazgo(fila); });
}

// The rows the file's size suggests, then a row per line: its number, the line and its
// length. A file that was not written leaves the grid empty.
void EDITOR::carga() {
  Globales& g = programa_.g;
  if (recorta(g.FICHEROSALIDA).empty()) {
    detalle_ = QStringLiteral("Sin fichero");
    fichero_->setText(detalle_);
    programa_.dialogos().mensaje(tituloValdor(), "El fichero no se generó. El proceso ha sido abortado."_cp,
                                 Icono::Critico);
    muestraCierre();
    return;
  }
  ruta_ = rutaNativa(g.FICHEROSALIDA, programa_.entornoWine);
  tipo_ = tipoDeFichero(g.FICHEROSALIDA);
  std::error_code error;
  std::uintmax_t bytes = std::filesystem::file_size(ruta_, error);
  if (error) bytes = 0;
  lineas_ = leeLineas(ruta_, &finales_);
  const std::size_t leidas = lineas_.size();

  cargando_ = true;
  REJILLA_->clearContents();
  // A file of many short lines may have more lines than the estimate: every line is shown.
  const int filas = std::max(filasEstimadas(bytes, g.EDITAAFI == 1), static_cast<int>(leidas));
  lineas_.resize(static_cast<std::size_t>(filas));
  finales_.resize(static_cast<std::size_t>(filas), FinDeLinea::CRLF);
  marcadas_.assign(static_cast<std::size_t>(filas), false);
  REJILLA_->setRowCount(filas);
  for (int f = 0; f < filas; ++f) {
    const bool hayLinea = f < static_cast<int>(leidas);
    QTableWidgetItem* orden = celdaFija(hayLinea ? QString::number(f + 1) : QString());
    orden->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    REJILLA_->setItem(f, ORDEN, orden);
    auto* linea = new QTableWidgetItem(QString::fromStdString(lineaParaMostrar(lineas_[static_cast<std::size_t>(f)], tipo_)));
    linea->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    REJILLA_->setItem(f, LINEA, linea);
    QTableWidgetItem* longitud = celdaFija();
    longitud->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    REJILLA_->setItem(f, ESTADO, longitud);
    REJILLA_->setItem(f, REVISION, celdaFija());
    revisaFila(f);
  }
  cargando_ = false;

  const QString clase = tipo_ == TipoIntercambio::FAN   ? QStringLiteral("fichero de cotización (FAN)")
                        : tipo_ == TipoIntercambio::AFI ? QStringLiteral("fichero de afiliación (AFI)")
                                                        : QStringLiteral("fichero");
  detalle_ = q(g.FICHEROSALIDA) + QStringLiteral("   \u2014   ") + clase + QStringLiteral(", ") +
             cuenta(static_cast<long>(leidas), QStringLiteral("línea"), QStringLiteral("líneas"));
  fichero_->setText(detalle_);
  revisaLosCampos();
  muestraCierre();
}

EDITOR::~EDITOR() {
  // The grid is destroyed after this class's members, and an edit still open is committed
  // as it goes: from here on nothing may reach back into the form.
  edicion_->suelta();
  disconnect(REJILLA_, nullptr, this, nullptr);
}

void EDITOR::pulsaBarraLista(const QString& clave) {
  if (clave != QLatin1String("can")) edicion_->confirma();
  if (clave == QLatin1String("guar"))
    guarda();
  else if (clave == QLatin1String("BUSCA"))
    busca();
  else if (clave == QLatin1String("IMPRI"))
    imprime();
  else if (clave == QLatin1String("can"))
    reject();
}

void EDITOR::done(int resultado) {
  programa_.g.EDITAAFI = 0;
  QDialog::done(resultado);
}

void EDITOR::reject() {
  edicion_->confirma();
  if (modificado_) {
    const std::string pregunta = std::string("El fichero "_cp).append(recorta(programa_.g.FICHEROSALIDA))
                                     .append(" tiene cambios sin guardar. ¿Desea guardarlos antes de cerrar?"_cp);
    switch (programa_.dialogos().preguntaGuardar(tituloValdor(), pregunta)) {
      case Guardado::Guardar:
        if (!guarda()) return;
        break;
      case Guardado::Descartar: break;
      case Guardado::Cancelar: return;
    }
  }
  QDialog::reject();
}

// The title's "*" and the title panel say that there are edits not yet saved.
void EDITOR::marcaModificado(bool modificado) {
  modificado_ = modificado;
  setWindowModified(modificado);
  fichero_->setText(modificado ? detalle_ + QStringLiteral("   \u2014   cambios sin guardar") : detalle_);
}

// Every row as it stands, the blank ones left out by the save; the rows keep their
// numbers on the screen. Lines that fail the check are saved only on the user's word.
bool EDITOR::guarda() {
  if (ruta_.empty()) return false;
  if (const auto aviso = avisoAlGuardar(lineas_, tipo_);
      aviso && !programa_.dialogos().pregunta(tituloValdor(), *aviso, true))
    return false;
  try {
    guardaLineas(ruta_, lineas_);
    marcaModificado(false);
    // Every line saved ends with CR LF now.
    for (std::size_t f = 0; f < finales_.size(); ++f) {
      if (finales_[f] == FinDeLinea::CRLF) continue;
      finales_[f] = FinDeLinea::CRLF;
      revisaFila(static_cast<int>(f));
    }
  } catch (const ErrorFichero& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
  }
  muestraCierre();
  return !modificado_;
}

// The first line holding the text becomes the top row, selected. No hit, no message.
void EDITOR::busca() {
  const std::optional<std::string> texto =
      programa_.dialogos().entrada("BUSQUEDA DE TEXTO", " Introduzca el texto que desee buscar");
  if (!texto) return;
  const std::optional<std::size_t> fila = buscaLinea(lineas_, *texto);
  if (!fila) return;
  QTableWidgetItem* celda = REJILLA_->item(static_cast<int>(*fila), LINEA);
  REJILLA_->setCurrentItem(celda);
  REJILLA_->scrollToItem(celda, QAbstractItemView::PositionAtTop);
}

// The file as it is on disk goes to the system's text editor, which prints it.
void EDITOR::imprime() {
  if (ruta_.empty()) return;
  const std::vector<std::string> orden{"xdg-open", ruta_.string()};
  if (const auto motivo = lanzador_.lanza(orden))
    programa_.dialogos().mensaje(tituloValdor(), textoFalloArranque("el editor de textos del sistema", orden, *motivo),
                                 Icono::Critico);
}

void EDITOR::cambiaCelda(QTableWidgetItem* celda) {
  if (cargando_ || celda->column() != LINEA) return;
  std::string& linea = lineas_.at(static_cast<std::size_t>(celda->row()));
  const std::string nueva = lineaTecleada(linea, celda->text().toStdString(), tipo_);
  // The cell shows what the line now holds: a field of the accent table in capitals, as
  // its writer writes it.
  const QString mostrada = QString::fromStdString(lineaParaMostrar(nueva, tipo_));
  if (mostrada != celda->text()) {
    cargando_ = true;
    celda->setText(mostrada);
    cargando_ = false;
  }
  if (nueva == linea) return;
  linea = nueva;
  marcaModificado(true);
  revisaFila(celda->row());
  revisaLosCampos();
  muestraCierre();
}

bool EDITOR::aceptaLinea(const QString& texto) {
  std::size_t perdidos = 0;
  utf8ACp1252(texto.toUtf8().toStdString(), &perdidos);
  if (perdidos == 0) return true;
  // The first character without a place, by its position and its code, since the box
  // itself cannot show it.
  const QList<uint> caracteres = texto.toUcs4();
  qsizetype posicion = 0;
  uint codigo = 0;
  for (qsizetype i = 0; i < caracteres.size(); ++i) {
    const char32_t c = caracteres[i];
    if (!esRepresentableCp1252(QString::fromUcs4(&c, 1).toUtf8().toStdString())) {
      posicion = i + 1;
      codigo = caracteres[i];
      break;
    }
  }
  const std::string aviso =
      std::string("La línea no se ha cambiado: el carácter número "_cp) + std::to_string(posicion) + " (U+" +
      QStringLiteral("%1").arg(codigo, 4, 16, QLatin1Char('0')).toUpper().toStdString() +
      std::string(") no existe en el juego de caracteres de los ficheros de intercambio. Escriba la línea con "
                  "letras, cifras y signos del teclado español."_cp);
  // The box waits until the edit has closed, so that it does not steal the editor's focus
  // in the middle of its commit.
  QTimer::singleShot(0, this,
                     [this, aviso] { programa_.dialogos().mensaje(tituloValdor(), aviso, Icono::Exclamacion); });
  return false;
}

// The length and the findings of one row, from its line as it stands.
void EDITOR::revisaFila(int fila) {
  const std::string& linea = lineas_.at(static_cast<std::size_t>(fila));
  const bool blanca = recorta(linea).empty();
  QTableWidgetItem* longitud = REJILLA_->item(fila, ESTADO);
  longitud->setText(blanca ? QString() : QString::number(linea.size()));
  longitud->setForeground(!blanca && linea.size() != LONGITUDLINEA ? QBrush(QColor(TEXTOOBSERVACION)) : QBrush());

  QString texto;
  for (const std::string& o : observacionesDeLinea(linea, tipo_, finales_.at(static_cast<std::size_t>(fila))))
    texto += (texto.isEmpty() ? QString() : QStringLiteral(", ")) + q(o);
  marcadas_[static_cast<std::size_t>(fila)] = !texto.isEmpty();
  QTableWidgetItem* revision = REJILLA_->item(fila, REVISION);
  revision->setText(texto);
  revision->setBackground(texto.isEmpty() ? QBrush() : QBrush(QColor(FONDOOBSERVACION)));
  revision->setForeground(texto.isEmpty() ? QBrush() : QBrush(QColor(TEXTOOBSERVACION)));
}

// The verdict on the trailer over the lines of the grid, and how many lines are marked.
void EDITOR::muestraCierre() {
  const CuentasPie c = cuentasDelPie(lineas_);
  const QString EMPRESA = QStringLiteral("empresa"), EMPRESAS = QStringLiteral("empresas");
  const QString LINEA1 = QStringLiteral("línea"), LINEAS = QStringLiteral("líneas");
  QString texto;
  if (!c.hayPie) {
    texto = q("No hay línea de cierre ETF con sus cuentas de empresas y de líneas."_cp);
  } else {
    texto = QStringLiteral("Cierre ETF: ") + cuenta(c.empresasPie, EMPRESA, EMPRESAS) + QStringLiteral(", ") +
            cuenta(c.lineasPie, LINEA1, LINEAS);
    if (c.cuadran()) {
      texto += QStringLiteral(": cuadran con el fichero.");
    } else {
      QStringList difieren;
      if (c.empresasPie != c.empresas) difieren << cuenta(c.empresas, EMPRESA, EMPRESAS);
      if (c.lineasPie != c.lineas) difieren << cuenta(c.lineas, LINEA1, LINEAS);
      texto += QStringLiteral(". No cuadran: el fichero tiene ") + difieren.join(QStringLiteral(" y ")) +
               QLatin1Char('.');
    }
  }
  cierre_->setText(texto);
  cierre_->setStyleSheet(c.cuadran() ? QStringLiteral("color: #1d6b2a; font-weight: bold;")
                                     : QStringLiteral("color: #9c1c1c; font-weight: bold;"));

  const auto marcadas = static_cast<long>(std::count(marcadas_.begin(), marcadas_.end(), true));
  observaciones_->setText(marcadas == 0 ? q("Ninguna línea con observaciones."_cp)
                                        : cuenta(marcadas, QStringLiteral("línea con observaciones"),
                                                 QStringLiteral("líneas con observaciones")) +
                                              QStringLiteral(" (columna Revisión)."));
}

void EDITOR::revisaLosCampos() {
  std::vector<Hallazgo> nuevos = revisaCampos(lineas_, tipo_);
  // Each row that had or has a finding is marked again from the new findings.
  std::map<int, std::vector<const Hallazgo*>> porFila;
  for (const Hallazgo& h : hallazgos_) porFila[static_cast<int>(h.linea) - 1];
  for (const Hallazgo& h : nuevos) porFila[static_cast<int>(h.linea) - 1].push_back(&h);
  for (const auto& [fila, suyos] : porFila) marcaCampos(fila, suyos);
  hallazgos_ = std::move(nuevos);
  llenaPanel();
}

// The line's cell carries its fields in error for the drawing and the pointer, and all
// its findings in its tooltip.
void EDITOR::marcaCampos(int fila, const std::vector<const Hallazgo*>& suyos) {
  QTableWidgetItem* celda = REJILLA_->item(fila, LINEA);
  if (!celda) return;
  // Findings of one field share its mark, and its tooltip gives them all.
  std::map<std::pair<int, int>, QString> campos;
  QStringList todas;
  for (const Hallazgo* h : suyos) {
    const QString regla = q(textoPosiciones(*h)) + QStringLiteral(" (") + q(h->campo) + QStringLiteral("): ") + q(h->regla);
    QString& texto = campos[{h->desde, h->hasta}];
    texto += (texto.isEmpty() ? QString() : QStringLiteral("\n")) + regla;
    todas << regla;
  }
  QVariantList marcas;
  for (const auto& [posiciones, regla] : campos)
    marcas << QVariantMap{{QStringLiteral("desde"), posiciones.first - 1},
                          {QStringLiteral("ancho"), posiciones.second - posiciones.first + 1},
                          {QStringLiteral("regla"), regla}};
  const bool cargando = std::exchange(cargando_, true);
  celda->setData(MARCAS, marcas.isEmpty() ? QVariant() : QVariant(marcas));
  celda->setToolTip(todas.join(QLatin1Char('\n')));
  cargando_ = cargando;
}

void EDITOR::llenaPanel() {
  HALLAZGOS_->setRowCount(static_cast<int>(hallazgos_.size()));
  for (int i = 0; i < static_cast<int>(hallazgos_.size()); ++i) {
    const Hallazgo& h = hallazgos_[static_cast<std::size_t>(i)];
    const QString posiciones = h.desde == h.hasta ? QString::number(h.desde)
                                                  : QStringLiteral("%1-%2").arg(h.desde).arg(h.hasta);
    const QString celdas[H_COLUMNAS] = {QString::number(h.linea), posiciones, q(h.campo),
                                        QLatin1Char('"') + q(imprimible(h.valor)) + QLatin1Char('"'), q(h.regla)};
    for (int c = 0; c < H_COLUMNAS; ++c) {
      auto* celda = new QTableWidgetItem(celdas[c]);
      if (c == H_LINEA) celda->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      if (c == H_REGLA) celda->setToolTip(celdas[c]);
      HALLAZGOS_->setItem(i, c, celda);
    }
  }
  const auto n = static_cast<long>(hallazgos_.size());
  campos_->setText(n == 0 ? q("Ningún hallazgo en los campos."_cp)
                          : cuenta(n, QStringLiteral("hallazgo"), QStringLiteral("hallazgos")) +
                                QStringLiteral(" en los campos (lista de abajo)."));
  campos_->setStyleSheet(n == 0 ? QString() : QStringLiteral("color: #9c1c1c; font-weight: bold;"));
}

void EDITOR::vaAHallazgo(int indice) {
  if (indice < 0 || indice >= static_cast<int>(hallazgos_.size())) return;
  const Hallazgo h = hallazgos_[static_cast<std::size_t>(indice)];
  QTableWidgetItem* celda = REJILLA_->item(static_cast<int>(h.linea) - 1, LINEA);
  if (!celda) return;
  edicion_->confirma();
  REJILLA_->setCurrentItem(celda);
  REJILLA_->scrollToItem(celda, QAbstractItemView::PositionAtCenter);
  REJILLA_->setFocus();
  REJILLA_->editItem(celda);
  if (QLineEdit* e = edicion_->abierta()) e->setSelection(h.desde - 1, h.hasta - h.desde + 1);
}

}  // namespace valdor::formularios
