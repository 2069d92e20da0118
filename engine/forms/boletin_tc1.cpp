#include "engine/forms/boletin_tc1.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>
#include <exception>

#include "engine/cotval.h"
#include "engine/motor.h"
#include "engine/tc1val.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/forms/texto_qt.h"
#include "shell/ajustes.h"
#include "shell/asistente.h"
#include "shell/momento.h"
#include "shell/programa.h"
#include "statement/forms/boletin.h"
#include "statement/forms/pagina_qt.h"
#include "statement/impresion.h"
#include "statement/pagina.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor::formularios {

namespace {

// The years of Combo2: ten before the program's date and one after.
constexpr int ANOSANTES = 10;
constexpr int ANOSDESPUES = 1;

// The TC1 lines of the exchange file are 70 characters; the list shows them whole.
constexpr int ANCHOLINEA = 70;
constexpr int FILASLISTA = 7;
// The margin on either side of the form's body.
constexpr int MARGEN = 9;

// The TC1 lines of a company: entries 1 to 18 from its statement, 19 the refund account.
constexpr std::size_t ULTIMALINEA = 19;

// The non-blank lines of entries 1 to 19, in their order.
std::vector<std::string> lineasTC1(const Globales& g) {
  std::vector<std::string> lineas;
  for (std::size_t i = 1; i <= ULTIMALINEA; ++i)
    if (!recorta(g.LINEASTC1[i]).empty()) lineas.push_back(g.LINEASTC1[i]);
  return lineas;
}

QFont letraFija(const QFont& base) {
  QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  f.setPointSizeF(base.pointSizeF());
  return f;
}

}  // namespace

TC1VAL::TC1VAL(Programa& programa, QWidget* padre) : QWidget(padre), programa_(programa) {
  setObjectName(QStringLiteral("TC1VAL"));
  setWindowTitle(q("Boletín de cotización a la Seguridad Social"_cp));
  construye();

  // The month before the program's date, as the selection of a file proposes it.
  int mes = 0, ano = 0;
  mesAnterior(programa_.ahora(), mes, ano);
  Combo1_->setCurrentIndex(mes - 1);
  Combo2_->setCurrentIndex(ano - primerAno_);
  actualizaControles();
}

void TC1VAL::construye() {
  QStyle* estilo = style();
  // Everything scrolls together in a small frame; in a big one the line list takes the
  // room left under the statement.
  auto* desplaza = new QScrollArea(this);
  desplaza->setObjectName(QStringLiteral("desplaza"));
  desplaza->setWidgetResizable(true);
  desplaza->setFrameShape(QFrame::NoFrame);
  auto* contenido = new QWidget(desplaza);
  desplaza->setWidget(contenido);
  auto* capaExterior = new QVBoxLayout(this);
  capaExterior->setContentsMargins(0, 0, 0, 0);
  capaExterior->addWidget(desplaza);

  auto* titulo = new QLabel(QStringLiteral("   ") + windowTitle(), contenido);
  titulo->setObjectName(QStringLiteral("titulo"));
  titulo->setStyleSheet(QStringLiteral(
      "#titulo { color: white; font-size: 13pt; font-weight: bold; padding: 8px;"
      " background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #1f3f6e, stop:1 #5b86bd); }"));

  // The period.
  auto* periodo = new QGroupBox(q("Periodo de liquidación"_cp), contenido);
  Combo1_ = new QComboBox(periodo);
  Combo1_->setObjectName(QStringLiteral("Combo1"));
  for (int m = 1; m <= 12; ++m) Combo1_->addItem(q(NOMBREMES(m)));
  Combo2_ = new QComboBox(periodo);
  Combo2_->setObjectName(QStringLiteral("Combo2"));
  const int anoActual = programa_.ahora().ano;
  primerAno_ = anoActual - ANOSANTES;
  for (int a = primerAno_; a <= anoActual + ANOSDESPUES; ++a) Combo2_->addItem(QString::number(a));
  auto* capaPeriodo = new QHBoxLayout(periodo);
  capaPeriodo->addWidget(new QLabel(QStringLiteral("Mes:"), periodo));
  capaPeriodo->addWidget(Combo1_);
  capaPeriodo->addSpacing(12);
  capaPeriodo->addWidget(new QLabel(q("Año:"_cp), periodo));
  capaPeriodo->addWidget(Combo2_);

  // The surcharge.
  auto* recargo = new QGroupBox(QStringLiteral("Recargo"), contenido);
  recargo->setObjectName(QStringLiteral("Option1"));
  auto* capaRecargo = new QVBoxLayout(recargo);
  capaRecargo->setSpacing(2);
  auto* grupoRecargo = new QButtonGroup(recargo);
  const QString textosRecargo[] = {QStringLiteral("&Sin recargo"), QStringLiteral("&5% Recargo"),
                                   QStringLiteral("&20% Recargo")};
  for (int i = 0; i < 3; ++i) {
    auto* b = new QRadioButton(textosRecargo[i], recargo);
    b->setObjectName(QStringLiteral("Option1_%1").arg(i));
    grupoRecargo->addButton(b, i);
    capaRecargo->addWidget(b);
    Option1_[static_cast<std::size_t>(i)] = b;
  }
  Option1_[0]->setChecked(true);

  // All the companies of the month, or one of them.
  auto* empresas = new QGroupBox(QStringLiteral("Empresas"), contenido);
  empresas->setObjectName(QStringLiteral("Option3D1"));
  todas_ = new QRadioButton(QStringLiteral("&Todas."), empresas);
  todas_->setObjectName(QStringLiteral("Option3D1_0"));
  una_ = new QRadioButton(QStringLiteral("&Una empresa."), empresas);
  una_->setObjectName(QStringLiteral("Option3D1_1"));
  auto* grupoEmpresas = new QButtonGroup(empresas);
  grupoEmpresas->addButton(todas_, 0);
  grupoEmpresas->addButton(una_, 1);
  todas_->setChecked(true);
  ComboEmpresa_ = new QComboBox(empresas);
  ComboEmpresa_->setObjectName(QStringLiteral("ComboEmpresa"));
  ComboEmpresa_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  ComboEmpresa_->setMinimumContentsLength(30);
  auto* capaEmpresas = new QGridLayout(empresas);
  capaEmpresas->setVerticalSpacing(2);
  capaEmpresas->addWidget(todas_, 0, 0);
  capaEmpresas->addWidget(una_, 1, 0);
  capaEmpresas->addWidget(ComboEmpresa_, 1, 1);
  capaEmpresas->setColumnStretch(1, 1);

  auto* elecciones = new QHBoxLayout;
  elecciones->addWidget(periodo, 0, Qt::AlignTop);
  elecciones->addWidget(recargo, 0, Qt::AlignTop);
  elecciones->addWidget(empresas, 1, Qt::AlignTop);

  // The commands.
  auto boton = [&](const char* nombre, const QString& texto, QStyle::StandardPixmap icono) {
    auto* b = new QPushButton(estilo->standardIcon(icono), texto, contenido);
    b->setObjectName(QString::fromLatin1(nombre));
    return b;
  };
  calcular_ = boton("Calcular", QStringLiteral("Calcular"), QStyle::SP_MediaPlay);
  Command3D8_ = boton("Command3D8", QStringLiteral("Cancelar"), QStyle::SP_DialogCancelButton);
  tc2_ = boton("TC2", QStringLiteral("TC2"), QStyle::SP_FileDialogContentsView);
  tc2_->setCheckable(true);
  tc2_->setToolTip(QStringLiteral("Muestra u oculta la hoja TC2 del primer trabajador de la empresa"));
  imprimir_ = boton("Imprimir", QStringLiteral("Imprimir"), QStyle::SP_FileDialogDetailedView);
  imprimir_->setToolTip(QStringLiteral("Imprime el boletín en el impreso oficial"));
  Check4_ = new QCheckBox(QStringLiteral("Enviado por R.E.D."), contenido);
  Check4_->setObjectName(QStringLiteral("Check4"));
  // The same statement drawn on a page: seen first, sent to a printer of the system, or
  // kept as a PDF; on plain paper with the form's rules and captions.
  vistaPrevia_ = boton("VistaPrevia", QStringLiteral("&Vista previa"), QStyle::SP_FileDialogInfoView);
  vistaPrevia_->setToolTip(QStringLiteral("Muestra el boletín como saldrá en la hoja, y lo imprime desde allí"));
  impresora_ = boton("Impresora", QStringLiteral("Im&presora..."), QStyle::SP_ComputerIcon);
  impresora_->setToolTip(QStringLiteral("Imprime el boletín en una impresora del sistema"));
  pdf_ = boton("Pdf", QStringLiteral("P&DF..."), QStyle::SP_DialogSaveButton);
  pdf_->setToolTip(QStringLiteral("Guarda el boletín en un fichero PDF"));
  conImpreso_ = new QCheckBox(QStringLiteral("Papel en &blanco"), contenido);
  conImpreso_->setObjectName(QStringLiteral("ConImpreso"));
  conImpreso_->setToolTip(
      QStringLiteral("La hoja lleva también las rayas y los rótulos del impreso (vista previa, impresora y PDF)"));
  salir_ = boton("Salir", QStringLiteral("Salir"), QStyle::SP_DialogCloseButton);
  // The run's commands on one row, the printing's on the next, so that both fit a
  // narrow window.
  auto* ordenes = new QVBoxLayout;
  auto* calculo = new QHBoxLayout;
  calculo->addWidget(calcular_);
  calculo->addWidget(Command3D8_);
  calculo->addWidget(tc2_);
  calculo->addStretch(1);
  calculo->addWidget(salir_);
  auto* impresion = new QHBoxLayout;
  impresion->addWidget(imprimir_);
  impresion->addWidget(vistaPrevia_);
  impresion->addWidget(impresora_);
  impresion->addWidget(pdf_);
  impresion->addWidget(Check4_);
  impresion->addWidget(conImpreso_);
  impresion->addStretch(1);
  ordenes->addLayout(calculo);
  ordenes->addLayout(impresion);

  // The progress of a run.
  Panel3D3_ = new QLabel(contenido);
  Panel3D3_->setObjectName(QStringLiteral("Panel3D3"));
  Panel3D3_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  Panel3D3_->setTextFormat(Qt::PlainText);
  Panel3D3_->hide();

  // Which run made the figures on screen, and why the other run can give others.
  Origen_ = new QLabel(contenido);
  Origen_->setObjectName(QStringLiteral("Origen"));
  Origen_->setTextFormat(Qt::PlainText);
  Origen_->setWordWrap(true);
  Origen_->hide();

  // The statement of the company last calculated; the worker's sheet shows on demand.
  vista_ = new VistaBoletin(contenido);
  vista_->usaDecimal(programa_.separadores().decimal);
  vista_->muestraHoja(false);

  // Its TC1 lines, as they go into the exchange file.
  ListaTC1_ = new QListWidget(contenido);
  ListaTC1_->setObjectName(QStringLiteral("ListaTC1"));
  ListaTC1_->setFont(letraFija(font()));
  ListaTC1_->setSelectionMode(QAbstractItemView::SingleSelection);
  ListaTC1_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  ListaTC1_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  {
    const QFontMetrics m(ListaTC1_->font());
    ListaTC1_->setMinimumWidth(m.horizontalAdvance(QString(ANCHOLINEA + 2, QLatin1Char('0'))) +
                               ListaTC1_->verticalScrollBar()->sizeHint().width());
    ListaTC1_->setMinimumHeight(m.lineSpacing() * FILASLISTA + 2 * ListaTC1_->frameWidth() + 4);
  }
  auto* tituloLista = new QLabel(QStringLiteral("Líneas TC1 del fichero de intercambio"), contenido);
  tituloLista->setBuddy(ListaTC1_);

  auto* capa = new QVBoxLayout(contenido);
  capa->setContentsMargins(0, 0, 0, 6);
  auto* cuerpo = new QVBoxLayout;
  cuerpo->setContentsMargins(MARGEN, 0, MARGEN, 0);
  cuerpo->addLayout(elecciones);
  cuerpo->addLayout(ordenes);
  cuerpo->addWidget(Panel3D3_);
  cuerpo->addWidget(Origen_);
  cuerpo->addWidget(vista_);
  cuerpo->addWidget(tituloLista);
  cuerpo->addWidget(ListaTC1_, 1);
  capa->addWidget(titulo);
  capa->addLayout(cuerpo, 1);

  connect(Combo1_, &QComboBox::currentIndexChanged, this, [this] { cargaEmpresas(); });
  connect(Combo2_, &QComboBox::currentIndexChanged, this, [this] { cargaEmpresas(); });
  connect(una_, &QRadioButton::toggled, this, [this] { cargaEmpresas(); });
  connect(calcular_, &QPushButton::clicked, this, &TC1VAL::calcula);
  connect(Command3D8_, &QPushButton::clicked, this, &TC1VAL::cancela);
  connect(tc2_, &QPushButton::toggled, this, [this](bool visible) { vista_->muestraHoja(visible); });
  connect(imprimir_, &QPushButton::clicked, this, &TC1VAL::imprime);
  connect(vistaPrevia_, &QPushButton::clicked, this, &TC1VAL::vistaPrevia);
  connect(impresora_, &QPushButton::clicked, this, &TC1VAL::imprimeEnImpresora);
  connect(pdf_, &QPushButton::clicked, this, &TC1VAL::guardaPdf);
  connect(salir_, &QPushButton::clicked, this, &TC1VAL::sal);
}

int TC1VAL::mesElegido() const { return Combo1_->currentIndex() + 1; }
int TC1VAL::anoElegido() const { return primerAno_ + Combo2_->currentIndex(); }

void TC1VAL::cargaEmpresas() {
  // Only "&Una empresa." needs the list; reading it opens the month's store.
  if (!una_->isChecked() || Combo1_->currentIndex() < 0 || Combo2_->currentIndex() < 0) {
    actualizaControles();
    return;
  }
  empresas_ = empresasDelMes(programa_.almacenes, mesElegido(), anoElegido());
  const QSignalBlocker bloqueo(ComboEmpresa_);
  ComboEmpresa_->clear();
  for (const EmpresaDelMes& e : empresas_) ComboEmpresa_->addItem(q(e.BSSE + "  " + e.BNOMBRE));
  actualizaControles();
}

void TC1VAL::actualizaControles() {
  const bool libre = !enMarcha_;
  for (QWidget* w : {static_cast<QWidget*>(Combo1_), static_cast<QWidget*>(Combo2_),
                     static_cast<QWidget*>(todas_), static_cast<QWidget*>(una_)})
    w->setEnabled(libre);
  for (QRadioButton* b : Option1_) b->setEnabled(libre);
  ComboEmpresa_->setEnabled(libre && una_->isChecked());
  calcular_->setEnabled(libre && (todas_->isChecked() || ComboEmpresa_->count() > 0));
  salir_->setEnabled(libre);
  for (QPushButton* b : {imprimir_, vistaPrevia_, impresora_, pdf_}) b->setEnabled(libre && hayBoletin_);
  Command3D8_->setEnabled(enMarcha_ && todas_->isChecked() && !cancelado_);
}

void TC1VAL::cancela() {
  if (!enMarcha_) return;
  cancelado_ = true;
  Panel3D3_->hide();
  actualizaControles();
}

void TC1VAL::calcula() {
  if (enMarcha_) return;
  const bool todas = todas_->isChecked();
  const int fila = ComboEmpresa_->currentIndex();
  if (!todas && (fila < 0 || static_cast<std::size_t>(fila) >= empresas_.size())) return;

  EjecucionTC1 e;
  e.mes = mesElegido();
  e.ano = anoElegido();
  e.empresa = todas ? std::string() : empresas_[static_cast<std::size_t>(fila)].BSSE;
  for (int i = 0; i < 3; ++i)
    if (Option1_[static_cast<std::size_t>(i)]->isChecked()) e.Option1 = i;
  e.empresaCalculada = [this](const valdor::COTVAL& calculo) { empresaCalculada(calculo); };
  e.cancelado = [this] { return cancelado_; };

  enMarcha_ = true;
  cancelado_ = false;
  pendiente_ = false;
  reloj_.invalidate();
  Panel3D3_->clear();
  Panel3D3_->show();
  actualizaControles();
  emit ejecucion(true);
  Dialogos& dialogos = programa_.dialogos();
  dialogos.puntero(Puntero::FlechaReloj);
  try {
    ejecutaTC1(programa_, e);
  } catch (const std::exception& error) {
    avisaError(dialogos, error);
  }
  dibujaPendiente();
  if (hayBoletin_) {
    Origen_->setText(q(textoOrigenTC1(todas)));
    Origen_->show();
  }
  dialogos.puntero(Puntero::Normal);
  enMarcha_ = false;
  Panel3D3_->hide();
  actualizaControles();
  emit ejecucion(false);
}

void TC1VAL::empresaCalculada(const valdor::COTVAL& calculo) {
  cajasPendientes_ = calculo.cajas;
  hojaPendiente_ = hojaTC2(calculo.GRID1);
  lineasPendientes_ = lineasTC1(programa_.g);
  nombrePendiente_ = recorta(calculo.boletin.BOLNOMBRE.texto());
  boletin_ = calculo.boletin;
  grid_ = calculo.GRID1;
  hayBoletin_ = true;
  pendiente_ = true;
  if (!reloj_.isValid() || reloj_.elapsed() >= INTERVALO) {
    dibujaPendiente();
    reloj_.start();
  }
  // The user's clicks are taken here: "Cancelar" is the one command left enabled.
  QCoreApplication::processEvents();
}

void TC1VAL::dibujaPendiente() {
  if (!pendiente_) return;
  pendiente_ = false;
  vista_->muestra(cajasPendientes_, hojaPendiente_);
  ListaTC1_->clear();
  for (const std::string& linea : lineasPendientes_) ListaTC1_->addItem(q(linea));
  if (!cancelado_) Panel3D3_->setText(q(textoCalculandoTC1(nombrePendiente_)));
}

void TC1VAL::imprime() {
  if (enMarcha_ || !hayBoletin_) return;
  REGINTERCAMBIO registro = registroEnBlanco();
  std::filesystem::path puerto;
  try {
    // A settings file that is no settings record, or a port the rule refuses
    // (VALDOR_IMPRESORA): told, and nothing printed.
    FicheroAjustes(programa_.carpetas().trabajo).lee(registro);
    puerto = rutaPuerto(nombrePuerto(programa_.g.PUERTOIMPRESORA), programa_.carpetas().trabajo);
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
    return;
  }
  const bool impreso =
      IMPRIMEBOLETIN(boletin_, grid_, leerred(registro, Check4_->isChecked()), puerto, programa_.dialogos());
  // The outcome stays on the form either way: the clerk sees whether the statement went.
  const QString donde = QString::fromStdString(puerto.string());
  Panel3D3_->setText(impreso ? QStringLiteral("Boletín enviado a %1.").arg(donde)
                             : QStringLiteral("El boletín no se ha impreso: no se ha podido enviar a %1.").arg(donde));
  Panel3D3_->show();
}

std::optional<PaginaBoletin> TC1VAL::pagina() {
  Desplazamiento desplazamiento;
  const std::string& texto = programa_.g.DESPLAZAMIENTOIMPRESO;
  if (!texto.empty()) {
    const auto leido = leeDesplazamiento(texto);
    if (!leido) {
      programa_.dialogos().mensaje(tituloValdor(), desplazamientoRechazado("VALDOR_DESPLAZAMIENTO", texto),
                                   Icono::Critico);
      return std::nullopt;
    }
    desplazamiento = *leido;
  }
  REGINTERCAMBIO registro = registroEnBlanco();
  try {
    FicheroAjustes(programa_.carpetas().trabajo).lee(registro);
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
    return std::nullopt;
  }
  const auto lineas = lineasBoletin(boletin_, grid_, leerred(registro, Check4_->isChecked()));
  return paginaBoletin(lineas, conImpreso_->isChecked(), desplazamiento);
}

void TC1VAL::cuentaResultado(const QString& hecho, const QString& fallo) {
  if (!fallo.isEmpty()) programa_.dialogos().mensaje("ERROR DE IMPRESION", aCp1252(fallo), Icono::Critico);
  Panel3D3_->setText(fallo.isEmpty() ? hecho : fallo);
  Panel3D3_->show();
}

void TC1VAL::vistaPrevia() {
  if (enMarcha_ || !hayBoletin_) return;
  const auto p = pagina();
  if (!p) return;
  QPrinter impresora(QPrinter::HighResolution);
  preparaImpresora(impresora);
  QPrintPreviewDialog dialogo(&impresora, this);
  dialogo.setObjectName(QStringLiteral("VistaPreviaBoletin"));
  dialogo.setWindowTitle(QStringLiteral("Vista previa del boletín"));
  dialogo.resize(1000, 720);
  QString fallo;
  connect(&dialogo, &QPrintPreviewDialog::paintRequested, this,
          [&](QPrinter* destino) { fallo = imprimePagina(*destino, *p); });
  dialogo.exec();
  if (!fallo.isEmpty()) programa_.dialogos().mensaje("ERROR DE IMPRESION", aCp1252(fallo), Icono::Critico);
}

void TC1VAL::imprimeEnImpresora() {
  if (enMarcha_ || !hayBoletin_) return;
  const auto p = pagina();
  if (!p) return;
  QPrinter impresora(QPrinter::HighResolution);
  preparaImpresora(impresora);
  QPrintDialog dialogo(&impresora, this);
  dialogo.setWindowTitle(QStringLiteral("Imprimir el boletín"));
  if (dialogo.exec() != QDialog::Accepted) return;
  cuentaResultado(QStringLiteral("Boletín enviado a la impresora «%1».").arg(impresora.printerName()),
                  imprimePagina(impresora, *p));
}

void TC1VAL::guardaPdf() {
  if (enMarcha_ || !hayBoletin_) return;
  const QString nombre = QFileDialog::getSaveFileName(this, QStringLiteral("Guardar el boletín en PDF"),
                                                      QStringLiteral("boletin.pdf"), QStringLiteral("PDF (*.pdf)"));
  if (nombre.isEmpty()) return;
  guardaPdfEn(nombre);
}

void TC1VAL::guardaPdfEn(const QString& nombre) {
  if (enMarcha_ || !hayBoletin_) return;
  const auto p = pagina();
  if (!p) return;
  try {
    escribePdf(std::filesystem::path(nombre.toStdString()), *p);
    cuentaResultado(QStringLiteral("Boletín guardado en el PDF %1.").arg(nombre), {});
  } catch (const std::exception& e) {
    cuentaResultado({}, aQString(e.what()));
  }
}

void TC1VAL::sal() {
  if (auto* marco = qobject_cast<QMdiSubWindow*>(parentWidget()))
    marco->close();
  else
    close();
}

void TC1VAL::resizeEvent(QResizeEvent* evento) {
  // The statement's right-hand blocks go under it when the window is too narrow for both
  // columns, so that nothing is cut on the right.
  vista_->apila(width() < vista_->anchoEnDosColumnas() + 2 * MARGEN + style()->pixelMetric(QStyle::PM_ScrollBarExtent));
  QWidget::resizeEvent(evento);
}

void TC1VAL::closeEvent(QCloseEvent* evento) {
  // The run holds the stores and this form's state: the form stays until it ends.
  if (enMarcha_) {
    evento->ignore();
    return;
  }
  emit cerrado();
  QWidget::closeEvent(evento);
}

}  // namespace valdor::formularios
