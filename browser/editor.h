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

// ---- Reading a file line by line ------------------------------------------------------

// How a line of a file ends. Every line of an exchange file ends with CR LF; a LF alone,
// a CR alone (one not followed by LF) or no end at all (the last bytes of a file) also end
// a line, and the checks mark each of them.
enum class FinDeLinea { CRLF, LF, CR, Ninguno };

// One line as the reader hands it over.
struct LineaLeida {
  std::string texto;            // its bytes without the end, at most the reader's limit
  std::uintmax_t longitud = 0;  // its whole length in bytes, without the end
  FinDeLinea fin = FinDeLinea::CRLF;
};

// The bytes of a line that the checks keep: a longer line is told with its whole length,
// and only its first LIMITELINEA bytes are looked at.
inline constexpr std::size_t LIMITELINEA = 4096;

// A file read line by line through a block of fixed size, so that a file of any size
// takes the same memory (with `limite`, a line of any length too). The file is open for
// the life of the object.
class LectorLineas {
 public:
  // Throws ErrorFichero, with a Spanish message naming the file and the reason, when the
  // file is missing, is a folder or cannot be opened.
  explicit LectorLineas(const std::filesystem::path& fichero, std::size_t limite = SIN_LIMITE);
  ~LectorLineas();
  LectorLineas(const LectorLineas&) = delete;
  LectorLineas& operator=(const LectorLineas&) = delete;

  // The next line into `linea`; false at the end of the file. Throws ErrorFichero when a
  // read fails.
  bool siguiente(LineaLeida& linea);

  static constexpr std::size_t SIN_LIMITE = static_cast<std::size_t>(-1);

 private:
  int siguienteByte();  // -1 at the end of the file
  bool llena();

  std::filesystem::path fichero_;
  std::size_t limite_;
  int fd_ = -1;
  std::vector<char> bloque_;
  std::size_t posicion_ = 0, tope_ = 0;
};

// The lines of a file for the editor's grid, each as its bytes, and (with `finales`)
// how each ends. A missing or unreadable file has none; a read that fails half way
// keeps the lines before it.
std::vector<std::string> leeLineas(const std::filesystem::path& fichero,
                                   std::vector<FinDeLinea>* finales = nullptr);

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

// What is wrong with one line of a file of kind `tipo`: its length, its segment and its
// end. A blank line has nothing wrong: the save drops it.
struct FaltasLinea {
  std::optional<std::uintmax_t> longitud;  // the length, when it is not 70
  std::optional<std::string> segmento;     // the first three characters, when no segment of the kind
  std::optional<FinDeLinea> fin;           // the end, when it is not CR LF
  bool ninguna() const { return !longitud && !segmento && !fin; }
};
FaltasLinea faltasDeLinea(std::string_view texto, std::uintmax_t longitud, FinDeLinea fin, TipoIntercambio tipo);

// The same findings as short texts for the grid ("longitud 69", "segmento XYZ",
// "fin LF", "fin CR", "sin fin de línea"); none for a correct line.
std::vector<std::string> observacionesDeLinea(std::string_view linea, TipoIntercambio tipo,
                                              FinDeLinea fin = FinDeLinea::CRLF);

// The trailer's counts against the file as it stands: the companies (EMP lines) and the
// lines (every line that is not blank).
struct CuentasPie {
  bool hayPie = false;          // a line beginning "ETF"
  long empresasPie = 0, lineasPie = 0;
  long empresas = 0, lineas = 0;
  bool cuadran() const { return hayPie && empresasPie == empresas && lineasPie == lineas; }
};
CuentasPie cuentasDelPie(const std::vector<std::string>& lineas);
// Adds one line of the file to the counts.
void cuentaLinea(CuentasPie& c, std::string_view linea);

// The whole check of a file, a line at a time, for `valdor-cli revisar` and for any file
// too large to hold: each line's findings as text for a person ("Línea 12: ..."), then
// the verdict on the trailer. Only the counts are kept from line to line. Windows-1252.
class RevisionFichero {
 public:
  explicit RevisionFichero(TipoIntercambio tipo) : tipo_(tipo) {}
  // The next line of the file (numbered from 1 in the order given): what is wrong with it.
  std::vector<std::string> revisa(const LineaLeida& linea);
  // After the last line: the verdict on the trailer's counts.
  std::vector<std::string> cierre() const;
  std::uintmax_t lineas() const { return numero_; }
  const CuentasPie& cuentas() const { return cuentas_; }
  // True when every line is right and the trailer's counts tally.
  bool bien() const { return !faltas_ && cuentas_.cuadran(); }

 private:
  TipoIntercambio tipo_;
  CuentasPie cuentas_;
  std::uintmax_t numero_ = 0;
  bool faltas_ = false;
};

// The whole check of lines held in memory, each taken as ended by CR LF.
std::vector<std::string> informeRevision(const std::vector<std::string>& lineas, TipoIntercambio tipo);

// What of `lineas` fails the check, as a save writes them (no blank lines, each ended by
// CR LF, numbered as in the saved file): the findings of each line and the trailer's
// counts when they do not tally, one a line, the first 15 and how many more.
// std::nullopt when all is right.
std::optional<std::string> faltasDeLineas(const std::vector<std::string>& lineas, TipoIntercambio tipo);
// The first 15 texts, one a line, and how many more.
std::string listaLimitada(const std::vector<std::string>& textos);
// The editor's warning before it saves lines that fail the check or hold field findings
// (browser/revision.h): all of them in one list, numbered as in the saved file, and
// whether to save all the same.
std::optional<std::string> avisoAlGuardar(const std::vector<std::string>& lineas, TipoIntercambio tipo);

// ---- How a line's bytes are shown and how typed text becomes bytes -----------------------
//
// A line holds two character sets, field by field, as the writers make them. The text
// fields that their writer passes through the DOS accent table (QUITAACENTOS) are:
//   RZS, positions 6-60, the company name (FAN and AFI): the table, then capitals;
//   AYN, positions 4-23 and 24-43, the two surnames (FAN): capitals, then the table;
//   TRA, positions 37-61, the description of the work centre (FAN): capitals, then the table.
// Their bytes are shown as the letters the table's bytes stand for (PONACENTOS), and text
// typed into them is written as their writer writes it. Every other byte of a file, also
// every byte of a file of another kind, is Windows-1252.

// The line as the screen shows it, in UTF-8.
std::string lineaParaMostrar(std::string_view linea, TipoIntercambio tipo);

// The bytes of a line typed (UTF-8) over the line `anterior` (its bytes): a field of the
// accent table whose shown text the typing left as it was keeps its bytes; one that it
// changed is written as its writer writes it; every other character is Windows-1252 (a
// character without a Windows-1252 form becomes "?"). A line typed as it was shown gives
// back `anterior` byte for byte.
std::string lineaTecleada(std::string_view anterior, std::string_view tecleada, TipoIntercambio tipo);

}  // namespace valdor
