#include "cli/consola.h"

#include <iostream>

#include "stores/texto.h"

namespace valdor::cli {

void escribe(std::ostream& salida, std::string_view cp1252) { salida << cp1252AUtf8(cp1252); }

void escribeLinea(std::ostream& salida, std::string_view cp1252) {
  escribe(salida, cp1252);
  salida << '\n';
}

void DialogosConsola::mensaje(std::string_view titulo, std::string_view texto, Icono icono) {
  if (icono == Icono::Critico) ++errores_;
  if (icono == Icono::Exclamacion) ++avisos_;
  escribe(std::cerr, titulo);
  std::cerr << ": ";
  escribeLinea(std::cerr, texto);
}

bool DialogosConsola::pregunta(std::string_view titulo, std::string_view texto, bool) {
  escribe(std::cerr, titulo);
  std::cerr << ": ";
  escribe(std::cerr, texto);
  std::cerr << (respuesta_ ? " [s\xC3\xAD]\n" : " [no]\n");
  return respuesta_;
}

std::optional<std::string> DialogosConsola::entrada(std::string_view titulo, std::string_view texto) {
  escribe(std::cerr, titulo);
  std::cerr << ": ";
  escribeLinea(std::cerr, texto);
  return std::nullopt;
}

void DialogosConsola::progreso(int, std::string_view, std::string_view) {}

}  // namespace valdor::cli
