// The desktop's answer to the rules' questions and messages: message boxes with the
// system's titles and texts, the input box, the wait pointer, and the progress of a
// long run, which the main window shows in its status bar and in the wizard.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <exception>

#include "stores/dialogos.h"

namespace valdor::formularios {

class DialogosQt : public QObject, public Dialogos {
  Q_OBJECT

 public:
  // The window the boxes belong to when no window of the program is active.
  void ponVentana(QWidget* ventana) { ventana_ = ventana; }

  void mensaje(std::string_view titulo, std::string_view texto, Icono icono) override;
  bool pregunta(std::string_view titulo, std::string_view texto, bool noPorDefecto = false) override;
  Guardado preguntaGuardar(std::string_view titulo, std::string_view texto) override;
  std::optional<std::string> entrada(std::string_view titulo, std::string_view texto) override;
  void progreso(int porcentaje, std::string_view etiqueta1, std::string_view etiqueta2) override;
  void puntero(Puntero p) override;

  // While a modal window offers "Cancelar" during a run, the progress takes the user's
  // clicks and keys at each drawing: only that window can be reached. Counted, since a
  // run's window may open inside another's.
  void aceptaEntrada(bool acepta) { entradaAceptada_ += acepta ? 1 : -1; }

 signals:
  void progresoCambiado(int porcentaje, const QString& etiqueta1, const QString& etiqueta2);

 private:
  QWidget* padre() const;

  void aplicaPuntero();

  QPointer<QWidget> ventana_;
  bool punteroPuesto_ = false;
  // The pointer the rules asked for last, and the one on the screen. A run asks for it
  // around every worker; the screen takes the last asked at its next turn, a few times a
  // second at most.
  Puntero pedido_ = Puntero::Normal;
  Puntero puesto_ = Puntero::Normal;
  bool punteroEnCola_ = false;
  // The progress is drawn a few times a second at most: a run tells it for every worker.
  QElapsedTimer ultimoProgreso_;
  int entradaAceptada_ = 0;
};

// The desktop's dialogs behind `dialogos` (a program's dialogs are counted around
// them), or nullptr when the screen does not answer them.
DialogosQt* dialogosQt(Dialogos& dialogos);

// While it lives, the progress of `dialogos` (when they are the desktop's) takes the
// user's input: the window that shows the run offers "Cancelar".
class EntradaDuranteTrabajo {
 public:
  explicit EntradaDuranteTrabajo(Dialogos& dialogos) : qt_(dialogosQt(dialogos)) {
    if (qt_) qt_->aceptaEntrada(true);
  }
  ~EntradaDuranteTrabajo() {
    if (qt_) qt_->aceptaEntrada(false);
  }
  EntradaDuranteTrabajo(const EntradaDuranteTrabajo&) = delete;
  EntradaDuranteTrabajo& operator=(const EntradaDuranteTrabajo&) = delete;

 private:
  DialogosQt* qt_;
};

// A failure that reached a form: the Spanish message of the core's own errors, or the
// text of any other, in a critical box titled as the program's boxes. The pointer goes
// back to normal first.
void avisaError(Dialogos& dialogos, const std::exception& error);

}  // namespace valdor::formularios
