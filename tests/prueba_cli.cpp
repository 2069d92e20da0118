// The command line as a user runs it: the orders, their output, the settings file
// they write and their exit statuses.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "stores/almacen.h"
#include "tests/cli_prueba.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::CarpetaTemporal;
using pruebas::CliMuestra;
using pruebas::contiene;
using pruebas::leeBytes;
using pruebas::registros;
using pruebas::valdor;

TEST(Cli, AjustesGuardaElRegistroDe176BytesYRechazaLoQueElDialogoNoDejariaEscribir) {
  CarpetaTemporal c;
  pruebas::creaCarpetas(c);
  auto r = valdor(c, {"ajustes"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(contiene(r.salida, "Clave de autorización: \n"));
  EXPECT_TRUE(contiene(r.salida, "Ruta de Winsuite: \n"));
  EXPECT_EQ(fs::file_size(c / "trabajo" / "VALDOR.MDB"), 0u);

  r = valdor(c, {"ajustes", "--clave-autorizacion", "123", "--ruta-winsuite", "C:\\WINSUITE\\WINSUITE.EXE"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  const std::string bytes = leeBytes(c / "trabajo" / "VALDOR.MDB");
  EXPECT_EQ(bytes, "123     " + std::string(8, ' ') + "C:\\WINSUITE\\WINSUITE.EXE" + std::string(126 + 10, ' '));
  EXPECT_TRUE(contiene(r.salida, "Ruta de Winsuite: C:\\WINSUITE\\WINSUITE.EXE\n"));

  // The sender's name is kept beside the record, in Windows-1252, and shown again.
  r = valdor(c, {"ajustes", "--emisor", "Gestoría Núñez"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(leeBytes(c / "trabajo" / "EMISOR.TXT"), "Gestor\xED" "a N\xFA\xF1" "ez\n");
  EXPECT_TRUE(contiene(r.salida, "Emisor de Intercambio: Gestoría Núñez\n"));

  // A key longer than the dialog's box, or of letters Windows-1252 lacks: refused.
  r = valdor(c, {"ajustes", "--clave-autorizacion", "123456789"});
  EXPECT_EQ(r.estado, 2);
  EXPECT_TRUE(contiene(r.errores, "8 caracteres"));
  EXPECT_EQ(valdor(c, {"ajustes", "--clave-silcon", "日本"}).estado, 2);
  EXPECT_EQ(leeBytes(c / "trabajo" / "VALDOR.MDB"), bytes);

  // A work folder that is missing is a failed job that names it.
  r = valdor(c, {"--trabajo", (c / "no-existe").string(), "ajustes"}, false);
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "no-existe"));
}

TEST(Cli, LasCarpetasRelativasSeTomanDesdeDondeSeLlama) {
  CarpetaTemporal c;
  const std::string orden = "cd " + pruebas::paraLaShell(c.ruta().string()) + " && " + pruebas::paraLaShell(VALDOR_CLI) +
                            " --programa oficina/programa --trabajo oficina/trabajo muestra >/dev/null 2>&1";
  ASSERT_EQ(std::system(orden.c_str()), 0);
  EXPECT_TRUE(fs::exists(c / "oficina/programa/EMPRESAS.MDB"));
  EXPECT_TRUE(fs::exists(c / "oficina/trabajo/VALDOR.MDB"));
}

// The sample's four companies with payroll, in the Spanish order of their names (Ca
// before Co); a second sample into the same folders is refused.
TEST_F(CliMuestra, LaMuestraSeEscribeUnaVezYSusEmpresasSeListanEnOrdenDeNombre) {
  EXPECT_TRUE(fs::exists(c / "programa" / "PX202610.MDB"));
  const std::string empresas = leeBytes(c / "programa" / "EMPRESAS.MDB");
  EXPECT_EQ(corre("muestra").estado, 1);
  EXPECT_EQ(leeBytes(c / "programa" / "EMPRESAS.MDB"), empresas);

  const auto r = corre("empresas");
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(r.errores, "");
  std::size_t antes = r.salida.find("10/2026 (PX202610.MDB)");
  EXPECT_NE(antes, std::string::npos) << r.salida;
  for (const char* nombre : {"Asociación Cultural Río Ebro", "Café Nórdico Lars Hansen",
                             "Construcciones Peñalara, S.L.", "Panadería Ángel Muñoz Ortega"}) {
    const std::size_t p = r.salida.find(nombre);
    EXPECT_TRUE(p != std::string::npos && p > antes) << nombre << "\n" << r.salida;
    antes = p;
  }
  EXPECT_FALSE(fs::exists(c / "trabajo" / "TEMPORAL VALDOR.MDB"));
}

TEST_F(CliMuestra, FanEscribeElFicheroDeLaMuestraYRevisarLoCompruebaYaLoDanado) {
  auto r = fan({"--modo", "pruebas"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  const fs::path fichero = carpetaFan() / "F1511260.FAN";
  EXPECT_TRUE(r.salida.ends_with(fichero.string() + "\n")) << r.salida;
  ASSERT_TRUE(leeBytes(fichero).ends_with("\r\n"));
  const std::vector<std::string> lineas = registros(fichero);
  ASSERT_GE(lineas.size(), 10u);
  for (const std::string& l : lineas) EXPECT_EQ(l.size(), 70u) << l;
  EXPECT_EQ(lineas[0].substr(0, 21), "ETITC220VIP2820731542");
  EXPECT_EQ(lineas.back().substr(0, 21), "ETFTC220VIP2820731542");
  EXPECT_EQ(lineas.back().substr(52, 7), "NP00004");
  // Four companies of 14 workers, each closed by its TC1 lines; without "Dev. en Cta."
  // no DBA line.
  auto cuenta = [](const std::vector<std::string>& l, std::string_view clave) {
    return std::count_if(l.begin(), l.end(), [&](const std::string& x) { return x.starts_with(clave); });
  };
  EXPECT_EQ(cuenta(lineas, "EMP"), 4);
  EXPECT_EQ(cuenta(lineas, "TRA"), 14);
  EXPECT_EQ(cuenta(lineas, "EDTTT91000") + cuenta(lineas, "EDTTT92000"), 4);
  EXPECT_EQ(cuenta(lineas, "DBA "), 0);
  // With it, a DBA line closes each company's block, just before the next company.
  r = fan({"--dev-cta", "--nombre", "cuenta"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  const auto conCuenta = registros(carpetaFan() / "CUENTA00.FAN");
  EXPECT_EQ(cuenta(conCuenta, "DBA "), 4);
  for (std::size_t i = 2; i < conCuenta.size(); ++i) {
    if (conCuenta[i].starts_with("EMP") || conCuenta[i].starts_with("ETF")) {
      EXPECT_TRUE(conCuenta[i - 1].starts_with("DBA ") && conCuenta[i - 1].size() == 70u) << conCuenta[i - 1];
    }
  }

  // The editor's checks from the command line: the file is whole, its totals the sums
  // of its workers' lines...
  r = valdor(c, {"revisar", fichero.string()});
  EXPECT_EQ(r.estado, 0) << r.salida << r.errores;
  EXPECT_TRUE(contiene(r.salida, "cuadran con el fichero: 4 empresas"));
  // ...a line added by hand is marked, with the trailer that no longer tallies...
  pruebas::escribeBytes(c / "roto.FAN", leeBytes(fichero) + "TRAcorta\r\n");
  r = valdor(c, {"revisar", (c / "roto.FAN").string()});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.salida, "tiene 8 caracteres y debe tener 70."));
  // The same for a script: one document, the line findings in their list, the verdict last.
  r = valdor(c, {"revisar", "--json", (c / "roto.FAN").string()});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(r.salida.starts_with("{\n  \"fichero\": \"")) << r.salida;
  EXPECT_TRUE(contiene(r.salida, "tiene 8 caracteres y debe tener 70."));
  EXPECT_TRUE(r.salida.ends_with(",\n  \"bien\": false\n}\n")) << r.salida;
  // A file of another kind has only its lines' length and ends checked.
  pruebas::escribeBytes(c / "copia.TXT", leeBytes(fichero));
  r = valdor(c, {"revisar", (c / "copia.TXT").string()});
  EXPECT_EQ(r.estado, 0) << r.salida;
  EXPECT_TRUE(contiene(r.salida, "No es un fichero .FAN ni .AFI"));
  // ...and a line whose end is a LF alone is marked with its number.
  std::string bytes = leeBytes(fichero);
  bytes.erase(70, 1);  // the CR that ends the first line
  pruebas::escribeBytes(c / "lf.FAN", bytes);
  r = valdor(c, {"revisar", (c / "lf.FAN").string()});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.salida, "nea 1: termina en LF y no en CR LF."));
  EXPECT_TRUE(contiene(r.salida, "cuadran con el fichero"));
  // A file that is missing, a folder, and a call without a file: each told for what it is.
  r = valdor(c, {"revisar", (c / "no-esta.FAN").string()});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "No existe el fichero \"" + (c / "no-esta.FAN").string() + "\"."));
  fs::create_directory(c / "carpeta.FAN");
  r = valdor(c, {"revisar", (c / "carpeta.FAN").string()});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "\"" + (c / "carpeta.FAN").string() + "\" es una carpeta, no un fichero."));
  EXPECT_EQ(valdor(c, {"revisar"}).estado, 2);
}

// A worker's Social Security number with a wrong check digit, as a payroll typed it, goes
// into the file as it stands; the check after the writing tells it, and with --estricto
// the file is not written. Worker 28 12345678: 2812345678 mod 97 = 40, so "...41" is wrong.
TEST_F(CliMuestra, UnHallazgoEnElFicheroEscritoSeDiceYConEstrictoNoHayFichero) {
  {
    Almacen mes;
    mes.abre(c / "programa" / "PX202610.MDB");
    ASSERT_EQ(mes.ejecuta("UPDATE NOMIN SET BAFI = '281234567841' WHERE BAFI = '281234567840'"), 1);
  }
  auto r = fan();
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(fs::exists(carpetaFan() / "F1511260.FAN"));
  EXPECT_TRUE(contiene(r.errores, "Hallazgos en los campos de \"" + (carpetaFan() / "F1511260.FAN").string() + "\":"));
  const std::string regla(
      ", posiciones 4-15 (número de afiliación): \"281234567841\" — el dígito de control del número de afiliación es "
      "40 (módulo 97)");  // the command line writes UTF-8
  EXPECT_TRUE(contiene(r.errores, regla));

  r = fan({"--nombre", "estricto", "--estricto"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, regla));
  EXPECT_TRUE(contiene(r.errores, "y con --estricto no se escribe."));
  // Neither the file nor its temporary copy is left: only the first run's file.
  std::vector<fs::path> escritos;
  for (const auto& f : fs::directory_iterator(carpetaFan())) escritos.push_back(f.path().filename());
  EXPECT_EQ(escritos, std::vector<fs::path>{"F1511260.FAN"});
}

// Two runs at the same moment never meet under one default name; a name that is taken is
// replaced only with --reemplazar; a company the month lacks and a transmission tool that
// does not start fail the job, saying why.
TEST_F(CliMuestra, UnFicheroQueYaEstaSoloSeReemplazaConReemplazarYUnArranqueFallidoAcabaCon1) {
  ASSERT_EQ(fan().estado, 0);
  const std::string primero = leeBytes(carpetaFan() / "F1511260.FAN");
  auto r = fan();
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(r.salida.ends_with((carpetaFan() / "F1511261.FAN").string() + "\n")) << r.salida;
  EXPECT_EQ(leeBytes(carpetaFan() / "F1511260.FAN"), primero);

  r = fan({"--nombre", "f1511260", "--modo", "pruebas"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "Ya existe el fichero C:\\WINSUITE\\VIPTC2\\FAN\\F1511260.FAN, de "));
  EXPECT_TRUE(contiene(r.errores, "no se reemplaza. Use --reemplazar"));
  EXPECT_EQ(leeBytes(carpetaFan() / "F1511260.FAN"), primero);
  r = fan({"--nombre", "f1511260", "--modo", "pruebas", "--reemplazar"});
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(leeBytes(carpetaFan() / "F1511260.FAN").substr(0, 68),
            primero.substr(0, 53) + "P" + primero.substr(54, 14));  // the test send's mode

  r = fan({"--empresas", "99999999999", "--nombre", "otro"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "99999999999"));
  EXPECT_FALSE(fs::exists(carpetaFan() / "OTRO0000.FAN"));

  // The sample's route names a tool that this drive does not have.
  r = fan({"--nombre", "lanza", "--lanzar"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "No se ha podido arrancar C:\\WINSUITE\\WINSUITE.EXE. Orden ejecutada: wine " +
                                      (c / "wine/drive_c/WINSUITE/WINSUITE.EXE").string() +
                                      ". Motivo: no existe el programa"));
  EXPECT_TRUE(fs::exists(carpetaFan() / "LANZA000.FAN"));
}

// A settings file or a rate file that is there but damaged stops the job with a message
// naming it, and no exchange file is left behind; a sound one lets the job run again.
TEST_F(CliMuestra, AjustesOTiposDanadosParanElFanSinDejarFichero) {
  const fs::path ajustes = c / "trabajo" / "VALDOR.MDB", tipos = c / "trabajo" / "N-SS2026.MDB";
  const std::string ajustesSanos = leeBytes(ajustes), tiposSanos = leeBytes(tipos);
  auto sinFichero = [&](const pruebas::Resultado& r, const std::string& mensaje) {
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(contiene(r.errores, mensaje));
    EXPECT_EQ(r.errores.find("RUTA NO V"), std::string::npos) << r.errores;
    EXPECT_FALSE(fs::exists(carpetaFan()) && !fs::is_empty(carpetaFan()));
  };
  for (const std::string& danado : {std::string(176, '\0'), ajustesSanos.substr(0, 100)}) {
    pruebas::escribeBytes(ajustes, danado);
    sinFichero(fan(), "El fichero de ajustes \"" + ajustes.string() + "\" no es un registro de ajustes");
    EXPECT_EQ(leeBytes(ajustes), danado);
  }
  // A settings file that cannot be read says why, not that the route is missing.
  fs::remove(ajustes);
  fs::create_directory(ajustes);
  sinFichero(fan(), "No se puede leer el fichero de ajustes \"" + ajustes.string() + "\": es una carpeta");
  fs::remove(ajustes);
  pruebas::escribeBytes(ajustes, ajustesSanos);

  pruebas::escribeBytes(tipos, tiposSanos.substr(0, 12 * 28));
  sinFichero(fan(), "El fichero de tipos \"" + tipos.string() + "\"");
  EXPECT_EQ(leeBytes(tipos), tiposSanos.substr(0, 12 * 28));

  pruebas::escribeBytes(tipos, tiposSanos);
  const auto r = fan();
  EXPECT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(fs::exists(carpetaFan() / "F1511260.FAN"));
}

// revisar reads a file of any size in the same memory: 200 MB without a line end, as a
// damaged or foreign file may be, is read through a block and a line cut to its limit.
TEST(Cli, RevisarLeeUnFicheroEnormeConPocaMemoria) {
  CarpetaTemporal c;
  const fs::path enorme = c / "ENORME.FAN";
  pruebas::escribeBytes(enorme, "");
  fs::resize_file(enorme, 200u << 20);  // NUL bytes, with no room taken on the disk
  const pid_t hijo = ::fork();
  ASSERT_GE(hijo, 0);
  if (hijo == 0) {
    const int nulo = ::open("/dev/null", O_WRONLY);
    ::dup2(nulo, 1);
    ::dup2(nulo, 2);
    ::execl(VALDOR_CLI, VALDOR_CLI, "revisar", enorme.c_str(), static_cast<char*>(nullptr));
    ::_exit(127);
  }
  int estado = 0;
  struct rusage uso {};
  ASSERT_EQ(::wait4(hijo, &estado, 0, &uso), hijo);
  ASSERT_TRUE(WIFEXITED(estado));
  EXPECT_EQ(WEXITSTATUS(estado), 1);  // one line of 209,715,200 characters
  EXPECT_LT(uso.ru_maxrss, 64 * 1024) << "KiB";
}

// The sample's AFI file: ETI, SIL, three companies of 2 lines, four workers of 6 lines
// (two of Construcciones Peñalara, one of the bakery, one of the café), ETF: 33 lines. A
// pending worker of a company the office does not have is told, left out and kept, and
// the job still succeeds.
TEST_F(CliMuestra, AfiEscribeElFicheroDeLosPendientesYSoloBorraLaTablaSiSeLePide) {
  {
    Almacen acuvaldor;
    acuvaldor.abre(c / "trabajo" / "ACUVALDOR.MDB");
    acuvaldor.ejecuta("INSERT INTO VALDORTA (VALDEMP, VALDTRA, VALDORTIPO, SITU) VALUES ('99000000099', '00001', 'AL', "
                      "'01')");
  }
  const std::string pendientes = leeBytes(c / "trabajo" / "ACUVALDOR.MDB");
  auto r = corre("afi", {"--clave", "K1", "--nueva-clave", "K2"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(
      contiene(r.errores, "Empresa 99000000099, trabajador 00001: la empresa no está en el fichero de empresas."));
  EXPECT_TRUE(r.errores.ends_with("C:\\WINSUITE\\VIPTC2\\AFI\\F1511260.AFI: El asistente ha terminado de preparar su "
                                  "fichero .AFI ¿Desea editar el fichero para verificar su sintaxis? [no]\n"))
      << r.errores;
  const fs::path fichero = carpetaAfi() / "F1511260.AFI";
  EXPECT_EQ(r.salida, "Fichero de intercambio: C:\\WINSUITE\\VIPTC2\\AFI\\F1511260.AFI\n" + fichero.string() + "\n");
  EXPECT_EQ(leeBytes(c / "trabajo" / "ACUVALDOR.MDB"), pendientes);

  const auto l = registros(fichero);
  ASSERT_EQ(l.size(), 33u);
  for (const std::string& linea : l) EXPECT_EQ(linea.size(), 70u) << linea;
  EXPECT_EQ(l[0].substr(0, 13), "ETIAFI31WS342");
  EXPECT_EQ(l[1].substr(0, 19), "SIL" "K1      " "K2      ");
  EXPECT_EQ(l[2].substr(0, 18), "EMP011128107654331");
  // The new hire 00007 of Peñalara, who starts on 1 November: affiliation number
  // 28 78901234 and 2878901234 % 97 = 16; DNI 50987654, letter 50987654 % 23 = 12, N;
  // contract 001, key 100; the sample's pending defaults (724, 1 and 0, man, 30 days).
  EXPECT_EQ(l[10], "TRA" "28" "7890123416" "1" "   " "0000050987654N" "   " + std::string(25, ' ') + "724" " " "     ");
  EXPECT_EQ(l[11], "AYN" "RUIZ                " "CALVO               " "ALBERTO        " + std::string(12, ' '));
  EXPECT_EQ(l[12], "DOM" " " "  " "CALLE DEL CARMEN, 9                 " "00000" "      " "   " "28400" "000000000");
  EXPECT_EQ(l[13], "LDD" "COLLADO VILLALBA        " "MADRID         " + std::string(28, ' '));
  EXPECT_EQ(l[14], "FAB" " AL" "01" "20261101" "08" "016" "100" "10" "000" "000" "S" "030" "00" "00" "20261101"
                   "1000000N" "N00" "20261101N  ");
  EXPECT_EQ(l[15], "DAM" "20261101" "N" "0000" "000000000000" "00" + std::string(40, ' '));
  EXPECT_EQ(l.back().substr(54, 13), "00003" "00000033");
  r = valdor(c, {"revisar", fichero.string()});
  EXPECT_EQ(r.estado, 0) << r.salida << r.errores;

  r = valdor(c, {"afi", "--nombre", "segundo", "--borrar-pendientes"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(contiene(r.errores,
                       "Se han borrado de la lista de pendientes de afiliación 4 trabajadores, los que van en "
                       "los ficheros escritos. Quedan 1 trabajador pendiente."));
  r = valdor(c, {"afi", "--nombre", "tercero"});
  EXPECT_EQ(r.estado, 1);  // nothing that can go into a file any more
  EXPECT_TRUE(contiene(r.errores, "Ninguno de los trabajadores pendientes"));
  EXPECT_FALSE(fs::exists(carpetaAfi() / "TERCERO0.AFI"));
}

}  // namespace
}  // namespace valdor
