// The sample office: an invented labour office with its master stores, one month of
// payroll, the work stores, the year's rate file and the exchange settings, so that a
// machine without the payroll product has something to run every exchange on. With a
// number of companies and workers it writes a large generated office for benchmarks.
#pragma once

#include "stores/error.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "stores/catalogo.h"

namespace valdor {

struct OpcionesMuestra {
  int mes = 0;  // 1 to 12
  int ano = 0;  // 1901 to 2100
  // Both 0: the hand-made office. Both above 0: a generated office of `empresas`
  // companies of `trabajadores` workers each.
  int empresas = 0;
  int trabajadores = 0;
};

struct ResumenMuestra {
  int empresas = 0;      // companies written to the company table
  int trabajadores = 0;  // payroll rows of the month
  std::vector<std::filesystem::path> ficheros;  // every file written, in order
};

// A sample office that cannot be written: a file already there, wrong options, a
// folder or file that cannot be made. The message is Windows-1252 text naming the file.
class ErrorMuestra : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// Writes the sample office of month `mes` of year `ano`: into the program folder the six
// master stores and the month store; into the work folder the pending-affiliation,
// illness, training, document-type and bank-account stores, the year's rate file, the
// settings file "VALDOR.MDB" and the sender's name. The folders are made when missing.
//
// A real office is never overwritten: when any of these files already stands in its
// folder (under any case of its name), nothing is written and ErrorMuestra names it.
// On a failure part-way (a full disk), the files made by this call are removed again,
// so the folders are left as they were, and the error (ErrorAlmacen or ErrorMuestra)
// says what happened.
ResumenMuestra escribeOficinaMuestra(const Carpetas& carpetas, const OpcionesMuestra& opciones);

}  // namespace valdor
