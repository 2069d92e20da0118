// TC1VAL, the statement form "Boletín de cotización a la Seguridad Social": a child
// window of the main frame where the clerk picks a month, a surcharge and one company
// or all of them, and "Calcular" runs the TC1 of the core (ejecutaTC1) outside any FAN
// file. Under its three rows of choices and commands, one page at a time: the whole
// statement of the company last calculated (a compact VistaBoletin), the sheet of its
// first worker, and the TC1 lines it leaves for the exchange file. All of it fits the
// main frame as the program opens it (frmMain::TAMANOINICIAL) without scrolling.
//
// Names of the controls: "Combo1" (month), "Combo2" (year), the surcharge group
// "Option1" with "Option1_0".."Option1_2", the companies group "Option3D1" with
// "Option3D1_0" ("&Todas.") and "Option3D1_1" ("&Una empresa."), "ComboEmpresa",
// the buttons "Calcular", "Command3D8" ("Cancelar"), "Imprimir" and "Salir", the
// check box "Check4" ("Enviado por R.E.D."), the progress panel "Panel3D3", the pages
// "Pestanas" with the view "VistaBoletin" and the note "Origen" of which run made the
// figures shown, the sheet "HojaTC2" and the line list "ListaTC1".
//
// Keyboard: every control has an Alt letter of its own (the combos through their
// captions); Tab goes down the rows, each from left to right; Enter is "Calcular"
// unless a command has the focus; Escape is "Cancelar" while a run goes, else "Salir".
//
// "Imprimir" prints the statement on screen on the pre-printed form, to the port of the
// settings (VALDOR_IMPRESORA, else LPT1). The same lines drawn on a page, at the same
// rows and columns: "VistaPrevia" shows it (and prints it from there), "Impresora"
// sends it to a printer of the system through the print dialog, "Pdf" keeps it in a
// PDF file; "ConImpreso" adds the form's rules and captions for plain paper. Every
// outcome is told in "Panel3D3", and a failure in a box that names the port, the
// printer or the file.
#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "statement/estado.h"
#include "fan/seleccion.h"
#include "statement/hojatc2.h"
#include "statement/pagina.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace valdor {
class COTVAL;
class Programa;
}  // namespace valdor

namespace valdor::formularios {

class VistaBoletin;

class TC1VAL : public QWidget {
  Q_OBJECT

 public:
  explicit TC1VAL(Programa& programa, QWidget* padre = nullptr);

  // True while "Calcular" runs.
  bool enMarcha() const { return enMarcha_; }
  // "Cancelar": the all-companies run stops at its next company break.
  void cancela();
  // What "Pdf" does once the file is named.
  void guardaPdfEn(const QString& nombre);

 signals:
  // A run starts (true) or ends (false): the main window keeps its other commands
  // still meanwhile, since the run shares the program's stores with them.
  void ejecucion(bool enMarcha);
  // The form is being unloaded.
  void cerrado();

 protected:
  void closeEvent(QCloseEvent* evento) override;
  void keyPressEvent(QKeyEvent* evento) override;

 private:
  void construye();
  void cargaEmpresas();
  void actualizaControles();
  void calcula();
  void imprime();
  void vistaPrevia();
  void imprimeEnImpresora();
  void guardaPdf();
  // The page of the statement on screen, or std::nullopt after telling why not.
  std::optional<PaginaBoletin> pagina();
  // The outcome of a printing on the form: `hecho` when it went, else `fallo` (which
  // names the printer or the file and says why), in a box as well.
  void cuentaResultado(const QString& hecho, const QString& fallo);
  // A printing's failure (empty: none) in a box.
  void avisaFallo(const QString& fallo);
  void sal();

  // A month may hold thousands of companies: the statement is drawn at most every
  // INTERVALO milliseconds, and the one not drawn is kept so that the last company
  // calculated is the one on screen at the end.
  void empresaCalculada(const valdor::COTVAL& calculo);
  void dibujaPendiente();
  static constexpr qint64 INTERVALO = 250;

  int mesElegido() const;
  int anoElegido() const;

  Programa& programa_;
  std::vector<EmpresaDelMes> empresas_;  // the companies of ComboEmpresa, in its order
  int primerAno_ = 0;                    // the year of the first item of Combo2
  bool enMarcha_ = false;
  bool cancelado_ = false;

  QElapsedTimer reloj_;
  bool pendiente_ = false;  // a company calculated since the last drawing
  CajasBoletin cajasPendientes_;
  HojaTC2 hojaPendiente_;
  std::vector<std::string> lineasPendientes_;
  std::string nombrePendiente_;
  // The statement last calculated, as the printing needs it.
  BOLETIN boletin_;
  TablaTrabajo grid_;
  bool hayBoletin_ = false;

  QComboBox *Combo1_ = nullptr, *Combo2_ = nullptr, *ComboEmpresa_ = nullptr;
  std::array<QRadioButton*, 3> Option1_{};
  QRadioButton *todas_ = nullptr, *una_ = nullptr;
  QPushButton *calcular_ = nullptr, *Command3D8_ = nullptr, *imprimir_ = nullptr, *salir_ = nullptr;
  QPushButton *vistaPrevia_ = nullptr, *impresora_ = nullptr, *pdf_ = nullptr;
  QCheckBox *Check4_ = nullptr, *conImpreso_ = nullptr;
  QLabel* Panel3D3_ = nullptr;
  QLabel* Origen_ = nullptr;
  QTabWidget* Pestanas_ = nullptr;
  VistaBoletin* vista_ = nullptr;
  QListWidget* ListaTC1_ = nullptr;
};

}  // namespace valdor::formularios
