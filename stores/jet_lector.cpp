// The reader of a Jet file (Access 97 and 2000-2003 formats), through mdbtools' libmdb.
// It runs in a child process and writes the tables asked for into the stream of
// jet_protocolo.h. libmdb finds the catalogue, the table definitions, the data pages
// and each row's fields; the values are decoded here, from the row's bytes, with every
// offset checked against the page, so that Currency keeps its four decimals exactly,
// a Double every bit, and a Yes/No reads -1 or 0 as the old run-time gives it.
#include <glib.h>
// libmdb's header opens an extern "C" block around glib's headers; glib is already in.
#include <mdbtools.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "stores/jet.h"
#include "stores/jet_protocolo.h"
#include "stores/texto.h"

namespace valdor::jet {

namespace {

// A failure that ends the reading: the file breaks its own structure.
struct Roto {
  std::string detalle;
};

constexpr std::size_t TAMANOPAGINA = MDB_PGSIZE;
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

std::uint32_t leU32(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::uint64_t leU64(const unsigned char* p) {
  return static_cast<std::uint64_t>(leU32(p)) | static_cast<std::uint64_t>(leU32(p + 4)) << 32;
}

// ---- Text -------------------------------------------------------------------------------

void anadeUtf8(std::string& r, char32_t c) {
  if (c < 0x80) {
    r += static_cast<char>(c);
  } else if (c < 0x800) {
    r += static_cast<char>(0xC0 | (c >> 6));
    r += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    r += static_cast<char>(0xE0 | (c >> 12));
    r += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    r += static_cast<char>(0xF0 | (c >> 18));
    r += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    r += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// UTF-16 units to UTF-8; a lone surrogate becomes U+FFFD (and '?' in the core's text).
std::string utf16AUtf8(const std::vector<char16_t>& u) {
  std::string r;
  r.reserve(u.size());
  for (std::size_t i = 0; i < u.size(); ++i) {
    const char32_t c = u[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < u.size() && u[i + 1] >= 0xDC00 && u[i + 1] <= 0xDFFF) {
      anadeUtf8(r, 0x10000 + ((c - 0xD800) << 10) + (u[i + 1] - 0xDC00));
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      anadeUtf8(r, 0xFFFD);
    } else {
      anadeUtf8(r, c);
    }
  }
  return r;
}

// A text value as stored: Jet 4 keeps UCS-2, or, when it starts with FF FE, its
// compressed form, where runs of one byte per character (the high byte 0) and runs of
// two bytes per character follow each other, a 0 byte switching between them. Jet 3
// keeps the bytes of the database's code page, Windows-1252 for a Spanish office.
std::string textoJet(bool jet4, const unsigned char* p, std::size_t n) {
  if (!jet4) return cp1252AUtf8(std::string_view(reinterpret_cast<const char*>(p), n));
  std::vector<char16_t> u;
  u.reserve(n);
  if (n >= 2 && p[0] == 0xFF && p[1] == 0xFE) {
    bool comprimido = true;
    for (std::size_t i = 2; i < n;) {
      if (p[i] == 0) {
        comprimido = !comprimido;
        ++i;
      } else if (comprimido) {
        u.push_back(p[i]);
        ++i;
      } else if (i + 1 < n) {
        u.push_back(static_cast<char16_t>(p[i] | p[i + 1] << 8));
        i += 2;
      } else {
        break;
      }
    }
  } else {
    for (std::size_t i = 0; i + 1 < n; i += 2) u.push_back(static_cast<char16_t>(p[i] | p[i + 1] << 8));
  }
  return utf16AUtf8(u);
}

// ---- Dates --------------------------------------------------------------------------

// A Jet Date/Time: days since 30/12/1899, the fraction the time of day (for days
// before that one, the fraction still counts forward). ISO text, with the time only
// when there is one.
std::string fechaJet(double valor) {
  if (!std::isfinite(valor) || valor < -657434.0 || valor >= 2958466.0)
    throw Roto{"una fecha fuera del calendario de Jet"};
  const double entero = std::trunc(valor);
  long long segundos = std::llround(std::fabs(valor - entero) * 86400.0);
  long long dias = static_cast<long long>(entero) - 25569;  // days from 01/01/1970
  if (segundos >= 86400) {
    segundos -= 86400;
    dias += valor < 0 ? -1 : 1;
  }
  // Civil date of a day number (proleptic Gregorian calendar).
  const long long z = dias + 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const long long doe = z - era * 146097;
  const long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const long long mp = (5 * doy + 2) / 153;
  const long long d = doy - (153 * mp + 2) / 5 + 1;
  const long long m = mp < 10 ? mp + 3 : mp - 9;
  const long long a = yoe + era * 400 + (m <= 2 ? 1 : 0);
  const int hora = static_cast<int>(segundos / 3600), minuto = static_cast<int>(segundos / 60 % 60),
            segundo = static_cast<int>(segundos % 60);
  char texto[64];
  if (segundos == 0) {
    std::snprintf(texto, sizeof texto, "%04d-%02d-%02d", static_cast<int>(a), static_cast<int>(m), static_cast<int>(d));
  } else {
    std::snprintf(texto, sizeof texto, "%04d-%02d-%02d %02d:%02d:%02d", static_cast<int>(a), static_cast<int>(m),
                  static_cast<int>(d), hora, minuto, segundo);
  }
  return texto;
}

// ---- Decimal ------------------------------------------------------------------------

// A Decimal: a sign byte, then a 96-bit magnitude kept as four 32-bit words, the most
// significant first, each in little-endian order; the column's scale places the point.
double decimalJet(const unsigned char* p, int escala) {
  unsigned __int128 v = 0;
  for (int palabra = 0; palabra < 4; ++palabra) v = v << 32 | leU32(p + 1 + 4 * palabra);
  // The digits from the last, the point after `escala` of them, then the sign.
  std::string alReves;
  const int cifrasDecimales = std::clamp(escala, 0, 38);
  for (int i = 0; v != 0 || i <= cifrasDecimales; ++i) {
    if (i == cifrasDecimales && i > 0) alReves += '.';
    alReves += static_cast<char>('0' + static_cast<int>(v % 10));
    v /= 10;
  }
  if (p[0] & 0x80) alReves += '-';
  const std::string texto(alReves.rbegin(), alReves.rend());
  return std::strtod(texto.c_str(), nullptr);
}

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
std::string bytesMemo(MdbHandle* mdb, const unsigned char* campo, std::size_t n) {
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
    if (direccion == 0 || mdb_find_pg_row(mdb, static_cast<int>(direccion), &buf, &inicio, &tam) != 0)
      throw Roto{"un campo Memo que apunta fuera del fichero"};
    if (inicio < 0 || static_cast<std::size_t>(inicio) + tam > TAMANOPAGINA)
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
void escribeValor(MdbHandle* mdb, bool jet4, const Columna& c, const MdbField& f, Escritura& e) {
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
  if (f.start < 0 || f.siz < 0 || static_cast<std::size_t>(f.start) + static_cast<std::size_t>(f.siz) > TAMANOPAGINA)
    throw Roto{"un valor que sale de su página"};
  const unsigned char* p = mdb->pg_buf + f.start;
  const std::size_t n = static_cast<std::size_t>(f.siz);
  auto exige = [&](std::size_t minimo) {
    if (n < minimo) throw Roto{"un valor más corto que su tipo"};
  };
  auto numero = [&](double d) {
    e.byte(static_cast<std::uint8_t>(Marca::Numero));
    e.numero(d);
  };
  switch (tipo) {
    case MDB_BYTE: exige(1); numero(p[0]); return;
    case MDB_INT: exige(2); numero(static_cast<std::int16_t>(p[0] | p[1] << 8)); return;
    case MDB_LONGINT: exige(4); numero(static_cast<std::int32_t>(leU32(p))); return;
    case MDB_MONEY:
      // Currency: a 64-bit count of ten-thousandths; the division is exact to the
      // nearest double, as the decimal text of the amount would read.
      exige(8);
      numero(static_cast<double>(static_cast<std::int64_t>(leU64(p))) / 10000.0);
      return;
    case MDB_FLOAT: {
      exige(4);
      float v;
      const std::uint32_t b = leU32(p);
      std::memcpy(&v, &b, sizeof v);
      numero(v);
      return;
    }
    case MDB_DOUBLE: {
      exige(8);
      double v;
      const std::uint64_t b = leU64(p);
      std::memcpy(&v, &b, sizeof v);
      numero(v);
      return;
    }
    case MDB_NUMERIC: exige(17); numero(decimalJet(p, c.mdb->col_scale)); return;
    case MDB_DATETIME: {
      exige(8);
      double v;
      const std::uint64_t b = leU64(p);
      std::memcpy(&v, &b, sizeof v);
      e.byte(static_cast<std::uint8_t>(Marca::Texto));
      e.texto(fechaJet(v));
      return;
    }
    case MDB_TEXT:
      e.byte(static_cast<std::uint8_t>(Marca::Texto));
      e.texto(textoJet(jet4, p, n));
      return;
    case MDB_MEMO: {
      const std::string b = bytesMemo(mdb, p, n);
      e.byte(static_cast<std::uint8_t>(Marca::Texto));
      e.texto(textoJet(jet4, reinterpret_cast<const unsigned char*>(b.data()), b.size()));
      return;
    }
    default:
      e.byte(static_cast<std::uint8_t>(Marca::Nulo));
      return;
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

// Every row of the table in the order the file keeps them, walking its data pages as
// the table's usage map lists them. Deleted rows are passed over.
bool escribeFilas(MdbHandle* mdb, MdbTableDef* t, const std::vector<Columna>& cols, Salida& s) {
  const bool jet4 = !IS_JET3(mdb);
  const int rco = mdb->fmt->row_count_offset;
  std::vector<MdbField> campos(t->num_cols);
  std::uint32_t filas = 0;
  mdb_rewind_table(t);
  while (mdb_read_next_dpg(t)) {
    const int n = mdb_get_int16(mdb->pg_buf, rco);
    if (n < 0 || static_cast<std::size_t>(rco + 2 + 2 * n) > TAMANOPAGINA)
      throw Roto{"una página de datos con más filas de las que caben"};
    for (int fila = 0; fila < n; ++fila) {
      int inicio = 0;
      size_t tam = 0;
      if (mdb_find_row(mdb, fila, &inicio, &tam) != 0) throw Roto{"una fila fuera de su página"};
      if (tam == 0 || (inicio & 0x4000)) continue;  // empty slot, or a deleted row
      inicio &= 0x1FFF;
      if (tam < 2 || static_cast<std::size_t>(inicio) + tam > TAMANOPAGINA) throw Roto{"una fila fuera de su página"};
      if (mdb_crack_row(t, inicio, tam, campos.data()) < 0) throw Roto{"una fila ilegible"};
      Escritura& e = s.empieza(Mensaje::Fila);
      for (const Columna& c : cols) {
        const MdbField& f = campos[c.indice];
        if (f.colnum != static_cast<int>(c.indice)) throw Roto{"una fila sin una de sus columnas"};
        escribeValor(mdb, jet4, c, f, e);
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

void leeTablas(MdbHandle* mdb, const std::vector<std::string>& tablas, Salida& s) {
  if (!mdb_read_catalog(mdb, MDB_TABLE)) throw Roto{"el catálogo no se puede leer"};
  const bool jet4 = !IS_JET3(mdb);
  for (unsigned i = 0; i < mdb->num_catalog; ++i) {
    auto* entrada = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
    if (entrada->object_type != MDB_TABLE || !mdb_is_user_table(entrada)) continue;
    if (!pedida(tablas, entrada->object_name)) continue;
    LiberaTabla t{mdb_read_table(entrada)};
    if (!t.t) throw Roto{std::string("la definición de la tabla ") + entrada->object_name + " no se puede leer"};
    if (!mdb_read_columns(t.t) || t.t->num_cols == 0 || t.t->num_cols > MDB_MAX_COLS)
      throw Roto{std::string("las columnas de la tabla ") + entrada->object_name + " no se pueden leer"};
    mdb_read_indices(t.t);
    const std::vector<Columna> cols = columnasLegibles(t.t, jet4);
    escribeDefinicion(t.t, cols, s);
    if (!escribeFilas(mdb, t.t, cols, s)) return;
  }
}

}  // namespace

int escribeFlujoJet(const char* ruta, const std::vector<std::string>& tablas, int fd) {
  Salida s(fd);
  try {
    CierraMdb mdb{mdb_open(ruta, MDB_NOFLAGS)};
    if (!mdb.mdb) throw Roto{"no se puede abrir como base de datos Jet"};
    leeTablas(mdb.mdb, tablas, s);
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
