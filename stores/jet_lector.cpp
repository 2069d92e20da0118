// The reader of a Jet file (Access 97 and 2000-2003 formats), through mdbtools' libmdb.
// It runs in a child process and writes the tables asked for into the stream of
// jet_protocolo.h. libmdb finds the catalogue, the table definitions, the data pages
// and each row's fields; the values are decoded here, from the row's bytes, with every
// offset checked against the page, so that Currency keeps its four decimals exactly,
// a Double every bit, and a Yes/No reads -1 or 0 as the old run-time gives it.
#include <glib.h>
// libmdb's header opens an extern "C" block around glib's headers; glib is already in.
#include <mdbtools.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "stores/jet.h"
#include "stores/jet_protocolo.h"
#include "stores/jet_valores.h"

namespace valdor::jet {

namespace {

// A failure that ends the reading: the file breaks its own structure.
struct Roto {
  std::string detalle;
};

constexpr std::size_t LIMITEMEMO = 64u << 20;  // far above any text of a payroll store

class Salida {
 public:
  explicit Salida(int fd) : fd_(fd) {}
  // A message is its kind, the length of its body and the body, so that the reading
  // end holds a whole message before it looks inside.
  Escritura& empieza(Mensaje m) {
    e_.byte(static_cast<std::uint8_t>(m));
    inicio_ = e_.datos().size();
    e_.entero(0);
    abierto_ = true;
    return e_;
  }
  // Drops a message left half-written by a failure.
  void descartaAbierto() {
    if (abierto_) e_.datos().resize(inicio_ - 1);
    abierto_ = false;
  }
  void termina() {
    abierto_ = false;
    std::string& d = e_.datos();
    const auto largo = static_cast<std::uint32_t>(d.size() - inicio_ - sizeof(std::uint32_t));
    std::memcpy(d.data() + inicio_, &largo, sizeof largo);
  }
  // Hands what is buffered to the pipe once it is large enough (or always, when `ya`).
  bool vacia(bool ya = false) {
    std::string& d = e_.datos();
    if (!ya && d.size() < (256u << 10)) return true;
    std::size_t hecho = 0;
    while (hecho < d.size()) {
      const ssize_t n = ::write(fd_, d.data() + hecho, d.size() - hecho);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return false;
      hecho += static_cast<std::size_t>(n);
    }
    d.clear();
    return true;
  }

 private:
  int fd_;
  std::size_t inicio_ = 0;
  bool abierto_ = false;
  Escritura e_;
};

// What the reading of one file knows once: libmdb's handle, the format, and how many
// whole pages the file holds. libmdb reads the page just past the end, and the rest of a
// last page cut short, as zeros, and takes them for pages of the file: a table whose
// pages are gone would read as empty. So every page a table or a Memo names is checked
// against the file's length first.
struct Lectura {
  MdbHandle* mdb = nullptr;
  bool jet4 = true;
  std::uint64_t paginas = 0;
  bool enElFichero(std::uint64_t pagina) const { return pagina < paginas; }
  std::size_t tamanoPagina() const { return static_cast<std::size_t>(mdb->fmt->pg_size); }
};

// ---- Columns ------------------------------------------------------------------------

struct Columna {
  MdbColumn* mdb = nullptr;
  unsigned indice = 0;  // its place among the table's columns, and in a cracked row
  Clase clase = Clase::Texto;
  int ancho = 0;
};

// The columns of a table that the stores can hold: text, numbers and dates. Binary,
// OLE, replication and complex columns are passed over.
std::vector<Columna> columnasLegibles(MdbTableDef* t, bool jet4) {
  std::vector<Columna> r;
  for (unsigned i = 0; i < t->num_cols; ++i) {
    auto* c = static_cast<MdbColumn*>(g_ptr_array_index(t->columns, i));
    Columna col{c, i};
    switch (c->col_type) {
      case MDB_TEXT:
        col.ancho = jet4 ? c->col_size / 2 : c->col_size;
        break;
      case MDB_MEMO:
        break;
      case MDB_BOOL:
      case MDB_BYTE:
      case MDB_INT:
      case MDB_LONGINT:
      case MDB_MONEY:
      case MDB_FLOAT:
      case MDB_DOUBLE:
      case MDB_NUMERIC:
        col.clase = Clase::Numero;
        break;
      case MDB_DATETIME:
        col.clase = Clase::Fecha;
        break;
      default:
        continue;
    }
    r.push_back(col);
  }
  return r;
}

// The bytes of a Memo: kept in the row itself, in one row of a long-value page, or in
// a chain of such rows, each with the address of the next.
std::string bytesMemo(const Lectura& l, const unsigned char* campo, std::size_t n) {
  if (n < MDB_MEMO_OVERHEAD) throw Roto{"un campo Memo sin cabecera"};
  const std::uint32_t cabecera = leU32(campo);
  const std::size_t largo = cabecera & 0x3FFFFFFF;
  if (largo > LIMITEMEMO) throw Roto{"un campo Memo de longitud imposible"};
  if (cabecera & 0x80000000u) {
    if (largo > n - MDB_MEMO_OVERHEAD) throw Roto{"un campo Memo que sale de su fila"};
    return std::string(reinterpret_cast<const char*>(campo + MDB_MEMO_OVERHEAD), largo);
  }
  std::string r;
  std::uint32_t direccion = leU32(campo + 4);
  const bool unaPagina = (cabecera & 0x40000000u) != 0;
  while (r.size() < largo) {
    void* buf = nullptr;
    int inicio = 0;
    size_t tam = 0;
    if (direccion == 0 || !l.enElFichero(direccion >> 8) ||
        mdb_find_pg_row(l.mdb, static_cast<int>(direccion), &buf, &inicio, &tam) != 0)
      throw Roto{"un campo Memo que apunta fuera del fichero"};
    if (inicio < 0 || static_cast<std::size_t>(inicio) + tam > l.tamanoPagina())
      throw Roto{"un campo Memo que sale de su página"};
    const auto* p = static_cast<const unsigned char*>(buf) + inicio;
    if (unaPagina) {
      r.append(reinterpret_cast<const char*>(p), std::min(tam, largo));
      break;
    }
    if (tam <= 4) throw Roto{"una cadena de Memo rota"};
    direccion = leU32(p);
    r.append(reinterpret_cast<const char*>(p + 4), std::min(tam - 4, largo - r.size()));
  }
  if (r.size() != largo) throw Roto{"un campo Memo más corto de lo que dice"};
  return r;
}

// One value of a row, appended to the message.
void escribeValor(const Lectura& l, const Columna& c, const MdbField& f, Escritura& e) {
  const int tipo = c.mdb->col_type;
  if (tipo == MDB_BOOL) {
    // Jet keeps a Yes/No in the row's null mask: set is Yes (-1), clear is No (0).
    e.byte(static_cast<std::uint8_t>(Marca::Numero));
    e.numero(f.is_null ? 0.0 : -1.0);
    return;
  }
  if (f.is_null) {
    e.byte(static_cast<std::uint8_t>(Marca::Nulo));
    return;
  }
  if (f.start < 0 || f.siz < 0 ||
      static_cast<std::size_t>(f.start) + static_cast<std::size_t>(f.siz) > l.tamanoPagina())
    throw Roto{"un valor que sale de su página"};
  const unsigned char* p = l.mdb->pg_buf + f.start;
  const std::size_t n = static_cast<std::size_t>(f.siz);
  auto exige = [&](std::size_t minimo) {
    if (n < minimo) throw Roto{"un valor más corto que su tipo"};
  };
  auto numero = [&](double d) {
    e.byte(static_cast<std::uint8_t>(Marca::Numero));
    e.numero(d);
  };
  auto texto = [&](const std::string& t) {
    e.byte(static_cast<std::uint8_t>(Marca::Texto));
    e.texto(t);
  };
  switch (tipo) {
    case MDB_BYTE: exige(1); numero(p[0]); return;
    case MDB_INT: exige(2); numero(static_cast<std::int16_t>(p[0] | p[1] << 8)); return;
    case MDB_LONGINT: exige(4); numero(static_cast<std::int32_t>(leU32(p))); return;
    case MDB_MONEY: exige(8); numero(monedaJet(p)); return;
    case MDB_FLOAT: exige(4); numero(simpleJet(p)); return;
    case MDB_DOUBLE: exige(8); numero(dobleJet(p)); return;
    case MDB_NUMERIC: exige(17); numero(decimalJet(p, c.mdb->col_scale)); return;
    case MDB_DATETIME: {
      exige(8);
      const auto fecha = fechaJet(dobleJet(p));
      if (!fecha) throw Roto{"una fecha fuera del calendario de Jet"};
      texto(*fecha);
      return;
    }
    case MDB_TEXT: texto(textoJet(l.jet4, p, n)); return;
    case MDB_MEMO: {
      const std::string b = bytesMemo(l, p, n);
      texto(textoJet(l.jet4, reinterpret_cast<const unsigned char*>(b.data()), b.size()));
      return;
    }
    default: e.byte(static_cast<std::uint8_t>(Marca::Nulo)); return;
  }
}

// ---- Tables -------------------------------------------------------------------------

void escribeDefinicion(MdbTableDef* t, const std::vector<Columna>& cols, Salida& s) {
  Escritura& e = s.empieza(Mensaje::Tabla);
  e.texto(t->name);
  e.entero(static_cast<std::uint32_t>(cols.size()));
  for (const Columna& c : cols) {
    e.texto(c.mdb->name);
    e.byte(static_cast<std::uint8_t>(c.clase));
    e.entero(static_cast<std::uint32_t>(c.ancho));
  }
  // The indices whose keys are all columns sent; foreign-key references are not
  // indices of the table's own.
  struct Indice {
    std::string nombre;
    std::vector<std::pair<std::uint32_t, std::uint8_t>> claves;
  };
  std::vector<Indice> indices;
  for (unsigned i = 0; t->indices && i < t->indices->len; ++i) {
    auto* x = static_cast<MdbIndex*>(g_ptr_array_index(t->indices, i));
    if (x->index_type == 2 || x->num_keys == 0 || x->num_keys > MDB_MAX_IDX_COLS) continue;
    Indice indice{x->name, {}};
    for (unsigned k = 0; k < x->num_keys; ++k) {
      const int numero = x->key_col_num[k] - 1;
      std::uint32_t enviada = 0;
      while (enviada < cols.size() && static_cast<int>(cols[enviada].indice) != numero) ++enviada;
      if (enviada == cols.size()) break;
      indice.claves.emplace_back(enviada, x->key_col_order[k] == MDB_DESC ? 1 : 0);
    }
    if (indice.claves.size() == x->num_keys) indices.push_back(std::move(indice));
  }
  e.entero(static_cast<std::uint32_t>(indices.size()));
  for (const Indice& x : indices) {
    e.texto(x.nombre);
    e.entero(static_cast<std::uint32_t>(x.claves.size()));
    for (const auto& [posicion, descendente] : x.claves) {
      e.entero(posicion);
      e.byte(descendente);
    }
  }
  s.termina();
}

// libmdb walks a table's data pages by its usage map, a row of another page that the
// table's definition points to. The map lists the pages itself, or lists pages that
// hold the lists (a map of kind 1). A table without a map brings libmdb down; a map it
// cannot walk sends it through every page of the file instead; and a map, or a page it
// lists, that is not in the file ends the walk as if the table ended there, its rows
// lost without a word; a map whose page numbers overflow sends it round the same page
// for ever. So the map and every page it lists are looked at first.
void exigeMapaDeUso(const Lectura& l, MdbTableDef* t) {
  MdbHandle* mdb = l.mdb;
  const std::string falta = std::string("a la tabla ") + t->name + " le faltan páginas del fichero";
  if (!t->usage_map) throw Roto{falta};
  if (mdb_read_pg(mdb, t->entry->table_pg) <= 0 ||
      !l.enElFichero(leU32(mdb->pg_buf + mdb->fmt->tab_usage_map_offset) >> 8))
    throw Roto{falta};
  if (t->usage_map[0] == 1)
    for (std::size_t i = 1; i + 4 <= t->map_sz; i += 4)
      if (const std::uint32_t lista = leU32(t->usage_map + i); lista != 0 && !l.enElFichero(lista))
        throw Roto{falta};
  for (guint32 pagina = 0;;) {
    const gint32 siguiente = mdb_map_find_next(mdb, t->usage_map, static_cast<unsigned>(t->map_sz), pagina);
    if (siguiente == 0) return;
    if (siguiente < 0 || static_cast<guint32>(siguiente) <= pagina)
      throw Roto{std::string("el mapa de páginas de la tabla ") + t->name + " está dañado"};
    if (!l.enElFichero(static_cast<std::uint32_t>(siguiente))) throw Roto{falta};
    pagina = static_cast<guint32>(siguiente);
  }
}

// Every row of the table in the order the file keeps them, walking its data pages as
// the table's usage map lists them. Deleted rows are passed over.
bool escribeFilas(const Lectura& l, MdbTableDef* t, const std::vector<Columna>& cols, Salida& s) {
  MdbHandle* mdb = l.mdb;
  const int rco = mdb->fmt->row_count_offset;
  std::vector<MdbField> campos(t->num_cols);
  std::uint32_t filas = 0;
  mdb_rewind_table(t);
  while (mdb_read_next_dpg(t)) {
    const int n = mdb_get_int16(mdb->pg_buf, rco);
    if (n < 0 || static_cast<std::size_t>(rco + 2 + 2 * n) > l.tamanoPagina())
      throw Roto{"una página de datos con más filas de las que caben"};
    for (int fila = 0; fila < n; ++fila) {
      int inicio = 0;
      size_t tam = 0;
      if (mdb_find_row(mdb, fila, &inicio, &tam) != 0) throw Roto{"una fila fuera de su página"};
      if (tam == 0 || (inicio & 0x4000)) continue;  // empty slot, or a deleted row
      inicio &= 0x1FFF;
      if (tam < 2 || static_cast<std::size_t>(inicio) + tam > l.tamanoPagina())
        throw Roto{"una fila fuera de su página"};
      if (mdb_crack_row(t, inicio, tam, campos.data()) < 0) throw Roto{"una fila ilegible"};
      Escritura& e = s.empieza(Mensaje::Fila);
      for (const Columna& c : cols) {
        const MdbField& f = campos[c.indice];
        if (f.colnum != static_cast<int>(c.indice)) throw Roto{"una fila sin una de sus columnas"};
        escribeValor(l, c, f, e);
      }
      s.termina();
      ++filas;
      if (!s.vacia()) return false;
    }
  }
  s.empieza(Mensaje::FinTabla).entero(filas);
  s.termina();
  return s.vacia();
}

bool pedida(const std::vector<std::string>& tablas, const char* nombre) {
  if (tablas.empty()) return true;
  for (const std::string& t : tablas)
    if (g_ascii_strcasecmp(t.c_str(), nombre) == 0) return true;
  return false;
}

struct CierraMdb {
  MdbHandle* mdb;
  ~CierraMdb() {
    if (mdb) mdb_close(mdb);
  }
};

struct LiberaTabla {
  MdbTableDef* t;
  ~LiberaTabla() {
    if (t) mdb_free_tabledef(t);
  }
};

void leeTablas(const Lectura& l, const std::vector<std::string>& tablas, Salida& s) {
  MdbHandle* mdb = l.mdb;
  // The catalogue is the table MSysObjects, defined at page 2, which mdb_read_catalog
  // walks with no look at its usage map: the map is checked here first.
  MdbCatalogEntry catalogo{};
  catalogo.mdb = mdb;
  catalogo.object_type = MDB_TABLE;
  catalogo.table_pg = 2;
  std::snprintf(catalogo.object_name, sizeof catalogo.object_name, "MSysObjects");
  {
    LiberaTabla t{mdb_read_table(&catalogo)};
    if (!t.t) throw Roto{"el catálogo no se puede leer"};
    exigeMapaDeUso(l, t.t);
  }
  if (!mdb_read_catalog(mdb, MDB_TABLE)) throw Roto{"el catálogo no se puede leer"};
  for (unsigned i = 0; i < mdb->num_catalog; ++i) {
    auto* entrada = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
    if (entrada->object_type != MDB_TABLE || !mdb_is_user_table(entrada)) continue;
    if (!pedida(tablas, entrada->object_name)) continue;
    LiberaTabla t{mdb_read_table(entrada)};
    if (!t.t) throw Roto{std::string("la definición de la tabla ") + entrada->object_name + " no se puede leer"};
    if (!mdb_read_columns(t.t) || t.t->num_cols == 0 || t.t->num_cols > MDB_MAX_COLS)
      throw Roto{std::string("las columnas de la tabla ") + entrada->object_name + " no se pueden leer"};
    mdb_read_indices(t.t);
    exigeMapaDeUso(l, t.t);
    const std::vector<Columna> cols = columnasLegibles(t.t, l.jet4);
    escribeDefinicion(t.t, cols, s);
    if (!escribeFilas(l, t.t, cols, s)) return;
  }
}

}  // namespace

int escribeFlujoJet(const char* ruta, const std::vector<std::string>& tablas, int fd) {
  Salida s(fd);
  try {
    CierraMdb mdb{mdb_open(ruta, MDB_NOFLAGS)};
    if (!mdb.mdb) throw Roto{"no se puede abrir como base de datos Jet"};
    // Jet writes whole pages: a file that ends inside one was cut short.
    struct stat fichero{};
    if (::fstat(::fileno(mdb.mdb->f->stream), &fichero) != 0 || fichero.st_size % mdb.mdb->fmt->pg_size != 0)
      throw Roto{"el fichero no acaba en una página entera: está cortado"};
    const Lectura l{mdb.mdb, !IS_JET3(mdb.mdb),
                    static_cast<std::uint64_t>(fichero.st_size) / static_cast<std::uint64_t>(mdb.mdb->fmt->pg_size)};
    leeTablas(l, tablas, s);
    s.empieza(Mensaje::Fin);
    s.termina();
  } catch (const Roto& r) {
    s.descartaAbierto();
    s.empieza(Mensaje::Fallo).texto(r.detalle);
    s.termina();
  } catch (const std::exception& e) {
    s.descartaAbierto();
    s.empieza(Mensaje::Fallo).texto(e.what());
    s.termina();
  }
  return s.vacia(true) ? 0 : 1;
}

}  // namespace valdor::jet
