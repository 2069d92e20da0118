#include "shell/forms/cabecera.h"
#include "shell/forms/pxvaldor32.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <exception>

#include "shell/forms/config.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

namespace {

// A box of `ancho` characters, wide enough to show them all: figures for the numbers
// of the replaced send, capitals for names and keys.
QLineEdit* caja(const char* nombre, int ancho, QWidget* padre, QChar muestra = QLatin1Char('M')) {
  auto* c = new QLineEdit(padre);
  c->setObjectName(QString::fromLatin1(nombre));
  c->setMaxLength(ancho);
  c->setFixedWidth(c->fontMetrics().horizontalAdvance(QString(ancho, muestra)) + 16);
  return c;
}

// A value the form shows and the user doesn't type: a sunken panel of `ancho` characters.
QLabel* valor(const char* nombre, int ancho, QWidget* padre) {
  auto* l = new QLabel(padre);
  l->setObjectName(QString::fromLatin1(nombre));
  l->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  l->setFixedWidth(l->fontMetrics().horizontalAdvance(QString(ancho, QLatin1Char('0'))) + 12);
  l->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return l;
}

QLabel* rotulo(std::string_view texto, QWidget* padre, const char* nombre = nullptr) {
  auto* l = new QLabel(q(texto), padre);
  if (nombre) l->setObjectName(QString::fromLatin1(nombre));
  return l;
}

// The title shown until "&Aceptar" names the message.
constexpr std::string_view TITULOINICIAL = "   Remisión electrónica de documentos"_cp;

}  // namespace

PXVALDOR32::PXVALDOR32(Programa& programa, Lanzador& lanzador, EntornoWine entorno,
                       const FabricaFormularios& fabrica, QWidget* padre)
    : QWidget(padre), programa_(programa), lanzador_(lanzador), entorno_(std::move(entorno)) {
  setObjectName(QStringLiteral("PXVALDOR32"));
  setWindowTitle(QStringLiteral("Asistente RED"));
  formularios_ = fabrica(programa_, pagina_, this);
  pagina_.alCambiarGuia = [this](const std::string& texto) {
    // The work that follows holds the screen: the new text is painted now.
    Label3_->setText(q(texto));
    Label3_->repaint();
  };
  construye();
  muestraPagina();
}

PXVALDOR32::~PXVALDOR32() { pagina_.alCambiarGuia = nullptr; }

void PXVALDOR32::construye() {
  // Title panel with the close control.
  auto* cabecera = new QFrame(this);
  cabecera->setObjectName(QStringLiteral("cabecera"));
  cabecera->setStyleSheet(QStringLiteral(
      "#cabecera { background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #1f3f6e, stop:1 #5b86bd); }"
      "#SSPanel1 { color: white; font-size: 15pt; font-weight: bold; }"));
  SSPanel1_ = new QLabel(cabecera);
  SSPanel1_->setObjectName(QStringLiteral("SSPanel1"));
  auto* controlcerrar = new QToolButton(cabecera);
  controlcerrar->setObjectName(QStringLiteral("controlcerrar"));
  controlcerrar->setIcon(style()->standardIcon(QStyle::SP_TabCloseButton));
  controlcerrar->setIconSize(QSize(20, 20));
  controlcerrar->setToolTip(QStringLiteral("Cerrar el asistente"));
  controlcerrar->setAutoRaise(true);
  auto* capaCabecera = new QHBoxLayout(cabecera);
  capaCabecera->setContentsMargins(8, 8, 8, 8);
  capaCabecera->addWidget(SSPanel1_, 1);
  capaCabecera->addWidget(controlcerrar, 0, Qt::AlignTop);
  connect(controlcerrar, &QToolButton::clicked, this, &PXVALDOR32::cierra);

  // The modes, and the reference of the replaced send.
  auto* modos = new QFrame(this);
  modos->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  Option2_ = new QButtonGroup(this);
  auto* capaModos = new QVBoxLayout(modos);
  auto* filaModos = new QHBoxLayout;
  filaModos->addWidget(rotulo("Tipo de envío:"_cp, modos));
  int id = 0;
  for (std::string_view texto : {"Proceso &normal"_cp, "&Pruebas"_cp, "&Sustitución"_cp}) {
    auto* opcion = new QRadioButton(q(texto), modos);
    opcion->setObjectName(QStringLiteral("Option2_%1").arg(id));
    Option2_->addButton(opcion, id++);
    filaModos->addSpacing(12);
    filaModos->addWidget(opcion);
  }
  filaModos->addStretch(1);
  capaModos->addLayout(filaModos);

  SSPanel4_ = new QFrame(modos);
  SSPanel4_->setObjectName(QStringLiteral("SSPanel4"));
  SSPanel4_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  auto* capaSustitucion = new QHBoxLayout(SSPanel4_);
  capaSustitucion->addWidget(rotulo("Envío que se sustituye:"_cp, SSPanel4_));
  const QChar cifra = QLatin1Char('0');
  Text3_ = caja("Text3", 2, SSPanel4_, cifra);
  Text4_ = caja("Text4", 2, SSPanel4_, cifra);
  Text5_ = caja("Text5", 1, SSPanel4_);
  Text6_ = caja("Text6", 5, SSPanel4_, cifra);
  Text7_ = caja("Text7", 4, SSPanel4_, cifra);
  const std::pair<std::string_view, QLineEdit*> sustitucion[] = {
      {"Añ&o:"_cp, Text3_}, {"&Mes:", Text4_}, {"S&erie:", Text5_}, {"En&vío:"_cp, Text6_}, {"&Doc:", Text7_}};
  for (const auto& [texto, c] : sustitucion) {
    capaSustitucion->addSpacing(10);
    QLabel* r = rotulo(texto, SSPanel4_);
    r->setBuddy(c);
    capaSustitucion->addWidget(r);
    capaSustitucion->addWidget(c);
  }
  capaSustitucion->addStretch(1);
  capaModos->addWidget(SSPanel4_);
  connect(Option2_, &QButtonGroup::idClicked, this, &PXVALDOR32::pulsaModo);

  // The guidance text.
  auto* guia = new QFrame(this);
  guia->setObjectName(QStringLiteral("guia"));
  guia->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  guia->setStyleSheet(QStringLiteral("#guia { background: #fffbe6; }"));
  auto* icono = new QLabel(guia);
  icono->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
  Label3_ = new QLabel(guia);
  Label3_->setObjectName(QStringLiteral("Label3"));
  Label3_->setWordWrap(true);
  Label3_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  Label3_->setMinimumHeight(Label3_->fontMetrics().lineSpacing() * 5);
  auto* capaGuia = new QHBoxLayout(guia);
  capaGuia->setContentsMargins(10, 10, 10, 10);
  capaGuia->setSpacing(12);
  capaGuia->addWidget(icono, 0, Qt::AlignTop);
  capaGuia->addWidget(Label3_, 1);

  // The type panel: name, extension, moment of preparation and the AFI keys.
  SSPanel2_ = new QFrame(this);
  SSPanel2_->setObjectName(QStringLiteral("SSPanel2"));
  SSPanel2_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  Text8_ = caja("Text8", static_cast<int>(ANCHONOMBREFICHERO), SSPanel2_);
  Text8_->installEventFilter(this);
  Label10_ = valor("Label10", 4, SSPanel2_);
  Label12_ = valor("Label12", 8, SSPanel2_);
  Label13_ = valor("Label13", 4, SSPanel2_);
  Label16_ = rotulo("&Clave:", SSPanel2_, "Label16");
  Label17_ = rotulo("N&ueva clave:", SSPanel2_, "Label17");
  Text10_ = caja("Text10", static_cast<int>(ANCHOCLAVEAFI), SSPanel2_);
  Text11_ = caja("Text11", static_cast<int>(ANCHOCLAVEAFI), SSPanel2_);
  Label16_->setBuddy(Text10_);
  Label17_->setBuddy(Text11_);
  // Enter in a box of the type panel accepts, as "&Aceptar" would; the name rule first.
  for (QLineEdit* c : {Text8_, Text10_, Text11_}) connect(c, &QLineEdit::returnPressed, this, &PXVALDOR32::pulsaIntro);
  auto* rejilla = new QGridLayout(SSPanel2_);
  rejilla->setHorizontalSpacing(10);
  rejilla->setVerticalSpacing(8);
  QLabel* rotuloNombre = rotulo("Nombre del &fichero:", SSPanel2_);
  rotuloNombre->setBuddy(Text8_);
  rejilla->addWidget(rotuloNombre, 0, 0);
  auto* nombre = new QHBoxLayout;
  nombre->addWidget(Text8_);
  nombre->addWidget(rotulo(".", SSPanel2_));
  nombre->addWidget(Label10_);
  nombre->addStretch(1);
  rejilla->addLayout(nombre, 0, 1);
  rejilla->addWidget(rotulo("Fecha y hora de preparación:"_cp, SSPanel2_), 1, 0);
  auto* momento = new QHBoxLayout;
  momento->addWidget(Label12_);
  momento->addWidget(Label13_);
  momento->addStretch(1);
  rejilla->addLayout(momento, 1, 1);
  rejilla->addWidget(Label16_, 2, 0);
  auto* claves = new QHBoxLayout;
  claves->addWidget(Text10_);
  claves->addSpacing(20);
  claves->addWidget(Label17_);
  claves->addSpacing(6);
  claves->addWidget(Text11_);
  claves->addStretch(1);
  rejilla->addLayout(claves, 2, 1);
  rejilla->setColumnStretch(1, 1);

  for (QLineEdit* c : {Text3_, Text4_, Text5_, Text6_, Text7_, Text8_, Text10_, Text11_})
    connect(c, &QLineEdit::textChanged, this, [this] {
      if (!mostrando_) tomaPagina();
    });

  progreso_ = new QProgressBar(this);
  progreso_->setObjectName(QStringLiteral("progreso"));
  progreso_->setRange(0, 100);
  progreso_->hide();

  // The foot: the sender, the configuration and "&Aceptar".
  Label19_ = new QLabel(this);
  Label19_->setObjectName(QStringLiteral("Label19"));
  QFont cursiva = Label19_->font();
  cursiva.setItalic(true);
  Label19_->setFont(cursiva);
  Label22_ = new QLabel(QStringLiteral("<a href=\"config\">") + q("Configuración"_cp) + QStringLiteral("</a>"), this);
  Label22_->setObjectName(QStringLiteral("Label22"));
  Label22_->setCursor(Qt::PointingHandCursor);
  connect(Label22_, &QLabel::linkActivated, this, [this] {
    programa_.dialogos().puntero(Puntero::FlechaReloj);
    muestraConfiguracion();
    programa_.dialogos().puntero(Puntero::Normal);
  });
  Command3_ = new QPushButton(QStringLiteral("&Aceptar"), this);
  Command3_->setObjectName(QStringLiteral("Command3"));
  Command3_->setIcon(style()->standardIcon(QStyle::SP_DialogApplyButton));
  Command3_->setMinimumWidth(110);
  connect(Command3_, &QPushButton::clicked, this, &PXVALDOR32::pulsaAceptar);
  auto* pie = new QHBoxLayout;
  pie->addWidget(Label19_);
  pie->addStretch(1);
  pie->addWidget(Label22_);
  pie->addSpacing(16);
  pie->addWidget(Command3_);

  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(14, 12, 14, 12);
  cuerpo->setSpacing(12);
  cuerpo->addWidget(modos);
  cuerpo->addWidget(guia);
  cuerpo->addWidget(SSPanel2_);
  cuerpo->addWidget(progreso_);
  cuerpo->addStretch(1);
  cuerpo->addLayout(pie);

  colocaForma(this, nullptr, cabecera, cuerpo);

  // Tab goes down the page as it reads: the mode, the replaced send, the name, the keys,
  // "&Aceptar", and the close control last.
  ordenTab({Option2_->button(0), Option2_->button(1), Option2_->button(2), Text3_, Text4_, Text5_, Text6_, Text7_,
            Text8_, Text10_, Text11_, Command3_, controlcerrar});
}

void PXVALDOR32::carga() {
  // A settings file that cannot be read is told here; the wizard stays, and the
  // configuration can give the file a sound record.
  try {
    cargaAsistente(programa_, pagina_, [this] { muestraConfiguracion(); });
  } catch (const ErrorAjustes& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
  }
  muestraPagina();
}

void PXVALDOR32::muestraPanelTipo() {
  pagina_.SSPanel2Visible = true;
  muestraPagina();
}

void PXVALDOR32::fan() {
  tomaPagina();
  pagina_.marcaCotizacion();
  preparaPagina(programa_, pagina_, true);
  muestraPagina();
}

void PXVALDOR32::AFI() {
  tomaPagina();
  pagina_.marcaAfiliacion();
  preparaPagina(programa_, pagina_, false);
  muestraPagina();
}

void PXVALDOR32::muestraPagina() {
  mostrando_ = true;
  SSPanel1_->setText(q(pagina_.SSPanel1.empty() ? TITULOINICIAL : std::string_view(pagina_.SSPanel1)));
  Option2_->button(static_cast<int>(pagina_.modo))->setChecked(true);
  SSPanel4_->setVisible(pagina_.SSPanel4Visible);
  Text3_->setText(q(pagina_.Text3));
  Text4_->setText(q(pagina_.Text4));
  Text5_->setText(q(pagina_.Text5));
  Text6_->setText(q(pagina_.Text6));
  Text7_->setText(q(pagina_.Text7));
  SSPanel2_->setVisible(pagina_.SSPanel2Visible);
  Text8_->setText(q(pagina_.Text8));
  Label10_->setText(q(pagina_.Label10));
  Label12_->setText(q(pagina_.Label12));
  Label13_->setText(q(pagina_.Label13));
  for (QWidget* w : std::initializer_list<QWidget*>{Label16_, Label17_, Text10_, Text11_})
    w->setVisible(pagina_.clavesAFIVisibles);
  Text10_->setText(q(pagina_.Text10));
  Text11_->setText(q(pagina_.Text11));
  Label3_->setText(q(pagina_.Label3));
  Label19_->setText(q(pagina_.Label19));
  mostrando_ = false;
  Command3_->setEnabled(paginaLista(pagina_));
}

void PXVALDOR32::tomaPagina() {
  pagina_.Text3 = aCp1252(Text3_->text());
  pagina_.Text4 = aCp1252(Text4_->text());
  pagina_.Text5 = aCp1252(Text5_->text());
  pagina_.Text6 = aCp1252(Text6_->text());
  pagina_.Text7 = aCp1252(Text7_->text());
  pagina_.Text8 = aCp1252(Text8_->text());
  pagina_.Text10 = aCp1252(Text10_->text());
  pagina_.Text11 = aCp1252(Text11_->text());
  Command3_->setEnabled(paginaLista(pagina_));
}

// On Enter and on leaving the box: a name that is there but short is put in upper case
// and filled with "0" to 8. A name is never rejected for being short.
void PXVALDOR32::aplicaReglaNombre() {
  const std::string nombre = aCp1252(Text8_->text());
  if (nombre.empty() || nombre.size() >= ANCHONOMBREFICHERO) return;
  pagina_.Text8 = reglaNombre(nombre);
  muestraPagina();
}

// Enter once a kind of message is chosen: the name rule, then "&Aceptar" (which tells why
// a name is refused).
void PXVALDOR32::pulsaIntro() {
  aplicaReglaNombre();
  if (pagina_.Option1Cotizacion || pagina_.Option1Afiliacion) pulsaAceptar();
}

bool PXVALDOR32::eventFilter(QObject* objeto, QEvent* evento) {
  if (objeto == Text8_ && evento->type() == QEvent::FocusOut) aplicaReglaNombre();
  return QWidget::eventFilter(objeto, evento);
}

void PXVALDOR32::pulsaModo(int opcion) {
  tomaPagina();
  pagina_.ponModo(static_cast<Modo>(opcion));
  muestraPagina();
  if (pagina_.modo == Modo::Sustitucion) Text3_->setFocus();
}

void PXVALDOR32::muestraConfiguracion() {
  config dialogo(programa_, entorno_, this);
  dialogo.exec();
}

void PXVALDOR32::pulsaAceptar() {
  tomaPagina();
  // A name the exchange folder would not take stops the hand-over before any work, and
  // the box waits for a new one.
  if (const auto rechazo = nombreIntercambioRechazado(pagina_.Text8)) {
    programa_.dialogos().mensaje(tituloNombreNoValido(), *rechazo, Icono::Exclamacion);
    Text8_->setFocus();
    emit trabajoTerminado();
    return;
  }
  // A file of that name already in the folder is replaced only on the user's word.
  if (!reemplazoConsentido(programa_, pagina_)) {
    Text8_->setFocus();
    Text8_->selectAll();
    emit trabajoTerminado();
    return;
  }
  try {
    Command3(programa_, pagina_, *formularios_, lanzador_, entorno_);
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
  }
  muestraPagina();
  progreso_->hide();
  emit trabajoTerminado();
}

void PXVALDOR32::muestraProgreso(int porcentaje, const QString& etiqueta) {
  progreso_->setVisible(porcentaje < 100);
  progreso_->setValue(porcentaje);
  progreso_->setFormat(etiqueta.isEmpty() ? QStringLiteral("%p%") : etiqueta + QStringLiteral("  %p%"));
  progreso_->repaint();
}

void PXVALDOR32::closeEvent(QCloseEvent* evento) {
  emit cerrado();
  QWidget::closeEvent(evento);
}

// Unloads the wizard only; the next command of the main window loads it anew.
void PXVALDOR32::cierra() {
  if (auto* marco = qobject_cast<QMdiSubWindow*>(parentWidget()))
    marco->close();
  else
    close();
}

}  // namespace valdor::formularios
