// The exchange file editor's rules: the file read as lines for the grid, saved back
// without its blank lines, searched, and checked. The checks only mark: a line is never
// changed by them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

// The rows the grid is given before the load: the file's length in bytes by 70, rounded
// (ties to even), and one more when an affiliation file is edited. A line takes 72 bytes
// with its end, so the estimate runs a little over the line count.
int filasEstimadas(std::uintmax_t bytes, bool EDITAAFI);

// The lines of a file as it stands (CR LF or LF ends, the last line with or without
// one), each as its bytes. A missing or unreadable file has none.
std::vector<std::string> leeLineas(const std::filesystem::path& fichero);

// "guardar": every line whose trimmed text is not blank, as it stands, each ended by
// CR LF; the file is written beside its name and put in place whole. Throws ErrorFichero
// (with a message naming the file) when it cannot be written.
void guardaLineas(const std::filesystem::path& fichero, const std::vector<std::string>& lineas);

// "Buscar": the first line, from the first, that holds `texto`, both upper-cased; its
// index (0 for the first line). Nothing for a blank text or no hit.
std::optional<std::size_t> buscaLinea(const std::vector<std::string>& lineas, std::string_view texto);

// ---- The checks --------------------------------------------------------------------------

enum class TipoIntercambio { FAN, AFI, Otro };
// The kind of an exchange file by its extension, ignoring case.
TipoIntercambio tipoDeFichero(std::string_view nombre);
// The segments (first three characters) that a line of each kind may begin with.
const std::vector<std::string_view>& segmentosDe(TipoIntercambio tipo);

// What is wrong with one line of a file of kind `tipo`: each finding as a short text
// ("longitud 69", "segmento XYZ"); none for a correct line. A blank line has none: the
// save drops it.
std::vector<std::string> observacionesDeLinea(std::string_view linea, TipoIntercambio tipo);

// The trailer's counts against the file as it stands: the companies (EMP lines) and the
// lines (every line that is not blank).
struct CuentasPie {
  bool hayPie = false;          // a line beginning "ETF"
  long empresasPie = 0, lineasPie = 0;
  long empresas = 0, lineas = 0;
  bool cuadran() const { return hayPie && empresasPie == empresas && lineasPie == lineas; }
};
CuentasPie cuentasDelPie(const std::vector<std::string>& lineas);

// The whole check as text for a person: one line per finding ("Línea 12: ..."), then
// the verdict on the trailer. Windows-1252 text.
std::vector<std::string> informeRevision(const std::vector<std::string>& lineas, TipoIntercambio tipo);

}  // namespace valdor
