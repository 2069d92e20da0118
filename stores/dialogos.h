// The seam between the rules and the screens. The rules ask questions and show
// messages through this interface: the desktop program answers with real boxes, the
// command line with its options and standard error, the tests with a recorder.
// Titles and texts are Windows-1252 text, the system's own words.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdor {

enum class Icono { Informacion, Pregunta, Exclamacion, Critico };

// The answers to the question before unsaved edits are dropped.
enum class Guardado { Guardar, Descartar, Cancelar };

// Mouse pointers the rules set: the hourglass (11) and the arrow with hourglass (13).
enum class Puntero { Normal, Reloj, FlechaReloj };

class Dialogos {
 public:
  virtual ~Dialogos() = default;

  // An information box with one button.
  virtual void mensaje(std::string_view titulo, std::string_view texto, Icono icono) = 0;
  // A yes/no question; true for yes. `noPorDefecto` marks the second button as the default.
  virtual bool pregunta(std::string_view titulo, std::string_view texto,
                        bool noPorDefecto = false) = 0;
  // The question before unsaved edits are dropped: "Guardar", "Descartar" or "Cancelar"
  // (which goes back to the edits; also Escape).
  virtual Guardado preguntaGuardar(std::string_view titulo, std::string_view texto) = 0;
  // An input box; std::nullopt when cancelled.
  virtual std::optional<std::string> entrada(std::string_view titulo, std::string_view texto) = 0;
  // Progress of a long run: a percentage (0 to 100) and up to two labels.
  virtual void progreso(int porcentaje, std::string_view etiqueta1, std::string_view etiqueta2) = 0;
  virtual void puntero(Puntero p) = 0;
};

// The dialogs of a run, passed through to the screen or the console, with a count of
// the errors shown (the critical boxes): a job that showed one leaves no file.
class DialogosContados : public Dialogos {
 public:
  explicit DialogosContados(Dialogos& dentro) : dentro_(dentro) {}
  void mensaje(std::string_view titulo, std::string_view texto, Icono icono) override {
    if (icono == Icono::Critico) ++errores_;
    dentro_.mensaje(titulo, texto, icono);
  }
  bool pregunta(std::string_view titulo, std::string_view texto, bool noPorDefecto = false) override {
    return dentro_.pregunta(titulo, texto, noPorDefecto);
  }
  Guardado preguntaGuardar(std::string_view titulo, std::string_view texto) override {
    return dentro_.preguntaGuardar(titulo, texto);
  }
  std::optional<std::string> entrada(std::string_view titulo, std::string_view texto) override {
    return dentro_.entrada(titulo, texto);
  }
  void progreso(int porcentaje, std::string_view etiqueta1, std::string_view etiqueta2) override {
    dentro_.progreso(porcentaje, etiqueta1, etiqueta2);
  }
  void puntero(Puntero p) override { dentro_.puntero(p); }
  int errores() const { return errores_; }
  // The dialogs it passes through to (the screen's, when the desktop runs).
  Dialogos& dentro() const { return dentro_; }

 private:
  Dialogos& dentro_;
  int errores_ = 0;
};

}  // namespace valdor
