// The configuration dialog "Propiedades de VALDOR+": the grid CONFI of the exchange
// settings on the tab "General", and the company combo. "Aceptar" (and Enter) saves what
// the grid shows; "Cancelar", Escape and the window's close leave the settings as they
// were. While a cell is edited, Enter takes the cell's value and Escape drops it: the
// dialog stays.
#pragma once

#include <QDialog>
#include <array>

#include "shell/ajustes.h"
#include "shell/asistente.h"

class QComboBox;
class QLineEdit;
class QTableWidget;
class QToolButton;

namespace valdor {
class Programa;
}

namespace valdor::formularios {

class config : public QDialog {
  Q_OBJECT

 public:
  config(Programa& programa, EntornoWine entorno, QWidget* padre = nullptr);

  // The value column of a row, as the grid shows it (Windows-1252).
  std::string valor(int fila) const;

  void done(int resultado) override;

 private:
  void cargaRejilla();
  void buscaWinsuite();
  void guarda();

  Programa& programa_;
  EntornoWine entorno_;
  std::array<FilaConfiguracion, 5> filas_;
  QComboBox* Combo1_ = nullptr;
  QTableWidget* CONFI_ = nullptr;
  QLineEdit* rutaWinsuite_ = nullptr;  // the value cell of row 4, beside its "..." button
  QToolButton* buscaWinsuite_ = nullptr;
};

}  // namespace valdor::formularios
