// The statement of the rows in GRID1: the sums of the working table, the accidents
// quotas by epigraph, the bonuses and deductions, and every figure of BOLETIN in its
// fixed order. The per-worker run derives it for the one worker of row 1 and then keeps
// the worker's lines; the per-company TC1 run derives it over all the company's rows.
//
// Every figure goes through the BOLETIN field that holds it and is read back through
// REDONDEA2 (V below): a figure cut by its field's width is the cut figure from then on.
// A quota is always R(base x rate / 100), the product first.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "statement/estado.h"
#include "statement/ficherotipos.h"

namespace valdor {

class EstadoCalculo;
class Programa;
class Tabla;

// The statement's switches. The surcharge choice and the two check boxes are the form's;
// CUOTAPATRONAL is set by the employer's-share button. MODOUNO, MODODOS, MODOTRES and
// RECARGOFIJO are reserved: nothing in the program sets them, so every run keeps them at
// 0 and the paths they open stay out of the figures.
struct InterruptoresBoletin {
  int Option1 = 0;      // 0 "&Sin recargo", 1 "&5% Recargo", 2 "&20% Recargo"
  bool Check2 = false;  // "Liquidar contigencias profesionales en cuota obrera"
  bool Check3 = false;  // "NO liquidar contigencias profesionales en cuota patronal"
  double CUOTAPATRONAL = 0;
  double CUOTAOBRERA = 0;
  double MODOUNO = 0, MODODOS = 0, MODOTRES = 0;
  double RECARGOFIJO = 0;
};

// The sums of one derivation, 0 at each start.
struct AcumuladoresBoletin {
  double NUMTRAB = 0, NUMALTAS = 0, NUMBAJAS = 0;
  double SUMCC = 0, SUMAT = 0, SUMHE = 0, SUMHN = 0, SUMIT = 0, SUMATIT = 0, SUMMAT = 0;
  // Maternity bases of rows marked "M": B for the contracts 36, 37, 57, 67, 77, A the rest.
  double BASEMATA = 0, BASEMATB = 0;
  bool HAY65 = false, HAY64 = false, HAYFIJA = false, HAY97 = false, HAY8597 = false;
  double NUM65 = 0, BASE65 = 0, NUM64 = 0, BASE64 = 0, NUM8597 = 0, NUM87 = 0;
  // Bases of the two "OTRAS COTIZACIONES" rows by the contract's unemployment class 1 to 4
  // (entry 0 unused); only the per-company run fills them.
  std::array<double, 5> OTBASETIPO{}, OT2BASETIPO{};
};

// One concept of the company's deduction table: base, percentage and quota.
struct ConceptoDeduccion {
  double base = 0, porcentaje = 0, cuota = 0;
};

// What LEEDES leaves: the concepts 114 ("Aportación Servicios com."), 131 and 132, and
// the amount of concept 116, which is kept and goes nowhere.
struct SalidasDeduccion {
  ConceptoDeduccion c114, c131, c132;
  double importe116 = 0;
};

class Liquidacion {
 public:
  // The derivation over the state of `calculo`; the stores and folders of `programa`;
  // the rates as the run `tiposEjecucion` has read them.
  Liquidacion(EstadoCalculo& calculo, Programa& programa, TiposDeLaEjecucion& tiposEjecucion);

  // True in the per-company TC1 run: the "OTRAS COTIZACIONES" bases are split by class.
  bool porEmpresa = false;
  InterruptoresBoletin interruptores;

  TiposLeidos tipos;
  AcumuladoresBoletin acumulados;
  SalidasDeduccion deducciones;
  double BONIFTOTAL = 0, REDUCTOTAL = 0, BONIFMATER = 0;
  // The two training amounts that CALRAROS keeps, for the last row that had each.
  double IMPORTERARO1 = 0, IMPORTERARO2 = 0;

  // CALCULATRABAJADOR: the statement of the rows in GRID1 into BOLETIN and its boxes;
  // `conLineas` then writes the worker's lines of row 1 to the temp store.
  void CALCULATRABAJADOR(bool conLineas = true);
  void LIQUIDABOLETIN();
  void LIQUIDAFIJA();

  // LEETIPOS into `tipos` and the rate fields of BOLETIN; false (nothing changed) for a
  // year the rate files do not cover.
  bool LEETIPOS();
  // LEEDES: the company's deduction table (a handle no store opens in a normal run, so
  // its outputs stay 0 there).
  void LEEDES();
  // CALRAROS: the training amounts of the contracts 85 and 97 as the bonus.
  void CALRAROS();
  // BONIFICATRABAJADOR: the bonuses (line 601) and reductions (line 209) of the rows,
  // contract by contract, with the end-of-bonus proration and the subsidy pass.
  void BONIFICATRABAJADOR();

 private:
  void sumaFila(int fila);
  void sumaCuotasAT(double base, bool reducida);
  // The working fields of the bonus of a contract: the bases of the row in 9 characters
  // and their sums, and the accidents base by epigraph 1 to 130.
  struct BasesBonificadas {
    std::string BONBASECC = std::string(9, ' '), BONBASEAT = std::string(9, ' ');
    double sumaCC = 0, sumaAT = 0;
    std::array<double, 131> BASEEPI{};
  };
  // What a bonus is worked out under: the percentages, the statement line, the mode of
  // the fixed percentages and the contract's unemployment class.
  struct CondicionesBonificacion {
    double PORCCC, PORCAT, PORCDE, PORCFO, PORCFP, BONCASILLA, BONMODO, clase;
  };
  bool sumaBasesBonificadas(int fila, BasesBonificadas& bases);
  void liquidaContrato(int contrato, const CondicionesBonificacion& c, const BasesBonificadas& bases);
  double pasoSubsidios(bool& cortado);
  void bonificacionMaternidad();
  void otrasCotizaciones();
  void liquidoFinal(bool blancoSinRecargo);
  void interruptoresAlLiquidar();
  void muestraFiguras();


  EstadoCalculo& calculo_;
  Programa& programa_;
  BOLETIN& b_;
  TablaTrabajo& grid_;
  VariablesCalculo& v_;
  TiposDeLaEjecucion& tiposEjecucion_;
};

}  // namespace valdor
