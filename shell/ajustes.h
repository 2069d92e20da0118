// The exchange settings: the one record REGINTERCAMBIO of the fixed-record file
// "VALDOR.MDB" (176 bytes, record 1 at offset 0, no header, no end mark), and the
// sender's name EMISORNOMBRE, kept in a small file of our own beside it.
#pragma once

#include "stores/ficheros.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace valdor {

inline constexpr std::string_view FICHEROAJUSTES = "VALDOR.MDB";
inline constexpr std::string_view FICHEROEMISOR = "EMISOR.TXT";
inline constexpr std::size_t LONGITUDREGISTRO = 176;
inline constexpr std::string_view RUTAWINSUITEPORDEFECTO = "C:\\WINSUITE\\WINSUITE.EXE";

// Widths of the four fields, in their order in the record.
inline constexpr std::size_t ANCHOCLAVEAUTORIZA = 8;
inline constexpr std::size_t ANCHOCLAVESILCON = 8;
inline constexpr std::size_t ANCHORUTAWINSUITE = 150;
inline constexpr std::size_t ANCHOFECHAAUTORIZA = 10;
inline constexpr std::size_t ANCHOEMISOR = 35;

// The record in memory. Each field is Windows-1252 text; a field is written to the
// file left-aligned, filled with blanks up to its width and cut at it.
struct REGINTERCAMBIO {
  std::string CLAVEAUTORIZA;
  std::string CLAVESILCON;
  std::string RUTAWINSUITE;
  std::string FECHAAUTORIZA;
};

// The record as 176 bytes, and back. A value reaches the bytes, and comes back from
// them, as printable text: each control byte becomes a blank. `desdeBytes` of fewer
// bytes takes the fields the bytes cover and leaves the rest of `reg` as it was.
std::string aBytes(const REGINTERCAMBIO& reg);
void desdeBytes(std::string_view bytes, REGINTERCAMBIO& reg);

// What makes `bytes` something other than a settings record, as a Spanish phrase
// (Windows-1252); nothing for a sound record. A sound record is 176 bytes long, holds no
// control byte, and its route is blank, the "no route" that starts with "0", or a path:
// a Windows one ("C:\...", "\\servidor\...") or the native one that the configuration
// keeps for a program outside the Wine drives ("/..."), without the characters that no
// Windows path holds.
std::optional<std::string> defectoDelRegistro(std::string_view bytes);
bool esRutaDePrograma(std::string_view ruta);

// A settings file that cannot be read or written, or that holds no settings record.
// Its message is Windows-1252 text that names the file and says why. Being a failure of
// a file, the exchange jobs stop on it as on any other, before their file is put in
// place.
class ErrorAjustes : public ErrorFichero {
 public:
  using ErrorFichero::ErrorFichero;
};

// The open settings file: open creates it when missing (then it is empty until the
// first write). Every get and put holds an exclusive lock on the bytes of record 1 for
// just that get or put. Closing happens at the end of the object's life.
class FicheroAjustes {
 public:
  // Opens "VALDOR.MDB" in `carpeta` (the current folder of the program).
  explicit FicheroAjustes(const std::filesystem::path& carpeta);
  ~FicheroAjustes();
  FicheroAjustes(const FicheroAjustes&) = delete;
  FicheroAjustes& operator=(const FicheroAjustes&) = delete;

  // True when the file could be opened.
  bool abierto() const;
  // Length of the file in bytes (0 for a new or empty file).
  std::uintmax_t longitud() const;
  bool vacio() const { return longitud() == 0; }

  // Get record 1 into `reg`. An empty file, one that is missing and cannot be made (its
  // folder is missing) and a lock that cannot be had change nothing and return false.
  // Throws ErrorAjustes when the file cannot be read, or when what it holds is not a
  // settings record (`defectoDelRegistro`); `reg` is then as it was.
  bool lee(REGINTERCAMBIO& reg);
  // Put record 1, and nothing after it: the file is one record long. Throws ErrorAjustes
  // when the record cannot be written whole, or when its route is no path (the file
  // would no longer read as settings).
  void escribe(const REGINTERCAMBIO& reg);

  const std::filesystem::path& ruta() const { return ruta_; }

 private:
  std::filesystem::path ruta_;
  int fd_ = -1;
  bool soloLectura_ = false;  // a settings file that this user may read but not write
  int errorApertura_ = 0;     // errno of a failed open, or of the open for writing, for the messages
};

// ---- The readers' fills for an empty file -----------------------------------------

// The main window's load and the AFI trailer: every field blank to its width.
REGINTERCAMBIO registroEnBlanco();
// The configuration dialog's load: blank keys, the default route, an empty date.
REGINTERCAMBIO registroDeConfiguracion();

// The reading of the main window's start: fill an empty file's record with blanks,
// get record 1, trim the two keys (the fixed width fills them again on writing).
// Throws ErrorAjustes as `lee` does.
REGINTERCAMBIO leeAjustesAlArrancar(FicheroAjustes& fichero);

// ---- Widening of the two 8-character keys -------------------------------------------

// ETI line: "0" on the left of the trimmed CLAVEAUTORIZA up to 8; a key of 8 or more
// is left as it stands.
std::string claveAutorizaParaETI(std::string_view CLAVEAUTORIZA);
// ETI line: the trimmed CLAVESILCON, unfilled, so a short key moves the rest left.
std::string claveSilconParaETI(std::string_view CLAVESILCON);
// ETF line of the AFI file: blanks on the right of either key up to 8.
std::string claveParaPieAFI(std::string_view clave);

// ---- The sender's name ----------------------------------------------------------

// EMISORNOMBRE from "EMISOR.TXT" in `carpeta`: its first line, at most 35 characters;
// "" when the file is missing.
std::string leeEmisor(const std::filesystem::path& carpeta);
// Saves the sender's name (cut to 35). Throws ErrorAjustes when it cannot be written.
void guardaEmisor(const std::filesystem::path& carpeta, std::string_view nombre);

// ---- The configuration dialog's grid -------------------------------------------------

// One row of the grid CONFI: its label, its value, its edit limit and mask.
struct FilaConfiguracion {
  std::string etiqueta;
  std::string valor;
  std::size_t limite = 0;
  std::string mascara;  // "" or "99/99/9999"
};

// The five rows as the dialog's load fills them from the file and the sender's name:
// row 0 "Emisor de Intercambio", 1 "Clave de autorización", 2 "Clave Silcon",
// 3 "Fecha de autorización", 4 "Ruta de Winsuite". Throws ErrorAjustes as `lee` does.
std::array<FilaConfiguracion, 5> cargaConfiguracion(FicheroAjustes& fichero,
                                                     std::string_view EMISORNOMBRE);
// The same rows from a record in memory (the dialog's own fill when the file cannot be
// read).
std::array<FilaConfiguracion, 5> filasDeConfiguracion(const REGINTERCAMBIO& reg, std::string_view EMISORNOMBRE);
// The dialog's close: rows 1 to 4 into the record (each cut to its width), put record 1.
// Row 0 is saved nowhere. Returns the record written.
REGINTERCAMBIO guardaConfiguracion(FicheroAjustes& fichero,
                                   const std::array<FilaConfiguracion, 5>& filas);

// True when `texto` fits the mask "99/99/9999": digits or blanks, with "/" at
// positions 3 and 6, at most 10 characters.
bool encajaMascaraFecha(std::string_view texto);

}  // namespace valdor
