// The company list of a month: the companies that have a calculated payroll in the
// month store, in name order, with their number of workers.
#pragma once

#include <string>
#include <vector>

#include "stores/catalogo.h"

namespace valdor {

struct EmpresaDelMes {
  std::string BNOMBRE;  // the company's name as the payroll wrote it
  std::string BSSE;     // the company code
  int trabajadores = 0; // CuentaDeBMATRI
};

// Sets MESPERIODO and ANOPERIODO, creates the month store when it is missing (so an
// unknown month gets an empty store), opens it, reads the grouped list of the
// companies whose rows are not marked "N" in BCONT, and closes the store again.
// A month store that fails to open, or a failing query, gives an empty list.
std::vector<EmpresaDelMes> empresasDelMes(Almacenes& almacenes, int mes, int ano);

}  // namespace valdor
