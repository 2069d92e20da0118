// valdor-cli revisar: the editor's checks of an exchange file and the checks of its
// fields, printed for a person or, with --json, for a script.

#include <iostream>

#include "browser/editor.h"
#include "browser/revision.h"
#include "cli/consola.h"
#include "cli/ordenes.h"
#include "shell/rutas.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor::cli {

namespace fs = std::filesystem;

fs::path ficheroDeLaLlamada(const Llamada& llamada, const std::string& nombre) {
  if (nombre.size() > 2 && nombre[1] == ':' && (nombre[2] == '\\' || nombre[2] == '/'))
    return rutaNativa(utf8ACp1252(nombre), entornoWineDelSistema());
  const fs::path ruta(nombre);
  return ruta.is_absolute() ? ruta : llamada.carpetaDeLlamada / ruta;
}

namespace {

// A JSON string of Windows-1252 text, in UTF-8.
std::string cadenaJson(std::string_view cp1252) {
  std::string r = "\"";
  for (char c : cp1252AUtf8(cp1252)) {
    if (c == '"' || c == '\\') {
      r.append(1, '\\').append(1, c);
    } else if (static_cast<unsigned char>(c) < 0x20) {
      static constexpr char hex[] = "0123456789abcdef";
      r.append("\\u00").append(1, hex[(c >> 4) & 0xF]).append(1, hex[c & 0xF]);
    } else {
      r.append(1, c);
    }
  }
  return r + "\"";
}

std::string hallazgoJson(const Hallazgo& h) {
  return std::string("{\"linea\": ").append(std::to_string(h.linea)).append(", \"desde\": ")
      .append(std::to_string(h.desde)).append(", \"hasta\": ").append(std::to_string(h.hasta))
      .append(", \"campo\": ").append(cadenaJson(h.campo)).append(", \"valor\": ").append(cadenaJson(h.valor))
      .append(", \"regla\": ").append(cadenaJson(h.regla)).append("}");
}

// What the check says, as it is met: the text of each finding, or with --json each
// field finding as an element of the document's list (the line findings, few, are kept
// for the end).
struct Informe {
  bool json = false;
  std::vector<std::string> lineas;
  std::size_t campos = 0;
  void deLinea(const std::string& texto) {
    if (json) lineas.push_back(cadenaJson(texto));
    else escribeLinea(std::cout, texto);
  }
  void deCampo(const Hallazgo& h) {
    if (json) std::cout << (campos++ ? ",\n    " : "\n    ") << hallazgoJson(h);
    else escribeLinea(std::cout, textoHallazgo(h));
  }
};

std::string listaJson(const std::vector<std::string>& elementos) {
  std::string r = "[";
  for (std::size_t i = 0; i < elementos.size(); ++i) r.append(i ? ",\n    " : "\n    ").append(elementos[i]);
  return r.append(elementos.empty() ? "]" : "\n  ]");
}

}  // namespace

// The file is read a line at a time and each finding printed as it is met, so that a
// file of any size is checked in the same memory.
int ordenRevisar(const Llamada& llamada) {
  std::vector<std::string> argumentos = llamada.argumentos;
  Informe informe;
  std::erase_if(argumentos, [&](const std::string& a) { return a == "--json" && (informe.json = true); });
  if (argumentos.size() != 1 || argumentos[0].starts_with("--"))
    throw ErrorLlamada(std::string("revisar espera el fichero que se ha de revisar, y nada más (y --json)."_cp));
  const fs::path fichero = ficheroDeLaLlamada(llamada, argumentos[0]);
  const TipoIntercambio tipo = tipoDeFichero(fichero.filename().string());
  try {
    LectorLineas lector(fichero, LIMITELINEA);
    if (!informe.json) escribeLinea(std::cout, "Fichero " + entreComillas(fichero) + ":");
    else std::cout << "{\n  \"fichero\": " << cadenaJson(utf8ACp1252(fichero.string())) << ",\n  \"hallazgos\": [";
    if (tipo == TipoIntercambio::Otro)
      informe.deLinea(std::string("No es un fichero .FAN ni .AFI: solo se revisan la longitud y el fin de las líneas."_cp));
    RevisionFichero revision(tipo);
    RevisionCampos campos(tipo);
    std::size_t hallazgos = 0;
    LineaLeida linea;
    while (lector.siguiente(linea)) {
      for (const std::string& l : revision.revisa(linea)) informe.deLinea(l);
      for (const Hallazgo& h : campos.revisa(linea.texto)) informe.deCampo(h), ++hallazgos;
    }
    for (const Hallazgo& h : campos.cierre()) informe.deCampo(h), ++hallazgos;
    const bool bien = revision.bien() && hallazgos == 0;
    if (!informe.json) {
      escribeLinea(std::cout, std::to_string(revision.lineas()) + std::string(" líneas."_cp));
      for (const std::string& l : revision.cierre()) escribeLinea(std::cout, l);
      if (tipo != TipoIntercambio::Otro)
        escribeLinea(std::cout, hallazgos == 0 ? std::string("Todos los campos son correctos."_cp)
                                               : std::to_string(hallazgos) + " hallazgos en los campos.");
      return bien ? SALIDABIEN : SALIDAFALLO;
    }
    for (const std::string& l : revision.cierre()) informe.deLinea(l);
    std::cout << (informe.campos ? "\n  ]" : "]") << ",\n  \"lineas_y_cierre\": " << listaJson(informe.lineas)
              << ",\n  \"lineas\": " << revision.lineas() << ",\n  \"bien\": " << (bien ? "true" : "false") << "\n}\n";
    return bien ? SALIDABIEN : SALIDAFALLO;
  } catch (const ErrorFichero& e) {
    throw ErrorTrabajo(e.what());
  }
}

}  // namespace valdor::cli
