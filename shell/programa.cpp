#include "shell/programa.h"

#include <cstdlib>

#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor {

Programa::Programa(Carpetas carpetas, Dialogos& dialogos, Separadores sistema, std::optional<Momento> fijo)
    : dialogos_(dialogos), almacenes(std::move(carpetas), dialogos_), sistema_(sistema), ahora_(fijo) {}

Programa::~Programa() { termina(); }

void Programa::detectaSeparadores() {
  // 166.386 lies below 1000, so its formatted text holds no thousands mark: a comma in
  // it can only be the decimal one.
  const std::string formateado = formatea(166.386, "##,##0.00", sistema_);
  const bool coma = formateado.find(',') != std::string::npos;
  g.SEPDECIMAL = std::string(1, coma ? ',' : '.');
  g.SEPMILES = std::string(1, coma ? '.' : ',');
}

// A settings file that cannot be read, or holds no settings record, leaves the start
// with blank settings and no message: the wizard's load, the configuration and every
// job read the file again and tell the user why, each where it stops.
void Programa::leeAjustes() {
  try {
    FicheroAjustes fichero(carpetas().trabajo);
    registro = leeAjustesAlArrancar(fichero);
  } catch (const ErrorAjustes&) {
    registro = registroEnBlanco();
  }
  g.RUTAWS = registro.RUTAWINSUITE;
}

std::optional<std::string> Programa::motivoDeFallo(MarcaTrabajo inicio) const {
  const std::string_view noGenerado = "El fichero no se ha generado: "_cp;
  if (almacenes.fallos().cuenta > inicio.fallos) return std::string(noGenerado) + almacenes.fallos().ultimo;
  if (const auto cerrados = almacenes.sinAbrir(); !cerrados.empty()) return std::string(noGenerado) + cerrados.front();
  if (dialogos_.errores() > inicio.errores)
    return std::string(noGenerado) + std::string("hubo errores mientras se preparaba (vea los mensajes anteriores)."_cp);
  return std::nullopt;
}

void Programa::atiendeParada() const {
  if (parada_) throw TrabajoCancelado();
}

TrabajoCancelado::TrabajoCancelado()
    : ErrorValdor(std::string("Proceso cancelado por el usuario. El fichero no se ha generado."_cp)) {}

void Programa::tomaCarpeta() {
  if (cerrojo_) return;
  cerrojo_.emplace(carpetas().trabajo);
  if (!cerrojo_->tomado()) {
    cerrojo_.reset();
    throw CarpetaOcupada(std::string("Otra ejecución de VALDOR+ (el programa de escritorio u otra orden de valdor-cli) está "
                         "usando la carpeta de trabajo "_cp) +
                         entreComillas(carpetas().trabajo) +
                         std::string(". Espere a que acabe y vuelva a intentarlo: dos ejecuciones no pueden compartir su "
                                     "almacén temporal."_cp));
  }
  // Nobody else holds the folder: a temp store found in it was left by a run that did
  // not end (killed, or the machine stopped), and its rows belong to no one.
  almacenes.CIERRATEMPORAL();
  almacenes.BORRATEMPORAL();
}

void Programa::arranca() {
  tomaCarpeta();
  detectaSeparadores();

  // Close before create makes a repeated start safe; create stops quietly on a file
  // that exists, so the work stores keep their rows from one start to the next.
  Almacenes& a = almacenes;
  a.CIERRAACUVALDOR();
  a.CREAACUVALDOR();
  a.ABREACUVALDOR();
  a.CIERRATEMPORAL();
  a.CREATEMPORAL();
  a.ABRETEMPORAL();
  a.CIERRATIPODOC();
  a.CREATIPODOC();
  a.ABRETIPODOC();
  a.ABREMAESTROS();
  a.CIERRACUENTAS();
  a.CREACUENTAS();
  a.ABRECUENTAS();

  leeAjustes();
  if (const char* puerto = std::getenv("VALDOR_IMPRESORA")) g.PUERTOIMPRESORA = utf8ACp1252(puerto);
  if (const char* desplazamiento = std::getenv("VALDOR_DESPLAZAMIENTO"))
    g.DESPLAZAMIENTOIMPRESO = utf8ACp1252(desplazamiento);
  g.EMISORNOMBRE = leeEmisor(carpetas().trabajo);
  arrancado_ = true;
}

void Programa::termina() noexcept {
  if (!arrancado_) return;
  arrancado_ = false;
  almacenes.CIERRAACUVALDOR();
  almacenes.CIERRATEMPORAL();
  almacenes.CIERRATIPODOC();
  almacenes.CIERRACUENTAS();
  almacenes.BORRATEMPORAL();
  cerrojo_.reset();
}

}  // namespace valdor
