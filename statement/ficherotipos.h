// The yearly rate file FICHEROTIPOS: a plain file of fixed records of 28 characters,
// four fields TIPCAMPO1 to TIPCAMPO4 of 7 characters of decimal text each (a point for
// the decimals). Record n stands at byte offset (n - 1) * 28; there is no header and no
// end mark. The statement run reads the rates of the year from it.
#pragma once

#include "stores/ficheros.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace valdor {

inline constexpr std::size_t LONGITUDREGISTROTIPOS = 28;
inline constexpr std::size_t ANCHOTIPCAMPO = 7;
// A new rate file has at least this many records, blank where nothing is written, so
// that every record the readers ask for exists.
inline constexpr std::size_t REGISTROSTIPOSMINIMOS = 32;

// A rate file that cannot be written or read, one that is empty or damaged, or a value
// that does not fit a field. The message is Windows-1252 text that names the file. Being
// a failure of a file, an exchange job stops on it before its file is put in place.
class ErrorFicheroTipos : public ErrorFichero {
 public:
  using ErrorFichero::ErrorFichero;
};

// The name of the rate file of a year: "N-SS", the year in four digits, the employer's
// code (trimmed; "" for the general file) and ".MDB". January to March 1997 take the
// prefix "N-SA": "N-SA1997.MDB", while April 1997 is "N-SS1997.MDB".
std::string nombreFicheroTipos(int ano, int mes, std::string_view codigo = "");

// Writes a rate file with `registros` as records 1, 2, ... in order. Each field is
// right-aligned in 7 characters with blanks (a blank text gives a blank field); a file
// of fewer than 32 records is filled with blank records up to 32. A field of more than 7
// characters, or one that is not decimal text with a point, is refused. The file is
// written beside its final name and put in place whole, so a failure (a full disk)
// leaves whatever stood under that name as it was.
void escribeFicheroTipos(const std::filesystem::path& ruta,
                         const std::vector<std::array<std::string, 4>>& registros);

// ---- Reading ---------------------------------------------------------------------------

// The four fields of record `numero` (from 1), 7 characters each as they stand in the
// file, blanks included. The file is open only for this read, and the record's 28 bytes
// are held under an exclusive lock of the open file description for its length, waiting
// up to about 2 seconds for a lock that another opening holds. A record that the file
// does not hold whole (a missing or short file) gives four blank fields. std::nullopt
// when the file cannot be opened or the record stays locked beyond the wait: the
// callers read that as blanks too.
std::optional<std::array<std::string, 4>> leeRegistroTipos(const std::filesystem::path& ruta, int numero);

// The rate file a statement reads for the month: the employer's own file (its trimmed
// code in the name) when it exists with some content, else the general file of the
// year. Names are matched ignoring case when the exact one is missing. A general file
// that is missing is made with 32 blank records first, so that it reads as blank rates;
// a file that exists is never touched, and a folder that cannot be written is no error
// (the read then finds nothing and gives blanks).
std::filesystem::path ficheroTiposDe(const std::filesystem::path& carpeta, int ano, int mes,
                                     std::string_view codigoEmpresa);
// The same, with the names looked up in the folder by `resuelve` (as resuelveFichero
// does).
std::filesystem::path ficheroTiposDe(int ano, int mes, std::string_view codigoEmpresa,
                                     const std::function<std::filesystem::path(std::string_view)>& resuelve);

// Everything the rate loading leaves for the statement. Each number is its field read
// through REDONDEA2 (a blank field is 0); the rate texts are the fields as they stand.
struct TiposLeidos {
  // The rate boxes of the statement.
  std::string CCTIPO;    // record 12, field 4
  std::string FPTIPO;    // record 13, field 4
  std::string HETIPO;    // record 15, field 4
  std::string HNTIPO;    // record 16, field 4
  std::string OTTIPO;    // the general text of c + f + p
  std::string OT2TIPO;   // the general text of c - a + f + q
  // The common-contingency rate split 45/55: 6 blanks and the first 5 characters of the
  // trimmed general text of V(CCTIPO) x 0.45 (x 0.55).
  std::string CCTIPO45;
  std::string CCTIPO55;

  double e1 = 0;                          // record 12, field 2
  double t2 = 0, b = 0, a = 0, c = 0;     // record 19; a 0 in t2 stands for a
  double t3 = 0, e2 = 0, t4 = 0, f = 0;   // record 20; a 0 in t3 or t4 stands for a
  double q = 0, p = 0;                    // record 21, fields 2 and 4
  double g1 = 0, g2 = 0, g3 = 0, g4 = 0;  // record 23
  double h1 = 0, h3 = 0;                  // record 24, fields 1 and 3
  double k1 = 0, k2 = 0;                  // record 26, fields 1 and 2
  double r2 = 0, r3 = 0, r4 = 0;          // record 28, fields 1 to 3

  // Combined rates, indexed 1 to 4 (entry 0 unused):
  // OTTIPOS a+b+f+p, t2+r2+f+p, t3+r3+f+p, t4+r4+f+p;
  // OT2TIPOS f+b+q, f+r2+q, f+r3+q, f+r4+q.
  std::array<double, 5> OTTIPOS{};
  std::array<double, 5> OT2TIPOS{};

  // The hour prices of training at a distance and on site. Record 27 carries two values
  // that the rate loading keeps; this system takes them as those prices, field 1 the
  // distance price and field 2 the on-site price.
  double PRECIOHORADIST = 0;
  double PRECIOHORAPRES = 0;

  // Fields 2 (employer's share) and 3 (worker's share) of every record read, as they
  // stand, indexed by record number: the split rates of records 12, 13, 15, 16, 19, 20
  // and 21 that the maternity sum and the share-by-share statement use.
  std::array<std::string, 29> campo2{};
  std::array<std::string, 29> campo3{};
};

// A share of the common-contingency rate as the statement writes it: 6 blanks and the
// first 5 characters of the trimmed general text of `valor`.
std::string tipoPartido(double valor);

// The check of a rate file before its rates are read: throws ErrorFicheroTipos when the
// file exists but cannot be read, is empty, is a folder, ends before record 28 (the
// last one read), or has a field in a record that the rates come from (12, 13, 15, 16,
// 19, 20, 21, 23, 24, 26, 27, 28) that is neither blank nor decimal text (digits, at most
// one point, a minus in front, blanks around). A missing file passes: it reads as blanks.
void compruebaFicheroTipos(const std::filesystem::path& ruta);

// LEETIPOS: the rates of the month's file for year `ano` (the employer's own file when
// it has one). A year of 1900 or less, or of 2050 or more, reads nothing: false, and `t`
// stays as it was. Otherwise records 12, 13, 15, 16, 19, 20, 21, 22, 23, 24, 26, 27 and
// 28 are read in that order, `t` is filled whole, and the result is true. A record that
// cannot be read counts as blank. A file that fails `compruebaFicheroTipos` throws
// ErrorFicheroTipos and leaves `t` as it was.
bool LEETIPOS(const std::filesystem::path& carpeta, int ano, int mes, std::string_view codigoEmpresa,
              TiposLeidos& t);
// The years the rate files cover.
inline bool anoConTipos(int ano) { return ano > 1900 && ano < 2050; }
// The reading of LEETIPOS from the rate file `ruta`, whatever its year.
void leeTipos(const std::filesystem::path& ruta, TiposLeidos& t);

// The rates of one run of the statement (a FAN file, a TC1 run): each rate file is
// found and read once in the run, by year, month and employer code, instead of once per
// worker. A file changed while the run goes on is read by the next run, so the whole
// month is worked out with one set of rates.
class TiposDeLaEjecucion {
 public:
  // LEETIPOS of `carpeta` for the first asking of a year, month and code in this run;
  // nullptr when that LEETIPOS reads nothing (a year outside the rate files). The
  // folder is listed once, and a file that serves many employers is read once. An
  // ErrorFicheroTipos goes to the caller and nothing is kept.
  const TiposLeidos* lee(const std::filesystem::path& carpeta, int ano, int mes, std::string_view codigoEmpresa);

 private:
  std::filesystem::path resuelve(const std::filesystem::path& carpeta, std::string_view nombre);

  std::map<std::tuple<int, int, std::string>, const TiposLeidos*> porEmpresa_;
  std::map<std::filesystem::path, TiposLeidos> porFichero_;
  // The names in the folder last listed, by their upper-case form.
  std::optional<std::filesystem::path> listada_;
  std::map<std::string, std::set<std::string>> nombres_;
};

// LEETIPOSLIQ: the rate boxes of one share. With `patronal` the employer's share, field
// 2 of records 12, 15, 16, 13 for CCTIPO, HETIPO, HNTIPO, FPTIPO and OTTIPO the general
// text of the sum of field 2 of records 19, 20 and 21; otherwise the worker's share,
// field 3 of the same records and OTTIPO the sum of field 3 of records 19 and 21.
void LEETIPOSLIQ(const TiposLeidos& t, bool patronal, std::string& CCTIPO, std::string& HETIPO,
                 std::string& HNTIPO, std::string& FPTIPO, std::string& OTTIPO);

}  // namespace valdor
