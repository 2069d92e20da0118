// COTVAL on the desktop: the statement run's own modal window. It starts its run once it
// is on screen (a one-shot timer), shows "empresa n de N" with the company and the worker
// being calculated and the percentage and, under them, the statement of the worker just
// calculated (the VistaBoletin "VistaBoletin"), and closes itself at the end. Its
// "Cancelar" (also Escape and the window's close) asks the run to stop.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "statement/estado.h"
#include "engine/motor.h"
#include "statement/hojatc2.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace valdor::formularios {

class VistaBoletin;

class COTVAL : public QDialog {
  Q_OBJECT

 public:
  COTVAL(Programa& programa, valdor::COTIZACION& seleccion, QWidget* padre);

  // During the run, a stop of the run; afterwards, the window's close.
  void reject() override;

 private:
  void ejecuta();
  void pideCancelar();
  // A month may have tens of thousands of workers: a statement is drawn at most every
  // INTERVALO milliseconds, and the one not drawn is kept so that the last worker's
  // statement is the one on screen at the end.
  void trabajadorCalculado(const valdor::COTVAL& calculo);
  static constexpr qint64 INTERVALO = 250;

  Programa& programa_;
  valdor::COTIZACION& seleccion_;
  QLabel* etiqueta1_ = nullptr;
  QLabel* etiqueta2_ = nullptr;
  QProgressBar* progreso_ = nullptr;
  QPushButton* cancelar_ = nullptr;
  VistaBoletin* vista_ = nullptr;
  bool enMarcha_ = false;
  QElapsedTimer reloj_;
  bool pendiente_ = false;  // a worker calculated since the last drawing
  CajasBoletin cajasPendientes_;
  HojaTC2 hojaPendiente_;
};

// The engine as the desktop runs it: the statement run inside its modal window. A run
// stopped by its "Cancelar" throws TrabajoCancelado once the window is gone.
class MotorEscritorio : public MotorCalculo {
 public:
  explicit MotorEscritorio(QWidget* padre) : padre_(padre) {}
  void COTVAL(Programa& programa, valdor::COTIZACION& sel) override;

 private:
  QWidget* padre_;
};

}  // namespace valdor::formularios
