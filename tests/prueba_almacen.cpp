// The store engine: creation discipline, damaged and locked files, the Spanish order of
// keys, seeks and walks, column types, and the bytes of the core's text.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "stores/almacen.h"
#include "stores/colacion.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::escribeBytes;
using pruebas::leeBytes;

const DefTabla PERSONAS{"PERSONAS",
                        {{"CODIGO", TipoColumna::Texto, 5},
                         {"NOMBRE", TipoColumna::Texto, 30},
                         {"IMPORTE", TipoColumna::Doble, 0},
                         {"ALTA", TipoColumna::Fecha, 0}},
                        {{"PORCODIGO", {"CODIGO"}, true, true}, {"PORNOMBRE", {"NOMBRE", "CODIGO"}, false, false}}};

void anade(Tabla& t, const std::string& codigo, const std::string& nombre, double importe = 0) {
  t.nuevo();
  t.pon("CODIGO", codigo);
  t.pon("NOMBRE", nombre);
  t.pon("IMPORTE", importe);
  t.actualiza();
}

// A fresh store with PERSONAS, open, and a cursor on the table.
struct Personas {
  Personas() {
    creado = Almacen::crea(ruta, tablas);
    a.abre(ruta);
    t.abre(a, "PERSONAS");
  }
  const std::array<DefTabla, 1> tablas{PERSONAS};
  CarpetaTemporal c;
  std::filesystem::path ruta = c / "P.MDB";
  bool creado = false;
  Almacen a;
  Tabla t;
};

// The kind of store error `f` throws; none when it throws nothing.
template <typename F>
std::optional<ErrorAlmacen::Tipo> errorDe(F f) {
  const auto e = pruebas::lanzado<ErrorAlmacen>(f);
  return e ? std::optional(e->tipo()) : std::nullopt;
}

// A raw connection of another user of the same file, which knows the collation as
// any client that loads the project's extension does.
struct OtraConexion {
  explicit OtraConexion(const std::filesystem::path& ruta) {
    sqlite3_open(ruta.c_str(), &db);
    registraColacionEspanol(db);
  }
  ~OtraConexion() { sqlite3_close(db); }
  std::string valor(const char* sql) {
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    std::string r;
    if (sqlite3_step(st) == SQLITE_ROW && sqlite3_column_text(st, 0))
      r = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
    sqlite3_finalize(st);
    return r;
  }
  int ejecuta(const char* sql) { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr); }
  sqlite3* db = nullptr;
};

TEST(Almacen, SeCreaSoloCuandoFaltaYNuncaTocaUnFicheroQueExiste) {
  Personas p;
  EXPECT_TRUE(p.creado);
  anade(p.t, "00001", "UNO");
  p.t.cierra();
  p.a.cierra();
  p.a.cierra();  // twice is harmless

  const std::string antes = leeBytes(p.ruta);
  EXPECT_FALSE(Almacen::crea(p.ruta, p.tablas));
  EXPECT_EQ(leeBytes(p.ruta), antes);

  // A folder that does not exist is a clear failure, not a crash.
  EXPECT_EQ(errorDe([&] { Almacen::crea(p.c / "no" / "X.MDB", p.tablas); }), ErrorAlmacen::Tipo::NoExiste);
}

TEST(Almacen, UnFicheroRotoSeNombraYSeDejaIgualYUnoBloqueadoSeInformaComoBloqueo) {
  CarpetaTemporal c;
  const auto ruta = c / "ROTO.MDB";
  std::string basura(3000, '\0');
  for (std::size_t i = 0; i < basura.size(); ++i) basura[i] = static_cast<char>((i * 37 + 11) % 256);
  escribeBytes(ruta, basura);

  Almacen a;
  const auto roto = pruebas::lanzado<ErrorAlmacen>([&] { a.abre(ruta); });
  ASSERT_TRUE(roto);
  EXPECT_EQ(roto->tipo(), ErrorAlmacen::Tipo::Danado);
  EXPECT_NE(std::string(roto->what()).find("ROTO.MDB"), std::string::npos);
  EXPECT_FALSE(a.abierto());
  const std::array<DefTabla, 1> tablas{PERSONAS};
  EXPECT_FALSE(Almacen::crea(ruta, tablas));
  EXPECT_EQ(leeBytes(ruta), basura);

  const auto bloqueado = c / "BLOQUEADO.MDB";
  Almacen::crea(bloqueado, tablas);
  OtraConexion otro(bloqueado);
  ASSERT_EQ(otro.ejecuta("BEGIN EXCLUSIVE"), SQLITE_OK);
  EXPECT_EQ(errorDe([&] { OpcionesAlmacen breve;
    breve.esperaBloqueo = std::chrono::milliseconds(50);
    a.abre(bloqueado, breve); }),
            ErrorAlmacen::Tipo::Bloqueo);
  otro.ejecuta("ROLLBACK");
  EXPECT_NO_THROW(a.abre(bloqueado));
}

TEST(Almacen, LasClavesSiguenElOrdenEspanolCiegoAMayusculasYAcentos) {
  EXPECT_EQ(comparaEspanol("P\xC3\xA9rez", "PEREZ"), 0);
  EXPECT_EQ(comparaEspanol("abc  ", "ABC"), 0);       // trailing blanks do not count
  EXPECT_LT(comparaEspanol("A B", "A1"), 0);          // blanks before digits
  EXPECT_LT(comparaEspanol("9", "A"), 0);             // digits before letters
  EXPECT_LT(comparaEspanol("ABC", "ABCD"), 0);
  // Texts that share their first bytes part inside a CH, an LL or an accented letter.
  EXPECT_LT(comparaEspanol("ACZ", "ACH"), 0);   // C before CH, whatever follows
  EXPECT_LT(comparaEspanol("ALM", "ALLA"), 0);  // L before LL, whatever follows
  EXPECT_EQ(comparaEspanol("N\xC3\xA1", "N\xC3\x81"), 0);
  // The short path against weighing from the first letter, on texts built of the
  // pieces where they could disagree.
  const char* piezas[] = {"C", "c", "H", "h", "L", "l", "A", "N", "\xC3\x91", "\xC3\xB1", "\xC3\xA1", "\xC3", " ", "0", "-"};
  std::uint64_t semilla = 20261124;
  auto pieza = [&] {
    semilla = semilla * 6364136223846793005ULL + 1442695040888963407ULL;
    return std::string(piezas[(semilla >> 33) % std::size(piezas)]);
  };
  for (int i = 0; i < 100000; ++i) {
    std::string comun, a, b;
    for (int k = static_cast<int>(semilla >> 60); k > 0; --k) comun += pieza();
    for (int k = 0; k < 3; ++k) a += pieza(), b += pieza();
    a = comun + a;
    b = comun + b;
    ASSERT_EQ(comparaEspanol(a, b) < 0, comparaEspanolPorPesos(a, b) < 0) << a << " / " << b;
    ASSERT_EQ(comparaEspanol(a, b) == 0, comparaEspanolPorPesos(a, b) == 0) << a << " / " << b;
  }

  // CH after C, LL after L, Ñ after N.
  Personas p;
  Tabla& t = p.t;
  const char* nombres[] = {"Llorente", "Luna", "Chávez", "Cuesta", "Ñandú", "Nuez", "Ocaña", "Dávila"};
  int i = 0;
  for (const char* n : nombres) anade(t, "0000" + std::to_string(i++), utf8ACp1252(n));

  ASSERT_TRUE(t.indice("PORNOMBRE"));
  std::vector<std::string> orden;
  for (t.primero(); !t.fin(); t.siguiente()) orden.push_back(cp1252AUtf8(t.texto("NOMBRE")));
  EXPECT_EQ(orden, (std::vector<std::string>{"Cuesta", "Chávez", "Dávila", "Luna", "Llorente", "Nuez", "Ñandú",
                                             "Ocaña"}));
  // A seek with "=" matches whatever the case and accents.
  EXPECT_TRUE(t.busca("=", {"CHAVEZ"}));
  EXPECT_EQ(cp1252AUtf8(t.texto("NOMBRE")), "Chávez");
  EXPECT_FALSE(t.indice("NOHAY"));
  EXPECT_EQ(t.indiceActual(), "PORNOMBRE");
}

TEST(Almacen, BuscaYRecorreEnElOrdenDelIndiceAunqueSeEscribaDuranteElRecorrido) {
  Personas p;
  Tabla& t = p.t;
  {
    Transaccion tr(p.a);
    for (int i = 600; i >= 1; --i) anade(t, llenaIzq(std::to_string(i), 5, '0'), "N", 1);
    tr.confirma();
  }
  ASSERT_TRUE(t.indice("PORCODIGO"));
  EXPECT_EQ(t.cuenta(), 600);

  // Every row visited once, in key order, while each is rewritten on the way (the walk
  // crosses several batches).
  int vistos = 0;
  std::string anterior;
  for (t.primero(); !t.fin(); t.siguiente()) {
    EXPECT_LT(anterior, t.texto("CODIGO"));
    anterior = t.texto("CODIGO");
    t.edita();
    t.pon("IMPORTE", t.numero("IMPORTE") + 1);
    t.actualiza();
    ++vistos;
  }
  EXPECT_EQ(vistos, 600);
  Consulta q = p.a.consulta("SELECT count(*) AS N FROM PERSONAS WHERE IMPORTE = 2");
  ASSERT_TRUE(q.siguiente());
  EXPECT_EQ(q.numero("N"), 600);

  EXPECT_TRUE(t.busca(">=", {"00299A"}));
  EXPECT_EQ(t.texto("CODIGO"), "00300");
  EXPECT_TRUE(t.busca("<", {"00300"}));
  EXPECT_EQ(t.texto("CODIGO"), "00299");
  EXPECT_FALSE(t.busca("=", {"99999"}));
  EXPECT_TRUE(t.sinCoincidencia());
  EXPECT_FALSE(t.hayFila());

  // Adding leaves the current row where it was; deleting leaves none until the next move.
  t.busca("=", {"00010"});
  anade(t, "A0001", "NUEVO");
  EXPECT_EQ(t.texto("CODIGO"), "00010");
  t.borra();
  EXPECT_FALSE(t.hayFila());
  t.siguiente();
  EXPECT_EQ(t.texto("CODIGO"), "00011");
  t.ultimo();
  EXPECT_EQ(t.texto("CODIGO"), "A0001");
  t.anterior();
  EXPECT_EQ(t.texto("CODIGO"), "00600");
}

// Inside a transaction a seek for the key the cursor stands on is answered without the
// store; anything written since, by this cursor or another, makes it ask again.
TEST(Almacen, LaBusquedaRepetidaVeLoQueSeEscribioEntreTanto) {
  Personas p;
  Almacen& a = p.a;
  Tabla& t = p.t;
  Tabla otra;
  otra.abre(a, "PERSONAS");
  anade(t, "00001", "ANA", 1);
  anade(t, "00002", "LUIS", 2);
  Transaccion tr(a);
  ASSERT_TRUE(t.indice("PORCODIGO"));
  ASSERT_TRUE(otra.indice("PORCODIGO"));
  ASSERT_TRUE(t.busca("=", {"00001"}));
  ASSERT_TRUE(otra.busca("=", {"00001"}));
  otra.edita();
  otra.pon("IMPORTE", 10.0);
  otra.actualiza();
  ASSERT_TRUE(t.busca("=", {"00001"}));
  EXPECT_EQ(t.numero("IMPORTE"), 10);
  t.siguiente();  // moved away: the same key is sought again
  ASSERT_TRUE(t.busca("=", {"00001"}));
  EXPECT_EQ(t.texto("NOMBRE"), "ANA");
  a.ejecuta("DELETE FROM PERSONAS WHERE CODIGO = '00001'");
  EXPECT_FALSE(t.busca("=", {"00001"}));
  tr.confirma();
}

TEST(Almacen, LosValoresQueNoCabenSeRechazanYLosDemasCruzanElAlmacenSinPerderNada) {
  Personas p;
  Tabla& t = p.t;
  t.indice("PORCODIGO");
  anade(t, "00001", "UNO");
  t.nuevo();
  EXPECT_THROW(t.pon("CODIGO", "123456"), ErrorAlmacen);  // Text 5
  EXPECT_THROW(t.pon("IMPORTE", "doce"), ErrorAlmacen);
  EXPECT_THROW(t.pon("ALTA", "31/02/2002"), ErrorAlmacen);
  t.pon("CODIGO", "00001");
  EXPECT_EQ(errorDe([&] { t.actualiza(); }), ErrorAlmacen::Tipo::Duplicado);
  EXPECT_EQ(t.cuenta(), 1);

  // Accents, Ñ and the bytes that Windows-1252 leaves undefined (as the accent mapping of
  // the files produces them) come back byte for byte.
  const std::string raro = "\xD1\xE1\x81\x8D\x8F\x90\x9D\xA5";
  t.nuevo();
  t.pon("CODIGO", "28'1");  // a quote is data, never SQL
  t.pon("NOMBRE", raro);
  t.pon("ALTA", "01/03/2002");
  t.actualiza();
  t.nuevo();
  t.pon("CODIGO", "00002");
  t.pon("ALTA", "__/__/____");
  t.actualiza();

  ASSERT_TRUE(t.busca("=", {"28'1"}));
  EXPECT_EQ(t.texto("NOMBRE"), raro);
  EXPECT_EQ(t.texto("ALTA"), "01/03/2002");
  EXPECT_TRUE(t.campo("IMPORTE").esNulo());
  ASSERT_TRUE(t.busca("=", {"00002"}));
  EXPECT_TRUE(t.campo("ALTA").esNulo());

  OtraConexion otro(p.ruta);
  EXPECT_EQ(otro.valor("SELECT ALTA FROM PERSONAS WHERE CODIGO = '28''1'"), "2002-03-01");
  EXPECT_EQ(otro.valor("SELECT NOMBRE FROM PERSONAS WHERE CODIGO = '28''1'"), cp1252AUtf8(raro));

  // Whatever another writer left in a column reads as text or as a number.
  otro.ejecuta("INSERT INTO PERSONAS (CODIGO, NOMBRE, IMPORTE) VALUES ('00003', 12, '12.5')");
  ASSERT_TRUE(t.busca("=", {"00003"}));
  EXPECT_EQ(t.texto("NOMBRE"), "12");
  EXPECT_EQ(t.numero("NOMBRE"), 12);
  EXPECT_EQ(t.numero("IMPORTE"), 12.5);
  EXPECT_EQ(t.texto("importe"), "12.5");  // column names as the system writes them, any case
}

TEST(Almacen, UnAlmacenEscritoPorOtraHerramientaSinLaColacionTambienSirve) {
  CarpetaTemporal c;
  const auto ruta = c / "AJENO.MDB";
  {
    OtraConexion otro(ruta);
    otro.ejecuta("CREATE TABLE ESA (A1 TEXT(11), A2 TEXT(50)); CREATE UNIQUE INDEX EMNU ON ESA (A1);"
                 "INSERT INTO ESA VALUES ('28000000001', 'Uno'), ('08000000002', 'Dos');");
  }
  Almacen a;
  a.abre(ruta);
  Tabla t;
  t.abre(a, "esa");
  EXPECT_EQ(t.nombre(), "ESA");
  ASSERT_TRUE(t.indice("EMNU"));
  ASSERT_TRUE(t.busca("=", {"28000000001"}));
  EXPECT_EQ(t.texto("A2"), "Uno");
  t.primero();
  EXPECT_EQ(t.texto("A1"), "08000000002");
}

TEST(Almacen, UnaTablaSinAbrirSeLeeVaciaYNoAdmiteEscrituras) {
  Tabla t;
  EXPECT_FALSE(t.busca("=", {"X"}));
  t.primero();
  EXPECT_TRUE(t.fin());
  EXPECT_TRUE(t.campo("A1").esNulo());
  EXPECT_EQ(t.cuenta(), 0);
  EXPECT_THROW(t.nuevo(), ErrorAlmacen);

  // A cursor of a store that was closed reads as closed too.
  Personas p;
  p.a.cierra();
  EXPECT_FALSE(p.t.busca("=", {"1"}));
  EXPECT_THROW(p.t.nuevo(), ErrorAlmacen);
}

}  // namespace
}  // namespace valdor
