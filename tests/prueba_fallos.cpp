// Faults met on the way to an exchange file: a run killed half-way, two runs in one work
// folder, a store locked, damaged or lacking a column, a disk that fills up, values that
// would break a line. Each ends with the whole file of an undisturbed run or with none:
// exit status 1, a message that names what failed, the old file of that name as it was,
// and no leftovers.

#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "stores/colacion.h"
#include "stores/texto.h"
#include "tests/cli_prueba.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::CarpetaTemporal;
using pruebas::contiene;
using pruebas::Resultado;
using pruebas::valdor;

constexpr const char* AHORA = "2026-11-15 07:30";
// The old file of the name the runs write: a job that fails must leave it as it is.
constexpr std::string_view VIEJO = "el fichero de un envío anterior\r\n";

// An office of 60 companies of 25 workers, October 2026: a run long enough to be
// killed at several points of its work.
class Fallos : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("WINEPREFIX", (c / "wine").c_str(), 1);
    ASSERT_EQ(valdor(c, {"--ahora", AHORA, "muestra", "--mes", "10", "--ano", "2026", "--empresas", "60",
                         "--trabajadores", "25"})
                  .estado,
              0);
  }

  // The file of an undisturbed run under `nombre` (the name is inside the file too).
  std::string sinPerturbar(const std::string& nombre) {
    const Resultado r = fan(nombre);
    EXPECT_EQ(r.estado, 0) << r.errores;
    std::string bytes = pruebas::leeBytes(fichero(nombre));
    EXPECT_GT(bytes.size(), 600000u);
    fs::remove(fichero(nombre));
    return bytes;
  }

  // Each run writes over an old file of its name on purpose: a failure must keep it.
  std::vector<std::string> argumentosFan(const std::string& nombre) const {
    return {"--ahora", AHORA, "fan", "--mes", "10", "--ano", "2026", "--nombre", nombre, "--reemplazar"};
  }
  Resultado fan(const std::string& nombre) { return valdor(c, argumentosFan(nombre)); }
  // The file that `--nombre N` writes: the name filled with zeros to eight characters.
  fs::path fichero(const std::string& nombre) const {
    return c / "wine/drive_c/WINSUITE/VIPTC2/FAN" / (llenaDer(nombre, 8, '0') + ".FAN");
  }
  fs::path programa(const std::string& nombre) const { return c / "programa" / nombre; }

  // Starts valdor-cli with the office's folders and `argumentos`, its outputs into `c`.
  pid_t lanza(const std::vector<std::string>& argumentos, const std::string& salida) const {
    std::vector<std::string> todos{VALDOR_CLI, "--programa", (c / "programa").string(), "--trabajo",
                                   (c / "trabajo").string()};
    todos.insert(todos.end(), argumentos.begin(), argumentos.end());
    const pid_t pid = ::fork();
    if (pid == 0) {
      const int fd = ::open((c / salida).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      ::dup2(fd, STDOUT_FILENO);
      ::dup2(fd, STDERR_FILENO);
      std::vector<char*> argv;
      for (std::string& a : todos) argv.push_back(a.data());
      argv.push_back(nullptr);
      ::execv(argv[0], argv.data());
      ::_exit(127);
    }
    return pid;
  }
  static int espera(pid_t pid) {
    int estado = 0;
    ::waitpid(pid, &estado, 0);
    return estado;
  }

  // The old file put under the name the runs will write.
  void ponViejo(const std::string& nombre) {
    fs::create_directories(fichero(nombre).parent_path());
    pruebas::escribeBytes(fichero(nombre), VIEJO);
  }
  // What a failed job must leave: exit 1, its message, the old file, nothing else.
  void sinFichero(const Resultado& r, const std::string& nombre, std::string_view mensaje) {
    EXPECT_EQ(r.estado, 1) << r.errores;
    EXPECT_TRUE(contiene(r.errores, mensaje));
    EXPECT_EQ(pruebas::leeBytes(fichero(nombre)), VIEJO);
    EXPECT_TRUE(sinRestos()) << "restos en la carpeta de trabajo o de intercambio";
  }
  // No temp store and no temporary exchange file left.
  bool sinRestos() const {
    if (fs::exists(c / "trabajo" / "TEMPORAL VALDOR.MDB")) return false;
    for (const auto& e : fs::directory_iterator(fichero("X").parent_path()))
      if (e.path().extension() == ".tmp") return false;
    return true;
  }

  CarpetaTemporal c;
};

// Killed at ten points of a run (the statement step, the companies' TC1 runs, the
// writing of the file), each time followed by a normal run: the file under the final
// name is always the old one or the whole new one, and the normal run writes exactly
// the undisturbed run's file and leaves nothing behind.
TEST_F(Fallos, UnaEjecucionMatadaNoDejaNadaAMediasYLaSiguienteEscribeElFicheroEntero) {
  // The length of an undisturbed run, to spread the kills over it.
  const auto inicio = std::chrono::steady_clock::now();
  const std::string referencia = sinPerturbar("MUERTO");
  const auto duracion = std::chrono::steady_clock::now() - inicio;

  int matadas = 0;
  for (int decimo = 1; decimo <= 10; ++decimo) {
    ponViejo("MUERTO");
    const pid_t pid = lanza(argumentosFan("MUERTO"), "muerto.txt");
    std::this_thread::sleep_for(duracion * decimo / 11);
    ::kill(pid, SIGKILL);
    const int estado = espera(pid);
    matadas += WIFSIGNALED(estado) ? 1 : 0;
    const std::string tras = pruebas::leeBytes(fichero("MUERTO"));
    EXPECT_TRUE(tras == VIEJO || tras == referencia) << "tras matar en el décimo " << decimo << ": otro fichero";

    const Resultado r = fan("MUERTO");
    ASSERT_EQ(r.estado, 0) << "tras matar en el décimo " << decimo << ": " << r.errores;
    EXPECT_TRUE(pruebas::leeBytes(fichero("MUERTO")) == referencia)
        << "tras matar en el décimo " << decimo << ": no es el fichero de una ejecución sin perturbar";
    EXPECT_TRUE(sinRestos()) << "tras matar en el décimo " << decimo;
  }
  EXPECT_GE(matadas, 5);  // most kills landed before the run ended
}

// A second run in the same work folder while one runs is refused and touches nothing of
// the first, which ends with its whole file.
TEST_F(Fallos, DosEjecucionesALaVezEnUnaCarpetaDeTrabajo) {
  const std::string referencia = sinPerturbar("PRIMERA");
  const pid_t primera = lanza(argumentosFan("PRIMERA"), "primera.txt");
  // The first run holds the folder once its temp store exists.
  const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!fs::exists(c / "trabajo" / "TEMPORAL VALDOR.MDB") && std::chrono::steady_clock::now() < limite)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ponViejo("SEGUNDA");
  const Resultado segunda = fan("SEGUNDA");
  const int estado = espera(primera);
  ASSERT_TRUE(WIFEXITED(estado));
  EXPECT_EQ(WEXITSTATUS(estado), 0) << pruebas::leeBytes(c / "primera.txt");
  EXPECT_TRUE(pruebas::leeBytes(fichero("PRIMERA")) == referencia) << "no es el fichero de una ejecución sin perturbar";

  EXPECT_EQ(segunda.estado, 1) << segunda.errores;
  EXPECT_TRUE(contiene(segunda.errores, "Otra ejecuci\xC3\xB3n de VALDOR+"));
  EXPECT_EQ(pruebas::leeBytes(fichero("SEGUNDA")), VIEJO);
  EXPECT_TRUE(sinRestos());
}

// A month store that another program holds locked: exit 1, the lock message with the
// file's name, no file.
TEST_F(Fallos, UnAlmacenBloqueadoPorOtroProgramaNoDejaFichero) {
  ponViejo("BLOQUEO");
  sqlite3* otro = nullptr;
  ASSERT_EQ(sqlite3_open(programa("PX202610.MDB").c_str(), &otro), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(otro, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  const Resultado r = fan("BLOQUEO");
  sqlite3_exec(otro, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(otro);
  sinFichero(r, "BLOQUEO", "PX202610.MDB\" est\xC3\xA1 en uso por otro programa");
}

// A disk that fills up while the run writes (a limit on the size of the files the
// process may write): exit 1, no file, the old one as it was.
TEST_F(Fallos, UnDiscoLlenoNoDejaFicheroYGuardaElViejo) {
  ponViejo("LLENO");
  // 300 blocks of the shell's ulimit: room for the temp store's first pages, not for
  // the whole run. The command is built by appending (GCC 12 warns falsely on "a" + b).
  std::string orden = "trap '' XFSZ; ulimit -f 300; exec ";
  std::vector<std::string> partes{VALDOR_CLI, "--programa", (c / "programa").string(), "--trabajo",
                                  (c / "trabajo").string()};
  for (const std::string& a : argumentosFan("LLENO")) partes.push_back(a);
  for (const std::string& p : partes) orden.append(pruebas::paraLaShell(p)).append(" ");
  orden.append(">").append(pruebas::paraLaShell((c / "lleno.txt").string())).append(" 2>&1");
  const int estado = std::system(("sh -c " + pruebas::paraLaShell(orden)).c_str());
  const std::string salida = pruebas::leeBytes(c / "lleno.txt");
  Resultado r{WIFEXITED(estado) ? WEXITSTATUS(estado) : -1, "", salida};
  sinFichero(r, "LLENO", "TEMPORAL VALDOR.MDB");
  EXPECT_TRUE(contiene(r.errores, "El fichero no se ha generado."));
}

// Damaged stores and a store lacking a column the rules read: each is named when the
// run opens it, and no file is written.
TEST_F(Fallos, UnAlmacenDanadoOSinUnaColumnaSeNombraYNoDejaFichero) {
  const fs::path mes = programa("PX202610.MDB");
  const std::string sano = pruebas::leeBytes(mes);
  auto caso = [&](const std::string& bytes, std::string_view mensaje, const char* que) {
    SCOPED_TRACE(que);
    pruebas::escribeBytes(mes, bytes);
    ponViejo("DANADO");
    const Resultado r = fan("DANADO");
    sinFichero(r, "DANADO", mensaje);
    EXPECT_EQ(pruebas::leeBytes(mes), bytes) << "el almacén dañado ha cambiado";
    return r;
  };
  caso(sano.substr(0, sano.size() / 2), "PX202610.MDB\" no es una base de datos v\xC3\xA1lida", "cortado a la mitad");
  // Every page past the first ones turned to garbage: the catalogue still answers, the
  // rows do not.
  std::string paginas = sano;
  for (std::size_t i = 4 * 4096; i < paginas.size(); i += 4096)
    for (std::size_t j = 100; j < 400; ++j) paginas[i + j] = static_cast<char>(0xA5 ^ j);
  caso(paginas, "PX202610.MDB\" no es una base de datos v\xC3\xA1lida", "páginas de datos dañadas");

  pruebas::escribeBytes(mes, sano);
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(mes.c_str(), &db), SQLITE_OK);
  registraColacionEspanol(db);
  ASSERT_EQ(sqlite3_exec(db, "ALTER TABLE NOMIN DROP COLUMN BB8", nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(db);
  sqlite3_close(db);
  const Resultado r = caso(pruebas::leeBytes(mes), "A la tabla NOMIN de", "sin la columna BB8");
  EXPECT_TRUE(contiene(r.errores, "le faltan columnas que VALDOR+ lee: BB8"));
}

// Values that would break a line: a name holding CR LF and a false trailer, or a NUL,
// reaches the file as blanks, and every line stays 70 long; an amount too wide for its
// field, or no finite number, stops the job and names the worker and the value.
TEST_F(Fallos, LosValoresQueRompenUnaLineaNoLleganAlFichero) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(programa("EMPRESAS.MDB").c_str(), &db), SQLITE_OK);
  registraColacionEspanol(db);
  sqlite3_stmt* st = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(db, "UPDATE ESA SET A2 = ? WHERE rowid = 1", -1, &st, nullptr), SQLITE_OK);
  const std::string nombre("CAFE\r\nETFTC220VIP28\0X", 21);
  sqlite3_bind_text(st, 1, nombre.data(), static_cast<int>(nombre.size()), SQLITE_STATIC);
  ASSERT_EQ(sqlite3_step(st), SQLITE_DONE);
  sqlite3_finalize(st);
  sqlite3_close(db);
  const Resultado r = fan("NOMBRES");
  ASSERT_EQ(r.estado, 0) << r.errores;
  const std::vector<std::string> lineas = pruebas::registros(fichero("NOMBRES"));
  ASSERT_FALSE(lineas.empty());
  for (const std::string& l : lineas) {
    EXPECT_EQ(l.size(), 70u) << l;
    EXPECT_TRUE(std::none_of(l.begin(), l.end(), [](char ch) { return static_cast<unsigned char>(ch) < 0x20; })) << l;
  }
  EXPECT_EQ(std::count_if(lineas.begin(), lineas.end(), [](const std::string& l) { return l.starts_with("ETF"); }), 1);
  EXPECT_EQ(std::count_if(lineas.begin(), lineas.end(),
                          [](const std::string& l) { return l.starts_with("RZS") && l.find("CAFE  ETF") == 5; }),
            1);

  for (const char* valor : {"1e308", "123456789"}) {
    SCOPED_TRACE(valor);
    ASSERT_EQ(sqlite3_open(programa("PX202610.MDB").c_str(), &db), SQLITE_OK);
    registraColacionEspanol(db);
    const std::string sql = std::string("UPDATE NOMIN SET BB6 = ") + valor + ", BB8 = " + valor + " WHERE rowid = 1";
    ASSERT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
    ponViejo("IMPORTE");
    const Resultado importe = fan("IMPORTE");
    sinFichero(importe, "IMPORTE", ", trabajador 00001 (");
    EXPECT_TRUE(contiene(importe.errores, "no cabe en su campo de 7 cifras"));
  }
}

}  // namespace
}  // namespace valdor
