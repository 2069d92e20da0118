// AFILIA, the affiliation module: the workers that the payroll product left pending
// in VALDORTA, joined with the worker, company, document-type and contract tables, one
// working row of 58 columns each; the companies in the order of their first worker;
// every line of the .AFI file prepared in memory; and the writing of the file.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

class Programa;
class FormulariosIntercambio;
struct PaginaIntercambio;

inline constexpr int COLUMNASAFI = 58;
// The line arrays hold entries 0 to 1000, by the row of the grid: a row above 1000 has
// no lines. The file takes the companies 1 to 500: a fixed count.
inline constexpr int FILASMAXIMAS = 1000;
inline constexpr int EMPRESASMAXIMAS = 500;

using FilaAfiliacion = std::array<std::string, COLUMNASAFI>;
using LineasAfi = std::array<std::string, FILASMAXIMAS + 1>;

// The headers of the working grid (DIBUJAME).
const FilaAfiliacion& cabecerasAFI();

// The module's texts.
std::string_view tituloAFILIA();          // "Módulo de afiliación"
std::string_view tituloPendientes();      // "PRODUCTORES PENDIENTES DE AFILIACION"
std::string_view preguntaBorrarPendientes();
// Said instead of emptying the list when it is the payroll product's own Jet file.
std::string_view textoPendientesDelProgramaDeNominas();
std::string_view preguntaEditarAfi();

struct AFILIA {
  // GRID1: row 0 the headers, a row per pending worker from 1; Grid2: the companies,
  // column 0 the code, 1 the EMP line, 2 the RZS line, from row 1.
  std::vector<FilaAfiliacion> GRID1;
  std::vector<std::array<std::string, 3>> Grid2;
  LineasAfi LINEASTRA, LINEASAYN, LINEASDOM, LINEASLDD, LINEASFAB, LINEASDAM, LINEASEMP, LINEASRZS;
  std::string LINEAPIEAFI;
  bool generarActivo = true;  // "&Generar Fichero"
  int progreso = 0;           // ProgressBar1

  // Rows of GRID1 and Grid2 with a code in column 0: W and C of the trailer.
  int trabajadores() const;
  int empresas() const;
};

// The columns 2 to 57 of one pending worker and the six lines joined from them. Each
// source is the worker's row in WK, the company's in ESA and the pending row; the
// document type and the contract come from their tables.
struct PendienteAfi {
  // VALDORTA
  std::string VALDEMP, VALDTRA, VALDORTIPO, SITU, VALDNACIONALIDAD, VALDCONDIDESEM, VALDMUJERSUBRE, VALDSEXO,
      VALDINCAPACITADO, VALDPRIMERTRABAJ, VALDGRADOMINUSVA, VALDFECHACONTROL, VALDFECHAINICIO, VALDINDISUBPARCIAL,
      VALDRELAEXPECIAL, VALDNUSSTRABSUST, VALDCAUSASUSTITU, VALDEXLUSIONSOCIAL;
  double VALDIAS = 0, COEF = 0;
  // WK
  std::string TRA2, TRA3, TRA4, TRA5, TRA9, TRA14, TRA15, TRA51, TRA1110, TRA1710, BAJ10;
  // ESA
  std::string A5;
  // Looked up: TIPDOIDE of the document table ("1" when missing or 0), CONTSEGSOC of the
  // contract ("000" when missing).
  std::string tipoDocumento = "1";
  std::string claveContrato = "000";
};
void columnasTrabajador(const PendienteAfi& p, FilaAfiliacion& fila);

// The six worker lines of a row: columns 2-12, 13-17, 18-28, 29-32, 33-50, 51-57.
std::array<std::string, 6> lineasTrabajador(const FilaAfiliacion& fila);

// The EMP line of the AFI file (its identifier type is "9   " when the first character
// of the identifier reads 0, else "1   "), from the company's A1, A8 and EB12.
std::string lineaEMPAFI(std::string_view A1, std::string_view A8, std::string_view EB12);

// The trailer: W workers and C companies, at the moment of `ahora` (yyyymmdd, hhmm).
std::string lineaPieAFI(const PaginaIntercambio& pagina, std::string_view CLAVEAUTORIZA,
                        std::string_view CLAVESILCON, std::string_view fecha, std::string_view hora, int C, int W);

// The load of the form: the comma test, the masters opened, LEEPENDIENTES and LINEAPIE.
void cargaAFILIA(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi);
// The pending list from VALDORTA, the company list and every line.
void LEEPENDIENTES(Programa& programa, AFILIA& afi);
// The trailer from the settings (blank-filled when the file is empty) and the moment.
void LINEAPIE(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi);

// "&Generar Fichero": the file written whole under its name, then the editor offer.
// Workers and companies beyond the arrays' limits are reported, not lost silently.
// Returns the Windows path written, or std::nullopt.
std::optional<std::string> ESCRIBEFICHERO(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi,
                                          FormulariosIntercambio& formularios);

// Empties VALDORTA (the user says the file was sent). A list kept in the payroll
// product's own Jet file is left as it is, and the user is told to empty it there.
void BORRAMETODOSREG(Programa& programa);

// "&Salir": the question; on yes the pending table is emptied. The caller ends the program.
void salirAFILIA(Programa& programa);
// "&Nuevo": back to the wizard for another exchange.
void nuevoAFILIA(PaginaIntercambio& pagina);

}  // namespace valdor
