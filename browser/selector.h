// The file selector ("Edición de Ficheros"): the exchange files in the four folders of
// the transmission tool, as a tree of two levels. A branch per kind of file; under it a
// child per file, whose text is the file's full path in the tool's (Windows) form.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/rutas.h"

namespace valdor {

struct NodoSelector {
  std::string texto;  // the branch title, or the file's full path
  std::string clave;  // "F", "A", "T", "H"; a child: "C", "D", "E", "F" and its index
};

struct RamaSelector {
  NodoSelector nodo;
  std::string patron;   // "*.FAN", ...
  std::string carpeta;  // under the root: "VIPTC2\FAN\", ...
  std::vector<NodoSelector> hijos;
};

struct ArbolSelector {
  std::string raiz;     // the root, in the tool's form
  std::string titulo;   // "Editar ficheros en " and the root
  std::vector<RamaSelector> ramas;
};

// The root of the tool's folders from the settings' route: the trimmed route when it
// does not begin with "0" or a blank (else ""), cut just before "Winsuite.exe" spelled
// exactly so; any other spelling leaves the whole route.
std::string raizSelector(std::string_view RUTAWINSUITE);

// The whole tree: the four branches in their order, each with the files of its folder
// (the pattern matched ignoring case, as the tool's system does) sorted by name.
// Folders that do not exist give empty branches.
ArbolSelector cargaSelector(std::string_view RUTAWINSUITE, const EntornoWine& entorno);

// The click on a node: the file to edit when the node's text names one of the tool's
// folders ("VIPTC2", exactly), nothing for a branch title.
std::optional<std::string> ficheroDelNodo(std::string_view textoNodo);

}  // namespace valdor
