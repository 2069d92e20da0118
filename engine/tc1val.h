// TC1VAL, the per-company twin of the per-worker run: every payroll row of a company in
// GRID1 at once, the company's statement (TC1) derived over all of them, and the
// statement turned into the TC1 lines of the FAN file (MONTALINEASTC1). It runs for one
// company while the FAN file is written, or for every company of the month.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "engine/cotval.h"
#include "statement/estado.h"

namespace valdor {

class Almacenes;
class Liquidacion;
class Programa;
struct PaginaIntercambio;

// The text the wizard shows while a company's TC1 is worked out.
std::string textoCalculandoTC1(std::string_view nombreEmpresa);
// The information box at the end of the all-companies run over `empresas` companies:
// what was calculated, and that nothing was printed.
std::string textoFinTC1(std::size_t empresas);

// The six employer fields of the statement that MONTALINEASTC1 puts back as loaded.
struct EmpleadorBoletin {
  std::string BOLNOMBRE, BOLDOMICILIO, BOLLOCALIDAD, BOLENTIDAD, BOLPROV, BOLNIF;
};
EmpleadorBoletin empleadorDe(const BOLETIN& b);

// MONTALINEASTC1: entries 1 to 18 of LINEASTC1 from the statement, each only when its
// figure reads other than 0 (the others are left as they are). Rates are cut at
// `sepDecimal`, the machine's decimal separator, into their whole and decimal parts.
void MONTALINEASTC1(BOLETIN& b, const EmpleadorBoletin& empleador, char sepDecimal,
                    std::array<std::string, 26>& LINEASTC1);

// Entry 19, the "DBA " line of the company's bank account for a refund, from CUENTASTAB
// and the employer; std::nullopt when the company has no account row.
std::optional<std::string> lineaDBA(Almacenes& almacenes, std::string_view empresa);
// The document type of the DBA line from the employer's tax identifier A8.
std::string tipoDocumentoDBA(std::string_view A8);

class TC1VAL {
 public:
  // `calculo` in one of the two TC1 modes, `liquidacion` the statement over its state.
  TC1VAL(COTVAL& calculo, Liquidacion& liquidacion, Programa& programa);

  bool devEnCta = false;  // "Dev. en Cta.": entry 19 is built
  bool cancelado = false; // "Cancelar": looked at only at a company break
  // Outside a FAN file each company's TC1 lines start empty (the FAN writer clears them
  // itself before each company).
  bool limpiaLineas = false;
  // Where the progress text goes (the wizard's guidance); may be absent.
  PaginaIntercambio* pagina = nullptr;
  // Told at each company break of the all-companies run, before the cancel flag is
  // looked at (the screen takes the user's clicks there), and after the last company,
  // before the closing message.
  std::function<void()> enCadaEmpresa;

  // The employer loaded, the progress text shown; with `unaEmpresa` the one-company run.
  void CARGAEMPRESA(std::string_view empresa, bool unaEmpresa);
  // The one-company run: the company's rows from its index, the statement, the TC1 lines.
  void unaEmpresa(std::string_view empresa);
  // The all-companies run, company break by company break, with its closing message and
  // one more statement of the last company.
  void todasLasEmpresas();
  // The rows of the working table filled so far.
  int filas() const { return filas_; }

 private:
  void ponFila(const FilaNomina& f);
  void liquidaEmpresa();

  COTVAL& calculo_;
  Liquidacion& liquidacion_;
  Programa& programa_;
  EmpleadorBoletin empleador_;
  int filas_ = 0;
};

}  // namespace valdor
