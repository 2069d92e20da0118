// The store catalogue: every store's file name and folder, and the one discipline of
// create-when-missing, open and close that every store follows. The public handles
// (one database and one table cursor per table) are members of one stores object,
// `Almacenes`, owned by the run of the program.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "stores/dialogos.h"
#include "stores/almacen.h"
#include "stores/ficheros.h"

namespace valdor {

// File names of the catalogue. The master and month stores live in the program
// folder, the work stores in the current folder, opened by bare name.
inline constexpr std::string_view NOMBRECONVENIO = "CONVENIO.MDB";
inline constexpr std::string_view NOMBREEMPRESAS = "EMPRESAS.MDB";
inline constexpr std::string_view NOMBREPRODUCTO = "PRODUCTO.MDB";
inline constexpr std::string_view NOMBRECONSTANT = "CONSTANT.MDB";
inline constexpr std::string_view NOMBREBONIFICA = "BONIFICA.MDB";
inline constexpr std::string_view NOMBREDESEMPLEO = "DESEMPLEO.MDB";
inline constexpr std::string_view NOMBRETEMPORAL = "TEMPORAL VALDOR.MDB";
inline constexpr std::string_view NOMBREACUVALDOR = "ACUVALDOR.MDB";
inline constexpr std::string_view NOMBREILTS = "ILTS.MDB";
inline constexpr std::string_view NOMBREFORMACION = "FORMACION.MDB";
inline constexpr std::string_view NOMBRETIPODOC = "TIPO DE DOCUMENTO.MDB";
inline constexpr std::string_view NOMBRECUENTAS = "CUENTAS BANCARIAS EMPRESAS.MDB";

// The two folders the program relies on.
struct Carpetas {
  std::filesystem::path programa;  // master stores and month stores
  std::filesystem::path trabajo;   // work stores, settings, rate files
};

// The month store's name: "PX", the year without leading blanks cut to four
// characters, the month as it stands (plain decimal, no fill), ".MDB". March 2002 is
// "PX20023.MDB", December 2002 "PX200212.MDB". No separator, no fill: the payroll
// product writes these files so.
std::string nombrePeriodo(std::string_view ANOPERIODO, std::string_view MESPERIODO);

// MESPERIODO and ANOPERIODO from the numbers of a month and a year, as the selection
// sets them: the month as plain decimal text without a leading zero (at most 2
// characters), the year's first four characters.
std::string textoMesPeriodo(int mes);
std::string textoAnoPeriodo(int ano);

class Almacenes {
 public:
  Almacenes(Carpetas carpetas, Dialogos& dialogos);
  ~Almacenes();
  Almacenes(const Almacenes&) = delete;
  Almacenes& operator=(const Almacenes&) = delete;

  const Carpetas& carpetas() const { return carpetas_; }

  // The month of the period store, set before it is touched.
  std::string MESPERIODO;
  std::string ANOPERIODO;
  // Replaces the whole computed name of the period store when not blank. Nothing in
  // the system sets it; it is the hook by which a caller may redirect the store.
  std::string NOMBREPERIODOFORZADO;
  // The file name of the store last created or opened.
  std::string ALMACENACTUAL;

  // ---- Public handles ----
  Almacen periodo;
  Tabla NOMIN, INCIDEN;

  Almacen convenio;
  Tabla CONVEN, CATEG, CONVEPAGAS, CONVEANTI, CATEGORIAANTI, CATEGORIAPAGAS;
  Almacen empresas;
  Tabla ESA, CENT, SECC, EmpresPagas, EmpresAntiguedad;
  Almacen producto;
  Tabla WK, WKPAGAS, WKANTIGUEDAD;
  Almacen constant;
  Tabla POSTA, MUT, CONTRA, EPIGRA;
  Almacen bonifica;
  Tabla BONIFI;
  Almacen desempleo;
  Tabla DESEMPLEO;

  Almacen temporal;
  Tabla TMPVALDOR;
  Almacen acuvaldor;
  Tabla VALDORTA;
  Almacen ilts;
  Tabla ILTS;
  Almacen formacion;
  Tabla FORMACION;
  Almacen tipodoc;
  Tabla TDOCUMENTO;
  Almacen cuentas;
  Tabla CUENTASTAB;
  // The company's deduction concepts: a public handle that no open procedure opens, so
  // in a normal run it reads as an empty table and the statement has no deductions.
  Tabla DESCUENTOS;

  // An office of the payroll product: its master stores are Jet files. VALDOR+ then
  // creates no store beside them (a missing month or work store reads as empty), but
  // its own temp store.
  bool oficinaJet() const;

  // ---- Failures ----
  // Every failure of a store met since the start: at its opening, and in any read or
  // write while it was open (also those a rule passes over, reading the store as
  // empty). A job compares the count at its start and at its end.
  const RegistroFallos& fallos() const { return fallos_; }
  // The messages of the stores whose last opening failed: they stay closed, and read as
  // empty, until they open again.
  std::vector<std::string> sinAbrir() const;
  // Shows a failure that a rule met reading a store, and counts it.
  void avisa(const ErrorAlmacen& e);

  // ---- Create, open, close ----
  // A create makes the store when its file is missing and stops quietly when it
  // exists; it returns true when it made the file. An open returns true when the store
  // and all its tables are open. Failures are shown through the dialogs, as the
  // opening discipline says, and never stop the program.
  std::filesystem::path rutaPeriodo() const;
  bool CREAPERIODO();
  bool ABREPERIODO();
  void CIERRAPERIODO() noexcept;

  bool ABREMAESTROS();
  void CIERRAMAESTROS() noexcept;

  bool CREATEMPORAL();
  bool ABRETEMPORAL();
  void CIERRATEMPORAL() noexcept;
  // Deletes "TEMPORAL VALDOR.MDB" (the exit of the program).
  void BORRATEMPORAL() noexcept;

  bool CREAACUVALDOR();
  bool ABREACUVALDOR();
  void CIERRAACUVALDOR() noexcept;

  bool CREAILTS();
  bool ABREILTS();
  void CIERRAILTS() noexcept;

  bool CREAFORMACION();
  bool ABREFORMACION();
  void CIERRAFORMACION() noexcept;

  bool CREATIPODOC();
  bool ABRETIPODOC();
  void CIERRATIPODOC() noexcept;

  bool CREACUENTAS();
  bool ABRECUENTAS();
  void CIERRACUENTAS() noexcept;

 private:
  struct TablaDe {
    Tabla* tabla;
    std::string_view nombre;
  };
  // Whose file a store is: the payroll product's, made here only in an office of
  // SQLite stores, or VALDOR+'s own.
  enum class Dueno { Nominas, Valdor };
  bool crea(const std::filesystem::path& ruta, std::span<const DefTabla> tablas, Dueno dueno = Dueno::Nominas);
  // A work store (`deTrabajo`) missing in a payroll product's office reads as empty.
  bool abre(Almacen& almacen, const std::filesystem::path& ruta, std::initializer_list<TablaDe> tablas,
            bool deTrabajo = false);
  // Throws when the open table lacks a column that the rules read.
  static void exigeColumnas(const Tabla& t, const std::filesystem::path& ruta);
  // A store that could not be made or opened: shown, counted, and kept as closed.
  void informa(const ErrorAlmacen& e, const std::filesystem::path& ruta, bool alCrear);
  std::filesystem::path enTrabajo(std::string_view nombre) const;
  std::filesystem::path enPrograma(std::string_view nombre) const;

  Carpetas carpetas_;
  Dialogos& dialogos_;
  RegistroFallos fallos_;
  std::map<std::string, std::string> sinAbrir_;  // file name, message
};

}  // namespace valdor
