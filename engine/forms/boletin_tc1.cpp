#include "engine/forms/boletin_tc1.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QStyle>
#include <QTabWidget>
#include <QVBoxLayout>
#include <exception>

#include "engine/cotval.h"
#include "engine/motor.h"
#include "engine/tc1val.h"
#include "shell/forms/cabecera.h"
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

// The margin around the form's body, and twice the room between its rows.
constexpr int MARGEN = 6;

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
  // The form fits the main frame as the program opens it; only a smaller window scrolls.
  auto* desplaza = new QScrollArea(this);
  desplaza->setObjectName(QStringLiteral("desplaza"));
  desplaza->setWidgetResizable(true);
  desplaza->setFrameShape(QFrame::NoFrame);
  auto* contenido = new QWidget(desplaza);
  desplaza->setWidget(contenido);
  auto* capaExterior = new QVBoxLayout(this);
  capaExterior->setContentsMargins(0, 0, 0, 0);
  capaExterior->addWidget(desplaza);

  // A caption of a row, and a caption that names the control after it (its buddy).
  auto rotulo = [contenido](const QString& texto) {
    auto* l = new QLabel(texto, contenido);
    QFont negrita = l->font();
    negrita.setBold(true);
    l->setFont(negrita);
    return l;
  };
  auto nombra = [contenido](const QString& texto, QWidget* control) {
    auto* l = new QLabel(texto, contenido);
    l->setBuddy(control);
    return l;
  };

  // The period and the surcharge on the first row.
  Combo1_ = new QComboBox(contenido);
  Combo1_->setObjectName(QStringLiteral("Combo1"));
  for (int m = 1; m <= 12; ++m) Combo1_->addItem(q(NOMBREMES(m)));
  Combo2_ = new QComboBox(contenido);
  Combo2_->setObjectName(QStringLiteral("Combo2"));
  const int anoActual = programa_.ahora().ano;
  primerAno_ = anoActual - ANOSANTES;
  for (int a = primerAno_; a <= anoActual + ANOSDESPUES; ++a) Combo2_->addItem(QString::number(a));
  auto* recargo = new QWidget(contenido);
  recargo->setObjectName(QStringLiteral("Option1"));
  auto* capaRecargo = new QHBoxLayout(recargo);
  capaRecargo->setContentsMargins(0, 0, 0, 0);
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
  auto* fila1 = new QHBoxLayout;
  fila1->addWidget(rotulo(q("Periodo de liquidación:"_cp)));
  fila1->addWidget(nombra(QStringLiteral("&Mes:"), Combo1_));
  fila1->addWidget(Combo1_);
  fila1->addWidget(nombra(q("Añ&o:"_cp), Combo2_));
  fila1->addWidget(Combo2_);
  fila1->addSpacing(24);
  fila1->addWidget(rotulo(QStringLiteral("Recargo:")));
  fila1->addWidget(recargo);
  fila1->addStretch(1);

  // All the companies of the month or one of them, and the run's commands, on the second.
  auto* empresas = new QWidget(contenido);
  empresas->setObjectName(QStringLiteral("Option3D1"));
  todas_ = new QRadioButton(QStringLiteral("&Todas."), empresas);
  todas_->setObjectName(QStringLiteral("Option3D1_0"));
  una_ = new QRadioButton(QStringLiteral("&Una empresa."), empresas);
  una_->setObjectName(QStringLiteral("Option3D1_1"));
  auto* grupoEmpresas = new QButtonGroup(empresas);
  grupoEmpresas->addButton(todas_, 0);
  grupoEmpresas->addButton(una_, 1);
  todas_->setChecked(true);
  auto* capaEmpresas = new QHBoxLayout(empresas);
  capaEmpresas->setContentsMargins(0, 0, 0, 0);
  capaEmpresas->addWidget(todas_);
  capaEmpresas->addWidget(una_);
  ComboEmpresa_ = new QComboBox(contenido);
  ComboEmpresa_->setObjectName(QStringLiteral("ComboEmpresa"));
  ComboEmpresa_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  ComboEmpresa_->setMinimumContentsLength(30);

  // The commands. Enter on a command presses it; anywhere else it is "Calcular".
  auto boton = [&](const char* nombre, const QString& texto, QStyle::StandardPixmap icono) {
    auto* b = new QPushButton(estilo->standardIcon(icono), texto, contenido);
    b->setObjectName(QString::fromLatin1(nombre));
    b->setAutoDefault(true);
    return b;
  };
  calcular_ = boton("Calcular", QStringLiteral("&Calcular"), QStyle::SP_MediaPlay);
  Command3D8_ = boton("Command3D8", QStringLiteral("Ca&ncelar"), QStyle::SP_DialogCancelButton);
  Command3D8_->setToolTip(QStringLiteral("Detiene el cálculo de todas las empresas en la siguiente (Escape)"));
  auto* fila2 = new QHBoxLayout;
  fila2->addWidget(rotulo(QStringLiteral("Empresas:")));
  fila2->addWidget(empresas);
  fila2->addSpacing(12);
  fila2->addWidget(nombra(QStringLiteral("&Empresa:"), ComboEmpresa_));
  fila2->addWidget(ComboEmpresa_, 1);
  fila2->addSpacing(12);
  fila2->addWidget(calcular_);
  fila2->addWidget(Command3D8_);

  // The printing's commands on the third: the port, and the same statement drawn on a
  // page (seen first, sent to a printer of the system, or kept as a PDF), on plain paper
  // with the form's rules and captions; then "Salir".
  imprimir_ = boton("Imprimir", QStringLiteral("Im&primir"), QStyle::SP_FileDialogDetailedView);
  imprimir_->setToolTip(QStringLiteral("Imprime el boletín en el impreso oficial"));
  vistaPrevia_ = boton("VistaPrevia", QStringLiteral("&Vista previa"), QStyle::SP_FileDialogInfoView);
  vistaPrevia_->setToolTip(QStringLiteral("Muestra el boletín como saldrá en la hoja, y lo imprime desde allí"));
  impresora_ = boton("Impresora", QStringLiteral("Imp&resora..."), QStyle::SP_ComputerIcon);
  impresora_->setToolTip(QStringLiteral("Imprime el boletín en una impresora del sistema"));
  pdf_ = boton("Pdf", QStringLiteral("PD&F..."), QStyle::SP_DialogSaveButton);
  pdf_->setToolTip(QStringLiteral("Guarda el boletín en un fichero PDF"));
  Check4_ = new QCheckBox(QStringLiteral("Enviado por R.E.&D."), contenido);
  Check4_->setObjectName(QStringLiteral("Check4"));
  conImpreso_ = new QCheckBox(QStringLiteral("Papel en &blanco"), contenido);
  conImpreso_->setObjectName(QStringLiteral("ConImpreso"));
  conImpreso_->setToolTip(
      QStringLiteral("La hoja lleva también las rayas y los rótulos del impreso (vista previa, impresora y PDF)"));
  salir_ = boton("Salir", QStringLiteral("Sa&lir"), QStyle::SP_DialogCloseButton);
  salir_->setToolTip(QStringLiteral("Cierra el boletín (Escape)"));
  auto* fila3 = new QHBoxLayout;
  for (QWidget* w : {static_cast<QWidget*>(imprimir_), static_cast<QWidget*>(vistaPrevia_),
                     static_cast<QWidget*>(impresora_), static_cast<QWidget*>(pdf_), static_cast<QWidget*>(Check4_),
                     static_cast<QWidget*>(conImpreso_)})
    fila3->addWidget(w);
  fila3->addStretch(1);
  fila3->addWidget(salir_);

  // The progress of a run and the outcome of a printing; its room is kept, so that the
  // statement does not move when it shows.
  Panel3D3_ = new QLabel(contenido);
  Panel3D3_->setObjectName(QStringLiteral("Panel3D3"));
  Panel3D3_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  Panel3D3_->setTextFormat(Qt::PlainText);
  QSizePolicy politica = Panel3D3_->sizePolicy();
  politica.setRetainSizeWhenHidden(true);
  Panel3D3_->setSizePolicy(politica);
  Panel3D3_->hide();

  // Under them, one page at a time: the statement of the company last calculated, with
  // the note of which run made its figures; the sheet of its first worker; its TC1 lines,
  // as they go into the exchange file.
  Pestanas_ = new QTabWidget(contenido);
  Pestanas_->setObjectName(QStringLiteral("Pestanas"));
  auto* paginaBoletin = new QWidget;
  vista_ = new VistaBoletin(paginaBoletin, VistaBoletin::Disposicion::Compacta);
  vista_->usaDecimal(programa_.separadores().decimal);
  Origen_ = new QLabel(paginaBoletin);
  Origen_->setObjectName(QStringLiteral("Origen"));
  Origen_->setTextFormat(Qt::PlainText);
  Origen_->setWordWrap(true);
  Origen_->hide();
  auto* capaBoletin = new QVBoxLayout(paginaBoletin);
  capaBoletin->setContentsMargins(MARGEN / 2, MARGEN / 2, MARGEN / 2, MARGEN / 2);
  capaBoletin->addWidget(vista_);
  capaBoletin->addWidget(Origen_);
  capaBoletin->addStretch(1);
  Pestanas_->addTab(paginaBoletin, q("Boletín TC&1"_cp));
  auto* paginaHoja = new QWidget;
  auto* capaHoja = new QHBoxLayout(paginaHoja);
  capaHoja->addWidget(vista_->hoja(), 0, Qt::AlignTop);
  capaHoja->addStretch(1);
  Pestanas_->addTab(paginaHoja, QStringLiteral("&Hoja TC2"));
  Pestanas_->setTabToolTip(1, QStringLiteral("La hoja TC2 del primer trabajador de la empresa"));
  vista_->hoja()->show();
  ListaTC1_ = new QListWidget;
  ListaTC1_->setObjectName(QStringLiteral("ListaTC1"));
  ListaTC1_->setFont(letraFija(font()));
  ListaTC1_->setSelectionMode(QAbstractItemView::SingleSelection);
  ListaTC1_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  Pestanas_->addTab(ListaTC1_, QStringLiteral("Re&gistros del fichero"));
  Pestanas_->setTabToolTip(2, QStringLiteral("Las líneas TC1 de la empresa en el fichero de intercambio"));

  // The frame's title bar (or the main window's, when it fills the frame) names the form.
  auto* capa = new QVBoxLayout(contenido);
  capa->setContentsMargins(MARGEN, MARGEN, MARGEN, MARGEN);
  capa->setSpacing(MARGEN / 2);
  capa->addLayout(fila1);
  capa->addLayout(fila2);
  capa->addLayout(fila3);
  capa->addWidget(Panel3D3_);
  capa->addWidget(Pestanas_, 1);

  // Tab goes down the rows, each from left to right, and then to the pages.
  ordenTab({Combo1_, Combo2_, Option1_[0], Option1_[1], Option1_[2], todas_, una_, ComboEmpresa_, calcular_,
            Command3D8_, imprimir_, vistaPrevia_, impresora_, pdf_, Check4_, conImpreso_, salir_, Pestanas_});

  connect(Combo1_, &QComboBox::currentIndexChanged, this, [this] { cargaEmpresas(); });
  connect(Combo2_, &QComboBox::currentIndexChanged, this, [this] { cargaEmpresas(); });
  connect(una_, &QRadioButton::toggled, this, [this] { cargaEmpresas(); });
  connect(calcular_, &QPushButton::clicked, this, &TC1VAL::calcula);
  connect(Command3D8_, &QPushButton::clicked, this, &TC1VAL::cancela);
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

void TC1VAL::avisaFallo(const QString& fallo) {
  if (!fallo.isEmpty()) programa_.dialogos().mensaje("ERROR DE IMPRESION", aCp1252(fallo), Icono::Critico);
}

void TC1VAL::cuentaResultado(const QString& hecho, const QString& fallo) {
  avisaFallo(fallo);
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
  avisaFallo(fallo);
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

void TC1VAL::keyPressEvent(QKeyEvent* evento) {
  switch (evento->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // A command with the focus takes Enter itself (autoDefault): here it reached no
      // command, and it is the form's default one.
      calcular_->click();
      return;
    case Qt::Key_Escape:
      // While a run goes, "Cancelar" (when it can stop it); otherwise "Salir".
      if (enMarcha_)
        Command3D8_->click();
      else
        sal();
      return;
    default:
      QWidget::keyPressEvent(evento);
  }
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
