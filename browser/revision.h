// The field checks of an exchange file: every field of a line against its kind in the
// layouts of browser/segmentos.h (digits, amounts, dates, the file's period, codes,
// check digits of accounts and Social Security numbers, DNI and NIE letters), and across
// lines the sums that must agree (each company total with its workers' lines, each
// contribution with its base and rate, the liquidation lines with the lines they sum).
// A check only reports: a line is never changed by it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browser/editor.h"
#include "stores/ficheros.h"

namespace valdor {

// One thing wrong in a field of a line, for a person, a script or the editor's marks.
struct Hallazgo {
  std::uintmax_t linea = 0;  // from 1
  int desde = 0, hasta = 0;  // positions of the field, from 1
  std::string campo;         // the field's name
  std::string valor;         // the field's characters as they stand
  std::string regla;         // what the field breaks
};

// "línea N, posiciones a-b (campo): "valor" — regla". Windows-1252.
std::string textoHallazgo(const Hallazgo& h);
// "posiciones a-b", or "posición a" for a field of one character. Windows-1252.
std::string textoPosiciones(const Hallazgo& h);

// The month of a contribution file: every employer line and every line of days carries it.
struct PeriodoFichero {
  int ano = 0, mes = 0;
};

// The checks of one line on its own, numbered `numero`: each field against its kind, and
// a contribution's amount against its base and rate. Only a line of 70 characters of a
// known segment is looked into; the editor's line checks tell the others. Without
// `periodo` the period and month fields are not compared.
std::vector<Hallazgo> hallazgosDeLinea(std::string_view linea, std::uintmax_t numero, TipoIntercambio tipo,
                                       const std::optional<PeriodoFichero>& periodo);

// The whole field check of a file, a line at a time in the file's order: only the sums of
// the company being read are kept from line to line, so a file of any size takes the same
// memory. Without a given period, a contribution file's period is its first employer
// line's.
class RevisionCampos {
 public:
  explicit RevisionCampos(TipoIntercambio tipo, std::optional<PeriodoFichero> periodo = std::nullopt)
      : tipo_(tipo), periodo_(periodo) {}
  // The next line: its findings and those of the sums it closes.
  std::vector<Hallazgo> revisa(std::string_view linea);
  // After the last line: the sums of the last company.
  std::vector<Hallazgo> cierre();

 private:
  struct Importe {
    std::uintmax_t linea = 0;
    long long centimos = 0;
    bool legible = true;
    std::string texto;  // the field as it stands
  };
  struct Suma {
    long long centimos = 0;
    bool legible = true;
  };
  void cierraEmpresa(std::vector<Hallazgo>& h);
  void sumaTrabajador(std::string_view linea, std::string_view clave);
  void compruebaTotal(std::string_view linea, std::string_view clave, std::vector<Hallazgo>& h);

  TipoIntercambio tipo_;
  std::optional<PeriodoFichero> periodo_;
  std::uintmax_t numero_ = 0;
  // The company being read.
  bool enEmpresa_ = false;
  std::uintmax_t ultimaDeEmpresa_ = 0;
  long trabajadores_ = 0;
  std::map<std::string, Suma, std::less<>> sumas_;        // by total line, from the workers' lines
  std::map<std::string, std::uintmax_t, std::less<>> totales_;  // the total lines met
  std::map<std::string, Importe, std::less<>> tc1_;       // the TC1 lines met, signed
};

// The field findings of a file on disk, read a line at a time. Throws ErrorFichero when
// it cannot be read.
std::vector<Hallazgo> revisaFichero(const std::filesystem::path& fichero, TipoIntercambio tipo,
                                    std::optional<PeriodoFichero> periodo = std::nullopt);

// The field findings of lines held in memory (the editor's), in order.
std::vector<Hallazgo> revisaCampos(const std::vector<std::string>& lineas, TipoIntercambio tipo);

// The box after a job: the file, how many findings, and the first of them, one a line.
std::string avisoDeHallazgos(const std::filesystem::path& destino, const std::vector<Hallazgo>& hallazgos);

// What a job does with each exchange file it writes, before the file takes its name
// (`destino`): the file's field findings go to `avisa`, and with `estricto` (what made
// the check strict, for the message: "con --estricto") a finding keeps the file from its
// name: ErrorFichero, saying how many. A contribution file's period is `periodo` when
// given, else its first employer line's.
using AvisoHallazgos = std::function<void(const std::filesystem::path& destino, const std::vector<Hallazgo>& hallazgos)>;
RevisionEscrito revisionDeEscritos(AvisoHallazgos avisa, std::optional<std::string> estricto,
                                   std::optional<PeriodoFichero> periodo = std::nullopt);

}  // namespace valdor
