// frmMain, the one main window: a frame of child windows with the list bar, the top
// bar, the tool bar, the status bar and the menu. Its load runs the start of the
// program and shows the exchange wizard inside it; its close runs the exit. The
// commands of its bars route to the wizard, the statement form, the file selector and
// the tool.
#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QMainWindow>
#include <QPointer>

#include "shell/asistente.h"
#include "app/formularios.h"

class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QProgressBar;
class QToolBar;

namespace valdor {
class Programa;
}

namespace valdor::formularios {

class BarraLista;
class PXVALDOR32;
class TC1VAL;

class frmMain : public QMainWindow {
  Q_OBJECT

 public:
  // The size the program opens the window at: a 1024x768 screen's, less the window's
  // own frame. Every child form fits in it without scrolling.
  static constexpr QSize TAMANOINICIAL{1024, 720};

  // The messages of the rules go through the program's Dialogos; `lanzador` starts the
  // tool; `fabrica` gives the wizard its modal forms (the desktop's when empty).
  frmMain(Programa& programa, Lanzador& lanzador, EntornoWine entorno, FabricaFormularios fabrica = {},
          QWidget* padre = nullptr);

  // The load: the start sequence of the program, then the wizard.
  void carga();

  // The wizard while it is loaded, else nullptr.
  PXVALDOR32* asistente() const;
  // The statement form while it is loaded, else nullptr.
  TC1VAL* boletin() const;

  // The commands, by the key of the clicked item or tool; any other key is ignored.
  void pulsaBarraLista(const QString& clave);
  void pulsaBarraSuperior(const QString& clave);

  // The progress of a long run, in the status bar and in the wizard.
  void muestraProgreso(int porcentaje, const QString& etiqueta1, const QString& etiqueta2);

 protected:
  void closeEvent(QCloseEvent* evento) override;

 private:
  void construye();
  PXVALDOR32* muestraAsistente();
  TC1VAL* muestraBoletin();
  // While the statement form runs, every other command of the window waits.
  void bloqueaOrdenes(bool bloqueadas);
  void tipo(bool cotizacion);
  void lanzaHerramienta();
  void editaFicheros();
  void terminaProgreso();

  Programa& programa_;
  Lanzador& lanzador_;
  EntornoWine entorno_;
  FabricaFormularios fabrica_;

  QMdiArea* mdi_ = nullptr;
  BarraLista* SSListBar1_ = nullptr;
  QToolBar* barrasup_ = nullptr;
  QToolBar* tbToolBar_ = nullptr;
  QLabel* SSPanel5_ = nullptr;
  QProgressBar* progreso_ = nullptr;
  QPointer<PXVALDOR32> asistente_;
  QPointer<QMdiSubWindow> marcoAsistente_;
  QPointer<TC1VAL> boletin_;
  QPointer<QMdiSubWindow> marcoBoletin_;
  // The commands of the menus that the list bar also has, and their keys by item.
  QList<QAction*> ordenes_;
  QHash<QString, QKeySequence> atajos_;
};

}  // namespace valdor::formularios
