#include "shell/programa.h"

#include <cstdlib>

#include "stores/texto.h"

namespace valdor {

Programa::Programa(Carpetas carpetas, Dialogos& dialogos, Separadores sistema, std::optional<Momento> fijo)
    : almacenes(std::move(carpetas), dialogos), dialogos_(dialogos), sistema_(sistema), ahora_(fijo) {}

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

void Programa::arranca() {
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
}

}  // namespace valdor
