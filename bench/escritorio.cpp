// The month's runs as the desktop program makes them, against the same runs without a
// screen, in one process over the same office:
//  - the FAN file of every company: once as the command line writes it (no screen), once
//    as the wizard's "Procesar" writes it (the statement window with its progress and
//    statement view, the Qt dialogs and pointer);
//  - the TC1 of every company: once by the core call, once by the statement form's
//    "Calcular" with "Todas.".
//
//   QT_QPA_PLATFORM=offscreen valdor-escritorio PROGRAMA TRABAJO MES ANO
//
// Prints "fan-consola S", "fan-escritorio S", "tc1-nucleo S", "tc1-formulario S". The two
// FAN files are written under the names BANCOCON and BANCOESC and must be the same
// bytes but for the name in their first and last lines.

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

#include "engine/forms/boletin_tc1.h"
#include "engine/forms/cotval.h"
#include "engine/motor.h"
#include "fan/comando.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/programa.h"
#include "stores/texto.h"

namespace {

using Reloj = std::chrono::steady_clock;

double cronometra(const std::function<void()>& trabajo) {
  const auto desde = Reloj::now();
  trabajo();
  return std::chrono::duration<double>(Reloj::now() - desde).count();
}

void aviso(std::string_view titulo, std::string_view texto) {
  std::cerr << valdor::cp1252AUtf8(titulo) << ": " << valdor::cp1252AUtf8(texto) << '\n';
}

// The screen's dialogs (progress, pointer) without their boxes, which would wait for a
// click: a message goes to the error output and a question takes its default.
class DialogosDeBancoQt : public valdor::formularios::DialogosQt {
 public:
  void mensaje(std::string_view titulo, std::string_view texto, valdor::Icono) override { aviso(titulo, texto); }
  bool pregunta(std::string_view, std::string_view, bool noPorDefecto) override { return !noPorDefecto; }
  valdor::Guardado preguntaGuardar(std::string_view, std::string_view) override { return valdor::Guardado::Cancelar; }
  std::optional<std::string> entrada(std::string_view, std::string_view) override { return std::nullopt; }
};

// The same without a screen, as the command line.
class DialogosDeBanco : public valdor::Dialogos {
 public:
  void mensaje(std::string_view titulo, std::string_view texto, valdor::Icono) override { aviso(titulo, texto); }
  bool pregunta(std::string_view, std::string_view, bool noPorDefecto) override { return !noPorDefecto; }
  valdor::Guardado preguntaGuardar(std::string_view, std::string_view) override { return valdor::Guardado::Cancelar; }
  std::optional<std::string> entrada(std::string_view, std::string_view) override { return std::nullopt; }
  void progreso(int, std::string_view, std::string_view) override {}
  void puntero(valdor::Puntero) override {}
};

struct Mes {
  valdor::Carpetas carpetas;
  int mes = 0, ano = 0;
};

// The FAN file of every company of the month under `nombre`, through `motor`.
double fan(const Mes& m, valdor::Dialogos& dialogos, valdor::MotorCotizacion& motor, const std::string& nombre) {
  valdor::Programa programa(m.carpetas, dialogos, valdor::Separadores{});
  programa.arranca();
  valdor::PaginaIntercambio pagina;
  pagina.marcaCotizacion();
  valdor::preparaPagina(programa, pagina, true);
  pagina.Text8 = nombre;
  programa.g.LINEAETI = valdor::LINEAETI(pagina, programa.registro);
  valdor::COTIZACION sel;
  sel.eligeMes(m.mes - 1);
  sel.eligeAno(m.ano - 1901);
  valdor::PRESIONBOTON(programa, pagina, sel);
  valdor::marcaTodas(sel, true);
  return cronometra([&] {
    if (!valdor::comando(programa, pagina, sel, motor)) std::cerr << "el fichero " << nombre << " no se ha escrito\n";
  });
}

// The TC1 of every company by the core call.
double tc1Nucleo(const Mes& m) {
  DialogosDeBanco dialogos;
  valdor::Programa programa(m.carpetas, dialogos, valdor::Separadores{});
  programa.arranca();
  valdor::EjecucionTC1 e;
  e.mes = m.mes;
  e.ano = m.ano;
  return cronometra([&] { valdor::ejecutaTC1(programa, e); });
}

// The same by the statement form: the month and year chosen, "Todas.", "Calcular".
double tc1Formulario(const Mes& m) {
  DialogosDeBancoQt dialogos;
  valdor::Programa programa(m.carpetas, dialogos, valdor::Separadores{});
  programa.arranca();
  valdor::formularios::TC1VAL formulario(programa);
  formulario.resize(1024, 768);
  formulario.show();
  formulario.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(m.mes - 1);
  auto* anos = formulario.findChild<QComboBox*>(QStringLiteral("Combo2"));
  anos->setCurrentIndex(anos->findText(QString::number(m.ano)));
  formulario.findChild<QRadioButton*>(QStringLiteral("Option3D1_0"))->setChecked(true);
  QApplication::processEvents();
  return cronometra([&] { formulario.findChild<QPushButton*>(QStringLiteral("Calcular"))->click(); });
}

}  // namespace

int main(int argc, char** argv) {
  QApplication aplicacion(argc, argv);
  if (argc != 5) {
    std::cerr << "uso: valdor-escritorio PROGRAMA TRABAJO MES ANO\n";
    return 2;
  }
  const Mes m{valdor::Carpetas{argv[1], argv[2]}, std::atoi(argv[3]), std::atoi(argv[4])};

  DialogosDeBanco sinPantalla;
  valdor::MotorCalculo motor;
  std::cout << "fan-consola " << fan(m, sinPantalla, motor, "BANCOCON") << '\n';
  DialogosDeBancoQt pantalla;
  valdor::formularios::MotorEscritorio motorEscritorio(nullptr);
  std::cout << "fan-escritorio " << fan(m, pantalla, motorEscritorio, "BANCOESC") << '\n';
  std::cout << "tc1-nucleo " << tc1Nucleo(m) << '\n';
  std::cout << "tc1-formulario " << tc1Formulario(m) << '\n';
  return 0;
}
