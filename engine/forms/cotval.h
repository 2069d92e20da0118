// COTVAL on the desktop: the statement run's own modal window. It starts its run once it
// is on screen (a one-shot timer), shows the company and the worker being calculated
// with the percentage, and closes itself at the end.
#pragma once

#include <QDialog>

#include "engine/motor.h"

class QLabel;
class QProgressBar;

namespace valdor::formularios {

class COTVAL : public QDialog {
  Q_OBJECT

 public:
  COTVAL(Programa& programa, valdor::COTIZACION& seleccion, QWidget* padre);

 private:
  void ejecuta();

  Programa& programa_;
  valdor::COTIZACION& seleccion_;
  QLabel* etiqueta1_ = nullptr;
  QLabel* etiqueta2_ = nullptr;
  QProgressBar* progreso_ = nullptr;
};

// The engine as the desktop runs it: the statement run inside its modal window.
class MotorEscritorio : public MotorCalculo {
 public:
  explicit MotorEscritorio(QWidget* padre) : padre_(padre) {}
  void COTVAL(Programa& programa, valdor::COTIZACION& sel) override;

 private:
  QWidget* padre_;
};

}  // namespace valdor::formularios
