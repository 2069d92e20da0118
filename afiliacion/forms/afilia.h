// AFILIA, the affiliation module: the modal form that the wizard opens for an AFI
// exchange. It shows the working grid of the pending workers, the companies with their
// EMP and RZS lines, the label lines and the trailer that the file will carry, and
// writes the file on "&Generar Fichero", with a "&Cancelar" beside the progress (or
// Escape) that stops the writing. "&Nuevo" goes back to the wizard; "&Salir" asks
// whether the pending workers were sent and ends the whole program. Every rule is the
// core's (afiliacion/afiliacion.h); the form shows its state.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "afiliacion/afiliacion.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;
class QWidget;

namespace valdor {
class Programa;
class FormulariosIntercambio;
struct PaginaIntercambio;
}  // namespace valdor

namespace valdor::formularios {

class AFILIA : public QDialog {
  Q_OBJECT

 public:
  // The form loads at once: the pending list, the company lines and the trailer. The
  // page is the wizard's, which the trailer and the file name read and "&Nuevo" resets;
  // `formularios` gives the editor offered once the file is written.
  AFILIA(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios,
         QWidget* padre = nullptr);

  // How "&Salir" ends the program, run once the form has closed. Whoever shows the form
  // sets it; the form knows nothing of the main window.
  std::function<void()> terminaPrograma;

  // Closing the window by its control or by Esc takes the user back to the wizard, as
  // "&Nuevo" does: only "&Salir" ends the program. While the file is written they stop
  // the writing instead, as "&Cancelar" does, and the form stays.
  void reject() override;

 private:
  void construye();
  void carga();
  void muestraRejillas();
  void generaFichero();
  void nuevo();
  void salir();
  void pideParada();

  Programa& programa_;
  PaginaIntercambio& pagina_;
  FormulariosIntercambio& formularios_;
  // The module's state: the working table and the line arrays, some 8,000 lines.
  const std::unique_ptr<valdor::AFILIA> afi_;
  bool trabajando_ = false;  // the file is being written

  QTableWidget* GRID1_ = nullptr;
  QTableWidget* Grid2_ = nullptr;
  QLabel *Label2_ = nullptr, *Label4_ = nullptr, *Label7_ = nullptr;
  QLabel* Label19_ = nullptr;
  QWidget* panelProgreso_ = nullptr;  // "Generando fichero:" and ProgressBar1
  QProgressBar* ProgressBar1_ = nullptr;
  QPushButton* cancelarTrabajo_ = nullptr;  // beside ProgressBar1 while the file is written
  QPushButton *Command1_ = nullptr, *Command2_ = nullptr, *Command3_ = nullptr;
};

}  // namespace valdor::formularios
