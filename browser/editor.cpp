#include "browser/editor.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

int filasEstimadas(std::uintmax_t bytes, bool EDITAAFI) {
  return static_cast<int>(redondeoPar(static_cast<double>(bytes) / 70)) + (EDITAAFI ? 1 : 0);
}

std::vector<std::string> leeLineas(const std::filesystem::path& fichero) {
  std::ifstream entrada(fichero, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
  std::vector<std::string> lineas;
  std::size_t desde = 0;
  while (desde < bytes.size()) {
    std::size_t fin = bytes.find('\n', desde);
    if (fin == std::string::npos) fin = bytes.size();
    std::size_t corte = fin;
    if (corte > desde && bytes[corte - 1] == '\r') --corte;
    lineas.push_back(bytes.substr(desde, corte - desde));
    desde = fin + 1;
  }
  return lineas;
}

void guardaLineas(const std::filesystem::path& fichero, const std::vector<std::string>& lineas) {
  std::string contenido;
  for (const std::string& l : lineas)
    if (!recorta(l).empty()) contenido += l + "\r\n";
  if (const int error = reemplazaFichero(fichero, contenido); error != 0) {
    if (esDiscoLleno(error))
      throw ErrorFichero("No queda espacio en el disco para guardar el fichero " + entreComillas(fichero) + ".");
    throw ErrorFichero("No se puede guardar el fichero " + entreComillas(fichero) + ": " + razonDelSistema(error));
  }
}

std::optional<std::size_t> buscaLinea(const std::vector<std::string>& lineas, std::string_view texto) {
  const std::string buscado = mayusculas(texto);
  if (recorta(buscado).empty()) return std::nullopt;
  for (std::size_t i = 0; i < lineas.size(); ++i)
    if (mayusculas(lineas[i]).find(buscado) != std::string::npos) return i;
  return std::nullopt;
}

// ---- The checks --------------------------------------------------------------------------

TipoIntercambio tipoDeFichero(std::string_view nombre) {
  const std::string n = mayusculasAscii(recorta(nombre));
  if (n.ends_with(".FAN")) return TipoIntercambio::FAN;
  if (n.ends_with(".AFI")) return TipoIntercambio::AFI;
  return TipoIntercambio::Otro;
}

const std::vector<std::string_view>& segmentosDe(TipoIntercambio tipo) {
  static const std::vector<std::string_view> fan{"ETI", "EMP", "RZS", "TRA", "AYN", "DAT",
                                                 "EDL", "EDT", "TCT", "DBA", "ETF"};
  static const std::vector<std::string_view> afi{"ETI", "SIL", "EMP", "RZS", "TRA", "AYN",
                                                 "DOM", "LDD", "FAB", "DAM", "ETF"};
  static const std::vector<std::string_view> ninguno;
  return tipo == TipoIntercambio::FAN ? fan : tipo == TipoIntercambio::AFI ? afi : ninguno;
}

std::vector<std::string> observacionesDeLinea(std::string_view linea, TipoIntercambio tipo) {
  std::vector<std::string> r;
  if (recorta(linea).empty()) return r;
  if (linea.size() != 70) r.push_back("longitud " + std::to_string(linea.size()));
  const auto& segmentos = segmentosDe(tipo);
  const std::string_view segmento = linea.substr(0, 3);
  if (!segmentos.empty() && std::find(segmentos.begin(), segmentos.end(), segmento) == segmentos.end())
    r.push_back("segmento " + std::string(segmento));
  return r;
}

CuentasPie cuentasDelPie(const std::vector<std::string>& lineas) {
  CuentasPie c;
  for (const std::string& l : lineas) {
    if (recorta(l).empty()) continue;
    ++c.lineas;
    if (l.starts_with("EMP")) ++c.empresas;
    if (l.starts_with("ETF")) {
      // The counts are the 13 figures that end the trailer before its blanks: 5 of
      // companies and 8 of lines.
      const std::string cifras = derecha(recortaDer(l), 13);
      c.hayPie = cifras.size() == 13 &&
                 std::all_of(cifras.begin(), cifras.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
      c.empresasPie = c.hayPie ? std::stol(cifras.substr(0, 5)) : 0;
      c.lineasPie = c.hayPie ? std::stol(cifras.substr(5)) : 0;
    }
  }
  return c;
}

std::vector<std::string> informeRevision(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  std::vector<std::string> informe;
  const std::string nombreTipo = tipo == TipoIntercambio::FAN ? "FAN" : "AFI";
  for (std::size_t i = 0; i < lineas.size(); ++i) {
    const std::string& l = lineas[i];
    if (recorta(l).empty()) continue;
    const std::string numero = std::string("Línea "_cp) + std::to_string(i + 1) + ": ";
    if (l.size() != 70)
      informe.push_back(numero + "tiene " + std::to_string(l.size()) + " caracteres y debe tener 70.");
    const auto& segmentos = segmentosDe(tipo);
    if (!segmentos.empty() && std::find(segmentos.begin(), segmentos.end(), l.substr(0, 3)) == segmentos.end())
      informe.push_back(numero + "\"" + l.substr(0, 3) + "\" no es un segmento de un fichero " + nombreTipo + ".");
  }
  const CuentasPie c = cuentasDelPie(lineas);
  if (!c.hayPie) {
    informe.push_back(std::string("No hay línea de cierre ETF con sus cuentas de empresas y de líneas."_cp));
  } else if (c.cuadran()) {
    informe.push_back(std::string("Las cuentas del cierre ETF cuadran con el fichero: "_cp) + std::to_string(c.empresas) +
                      " empresas y " + std::to_string(c.lineas) + std::string(" líneas."_cp));
  } else {
    if (c.empresasPie != c.empresas)
      informe.push_back(std::string("El cierre ETF cuenta "_cp) + std::to_string(c.empresasPie) + " empresas y el fichero tiene " +
                        std::to_string(c.empresas) + ".");
    if (c.lineasPie != c.lineas)
      informe.push_back(std::string("El cierre ETF cuenta "_cp) + std::to_string(c.lineasPie) + std::string(" líneas y el fichero tiene "_cp) +
                        std::to_string(c.lineas) + ".");
  }
  return informe;
}

}  // namespace valdor
