// COTIZACION, the selection of a contribution exchange: the month and year, the
// companies that have a calculated payroll in that month (in name order, with their
// workers), their marks, the liquidation class and qualifier, and "Dev. en Cta.".
// The form shows this state and calls these operations; the command line fills it
// from its options.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "stores/catalogo.h"

namespace valdor {

class Programa;
struct PaginaIntercambio;

struct EmpresaDelMes {
  std::string BNOMBRE;   // the company's name as the payroll wrote it
  std::string BSSE;      // the company code
  int trabajadores = 0;  // CuentaDeBMATRI
};

// Sets MESPERIODO and ANOPERIODO, creates the month store when it is missing (so an
// unknown month gets an empty store), opens it, reads the grouped list of the
// companies whose rows are not marked "N" in BCONT, in name order, and closes the
// store again. A month store that fails to open, or a failing query, gives an empty
// list, and the failure is shown and counted (a month without a store is no failure).
std::vector<EmpresaDelMes> empresasDelMes(Almacenes& almacenes, int mes, int ano);

// One row of the company list `grid`: column 0 the name, 1 the mark, 2 the code
// (hidden), 3 and 4 the EMP and RZS lines (hidden), 5 the workers.
struct FilaEmpresa {
  std::string BNOMBRE;
  bool marcada = false;
  std::string BSSE;
  std::string lineaEMP;
  std::string lineaRZS;
  int trabajadores = 0;
};

// The texts of the selection.
std::string_view textoAyudaSeleccion();   // the wizard's help line at the load
std::string_view textoAyudaEmpresas();    // the wizard's help line after VERIFICAR EMPRESAS
std::string_view textoSinEmpresas();      // "Procesar" with no company marked
std::string_view tituloSinEmpresas();     // "VALDOR+"

struct COTIZACION {
  // The lists, in their order: "01".."12"; " 1901".." 2100" (each with a leading blank);
  // the classes "L00.- Normal", ...; the qualifiers "00.- Liquidación cuota total en
  // plazo", ... The selected items are indices into them.
  static const std::vector<std::string>& meses();
  static const std::vector<std::string>& anos();
  static const std::vector<std::string>& clases();
  static const std::vector<std::string>& calificadores();
  int mesElegido = 0;
  int anoElegido = 0;
  int claseElegida = 0;
  int calificadorElegido = 0;
  bool listasBloqueadas = false;  // after VERIFICAR EMPRESAS
  bool marcarTodasActivo = false;
  bool devEnCtaActivo = false;
  bool devEnCta = false;    // "Dev. en Cta."
  bool alfabetica = false;  // "Alfabética": on the screen, read by nothing
  bool alfabeticaActiva = true;

  std::vector<FilaEmpresa> grid;

  // Working values of the employer block.
  double CUENTAEMPRESAS = 0;
  std::string CLAVEEMPRESA;

  // The year and month of the period as the employer line reads them: the numeric
  // values of the year box and of the month box.
  int anoDelPeriodo() const;
  int mesDelPeriodo() const;
  // The codes of the selected class (3 characters) and qualifier (2).
  std::string codigoClase() const;
  std::string codigoCalificador() const;

  // Selects a month or a year item, as a click on it does.
  void eligeMes(int indice);
  void eligeAno(int indice);
};

// The load of the form: the wizard's help line, the lists with their defaults (the
// month before the moment of the run; in January month 12 of the year before), the
// period values, and the master stores opened.
void cargaCOTIZACION(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel);
// The unload: the master stores closed.
void descargaCOTIZACION(Programa& programa, COTIZACION& sel);

// VERIFICAR EMPRESAS: the company list of the chosen month, the help line, the lists
// locked, "Marcar todas" and "Dev. en Cta." enabled.
void PRESIONBOTON(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel);

// "Marcar todas": marks (or clears) every row whose code reads other than 0; a code
// that begins with a letter reads 0 and is not touched.
void marcaTodas(COTIZACION& sel, bool marcar);

// The rows marked.
int empresasMarcadas(const COTIZACION& sel);
// The count under the company list: "4 empresas, 2 marcadas" (singular for one).
std::string textoCuentaEmpresas(const COTIZACION& sel);
// The filter of the company list as the user types: true when `filtro` (blanks around
// it ignored) is empty or stands in the row's code or name, in any case.
bool pasaFiltro(const FilaEmpresa& fila, std::string_view filtro);
// The first label of a run's progress over the marked companies:
// "Calculando: empresa 3 de 20, NAME" (no name, no comma).
std::string textoEmpresaDe(std::string_view que, std::size_t n, std::size_t de, std::string_view nombre);

// "Procesar": with no row marked, the message and false; otherwise "Alfabética" is
// disabled and true: the caller goes on with the run.
bool puedeProcesar(Programa& programa, COTIZACION& sel);

// "Cancelar": CANCELADO := 1; the caller unloads the form.
void cancelaCOTIZACION(Programa& programa);

}  // namespace valdor
