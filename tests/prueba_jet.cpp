// The payroll product's Jet stores: every value read as in the SQLite twin of the sample
// office, the types of the old run-time, seeks by index name, nothing ever written, a
// file that changes while it is read, and an office of Jet files in which VALDOR+ makes
// no store of its own but the temp store.

#include <gtest/gtest.h>

#include <set>

#include "stores/catalogo.h"
#include "stores/jet.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

const fs::path DATOS = VALDOR_DATOS;

std::vector<std::string> tablasDe(Almacen& a) {
  std::vector<std::string> r;
  auto q = a.consulta("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid");
  while (q.siguiente()) r.push_back(q.texto("name"));
  return r;
}

TEST(Jet, LaCabeceraDiceElMotorYNoElNombre) {
  CarpetaTemporal c;
  EXPECT_EQ(motorDe(DATOS / "oficina-jet/programa/PX20023.MDB"), Motor::Jet4);
  EXPECT_EQ(motorDe(DATOS / "oficina-sqlite/programa/PX20023.MDB"), Motor::SQLite);
  EXPECT_EQ(motorDe(DATOS / "oficina-jet/trabajo/VALDOR.MDB"), Motor::Otro);
  EXPECT_EQ(motorDe(c / "NO EXISTE.MDB"), Motor::Ninguno);
  // An Access 97 header: the same signature, version byte 0.
  std::string jet3 = pruebas::leeBytes(DATOS / "oficina-jet/programa/BONIFICA.MDB").substr(0, 4096);
  jet3[0x14] = '\0';
  pruebas::escribeBytes(c / "VIEJO.DAT", jet3);
  EXPECT_EQ(motorDe(c / "VIEJO.DAT"), Motor::Jet3);
}

// Every store of the Jet office against its SQLite twin: the same tables, the same rows
// in the same order (a walk without an index is the file's order), and in every column
// of the twin the same value, whatever the Jet column's type (Long Integer, Currency,
// Integer, a date) and position.
TEST(Jet, CadaValorEsElMismoQueEnLaGemelaSQLite) {
  std::size_t valores = 0;
  for (const char* carpeta : {"programa", "trabajo"}) {
    for (const auto& e : fs::directory_iterator(DATOS / "oficina-sqlite" / carpeta)) {
      if (motorDe(e.path()) != Motor::SQLite) continue;
      const std::string nombre = e.path().filename().string();
      SCOPED_TRACE(nombre);
      Almacen sqlite, jet;
      sqlite.abre(e.path());
      jet.abre(DATOS / "oficina-jet" / carpeta / nombre);
      EXPECT_TRUE(jet.soloLectura());
      EXPECT_EQ(tablasDe(jet), tablasDe(sqlite));
      for (const std::string& tabla : tablasDe(sqlite)) {
        SCOPED_TRACE(tabla);
        Tabla s, j;
        s.abre(sqlite, tabla);
        j.abre(jet, tabla);
        EXPECT_EQ(j.cuenta(), s.cuenta());
        for (s.primero(), j.primero(); !s.fin(); s.siguiente(), j.siguiente()) {
          ASSERT_FALSE(j.fin());
          for (const DefColumna& col : s.columnas()) {
            ++valores;
            EXPECT_EQ(j.campo(col.nombre), s.campo(col.nombre)) << col.nombre;
          }
        }
        EXPECT_TRUE(j.fin());
      }
    }
  }
  EXPECT_GT(valores, 4000u);  // 16 payroll rows of 204 columns, and the rest
}

TEST(Jet, LosTiposSeLeenComoLosDaElRunTimeYLasColumnasPorSuNombre) {
  Almacen acu, mes, producto;
  acu.abre(DATOS / "oficina-jet/trabajo/ACUVALDOR.MDB");
  Tabla v;
  v.abre(acu, "valdorta");  // a table and its columns found in any case
  v.primero();
  EXPECT_EQ(v.campo("ORIGEN"), Valor("Nota de la fila 1"));  // Memo
  EXPECT_EQ(v.campo("valhoras"), Valor(40.0));               // Currency
  EXPECT_EQ(v.campo("VALDIAS"), Valor(5.0));                 // Integer
  EXPECT_EQ(v.campo("VALDCATEGORIA"), Valor("PE\xD3N ESPECIALISTA"));

  mes.abre(DATOS / "oficina-jet/programa/PX20023.MDB");
  Tabla inciden;
  inciden.abre(mes, "INCIDEN");
  ASSERT_TRUE(inciden.indice("INUM"));
  ASSERT_TRUE(inciden.busca("=", {Valor("41123409876"), Valor("00001"), Valor("01")}));
  // Date/Time values read as the rules' dates; I02 is a Long Integer.
  EXPECT_EQ(inciden.texto("DIAINICIOMATERBON"), "15/03/2002");
  EXPECT_EQ(inciden.texto("DIAFINCIOMATERBON"), "04/07/2002");
  EXPECT_EQ(inciden.campo("I02"), Valor(1.0));
  EXPECT_EQ(inciden.texto("IDES"), "Sustituida por Jim\xE9nez Cano, Roc\xEDo");

  // A Yes/No column is -1 for Yes, as the old run-time gives True.
  producto.abre(DATOS / "oficina-jet/programa/PRODUCTO.MDB");
  Tabla wk;
  wk.abre(producto, "WK");
  wk.primero();
  EXPECT_EQ(wk.campo("REVISADO"), Valor(-1.0));
  EXPECT_EQ(wk.texto("TRA3"), "GARC\xCD" "A PE\xD1" "A, JOS\xC9 MAR\xCD" "A");
}

// Seeks by index name with each comparison give on the Jet copy the rows they give on
// the SQLite twin, in the index's order.
TEST(Jet, LasBusquedasPorIndiceDanLasMismasFilasQueEnSQLite) {
  Almacen sqlite, jet;
  sqlite.abre(DATOS / "oficina-sqlite/programa/PX20023.MDB");
  jet.abre(DATOS / "oficina-jet/programa/PX20023.MDB");
  Tabla s, j;
  s.abre(sqlite, "NOMIN");
  j.abre(jet, "NOMIN");
  ASSERT_TRUE(s.indice("MEEP"));
  ASSERT_TRUE(j.indice("MEEP"));
  for (const char* op : {"=", ">=", ">", "<=", "<"}) {
    SCOPED_TRACE(op);
    const bool hayS = s.busca(op, {Valor("28107654331"), Valor("113")});
    const bool hayJ = j.busca(op, {Valor("28107654331"), Valor("113")});
    ASSERT_EQ(hayJ, hayS);
    std::vector<std::string> filasS, filasJ;
    const bool haciaAtras = op[0] == '<';
    for (; s.hayFila(); haciaAtras ? s.anterior() : s.siguiente()) filasS.push_back(s.texto("BSSE") + s.texto("BMATRI"));
    for (; j.hayFila(); haciaAtras ? j.anterior() : j.siguiente()) filasJ.push_back(j.texto("BSSE") + j.texto("BMATRI"));
    EXPECT_EQ(filasJ, filasS);
    EXPECT_FALSE(filasJ.empty());
  }
  Almacen empresas;
  empresas.abre(DATOS / "oficina-jet/programa/EMPRESAS.MDB");
  Tabla esa;
  esa.abre(empresas, "ESA");
  ASSERT_TRUE(esa.indice("EMNU"));
  ASSERT_TRUE(esa.busca("=", {Valor("41123409876")}));
  EXPECT_EQ(esa.texto("A2"), "Panader\xED" "a \xC1ngel Mu\xF1oz Ortega");
  EXPECT_FALSE(esa.busca("=", {Valor("41123409877")}));
}

TEST(Jet, NuncaSeEscribeUnByteEnElFichero) {
  CarpetaTemporal c;
  const fs::path ruta = c / "ACUVALDOR.MDB";
  fs::copy_file(DATOS / "oficina-jet/trabajo/ACUVALDOR.MDB", ruta);
  const std::string antes = pruebas::leeBytes(ruta);
  {
    Almacen a;
    a.abre(ruta);
    // Every refusal names the file.
    auto tipoDe = [](auto&& hacer) {
      const auto e = pruebas::lanzado<ErrorAlmacen>(hacer);
      EXPECT_NE(std::string(e ? e->what() : "").find("ACUVALDOR.MDB"), std::string::npos);
      return e ? e->tipo() : ErrorAlmacen::Tipo::Otro;
    };
    EXPECT_EQ(tipoDe([&] { a.ejecuta("DELETE FROM VALDORTA"); }), ErrorAlmacen::Tipo::SoloLectura);
    Tabla t;
    t.abre(a, "VALDORTA");
    t.primero();
    EXPECT_EQ(tipoDe([&] {
                t.edita();
                t.pon("SITU", Valor("02"));
                t.actualiza();
              }),
              ErrorAlmacen::Tipo::SoloLectura);
    EXPECT_EQ(tipoDe([&] {
                t.nuevo();
                t.pon("VALDEMP", Valor("1"));
                t.actualiza();
              }),
              ErrorAlmacen::Tipo::SoloLectura);
    EXPECT_EQ(t.cuenta(), 4);
    const std::array<DefTabla, 0> ninguna{};
    EXPECT_FALSE(Almacen::crea(ruta, ninguna));
  }
  EXPECT_EQ(pruebas::leeBytes(ruta), antes);
  EXPECT_EQ(std::set<fs::path>(fs::directory_iterator(c.ruta()), fs::directory_iterator()),
            std::set<fs::path>{ruta});
}

// The payroll product rewrites a file while VALDOR+ reads it: the copy is made again from
// the new state, never from a mix of both; a file that keeps changing is a store in use.
TEST(Jet, UnFicheroQueCambiaMientrasSeLeeSeVuelveALeerYSiNoParaSeDaPorOcupado) {
  CarpetaTemporal c;
  const fs::path ruta = c / "EMPRESAS.MDB";
  fs::copy_file(DATOS / "oficina-jet/programa/EMPRESAS.MDB", ruta);
  int lecturas = 0;
  OpcionesAlmacen opciones;
  opciones.jet.trasLeer = [&] {
    if (++lecturas == 1)
      fs::copy_file(DATOS / "oficina-jet/programa/BONIFICA.MDB", ruta, fs::copy_options::overwrite_existing);
  };
  Almacen a;
  a.abre(ruta, opciones);
  EXPECT_EQ(lecturas, 2);
  EXPECT_EQ(tablasDe(a), std::vector<std::string>{"BONIFI"});

  opciones.jet.trasLeer = [&] {
    ++lecturas;
    fs::last_write_time(ruta, fs::last_write_time(ruta) + std::chrono::seconds(1));
  };
  lecturas = 0;
  a.cierra();
  fs::last_write_time(ruta, fs::last_write_time(ruta) + std::chrono::seconds(1));
  const auto e = pruebas::lanzado<ErrorAlmacen>([&] { a.abre(ruta, opciones); });
  ASSERT_TRUE(e) << "un fichero que no para de cambiar se ha leído";
  EXPECT_EQ(e->tipo(), ErrorAlmacen::Tipo::Bloqueo);
  EXPECT_NE(std::string(e->what()).find("EMPRESAS.MDB"), std::string::npos);
  EXPECT_EQ(lecturas, opciones.jet.intentos);
}

// A run opens the month store several times: the file is read once while it does not
// change, and again as soon as it does.
TEST(Jet, LaCopiaSirveMientrasElFicheroNoCambia) {
  CarpetaTemporal c;
  const fs::path ruta = c / "PX20023.MDB";
  fs::copy_file(DATOS / "oficina-jet/programa/PX20023.MDB", ruta);
  int lecturas = 0;
  OpcionesAlmacen opciones;
  opciones.jet.tablas = {"NOMIN", "INCIDEN"};
  opciones.jet.trasLeer = [&] { ++lecturas; };
  Almacen a;
  Tabla nomin;
  a.abre(ruta, opciones);
  nomin.abre(a, "NOMIN");
  EXPECT_EQ(nomin.cuenta(), 16);
  a.cierra();
  EXPECT_EQ(nomin.cuenta(), 0);  // a cursor of a closed store reads empty
  a.abre(ruta, opciones);
  EXPECT_EQ(lecturas, 1);
  nomin.abre(a, "NOMIN");
  EXPECT_EQ(nomin.cuenta(), 16);
  a.cierra();
  fs::last_write_time(ruta, fs::last_write_time(ruta) + std::chrono::seconds(1));
  a.abre(ruta, opciones);
  EXPECT_EQ(lecturas, 2);
}

// ---- An office of Jet files -----------------------------------------------------------

struct OficinaJet {
  CarpetaTemporal c;
  DialogosGrabador dialogos;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  OficinaJet() {
    fs::copy(DATOS / "oficina-jet/programa", carpetas.programa);
    fs::copy(DATOS / "oficina-jet/trabajo", carpetas.trabajo);
    for (const auto& e : fs::recursive_directory_iterator(c.ruta()))
      fs::permissions(e.path(), fs::perms::owner_write, fs::perm_options::add);
  }
  std::set<fs::path> ficheros() const {
    std::set<fs::path> r;
    for (const auto& e : fs::recursive_directory_iterator(c.ruta())) r.insert(e.path());
    return r;
  }
};

TEST(OficinaJet, NoSeCreaNingunAlmacenJuntoALosDelProgramaDeNominasSalvoElTemporal) {
  OficinaJet o;
  fs::remove(o.carpetas.trabajo / "ILTS.MDB");
  const auto antes = o.ficheros();
  Almacenes a(o.carpetas, o.dialogos);
  EXPECT_TRUE(a.oficinaJet());
  a.MESPERIODO = "4";
  a.ANOPERIODO = "2002";
  EXPECT_FALSE(a.CREAPERIODO());
  EXPECT_FALSE(a.ABREPERIODO());
  EXPECT_EQ(a.NOMIN.cuenta(), 0);
  EXPECT_FALSE(a.CREAILTS());
  EXPECT_FALSE(a.ABREILTS());
  EXPECT_FALSE(a.ILTS.busca("=", {Valor("28107654331")}));
  EXPECT_TRUE(o.dialogos.mensajes.empty()) << o.dialogos.mensajes.front().texto;
  EXPECT_EQ(o.ficheros(), antes);

  // The temp store is VALDOR+'s own and always SQLite, even over one the old program
  // left behind in its own engine.
  fs::copy_file(o.carpetas.trabajo / "FORMACION.MDB", o.carpetas.trabajo / "TEMPORAL VALDOR.MDB");
  EXPECT_TRUE(a.CREATEMPORAL());
  EXPECT_EQ(motorDe(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"), Motor::SQLite);
  EXPECT_TRUE(a.ABRETEMPORAL());
  EXPECT_FALSE(a.temporal.soloLectura());
}

}  // namespace
}  // namespace valdor
