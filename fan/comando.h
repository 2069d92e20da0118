// comando: the contribution exchange file (.FAN) of the marked companies of a month.
// The statement run leaves every worker's lines in TMPVALDOR; then, for each company,
// the employer lines, the worker blocks read back from TMPVALDOR with the totals summed
// from them, the TCT00 and EDT total lines and the TC1 lines; at the end the ETF trailer
// with its counts.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

class Programa;
struct COTIZACION;
struct PaginaIntercambio;

// The part of the run that computes the statements. The contribution engine fills it;
// `MotorSinCalculo` leaves TMPVALDOR and the TC1 lines as they stand.
class MotorCotizacion {
 public:
  virtual ~MotorCotizacion() = default;
  // COTVAL: every marked company's workers into TMPVALDOR.
  virtual void COTVAL(Programa& programa, COTIZACION& sel) = 0;
  // TC1VAL for one company: its TC1 lines into LINEASTC1, its progress on the wizard.
  virtual void TC1VAL(Programa& programa, COTIZACION& sel, PaginaIntercambio& pagina,
                      const std::string& CODEMPRESA) = 0;
  // Before COTVAL: the engine may start working out the TC1 of the marked companies
  // ahead, beside the statement run; the file still asks for each with TC1VAL, in the
  // grid's order, and gets what that company's own run would give.
  virtual void adelantaTC1(Programa&, const COTIZACION&) {}
  // After the last company's TC1VAL, or when the file is given up: whatever the runs
  // kept open, or still work on, is let go.
  virtual void terminaTC1(Programa&) {}
};

class MotorSinCalculo : public MotorCotizacion {
 public:
  void COTVAL(Programa&, COTIZACION&) override {}
  void TC1VAL(Programa&, COTIZACION&, PaginaIntercambio&, const std::string&) override {}
};

// The totals of a company, summed from its workers' amount lines.
struct TotalesEmpresa {
  double EDTBA01000 = 0, EDTBA02000 = 0, EDTBA21000 = 0, EDTBA22000 = 0;
  double EDTCD01000 = 0, EDTCD03000 = 0, EDTCD06000 = 0, EDTCD07000 = 0, EDTCD10000 = 0, EDTCD11000 = 0,
         EDTCD13000 = 0, EDTCD16000 = 0, EDTCD17000 = 0;
  double ED4 = 0;  // summed, printed nowhere
  int trabajadores = 0;
};

// The amount of a stored line: its seven characters from position 11 in cents.
double importeDeLinea(std::string_view linea);

// The TCT00 line of a company.
std::string lineaTCT00(std::string_view CLAVEEMPRESA, int trabajadores);
// The EDT lines of the totals that are not 0, in the order of writing.
std::vector<std::string> lineasEDT(const TotalesEmpresa& t);

// The order of a worker's line types in the file.
const std::array<std::string_view, 20>& tiposDeLinea();

// What the worker blocks keep from one worker to the next: the held-back ED1 and its flag.
struct EstadoBloques {
  std::string lineaRetenida;
  bool retenerED1 = false;
};

// The lines of one worker in the order of the file, from its stored lines by type, with
// the held-back ED1; the amounts go into the totals.
std::vector<std::string> bloqueTrabajador(const std::vector<std::pair<std::string, std::string>>& lineasPorTipo,
                                          EstadoBloques& estado, TotalesEmpresa& totales);

// The ETF trailer of the FAN file, for a file of `longitud` bytes so far.
std::string lineaPieFAN(const PaginaIntercambio& pagina, const struct REGINTERCAMBIO& registro,
                        double CUENTAEMPRESAS, std::uintmax_t longitud);

// The whole run. Returns the Windows path of the file written (FICHEROSALIDA), or
// std::nullopt when the file could not be written; the user has been told why.
std::optional<std::string> comando(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel,
                                   MotorCotizacion& motor);

}  // namespace valdor
