// The contribution engine behind the FAN writer: the statement run COTVAL over the
// marked companies, with the stores it reads opened around it.
#pragma once

#include <functional>

#include "fan/comando.h"

namespace valdor {

class COTVAL;

class MotorCalculo : public MotorCotizacion {
 public:
  // Told after each worker's statement (see COTVAL::trabajadorCalculado).
  std::function<void(const valdor::COTVAL&)> trabajadorCalculado;

  // The period from the selection, the rates of the year (for the training-hour prices),
  // the month, sick-day and training stores opened, CALCULAEMPRESAS, the stores closed.
  void COTVAL(Programa& programa, COTIZACION& sel) override;
  // The batch TC1 run arrives with its own work; until then the TC1 lines stay as they are.
  void TC1VAL(Programa&, COTIZACION&, const std::string&) override {}
};

// Prepares a run of the per-worker statement for the period of the selection.
void preparaCOTVAL(Programa& programa, const COTIZACION& sel, valdor::COTVAL& calculo);

}  // namespace valdor
