#include "stores/catalogo.h"

#include <system_error>

#include "stores/esquemas.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

constexpr std::string_view TITULOALMACENES = "VALDOR+";

}  // namespace

std::string nombrePeriodo(std::string_view ANOPERIODO, std::string_view MESPERIODO) {
  return "PX" + izquierda(recortaIzq(ANOPERIODO), 4) + std::string(MESPERIODO) + ".MDB";
}

std::string textoMesPeriodo(int mes) { return izquierda(std::to_string(mes), 2); }

std::string textoAnoPeriodo(int ano) { return izquierda(recortaIzq(std::to_string(ano)), 4); }


Almacenes::Almacenes(Carpetas carpetas, Dialogos& dialogos)
    : carpetas_(std::move(carpetas)), dialogos_(dialogos) {
  for (Almacen* a : {&periodo, &convenio, &empresas, &producto, &constant, &bonifica, &desempleo, &temporal,
                     &acuvaldor, &ilts, &formacion, &tipodoc, &cuentas})
    a->vigila(&fallos_);
}

Almacenes::~Almacenes() = default;

std::filesystem::path Almacenes::enTrabajo(std::string_view nombre) const {
  return resuelveFichero(carpetas_.trabajo, nombre);
}

std::filesystem::path Almacenes::enPrograma(std::string_view nombre) const {
  return resuelveFichero(carpetas_.programa, nombre);
}

void Almacenes::informa(const ErrorAlmacen& e, const std::filesystem::path& ruta, bool alCrear) {
  // The store stays closed: every job that runs before it opens again is refused.
  fallos_.anota(e.what());
  sinAbrir_.insert_or_assign(ruta.filename().string(), std::string(e.what()));
  if (e.tipo() == ErrorAlmacen::Tipo::Danado) {
    // A damaged file is checked, reported and kept as it is.
    dialogos_.mensaje(TITULOALMACENES, e.what(), Icono::Critico);
    return;
  }
  const std::string_view paso = e.tipo() == ErrorAlmacen::Tipo::Bloqueo ? "" : alCrear ? "Error al crear el almacén: "_cp
                                                                                       : "Error al abrir el almacén: "_cp;
  dialogos_.mensaje(TITULOALMACENES, std::string(paso) + e.what(), Icono::Critico);
}

void Almacenes::avisa(const ErrorAlmacen& e) {
  fallos_.anota(e.what());
  dialogos_.mensaje(TITULOALMACENES, e.what(), Icono::Critico);
}

std::vector<std::string> Almacenes::sinAbrir() const {
  std::vector<std::string> r;
  for (const auto& [nombre, mensaje] : sinAbrir_) r.push_back(mensaje);
  return r;
}

bool Almacenes::oficinaJet() const {
  for (std::string_view nombre :
       {NOMBREEMPRESAS, NOMBREPRODUCTO, NOMBRECONVENIO, NOMBRECONSTANT, NOMBREBONIFICA, NOMBREDESEMPLEO})
    if (esJet(motorDe(enPrograma(nombre)))) return true;
  return false;
}

bool Almacenes::crea(const std::filesystem::path& ruta, std::span<const DefTabla> tablas, Dueno dueno) {
  ALMACENACTUAL = ruta.filename().string();
  // Beside a payroll product's files, a store made by VALDOR+ would be taken by that
  // product for its own, and it could not read it.
  if (dueno == Dueno::Nominas && oficinaJet()) return false;
  try {
    return Almacen::crea(ruta, tablas);
  } catch (const ErrorAlmacen& e) {
    informa(e, ruta, true);
    return false;
  }
}

bool Almacenes::abre(Almacen& almacen, const std::filesystem::path& ruta, std::initializer_list<TablaDe> tablas,
                     bool deTrabajo) {
  ALMACENACTUAL = ruta.filename().string();
  // In a payroll product's office a work store it has not made yet is one without rows:
  // its tables read as empty, and nothing is made in its place.
  std::error_code ec;
  if (deTrabajo && !std::filesystem::exists(ruta, ec) && oficinaJet()) return false;
  OpcionesAlmacen opciones;
  for (const TablaDe& t : tablas) opciones.jet.tablas.emplace_back(t.nombre);
  try {
    almacen.abre(ruta, opciones);
  } catch (const ErrorAlmacen& e) {
    informa(e, ruta, false);
    return false;
  }
  sinAbrir_.erase(ruta.filename().string());
  bool todas = true;
  for (const TablaDe& t : tablas) {
    try {
      t.tabla->abre(almacen, t.nombre);
      exigeColumnas(*t.tabla, ruta);
    } catch (const ErrorAlmacen& e) {
      t.tabla->cierra();
      informa(e, ruta, false);
      todas = false;
    }
  }
  return todas;
}

void Almacenes::exigeColumnas(const Tabla& t, const std::filesystem::path& ruta) {
  if (!esquemas::seLeeSuContenido(t.nombre())) return;
  const DefTabla* def = esquemas::busca(t.nombre());
  if (!def) return;
  const std::vector<std::string> faltan = esquemas::columnasQueFaltan(t, *def);
  if (faltan.empty()) return;
  std::string lista;
  for (const std::string& c : faltan) lista += (lista.empty() ? "" : ", ") + c;
  throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste,
                     "A la tabla " + t.nombre() + " de " + entreComillas(ruta) +
                         std::string(" le faltan columnas que VALDOR+ lee: "_cp) + lista +
                         std::string(". Sin ellas sus valores se leerían vacíos."_cp));
}

// ---- Month store ----

std::filesystem::path Almacenes::rutaPeriodo() const {
  if (!recorta(NOMBREPERIODOFORZADO).empty()) return carpetas_.programa / NOMBREPERIODOFORZADO;
  return enPrograma(nombrePeriodo(ANOPERIODO, MESPERIODO));
}

bool Almacenes::CREAPERIODO() {
  const std::array<DefTabla, 2> tablas{esquemas::NOMIN(), esquemas::INCIDEN(true)};
  return crea(rutaPeriodo(), tablas);
}

bool Almacenes::ABREPERIODO() {
  const auto ruta = rutaPeriodo();
  std::error_code ec;
  if (!std::filesystem::exists(ruta, ec)) {
    // A month without a store is passed over without a word; its tables read empty.
    ALMACENACTUAL = ruta.filename().string();
    return false;
  }
  return abre(periodo, ruta, {{&NOMIN, "NOMIN"}, {&INCIDEN, "INCIDEN"}});
}

void Almacenes::CIERRAPERIODO() noexcept {
  INCIDEN.cierra();
  NOMIN.cierra();
  periodo.cierra();
}

// ---- Master stores ----

bool Almacenes::ABREMAESTROS() {
  bool bien = abre(convenio, enPrograma(NOMBRECONVENIO),
                   {{&CONVEN, "CONVEN"},
                    {&CATEG, "CATEG"},
                    {&CONVEPAGAS, "CONVEPAGAS"},
                    {&CONVEANTI, "CONVEANTI"},
                    {&CATEGORIAANTI, "CATEGORIAANTI"},
                    {&CATEGORIAPAGAS, "CATEGORIAPAGAS"}});
  bien &= abre(empresas, enPrograma(NOMBREEMPRESAS),
               {{&ESA, "ESA"},
                {&CENT, "CENT"},
                {&SECC, "SECC"},
                {&EmpresPagas, "EmpresPagas"},
                {&EmpresAntiguedad, "EmpresAntiguedad"}});
  bien &= abre(producto, enPrograma(NOMBREPRODUCTO),
               {{&WK, "WK"}, {&WKPAGAS, "WKPAGAS"}, {&WKANTIGUEDAD, "WKANTIGUEDAD"}});
  bien &= abre(constant, enPrograma(NOMBRECONSTANT),
               {{&POSTA, "POSTA"}, {&MUT, "MUT"}, {&CONTRA, "CONTRA"}, {&EPIGRA, "EPIGRA"}});
  bien &= abre(bonifica, enPrograma(NOMBREBONIFICA), {{&BONIFI, "BONIFI"}});
  bien &= abre(desempleo, enPrograma(NOMBREDESEMPLEO), {{&DESEMPLEO, "DESEMPLEO"}});
  return bien;
}

void Almacenes::CIERRAMAESTROS() noexcept {
  for (Tabla* t : {&CONVEN, &CATEG, &CONVEPAGAS, &CONVEANTI, &CATEGORIAANTI, &CATEGORIAPAGAS, &ESA, &CENT, &SECC,
                   &EmpresPagas, &EmpresAntiguedad, &WK, &WKPAGAS, &WKANTIGUEDAD, &POSTA, &MUT, &CONTRA, &EPIGRA,
                   &BONIFI, &DESEMPLEO})
    t->cierra();
  for (Almacen* a : {&convenio, &empresas, &producto, &constant, &bonifica, &desempleo}) a->cierra();
}

// ---- Work stores ----

namespace {
std::array<DefTabla, 1> una(const DefTabla& t) { return {t}; }
constexpr bool DETRABAJO = true;
}  // namespace

bool Almacenes::CREATEMPORAL() {
  // The temp store is always VALDOR+'s own SQLite file: one in another engine was left by
  // a run of the old program, and is of no use to anybody.
  if (const Motor m = motorDe(enTrabajo(NOMBRETEMPORAL)); m != Motor::Ninguno && m != Motor::SQLite) BORRATEMPORAL();
  return crea(enTrabajo(NOMBRETEMPORAL), una(esquemas::TMPVALDOR()), Dueno::Valdor);
}
bool Almacenes::ABRETEMPORAL() {
  if (!abre(temporal, enTrabajo(NOMBRETEMPORAL), {{&TMPVALDOR, "TMPVALDOR"}})) return false;
  // The temp store lives for one run of the program, and a start deletes one left by a
  // run that did not end: it needs no journal on disk and no flush to the disk at each
  // commit, and the lines of a month are kept in memory until the run writes them.
  try {
    temporal.ejecuta("PRAGMA journal_mode = MEMORY");
    temporal.ejecuta("PRAGMA synchronous = OFF");
    temporal.ejecuta("PRAGMA cache_size = -131072");
  } catch (const ErrorAlmacen& e) {
    informa(e, enTrabajo(NOMBRETEMPORAL), false);
    return false;
  }
  return true;
}
void Almacenes::CIERRATEMPORAL() noexcept {
  TMPVALDOR.cierra();
  temporal.cierra();
}
void Almacenes::BORRATEMPORAL() noexcept {
  std::error_code ec;
  const auto ruta = enTrabajo(NOMBRETEMPORAL);
  std::filesystem::remove(ruta, ec);
  std::filesystem::remove(ruta.string() + "-journal", ec);
}

bool Almacenes::CREAACUVALDOR() { return crea(enTrabajo(NOMBREACUVALDOR), una(esquemas::VALDORTA())); }
bool Almacenes::ABREACUVALDOR() {
  return abre(acuvaldor, enTrabajo(NOMBREACUVALDOR), {{&VALDORTA, "VALDORTA"}}, DETRABAJO);
}
void Almacenes::CIERRAACUVALDOR() noexcept {
  VALDORTA.cierra();
  acuvaldor.cierra();
}

bool Almacenes::CREAILTS() { return crea(enTrabajo(NOMBREILTS), una(esquemas::ILTS())); }
bool Almacenes::ABREILTS() { return abre(ilts, enTrabajo(NOMBREILTS), {{&ILTS, "ILTS"}}, DETRABAJO); }
void Almacenes::CIERRAILTS() noexcept {
  ILTS.cierra();
  ilts.cierra();
}

bool Almacenes::CREAFORMACION() {
  return crea(enTrabajo(NOMBREFORMACION), una(esquemas::FORMACION()));
}
bool Almacenes::ABREFORMACION() {
  return abre(formacion, enTrabajo(NOMBREFORMACION), {{&FORMACION, "FORMACION"}}, DETRABAJO);
}
void Almacenes::CIERRAFORMACION() noexcept {
  FORMACION.cierra();
  formacion.cierra();
}

bool Almacenes::CREATIPODOC() { return crea(enTrabajo(NOMBRETIPODOC), una(esquemas::TDOCUMENTO())); }
bool Almacenes::ABRETIPODOC() {
  return abre(tipodoc, enTrabajo(NOMBRETIPODOC), {{&TDOCUMENTO, "TDOCUMENTO"}}, DETRABAJO);
}
void Almacenes::CIERRATIPODOC() noexcept {
  TDOCUMENTO.cierra();
  tipodoc.cierra();
}

bool Almacenes::CREACUENTAS() { return crea(enTrabajo(NOMBRECUENTAS), una(esquemas::CUENTASTAB())); }
bool Almacenes::ABRECUENTAS() {
  return abre(cuentas, enTrabajo(NOMBRECUENTAS), {{&CUENTASTAB, "CUENTASTAB"}}, DETRABAJO);
}
void Almacenes::CIERRACUENTAS() noexcept {
  CUENTASTAB.cierra();
  cuentas.cierra();
}

}  // namespace valdor
