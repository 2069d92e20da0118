// The inventory of an office's stores, the first thing support asks for: every store
// of the catalogue in the program folder and the work folder (with the month store of
// a given month), its engine, its tables with their rows, and what is wrong with it.
// Nothing is written: a store is opened, read and closed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "stores/catalogo.h"
#include "stores/jet.h"

namespace valdor {

struct TablaInventario {
  std::string nombre;
  std::int64_t filas = 0;
};

struct AlmacenInventario {
  std::string fichero;              // the catalogue's name
  bool enPrograma = false;          // program folder (masters, month) or work folder
  std::filesystem::path ruta;       // as found (a name in another case is found too)
  Motor motor = Motor::Ninguno;
  std::vector<TablaInventario> tablas;
  std::vector<std::string> problemas;  // what stops or falsifies a job (Windows-1252)
  std::vector<std::string> avisos;     // what is worth knowing, and harmless
};

// Every store of the office, in the catalogue's order: the six master stores, the month
// store of `mes`/`ano`, then the work stores and the temp store.
std::vector<AlmacenInventario> inventarioOficina(const Carpetas& carpetas, int mes, int ano);

}  // namespace valdor
