// The keyed-table engine behind every store: one SQLite database file per store,
// named as the catalogue names it, with its tables, columns and indices.
//
// One small interface serves every store: open, create when missing, close (harmless
// twice), table cursors with an index, seek, first/next/last, read and write a column,
// add, edit, update, delete, count, and prepared queries. Text crosses this interface
// as Windows-1252 (the core's text) and is UTF-8 inside SQLite. Dates are ISO text
// inside SQLite and "dd/mm/yyyy" outside. Text keys and ORDER BY on text compare with
// the project's own collation ESPANOL, registered on every connection.
#pragma once

#include "stores/error.h"
#include "stores/jet.h"

#include <chrono>
#include <compare>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace valdor {

// ---- Values -----------------------------------------------------------------------

// A column value: Null, a number or a Windows-1252 text. Whatever SQLite holds in a
// column, it reads as text or as a number.
class Valor {
 public:
  Valor() = default;  // Null
  Valor(double numero) : v_(numero) {}
  Valor(int numero) : v_(static_cast<double>(numero)) {}
  Valor(std::string texto) : v_(std::move(texto)) {}
  Valor(std::string_view texto) : v_(std::string(texto)) {}
  Valor(const char* texto) : v_(std::string(texto)) {}

  bool esNulo() const { return std::holds_alternative<std::monostate>(v_); }
  bool esNumero() const { return std::holds_alternative<double>(v_); }
  bool esTexto() const { return std::holds_alternative<std::string>(v_); }

  // Null is "", a number its general text.
  std::string texto() const;
  // Null is 0, a text its numeric value.
  double numero() const;

  friend bool operator==(const Valor&, const Valor&) = default;

 private:
  std::variant<std::monostate, double, std::string> v_;
};

// ---- Table definitions -----------------------------------------------------------

enum class TipoColumna { Texto, Doble, Fecha };

struct DefColumna {
  std::string nombre;
  TipoColumna tipo = TipoColumna::Texto;
  int ancho = 0;  // characters, for text columns
};

struct DefIndice {
  std::string nombre;
  std::vector<std::string> claves;
  bool primario = false;
  bool unico = false;
};

struct DefTabla {
  std::string nombre;
  std::vector<DefColumna> columnas;
  std::vector<DefIndice> indices;
};

// ---- Errors -----------------------------------------------------------------------

// Every failure of a store, with a Spanish message (Windows-1252) that names the file.
class ErrorAlmacen : public ErrorValdor {
 public:
  enum class Tipo {
    Bloqueo,     // another user holds the file
    Danado,      // not a sound database: never overwritten, never deleted
    NoExiste,    // the file or a table is missing
    Disco,       // the disk is full or cannot be written
    Duplicado,   // a row with the same unique key exists
    Dato,        // a value that does not fit its column
    SoloLectura, // a store of the payroll product that VALDOR+ only reads
    Otro
  };
  ErrorAlmacen(Tipo tipo, const std::string& mensaje, std::string detalle = {})
      : ErrorValdor(mensaje), tipo_(tipo), detalle_(std::move(detalle)) {}
  Tipo tipo() const { return tipo_; }
  // What the engine found, for support; the message stays the user's.
  const std::string& detalle() const { return detalle_; }

 private:
  Tipo tipo_;
  std::string detalle_;
};

// The error of a file that is not a sound database, whatever its engine: reported by its
// name and left as it is.
ErrorAlmacen errorDanado(const std::filesystem::path& ruta, std::string detalle = {});

// ---- Stores -----------------------------------------------------------------------

// The count of the failures that stores met, and the last one's message: a run keeps
// one for all its stores, so that a job can tell whether any store failed while it ran,
// also where a rule reads the failing store as empty and goes on.
struct RegistroFallos {
  int cuenta = 0;
  std::string ultimo;
  void anota(std::string mensaje) {
    ++cuenta;
    ultimo = std::move(mensaje);
  }
};

class Almacen;
class Consulta;
class Sentencia;
class Tabla;

// A prepared statement (RAII).
class Sentencia {
 public:
  Sentencia() = default;
  Sentencia(const Almacen& almacen, std::string_view sql);
  ~Sentencia();
  Sentencia(Sentencia&& otra) noexcept;
  Sentencia& operator=(Sentencia&& otra) noexcept;
  Sentencia(const Sentencia&) = delete;
  Sentencia& operator=(const Sentencia&) = delete;

  void vincula(int posicion, const Valor& valor);  // 1-based
  // One step: true while there is a row.
  bool paso();
  void reinicia();
  int columnas() const;
  std::string nombreColumna(int i) const;
  // The value of result column i (0-based): ISO dates of a DATE column as "dd/mm/yyyy".
  Valor valor(int i) const;
  // The same for a column whose type the caller knows (a date column reads "dd/mm/yyyy").
  Valor valorComo(int i, TipoColumna tipo) const;
  // The type that column i of the result is declared with (Texto for an expression).
  TipoColumna tipoDeclarado(int i) const;
  bool valida() const { return st_ != nullptr; }

 private:
  const Almacen* almacen_ = nullptr;
  sqlite3_stmt* st_ = nullptr;
};

// Column names matched without regard to case, looked up without a copy of the name.
struct HashSinCaso {
  using is_transparent = void;
  std::size_t operator()(std::string_view nombre) const noexcept;
};
struct IgualSinCaso {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept;
};

// A query's statement with what its columns are: their positions by name and their
// declared types. A query that ends gives it back to its store, so that the next query
// of the same text takes it whole instead of preparing it again.
struct SentenciaConsulta {
  explicit SentenciaConsulta(Sentencia s);
  Sentencia sentencia;
  std::unordered_map<std::string, int, HashSinCaso, IgualSinCaso> porNombre;
  std::vector<TipoColumna> tipos;
};

struct OpcionesAlmacen {
  // How long a locked file is waited for before the lock is reported.
  std::chrono::milliseconds esperaBloqueo{2000};
  // For a Jet file: which tables are copied (`jet.tablas`, every one when empty), and
  // how its reading is watched.
  OpcionesJet jet;
};

class Almacen {
 public:
  Almacen() = default;
  ~Almacen();
  Almacen(const Almacen&) = delete;
  Almacen& operator=(const Almacen&) = delete;

  // Creates the store with its tables and indices when no file exists at `ruta`.
  // Returns false, quietly, when the file exists: an existing file is never touched.
  // Throws ErrorAlmacen when the file cannot be made; a half-made file is removed.
  static bool crea(const std::filesystem::path& ruta, std::span<const DefTabla> tablas);

  // Opens an existing store, SQLite or Jet as its header says. Throws ErrorAlmacen:
  // NoExiste for a missing file, Danado for a file that is not a sound database,
  // Bloqueo for a locked one (or a Jet file that kept changing while it was read).
  // A Jet file is read into a copy in memory and only read: every write throws
  // SoloLectura. The copy is kept when the store is closed, and opening the same file
  // again, unchanged, takes it back instead of reading the file once more.
  void abre(const std::filesystem::path& ruta, OpcionesAlmacen opciones = {});
  // Closes the store and every cursor and query still open on it. Harmless twice.
  void cierra() noexcept;
  bool abierto() const { return db_ != nullptr; }
  const std::filesystem::path& ruta() const { return ruta_; }
  // The engine of the file open (or last open).
  Motor motor() const { return motor_; }
  // A store of the payroll product, which VALDOR+ reads and never writes.
  bool soloLectura() const { return soloLectura_; }

  bool tieneTabla(std::string_view tabla);

  // A statement that returns no rows (DELETE, UPDATE, ...). Returns the rows changed.
  std::int64_t ejecuta(std::string_view sql, std::initializer_list<Valor> parametros = {});
  // A prepared query; parameters are bound to its "?" in order. Never builds SQL from data.
  // A query of a text run before in this opening takes that statement back.
  Consulta consulta(std::string_view sql, std::vector<Valor> parametros = {});
  // A statement prepared once per opening of the store and kept, for the reads that
  // repeat for every worker: reset and with its parameters cleared, ready to bind.
  Sentencia& preparada(const std::string& sql);

  // Transactions; see also `Transaccion`.
  void empieza();
  void confirma();
  void deshaz() noexcept;

  // Grows with every write through this connection, so that cursors know when to
  // look again for their place.
  std::uint64_t generacion() const { return generacion_; }

  // The error of the last SQLite call as an ErrorAlmacen naming this store's file. A
  // failure of the store (locked, damaged, unreadable) is counted in the register it is
  // watched by; a duplicate key or a write refused on a read-only copy are answers of
  // the rules, and are not.
  [[noreturn]] void falla(int codigo, std::string_view que) const;
  // The register this store's failures are counted in, or nullptr.
  void vigila(RegistroFallos* registro) { registro_ = registro; }

  sqlite3* conexion() const { return db_; }
  void anotaEscritura() { ++generacion_; }
  // Grows with every open, so that a cursor of an earlier opening knows it is stale.
  std::uint64_t apertura() const { return apertura_; }

 private:
  void abreJet(const OpcionesAlmacen& opciones);
  // Reads every page of an SQLite file (quick_check); throws the damaged-file error.
  void compruebaPaginas();

  sqlite3* db_ = nullptr;
  std::filesystem::path ruta_;
  Motor motor_ = Motor::Ninguno;
  bool soloLectura_ = false;
  // The copy of a Jet file, which outlives a close: the file, the state of it that was
  // copied and the tables asked for.
  struct CopiaRetenida {
    BaseEnMemoria base;
    std::filesystem::path ruta;
    IdentidadFichero identidad;
    std::vector<std::string> tablas;
  };
  std::optional<CopiaRetenida> copia_;
  bool copiaEnUso_ = false;
  std::uint64_t generacion_ = 0;
  std::uint64_t apertura_ = 0;
  RegistroFallos* registro_ = nullptr;
  // The state of the file whose pages were last found sound.
  std::optional<IdentidadFichero> comprobado_;
  std::unordered_map<std::string, std::unique_ptr<Sentencia>> preparadas_;
  // The statements of queries that have ended, by their text, for the next query of it.
  std::unordered_map<std::string, std::vector<SentenciaConsulta>> libres_;

  friend class Consulta;
  void devuelve(std::string sql, SentenciaConsulta preparada) noexcept;
};

// Whether stores may be read on two threads at once, each through connections of its
// own: the SQLite library is built for it.
bool almacenesEnVariosHilos();
// Set once, before the first connection: the SQLite library keeps no count of its
// memory, which would take one lock for every allocation of every connection, so that
// two threads reading their own stores do not wait on each other.
void preparaBibliotecaSqlite();

// Writes that belong together: rolled back unless confirmed.
class Transaccion {
 public:
  explicit Transaccion(Almacen& almacen) : almacen_(almacen) { almacen_.empieza(); }
  ~Transaccion() {
    if (!hecha_) almacen_.deshaz();
  }
  Transaccion(const Transaccion&) = delete;
  Transaccion& operator=(const Transaccion&) = delete;
  void confirma() {
    almacen_.confirma();
    hecha_ = true;
  }

 private:
  Almacen& almacen_;
  bool hecha_ = false;
};

// A long read: one read transaction held for its whole length, so that a run of many
// small reads takes the file's lock once instead of once per read. Harmless on a store
// that is closed or already inside a transaction.
class LecturaContinua {
 public:
  explicit LecturaContinua(Almacen& almacen);
  ~LecturaContinua();
  LecturaContinua(const LecturaContinua&) = delete;
  LecturaContinua& operator=(const LecturaContinua&) = delete;

 private:
  Almacen& almacen_;
  bool abierta_ = false;
};

// The rows of a prepared query, read one at a time.
class Consulta {
 public:
  explicit Consulta(Sentencia sentencia);
  Consulta(SentenciaConsulta preparada, Almacen& origen, std::string sql);
  ~Consulta();
  Consulta(Consulta&& otra) noexcept;
  Consulta& operator=(Consulta&&) = delete;
  Consulta(const Consulta&) = delete;
  Consulta& operator=(const Consulta&) = delete;

  // Moves to the next row; false at the end.
  bool siguiente();
  Valor campo(std::string_view columna) const;
  Valor campo(int i) const { return p_.sentencia.valor(i); }
  std::string texto(std::string_view columna) const { return campo(columna).texto(); }
  double numero(std::string_view columna) const { return campo(columna).numero(); }
  int columnas() const { return p_.sentencia.columnas(); }

 private:
  SentenciaConsulta p_;
  // The store it goes back to (with the opening it was prepared in) and its text.
  Almacen* origen_ = nullptr;
  std::uint64_t apertura_ = 0;
  std::string sql_;
};

// ---- Table cursors -------------------------------------------------------------------

// A table cursor: a current index, a current row, seek and walk in index order (rowid
// order without an index), and a buffer for editing or adding a row. A cursor that is
// not open reads as an empty table, so that a store that failed to open, which was
// already reported, gives "not found" at every seek instead of a crash; writing to
// it throws.
class Tabla {
 public:
  Tabla();
  ~Tabla();
  Tabla(const Tabla&) = delete;
  Tabla& operator=(const Tabla&) = delete;

  // Opens the table `nombre` of an open store. Throws ErrorAlmacen when it is missing.
  void abre(Almacen& almacen, std::string_view nombre);
  void cierra() noexcept;
  bool abierta() const { return almacen_ != nullptr; }
  const std::string& nombre() const { return nombre_; }

  // Selects an index by name. False, with the current index kept, when the table has
  // no index of that name.
  bool indice(std::string_view nombre);
  const std::string& indiceActual() const { return indice_; }

  // Seek on the current index with "=", ">=", ">", "<=" or "<". Fewer keys than the
  // index has compare a prefix. Returns true when a row was found; otherwise there is
  // no current row (sinCoincidencia()).
  bool busca(std::string_view comparacion, std::initializer_list<Valor> claves);
  bool busca(std::string_view comparacion, const std::vector<Valor>& claves);
  bool sinCoincidencia() const { return sinCoincidencia_; }

  void primero();
  void ultimo();
  void siguiente();
  void anterior();
  bool fin() const { return !actual_ && !alPrincipio_; }       // EOF
  bool principio() const { return !actual_ && alPrincipio_; }  // BOF
  bool hayFila() const { return actual_.has_value() && !borrada_; }

  // The column of the current row; Null without a current row or for an unknown column.
  Valor campo(std::string_view columna) const;
  std::string texto(std::string_view columna) const { return campo(columna).texto(); }
  double numero(std::string_view columna) const { return campo(columna).numero(); }

  // Editing: `nuevo` starts a new row (every column Null), `edita` the current one;
  // `pon` sets a column of the buffer; `actualiza` writes it (throws ErrorAlmacen on a
  // duplicate key or a value that does not fit); `cancela` drops it. After adding, the
  // current row is the one that was current before, as the system expects.
  void nuevo();
  void edita();
  void pon(std::string_view columna, const Valor& valor);
  void actualiza();
  void cancela() { edicion_.reset(); }
  // Deletes the current row; afterwards there is no current row until the next move.
  void borra();

  std::int64_t cuenta();

  // The table's columns as found in the store.
  const std::vector<DefColumna>& columnas() const { return columnas_; }

 private:
  struct Fila {
    std::int64_t rowid = 0;
    std::vector<Valor> valores;
  };
  struct Edicion {
    bool nueva = false;
    std::vector<Valor> valores;
    std::vector<bool> cambiadas;
  };

  bool disponible();
  void exigeAbierta();
  int posicionColumna(std::string_view columna) const;
  const std::string& listaColumnas() const;
  std::string expresionClave(std::size_t k, bool parametro) const;
  std::string ordenIndice(bool descendente) const;
  std::string comparacionClaves(std::string_view op, std::size_t n, bool conRowid) const;
  std::vector<Valor> clavesDe(const Fila& f, std::size_t n) const;
  std::vector<Valor> clavesParaBuscar(const std::vector<Valor>& claves, std::size_t n) const;
  Sentencia& sentencia(const std::string& sql);
  Fila leeFila(const Sentencia& s) const;
  // The SQL of a read of one row in index order, after `donde` when there is one.
  std::string sqlUnaFila(const std::string& donde, bool descendente) const;
  void ponActual(std::optional<Fila> fila, bool alPrincipio);
  bool llenaLote();
  Valor valorParaColumna(int i, const Valor& v) const;

  Almacen* almacen_ = nullptr;
  std::uint64_t apertura_ = 0;
  std::string nombre_;
  std::vector<DefColumna> columnas_;
  std::unordered_map<std::string, int> posiciones_;  // upper-case name -> position
  std::string indice_;
  std::vector<int> claves_;  // column positions of the current index
  std::optional<Fila> actual_;
  bool borrada_ = false;
  bool alPrincipio_ = false;
  bool sinCoincidencia_ = false;
  std::optional<Edicion> edicion_;
  std::vector<Fila> lote_;  // the rows after the current one, last first
  std::string listaColumnas_;
  // The last "=" seek that found a row inside a transaction: the index, the keys, and
  // the store's count of changes at that moment.
  struct BuscaHecha {
    std::string indice;
    std::vector<Valor> claves;
    std::int64_t cambios = 0;
  };
  std::optional<BuscaHecha> ultimaBusca_;
  std::uint64_t generacionLote_ = 0;
  std::unordered_map<std::string, Sentencia> sentencias_;  // prepared once per SQL text
  // The statement of each shape of read (the index, the kind of seek or walk, the keys
  // compared), so that a repeated seek finds it without writing its SQL again. The
  // statements belong to `sentencias_`, whose elements stay where they are.
  enum class Lectura : std::uint8_t { Igual, Mayor, MayorIgual, Menor, MenorIgual, Primero, Ultimo, Lote };
  struct FormaLectura {
    std::string indice;
    Lectura lectura;
    std::size_t claves;
    auto operator<=>(const FormaLectura&) const = default;
  };
  std::map<FormaLectura, Sentencia*> formas_;
  Sentencia& sentenciaDe(FormaLectura forma, const std::function<std::string()>& sql);
  std::optional<Fila> unaFila(Sentencia& s, const std::vector<Valor>& parametros);
};

// A name as an SQL identifier, between double quotes.
std::string comillaIdentificador(std::string_view nombre);

// The SQL that creates a table and its indices, as `Almacen::crea` runs it.
std::vector<std::string> sqlDeCreacion(const DefTabla& tabla);

}  // namespace valdor
