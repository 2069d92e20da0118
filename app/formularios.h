// The modal forms that "&Aceptar" hands over to: the company selection COTIZACION, the
// affiliation module AFILIA and the exchange file editor EDITOR.
#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

#include "shell/asistente.h"
#include "shell/forms/pxvaldor32.h"
#include "shell/rutas.h"

namespace valdor {
class Programa;
}

namespace valdor::formularios {

class FormulariosQt : public FormulariosIntercambio {
 public:
  // `pagina` is the wizard's page, which the forms read while they are shown; `padre`
  // the wizard, the owner of the modal forms.
  // While it lives, each exchange file written is checked field by field before it takes
  // its name: the findings go to the question that offers the editor on the file, and
  // with the strict check (the environment's VALDOR_ESTRICTO=1) a finding keeps the file
  // from its name.
  FormulariosQt(Programa& programa, PaginaIntercambio& pagina, QWidget* padre);
  ~FormulariosQt() override;
  FormulariosQt(const FormulariosQt&) = delete;
  FormulariosQt& operator=(const FormulariosQt&) = delete;

  void COTIZACION() override;
  void AFILIA() override;
  void EDITOR() override;

 private:
  Programa& programa_;
  PaginaIntercambio& pagina_;
  QPointer<QWidget> padre_;
  // The editor's "Imprimir" hands the file to the system's text editor.
  LanzadorDelSistema lanzador_;
};

FabricaFormularios fabricaFormulariosQt();

}  // namespace valdor::formularios
