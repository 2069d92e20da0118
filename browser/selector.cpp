#include "browser/selector.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "stores/texto.h"

namespace valdor {

namespace fs = std::filesystem;

std::string raizSelector(std::string_view RUTAWINSUITE) {
  const std::string ruta = recorta(RUTAWINSUITE);
  if (ruta.empty() || ruta[0] == '0' || ruta[0] == ' ') return {};
  // Only this spelling of the tool's name is cut; the path keeps its backslash.
  const std::size_t p = ruta.find("Winsuite.exe");
  return p == std::string::npos ? ruta : ruta.substr(0, p);
}

namespace {

struct DefRama {
  std::string_view titulo, clave, patron, carpeta, claveHijo;
};

constexpr DefRama RAMAS[] = {
    {"Cotización (FAN)", "F", "*.FAN", "VIPTC2\\FAN\\", "C"},
    {"Afiliación (AFI)", "A", "*.AFI", "VIPTC2\\AFI\\", "D"},
    {"Procesados (ANT)", "T", "*.ANT", "VIPTC2\\ANT\\", "E"},
    {"Huellas (HLL)", "H", "*.HLL", "VIPTC2\\HLL\\", "F"},
};

// The names of the folder's files whose extension is the pattern's, ignoring case,
// sorted by name as a file list shows them. A missing folder has none.
std::vector<std::string> ficherosDe(const fs::path& carpeta, std::string_view patron) {
  const std::string extension = mayusculasAscii(patron.substr(1));  // ".FAN"
  std::vector<std::string> nombres;
  std::error_code ec;
  for (fs::directory_iterator it(carpeta, ec), fin; !ec && it != fin; it.increment(ec)) {
    if (!it->is_regular_file(ec)) continue;
    const std::string nombre = utf8ACp1252(it->path().filename().string());
    if (nombre.size() > extension.size() &&
        mayusculasAscii(nombre.substr(nombre.size() - extension.size())) == extension)
      nombres.push_back(nombre);
  }
  std::sort(nombres.begin(), nombres.end(),
            [](const std::string& a, const std::string& b) { return mayusculasAscii(a) < mayusculasAscii(b); });
  return nombres;
}

}  // namespace

ArbolSelector cargaSelector(std::string_view RUTAWINSUITE, const EntornoWine& entorno) {
  ArbolSelector arbol;
  arbol.raiz = raizSelector(RUTAWINSUITE);
  arbol.titulo = "Editar ficheros en " + arbol.raiz;
  for (const DefRama& d : RAMAS) {
    RamaSelector rama;
    rama.nodo = {utf8ACp1252(d.titulo), std::string(d.clave)};
    rama.patron = d.patron;
    rama.carpeta = d.carpeta;
    if (!arbol.raiz.empty()) {
      const std::string carpeta = arbol.raiz + rama.carpeta;
      const std::vector<std::string> nombres = ficherosDe(rutaNativa(carpeta, entorno), rama.patron);
      for (std::size_t i = 0; i < nombres.size(); ++i)
        rama.hijos.push_back({carpeta + nombres[i], std::string(d.claveHijo) + std::to_string(i)});
    }
    arbol.ramas.push_back(std::move(rama));
  }
  return arbol;
}

std::optional<std::string> ficheroDelNodo(std::string_view textoNodo) {
  if (textoNodo.find("VIPTC2") == std::string_view::npos) return std::nullopt;
  return std::string(textoNodo);
}

}  // namespace valdor
