#include "engine/adelanto.h"

#include <exception>
#include <utility>

#include "engine/motor.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/numeros.h"

namespace valdor {

namespace {

// The dialogs of the second thread, which has no screen: anything it would say means
// that its results are not plain, and the file's own run is to say it. The pointer and
// the progress say nothing of the kind.
class DialogosDelAdelanto : public Dialogos {
 public:
  void mensaje(std::string_view, std::string_view, Icono) override { hablo = true; }
  bool pregunta(std::string_view, std::string_view, bool) override {
    hablo = true;
    return false;
  }
  Guardado preguntaGuardar(std::string_view, std::string_view) override {
    hablo = true;
    return Guardado::Cancelar;
  }
  std::optional<std::string> entrada(std::string_view, std::string_view) override {
    hablo = true;
    return std::nullopt;
  }
  void progreso(int, std::string_view, std::string_view) override {}
  void puntero(Puntero) override {}
  bool hablo = false;
};

}  // namespace

std::vector<std::string> empresasDelTC1(const COTIZACION& sel) {
  std::vector<std::string> empresas;
  for (const FilaEmpresa& f : sel.grid)
    if (f.marcada && valorNumerico(f.BSSE) != 0) empresas.push_back(f.BSSE);
  return empresas;
}

// What the second thread works from: copies, so that it shares nothing with the first.
struct AdelantoTC1::Encargo {
  Carpetas carpetas;
  Separadores separadores;
  Momento ahora;
  int mes = 0, ano = 0;
  bool devEnCta = false;
  std::vector<std::string> empresas;
};

AdelantoTC1::AdelantoTC1(const Programa& programa, const COTIZACION& sel) {
  Encargo encargo{programa.carpetas(), programa.separadores(), programa.ahora(), sel.mesDelPeriodo(),
                  sel.anoDelPeriodo(), sel.devEnCta, empresasDelTC1(sel)};
  hilo_ = std::jthread([this, encargo = std::move(encargo)](std::stop_token alto) { trabaja(alto, encargo); });
}

AdelantoTC1::~AdelantoTC1() {
  hilo_.request_stop();
  if (hilo_.joinable()) hilo_.join();
}

void AdelantoTC1::trabaja(std::stop_token alto, const Encargo& encargo) {
  try {
    // The stores the file's thread has open while it writes the companies, as the start
    // opens them, each through a connection of this thread; none is made here.
    DialogosDelAdelanto dialogos;
    Programa programa(encargo.carpetas, dialogos, encargo.separadores, encargo.ahora);
    Almacenes& a = programa.almacenes;
    a.ABREACUVALDOR();
    a.ABRETIPODOC();
    a.ABREMAESTROS();
    a.ABRECUENTAS();
    auto limpio = [&] { return !dialogos.hablo && a.fallos().cuenta == 0 && a.sinAbrir().empty(); };
    if (limpio()) {
      MotorCalculo::SesionTC1 sesion(a, encargo.mes, encargo.ano, false);
      PaginaIntercambio pagina;
      for (const std::string& empresa : encargo.empresas) {
        if (alto.stop_requested() || !limpio()) break;
        for (std::string& linea : programa.g.LINEASTC1) linea.clear();
        tc1DeEmpresa(programa, sesion, encargo.mes, encargo.ano, encargo.devEnCta, pagina, empresa);
        if (!limpio()) break;
        ResultadoTC1 r;
        r.empresa = empresa;
        r.guia = pagina.Label3;
        for (std::size_t i = 1; i <= 18; ++i) r.lineas[i] = std::move(programa.g.LINEASTC1[i]);
        if (!programa.g.LINEASTC1[19].empty()) r.dba = std::move(programa.g.LINEASTC1[19]);
        publica(std::move(r));
      }
    }
  } catch (...) {
    // Whatever stopped it here, the file's own run meets it and reports it.
  }
  acaba();
}

void AdelantoTC1::publica(ResultadoTC1 resultado) {
  {
    std::lock_guard l(cerrojo_);
    hechos_.push_back(std::move(resultado));
  }
  listo_.notify_all();
}

void AdelantoTC1::acaba() {
  {
    std::lock_guard l(cerrojo_);
    acabado_ = true;
  }
  listo_.notify_all();
}

std::optional<ResultadoTC1> AdelantoTC1::toma(std::string_view empresa) {
  std::unique_lock l(cerrojo_);
  listo_.wait(l, [&] { return abandonado_ || acabado_ || hechos_.size() > entregados_; });
  if (abandonado_ || hechos_.size() <= entregados_) return std::nullopt;
  if (hechos_[entregados_].empresa != empresa) {
    abandonado_ = true;
    hilo_.request_stop();
    return std::nullopt;
  }
  return std::move(hechos_[entregados_++]);
}

}  // namespace valdor
