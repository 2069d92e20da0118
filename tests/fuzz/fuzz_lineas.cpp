// Fuzz target: the reader and the checks of an exchange file, as valdor-cli revisar and
// the editor use them. Beyond not crashing, the lines read through the 64 KiB block must
// be those of a plain split of the bytes held in memory (CR LF, LF and a lone CR end a
// line; the last bytes end one too), every report line must be printable, and the
// verdict must follow from the findings.

#include <string>
#include <string_view>
#include <vector>

#include "browser/editor.h"
#include "stores/ficheros.h"
#include "tests/fuzz/carpeta.h"
#include "tests/fuzz/objetivo.h"

namespace valdor::fuzz {

const char* const NOMBREOBJETIVO = "lineas";

std::vector<std::string> semillas() {
  const std::string l70 = "TRA" + std::string(67, '0');
  const std::string pie = "ETF" + std::string(51, ' ') + "0000100000004" + "   ";
  return {
      "ETI" + std::string(67, ' ') + "\r\n" + "EMP" + std::string(67, '1') + "\r\n" + l70 + "\r\n" + pie + "\r\n",
      l70 + "\n" + l70 + "\r" + l70,
      "\r\r\n\n\r",
      pie.substr(0, 60) + "\r\n",
  };
}

namespace {

struct Esperada {
  std::string texto;
  FinDeLinea fin;
};

// The lines of `bytes` by the plain rule, held whole.
std::vector<Esperada> parte(std::string_view bytes) {
  std::vector<Esperada> r;
  std::size_t i = 0;
  while (i < bytes.size()) {
    const std::size_t fin = bytes.find_first_of("\r\n", i);
    if (fin == std::string_view::npos) {
      r.push_back({std::string(bytes.substr(i)), FinDeLinea::Ninguno});
      break;
    }
    if (bytes[fin] == '\n') {
      r.push_back({std::string(bytes.substr(i, fin - i)), FinDeLinea::LF});
      i = fin + 1;
    } else if (fin + 1 < bytes.size() && bytes[fin + 1] == '\n') {
      r.push_back({std::string(bytes.substr(i, fin - i)), FinDeLinea::CRLF});
      i = fin + 2;
    } else {
      r.push_back({std::string(bytes.substr(i, fin - i)), FinDeLinea::CR});
      i = fin + 1;
    }
  }
  return r;
}

}  // namespace
}  // namespace valdor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t tamano) {
  using namespace valdor;
  using namespace valdor::fuzz;
  const std::string_view bytes(reinterpret_cast<const char*>(datos), tamano);
  // The first byte picks the kind of file, so every kind is checked.
  const char* const nombres[] = {"F0000000.FAN", "F0000000.AFI", "NOTAS.TXT"};
  const TipoIntercambio tipos[] = {TipoIntercambio::FAN, TipoIntercambio::AFI, TipoIntercambio::Otro};
  const std::size_t k = tamano ? datos[0] % 3 : 0;
  const auto fichero = escribe(nombres[k], bytes);
  if (tipoDeFichero(nombres[k]) != tipos[k]) fallaFuzz("tipo de fichero");

  const std::vector<Esperada> esperadas = parte(bytes);
  std::vector<FinDeLinea> finales;
  const std::vector<std::string> enteras = leeLineas(fichero, &finales);
  if (enteras.size() != esperadas.size() || finales.size() != esperadas.size()) fallaFuzz("leeLineas: cuenta");
  for (std::size_t i = 0; i < esperadas.size(); ++i)
    if (enteras[i] != esperadas[i].texto || finales[i] != esperadas[i].fin) fallaFuzz("leeLineas: línea " + std::to_string(i + 1));

  try {
    LectorLineas lector(fichero, LIMITELINEA);
    RevisionFichero revision(tipos[k]);
    LineaLeida linea;
    std::size_t n = 0;
    bool faltas = false;
    while (lector.siguiente(linea)) {
      if (n >= esperadas.size()) fallaFuzz("lector: líneas de más");
      const Esperada& e = esperadas[n++];
      if (linea.longitud != e.texto.size() || linea.fin != e.fin ||
          linea.texto != e.texto.substr(0, LIMITELINEA))
        fallaFuzz("lector: línea " + std::to_string(n));
      const auto informe = revision.revisa(linea);
      faltas = faltas || !informe.empty();
      for (const std::string& l : informe)
        if (!sinControl(l)) fallaFuzz("informe con bytes de control");
      // The grid's marks are the same findings.
      if (linea.longitud == linea.texto.size() &&
          observacionesDeLinea(linea.texto, tipos[k], linea.fin).size() != informe.size())
        fallaFuzz("las marcas de la rejilla y el informe difieren");
    }
    if (n != esperadas.size()) fallaFuzz("lector: líneas de menos");
    if (revision.lineas() != n) fallaFuzz("cuenta de líneas");
    for (const std::string& l : revision.cierre())
      if (!sinControl(l)) fallaFuzz("cierre con bytes de control");
    if (revision.bien() != (!faltas && revision.cuentas().cuadran())) fallaFuzz("veredicto");
  } catch (const ErrorFichero& e) {
    fallaFuzz(std::string("un fichero legible no se ha leído: ") + e.what());
  }
  return 0;
}
