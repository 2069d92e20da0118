#include "stores/jet.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <thread>

#include "stores/almacen.h"
#include "stores/colacion.h"
#include "stores/ficheros.h"
#include "stores/jet_protocolo.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor {

// ---- Engines and identities -----------------------------------------------------------

Motor motorDe(const std::filesystem::path& ruta) {
  std::ifstream f(ruta, std::ios::binary);
  if (!f) return Motor::Ninguno;
  char cabecera[32] = {};
  f.read(cabecera, sizeof cabecera);
  const std::string_view c(cabecera, static_cast<std::size_t>(f.gcount()));
  if (c.size() >= 16 && c.substr(0, 16) == std::string_view("SQLite format 3\0", 16)) return Motor::SQLite;
  if (c.size() >= 0x15 && c.substr(0, 4) == std::string_view("\0\1\0\0", 4)) {
    const auto version = static_cast<unsigned char>(c[0x14]);
    if (c.substr(4, 15) == "Standard Jet DB") return version == 0 ? Motor::Jet3 : Motor::Jet4;
    if (c.substr(4, 15) == "Standard ACE DB") return Motor::Ace;
  }
  return Motor::Otro;
}

std::string_view nombreMotor(Motor motor) {
  switch (motor) {
    case Motor::Ninguno: return "ninguno";
    case Motor::SQLite: return "SQLite";
    case Motor::Jet3: return "Jet 3";
    case Motor::Jet4: return "Jet 4";
    case Motor::Ace: return "ACE";
    case Motor::Otro: return "desconocido";
  }
  return "desconocido";
}

std::optional<IdentidadFichero> identidadDe(const std::filesystem::path& ruta) {
  struct stat s{};
  if (::stat(ruta.c_str(), &s) != 0) return std::nullopt;
  auto ns = [](const timespec& t) { return static_cast<std::int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec; };
  return IdentidadFichero{s.st_dev, s.st_ino, static_cast<std::int64_t>(s.st_size), ns(s.st_mtim), ns(s.st_ctim)};
}

void CierraSqlite::operator()(sqlite3* db) const { sqlite3_close_v2(db); }

namespace {

using jet::Clase;
using jet::Marca;
using jet::Mensaje;

// A failure of the copy itself: the file breaks its structure, or its reader died.
struct Rotura {
  std::string detalle;  // UTF-8
};

// ---- The child process ------------------------------------------------------------------

// The reader's process and the reading end of its pipe. Whatever way the copy ends,
// the child is stopped and waited for.
class Lector {
 public:
  Lector(const std::filesystem::path& ruta, const std::vector<std::string>& tablas) {
    int tubo[2];
    if (::pipe2(tubo, O_CLOEXEC) != 0) throw Rotura{std::string("no se puede crear la tubería: ") + cp1252AUtf8(razonDelSistema(errno))};
    // A larger pipe lets the reader run ahead while the copy inserts.
    ::fcntl(tubo[1], F_SETPIPE_SZ, 1 << 20);
    pid_ = ::fork();
    if (pid_ < 0) {
      ::close(tubo[0]);
      ::close(tubo[1]);
      throw Rotura{std::string("no se puede iniciar el lector: ") + cp1252AUtf8(razonDelSistema(errno))};
    }
    if (pid_ == 0) {
      ::close(tubo[0]);
      enElHijo(ruta, tablas, tubo[1]);
    }
    ::close(tubo[1]);
    fd_ = tubo[0];
  }
  ~Lector() {
    if (fd_ >= 0) ::close(fd_);
    if (pid_ > 0) {
      ::kill(pid_, SIGKILL);
      espera();
    }
  }
  Lector(const Lector&) = delete;
  Lector& operator=(const Lector&) = delete;

  int fd() const { return fd_; }

  // Waits for the child's end; true when it ended by itself with status 0.
  bool termina() {
    ::close(fd_);
    fd_ = -1;
    const int estado = espera();
    pid_ = -1;
    return WIFEXITED(estado) && WEXITSTATUS(estado) == 0;
  }

 private:
  [[noreturn]] static void enElHijo(const std::filesystem::path& ruta, const std::vector<std::string>& tablas,
                                    int fd) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::signal(SIGPIPE, SIG_IGN);
    // libmdb speaks of what it finds on the standard outputs; the store reports it.
    const int nulo = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nulo >= 0) {
      ::dup2(nulo, STDOUT_FILENO);
      ::dup2(nulo, STDERR_FILENO);
    }
#if !defined(__SANITIZE_ADDRESS__)
    // A damaged length can make libmdb ask for memory without end: the child gets a
    // bounded share of the machine and dies instead.
    rlimit limite{};
    limite.rlim_cur = limite.rlim_max = rlim_t{8} << 30;
    ::setrlimit(RLIMIT_AS, &limite);
#endif
    ::_exit(jet::escribeFlujoJet(ruta.c_str(), tablas, fd));
  }

  int espera() {
    int estado = 0;
    while (::waitpid(pid_, &estado, 0) < 0 && errno == EINTR) {
    }
    return estado;
  }

  pid_t pid_ = -1;
  int fd_ = -1;
};

// The reading end of the stream: whole messages, each read entirely before its body is
// looked at, so that the values of a row stay in place while they are inserted.
class Flujo {
 public:
  Flujo(int fd, std::chrono::milliseconds silencio) : fd_(fd), silencio_(silencio) { buf_.resize(1 << 20); }

  // The next message's kind and body; false at the end of the stream.
  bool siguiente(Mensaje& tipo, std::string_view& cuerpo) {
    ini_ += consumido_;
    consumido_ = 0;
    if (!asegura(1)) return false;
    if (!asegura(5)) throw Rotura{"el lector se interrumpió a media fila"};
    std::uint32_t largo;
    std::memcpy(&largo, buf_.data() + ini_ + 1, sizeof largo);
    if (largo > (512u << 20)) throw Rotura{"el lector envió un mensaje imposible"};
    if (!asegura(5 + std::size_t{largo})) throw Rotura{"el lector se interrumpió a media fila"};
    tipo = static_cast<Mensaje>(buf_[ini_]);
    cuerpo = std::string_view(buf_.data() + ini_ + 5, largo);
    consumido_ = 5 + std::size_t{largo};
    return true;
  }

 private:
  bool asegura(std::size_t n) {
    while (fin_ - ini_ < n) {
      if (ini_ > 0) {
        std::memmove(buf_.data(), buf_.data() + ini_, fin_ - ini_);
        fin_ -= ini_;
        ini_ = 0;
      }
      if (buf_.size() < n) buf_.resize(std::max(n, buf_.size() * 2));
      pollfd p{fd_, POLLIN, 0};
      const int listo = ::poll(&p, 1, static_cast<int>(silencio_.count()));
      if (listo < 0 && errno == EINTR) continue;
      if (listo == 0) throw Rotura{"el lector no responde"};
      const ssize_t leidos = ::read(fd_, buf_.data() + fin_, buf_.size() - fin_);
      if (leidos < 0 && errno == EINTR) continue;
      if (leidos <= 0) return false;
      fin_ += static_cast<std::size_t>(leidos);
    }
    return true;
  }

  int fd_;
  std::chrono::milliseconds silencio_;
  std::vector<char> buf_;
  std::size_t ini_ = 0, fin_ = 0, consumido_ = 0;
};

// The parts of one message's body, each checked against its end.
class Cuerpo {
 public:
  explicit Cuerpo(std::string_view c) : c_(c) {}
  std::uint8_t byte() { return static_cast<std::uint8_t>(toma(1)[0]); }
  std::uint32_t entero() { return copia<std::uint32_t>(); }
  double numero() { return copia<double>(); }
  std::string_view texto() { return toma(entero()); }
  bool agotado() const { return c_.empty(); }

 private:
  template <class T>
  T copia() {
    T v;
    std::memcpy(&v, toma(sizeof v).data(), sizeof v);
    return v;
  }
  std::string_view toma(std::size_t n) {
    if (n > c_.size()) throw Rotura{"el lector envió un mensaje incompleto"};
    const std::string_view r = c_.substr(0, n);
    c_.remove_prefix(n);
    return r;
  }
  std::string_view c_;
};

// ---- The copy in memory ------------------------------------------------------------------

void ejecutaSql(sqlite3* db, const std::string& sql) {
  char* error = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
    const std::string detalle = error ? error : "error de SQLite";
    sqlite3_free(error);
    throw Rotura{detalle};
  }
}

struct IndiceRecibido {
  std::string nombre;
  std::vector<std::pair<std::uint32_t, bool>> claves;  // column, descending
};

// The core names tables and columns in Windows-1252: a name with no form in it is a
// broken one, and the table that holds it could not be reached.
std::string nombreLegible(std::string_view nombre) {
  if (!esRepresentableCp1252(nombre)) throw Rotura{"un nombre ilegible: " + std::string(nombre)};
  return std::string(nombre);
}

// One table being filled: its definition, its insert, its rows.
class TablaEnCopia {
 public:
  TablaEnCopia(sqlite3* db, Cuerpo& c) : db_(db) {
    def_.nombre = nombreLegible(c.texto());
    const std::uint32_t n = c.entero();
    if (n == 0 || n > 4096) throw Rotura{"una tabla sin columnas"};
    for (std::uint32_t i = 0; i < n; ++i) {
      DefColumna col;
      col.nombre = nombreLegible(c.texto());
      const auto clase = static_cast<Clase>(c.byte());
      col.tipo = clase == Clase::Numero ? TipoColumna::Doble
                 : clase == Clase::Fecha ? TipoColumna::Fecha
                                         : TipoColumna::Texto;
      col.ancho = static_cast<int>(std::min<std::uint32_t>(c.entero(), 65535));
      def_.columnas.push_back(std::move(col));
    }
    const std::uint32_t ni = c.entero();
    for (std::uint32_t i = 0; i < ni; ++i) {
      IndiceRecibido x{std::string(c.texto()), {}};
      const std::uint32_t nk = c.entero();
      for (std::uint32_t k = 0; k < nk; ++k) {
        const std::uint32_t col = c.entero();
        const bool desc = c.byte() != 0;
        if (col >= n) throw Rotura{"un índice sobre una columna que no existe"};
        x.claves.emplace_back(col, desc);
      }
      indices_.push_back(std::move(x));
    }
    ejecutaSql(db_, sqlDeCreacion(def_).front());
    std::string sql = "INSERT INTO " + comillaIdentificador(def_.nombre) + " VALUES (";
    for (std::uint32_t i = 0; i < n; ++i) sql += i ? ", ?" : "?";
    sql += ")";
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &insercion_, nullptr) != SQLITE_OK)
      throw Rotura{sqlite3_errmsg(db_)};
  }
  ~TablaEnCopia() { sqlite3_finalize(insercion_); }
  TablaEnCopia(const TablaEnCopia&) = delete;
  TablaEnCopia& operator=(const TablaEnCopia&) = delete;

  const std::string& nombre() const { return def_.nombre; }

  void fila(Cuerpo& c) {
    for (int i = 1; i <= static_cast<int>(def_.columnas.size()); ++i) {
      int rc = SQLITE_OK;
      switch (static_cast<Marca>(c.byte())) {
        case Marca::Nulo: rc = sqlite3_bind_null(insercion_, i); break;
        case Marca::Numero: rc = sqlite3_bind_double(insercion_, i, c.numero()); break;
        case Marca::Texto: {
          const std::string_view t = c.texto();
          rc = sqlite3_bind_text(insercion_, i, t.data(), static_cast<int>(t.size()), SQLITE_STATIC);
          break;
        }
        default: throw Rotura{"un valor de clase desconocida"};
      }
      if (rc != SQLITE_OK) throw Rotura{sqlite3_errmsg(db_)};
    }
    if (!c.agotado()) throw Rotura{"una fila con más valores que columnas"};
    const int rc = sqlite3_step(insercion_);
    sqlite3_reset(insercion_);
    if (rc != SQLITE_DONE) throw Rotura{sqlite3_errmsg(db_)};
    ++filas_;
  }

  // The end of the table: its count checked, then its indices, built once over the
  // whole table. An index name is the database's in SQLite and the table's in Jet: a
  // name already taken by another table's index is kept as "TABLA.INDICE".
  void termina(Cuerpo& c, std::vector<std::string>& nombresUsados) {
    if (c.entero() != filas_) throw Rotura{"la tabla " + def_.nombre + " perdió filas en la lectura"};
    for (const IndiceRecibido& x : indices_) {
      std::string nombre = x.nombre;
      auto usado = [&](const std::string& n) {
        return std::any_of(nombresUsados.begin(), nombresUsados.end(),
                           [&](const std::string& u) { return mayusculasAscii(u) == mayusculasAscii(n); });
      };
      if (usado(nombre)) nombre = def_.nombre + "." + x.nombre;
      if (usado(nombre)) continue;
      nombresUsados.push_back(nombre);
      std::string claves;
      for (const auto& [col, desc] : x.claves) {
        const DefColumna& d = def_.columnas[col];
        if (!claves.empty()) claves += ", ";
        claves += comillaIdentificador(d.nombre);
        if (d.tipo == TipoColumna::Texto) claves += " COLLATE ESPANOL";
        if (desc) claves += " DESC";
      }
      // Not UNIQUE: the copy is only read, and Jet's own order may tell apart two keys
      // that ESPANOL takes as equal.
      ejecutaSql(db_, "CREATE INDEX " + comillaIdentificador(nombre) + " ON " + comillaIdentificador(def_.nombre) + " (" + claves + ")");
    }
  }

 private:
  sqlite3* db_;
  DefTabla def_;
  std::vector<IndiceRecibido> indices_;
  sqlite3_stmt* insercion_ = nullptr;
  std::uint32_t filas_ = 0;
};

BaseEnMemoria baseNueva() {
  preparaBibliotecaSqlite();
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr) !=
      SQLITE_OK) {
    sqlite3_close_v2(db);
    throw Rotura{"no hay memoria para la copia"};
  }
  BaseEnMemoria base(db);
  registraColacionEspanol(db);
  return base;
}

// One reading of the file into a new copy.
BaseEnMemoria unaLectura(const std::filesystem::path& ruta, const OpcionesJet& opciones) {
  BaseEnMemoria base = baseNueva();
  sqlite3* db = base.get();
  ejecutaSql(db, "PRAGMA journal_mode = OFF");
  ejecutaSql(db, "BEGIN");
  Lector lector(ruta, opciones.tablas);
  Flujo flujo(lector.fd(), opciones.silencioMaximo);
  std::optional<TablaEnCopia> tabla;
  std::vector<std::string> tablas, indices;
  bool completo = false;
  Mensaje tipo;
  std::string_view cuerpo;
  while (!completo && flujo.siguiente(tipo, cuerpo)) {
    Cuerpo c(cuerpo);
    switch (tipo) {
      case Mensaje::Tabla:
        if (tabla) throw Rotura{"una tabla empezada antes de acabar la anterior"};
        tabla.emplace(db, c);
        if (std::any_of(tablas.begin(), tablas.end(),
                        [&](const std::string& t) { return mayusculasAscii(t) == mayusculasAscii(tabla->nombre()); }))
          throw Rotura{"dos tablas con el mismo nombre"};
        tablas.push_back(tabla->nombre());
        break;
      case Mensaje::Fila:
        if (!tabla) throw Rotura{"una fila fuera de su tabla"};
        tabla->fila(c);
        break;
      case Mensaje::FinTabla:
        if (!tabla) throw Rotura{"el fin de una tabla no empezada"};
        tabla->termina(c, indices);
        tabla.reset();
        break;
      case Mensaje::Fallo:
        throw Rotura{std::string(c.texto())};
      case Mensaje::Fin:
        if (tabla) throw Rotura{"el fin de la lectura a media tabla"};
        completo = true;
        break;
      default:
        throw Rotura{"el lector envió un mensaje desconocido"};
    }
  }
  if (!completo) throw Rotura{"el lector se interrumpió"};
  if (!lector.termina()) throw Rotura{"el lector acabó mal"};
  ejecutaSql(db, "COMMIT");
  ejecutaSql(db, "PRAGMA query_only = 1");
  return base;
}

}  // namespace

CopiaJet copiaJet(const std::filesystem::path& ruta, const OpcionesJet& opciones) {
  for (int intento = 1;; ++intento) {
    const auto antes = identidadDe(ruta);
    if (!antes)
      throw ErrorAlmacen(ErrorAlmacen::Tipo::NoExiste, "No se encuentra el fichero " + entreComillas(ruta) + ".");
    std::optional<Rotura> rotura;
    BaseEnMemoria base;
    try {
      base = unaLectura(ruta, opciones);
    } catch (const Rotura& r) {
      rotura = r;
    }
    if (opciones.trasLeer) opciones.trasLeer();
    // The file must be the same before and after: otherwise the copy may hold rows of
    // two states of it, and a broken structure may be only a write half done.
    if (identidadDe(ruta) == antes) {
      if (rotura) throw errorDanado(ruta, utf8ACp1252(rotura->detalle));
      return CopiaJet{std::move(base), *antes};
    }
    if (intento >= opciones.intentos)
      throw ErrorAlmacen(ErrorAlmacen::Tipo::Bloqueo,
                         "El fichero " + entreComillas(ruta) +
                             std::string(" ha cambiado mientras se leía: el programa de nóminas lo está escribiendo. "
                             "Vuelva a intentarlo cuando termine."_cp));
    std::this_thread::sleep_for(std::chrono::milliseconds(250 * intento));
  }
}

}  // namespace valdor
