// Fuzz target: the yearly rate file as LEETIPOS reads it. Any bytes either give rates
// whose texts are printable (no NUL or control byte can reach a statement or a line) or
// an error that names the file; the file is never changed by the reading.

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "statement/ficherotipos.h"
#include "tests/fuzz/carpeta.h"
#include "tests/fuzz/objetivo.h"

namespace valdor::fuzz {

const char* const NOMBREOBJETIVO = "tipos";

std::vector<std::string> semillas() {
  std::string sano(32 * 28, ' ');
  auto pon = [&](int registro, int campo, std::string_view valor) {
    sano.replace(static_cast<std::size_t>((registro - 1) * 28 + (campo - 1) * 7 + 7 - valor.size()), valor.size(), valor);
  };
  pon(12, 2, "23.60");
  pon(12, 3, "4.70");
  pon(12, 4, "28.30");
  pon(13, 4, "0.70");
  pon(19, 3, "1.55");
  pon(20, 4, "5.50");
  pon(21, 2, "-0.10");
  pon(28, 1, "7.05");
  return {sano, sano.substr(0, 28 * 28), std::string(32 * 28, ' ')};
}

}  // namespace valdor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t tamano) {
  using namespace valdor;
  using namespace valdor::fuzz;
  const std::string bytes(reinterpret_cast<const char*>(datos), tamano);
  const auto fichero = escribe("N-SS2024.MDB", bytes);

  // Any record of the file, as it is read one by one.
  const int numero = tamano ? datos[tamano - 1] % 40 : 1;
  if (const auto r = leeRegistroTipos(fichero, numero))
    for (const std::string& campo : *r)
      if (campo.size() != ANCHOTIPCAMPO || !sinControl(campo)) fallaFuzz("registro " + std::to_string(numero));

  TiposLeidos t;
  try {
    if (!LEETIPOS(carpeta().ruta(), 2024, 5, "", t)) fallaFuzz("un año del intervalo no se ha leído");
    if (bytes.empty()) fallaFuzz("un fichero vacío ha dado tipos");
    for (const std::string* texto : {&t.CCTIPO, &t.FPTIPO, &t.HETIPO, &t.HNTIPO, &t.OTTIPO, &t.OT2TIPO, &t.CCTIPO45,
                                     &t.CCTIPO55})
      if (!sinControl(*texto)) fallaFuzz("un tipo lleva bytes de control");
    for (std::size_t i = 0; i < t.campo2.size(); ++i)
      if (!sinControl(t.campo2[i]) || !sinControl(t.campo3[i])) fallaFuzz("un campo lleva bytes de control");
    for (double v : {t.a, t.b, t.c, t.f, t.p, t.q, t.r2, t.r3, t.r4, t.OTTIPOS[1], t.OT2TIPOS[4], t.PRECIOHORADIST})
      if (!std::isfinite(v)) fallaFuzz("un tipo no es un número");
  } catch (const ErrorFicheroTipos& e) {
    if (std::string(e.what()).find(fichero.filename().string()) == std::string::npos)
      fallaFuzz("el mensaje no nombra el fichero");
  }
  if (leeBytes(fichero) != bytes) fallaFuzz("la lectura ha cambiado el fichero");
  return 0;
}
