#include "app/formularios.h"

#include <cstdlib>
#include <optional>
#include <string_view>

#include "afiliacion/forms/afilia.h"
#include "browser/revision.h"
#include "browser/forms/editor.h"
#include "engine/forms/cotval.h"
#include "fan/forms/cotizacion.h"
#include "shell/programa.h"
#include "stores/literales.h"

namespace valdor::formularios {

namespace {

bool revisionEstricta() {
  const char* estricto = std::getenv("VALDOR_ESTRICTO");
  return estricto && std::string_view(estricto) == "1";
}

}  // namespace

FormulariosQt::FormulariosQt(Programa& programa, PaginaIntercambio& pagina, QWidget* padre)
    : programa_(programa), pagina_(pagina), padre_(padre) {
  auto avisa = [&programa](const std::filesystem::path& destino, const std::vector<Hallazgo>& hallazgos) {
    programa.hallazgosEscritos.append(avisoDeHallazgos(destino, hallazgos));
  };
  programa_.revisaEscrito =
      revisionDeEscritos(avisa, revisionEstricta() ? std::optional<std::string>("con la revisión estricta"_cp)
                                                   : std::nullopt);
}

FormulariosQt::~FormulariosQt() { programa_.revisaEscrito = nullptr; }

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
  // The file just written, named by FICHEROSALIDA.
  formularios::EDITOR editor(programa_, lanzador_, padre_);
  editor.exec();
}

FabricaFormularios fabricaFormulariosQt() {
  return [](Programa& programa, PaginaIntercambio& pagina, QWidget* padre) {
    return std::make_unique<FormulariosQt>(programa, pagina, padre);
  };
}

}  // namespace valdor::formularios
