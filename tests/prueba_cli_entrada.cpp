// Every input checked at the door: the exchange name rule and the printer port rule of
// the core, the Spanish reasons of the system's errors, and valdor-cli refusing a wrong
// call with one line and a pointer to the help, before it writes anything.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "statement/estado.h"
#include "shell/asistente.h"
#include "statement/impresion.h"
#include "stores/error.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"
#include "stores/almacen.h"
#include "tests/cli_prueba.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::CarpetaTemporal;
using pruebas::contiene;
using pruebas::Resultado;
using pruebas::creaCarpetas;
using pruebas::valdor;

// ---- The exchange name rule -------------------------------------------------------------

TEST(NombreIntercambio, SoloNombresLlanosDeHastaOchoLetrasCifrasYGuiones) {
  for (const char* bueno : {"F1511260", "abc", " x1 ", "A_B-C", "_-_-_-_-", "COM10", "CONSOLA", "LPT0", "COM0"})
    EXPECT_FALSE(nombreIntercambioRechazado(bueno)) << bueno;

  const std::string acentuado = utf8ACp1252("ñu");
  for (const std::string& malo :
       std::vector<std::string>{"", "   ", ".", "..", "../../X", "A/B", "A\\B", "C:X", "A*", "A?", "A<", "A>", "A|",
                                "A\"", "A B", "A.B", "ABCDEFGHI", acentuado, "A\tB", "con", "Prn", "AUX", "nul", "COM1",
                                "com9", "LPT1", "lpt9", " CON "})
    EXPECT_TRUE(nombreIntercambioRechazado(malo)) << malo;

  // The refusal says what is wrong and states the rule.
  const std::string barra = nombreIntercambioRechazado("A/B").value_or("");
  EXPECT_TRUE(contiene(barra, "«A/B» no es válido: lleva el carácter «/»"_cp));
  EXPECT_TRUE(contiene(barra, "de 1 a 8 caracteres, solo letras de la A a la Z, cifras, guion (-) o guion bajo (_)"));
  EXPECT_TRUE(contiene(nombreIntercambioRechazado("ABCDEFGHI").value_or(""), "tiene 9 caracteres"));
  EXPECT_TRUE(contiene(nombreIntercambioRechazado("lpt1").value_or(""), "reserva para un dispositivo"));
  EXPECT_TRUE(contiene(nombreIntercambioRechazado("").value_or(""), "en blanco"));

  // No writer gets a path out of the exchange folder, whoever filled the page.
  PaginaIntercambio p;
  p.marcaCotizacion();
  p.Label10 = "FAN";
  p.Text8 = reglaNombre("abc");
  EXPECT_EQ(rutaFicheroFAN("C:\\WINSUITE\\WINSUITE.EXE", p), "C:\\WINSUITE\\VIPTC2\\FAN\\ABC00000.FAN");
  for (const char* fuera : {"..\\..\\X", "../X", "", "NUL"}) {
    p.Text8 = fuera;
    EXPECT_THROW(rutaFicheroFAN("C:\\WINSUITE\\WINSUITE.EXE", p), ErrorValdor) << fuera;
    EXPECT_THROW(rutaFicheroAFI("C:\\WINSUITE\\WINSUITE.EXE", p), ErrorValdor) << fuera;
  }
}

// ---- The printer port rule ----------------------------------------------------------------

TEST(PuertoImpresora, LasImpresorasConocidasOUnFicheroDeLaCarpetaDeTrabajo) {
  const fs::path trabajo = "/oficina/trabajo";
  EXPECT_EQ(rutaPuerto("LPT1", trabajo), "/dev/lp0");
  EXPECT_EQ(rutaPuerto("lpt3", trabajo), "/dev/lp2");
  EXPECT_EQ(rutaPuerto("PRN", trabajo), "/dev/lp0");
  EXPECT_EQ(rutaPuerto("boletin.txt", trabajo), trabajo / "boletin.txt");
  EXPECT_EQ(rutaPuerto("mi boletín.prn"_cp, trabajo), trabajo / std::string("mi boletín.prn"_cp));
  EXPECT_FALSE(puertoRechazado(std::string(255, 'x')));

  for (const std::string& malo :
       std::vector<std::string>{"/dev/lp0", "/tmp/x", "../x", "a/b", "a\\b", ".", "..", "", " ", " x", "x ", "LPT4",
                                "lpt9", "COM1", "CON", "nul", "aux", "a:b", "a*b", "a?b", "a<b", "a>b", "a|b", "a\"b",
                                "a\tb", std::string(256, 'x')}) {
    EXPECT_TRUE(puertoRechazado(malo)) << malo;
    EXPECT_THROW(rutaPuerto(malo, trabajo), ErrorValdor) << malo;
  }
  const std::string rechazo = puertoRechazado("/dev/lp0").value_or("");
  EXPECT_TRUE(contiene(rechazo, "«/dev/lp0» no es válido: es una ruta"_cp));
  EXPECT_TRUE(contiene(rechazo, "LPT1, LPT2 o LPT3"));
}

TEST(PuertoImpresora, UnDispositivoQueFaltaNoSeCreaYUnEnlaceNoSeSigue) {
  BOLETIN b;
  BLANQUEABOLETIN(b);
  TablaTrabajo g;
  pruebas::DialogosGrabador d;

  // A printer that is not there is an error of the port, never a new file in /dev.
  const fs::path impresora = "/dev/valdor-prueba-lp9";
  ASSERT_FALSE(fs::exists(impresora));
  EXPECT_FALSE(IMPRIMEBOLETIN(b, g, {}, impresora, d));
  EXPECT_FALSE(fs::exists(impresora));
  EXPECT_EQ(d.preguntas.size(), 1u);

  // A link planted where the file port goes does not carry the statement elsewhere.
  CarpetaTemporal c;
  fs::create_symlink(c / "otro.txt", c / "boletin.txt");
  EXPECT_FALSE(IMPRIMEBOLETIN(b, g, {}, c / "boletin.txt", d));
  EXPECT_FALSE(fs::exists(c / "otro.txt"));
  fs::remove(c / "boletin.txt");
  EXPECT_TRUE(IMPRIMEBOLETIN(b, g, {}, c / "boletin.txt", d));
  EXPECT_TRUE(pruebas::leeBytes(c / "boletin.txt").ends_with("\r\n"));
}

// ---- The system's reasons -----------------------------------------------------------------

TEST(RazonDelSistema, EnEspanolYConElNumeroCuandoNoSeConoce) {
  EXPECT_EQ(razonDelSistema(ENOENT), "no existe el fichero o la carpeta");
  EXPECT_EQ(razonDelSistema(EACCES), "no hay permiso de acceso");
  EXPECT_EQ(razonDelSistema(ENOSPC), "no queda espacio en el disco");
  EXPECT_EQ(razonDelSistema(EROFS), "el disco es de solo lectura");
  EXPECT_EQ(razonDelSistema(9999), "error del sistema 9999");
  // Every common value has a reason of its own, not the fallback.
  for (const int e : {ENOENT, EACCES, EPERM, ENOSPC, EDQUOT, EROFS, EISDIR, ENOTDIR, EEXIST, EBUSY, EAGAIN,
                      ENAMETOOLONG, EMFILE, ENFILE, EIO, ENXIO, ENODEV, ETXTBSY, ELOOP, EFBIG, EINVAL})
    EXPECT_FALSE(razonDelSistema(e).starts_with("error del sistema")) << e;
}

// ---- valdor-cli -----------------------------------------------------------------------------

constexpr const char* PISTAGENERAL = "Use «valdor-cli --ayuda» para ver las órdenes y sus opciones.\n";

std::string pistaDe(const std::string& orden) {
  return "Use «valdor-cli " + orden + " --ayuda» para ver sus opciones y los valores que admiten.\n";
}

// A wrong call: status 2, and on standard error the one line of the problem and the
// pointer to the help, never the whole help.
::testing::AssertionResult llamadaMal(const Resultado& r, const std::string& pista, const std::string& dice = "") {
  const auto lineas = std::count(r.errores.begin(), r.errores.end(), '\n');
  if (r.estado != 2 || lineas != 2 || !r.errores.ends_with(pista) || r.errores.find(dice) == std::string::npos)
    return ::testing::AssertionFailure() << "estado " << r.estado << ", errores:\n" << r.errores;
  return ::testing::AssertionSuccess();
}

TEST(CliEntrada, UnaLlamadaMalHechaDiceSoloQueFallaYDondeEstaLaAyudaYLaFechaHaDeExistir) {
  CarpetaTemporal c;
  creaCarpetas(c);
  EXPECT_TRUE(llamadaMal(valdor(c, {""}), PISTAGENERAL, "La orden está vacía."));
  EXPECT_TRUE(llamadaMal(valdor(c, {}), PISTAGENERAL, "Falta la orden."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"inventada"}), PISTAGENERAL, "Orden desconocida: inventada."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"--otra", "ajustes"}), PISTAGENERAL, "Opción desconocida: --otra."));
  // Global options: once each, never empty, with "=" as well.
  EXPECT_TRUE(llamadaMal(valdor(c, {"--trabajo", (c / "trabajo").string(), "ajustes"}), PISTAGENERAL,
                         "La opción --trabajo está repetida."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"--programa=", "ajustes"}, false), PISTAGENERAL, "--programa está vacío"));
  EXPECT_TRUE(llamadaMal(valdor(c, {"--ahora", "--trabajo", "x", "ajustes"}, false), PISTAGENERAL,
                         "Falta el valor de --ahora."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"--ahora=2026-02-30 10:00", "ajustes"}), PISTAGENERAL, "--ahora espera"));

  // The options of an order, and the pointer to that order's help.
  const std::string ajustes = pistaDe("ajustes");
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--emisor", "A", "--emisor=B"}), ajustes,
                         "La opción --emisor está repetida."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--emisor", ""}), ajustes, "El valor de --emisor está vacío."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--emisor="}), ajustes, "El valor de --emisor está vacío."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--emisor", "--clave-silcon", "X"}), ajustes,
                         "Falta el valor de --emisor."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--emisor", "A\nB"}), ajustes, "carácter de control"));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "suelto"}), ajustes, "Sobra \"suelto\""));
  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--sobra"}), ajustes, "Opción desconocida para esta orden: --sobra."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"fan", "--clase", "Z99"}), pistaDe("fan"), "Clase de liquidación desconocida: Z99."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"revisar", ""}), pistaDe("revisar"), "Falta el nombre del fichero"));
  EXPECT_TRUE(llamadaMal(valdor(c, {"fan", "--dev-cta=1"}), pistaDe("fan"), "--dev-cta no lleva valor."));
  EXPECT_TRUE(llamadaMal(valdor(c, {"fan", "--lanzar", "--lanzar"}), pistaDe("fan"), "repetida"));
  for (const char* mes : {"0", "13", "-1", "1.5", " 3", "x"})
    EXPECT_TRUE(llamadaMal(valdor(c, {"empresas", "--mes", mes}), pistaDe("empresas"), "--mes espera")) << mes;
  for (const char* ano : {"26", "02026", "1900", "2101", "20 6"})
    EXPECT_TRUE(llamadaMal(valdor(c, {"almacenes", "--ano=" + std::string(ano)}), pistaDe("almacenes"),
                           "con 4 cifras"))
        << ano;
  // Nothing of that was saved.
  EXPECT_FALSE(fs::exists(c / "trabajo" / "VALDOR.MDB"));
  EXPECT_FALSE(fs::exists(c / "trabajo" / "EMISOR.TXT"));

  // Options with "=" are as good as separated ones; a date has to exist.
  auto r = valdor(c, {"--programa=" + (c / "programa").string(), "--trabajo=" + (c / "trabajo").string(),
                      "--ahora=2026-11-15 07:30", "ajustes", "--emisor=Gestoría Núñez",
                      "--fecha-autorizacion=29/02/2028"},
                  false);
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_TRUE(contiene(r.salida, "Emisor de Intercambio: Gestoría Núñez\n"));
  EXPECT_TRUE(contiene(r.salida, "Fecha de autorización: 29/02/2028\n"));
  const std::string guardado = pruebas::leeBytes(c / "trabajo" / "VALDOR.MDB");

  EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--fecha-autorizacion", "01/02/2026 "}), pistaDe("ajustes"),
                         "--fecha-autorizacion admite 10 caracteres como máximo"));
  for (const char* fecha : {"31/02/2026", "29/02/2027", "99/99/9999", "00/01/2026", "1/2/2026", "01/02/26",
                            " 1/02/2026", "01-02-2026"})
    EXPECT_TRUE(llamadaMal(valdor(c, {"ajustes", "--fecha-autorizacion", fecha}), pistaDe("ajustes"),
                           "--fecha-autorizacion espera una fecha que exista"))
        << fecha;
  EXPECT_EQ(pruebas::leeBytes(c / "trabajo" / "VALDOR.MDB"), guardado);
}

TEST(CliEntrada, CadaOrdenTieneSuAyudaYElProgramaSuVersion) {
  CarpetaTemporal c;
  for (const std::string orden : {"muestra", "ajustes", "empresas", "fan", "afi", "imprimir", "revisar", "almacenes"})
    for (const char* ayuda : {"--ayuda", "--help", "-h"}) {
      const Resultado r = valdor(c, {orden, ayuda}, false);
      EXPECT_EQ(r.estado, 0) << orden << " " << ayuda << r.errores;
      EXPECT_TRUE(r.salida.starts_with("Uso: valdor-cli")) << r.salida;
      EXPECT_TRUE(contiene(r.salida, "\n  " + orden + " "));
      EXPECT_EQ(r.salida.find("Órdenes:"), std::string::npos) << r.salida;  // not the whole help
      EXPECT_EQ(r.salida.find("Ã"), std::string::npos) << r.salida;         // no text encoded twice
    }
  // The help of an order says the values its options take.
  Resultado r = valdor(c, {"fan", "--mes", "10", "--ayuda"}, false);
  EXPECT_EQ(r.estado, 0);
  EXPECT_TRUE(contiene(r.salida, "de 1 a 8 caracteres, solo letras de la A a la Z,"));
  EXPECT_TRUE(contiene(r.salida, "serie (una letra de la A a la Z o una cifra)"));
  r = valdor(c, {"imprimir", "--ayuda"}, false);
  EXPECT_TRUE(contiene(r.salida, "PRN (LPT1) o el nombre de"));

  r = valdor(c, {"--ayuda"}, false);
  EXPECT_EQ(r.estado, 0);
  EXPECT_TRUE(contiene(r.salida, "Órdenes:\n  muestra"));
  EXPECT_TRUE(contiene(r.salida, "«valdor-cli ORDEN --ayuda» dice qué valores admite cada opción."));
  EXPECT_EQ(r.salida.find("Ã"), std::string::npos);

  r = valdor(c, {"--version"}, false);
  EXPECT_EQ(r.estado, 0);
  ASSERT_TRUE(r.salida.starts_with("valdor-cli ")) << r.salida;
  const std::string version = r.salida.substr(11);
  EXPECT_TRUE(version.size() > 5 && version.back() == '\n' && std::isdigit(static_cast<unsigned char>(version[0])) &&
              std::count(version.begin(), version.end(), '.') == 2)
      << r.salida;
}

// ---- With the sample office ------------------------------------------------------------------

using CliOficina = pruebas::CliMuestra;

TEST_F(CliOficina, UnNombreQueNoEsDeLaCarpetaDeIntercambioNoEscribeNada) {
  const auto antes = ficheros();
  // The rule itself is the core's (above): here, that both orders apply it before writing.
  for (const char* nombre : {"../../X", "A\\B", "nul", "ABCDEFGHI", "ñu", "  "}) {
    EXPECT_TRUE(llamadaMal(fan({"--nombre", nombre}), pistaDe("fan"), "no es válido")) << nombre;
    EXPECT_TRUE(llamadaMal(valdor(c, {"afi", "--nombre", nombre}), pistaDe("afi"), "no es válido")) << nombre;
  }
  EXPECT_EQ(ficheros(), antes);

  // A name of the rule, with the replaced send in its boxes: the file and its label line.
  const Resultado r = fan({"--nombre", "a_b-1", "--sustituye", "26,9,a,12,7"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  const auto lineas = pruebas::registros(carpetaFan() / "A_B-1000.FAN");
  ASSERT_FALSE(lineas.empty());
  EXPECT_EQ(lineas[0].substr(41, 11), "A_B-1000FAN");
  EXPECT_EQ(lineas[0].substr(52, 16), "NS2609A000120007");
}

TEST_F(CliOficina, LasEmpresasElEnvioSustituidoYLaLongitudDeLasLineasSeCompruebanAntesDeEscribir) {
  const auto antes = ficheros();
  const std::string fanPista = pistaDe("fan");
  for (const char* empresas : {",,,", ",", "50104532166,", ",50104532166", "50104532166,,41123409876", "123",
                               "501045321660", "5010453216A", "50104532166,50104532166"})
    EXPECT_TRUE(llamadaMal(fan({"--empresas", empresas}), fanPista, "--empresas")) << empresas;
  EXPECT_TRUE(llamadaMal(fan({"--empresas", ""}), fanPista, "El valor de --empresas está vacío."));
  for (const char* sustituye : {"26,13,A,1,1", "26,0,A,1,1", "0,1,A,1,1", "00,1,A,1,1", "26,1,,1,1", "26,1,AB,1,1",
                                "26,1,Ñ,1,1", "26,1,A,123456,1", "26,1,A,1,12345", "26,1,A,1", "26,1,A,1,1,1",
                                "2a,1,A,1,1", "26,1,A, 1,1", "-1,1,A,1,1"})
    EXPECT_TRUE(llamadaMal(fan({"--sustituye", sustituye}), fanPista, "--sustituye")) << sustituye;
  EXPECT_TRUE(llamadaMal(fan({"--modo", "pruebas", "--sustituye", "26,1,A,1,1"}), fanPista, "--modo sustitucion"));
  EXPECT_EQ(ficheros(), antes);

  // A company the month does not have, beside one it has: told, and no file at all.
  const Resultado r = fan({"--empresas", "50104532166,99999999999", "--nombre", "mixto"});
  EXPECT_EQ(r.estado, 1) << r.errores;
  EXPECT_TRUE(contiene(r.errores, "La empresa 99999999999 no tiene nóminas calculadas en el mes."));
  EXPECT_EQ(r.errores.find("50104532166 no tiene"), std::string::npos) << r.errores;
  EXPECT_FALSE(fs::exists(carpetaFan() / "MIXTO000.FAN"));

  // "sustitución" with its accent is the same mode.
  EXPECT_EQ(fan({"--modo", "sustitución", "--nombre", "acento"}).estado, 0);
  EXPECT_EQ(pruebas::registros(carpetaFan() / "ACENTO00.FAN").at(0).substr(53, 1), "S");

  // A document of 18 characters makes the worker's TRA line 74 long: no file, and the
  // message names the line's kind, the worker and the company.
  Almacen mes;
  mes.abre(c / "programa" / "PX202610.MDB");
  ASSERT_EQ(mes.ejecuta("UPDATE NOMIN SET BNIFCU = '123456789012345678' WHERE BSSE = '28107654331' AND "
                        "BMATRI = '00001'"),
            1);
  mes.cierra();
  const Resultado largo = fan({"--nombre", "largo"});
  EXPECT_EQ(largo.estado, 1) << largo.errores;
  EXPECT_TRUE(contiene(largo.errores, "TRA del trabajador 00001 de la empresa 28107654331 mide 74 caracteres"));
  EXPECT_FALSE(fs::exists(carpetaFan() / "LARGO000.FAN"));
}

TEST_F(CliOficina, ElBoletinSoloSaleAUnaImpresoraConocidaOAUnFicheroDeTrabajo) {
  const std::vector<std::string> base{"imprimir", "--mes", "10", "--ano", "2026", "--empresa", "41123409876"};
  auto imprimir = [&](std::vector<std::string> mas) {
    mas.insert(mas.begin(), base.begin(), base.end());
    return valdor(c, mas);
  };
  const auto antes = ficheros();
  const std::vector<std::string> puertos{"/dev/lp0", (c / "fuera.txt").string(), "../fuera.txt", "sub/boletin.txt",
                                         "CON", "COM1", "LPT4", "..", " boletin.txt", "a*b"};
  for (const std::string& puerto : puertos)
    EXPECT_TRUE(llamadaMal(imprimir({"--puerto", puerto}), pistaDe("imprimir"), "El puerto de la impresora")) << puerto;
  for (const char* empresa : {"4112340987", "411234098766", "41 1234098 76", "4112340987X"})
    EXPECT_TRUE(llamadaMal(valdor(c, {"imprimir", "--empresa", empresa}), pistaDe("imprimir"), "--empresa espera"))
        << empresa;

  // The environment's port follows the same rule: a job that cannot start.
  setenv("VALDOR_IMPRESORA", (c / "fuera.txt").c_str(), 1);
  Resultado r = imprimir({});
  unsetenv("VALDOR_IMPRESORA");
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(r.errores.starts_with("VALDOR_IMPRESORA: El puerto de la impresora")) << r.errores;
  EXPECT_EQ(ficheros(), antes);

  // A company without payroll in the month is a failed job, and nothing is printed.
  r = valdor(c, {"imprimir", "--mes", "10", "--ano", "2026", "--empresa", "99999999999", "--puerto", "nada.txt"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_FALSE(fs::exists(c / "trabajo" / "nada.txt"));

  r = imprimir({"--puerto=boletin.txt"});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(r.salida, (c / "trabajo" / "boletin.txt").string() + "\n");
  EXPECT_TRUE(pruebas::leeBytes(c / "trabajo" / "boletin.txt").ends_with("\r\n"));

  // A store that fails during the run: the statement would be short, so it is not
  // printed and the job has failed.
  pruebas::escribeBytes(c / "programa" / "CONVENIO.MDB", std::string(4096, 'x'));
  r = imprimir({"--puerto", "roto.txt"});
  EXPECT_EQ(r.estado, 1);
  EXPECT_TRUE(contiene(r.errores, "CONVENIO.MDB"));
  EXPECT_TRUE(contiene(r.errores, "El boletín de la empresa 41123409876 no se imprime"));
  EXPECT_FALSE(fs::exists(c / "trabajo" / "roto.txt"));
}

}  // namespace
}  // namespace valdor
