// AFILIA, the affiliation module: the workers that the payroll product left pending
// in VALDORTA, joined with the worker, company, document-type and contract tables, one
// working row of 58 columns each; the companies in the order of their first worker;
// every line of the .AFI file prepared in memory, the list shared out over as many files
// as the limits of one file make it need; the writing of the files; and the deletion,
// once they are sent, of the pending rows they carried.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/programa.h"

namespace valdor {

class Programa;
class FormulariosIntercambio;
struct PaginaIntercambio;

inline constexpr int COLUMNASAFI = 58;
// What one AFI file may carry. A longer list goes into as many files as it needs.
inline constexpr int TRABAJADORESPORFICHERO = 1000;
inline constexpr int EMPRESASPORFICHERO = 500;

using FilaAfiliacion = std::array<std::string, COLUMNASAFI>;
// A line of each row of a grid, at the row's index (entry 0 unused).
using LineasAfi = std::vector<std::string>;

// The key of a pending row (VALDEMP, VALDTRA: the primary key of VALDORTA), exactly as
// the table holds it.
struct ClavePendiente {
  std::string VALDEMP, VALDTRA;
  friend bool operator==(const ClavePendiente&, const ClavePendiente&) = default;
};

// A pending row that cannot go into the file: its worker is not in the worker table,
// or its company is not in the company table. It stays in the list, and is told.
enum class MotivoFuera { SinEmpresa, SinTrabajador };
struct PendienteFuera {
  ClavePendiente clave;
  MotivoFuera motivo;
};

// A company's block in one AFI file: its row of Grid2 and the rows of GRID1 of the
// workers that go under its EMP and RZS lines there.
struct BloqueAfi {
  std::size_t empresa = 0;
  std::vector<std::size_t> trabajadores;
};

// One AFI file of a run: the blocks it carries, in order. C and W of its trailer.
struct FicheroAfi {
  std::vector<BloqueAfi> bloques;
  int empresas() const { return static_cast<int>(bloques.size()); }
  int trabajadores() const;
};

// The files that a list needs: `empresas` are the companies in the order of the file,
// each with all its workers. A file takes at most 1,000 workers and 500 companies. A
// company goes whole into one file, the next file being started when it does not fit
// in the current one; a company of more than 1,000 workers alone starts a file of its
// own and fills as many as it needs, 1,000 workers each, its EMP and RZS lines heading
// each part. A company without workers goes into none.
std::vector<FicheroAfi> repartoAFI(const std::vector<BloqueAfi>& empresas);


// The parts of the trailer fixed when the list is loaded: the two keys of the settings
// and the moment (yyyymmdd, hhmm). Each file's trailer is made of them.
struct PieAfi {
  std::string CLAVEAUTORIZA, CLAVESILCON, fecha, hora;
};

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
  // The worker lines by row of GRID1 (empty for a row left out of the file), the
  // company lines by row of Grid2.
  LineasAfi LINEASTRA, LINEASAYN, LINEASDOM, LINEASLDD, LINEASFAB, LINEASDAM, LINEASEMP, LINEASRZS;
  // The pending rows that do not go into the file, in table order.
  std::vector<PendienteFuera> fuera;
  // The files the list goes into, and the parts of their trailers.
  std::vector<FicheroAfi> ficheros;
  PieAfi pie;
  // The trailer of the first file, shown in "Pie" (the whole list's, when it fits in
  // one file).
  std::string LINEAPIEAFI;
  bool generarActivo = true;  // "&Generar Fichero"
  int progreso = 0;           // ProgressBar1

  // What the last "&Generar Fichero" of this module wrote, once every file stood under
  // its name: the Windows paths, and the keys of the pending rows the files carry. Only
  // these rows may be deleted from the list at "&Salir".
  std::vector<std::string> escritos;
  std::vector<ClavePendiente> enviados;
  // Where the module's job began (its loading of the list): a store that failed since
  // leaves no file.
  MarcaTrabajo inicio;

  // The workers and the companies that go into the files (a company split over
  // several files counts once).
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
// The pending list from VALDORTA, the company list, every line and the files the list
// goes into. The rows left out of the file are told in one warning, naming each
// company and worker.
void LEEPENDIENTES(Programa& programa, AFILIA& afi);
// The parts of the trailers from the settings (blank-filled when the file is empty)
// and the moment, and the trailer of the first file.
void LINEAPIE(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi);

// What the command line says when there is nothing to write: no pending worker, or
// none that can go into the file.
std::string textoNadaQueEnviar(const AFILIA& afi);

// "&Generar Fichero": every file of the list written whole, each with its own label
// lines and trailer, the first under the page's name and the others under the free
// names that follow it (nombreSiguiente); then the list of files when there are
// several, and the editor offer for the first. The files go under their names only
// when all of them are written: on a failure, or a stop the user asks for
// (Programa::pideParada, heeded after each worker), none of this run is left. Returns
// the Windows paths written, in order (empty when nothing was written), also kept in
// `afi.escritos` with the keys of their pending rows in `afi.enviados`.
std::vector<std::string> ESCRIBEFICHERO(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi,
                                        FormulariosIntercambio& formularios);

// What "&Generar Fichero" asks about before it writes, as the editor checks a file: a
// blank key (Clave) of the SIL line, and the findings of the editor's check on the lines
// of each file (their length, their segment, the trailer's counts). std::nullopt when
// nothing is amiss.
std::optional<std::string> avisoAntesDeGenerar(const Programa& programa, const PaginaIntercambio& pagina,
                                               const AFILIA& afi);

// Deletes from VALDORTA the rows of `enviados` (the user says the files that carried
// them were sent), in one transaction, and says how many were deleted and how many
// stay. Rows not written into a file stay. With no key, nothing is deleted and the user
// is told why. A list kept in the payroll product's own Jet file is left as it is, and
// the user is told to empty it there.
void BORRAMETODOSREG(Programa& programa, const std::vector<ClavePendiente>& enviados = {});

// "&Salir": the question; on yes the rows of the files written last by this module are
// deleted from the list. The caller ends the program.
void salirAFILIA(Programa& programa, const AFILIA& afi);
// "&Nuevo": back to the wizard for another exchange.
void nuevoAFILIA(PaginaIntercambio& pagina);

}  // namespace valdor
