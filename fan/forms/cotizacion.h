// COTIZACION, the selection of a contribution exchange, shown modally by the wizard:
// month and year, "VERIFICAR EMPRESAS" for the companies with a calculated payroll in
// that month, their marks (with the count of companies and of marked ones, and a filter
// by code or name), class and qualifier, and the list bar with "Procesar", which
// writes the FAN file, and "Cancelar". The form shows the core's selection and calls
// its operations; closing it in any way other than by "Procesar" is a cancel. While the
// file is written, the "Cancelar" beside the progress (or Escape) stops the run.
#pragma once

#include <QDialog>

#include "fan/comando.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace valdor {
class Programa;
}

namespace valdor::formularios {

class COTIZACION : public QDialog {
  Q_OBJECT

 public:
  // The columns of the company list `grid`.
  enum Columna { EMPRESAS = 0, SEL = 1, CODIGO = 2, LINEAEMP = 3, LINEARZS = 4, TR = 5, COLUMNAS = 6 };

  // The load: the wizard's help line on `pagina`, the lists with their defaults and the
  // master stores opened. `motor` computes the statements of the run.
  COTIZACION(Programa& programa, PaginaIntercambio& pagina, MotorCotizacion& motor, QWidget* padre = nullptr);
  ~COTIZACION() override;

  const valdor::COTIZACION& seleccion() const { return sel_; }

  // Every close goes through here: without a finished "Procesar" it is "Cancelar".
  // While the file is being written the form does not close.
  void done(int resultado) override;

 private:
  void construye();
  void muestraSeleccion();
  void muestraRejilla();
  void muestraMarcas();
  void muestraCuenta();
  void filtra();
  void verificaEmpresas();
  void pulsaBarraLista(const QString& clave);
  void procesa();
  void descarga() noexcept;

  Programa& programa_;
  PaginaIntercambio& pagina_;
  MotorCotizacion& motor_;
  valdor::COTIZACION sel_;
  bool mostrando_ = false;    // the controls are being filled from the selection
  bool trabajando_ = false;   // the file is being written
  bool procesado_ = false;    // "Procesar" ran the file
  bool descargado_ = false;   // the master stores are closed again

  QComboBox *Combo1_ = nullptr, *Combo2_ = nullptr;
  QComboBox *clase_ = nullptr, *calificador_ = nullptr;
  QPushButton* verificar_ = nullptr;
  QTableWidget* grid_ = nullptr;
  QCheckBox *marcarTodas_ = nullptr, *devEnCta_ = nullptr, *alfabetica_ = nullptr;
  QProgressBar* progreso_ = nullptr;
  QPushButton* cancelarTrabajo_ = nullptr;
  QLineEdit* filtro_ = nullptr;
  QLabel* cuenta_ = nullptr;
};

}  // namespace valdor::formularios
