#include "shell/forms/formularios.h"

#include "afiliacion/forms/afilia.h"
#include "engine/forms/cotval.h"
#include "fan/forms/cotizacion.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

FormulariosQt::FormulariosQt(Programa& programa, PaginaIntercambio& pagina, QWidget* padre)
    : programa_(programa), pagina_(pagina), padre_(padre) {}

void FormulariosQt::COTIZACION() {
  // The statement run of the marked companies, then the file.
  MotorEscritorio motor(padre_);
  formularios::COTIZACION seleccion(programa_, pagina_, motor, padre_);
  seleccion.exec();
}

void FormulariosQt::AFILIA() {
  formularios::AFILIA modulo(programa_, pagina_, *this, padre_);
  bool termina = false;
  modulo.terminaPrograma = [&termina] { termina = true; };
  modulo.exec();
  // "&Salir" ends the program: the main window closes, and runs the program's exit,
  // once the hand-over that showed the form is over.
  if (termina && padre_) QMetaObject::invokeMethod(padre_->window(), &QWidget::close, Qt::QueuedConnection);
}

void FormulariosQt::EDITOR() {
  programa_.dialogos().mensaje(tituloValdor(),
                               "El editor de ficheros todavía no está disponible en esta versión."_cp,
                               Icono::Informacion);
}

FabricaFormularios fabricaFormulariosQt() {
  return [](Programa& programa, PaginaIntercambio& pagina, QWidget* padre) {
    return std::make_unique<FormulariosQt>(programa, pagina, padre);
  };
}

}  // namespace valdor::formularios
