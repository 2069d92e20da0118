// The exchange wizard PXVALDOR32, a child window of the main frame: the page on which
// the user says what is to be sent, under which name and in which mode. The form keeps
// its boxes and the page of the core in step both ways; every rule is the core's.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "shell/asistente.h"

class QButtonGroup;
class QFrame;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace valdor {
class Programa;
}

namespace valdor::formularios {

// How the wizard obtains the forms it opens: the desktop's (made by the main window),
// or a test's stand-ins.
using FabricaFormularios =
    std::function<std::unique_ptr<FormulariosIntercambio>(Programa&, PaginaIntercambio&, QWidget* padre)>;

class PXVALDOR32 : public QWidget {
  Q_OBJECT

 public:
  PXVALDOR32(Programa& programa, Lanzador& lanzador, EntornoWine entorno, const FabricaFormularios& fabrica,
             QWidget* padre = nullptr);
  ~PXVALDOR32() override;

  // The form's load: the comma test, the sender, the welcome text and the settings;
  // an empty settings file brings up the configuration dialog first.
  void carga();

  // The commands of the main window: the type panel, then `fan` or `AFI`.
  void muestraPanelTipo();
  void fan();
  void AFI();

  const PaginaIntercambio& pagina() const { return pagina_; }

  // Progress of a run while "&Aceptar" works; 100 or more hides the bar.
  void muestraProgreso(int porcentaje, const QString& etiqueta);

 signals:
  void trabajoTerminado();
  // The wizard is being unloaded; the next command loads it anew.
  void cerrado();

 protected:
  bool eventFilter(QObject* objeto, QEvent* evento) override;
  void closeEvent(QCloseEvent* evento) override;

 private:
  void construye();
  void muestraPagina();
  void tomaPagina();
  void aplicaReglaNombre();
  void pulsaIntro();
  void pulsaModo(int opcion);
  void muestraConfiguracion();
  void pulsaAceptar();
  void cierra();

  Programa& programa_;
  Lanzador& lanzador_;
  EntornoWine entorno_;
  PaginaIntercambio pagina_;
  std::unique_ptr<FormulariosIntercambio> formularios_;
  bool mostrando_ = false;  // the boxes are being filled from the page

  QLabel* SSPanel1_ = nullptr;
  QButtonGroup* Option2_ = nullptr;
  QFrame* SSPanel4_ = nullptr;
  QLineEdit *Text3_ = nullptr, *Text4_ = nullptr, *Text5_ = nullptr, *Text6_ = nullptr, *Text7_ = nullptr;
  QLabel* Label3_ = nullptr;
  QFrame* SSPanel2_ = nullptr;
  QLineEdit* Text8_ = nullptr;
  QLabel *Label10_ = nullptr, *Label12_ = nullptr, *Label13_ = nullptr;
  QLabel *Label16_ = nullptr, *Label17_ = nullptr;
  QLineEdit *Text10_ = nullptr, *Text11_ = nullptr;
  QLabel* Label19_ = nullptr;
  QLabel* Label22_ = nullptr;
  QProgressBar* progreso_ = nullptr;
  QPushButton* Command3_ = nullptr;
};

}  // namespace valdor::formularios
