// The command line on a real office's Jet files: the same files as from the SQLite twin of
// the sample office, byte for byte, in a whole Jet office and in mixed ones; the pending
// list left to the payroll product; no file made or changed in the office's folders;
// and the inventory of the stores that support asks for.

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>

#include "tests/cli_prueba.h"

namespace valdor {
namespace {

using pruebas::AHORA;
using pruebas::CarpetaTemporal;
using pruebas::contiene;
using pruebas::Resultado;
using pruebas::valdor;
namespace fs = std::filesystem;

const fs::path DATOS = VALDOR_DATOS;

// The companies of March 2002 in the sample office.
const std::vector<std::string> EMPRESAS{"50104532166", "08198765453", "28107654331", "41123409876"};

// An office in `c`: its program folder from one sample office and its work folder from
// another ("oficina-jet" or "oficina-sqlite"), and the transmission tool's drive in `c`.
void preparaOficina(const CarpetaTemporal& c, std::string_view programa, std::string_view trabajo) {
  fs::copy(DATOS / std::string(programa) / "programa", c / "programa");
  fs::copy(DATOS / std::string(trabajo) / "trabajo", c / "trabajo");
  for (const auto& e : fs::recursive_directory_iterator(c.ruta()))
    fs::permissions(e.path(), fs::perms::owner_write, fs::perm_options::add);
}

Resultado enOficina(const CarpetaTemporal& c, std::vector<std::string> argumentos) {
  setenv("WINEPREFIX", (c / "wine").c_str(), 1);
  argumentos.insert(argumentos.begin(), {"--ahora", AHORA});
  return valdor(c, argumentos);
}

// The bytes of the file whose path is the last line of a run's output.
std::string ficheroEscrito(const Resultado& r) {
  std::string salida = r.salida;
  while (!salida.empty() && salida.back() == '\n') salida.pop_back();
  return pruebas::leeBytes(salida.substr(salida.rfind('\n') + 1));
}

// Every file of the office's two folders with its bytes.
std::map<fs::path, std::string> contenido(const CarpetaTemporal& c) {
  std::map<fs::path, std::string> r;
  for (const char* carpeta : {"programa", "trabajo"})
    for (const auto& e : fs::recursive_directory_iterator(c / carpeta)) r[e.path()] = pruebas::leeBytes(e.path());
  return r;
}

// What the sample office gives for the month: the company list, the FAN file of every
// company with its refund line, the AFI file and each company's printed statement.
std::map<std::string, std::string> trabajosDelMes(const CarpetaTemporal& c) {
  std::map<std::string, std::string> r;
  Resultado e = enOficina(c, {"empresas", "--mes", "3", "--ano", "2002"});
  EXPECT_EQ(e.estado, 0) << e.errores;
  r["empresas"] = e.salida;
  Resultado fan = enOficina(c, {"fan", "--mes", "3", "--ano", "2002", "--dev-cta"});
  EXPECT_EQ(fan.estado, 0) << fan.errores;
  r["fan"] = ficheroEscrito(fan);
  Resultado afi = enOficina(c, {"afi"});
  EXPECT_EQ(afi.estado, 0) << afi.errores;
  r["afi"] = ficheroEscrito(afi);
  for (const std::string& empresa : EMPRESAS) {
    // A file port is a plain name in the work folder; taken away again, it leaves the
    // office as it was.
    const std::string puerto = "boletin-" + empresa + ".txt";
    Resultado i = enOficina(c, {"imprimir", "--mes", "3", "--ano", "2002", "--empresa", empresa, "--puerto", puerto});
    EXPECT_EQ(i.estado, 0) << i.errores;
    r["imprimir " + empresa] = pruebas::leeBytes(c / "trabajo" / puerto);
    fs::remove(c / "trabajo" / puerto);
  }
  return r;
}

TEST(CliJet, LaOficinaJetDaLosMismosFicherosQueSuGemelaSQLiteYNoCambiaNada) {
  CarpetaTemporal jet, sqlite;
  preparaOficina(jet, "oficina-jet", "oficina-jet");
  preparaOficina(sqlite, "oficina-sqlite", "oficina-sqlite");
  auto antes = contenido(jet);
  const auto deJet = trabajosDelMes(jet);
  const auto deSqlite = trabajosDelMes(sqlite);
  for (const auto& [trabajo, bytes] : deSqlite) {
    SCOPED_TRACE(trabajo);
    EXPECT_GT(bytes.size(), 100u);
    EXPECT_TRUE(deJet.at(trabajo) == bytes);
  }
  // The pending list is the payroll product's: asked to empty it, the job says so and
  // leaves it as it is.
  Resultado r = enOficina(jet, {"afi", "--borrar-pendientes", "--nombre", "borrar"});
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(contiene(r.errores, "es del programa de nóminas"));
  EXPECT_TRUE(contiene(r.errores, "Vacíela desde el programa de nóminas"));
  // Not a file made, removed or changed in the office: the temp store lives and dies
  // inside each run.
  EXPECT_TRUE(contenido(jet) == antes);

  // A month without a store and a work store that is missing read empty, and are not made.
  fs::remove(jet / "trabajo/ILTS.MDB");
  antes = contenido(jet);
  r = enOficina(jet, {"empresas", "--mes", "4", "--ano", "2002"});
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(contiene(r.salida, "0 empresas."));
  r = enOficina(jet, {"fan", "--mes", "3", "--ano", "2002"});
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(r.errores.find("ERROR"), std::string::npos) << r.errores;
  EXPECT_TRUE(contenido(jet) == antes);
}

TEST(CliJet, LasOficinasMixtasDanElMismoFichero) {
  CarpetaTemporal sqlite, mesSqlite, mesJet;
  preparaOficina(sqlite, "oficina-sqlite", "oficina-sqlite");
  // Jet masters and work stores with an SQLite month store, and the other way round.
  preparaOficina(mesSqlite, "oficina-jet", "oficina-jet");
  fs::copy_file(DATOS / "oficina-sqlite/programa/PX20023.MDB", mesSqlite / "programa/PX20023.MDB",
                fs::copy_options::overwrite_existing);
  preparaOficina(mesJet, "oficina-sqlite", "oficina-sqlite");
  fs::copy_file(DATOS / "oficina-jet/programa/PX20023.MDB", mesJet / "programa/PX20023.MDB",
                fs::copy_options::overwrite_existing);
  const std::vector<std::string> fan{"fan", "--mes", "3", "--ano", "2002", "--dev-cta"};
  const std::string esperado = ficheroEscrito(enOficina(sqlite, fan));
  ASSERT_GT(esperado.size(), 1000u);
  for (const CarpetaTemporal* c : {&mesSqlite, &mesJet}) {
    const Resultado r = enOficina(*c, fan);
    EXPECT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(ficheroEscrito(r) == esperado);
  }
}

TEST(CliJet, AlmacenesListaCadaAlmacenConSuMotorSusTablasYSusProblemas) {
  CarpetaTemporal c;
  preparaOficina(c, "oficina-jet", "oficina-jet");
  Resultado r = enOficina(c, {"almacenes", "--mes", "3", "--ano", "2002"});
  EXPECT_EQ(r.estado, 0) << r.salida;
  for (const char* linea : {"PX20023.MDB (programa): Jet 4\n  tabla NOMIN: 16 filas\n  tabla INCIDEN: 2 filas\n",
                            "ACUVALDOR.MDB (trabajo): Jet 4\n  tabla VALDORTA: 4 filas\n",
                            "TEMPORAL VALDOR.MDB (trabajo): no existe\n", "Sin problemas.\n"})
    EXPECT_NE(r.salida.find(linea), std::string::npos) << linea << "\n" << r.salida;

  // A truncated master store and a month that has none: the first is a problem (exit
  // status 1), the second only worth knowing.
  fs::resize_file(c / "programa/EMPRESAS.MDB", 3 * 4096 + 100);
  r = enOficina(c, {"almacenes", "--mes", "5", "--ano", "2002"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.salida, "EMPRESAS.MDB (programa): Jet 4\n  PROBLEMA: El fichero"));
  EXPECT_TRUE(contiene(r.salida, "no es una base de datos válida o está dañado"));
  EXPECT_TRUE(contiene(r.salida, "PX20025.MDB (programa): no existe\n  aviso: no hay almacén de ese mes"));
  EXPECT_TRUE(contiene(r.salida, "1 problema.\n"));
}

TEST(CliJet, AlmacenesSenalaUnaColumnaQueLasReglasLeenYFalta) {
  CarpetaTemporal c;
  preparaOficina(c, "oficina-sqlite", "oficina-sqlite");
  const std::string orden = "sqlite3 -cmd " + pruebas::paraLaShell(".load " + std::string(VALDOR_EXTENSION)) + " " +
                            pruebas::paraLaShell((c / "programa/EMPRESAS.MDB").string()) +
                            " 'ALTER TABLE ESA DROP COLUMN EB14' >/dev/null 2>&1";
  ASSERT_EQ(std::system(orden.c_str()), 0);
  const Resultado r = enOficina(c, {"almacenes", "--mes", "3", "--ano", "2002"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.salida, "EMPRESAS.MDB (programa): SQLite\n"));
  EXPECT_TRUE(contiene(r.salida, "PROBLEMA: faltan en la tabla ESA columnas que VALDOR+ lee: EB14\n"));
}

}  // namespace
}  // namespace valdor
