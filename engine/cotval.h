// COTVAL, the per-worker statement run: CALCULAEMPRESAS walks the payroll rows of the
// marked companies of the month, builds one working row per payroll row in GRID1 (the
// days, the bases, the contract's unemployment class, the bonus percentages) from the
// payroll row and the master data, and hands it to CALCULATRABAJADOR, which derives the
// worker's statement and lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "statement/estado.h"
#include "stores/almacen.h"

namespace valdor {

class Programa;
struct COTIZACION;

// The columns of a payroll row (NOMIN) that the working row takes, as the store holds
// them (text, number or Null).
struct FilaNomina {
  Valor BSSE, BMATRI, BCEN, BNOMBRE, BTRABA, BAFI, BDIAS, BCONT, BDIAL, BHCON, BEPIG, BNIFCU, A20, B20;
  Valor BHOES, BHONS, BENFE, BHOIL, BACCI, BB5, BB6, BB8, COZ1, COZ2, COZ3, B126;
};

// The row from a query or a table cursor positioned on it.
template <typename Fuente>
FilaNomina leeFilaNomina(const Fuente& f) {
  return {f.campo("BSSE"),  f.campo("BMATRI"), f.campo("BCEN"),  f.campo("BNOMBRE"), f.campo("BTRABA"),
          f.campo("BAFI"),  f.campo("BDIAS"),  f.campo("BCONT"), f.campo("BDIAL"),   f.campo("BHCON"),
          f.campo("BEPIG"), f.campo("BNIFCU"), f.campo("A20"),   f.campo("B20"),     f.campo("BHOES"),
          f.campo("BHONS"), f.campo("BENFE"),  f.campo("BHOIL"), f.campo("BACCI"),   f.campo("BB5"),
          f.campo("BB6"),   f.campo("BB8"),    f.campo("COZ1"),  f.campo("COZ2"),    f.campo("COZ3"),
          f.campo("B126")};
}

// The key of a contract in the unemployment and bonus tables: its value as text with
// "0" on the left up to 3 when the code reads as a number ("7" -> "007"), else the text
// as it stands.
std::string claveContrato(std::string_view BCONT);

// Which run builds the working table: the per-worker statement (one row at a time), or
// the per-company TC1 (all the company's rows at once), for one company or for every
// company of the month. The two TC1 runs differ on purpose: the all-companies run has no
// TRA39 rule, no maternity columns and no training hours.
enum class ModoCalculo { PorTrabajador, UnaEmpresa, TodasLasEmpresas };

class COTVAL final : public EstadoCalculo {
 public:
  explicit COTVAL(Programa& programa);
  Programa& programa() { return programa_; }

  ModoCalculo modo = ModoCalculo::PorTrabajador;

  // The step that derives the worker's statement from row 1 of GRID1.
  std::function<void(COTVAL&)> CALCULATRABAJADOR;
  // Told after each worker's statement is derived, with the statement and row 1 of GRID1
  // as they stand: the desktop shows them.
  std::function<void(const COTVAL&)> trabajadorCalculado;

  // CARGAEMPRESA: the statement cleared, then the employer loaded when `clave` is found in
  // ESA. The per-worker run passes an empty key, which finds nothing.
  void CARGAEMPRESA(std::string_view clave);
  // LEETRABAJADOR from the worker tables. Only the per-worker run takes EPICLAVE from Lib3.
  void LEETRABAJADOR() override;
  // LEEEPIGRAFE from the epigraph tables, each key sought once in the run.
  void LEEEPIGRAFE() override;

  // The working-time class of the worker of the current row: 0, 1, 2 or 3.
  double claseJornada(std::string_view empresa, std::string_view trabajador);
  // The unemployment class CONTIPO of a contract: 1 when missing or 0.
  double CONTIPO(std::string_view BCONT);
  // The days and bases of the working row from the payroll row.
  void diasYBases(const FilaNomina& fila);
  // The whole working row of one payroll row (the steps after the employer load), on the
  // current row of GRID1.
  void filaDeTrabajo(const FilaNomina& fila);

  // CALCULAEMPRESAS over the marked companies of the selection; reports the progress
  // through the dialogs (the company's number among the marked ones, its name, the
  // worker) and, after each report, throws TrabajoCancelado when the user asked to stop.
  void CALCULAEMPRESAS(const COTIZACION& sel);

 private:
  Programa& programa_;
  // The epigraph rates found in this run, by key: the tariff does not change during a
  // run, and every row looks up at least two epigraphs.
  struct RatesEpigrafe {
    bool hallado = false;
    double ILT = 0, IMS = 0;
  };
  std::unordered_map<std::string, RatesEpigrafe> epigrafes_;
};

}  // namespace valdor
