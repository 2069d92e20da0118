// The contribution engine behind the FAN writer: the per-worker statement run COTVAL over
// the marked companies, and the per-company TC1 run for each company as its part of the
// file is written, with the stores they read opened around them.
#pragma once

#include <functional>
#include <optional>
#include <string>

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
  // "Dev. en Cta."), its progress text on the wizard. The month store and the read locks
  // are taken at the first company and kept until terminaTC1.
  void TC1VAL(Programa& programa, COTIZACION& sel, PaginaIntercambio& pagina, const std::string& CODEMPRESA) override;
  void terminaTC1(Programa&) override { sesion_.reset(); }

 public:
  // The month and training stores open, and one read lock per store the TC1 reads, for
  // all the companies of a file.
  struct AperturaTC1 {
    AperturaTC1(Almacenes& a, int mes, int ano);
    ~AperturaTC1();
    Almacenes& almacenes;
  };
  struct SesionTC1 {
    SesionTC1(Almacenes& a, int mes, int ano);
    AperturaTC1 apertura;
    LecturaContinua periodo, producto, empresas, constant, bonifica, desempleo, formacion, cuentas;
    TiposDeLaEjecucion tipos;
  };
 private:
  std::optional<SesionTC1> sesion_;
};

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

}  // namespace valdor
