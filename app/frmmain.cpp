#include "app/frmmain.h"

#include "browser/forms/selector.h"

#include <QAction>
#include <QCloseEvent>
#include <QDate>
#include <QDockWidget>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <exception>

#include "engine/forms/boletin_tc1.h"
#include "app/ayuda.h"
#include "shell/forms/barralista.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/pxvaldor32.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

frmMain::frmMain(Programa& programa, Lanzador& lanzador, EntornoWine entorno, FabricaFormularios fabrica,
                 QWidget* padre)
    : QMainWindow(padre),
      programa_(programa),
      lanzador_(lanzador),
      entorno_(std::move(entorno)),
      fabrica_(fabrica ? std::move(fabrica) : fabricaFormulariosQt()) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("VALDOR+"));
  construye();
}

void frmMain::construye() {
  QStyle* estilo = style();
  const QIcon iconoCotiza = estilo->standardIcon(QStyle::SP_FileDialogDetailedView);
  const QIcon iconoAfilia = estilo->standardIcon(QStyle::SP_FileDialogInfoView);
  const QIcon iconoWinsuite = estilo->standardIcon(QStyle::SP_ArrowForward);
  const QIcon iconoFicheros = estilo->standardIcon(QStyle::SP_DialogOpenButton);
  const QIcon iconoBoletin = estilo->standardIcon(QStyle::SP_FileDialogListView);
  const QIcon iconoSalir = estilo->standardIcon(QStyle::SP_BrowserStop);

  // The menus hold every command of the window, each with its own Alt letter; the
  // list bar's commands also answer to Ctrl and their place in the bar. The menus'
  // letters are the window's: no child form uses them (the statement's "&Una empresa."
  // keeps the "Ayuda" menu on its Y).
  QMenu* mnuFile = menuBar()->addMenu(QStringLiteral("&Archivo"));
  mnuFile->setObjectName(QStringLiteral("mnuFile"));
  QMenu* mnuIntercambios = menuBar()->addMenu(QStringLiteral("&Intercambios"));
  mnuIntercambios->setObjectName(QStringLiteral("mnuIntercambios"));
  QMenu* mnuAyuda = menuBar()->addMenu(QStringLiteral("A&yuda"));
  mnuAyuda->setObjectName(QStringLiteral("mnuAyuda"));
  const std::tuple<QMenu*, const char*, std::string_view, QKeySequence, QIcon, const char*> ordenes[] = {
      {mnuIntercambios, "cotiza", "&Cotización (FAN)..."_cp, QKeySequence(Qt::CTRL | Qt::Key_1), iconoCotiza,
       "mnuCotiza"},
      {mnuIntercambios, "afilia", "&Afiliación (AFI)..."_cp, QKeySequence(Qt::CTRL | Qt::Key_2), iconoAfilia,
       "mnuAfilia"},
      {mnuIntercambios, "Winsuite", "&Transmitir con Winsuite", QKeySequence(Qt::CTRL | Qt::Key_3), iconoWinsuite,
       "mnuWinsuite"},
      {mnuFile, "FICHE", "&Editar ficheros...", QKeySequence(Qt::CTRL | Qt::Key_4), iconoFicheros, "mnuFileFicheros"},
      {mnuFile, "BOLETIN", "&Boletín de cotización TC1..."_cp, QKeySequence(Qt::CTRL | Qt::Key_5), iconoBoletin,
       "mnuFileBoletin"},
      {mnuFile, "salir", "&Salir", QKeySequence(Qt::CTRL | Qt::Key_Q), iconoSalir, "mnuFileExit"}};
  for (const auto& [menu, clave, texto, atajo, icono, nombre] : ordenes) {
    if (menu == mnuFile && QLatin1String(clave) == QLatin1String("salir")) menu->addSeparator();
    QAction* orden = menu->addAction(icono, q(texto));
    orden->setObjectName(QString::fromLatin1(nombre));
    orden->setShortcut(atajo);
    connect(orden, &QAction::triggered, this, [this, c = QString::fromLatin1(clave)] { pulsaBarraLista(c); });
    atajos_.insert(QString::fromLatin1(clave), atajo);
    ordenes_.push_back(orden);
  }
  QAction* guia = mnuAyuda->addAction(q("&Guía del trabajo del mes"_cp));
  guia->setObjectName(QStringLiteral("mnuAyudaGuia"));
  guia->setShortcut(QKeySequence::HelpContents);
  connect(guia, &QAction::triggered, this, [this] { muestraGuia(this); });
  QAction* acercaDe = mnuAyuda->addAction(QStringLiteral("&Acerca de VALDOR+..."));
  acercaDe->setObjectName(QStringLiteral("mnuAyudaAcercaDe"));
  connect(acercaDe, &QAction::triggered, this, [this] { muestraAcercaDe(this); });

  // The top bar, read by the key of its tools.
  barrasup_ = addToolBar(QStringLiteral("barrasup"));
  barrasup_->setObjectName(QStringLiteral("barrasup"));
  barrasup_->setMovable(false);
  barrasup_->setIconSize(QSize(22, 22));
  barrasup_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const std::tuple<const char*, std::string_view, QIcon> herramientas[] = {
      {"COT", "Cotización"_cp, iconoCotiza}, {"AFIL", "Afiliación"_cp, iconoAfilia}, {"Salir", "Salir", iconoSalir}};
  for (const auto& [clave, texto, icono] : herramientas) {
    QAction* herramienta = barrasup_->addAction(icono, q(texto));
    herramienta->setObjectName(QStringLiteral("barrasup_") + QLatin1String(clave));
    herramienta->setData(QString::fromLatin1(clave));
    connect(herramienta, &QAction::triggered, this,
            [this, c = QString::fromLatin1(clave)] { pulsaBarraSuperior(c); });
  }

  // The tool bar, which carries the program's plate on the right.
  tbToolBar_ = addToolBar(QStringLiteral("tbToolBar"));
  tbToolBar_->setObjectName(QStringLiteral("tbToolBar"));
  tbToolBar_->setMovable(false);
  auto* hueco = new QWidget(tbToolBar_);
  hueco->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  tbToolBar_->addWidget(hueco);
  SSPanel5_ = new QLabel(QStringLiteral("VALDOR+"), tbToolBar_);
  SSPanel5_->setObjectName(QStringLiteral("SSPanel5"));
  SSPanel5_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  SSPanel5_->setStyleSheet(QStringLiteral(
      "#SSPanel5 { color: #1f3f6e; font-weight: bold; font-style: italic; padding: 3px 14px; }"));
  tbToolBar_->addWidget(SSPanel5_);

  // The list bar on the left.
  SSListBar1_ = new BarraLista(QStringLiteral("VALDOR+"), this);
  const std::tuple<const char*, std::string_view, QIcon> elementos[] = {
      {"cotiza", "Cotización"_cp, iconoCotiza},
      {"afilia", "Afiliación"_cp, iconoAfilia},
      {"Winsuite", "Winsuite", iconoWinsuite},
      {"FICHE", "Editar ficheros", iconoFicheros},
      {"BOLETIN", "Boletín TC1"_cp, iconoBoletin},
      {"salir", "Salir", iconoSalir}};
  for (const auto& [clave, texto, icono] : elementos) {
    QToolButton* elemento = SSListBar1_->agrega(QString::fromLatin1(clave), q(texto), icono);
    // The bar's items share the menus' keys, shown on the item.
    elemento->setToolTip(q(texto) + QStringLiteral(" (") +
                         atajos_.value(QString::fromLatin1(clave)).toString(QKeySequence::NativeText) +
                         QLatin1Char(')'));
  }
  connect(SSListBar1_, &BarraLista::pulsado, this, &frmMain::pulsaBarraLista);
  auto* muelle = new QDockWidget(this);
  muelle->setObjectName(QStringLiteral("muelleSSListBar1"));
  muelle->setTitleBarWidget(new QWidget(muelle));
  muelle->setFeatures(QDockWidget::NoDockWidgetFeatures);
  muelle->setWidget(SSListBar1_);
  addDockWidget(Qt::LeftDockWidgetArea, muelle);

  // The multiple-document area.
  mdi_ = new QMdiArea(this);
  mdi_->setObjectName(QStringLiteral("mdi"));
  mdi_->setBackground(QColor(0x8a, 0x9b, 0xb0));
  setCentralWidget(mdi_);

  // The status bar.
  statusBar()->setObjectName(QStringLiteral("sbStatusBar"));
  progreso_ = new QProgressBar(statusBar());
  progreso_->setRange(0, 100);
  progreso_->setMaximumWidth(220);
  progreso_->hide();
  statusBar()->addPermanentWidget(progreso_);
  const Momento& m = programa_.ahora();
  auto* fecha = new QLabel(QDate(m.ano, m.mes, m.dia).toString(QStringLiteral("dd/MM/yyyy")), statusBar());
  fecha->setObjectName(QStringLiteral("fecha"));
  statusBar()->addPermanentWidget(fecha);
  statusBar()->showMessage(QStringLiteral("Preparado"));
}

void frmMain::carga() {
  programa_.arranca();
  muestraAsistente();
}

PXVALDOR32* frmMain::asistente() const { return asistente_; }

TC1VAL* frmMain::boletin() const { return boletin_; }

PXVALDOR32* frmMain::muestraAsistente() {
  if (!asistente_) {
    // A borderless child, filling the frame: the wizard carries its own close control.
    marcoAsistente_ = new QMdiSubWindow(mdi_, Qt::FramelessWindowHint);
    marcoAsistente_->setAttribute(Qt::WA_DeleteOnClose);
    asistente_ = new PXVALDOR32(programa_, lanzador_, entorno_, fabrica_, marcoAsistente_);
    marcoAsistente_->setWidget(asistente_);
    mdi_->addSubWindow(marcoAsistente_);
    connect(asistente_, &PXVALDOR32::trabajoTerminado, this, &frmMain::terminaProgreso);
    connect(asistente_, &PXVALDOR32::cerrado, this, [this] {
      asistente_ = nullptr;
      marcoAsistente_ = nullptr;
    });
    asistente_->carga();
  }
  marcoAsistente_->showMaximized();
  return asistente_;
}

TC1VAL* frmMain::muestraBoletin() {
  if (!boletin_) {
    marcoBoletin_ = new QMdiSubWindow(mdi_);
    marcoBoletin_->setAttribute(Qt::WA_DeleteOnClose);
    boletin_ = new TC1VAL(programa_, marcoBoletin_);
    marcoBoletin_->setWidget(boletin_);
    marcoBoletin_->setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogListView));
    mdi_->addSubWindow(marcoBoletin_);
    connect(boletin_, &TC1VAL::ejecucion, this, &frmMain::bloqueaOrdenes);
    connect(boletin_, &TC1VAL::cerrado, this, [this] {
      boletin_ = nullptr;
      marcoBoletin_ = nullptr;
    });
  }
  marcoBoletin_->showMaximized();
  mdi_->setActiveSubWindow(marcoBoletin_);
  return boletin_;
}

void frmMain::bloqueaOrdenes(bool bloqueadas) {
  for (QWidget* w : {static_cast<QWidget*>(SSListBar1_), static_cast<QWidget*>(barrasup_),
                     static_cast<QWidget*>(menuBar())})
    w->setEnabled(!bloqueadas);
  // The menus' keys work without the menu bar: the commands themselves wait.
  for (QAction* orden : ordenes_) orden->setEnabled(!bloqueadas);
  if (marcoAsistente_) marcoAsistente_->setEnabled(!bloqueadas);
}

void frmMain::tipo(bool cotizacion) {
  PXVALDOR32* a = muestraAsistente();
  a->muestraPanelTipo();
  if (cotizacion)
    a->fan();
  else
    a->AFI();
}

void frmMain::lanzaHerramienta() {
  // A tool that cannot be started is silent, as every failure of this command; a
  // settings file that cannot be read is told, since no route can be had from it.
  try {
    lanzaWinsuite(programa_, lanzador_, entorno_);
  } catch (const ErrorAjustes& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
  } catch (const std::exception&) {
  }
}

void frmMain::editaFicheros() {
  Dialogos& dialogos = programa_.dialogos();
  dialogos.puntero(Puntero::FlechaReloj);
  if (marcoAsistente_) marcoAsistente_->hide();
  abreSelector(programa_, lanzador_, this);
  if (marcoAsistente_) marcoAsistente_->showMaximized();
  dialogos.puntero(Puntero::Normal);
}

void frmMain::pulsaBarraLista(const QString& clave) {
  try {
    if (clave == QLatin1String("cotiza"))
      tipo(true);
    else if (clave == QLatin1String("afilia"))
      tipo(false);
    else if (clave == QLatin1String("Winsuite"))
      lanzaHerramienta();
    else if (clave == QLatin1String("FICHE"))
      editaFicheros();
    else if (clave == QLatin1String("BOLETIN"))
      muestraBoletin();
    else if (clave == QLatin1String("salir"))
      close();
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
  }
}

void frmMain::pulsaBarraSuperior(const QString& clave) {
  if (clave == QLatin1String("COT"))
    pulsaBarraLista(QStringLiteral("cotiza"));
  else if (clave == QLatin1String("AFIL"))
    pulsaBarraLista(QStringLiteral("afilia"));
  else if (clave == QLatin1String("Salir"))
    pulsaBarraLista(QStringLiteral("salir"));
}

void frmMain::muestraProgreso(int porcentaje, const QString& etiqueta1, const QString& etiqueta2) {
  progreso_->setVisible(porcentaje < 100);
  progreso_->setValue(porcentaje);
  const QString texto = etiqueta2.isEmpty() ? etiqueta1 : etiqueta1 + QStringLiteral(" - ") + etiqueta2;
  statusBar()->showMessage(texto);
  if (asistente_) asistente_->muestraProgreso(porcentaje, texto);
}

void frmMain::terminaProgreso() {
  progreso_->hide();
  statusBar()->showMessage(QStringLiteral("Preparado"));
}

void frmMain::closeEvent(QCloseEvent* evento) {
  // A statement run holds the stores that the exit closes: it is stopped at its next
  // company break, and the window stays until it has.
  if (boletin_ && boletin_->enMarcha()) {
    boletin_->cancela();
    evento->ignore();
    return;
  }
  programa_.termina();
  evento->accept();
}

}  // namespace valdor::formularios
