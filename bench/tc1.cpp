// The TC1 run of every company of a month, as the statement form starts it with "Todas.",
// timed on its own: the core call behind the form, without a screen. bench/mide.sh puts
// its time beside the FAN run of the same month.
//
//   valdor-tc1 PROGRAMA TRABAJO MES ANO
//
// Prints "tc1 S" (seconds of the run), then the companies worked out and the sum of
// their "A INGRESAR" figures, so that the run can be seen to have done its work.

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "engine/cotval.h"
#include "engine/motor.h"
#include "stores/dialogos.h"
#include "shell/programa.h"
#include "statement/estado.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace {

using Reloj = std::chrono::steady_clock;

// No screen: messages go to the error output, questions take their default.
class DialogosDeBanco : public valdor::Dialogos {
 public:
  void mensaje(std::string_view titulo, std::string_view texto, valdor::Icono) override {
    std::cerr << valdor::cp1252AUtf8(titulo) << ": " << valdor::cp1252AUtf8(texto) << '\n';
  }
  bool pregunta(std::string_view, std::string_view, bool noPorDefecto) override { return !noPorDefecto; }
  valdor::Guardado preguntaGuardar(std::string_view, std::string_view) override { return valdor::Guardado::Cancelar; }
  std::optional<std::string> entrada(std::string_view, std::string_view) override { return std::nullopt; }
  void progreso(int, std::string_view, std::string_view) override {}
  void puntero(valdor::Puntero) override {}
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "uso: valdor-tc1 PROGRAMA TRABAJO MES ANO\n";
    return 2;
  }
  DialogosDeBanco dialogos;
  valdor::Programa programa(valdor::Carpetas{argv[1], argv[2]}, dialogos, valdor::Separadores{});
  programa.arranca();

  valdor::EjecucionTC1 e;
  e.mes = std::atoi(argv[3]);
  e.ano = std::atoi(argv[4]);
  // Told after each company and once more at the end of the run.
  std::vector<double> aIngresar;
  e.empresaCalculada = [&](const valdor::COTVAL& calculo) {
    aIngresar.push_back(valdor::valorNumerico(calculo.boletin.AINGRESAR.texto()));
  };
  const auto desde = Reloj::now();
  valdor::ejecutaTC1(programa, e);
  const double s = std::chrono::duration<double>(Reloj::now() - desde).count();
  programa.termina();
  if (!aIngresar.empty()) aIngresar.pop_back();
  double suma = 0;
  for (double x : aIngresar) suma = valdor::REDONDEA2(suma + x);
  std::cout << "tc1 " << s << "\nempresas " << aIngresar.size() << ", a ingresar " << valdor::textoGeneral(suma)
            << '\n';
  return 0;
}
