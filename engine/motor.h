// The contribution engine behind the FAN writer: the per-worker statement run COTVAL over
// the marked companies, and the per-company TC1 run for each company as its part of the
// file is written, with the stores they read opened around them.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "engine/adelanto.h"
#include "fan/comando.h"
#include "statement/ficherotipos.h"
#include "stores/almacen.h"

namespace valdor {

class Almacenes;
class COTVAL;

class MotorCalculo : public MotorCotizacion {
 public:
  // Told after each worker's statement (see COTVAL::trabajadorCalculado).
  std::function<void(const valdor::COTVAL&)> trabajadorCalculado;

  // The period from the selection, the rates of the year (for the training-hour prices),
  // the month, sick-day and training stores opened, CALCULAEMPRESAS, the stores closed.
  void COTVAL(Programa& programa, COTIZACION& sel) override;
  // The one-company TC1 run of CODEMPRESA: its statement into LINEASTC1 (entry 19 with
  // "Dev. en Cta."), its progress text on the wizard. The result worked out ahead is
  // taken when there is one; otherwise the month store and the read locks are taken at
  // the first company run here and kept until terminaTC1.
  void TC1VAL(Programa& programa, COTIZACION& sel, PaginaIntercambio& pagina, const std::string& CODEMPRESA) override;
  // Starts the second thread that works the companies' TC1 out ahead (when `adelantar`
  // and the month store is an SQLite file).
  void adelantaTC1(Programa& programa, const COTIZACION& sel) override;
  void terminaTC1(Programa&) override;

  // Off, every company's TC1 is run when the file asks for it, on the file's thread.
  bool adelantar = true;
  // The companies of the last file whose TC1 came from the second thread.
  int adelantadas = 0;

 public:
  // The month and training stores open (made first when missing, unless `crea` is
  // off), and one read lock per store the TC1 reads, for all the companies of a file.
  struct AperturaTC1 {
    AperturaTC1(Almacenes& a, int mes, int ano, bool crea);
    ~AperturaTC1();
    Almacenes& almacenes;
  };
  struct SesionTC1 {
    SesionTC1(Almacenes& a, int mes, int ano, bool crea = true);
    AperturaTC1 apertura;
    LecturaContinua periodo, producto, empresas, constant, bonifica, desempleo, formacion, cuentas;
    TiposDeLaEjecucion tipos;
  };

 private:
  std::optional<SesionTC1> sesion_;
  std::optional<AdelantoTC1> adelanto_;
};

// The TC1 run of one company of a FAN file for the period `mes`/`ano`, inside an open
// session: the statement cleared, the company loaded and its rows worked out, its lines
// into LINEASTC1 (entry 19 with `devEnCta`), its name on the wizard's guide.
void tc1DeEmpresa(Programa& programa, MotorCalculo::SesionTC1& sesion, int mes, int ano, bool devEnCta,
                  PaginaIntercambio& pagina, const std::string& CODEMPRESA);

// Prepares a run of the statement for a period: the month and year, and the training
// hour prices of the year's rate file as the run reads it.
void preparaCOTVAL(Programa& programa, int mes, int ano, valdor::COTVAL& calculo, TiposDeLaEjecucion& tipos);
void preparaCOTVAL(Programa& programa, const COTIZACION& sel, valdor::COTVAL& calculo, TiposDeLaEjecucion& tipos);

// The TC1 run of the statement form, outside a FAN file: one company, or every company
// of the month with a company break by company break.
struct EjecucionTC1 {
  int mes = 0, ano = 0;
  std::string empresa;  // "" for every company ("&Todas.")
  int Option1 = 0;      // the surcharge choice of the form
  // Told after each company's statement and lines (and once more at the end), with the
  // run's state: the screen shows the statement there and takes the user's clicks.
  std::function<void(const valdor::COTVAL&)> empresaCalculada;
  // Asked at each company break of the all-companies run: true stops the run.
  std::function<bool()> cancelado;
};
void ejecutaTC1(Programa& programa, const EjecucionTC1& ejecucion);

// What the statement form says of the figures it shows: which run made them, and, after
// the all-companies run, that it leaves out the maternity columns, the training hours
// and the TRA39 rule, so that a company worked out alone can show other figures.
std::string_view textoOrigenTC1(bool todasLasEmpresas);

}  // namespace valdor
