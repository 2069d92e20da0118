// valdor-cli: the jobs of VALDOR+ without a screen, for scripts, batch runs and tests.

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <system_error>

#include "cli/consola.h"
#include "cli/ordenes.h"
#include "stores/almacen.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace fs = std::filesystem;
using namespace valdor;
using namespace valdor::cli;

namespace {

constexpr std::string_view USO = R"(Uso: valdor-cli [--programa DIR] [--trabajo DIR] [--ahora "AAAA-MM-DD HH:MM"] ORDEN [opciones]

Órdenes:
  muestra  [--mes M --ano A] [--empresas N --trabajadores M]
           escribe la oficina de muestra en las carpetas del programa y de trabajo
           (por omisión, la del mes anterior al actual)
  ajustes  [--clave-autorizacion V] [--clave-silcon V] [--fecha-autorizacion V]
           [--ruta-winsuite V] [--emisor NOMBRE]
           muestra los ajustes del intercambio; con opciones, los guarda
  empresas [--mes M --ano A]
           lista las empresas con nóminas calculadas en el mes: código, nombre, trabajadores
  fan      [--mes M --ano A] [--empresas C1,C2,...] [--clase L00] [--calificador 00]
           [--nombre N] [--modo normal|pruebas|sustitucion] [--sustituye AA,MM,S,EEEEE,DDDD]
           [--dev-cta] [--lanzar]
           escribe el fichero de cotización .FAN; sin --empresas, todas las del mes;
           la última línea es la ruta del fichero
  afi      [--nombre N] [--modo normal|pruebas|sustitucion] [--sustituye AA,MM,S,EEEEE,DDDD]
           [--clave V] [--nueva-clave V] [--borrar-pendientes]
           escribe el fichero de afiliación .AFI de los trabajadores pendientes; con
           --borrar-pendientes vacía después la tabla de pendientes
  imprimir --empresa CODIGO [--mes M --ano A] [--puerto P] [--red]
           imprime el boletín TC1 de la empresa en el impreso: en el puerto P, o en el de
           VALDOR_IMPRESORA, o en LPT1 (/dev/lp0); un nombre que no es un puerto es un
           fichero. --red lo marca como enviado por R.E.D. con la autorización
  revisar  FICHERO
           revisa un fichero .FAN o .AFI sin cambiarlo: las líneas que no tienen 70
           caracteres, las que no empiezan por un segmento de su tipo, y si las cuentas
           del cierre ETF cuadran; acaba con 1 si encuentra algo. FICHERO puede ser una
           ruta de Windows (C:\...) de las unidades de Wine

  almacenes [--mes M --ano A]
           lista los almacenes de la oficina (carpetas del programa y de trabajo, y el
           del mes): fichero, motor (Jet 3, Jet 4 o SQLite), tablas con sus filas y los
           problemas que encuentra; acaba con 1 si hay alguno. No escribe nada

La carpeta del programa es la del ejecutable, salvo --programa o VALDOR_PROGRAMA.
La carpeta de trabajo es la actual; --trabajo cambia a ella antes de empezar.
)"_cp;

fs::path carpetaDelEjecutable() {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::current_path() : exe.parent_path();
}

// Global options, then the order and its own arguments.
Llamada leeLlamada(int argc, char** argv) {
  std::error_code ecInicio;
  const fs::path carpetaDeLlamada = fs::current_path(ecInicio);
  std::optional<fs::path> programa, trabajo;
  std::optional<Momento> ahora;
  int i = 1;
  auto valor = [&](std::string_view opcion) -> std::string {
    if (i + 1 >= argc) throw ErrorLlamada("Falta el valor de " + std::string(opcion) + ".");
    return argv[++i];
  };
  for (; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--programa") {
      programa = fs::absolute(fs::path(valor(a)));  // relative to where the call was made
    } else if (a == "--trabajo") {
      trabajo = fs::absolute(fs::path(valor(a)));
    } else if (a == "--ahora") {
      const std::string texto = valor(a);
      ahora = leeMomento(texto);
      if (!ahora)
        throw ErrorLlamada("--ahora espera \"AAAA-MM-DD HH:MM\" con una fecha y hora reales: " +
                           utf8ACp1252(texto) + ".");
    } else if (a == "-h" || a == "--help" || a == "--ayuda") {
      return {};
    } else if (a.rfind("--", 0) == 0) {
      throw ErrorLlamada(std::string("Opción desconocida: "_cp) + utf8ACp1252(a) + ".");
    } else {
      break;
    }
  }
  if (i >= argc) throw ErrorLlamada("Falta la orden.");

  Llamada llamada;
  llamada.orden = argv[i];
  llamada.argumentos.assign(argv + i + 1, argv + argc);
  llamada.ahora = ahora.value_or(momentoActual());
  llamada.carpetaDeLlamada = carpetaDeLlamada;

  // Every folder named relative to where the call was made, before any change of folder.
  if (!programa) {
    if (const char* entorno = std::getenv("VALDOR_PROGRAMA"); entorno && *entorno) programa = fs::absolute(entorno);
  }
  // The sample office is written into new folders; every other order needs them.
  const bool creaCarpetas = llamada.orden == "muestra";
  if (trabajo) {
    std::error_code ec;
    if (creaCarpetas) fs::create_directories(*trabajo, ec);
    if (!fs::is_directory(*trabajo, ec))
      throw ErrorTrabajo("No existe la carpeta de trabajo \"" + utf8ACp1252(trabajo->string()) + "\".");
    fs::current_path(*trabajo, ec);
    if (ec)
      throw ErrorTrabajo("No se puede entrar en la carpeta de trabajo \"" + utf8ACp1252(trabajo->string()) +
                         "\": " + utf8ACp1252(ec.message()) + ".");
  }
  llamada.carpetas.programa = fs::absolute(programa.value_or(carpetaDelEjecutable()));
  llamada.carpetas.trabajo = fs::current_path();
  std::error_code ec;
  if (creaCarpetas) fs::create_directories(llamada.carpetas.programa, ec);
  if (!fs::is_directory(llamada.carpetas.programa, ec))
    throw ErrorTrabajo("No existe la carpeta del programa \"" + utf8ACp1252(llamada.carpetas.programa.string()) +
                       "\".");
  return llamada;
}

int ejecuta(const Llamada& llamada) {
  if (llamada.orden == "muestra") return ordenMuestra(llamada);
  if (llamada.orden == "ajustes") return ordenAjustes(llamada);
  if (llamada.orden == "empresas") return ordenEmpresas(llamada);
  if (llamada.orden == "fan") return ordenFan(llamada);
  if (llamada.orden == "afi") return ordenAfi(llamada);
  if (llamada.orden == "revisar") return ordenRevisar(llamada);
  if (llamada.orden == "imprimir") return ordenImprimir(llamada);
  if (llamada.orden == "almacenes") return ordenAlmacenes(llamada);
  throw ErrorLlamada("Orden desconocida: " + utf8ACp1252(llamada.orden) + ".");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Llamada llamada = leeLlamada(argc, argv);
    if (llamada.orden.empty()) {
      escribe(std::cout, USO);
      return SALIDABIEN;
    }
    return ejecuta(llamada);
  } catch (const ErrorLlamada& e) {
    escribeLinea(std::cerr, e.what());
    escribe(std::cerr, USO);
    return SALIDALLAMADA;
  } catch (const ErrorValdor& e) {
    escribeLinea(std::cerr, e.what());
    return SALIDAFALLO;
  } catch (const std::exception& e) {
    escribeLinea(std::cerr, std::string("Error inesperado: ") + utf8ACp1252(e.what()));
    return SALIDAFALLO;
  }
}
