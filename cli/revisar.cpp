// valdor-cli revisar: the editor's checks of an exchange file, printed.

#include <iostream>
#include <system_error>

#include "browser/editor.h"
#include "cli/consola.h"
#include "cli/ordenes.h"
#include "shell/rutas.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor::cli {

namespace fs = std::filesystem;

namespace {

// The file named in the call: a Windows path ("C:\...") through the Wine drives, any
// other relative to where the call was made.
fs::path ficheroDeLaLlamada(const Llamada& llamada, const std::string& nombre) {
  if (nombre.size() > 2 && nombre[1] == ':' && (nombre[2] == '\\' || nombre[2] == '/'))
    return rutaNativa(utf8ACp1252(nombre), entornoWineDelSistema());
  const fs::path ruta(nombre);
  return ruta.is_absolute() ? ruta : llamada.carpetaDeLlamada / ruta;
}

}  // namespace

int ordenRevisar(const Llamada& llamada) {
  if (llamada.argumentos.size() != 1 || llamada.argumentos[0].starts_with("--"))
    throw ErrorLlamada("revisar espera el fichero que se ha de revisar, y nada más.");
  const fs::path fichero = ficheroDeLaLlamada(llamada, llamada.argumentos[0]);
  std::error_code ec;
  if (!fs::is_regular_file(fichero, ec)) throw ErrorTrabajo("No existe el fichero " + entreComillas(fichero) + ".");

  const std::vector<std::string> lineas = leeLineas(fichero);
  const TipoIntercambio tipo = tipoDeFichero(fichero.filename().string());
  escribeLinea(std::cout, "Fichero " + entreComillas(fichero) + ": " + std::to_string(lineas.size()) +
                              std::string(" líneas."_cp));
  if (tipo == TipoIntercambio::Otro)
    escribeLinea(std::cout, "No es un fichero .FAN ni .AFI: solo se revisa la longitud de las líneas.");
  const std::vector<std::string> informe = informeRevision(lineas, tipo);
  for (const std::string& l : informe) escribeLinea(std::cout, l);
  // The report ends with the trailer's verdict; anything before it is a fault, and so is
  // a trailer that does not tally.
  const bool bien = informe.size() == 1 && cuentasDelPie(lineas).cuadran();
  return bien ? SALIDABIEN : SALIDAFALLO;
}

}  // namespace valdor::cli
