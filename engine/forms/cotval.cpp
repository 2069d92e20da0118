#include "engine/forms/cotval.h"

#include <QLabel>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "engine/cotval.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/programa.h"
#include "statement/forms/boletin.h"

namespace valdor::formularios {

COTVAL::COTVAL(Programa& programa, valdor::COTIZACION& seleccion, QWidget* padre)
    : QDialog(padre), programa_(programa), seleccion_(seleccion) {
  setObjectName(QStringLiteral("COTVAL"));
  setWindowTitle(QStringLiteral("Boletín de cotización a la Seguridad Social"));
  setModal(true);
  resize(1024, 720);
  etiqueta1_ = new QLabel(this);
  etiqueta1_->setObjectName(QStringLiteral("Label1"));
  etiqueta2_ = new QLabel(this);
  etiqueta2_->setObjectName(QStringLiteral("Label2"));
  // The progress texts change a few times a second: their height is fixed and their
  // width is the window's, so a new text never lays the statement out again.
  for (QLabel* etiqueta : {etiqueta1_, etiqueta2_}) {
    etiqueta->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    etiqueta->setFixedHeight(etiqueta->fontMetrics().height());
  }
  progreso_ = new QProgressBar(this);
  progreso_->setObjectName(QStringLiteral("ProgressBar1"));
  progreso_->setRange(0, 100);
  cancelar_ = new QPushButton(QStringLiteral("&Cancelar"), this);
  cancelar_->setObjectName(QStringLiteral("Cancelar"));
  cancelar_->setAutoDefault(false);
  connect(cancelar_, &QPushButton::clicked, this, &COTVAL::pideCancelar);
  auto* capa = new QVBoxLayout(this);
  capa->addWidget(etiqueta1_);
  capa->addWidget(etiqueta2_);
  auto* barra = new QHBoxLayout;
  barra->addWidget(progreso_, 1);
  barra->addWidget(cancelar_);
  capa->addLayout(barra);
  vista_ = new VistaBoletin(this);
  capa->addWidget(vista_, 1);

  if (auto* dialogos = dialogosQt(programa_.dialogos()))
    connect(dialogos, &DialogosQt::progresoCambiado, this,
            [this](int porcentaje, const QString& e1, const QString& e2) {
              // Drawn when the dialogs let the screen paint, right after this.
              etiqueta1_->setText(e1);
              etiqueta2_->setText(e2);
              progreso_->setValue(porcentaje);
            });
  // The run starts when the window is on screen, and the window goes when it ends.
  QTimer::singleShot(0, this, [this] { ejecuta(); });
}

void COTVAL::ejecuta() {
  enMarcha_ = true;
  try {
    EntradaDuranteTrabajo entrada(programa_.dialogos());
    MotorCalculo motor;
    motor.trabajadorCalculado = [this](const valdor::COTVAL& calculo) { trabajadorCalculado(calculo); };
    motor.COTVAL(programa_, seleccion_);
  } catch (const TrabajoCancelado&) {
    // The stop stays asked: the caller tells it once the window is gone.
  } catch (const std::exception& e) {
    avisaError(programa_.dialogos(), e);
  }
  enMarcha_ = false;
  if (pendiente_) {
    vista_->muestra(cajasPendientes_, hojaPendiente_);
    pendiente_ = false;
    vista_->repaint();
  }
  accept();
}

void COTVAL::pideCancelar() {
  programa_.pideParada();
  cancelar_->setEnabled(false);
  cancelar_->setText(QStringLiteral("Cancelando..."));
}

void COTVAL::reject() {
  if (enMarcha_) {
    pideCancelar();
    return;
  }
  QDialog::reject();
}

void COTVAL::trabajadorCalculado(const valdor::COTVAL& calculo) {
  if (!reloj_.isValid() || reloj_.elapsed() >= INTERVALO) {
    vista_->muestra(calculo);
    vista_->repaint();
    pendiente_ = false;
    reloj_.start();
  } else {
    cajasPendientes_ = calculo.cajas;
    hojaPendiente_ = hojaTC2(calculo.GRID1);
    pendiente_ = true;
  }
}

void MotorEscritorio::COTVAL(Programa& programa, valdor::COTIZACION& sel) {
  {
    formularios::COTVAL ventana(programa, sel, padre_);
    ventana.exec();
  }
  programa.atiendeParada();
}

}  // namespace valdor::formularios
