// The command line's side of the seam with the rules: messages go to standard error,
// prefixed by their title; questions take the answer the order was given.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "stores/dialogos.h"

namespace valdor::cli {

// Writes Windows-1252 text to a UTF-8 terminal or file.
void escribe(std::ostream& salida, std::string_view cp1252);
void escribeLinea(std::ostream& salida, std::string_view cp1252);

class DialogosConsola : public Dialogos {
 public:
  explicit DialogosConsola(bool respuestaPorDefecto = false) : respuesta_(respuestaPorDefecto) {}

  void mensaje(std::string_view titulo, std::string_view texto, Icono icono) override;
  bool pregunta(std::string_view titulo, std::string_view texto, bool noPorDefecto) override;
  // The command line edits nothing: nothing is saved or dropped on its word.
  Guardado preguntaGuardar(std::string_view, std::string_view) override { return Guardado::Cancelar; }
  std::optional<std::string> entrada(std::string_view titulo, std::string_view texto) override;
  void progreso(int porcentaje, std::string_view etiqueta1, std::string_view etiqueta2) override;
  void puntero(Puntero) override {}

  // Number of messages shown with the critical icon: a job that met one has failed.
  int errores() const { return errores_; }
  // Number of messages shown with the exclamation icon: warnings, such as a store that
  // stopped a list or a run part way; each order decides what they mean for it.
  int avisos() const { return avisos_; }

 private:
  bool respuesta_;
  int errores_ = 0;
  int avisos_ = 0;
};

}  // namespace valdor::cli
