#include "stores/almacen.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "stores/colacion.h"
#include "stores/fechas.h"
#include "stores/literales.h"
#include "stores/ficheros.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

// ---- Valor --------------------------------------------------------------------------

std::string Valor::texto() const {
  if (const auto* t = std::get_if<std::string>(&v_)) return *t;
  if (const auto* n = std::get_if<double>(&v_)) return textoGeneral(*n);
  return {};
}

double Valor::numero() const {
  if (const auto* n = std::get_if<double>(&v_)) return *n;
  if (const auto* t = std::get_if<std::string>(&v_)) return valorNumerico(*t);
  return 0.0;
}

std::string comillaIdentificador(std::string_view nombre) {
  std::string r = "\"";
  for (char c : nombre) {
    if (c == '"') r += '"';
    r += c;
  }
  return r + "\"";
}

namespace {

TipoColumna tipoDeclarado(std::string_view declarado, int& ancho) {
  const std::string t = mayusculasAscii(declarado);
  ancho = 0;
  if (const auto p = t.find('('); p != std::string::npos) ancho = static_cast<int>(valorNumerico(t.substr(p + 1)));
  if (t.find("CHAR") != std::string::npos || t.find("TEXT") != std::string::npos ||
      t.find("CLOB") != std::string::npos)
    return TipoColumna::Texto;
  if (t.find("DATE") != std::string::npos || t.find("TIME") != std::string::npos) return TipoColumna::Fecha;
  if (t.empty()) return TipoColumna::Texto;
  return TipoColumna::Doble;
}

}  // namespace

// ---- Almacen ------------------------------------------------------------------------

Almacen::~Almacen() {
  cierra();
  copia_.reset();
}

ErrorAlmacen errorDanado(const std::filesystem::path& ruta, std::string detalle) {
  return ErrorAlmacen(ErrorAlmacen::Tipo::Danado,
                      "El fichero " + entreComillas(ruta) +
                          " no es una base de datos v\xE1lida o est\xE1 da\xF1\x61\x64o. No se ha "
                          "modificado: rep\xE1relo o rec\xFAperelo de una copia de seguridad.",
                      std::move(detalle));
}

[[noreturn]] void Almacen::falla(int codigo, std::string_view que) const {
  const std::string fichero = entreComillas(ruta_);
  const std::string detalle = db_ ? utf8ACp1252(sqlite3_errmsg(db_)) : utf8ACp1252(sqlite3_errstr(codigo));
  auto error = [&]() -> ErrorAlmacen {
    if (soloLectura_ && (codigo & 0xFF) == SQLITE_READONLY)
      return ErrorAlmacen(ErrorAlmacen::Tipo::SoloLectura,
                          "El fichero " + fichero +
                              std::string(" es del programa de nóminas (una base de datos Jet): VALDOR+ sólo lo lee y "
                                          "no escribe en él."_cp));
    switch (codigo & 0xFF) {
      case SQLITE_BUSY:
      case SQLITE_LOCKED:
        return ErrorAlmacen(ErrorAlmacen::Tipo::Bloqueo,
                            "El fichero " + fichero +
                                std::string(" está en uso por otro programa (el programa de nóminas u otra "
                                            "ejecución de VALDOR+), que lo tiene bloqueado. Espere a que acabe, o "
                                            "ciérrelo, y vuelva a intentarlo."_cp));
      case SQLITE_NOTADB:
      case SQLITE_CORRUPT:
        return errorDanado(ruta_, detalle);
      case SQLITE_FULL:
        return ErrorAlmacen(ErrorAlmacen::Tipo::Disco, "No queda espacio en el disco para escribir en " + fichero + ".");
      case SQLITE_IOERR:
      case SQLITE_READONLY:
      case SQLITE_CANTOPEN:
      case SQLITE_PERM: {
        // The system's own reason, in Spanish, when the engine kept one.
        const int sistema = db_ ? sqlite3_system_errno(db_) : 0;
        if (esDiscoLleno(sistema) || sistema == EFBIG)
          return ErrorAlmacen(ErrorAlmacen::Tipo::Disco,
                              "No queda espacio en el disco para escribir en " + fichero + ".");
        const std::string razon = sistema                               ? razonDelSistema(sistema)
                                  : (codigo & 0xFF) == SQLITE_IOERR     ? std::string("error de entrada y salida del disco")
                                  : (codigo & 0xFF) == SQLITE_CANTOPEN  ? std::string("no se puede abrir")
                                                                        : std::string("no hay permiso");
        return ErrorAlmacen(ErrorAlmacen::Tipo::Disco, "No se puede escribir o leer " + fichero + ": " + razon + ".");
      }
      case SQLITE_CONSTRAINT:
        return ErrorAlmacen(ErrorAlmacen::Tipo::Duplicado,
                            "Ya existe un registro con la misma clave en " + fichero + " (" + std::string(que) + ").");
      default:
        return ErrorAlmacen(ErrorAlmacen::Tipo::Otro, std::string(que) + " en " + fichero + ": " + detalle);
    }
  }();
  const bool respuesta = error.tipo() == ErrorAlmacen::Tipo::Duplicado || error.tipo() == ErrorAlmacen::Tipo::SoloLectura;
  if (registro_ && !respuesta) registro_->anota(error.what());
  throw error;
}

bool Almacen::crea(const std::filesystem::path& ruta, std::span<const DefTabla> tablas) {
  // The creation attempt is the test for the file: an existing file stops it quietly
  // and is never touched. O_EXCL makes the test and the creation one step.
  const int fd = ::open(ruta.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
  if (fd < 0) {
    if (errno == EEXIST) return false;
    const int e = errno;
    const std::string fichero = entreComillas(ruta);
    if (e == ENOENT)
      throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste,
                         "No existe la carpeta de " + fichero + ": no se puede crear el fichero.");
    if (e == ENOSPC)
      throw ErrorAlmacen(ErrorAlmacen::Tipo::Disco, "No queda espacio en el disco para crear " + fichero + ".");
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro,
                       "No se puede crear " + fichero + ": " + razonDelSistema(e) + ".");
  }
  ::close(fd);

  try {
    Almacen nuevo;
    nuevo.abre(ruta);
    Transaccion t(nuevo);
    for (const DefTabla& tabla : tablas)
      for (const std::string& sql : sqlDeCreacion(tabla)) nuevo.ejecuta(sql);
    t.confirma();
  } catch (...) {
    // A half-made store is ours: remove it so that the next start creates it whole.
    std::error_code ec;
    std::filesystem::remove(ruta, ec);
    std::filesystem::remove(ruta.string() + "-journal", ec);
    throw;
  }
  return true;
}

void Almacen::abre(const std::filesystem::path& ruta, OpcionesAlmacen opciones) {
  cierra();
  ruta_ = ruta;
  soloLectura_ = false;
  std::error_code ec;
  if (!std::filesystem::is_regular_file(ruta, ec))
    throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste, "No se encuentra el fichero " + entreComillas(ruta) + ".");
  motor_ = motorDe(ruta);
  if (esJet(motor_)) {
    abreJet(opciones);
    return;
  }
  // A file with the header of neither engine is no store, even one that SQLite would
  // take for an empty database (a Jet file cut to its first bytes). An empty file is
  // one being made.
  if (motor_ == Motor::Otro && std::filesystem::file_size(ruta, ec) > 0) throw errorDanado(ruta);
  copia_.reset();

  preparaBibliotecaSqlite();
  sqlite3* db = nullptr;
  const int rc = sqlite3_open_v2(ruta.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    sqlite3_close_v2(db);
    falla(rc, "Apertura");
  }
  db_ = db;
  ++apertura_;
  sqlite3_busy_timeout(db_, static_cast<int>(opciones.esperaBloqueo.count()));
  sqlite3_extended_result_codes(db_, 1);
  registraColacionEspanol(db_);

  // A sound database answers from its catalogue; anything else (garbage, a file of
  // another engine) is reported and left exactly as it is. Its pages are read once too,
  // so that a damaged one is found now and not half-way through a run; a file checked
  // before and unchanged since is not read again.
  try {
    Sentencia s(*this, "SELECT count(*) FROM sqlite_master");
    s.paso();
    compruebaPaginas();
  } catch (...) {
    cierra();
    throw;
  }
}

void Almacen::compruebaPaginas() {
  const auto antes = identidadDe(ruta_);
  if (antes && comprobado_ == antes) return;
  Sentencia revision(*this, "PRAGMA quick_check(1)");
  std::string resultado = revision.paso() ? revision.valor(0).texto() : std::string("sin respuesta");
  if (resultado != "ok") throw errorDanado(ruta_, resultado);
  comprobado_ = antes;
}

void Almacen::abreJet(const OpcionesAlmacen& opciones) {
  const auto identidad = identidadDe(ruta_);
  const bool igual = copia_ && identidad && copia_->ruta == ruta_ && copia_->identidad == *identidad &&
                     copia_->tablas == opciones.jet.tablas;
  if (!igual) {
    copia_.reset();
    CopiaJet nueva = copiaJet(ruta_, opciones.jet);
    copia_ = CopiaRetenida{std::move(nueva.base), ruta_, nueva.identidad, opciones.jet.tablas};
  }
  db_ = copia_->base.get();
  copiaEnUso_ = true;
  soloLectura_ = true;
  ++apertura_;
}

void Almacen::cierra() noexcept {
  preparadas_.clear();
  libres_.clear();
  if (db_ != nullptr) {
    if (!sqlite3_get_autocommit(db_)) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    // The copy of a Jet file stays for the next opening; statements still held by
    // cursors of an SQLite file finish its close when they are finalised.
    if (!copiaEnUso_) sqlite3_close_v2(db_);
    copiaEnUso_ = false;
    db_ = nullptr;
  }
  ++generacion_;
}

bool Almacen::tieneTabla(std::string_view tabla) {
  if (!abierto()) return false;
  Sentencia s(*this, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE");
  s.vincula(1, Valor(tabla));
  return s.paso();
}

std::int64_t Almacen::ejecuta(std::string_view sql, std::initializer_list<Valor> parametros) {
  Sentencia s(*this, sql);
  int i = 1;
  for (const Valor& v : parametros) s.vincula(i++, v);
  while (s.paso()) {
  }
  return sqlite3_changes64(db_);
}

Consulta Almacen::consulta(std::string_view sql, std::vector<Valor> parametros) {
  std::string texto(sql);
  std::optional<SentenciaConsulta> preparada;
  if (auto it = libres_.find(texto); it != libres_.end() && !it->second.empty()) {
    preparada.emplace(std::move(it->second.back()));
    it->second.pop_back();
  } else {
    preparada.emplace(Sentencia(*this, sql));
  }
  int i = 1;
  for (const Valor& v : parametros) preparada->sentencia.vincula(i++, v);
  return Consulta(*std::move(preparada), *this, std::move(texto));
}

void Almacen::devuelve(std::string sql, SentenciaConsulta preparada) noexcept {
  // A few of each text are enough: queries of one text open at once are rare.
  constexpr std::size_t GUARDADAS = 4;
  try {
    auto& lista = libres_[std::move(sql)];
    if (lista.size() >= GUARDADAS) return;
    preparada.sentencia.reinicia();
    lista.push_back(std::move(preparada));
  } catch (...) {
    // Out of memory: the statement is finalised instead of kept.
  }
}

Sentencia& Almacen::preparada(const std::string& sql) {
  auto it = preparadas_.find(sql);
  if (it == preparadas_.end()) it = preparadas_.emplace(sql, std::make_unique<Sentencia>(*this, sql)).first;
  it->second->reinicia();
  return *it->second;
}

bool almacenesEnVariosHilos() { return sqlite3_threadsafe() != 0; }

void preparaBibliotecaSqlite() {
  // Before the library starts, or not at all (another part of the process started it).
  static const int preparada = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  (void)preparada;
}

LecturaContinua::LecturaContinua(Almacen& almacen) : almacen_(almacen) {
  if (almacen_.abierto() && sqlite3_get_autocommit(almacen_.conexion()))
    abierta_ = sqlite3_exec(almacen_.conexion(), "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
}

LecturaContinua::~LecturaContinua() {
  if (abierta_ && almacen_.abierto() && !sqlite3_get_autocommit(almacen_.conexion()))
    sqlite3_exec(almacen_.conexion(), "COMMIT", nullptr, nullptr, nullptr);
}

void Almacen::empieza() { ejecuta("BEGIN IMMEDIATE"); }
void Almacen::confirma() { ejecuta("COMMIT"); }
void Almacen::deshaz() noexcept {
  if (db_ != nullptr && !sqlite3_get_autocommit(db_)) {
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    ++generacion_;
  }
}

// ---- Sentencia ----------------------------------------------------------------------

Sentencia::Sentencia(const Almacen& almacen, std::string_view sql) : almacen_(&almacen) {
  if (!almacen.abierto())
    throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste,
                       "El almac\xE9n " + entreComillas(almacen.ruta()) + " no est\xE1 abierto.");
  const int rc = sqlite3_prepare_v2(almacen.conexion(), sql.data(), static_cast<int>(sql.size()), &st_, nullptr);
  if (rc != SQLITE_OK) almacen.falla(rc, "Consulta");
}

Sentencia::~Sentencia() { sqlite3_finalize(st_); }

Sentencia::Sentencia(Sentencia&& otra) noexcept
    : almacen_(std::exchange(otra.almacen_, nullptr)), st_(std::exchange(otra.st_, nullptr)) {}

Sentencia& Sentencia::operator=(Sentencia&& otra) noexcept {
  if (this != &otra) {
    sqlite3_finalize(st_);
    almacen_ = std::exchange(otra.almacen_, nullptr);
    st_ = std::exchange(otra.st_, nullptr);
  }
  return *this;
}

void Sentencia::vincula(int posicion, const Valor& valor) {
  int rc = SQLITE_OK;
  if (valor.esNulo()) {
    rc = sqlite3_bind_null(st_, posicion);
  } else if (valor.esNumero()) {
    rc = sqlite3_bind_double(st_, posicion, valor.numero());
  } else {
    const std::string utf8 = cp1252AUtf8(valor.texto());
    rc = sqlite3_bind_text(st_, posicion, utf8.data(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
  }
  if (rc != SQLITE_OK) almacen_->falla(rc, "Par\xE1metro");
}

bool Sentencia::paso() {
  const int rc = sqlite3_step(st_);
  if (!sqlite3_stmt_readonly(st_)) const_cast<Almacen*>(almacen_)->anotaEscritura();
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  sqlite3_reset(st_);
  almacen_->falla(rc, "Lectura o escritura");
}

void Sentencia::reinicia() {
  sqlite3_reset(st_);
  sqlite3_clear_bindings(st_);
}

int Sentencia::columnas() const { return sqlite3_column_count(st_); }

std::string Sentencia::nombreColumna(int i) const {
  const char* n = sqlite3_column_name(st_, i);
  return n ? n : "";
}

Valor Sentencia::valor(int i) const { return valorComo(i, tipoDeclarado(i)); }

TipoColumna Sentencia::tipoDeclarado(int i) const {
  const char* declarado = sqlite3_column_decltype(st_, i);
  int ancho = 0;
  return declarado ? valdor::tipoDeclarado(declarado, ancho) : TipoColumna::Texto;
}

Valor Sentencia::valorComo(int i, TipoColumna tipo) const {
  switch (sqlite3_column_type(st_, i)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return Valor(sqlite3_column_double(st_, i));
    default: {
      const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(st_, i));
      std::string texto = utf8ACp1252({p ? p : "", static_cast<std::size_t>(sqlite3_column_bytes(st_, i))});
      if (tipo == TipoColumna::Fecha) return Valor(isoADMA(texto));
      return Valor(std::move(texto));
    }
  }
}

// ---- Consulta -----------------------------------------------------------------------

std::size_t HashSinCaso::operator()(std::string_view nombre) const noexcept {
  std::size_t h = 14695981039346656037ULL;
  for (char c : nombre) h = (h ^ static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 32 : c)) * 1099511628211ULL;
  return h;
}

bool IgualSinCaso::operator()(std::string_view a, std::string_view b) const noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const char x = a[i] >= 'a' && a[i] <= 'z' ? static_cast<char>(a[i] - 32) : a[i];
    const char y = b[i] >= 'a' && b[i] <= 'z' ? static_cast<char>(b[i] - 32) : b[i];
    if (x != y) return false;
  }
  return true;
}

SentenciaConsulta::SentenciaConsulta(Sentencia s) : sentencia(std::move(s)) {
  const int n = sentencia.columnas();
  tipos.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    porNombre.emplace(sentencia.nombreColumna(i), i);
    tipos.push_back(sentencia.tipoDeclarado(i));
  }
}

Consulta::Consulta(Sentencia sentencia) : p_(std::move(sentencia)) {}

Consulta::Consulta(SentenciaConsulta preparada, Almacen& origen, std::string sql)
    : p_(std::move(preparada)), origen_(&origen), apertura_(origen.apertura()), sql_(std::move(sql)) {}

Consulta::Consulta(Consulta&& otra) noexcept
    : p_(std::move(otra.p_)),
      origen_(std::exchange(otra.origen_, nullptr)),
      apertura_(otra.apertura_),
      sql_(std::move(otra.sql_)) {}

Consulta::~Consulta() {
  if (origen_ && origen_->abierto() && origen_->apertura() == apertura_ && p_.sentencia.valida())
    origen_->devuelve(std::move(sql_), std::move(p_));
}

bool Consulta::siguiente() { return p_.sentencia.paso(); }

Valor Consulta::campo(std::string_view columna) const {
  const auto it = p_.porNombre.find(columna);
  return it == p_.porNombre.end() ? Valor() : p_.sentencia.valorComo(it->second, p_.tipos[static_cast<std::size_t>(it->second)]);
}

// ---- Tabla --------------------------------------------------------------------------

namespace {
constexpr int TAMANOLOTE = 256;
}

Tabla::Tabla() = default;
Tabla::~Tabla() { cierra(); }

void Tabla::abre(Almacen& almacen, std::string_view nombre) {
  cierra();
  Sentencia s(almacen, "SELECT name FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE");
  s.vincula(1, Valor(nombre));
  if (!s.paso())
    throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste, "Falta la tabla " + std::string(nombre) + " en " +
                                                         entreComillas(almacen.ruta()) + ".");
  nombre_ = s.valor(0).texto();
  Sentencia info(almacen, "SELECT name, type FROM pragma_table_info(?)");
  info.vincula(1, Valor(nombre_));
  while (info.paso()) {
    DefColumna c;
    c.nombre = info.valor(0).texto();
    c.tipo = tipoDeclarado(info.valor(1).texto(), c.ancho);
    posiciones_.emplace(mayusculasAscii(c.nombre), static_cast<int>(columnas_.size()));
    columnas_.push_back(std::move(c));
  }
  listaColumnas_ = "rowid";
  for (const DefColumna& c : columnas_) listaColumnas_ += ", " + comillaIdentificador(c.nombre);
  almacen_ = &almacen;
  apertura_ = almacen.apertura();
  alPrincipio_ = true;
}

void Tabla::cierra() noexcept {
  almacen_ = nullptr;
  nombre_.clear();
  columnas_.clear();
  posiciones_.clear();
  indice_.clear();
  claves_.clear();
  actual_.reset();
  lote_.clear();
  edicion_.reset();
  formas_.clear();
  sentencias_.clear();
  listaColumnas_.clear();
  ultimaBusca_.reset();
  sinCoincidencia_ = false;
  alPrincipio_ = false;
}

bool Tabla::disponible() {
  if (almacen_ != nullptr && (!almacen_->abierto() || almacen_->apertura() != apertura_)) cierra();
  return almacen_ != nullptr;
}

int Tabla::posicionColumna(std::string_view columna) const {
  const auto it = posiciones_.find(mayusculasAscii(columna));
  return it == posiciones_.end() ? -1 : it->second;
}

bool Tabla::indice(std::string_view nombre) {
  if (!disponible()) return false;
  // The index in use already: nothing to look up (the rules select it before each seek).
  if (!indice_.empty() && mayusculasAscii(indice_) == mayusculasAscii(nombre)) return true;
  // A Jet file's index whose name another table of the file took first is kept in the
  // copy as "TABLA.INDICE".
  Sentencia lista(*almacen_,
                  "SELECT name FROM pragma_index_list(?) WHERE name = ? COLLATE NOCASE OR name = ? COLLATE NOCASE "
                  "ORDER BY length(name)");
  lista.vincula(1, Valor(nombre_));
  lista.vincula(2, Valor(nombre));
  lista.vincula(3, Valor(nombre_ + "." + std::string(nombre)));
  if (!lista.paso()) return false;
  const std::string real = lista.valor(0).texto();
  std::vector<int> claves;
  Sentencia info(*almacen_, "SELECT name FROM pragma_index_info(?) ORDER BY seqno");
  info.vincula(1, Valor(real));
  while (info.paso()) {
    const int p = posicionColumna(info.valor(0).texto());
    if (p < 0) return false;
    claves.push_back(p);
  }
  indice_ = real;
  claves_ = std::move(claves);
  lote_.clear();
  return true;
}

const std::string& Tabla::listaColumnas() const { return listaColumnas_; }

std::string Tabla::expresionClave(std::size_t k, bool parametro) const {
  const DefColumna& c = columnas_[static_cast<std::size_t>(claves_[k])];
  if (!parametro) return comillaIdentificador(c.nombre);
  return c.tipo == TipoColumna::Texto ? "? COLLATE ESPANOL" : "?";
}

std::string Tabla::ordenIndice(bool descendente) const {
  std::string r;
  const char* sentido = descendente ? " DESC" : "";
  for (std::size_t k = 0; k < claves_.size(); ++k) {
    const DefColumna& c = columnas_[static_cast<std::size_t>(claves_[k])];
    r += comillaIdentificador(c.nombre);
    if (c.tipo == TipoColumna::Texto) r += " COLLATE ESPANOL";
    r += sentido;
    r += ", ";
  }
  return r + "rowid" + sentido;
}

Sentencia& Tabla::sentencia(const std::string& sql) {
  auto it = sentencias_.find(sql);
  if (it == sentencias_.end()) it = sentencias_.emplace(sql, Sentencia(*almacen_, sql)).first;
  it->second.reinicia();
  return it->second;
}

Valor Tabla::valorParaColumna(int i, const Valor& v) const {
  const DefColumna& c = columnas_[static_cast<std::size_t>(i)];
  if (v.esNulo()) return v;
  switch (c.tipo) {
    case TipoColumna::Texto: {
      std::string t = v.texto();
      if (c.ancho > 0 && t.size() > static_cast<std::size_t>(c.ancho))
        throw ErrorAlmacen(ErrorAlmacen::Tipo::Dato, "El valor \"" + t + "\" no cabe en la columna " + c.nombre +
                                                         " de " + nombre_ + " (" + std::to_string(c.ancho) +
                                                         " caracteres).");
      return Valor(std::move(t));
    }
    case TipoColumna::Doble: {
      if (v.esNumero()) return v;
      if (const auto n = convierteNumero(v.texto())) return Valor(*n);
      throw ErrorAlmacen(ErrorAlmacen::Tipo::Dato, "El valor \"" + v.texto() + "\" no es un n\xFAmero (columna " +
                                                       c.nombre + " de " + nombre_ + ").");
    }
    case TipoColumna::Fecha: {
      const std::string t = recorta(v.texto());
      if (t.empty() || t == MASCARAFECHA) return {};
      if (const auto f = leeFechaDMA(t)) return Valor(textoISO(*f));
      if (leeFechaISO(t)) return Valor(t);
      throw ErrorAlmacen(ErrorAlmacen::Tipo::Dato, "El valor \"" + t + "\" no es una fecha (columna " + c.nombre +
                                                       " de " + nombre_ + ").");
    }
  }
  return v;
}

Tabla::Fila Tabla::leeFila(const Sentencia& s) const {
  Fila f;
  f.rowid = static_cast<std::int64_t>(s.valor(0).numero());
  f.valores.reserve(columnas_.size());
  for (std::size_t i = 0; i < columnas_.size(); ++i)
    f.valores.push_back(s.valorComo(static_cast<int>(i) + 1, columnas_[i].tipo));
  return f;
}

void Tabla::ponActual(std::optional<Fila> fila, bool alPrincipio) {
  actual_ = std::move(fila);
  ultimaBusca_.reset();
  alPrincipio_ = !actual_ && alPrincipio;
  borrada_ = false;
  lote_.clear();
  edicion_.reset();
}

std::string Tabla::sqlUnaFila(const std::string& donde, bool descendente) const {
  return "SELECT " + listaColumnas() + " FROM " + comillaIdentificador(nombre_) +
         (donde.empty() ? "" : " WHERE " + donde) + " ORDER BY " + ordenIndice(descendente) + " LIMIT 1";
}

Sentencia& Tabla::sentenciaDe(FormaLectura forma, const std::function<std::string()>& sql) {
  auto it = formas_.find(forma);
  if (it == formas_.end()) it = formas_.emplace(std::move(forma), &sentencia(sql())).first;
  it->second->reinicia();
  return *it->second;
}

std::optional<Tabla::Fila> Tabla::unaFila(Sentencia& s, const std::vector<Valor>& parametros) {
  for (std::size_t i = 0; i < parametros.size(); ++i) s.vincula(static_cast<int>(i) + 1, parametros[i]);
  std::optional<Fila> f;
  if (s.paso()) f = leeFila(s);
  s.reinicia();
  return f;
}

std::vector<Valor> Tabla::clavesDe(const Fila& f, std::size_t n) const {
  std::vector<Valor> r;
  for (std::size_t k = 0; k < n; ++k) r.push_back(f.valores[static_cast<std::size_t>(claves_[k])]);
  return r;
}

std::string Tabla::comparacionClaves(std::string_view op, std::size_t n, bool conRowid) const {
  if (n == 0 && !conRowid) return {};
  std::string izq = "(", der = "(";
  for (std::size_t k = 0; k < n; ++k) {
    izq += expresionClave(k, false) + ", ";
    der += expresionClave(k, true) + ", ";
  }
  if (conRowid) {
    izq += "rowid, ";
    der += "?, ";
  }
  izq.resize(izq.size() - 2);
  der.resize(der.size() - 2);
  return izq + ") " + std::string(op) + " " + der + ")";
}

std::vector<Valor> Tabla::clavesParaBuscar(const std::vector<Valor>& claves, std::size_t n) const {
  std::vector<Valor> r;
  for (std::size_t k = 0; k < n; ++k) {
    const Valor& v = claves[k];
    const DefColumna& c = columnas_[static_cast<std::size_t>(claves_[k])];
    if (c.tipo == TipoColumna::Fecha && !v.esNulo()) {
      const auto f = leeFechaDMA(recorta(v.texto()));
      if (f) r.emplace_back(textoISO(*f));
      else r.push_back(v);
    } else if (c.tipo == TipoColumna::Texto && v.esNumero()) {
      r.emplace_back(v.texto());
    } else {
      r.push_back(v);
    }
  }
  return r;
}

bool Tabla::busca(std::string_view comparacion, std::initializer_list<Valor> claves) {
  return busca(comparacion, std::vector<Valor>(claves));
}

bool Tabla::busca(std::string_view comparacion, const std::vector<Valor>& claves) {
  sinCoincidencia_ = true;
  if (!disponible() || claves_.empty() || claves.empty()) {
    ponActual(std::nullopt, false);
    return false;
  }
  const std::size_t n = std::min(claves.size(), claves_.size());
  std::vector<Valor> parametros = clavesParaBuscar(claves, n);
  // Inside a transaction the store cannot change under this connection but through it,
  // so a seek for the row the cursor already stands on, with nothing written since,
  // finds that row again without asking the store.
  sqlite3* db = almacen_->conexion();
  const bool estable = !sqlite3_get_autocommit(db);
  if (comparacion == "=" && estable && ultimaBusca_ && actual_ && !borrada_ && !edicion_ &&
      ultimaBusca_->indice == indice_ && ultimaBusca_->cambios == sqlite3_total_changes64(db) &&
      ultimaBusca_->claves == parametros) {
    lote_.clear();
    sinCoincidencia_ = false;
    return true;
  }
  ultimaBusca_.reset();
  const Lectura lectura = comparacion == "="    ? Lectura::Igual
                          : comparacion == ">=" ? Lectura::MayorIgual
                          : comparacion == ">"  ? Lectura::Mayor
                          : comparacion == "<=" ? Lectura::MenorIgual
                          : comparacion == "<"  ? Lectura::Menor
                                                : Lectura::Primero;
  if (lectura == Lectura::Primero)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro, "Comparaci\xF3n de b\xFAsqueda desconocida: " + std::string(comparacion));
  Sentencia& s = sentenciaDe({indice_, lectura, n}, [&] {
    if (lectura == Lectura::Igual) {
      std::string donde;
      for (std::size_t k = 0; k < n; ++k)
        donde += (k ? " AND " : "") + expresionClave(k, false) + " = " + expresionClave(k, true);
      return sqlUnaFila(donde, false);
    }
    return sqlUnaFila(comparacionClaves(comparacion, n, false), comparacion[0] == '<');
  });
  ponActual(unaFila(s, parametros), false);
  sinCoincidencia_ = !actual_;
  if (comparacion == "=" && estable && actual_)
    ultimaBusca_ = BuscaHecha{indice_, std::move(parametros), sqlite3_total_changes64(db)};
  return actual_.has_value();
}

void Tabla::primero() {
  if (!disponible()) return;
  ponActual(unaFila(sentenciaDe({indice_, Lectura::Primero, 0}, [&] { return sqlUnaFila({}, false); }), {}), false);
}

void Tabla::ultimo() {
  if (!disponible()) return;
  ponActual(unaFila(sentenciaDe({indice_, Lectura::Ultimo, 0}, [&] { return sqlUnaFila({}, true); }), {}), true);
}

bool Tabla::llenaLote() {
  // The next rows after the current one, in index order, read a batch at a time so
  // that no statement stays open between two moves.
  const std::size_t n = claves_.size();
  std::vector<Valor> parametros = clavesDe(*actual_, n);
  parametros.push_back(Valor(static_cast<double>(actual_->rowid)));
  Sentencia& s = sentenciaDe({indice_, Lectura::Lote, n}, [&] {
    return "SELECT " + listaColumnas() + " FROM " + comillaIdentificador(nombre_) + " WHERE " +
           comparacionClaves(">", n, true) + " ORDER BY " + ordenIndice(false) + " LIMIT " +
           std::to_string(TAMANOLOTE);
  });
  for (std::size_t i = 0; i < parametros.size(); ++i) s.vincula(static_cast<int>(i) + 1, parametros[i]);
  lote_.clear();
  while (s.paso()) lote_.push_back(leeFila(s));
  s.reinicia();
  std::reverse(lote_.begin(), lote_.end());
  generacionLote_ = almacen_->generacion();
  return !lote_.empty();
}

void Tabla::siguiente() {
  if (!disponible()) return;
  if (!actual_) {
    if (alPrincipio_) primero();
    return;
  }
  edicion_.reset();
  if (lote_.empty() || generacionLote_ != almacen_->generacion()) {
    if (!llenaLote()) {
      actual_.reset();
      alPrincipio_ = false;
      borrada_ = false;
      return;
    }
  }
  ultimaBusca_.reset();
  actual_ = std::move(lote_.back());
  lote_.pop_back();
  borrada_ = false;
}

void Tabla::anterior() {
  if (!disponible()) return;
  if (!actual_) {
    if (!alPrincipio_) ultimo();
    return;
  }
  const std::size_t n = claves_.size();
  std::vector<Valor> parametros = clavesDe(*actual_, n);
  parametros.push_back(Valor(static_cast<double>(actual_->rowid)));
  Sentencia& s = sentenciaDe({indice_, Lectura::Menor, n + 1},
                             [&] { return sqlUnaFila(comparacionClaves("<", n, true), true); });
  ponActual(unaFila(s, parametros), true);
}

Valor Tabla::campo(std::string_view columna) const {
  if (!actual_ || borrada_) return {};
  const int p = posicionColumna(columna);
  if (p < 0) return {};
  if (edicion_ && !edicion_->nueva) return edicion_->valores[static_cast<std::size_t>(p)];
  return actual_->valores[static_cast<std::size_t>(p)];
}

void Tabla::exigeAbierta() {
  if (!disponible())
    throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste, "La tabla " + nombre_ + " no est\xE1 abierta.");
}

void Tabla::nuevo() {
  exigeAbierta();
  edicion_ = Edicion{true, std::vector<Valor>(columnas_.size()), std::vector<bool>(columnas_.size(), false)};
}

void Tabla::edita() {
  exigeAbierta();
  if (!actual_ || borrada_)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro, "No hay registro actual en la tabla " + nombre_ + ".");
  edicion_ = Edicion{false, actual_->valores, std::vector<bool>(columnas_.size(), false)};
}

void Tabla::pon(std::string_view columna, const Valor& valor) {
  if (!edicion_)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro, "La tabla " + nombre_ + " no est\xE1 en edici\xF3n.");
  const int p = posicionColumna(columna);
  if (p < 0)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste,
                       "La tabla " + nombre_ + " no tiene la columna " + std::string(columna) + ".");
  edicion_->valores[static_cast<std::size_t>(p)] = valorParaColumna(p, valor);
  edicion_->cambiadas[static_cast<std::size_t>(p)] = true;
}

void Tabla::actualiza() {
  exigeAbierta();
  if (!edicion_)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro, "La tabla " + nombre_ + " no est\xE1 en edici\xF3n.");
  Edicion e = std::move(*edicion_);
  edicion_.reset();
  std::vector<std::size_t> cambiadas;
  for (std::size_t i = 0; i < columnas_.size(); ++i)
    if (e.cambiadas[i]) cambiadas.push_back(i);
  const std::string tabla = comillaIdentificador(nombre_);
  std::string sql;
  if (e.nueva) {
    std::string nombres, marcas;
    for (std::size_t i : cambiadas) {
      nombres += (nombres.empty() ? "" : ", ") + comillaIdentificador(columnas_[i].nombre);
      marcas += marcas.empty() ? "?" : ", ?";
    }
    sql = cambiadas.empty() ? "INSERT INTO " + tabla + " DEFAULT VALUES"
                            : "INSERT INTO " + tabla + " (" + nombres + ") VALUES (" + marcas + ")";
  } else {
    if (cambiadas.empty()) return;
    for (std::size_t i : cambiadas)
      sql += (sql.empty() ? "" : ", ") + comillaIdentificador(columnas_[i].nombre) + " = ?";
    sql = "UPDATE " + tabla + " SET " + sql + " WHERE rowid = ?";
  }
  Sentencia& s = sentencia(sql);
  int p = 1;
  for (std::size_t i : cambiadas) s.vincula(p++, e.valores[i]);
  if (!e.nueva) s.vincula(p, Valor(static_cast<double>(actual_->rowid)));
  try {
    s.paso();
  } catch (const ErrorAlmacen& error) {
    s.reinicia();
    if (error.tipo() == ErrorAlmacen::Tipo::Duplicado)
      throw ErrorAlmacen(ErrorAlmacen::Tipo::Duplicado, "Ya existe un registro con la misma clave en la tabla " +
                                                            nombre_ + " de " + entreComillas(almacen_->ruta()) + ".");
    throw;
  }
  s.reinicia();
  if (!e.nueva) actual_->valores = std::move(e.valores);
  lote_.clear();
}

void Tabla::borra() {
  exigeAbierta();
  if (!actual_ || borrada_)
    throw ErrorAlmacen(ErrorAlmacen::Tipo::Otro, "No hay registro actual en la tabla " + nombre_ + ".");
  Sentencia& s = sentencia("DELETE FROM " + comillaIdentificador(nombre_) + " WHERE rowid = ?");
  s.vincula(1, Valor(static_cast<double>(actual_->rowid)));
  s.paso();
  s.reinicia();
  borrada_ = true;
  lote_.clear();
  edicion_.reset();
}

std::int64_t Tabla::cuenta() {
  if (!disponible()) return 0;
  Sentencia& s = sentencia("SELECT count(*) FROM " + comillaIdentificador(nombre_));
  const std::int64_t n = s.paso() ? static_cast<std::int64_t>(s.valor(0).numero()) : 0;
  s.reinicia();
  return n;
}

// ---- Creation SQL -------------------------------------------------------------------

std::vector<std::string> sqlDeCreacion(const DefTabla& tabla) {
  std::vector<std::string> sql;
  std::string columnas;
  for (const DefColumna& c : tabla.columnas) {
    if (!columnas.empty()) columnas += ", ";
    columnas += comillaIdentificador(c.nombre);
    switch (c.tipo) {
      case TipoColumna::Texto: columnas += c.ancho > 0 ? " TEXT(" + std::to_string(c.ancho) + ")" : " TEXT"; break;
      case TipoColumna::Doble: columnas += " REAL"; break;
      case TipoColumna::Fecha: columnas += " DATE"; break;
    }
  }
  sql.push_back("CREATE TABLE " + comillaIdentificador(tabla.nombre) + " (" + columnas + ")");
  for (const DefIndice& i : tabla.indices) {
    std::string claves;
    for (const std::string& k : i.claves) {
      if (!claves.empty()) claves += ", ";
      claves += comillaIdentificador(k);
      const auto c = std::find_if(tabla.columnas.begin(), tabla.columnas.end(),
                                  [&](const DefColumna& d) { return d.nombre == k; });
      if (c != tabla.columnas.end() && c->tipo == TipoColumna::Texto) claves += " COLLATE ESPANOL";
    }
    sql.push_back(std::string("CREATE ") + (i.unico ? "UNIQUE " : "") + "INDEX " + comillaIdentificador(i.nombre) +
                  " ON " + comillaIdentificador(tabla.nombre) + " (" + claves + ")");
  }
  return sql;
}

}  // namespace valdor
