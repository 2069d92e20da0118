#include "fan/forms/cotizacion.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>
#include <exception>

#include "shell/forms/cabecera.h"
#include "shell/forms/barralista.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

namespace {

// The widths of the list's columns, wide enough for their captions.
constexpr int ANCHOEMPRESAS = 260;
constexpr int ANCHOSEL = 58;
constexpr int ANCHOCODIGO = 96;
constexpr int ANCHOTR = 90;

QComboBox* lista(const char* nombre, const std::vector<std::string>& elementos, QWidget* padre) {
  auto* c = new QComboBox(padre);
  c->setObjectName(QString::fromLatin1(nombre));
  for (const std::string& e : elementos) c->addItem(q(e));
  return c;
}

// A caption that gives its control the focus by its Alt letter.
QLabel* rotulo(const QString& texto, QWidget* control, QWidget* padre) {
  auto* r = new QLabel(texto, padre);
  r->setBuddy(control);
  return r;
}

QTableWidgetItem* celda(const QString& texto, Qt::ItemFlags marcas = Qt::ItemIsEnabled | Qt::ItemIsSelectable) {
  auto* c = new QTableWidgetItem(texto);
  c->setFlags(marcas);
  return c;
}

}  // namespace

COTIZACION::COTIZACION(Programa& programa, PaginaIntercambio& pagina, MotorCotizacion& motor, QWidget* padre)
    : QDialog(padre), programa_(programa), pagina_(pagina), motor_(motor) {
  setObjectName(QStringLiteral("COTIZACION"));
  setWindowTitle(q("Cotización"_cp));
  setModal(true);
  construye();

  cargaCOTIZACION(programa_, pagina_, sel_);
  // The wizard put up the hourglass before showing the form: the user chooses with the arrow.
  programa_.dialogos().puntero(Puntero::Normal);
  muestraSeleccion();
  muestraRejilla();

  // The run's progress, when the desktop's boxes tell it.
  if (auto* dialogos = dialogosQt(programa_.dialogos()))
    connect(dialogos, &DialogosQt::progresoCambiado, this,
            [this](int porcentaje, const QString& etiqueta1, const QString& etiqueta2) {
              progreso_->setValue(porcentaje);
              progreso_->setFormat(etiqueta1 + QLatin1Char(' ') + etiqueta2 + QStringLiteral("  %p%"));
            });
}

COTIZACION::~COTIZACION() { descarga(); }

void COTIZACION::construye() {
  // The list bar with the two commands.
  auto* barra = new BarraLista(q("Cotización"_cp), this);
  QStyle* estilo = style();
  barra->agrega(QStringLiteral("pro"), QStringLiteral("&Procesar"), estilo->standardIcon(QStyle::SP_DialogApplyButton));
  barra->agrega(QStringLiteral("can"), QStringLiteral("&Cancelar"), estilo->standardIcon(QStyle::SP_DialogCancelButton));
  connect(barra, &BarraLista::pulsado, this, &COTIZACION::pulsaBarraLista);

  auto* titulo = new QLabel(q("   Selección de empresas y periodo"_cp), this);
  titulo->setObjectName(QStringLiteral("titulo"));
  titulo->setStyleSheet(QStringLiteral(
      "#titulo { color: white; font-size: 13pt; font-weight: bold; padding: 8px;"
      " background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #1f3f6e, stop:1 #5b86bd); }"));

  // The period and the button that lists its companies.
  auto* periodo = new QGroupBox(q("Periodo de liquidación"_cp), this);
  Combo1_ = lista("Combo1", valdor::COTIZACION::meses(), periodo);
  Combo2_ = lista("Combo2", valdor::COTIZACION::anos(), periodo);
  Combo2_->setMaxVisibleItems(15);
  verificar_ = new QPushButton(QStringLiteral("&VERIFICAR EMPRESAS"), periodo);
  verificar_->setObjectName(QStringLiteral("PRESIONBOTON"));
  // Enter in the filter box must not list the companies again and lose the marks.
  verificar_->setAutoDefault(false);
  verificar_->setIcon(estilo->standardIcon(QStyle::SP_BrowserReload));
  auto* capaPeriodo = new QHBoxLayout(periodo);
  capaPeriodo->addWidget(rotulo(QStringLiteral("&Mes:"), Combo1_, periodo));
  capaPeriodo->addWidget(Combo1_);
  capaPeriodo->addSpacing(16);
  capaPeriodo->addWidget(rotulo(q("&Año:"_cp), Combo2_, periodo));
  capaPeriodo->addWidget(Combo2_);
  capaPeriodo->addStretch(1);
  capaPeriodo->addWidget(verificar_);
  connect(Combo1_, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (!mostrando_) sel_.eligeMes(i);
  });
  connect(Combo2_, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (!mostrando_) sel_.eligeAno(i);
  });
  connect(verificar_, &QPushButton::clicked, this, &COTIZACION::verificaEmpresas);

  // Class and qualifier of the liquidation.
  auto* liquidacion = new QGroupBox(q("Liquidación"_cp), this);
  clase_ = lista("Clase", valdor::COTIZACION::clases(), liquidacion);
  calificador_ = lista("Calificador", valdor::COTIZACION::calificadores(), liquidacion);
  auto* capaLiquidacion = new QGridLayout(liquidacion);
  capaLiquidacion->addWidget(rotulo(QStringLiteral("Cla&se:"), clase_, liquidacion), 0, 0);
  capaLiquidacion->addWidget(clase_, 0, 1);
  capaLiquidacion->addWidget(rotulo(QStringLiteral("Cal&ificador:"), calificador_, liquidacion), 1, 0);
  capaLiquidacion->addWidget(calificador_, 1, 1);
  capaLiquidacion->setColumnStretch(1, 1);
  connect(clase_, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (!mostrando_) sel_.claseElegida = i;
  });
  connect(calificador_, &QComboBox::currentIndexChanged, this, [this](int i) {
    if (!mostrando_) sel_.calificadorElegido = i;
  });

  // The company list, shown as mark, code, name and workers; the two lines of the
  // employer block stay hidden.
  grid_ = new QTableWidget(0, COLUMNAS, this);
  grid_->setObjectName(QStringLiteral("grid"));
  grid_->setHorizontalHeaderLabels({QStringLiteral("Empresa"), QStringLiteral("Marcar"), q("Código"_cp), QString(),
                                    QString(), QStringLiteral("Trabajadores")});
  grid_->verticalHeader()->hide();
  grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid_->setSelectionMode(QAbstractItemView::SingleSelection);
  grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid_->setAlternatingRowColors(true);
  grid_->setWordWrap(false);
  grid_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  grid_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  QHeaderView* cabecera = grid_->horizontalHeader();
  cabecera->setHighlightSections(false);
  cabecera->setMinimumSectionSize(ANCHOSEL);
  cabecera->setSectionResizeMode(QHeaderView::Fixed);
  grid_->setColumnWidth(EMPRESAS, ANCHOEMPRESAS);
  grid_->setColumnWidth(SEL, ANCHOSEL);
  grid_->setColumnWidth(CODIGO, ANCHOCODIGO);
  grid_->setColumnWidth(TR, ANCHOTR);
  for (int c : {LINEAEMP, LINEARZS}) grid_->setColumnHidden(c, true);
  cabecera->moveSection(SEL, 0);
  cabecera->moveSection(CODIGO, 1);
  grid_->setFixedWidth(ANCHOEMPRESAS + ANCHOSEL + ANCHOCODIGO + ANCHOTR +
                       grid_->verticalScrollBar()->sizeHint().width() + 2 * grid_->frameWidth());
  grid_->setMinimumHeight(grid_->verticalHeader()->defaultSectionSize() * 8);
  connect(grid_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* c) {
    if (mostrando_ || c->column() != SEL) return;
    sel_.grid.at(static_cast<std::size_t>(c->row())).marcada = c->checkState() == Qt::Checked;
    muestraCuenta();
  });

  // The filter above the list and the count under it.
  filtro_ = new QLineEdit(this);
  filtro_->setObjectName(QStringLiteral("filtro"));
  filtro_->setPlaceholderText(q("Código o nombre de la empresa"_cp));
  filtro_->setClearButtonEnabled(true);
  connect(filtro_, &QLineEdit::textChanged, this, &COTIZACION::filtra);
  cuenta_ = new QLabel(this);
  cuenta_->setObjectName(QStringLiteral("cuenta"));
  auto* capaFiltro = new QHBoxLayout;
  capaFiltro->addWidget(rotulo(QStringLiteral("&Filtrar:"), filtro_, this));
  capaFiltro->addWidget(filtro_, 1);
  auto* columnaLista = new QVBoxLayout;
  columnaLista->addLayout(capaFiltro);
  columnaLista->addWidget(grid_, 1);
  columnaLista->addWidget(cuenta_);

  // The options beside the list.
  auto* opciones = new QWidget(this);
  marcarTodas_ = new QCheckBox(QStringLiteral("Marcar &todas"), opciones);
  marcarTodas_->setObjectName(QStringLiteral("MarcarTodas"));
  devEnCta_ = new QCheckBox(QStringLiteral("&Dev. en Cta."), opciones);
  devEnCta_->setObjectName(QStringLiteral("DevEnCta"));
  alfabetica_ = new QCheckBox(q("Alfa&bética"_cp), opciones);
  alfabetica_->setObjectName(QStringLiteral("Alfabetica"));
  auto* tipo = new QGroupBox(QStringLiteral("Tipo de proceso"), opciones);
  auto* normal = new QRadioButton(QStringLiteral("Proceso &normal"), tipo);
  normal->setObjectName(QStringLiteral("ProcesoNormal"));
  normal->setChecked(true);
  auto* diferencias = new QRadioButton(q("Liquidación dif&erencias"_cp), tipo);
  diferencias->setObjectName(QStringLiteral("LiquidacionDiferencias"));
  auto* capaTipo = new QVBoxLayout(tipo);
  capaTipo->addWidget(normal);
  capaTipo->addWidget(diferencias);
  auto* capaOpciones = new QVBoxLayout(opciones);
  capaOpciones->setContentsMargins(0, 0, 0, 0);
  capaOpciones->addWidget(marcarTodas_);
  capaOpciones->addWidget(devEnCta_);
  capaOpciones->addWidget(alfabetica_);
  capaOpciones->addSpacing(10);
  capaOpciones->addWidget(tipo);
  capaOpciones->addStretch(1);
  connect(marcarTodas_, &QCheckBox::toggled, this, [this](bool marcar) {
    if (mostrando_) return;
    marcaTodas(sel_, marcar);
    muestraMarcas();
  });
  connect(devEnCta_, &QCheckBox::toggled, this, [this](bool b) {
    if (!mostrando_) sel_.devEnCta = b;
  });
  connect(alfabetica_, &QCheckBox::toggled, this, [this](bool b) {
    if (!mostrando_) sel_.alfabetica = b;
  });

  progreso_ = new QProgressBar(this);
  progreso_->setObjectName(QStringLiteral("progreso"));
  progreso_->setRange(0, 100);
  progreso_->hide();
  cancelarTrabajo_ = new QPushButton(QStringLiteral("Cance&lar"), this);
  cancelarTrabajo_->setObjectName(QStringLiteral("cancelarTrabajo"));
  cancelarTrabajo_->setAutoDefault(false);
  cancelarTrabajo_->hide();
  connect(cancelarTrabajo_, &QPushButton::clicked, this, [this] {
    programa_.pideParada();
    cancelarTrabajo_->setEnabled(false);
  });
  auto* capaProgreso = new QHBoxLayout;
  capaProgreso->addWidget(progreso_, 1);
  capaProgreso->addWidget(cancelarTrabajo_);

  auto* empresas = new QHBoxLayout;
  empresas->setSpacing(14);
  empresas->addLayout(columnaLista);
  empresas->addWidget(opciones, 1);

  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(12, 10, 12, 12);
  cuerpo->setSpacing(10);
  cuerpo->addWidget(periodo);
  cuerpo->addWidget(liquidacion);
  cuerpo->addLayout(empresas, 1);
  cuerpo->addLayout(capaProgreso);

  colocaForma(this, barra, titulo, cuerpo);
  // The order of the keyboard: the period, the liquidation, the filter, the list, the options.
  ordenTab({Combo1_, Combo2_, verificar_, clase_, calificador_, filtro_, grid_, marcarTodas_, devEnCta_, alfabetica_,
            normal, diferencias});
}

// The controls from the selection: the chosen items and what is enabled.
void COTIZACION::muestraSeleccion() {
  mostrando_ = true;
  Combo1_->setCurrentIndex(sel_.mesElegido);
  Combo2_->setCurrentIndex(sel_.anoElegido);
  clase_->setCurrentIndex(sel_.claseElegida);
  calificador_->setCurrentIndex(sel_.calificadorElegido);
  Combo1_->setEnabled(!sel_.listasBloqueadas);
  Combo2_->setEnabled(!sel_.listasBloqueadas);
  marcarTodas_->setEnabled(sel_.marcarTodasActivo);
  devEnCta_->setEnabled(sel_.devEnCtaActivo);
  devEnCta_->setChecked(sel_.devEnCta);
  alfabetica_->setEnabled(sel_.alfabeticaActiva);
  alfabetica_->setChecked(sel_.alfabetica);
  mostrando_ = false;
}

void COTIZACION::muestraRejilla() {
  mostrando_ = true;
  grid_->clearContents();
  grid_->setRowCount(static_cast<int>(sel_.grid.size()));
  int f = 0;
  for (const FilaEmpresa& fila : sel_.grid) {
    grid_->setItem(f, EMPRESAS, celda(q(fila.BNOMBRE)));
    grid_->setItem(f, SEL, celda(QString(), Qt::ItemIsEnabled | Qt::ItemIsUserCheckable));
    grid_->setItem(f, CODIGO, celda(q(fila.BSSE)));
    grid_->setItem(f, LINEAEMP, celda(q(fila.lineaEMP)));
    grid_->setItem(f, LINEARZS, celda(q(fila.lineaRZS)));
    QTableWidgetItem* tr = celda(QString::number(fila.trabajadores));
    tr->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid_->setItem(f, TR, tr);
    ++f;
  }
  mostrando_ = false;
  muestraMarcas();
  filtra();
}

void COTIZACION::muestraMarcas() {
  mostrando_ = true;
  for (int f = 0; f < grid_->rowCount(); ++f)
    grid_->item(f, SEL)->setCheckState(sel_.grid.at(static_cast<std::size_t>(f)).marcada ? Qt::Checked
                                                                                         : Qt::Unchecked);
  mostrando_ = false;
  muestraCuenta();
}

void COTIZACION::muestraCuenta() { cuenta_->setText(q(textoCuentaEmpresas(sel_))); }

void COTIZACION::filtra() {
  const std::string filtro = aCp1252(filtro_->text());
  for (int f = 0; f < grid_->rowCount(); ++f)
    grid_->setRowHidden(f, !pasaFiltro(sel_.grid.at(static_cast<std::size_t>(f)), filtro));
}

void COTIZACION::verificaEmpresas() {
  Dialogos& dialogos = programa_.dialogos();
  dialogos.puntero(Puntero::Reloj);
  try {
    PRESIONBOTON(programa_, pagina_, sel_);
  } catch (const std::exception& e) {
    avisaError(dialogos, e);
  }
  dialogos.puntero(Puntero::Normal);
  // A new list comes unmarked, and so does the box that marks it all.
  mostrando_ = true;
  marcarTodas_->setChecked(false);
  mostrando_ = false;
  muestraSeleccion();
  muestraRejilla();
}

void COTIZACION::pulsaBarraLista(const QString& clave) {
  if (clave == QLatin1String("pro")) {
    procesa();
  } else if (clave == QLatin1String("can")) {
    cancelaCOTIZACION(programa_);
    reject();
  }
}

void COTIZACION::procesa() {
  if (!puedeProcesar(programa_, sel_)) return;
  muestraSeleccion();
  // The controls are locked while the file is written; the form itself stays enabled,
  // since the boxes the run may show belong to it.
  const auto controles = findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  for (QWidget* w : controles)
    if (w != progreso_ && w != cancelarTrabajo_) w->setEnabled(false);
  progreso_->setValue(0);
  progreso_->show();
  cancelarTrabajo_->show();

  Dialogos& dialogos = programa_.dialogos();
  dialogos.puntero(Puntero::Reloj);
  trabajando_ = true;
  std::optional<std::string> fichero;
  try {
    EntradaDuranteTrabajo entrada(dialogos);
    fichero = comando(programa_, pagina_, sel_, motor_);
  } catch (const std::exception& e) {
    avisaError(dialogos, e);
  }
  trabajando_ = false;
  procesado_ = true;
  // A file that was not written has nothing to check or to send: the wizard stops as
  // after "Cancelar". The user has been told why.
  if (!fichero) cancelaCOTIZACION(programa_);
  accept();
}

void COTIZACION::done(int resultado) {
  // Escape or the window's close while the file is written stop the run.
  if (trabajando_) {
    programa_.pideParada();
    cancelarTrabajo_->setEnabled(false);
    return;
  }
  if (!procesado_) cancelaCOTIZACION(programa_);
  descarga();
  QDialog::done(resultado);
}

void COTIZACION::descarga() noexcept {
  if (descargado_) return;
  descargado_ = true;
  try {
    descargaCOTIZACION(programa_, sel_);
  } catch (...) {
    // Closing the stores never stops the program.
  }
}

}  // namespace valdor::formularios
