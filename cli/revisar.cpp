// valdor-cli revisar: the editor's checks of an exchange file, printed.

#include <iostream>

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

// The file is read a line at a time and each finding printed as it is met, so that a
// file of any size is checked in the same memory.
int ordenRevisar(const Llamada& llamada) {
  if (llamada.argumentos.size() != 1 || llamada.argumentos[0].starts_with("--"))
    throw ErrorLlamada(std::string("revisar espera el fichero que se ha de revisar, y nada más."_cp));
  const fs::path fichero = ficheroDeLaLlamada(llamada, llamada.argumentos[0]);
  const TipoIntercambio tipo = tipoDeFichero(fichero.filename().string());
  try {
    LectorLineas lector(fichero, LIMITELINEA);
    escribeLinea(std::cout, "Fichero " + entreComillas(fichero) + ":");
    if (tipo == TipoIntercambio::Otro)
      escribeLinea(std::cout, "No es un fichero .FAN ni .AFI: solo se revisan la longitud y el fin de las líneas."_cp);
    RevisionFichero revision(tipo);
    LineaLeida linea;
    while (lector.siguiente(linea))
      for (const std::string& l : revision.revisa(linea)) escribeLinea(std::cout, l);
    escribeLinea(std::cout, std::to_string(revision.lineas()) + std::string(" líneas."_cp));
    for (const std::string& l : revision.cierre()) escribeLinea(std::cout, l);
    return revision.bien() ? SALIDABIEN : SALIDAFALLO;
  } catch (const ErrorFichero& e) {
    throw ErrorTrabajo(e.what());
  }
}

}  // namespace valdor::cli
