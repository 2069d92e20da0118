#include "afiliacion/forms/afilia.h"

#include <QApplication>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>
#include <exception>

#include "shell/asistente.h"
#include "shell/forms/cabecera.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"

namespace valdor::formularios {

namespace {

// The fixed-width fields and lines in a type of fixed pitch, so that they line up as in
// the file.
QFont letraFija(const QFont& base) {
  QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  f.setPointSizeF(base.pointSizeF());
  return f;
}

QTableWidget* rejilla(const char* nombre, int columnas, QWidget* padre) {
  auto* t = new QTableWidget(0, columnas, padre);
  t->setObjectName(QString::fromLatin1(nombre));
  t->setEditTriggers(QAbstractItemView::NoEditTriggers);
  // Tab goes on to the next control; the arrows move in the grid.
  t->setTabKeyNavigation(false);
  t->setSelectionBehavior(QAbstractItemView::SelectRows);
  t->setSelectionMode(QAbstractItemView::SingleSelection);
  t->setAlternatingRowColors(true);
  t->setWordWrap(false);
  t->setFont(letraFija(t->font()));
  t->horizontalHeader()->setFont(padre->font());
  t->verticalHeader()->setFont(padre->font());
  t->verticalHeader()->setDefaultSectionSize(t->fontMetrics().height() + 6);
  return t;
}

// One line of 70 characters on a sunken white strip, wide enough to show it whole.
QLabel* linea(const char* nombre, QWidget* padre) {
  auto* l = new QLabel(padre);
  l->setObjectName(QString::fromLatin1(nombre));
  l->setFont(letraFija(padre->font()));
  l->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  l->setAutoFillBackground(true);
  l->setBackgroundRole(QPalette::Base);
  l->setTextInteractionFlags(Qt::TextSelectableByMouse);
  l->setMinimumWidth(l->fontMetrics().horizontalAdvance(QString(70, QLatin1Char('0'))) + 12);
  return l;
}

template <std::size_t N>
void llenaFilas(QTableWidget* t, const std::vector<std::array<std::string, N>>& filas) {
  // Row 0 of the state holds the headers; the grid shows the rows from 1, blank ones too.
  t->clearContents();
  t->setRowCount(filas.empty() ? 0 : static_cast<int>(filas.size()) - 1);
  for (std::size_t r = 1; r < filas.size(); ++r)
    for (std::size_t c = 0; c < N; ++c)
      if (!filas[r][c].empty())
        t->setItem(static_cast<int>(r) - 1, static_cast<int>(c), new QTableWidgetItem(q(filas[r][c])));
}

}  // namespace

AFILIA::AFILIA(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios,
               QWidget* padre)
    : QDialog(padre),
      programa_(programa),
      pagina_(pagina),
      formularios_(formularios),
      afi_(std::make_unique<valdor::AFILIA>()) {
  setObjectName(QStringLiteral("AFILIA"));
  setWindowTitle(q(tituloAFILIA()));
  setModal(true);
  resize(1000, 640);
  construye();
  carga();
}

void AFILIA::construye() {
  // Title panel, as the wizard's, with the sender beneath.
  const Cabecera banda =
      cabecera(this, q(tituloAFILIA()), 15, QStringLiteral("Label19"), QStringLiteral("font-style: italic;"));
  QFrame* cabecera = banda.marco;
  Label19_ = banda.detalle;

  // The working grid and the companies.
  GRID1_ = rejilla("GRID1", COLUMNASAFI, this);
  QStringList cabeceras;
  for (const std::string& c : cabecerasAFI()) cabeceras << q(c);
  GRID1_->setHorizontalHeaderLabels(cabeceras);
  Grid2_ = rejilla("Grid2", 3, this);

  // The lines that open and close the file.
  auto* panelCabecera = new QGroupBox(QStringLiteral("Cabecera:"), this);
  panelCabecera->setObjectName(QStringLiteral("panelCabecera"));
  Label2_ = linea("Label2", panelCabecera);
  Label4_ = linea("Label4", panelCabecera);
  auto* capaEtiquetas = new QVBoxLayout(panelCabecera);
  capaEtiquetas->setSpacing(4);
  capaEtiquetas->addWidget(Label2_);
  capaEtiquetas->addWidget(Label4_);
  auto* panelPie = new QGroupBox(QStringLiteral("Pie"), this);
  panelPie->setObjectName(QStringLiteral("panelPie"));
  Label7_ = linea("Label7", panelPie);
  auto* capaPie = new QVBoxLayout(panelPie);
  capaPie->addWidget(Label7_);
  auto* lineas = new QVBoxLayout;
  lineas->addWidget(panelCabecera);
  lineas->addWidget(panelPie);

  auto boton = [this](const char* nombre, const QString& texto, QStyle::StandardPixmap icono) {
    auto* b = new QPushButton(style()->standardIcon(icono), texto, this);
    b->setObjectName(QString::fromLatin1(nombre));
    b->setMinimumWidth(130);
    b->setAutoDefault(false);
    return b;
  };

  // The progress of the writing with its "Cancelar", and the three commands.
  panelProgreso_ = new QWidget(this);
  panelProgreso_->setObjectName(QStringLiteral("panelProgreso"));
  ProgressBar1_ = new QProgressBar(panelProgreso_);
  ProgressBar1_->setObjectName(QStringLiteral("ProgressBar1"));
  ProgressBar1_->setRange(0, 100);
  cancelarTrabajo_ = boton("cancelarTrabajo", QStringLiteral("&Cancelar"), QStyle::SP_DialogCancelButton);
  cancelarTrabajo_->hide();
  connect(cancelarTrabajo_, &QPushButton::clicked, this, &AFILIA::pideParada);
  auto* barraYCancelar = new QHBoxLayout;
  barraYCancelar->addWidget(ProgressBar1_, 1);
  barraYCancelar->addWidget(cancelarTrabajo_);
  auto* capaProgreso = new QVBoxLayout(panelProgreso_);
  capaProgreso->setContentsMargins(0, 0, 0, 0);
  capaProgreso->addWidget(new QLabel(QStringLiteral("Generando fichero:"), panelProgreso_));
  capaProgreso->addLayout(barraYCancelar);
  panelProgreso_->hide();

  Command2_ = boton("Command2", QStringLiteral("&Generar Fichero"), QStyle::SP_DialogSaveButton);
  Command3_ = boton("Command3", QStringLiteral("&Nuevo"), QStyle::SP_FileIcon);
  Command1_ = boton("Command1", QStringLiteral("&Salir"), QStyle::SP_BrowserStop);
  Command2_->setDefault(true);
  connect(Command2_, &QPushButton::clicked, this, &AFILIA::generaFichero);
  connect(Command3_, &QPushButton::clicked, this, &AFILIA::nuevo);
  connect(Command1_, &QPushButton::clicked, this, &AFILIA::salir);
  auto* botones = new QHBoxLayout;
  botones->addStretch(1);
  for (QPushButton* b : {Command2_, Command3_, Command1_}) botones->addWidget(b);
  auto* mandos = new QVBoxLayout;
  mandos->addStretch(1);
  mandos->addWidget(panelProgreso_);
  mandos->addSpacing(8);
  mandos->addLayout(botones);

  auto* pie = new QHBoxLayout;
  pie->setSpacing(16);
  pie->addLayout(lineas);
  pie->addLayout(mandos, 1);

  auto* rotuloPendientes = new QLabel(QStringLiteral("&Trabajadores pendientes de afiliación:"), this);
  auto* rotuloEmpresas = new QLabel(QStringLiteral("&Empresas:"), this);
  rotuloPendientes->setBuddy(GRID1_);
  rotuloEmpresas->setBuddy(Grid2_);
  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(12, 10, 12, 12);
  cuerpo->setSpacing(6);
  cuerpo->addWidget(rotuloPendientes);
  cuerpo->addWidget(GRID1_, 3);
  cuerpo->addSpacing(4);
  cuerpo->addWidget(rotuloEmpresas);
  cuerpo->addWidget(Grid2_, 2);
  cuerpo->addSpacing(4);
  cuerpo->addLayout(pie);

  colocaForma(this, nullptr, cabecera, cuerpo);
  // The order of the keyboard: the two grids, then the commands from left to right.
  ordenTab({GRID1_, Grid2_, cancelarTrabajo_, Command2_, Command3_, Command1_});

  // The run's progress reaches the bar as the rules tell it, when the desktop answers them.
  if (auto* dialogos = dialogosQt(programa_.dialogos()))
    connect(dialogos, &DialogosQt::progresoCambiado, ProgressBar1_, [this](int porcentaje) {
      ProgressBar1_->setValue(porcentaje);
      ProgressBar1_->repaint();
    });
}

// The load: the comma test, the sender, the master stores, the pending list with every
// line of the file, and the trailer. The wizard's hourglass ends with it: the form is
// the user's now.
void AFILIA::carga() {
  cargaAFILIA(programa_, pagina_, *afi_);
  Label19_->setText(q(pagina_.Label19));
  Label2_->setText(q(programa_.g.LINEAETI));
  Label4_->setText(q(programa_.g.LINEASIL));
  Label7_->setText(q(afi_->LINEAPIEAFI));
  muestraRejillas();
  Command2_->setEnabled(afi_->generarActivo);
  programa_.dialogos().puntero(Puntero::Normal);
}

void AFILIA::muestraRejillas() {
  llenaFilas(GRID1_, afi_->GRID1);
  GRID1_->resizeColumnsToContents();
  llenaFilas(Grid2_, afi_->Grid2);
  if (!afi_->Grid2.empty()) {
    QStringList cabeceras;
    for (const std::string& c : afi_->Grid2.front()) cabeceras << q(c);
    Grid2_->setHorizontalHeaderLabels(cabeceras);
  }
  Grid2_->resizeColumnsToContents();
}

void AFILIA::generaFichero() {
  Dialogos& dialogos = programa_.dialogos();
  // A blank key or lines that fail the editor's check are written only on the user's word.
  if (const auto aviso = avisoAntesDeGenerar(programa_, pagina_, *afi_);
      aviso && !dialogos.pregunta(tituloAFILIA(), *aviso, true))
    return;
  dialogos.puntero(Puntero::Reloj);
  ProgressBar1_->setValue(0);
  panelProgreso_->show();
  // The commands wait for the end of the writing; only its "Cancelar" answers meanwhile.
  for (QPushButton* b : {Command2_, Command3_, Command1_}) b->setEnabled(false);
  cancelarTrabajo_->setEnabled(true);
  cancelarTrabajo_->show();
  GRID1_->setUpdatesEnabled(false);
  trabajando_ = true;
  try {
    EntradaDuranteTrabajo entrada(dialogos);
    ESCRIBEFICHERO(programa_, pagina_, *afi_, formularios_);
  } catch (const std::exception& e) {
    avisaError(dialogos, e);
  }
  trabajando_ = false;
  cancelarTrabajo_->hide();
  for (QPushButton* b : {Command3_, Command1_}) b->setEnabled(true);
  Command2_->setEnabled(afi_->generarActivo);
  ProgressBar1_->setValue(afi_->progreso);
  GRID1_->setUpdatesEnabled(true);
  dialogos.puntero(Puntero::Normal);
}

void AFILIA::pideParada() {
  programa_.pideParada();
  cancelarTrabajo_->setEnabled(false);
}

void AFILIA::nuevo() {
  nuevoAFILIA(pagina_);
  accept();
}

void AFILIA::reject() {
  if (trabajando_) {
    pideParada();
  } else {
    nuevo();
  }
}

void AFILIA::salir() {
  QApplication::beep();
  try {
    salirAFILIA(programa_, *afi_);
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
  }
  done(QDialog::Accepted);
  if (terminaPrograma) terminaPrograma();
}

}  // namespace valdor::formularios
