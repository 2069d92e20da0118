#include "shell/forms/formularios.h"

#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

FormulariosQt::FormulariosQt(Programa& programa, PaginaIntercambio& pagina, QWidget* padre)
    : programa_(programa), pagina_(pagina), padre_(padre) {}

void FormulariosQt::COTIZACION() {
  programa_.dialogos().mensaje(tituloValdor(),
                               "La selección de empresas todavía no está disponible en esta versión."_cp,
                               Icono::Informacion);
  // As if the form had been left by its "Cancelar": fan2 stops without writing anything.
  programa_.g.CANCELADO = 1;
}

void FormulariosQt::AFILIA() {
  programa_.dialogos().mensaje(tituloValdor(),
                               "El módulo de afiliación todavía no está disponible en esta versión."_cp,
                               Icono::Informacion);
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
