// valdor-cli: the jobs of VALDOR+ without a screen, for scripts, batch runs and tests.

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <system_error>

#include "cli/ayuda.h"
#include "cli/consola.h"
#include "cli/ordenes.h"
#include "stores/almacen.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace fs = std::filesystem;
using namespace valdor;
using namespace valdor::cli;

namespace {

fs::path carpetaDelEjecutable() {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::current_path() : exe.parent_path();
}

// The system's reason for a failed call on a file, in Spanish where it is an errno value.
std::string razon(const std::error_code& ec) {
  if (ec.category() == std::generic_category() || ec.category() == std::system_category())
    return razonDelSistema(ec.value());
  return utf8ACp1252(ec.message());
}

// What the line asks before any folder is touched: the global options and the order.
struct Peticion {
  enum class Que { Orden, Ayuda, Version } que = Que::Orden;
  std::optional<fs::path> programa, trabajo;
  std::optional<Momento> ahora;
  std::string orden;
  std::vector<std::string> argumentos;
};

// One global option ("--programa DIR" or "--programa=DIR"): its value, never empty, and
// never given twice.
void leeGlobal(Peticion& p, const std::string& nombre, const std::string& valor) {
  if (valor.empty()) throw ErrorLlamada(std::string("El valor de "_cp) + nombre + std::string(" está vacío."_cp));
  auto una = [&](auto& destino, auto nuevo) {
    if (destino) throw ErrorLlamada(std::string("La opción "_cp) + nombre + std::string(" está repetida."_cp));
    destino = std::move(nuevo);
  };
  if (nombre == "--ahora") {
    const auto momento = leeMomento(valor);
    if (!momento)
      throw ErrorLlamada("--ahora espera \"AAAA-MM-DD HH:MM\" con una fecha y hora reales: " + utf8ACp1252(valor) + ".");
    una(p.ahora, *momento);
  } else {
    // Relative to where the call was made, before any change of folder.
    una(nombre == "--programa" ? p.programa : p.trabajo, fs::absolute(fs::path(valor)));
  }
}

Peticion leePeticion(int argc, char** argv) {
  Peticion p;
  int i = 1;
  for (; i < argc; ++i) {
    const std::string a = argv[i];
    if (pideAyuda(a)) {
      p.que = Peticion::Que::Ayuda;
      return p;
    }
    if (a == "--version") {
      p.que = Peticion::Que::Version;
      return p;
    }
    if (!a.starts_with("-")) break;
    const std::size_t igual = a.find('=');
    const std::string nombre = a.substr(0, igual);
    if (nombre != "--programa" && nombre != "--trabajo" && nombre != "--ahora")
      throw ErrorLlamada(std::string("Opción desconocida: "_cp) + utf8ACp1252(a) + ".");
    if (igual != std::string::npos) {
      leeGlobal(p, nombre, a.substr(igual + 1));
    } else {
      if (i + 1 >= argc || std::string_view(argv[i + 1]).starts_with("--"))
        throw ErrorLlamada("Falta el valor de " + nombre + ".");
      leeGlobal(p, nombre, argv[++i]);
    }
  }
  if (i >= argc) throw ErrorLlamada("Falta la orden.");
  p.orden = argv[i];
  if (p.orden.empty()) throw ErrorLlamada(std::string("La orden está vacía."_cp));
  if (!esOrden(p.orden)) throw ErrorLlamada("Orden desconocida: " + utf8ACp1252(p.orden) + ".");
  p.argumentos.assign(argv + i + 1, argv + argc);
  if (!p.argumentos.empty() && pideAyuda(p.argumentos.front())) p.que = Peticion::Que::Ayuda;
  return p;
}

// The call with its folders: the work folder entered, the program folder found. The
// sample office is written into new folders; every other order needs them.
Llamada preparaLlamada(const Peticion& p) {
  Llamada llamada;
  std::error_code ecInicio;
  llamada.carpetaDeLlamada = fs::current_path(ecInicio);
  llamada.orden = p.orden;
  llamada.argumentos = p.argumentos;
  llamada.ahora = p.ahora.value_or(momentoActual());

  std::optional<fs::path> programa = p.programa;
  if (!programa) {
    if (const char* entorno = std::getenv("VALDOR_PROGRAMA"); entorno && *entorno) programa = fs::absolute(entorno);
  }
  const bool creaCarpetas = llamada.orden == "muestra";
  if (p.trabajo) {
    std::error_code ec;
    if (creaCarpetas) fs::create_directories(*p.trabajo, ec);
    if (!fs::is_directory(*p.trabajo, ec))
      throw ErrorTrabajo("No existe la carpeta de trabajo \"" + utf8ACp1252(p.trabajo->string()) + "\".");
    fs::current_path(*p.trabajo, ec);
    if (ec)
      throw ErrorTrabajo("No se puede entrar en la carpeta de trabajo \"" + utf8ACp1252(p.trabajo->string()) +
                         "\": " + razon(ec) + ".");
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
  if (llamada.orden == "revisar") {
    // The file is named by the one argument; an empty one names none.
    if (llamada.argumentos.size() == 1 && llamada.argumentos[0].empty())
      throw ErrorLlamada(std::string("Falta el nombre del fichero que se ha de revisar: el argumento está vacío."_cp));
    return ordenRevisar(llamada);
  }
  if (llamada.orden == "imprimir") return ordenImprimir(llamada);
  return ordenAlmacenes(llamada);
}

int muestraAyuda(const std::string& orden) {
  escribe(std::cout, orden.empty() ? ayudaGeneral() : ayudaDeOrden(orden).value_or(ayudaGeneral()));
  return SALIDABIEN;
}

}  // namespace

int main(int argc, char** argv) {
  std::string orden;  // once known, a wrong call points to its help
  try {
    const Peticion peticion = leePeticion(argc, argv);
    orden = peticion.orden;
    if (peticion.que == Peticion::Que::Ayuda) return muestraAyuda(orden);
    if (peticion.que == Peticion::Que::Version) {
      std::cout << "valdor-cli " << VALDOR_VERSION << '\n';
      return SALIDABIEN;
    }
    return ejecuta(preparaLlamada(peticion));
  } catch (const AyudaPedida&) {
    return muestraAyuda(orden);
  } catch (const ErrorLlamada& e) {
    escribeLinea(std::cerr, e.what());
    escribeLinea(std::cerr, pistaDeAyuda(orden));
    return SALIDALLAMADA;
  } catch (const ErrorValdor& e) {
    escribeLinea(std::cerr, e.what());
    return SALIDAFALLO;
  } catch (const fs::filesystem_error& e) {
    escribeLinea(std::cerr, "No se puede usar \"" + utf8ACp1252(e.path1().string()) + "\": " + razon(e.code()) + ".");
    return SALIDAFALLO;
  } catch (const std::exception& e) {
    escribeLinea(std::cerr, std::string("Error inesperado: ") + utf8ACp1252(e.what()));
    return SALIDAFALLO;
  }
}
