#include "statement/pagina.h"

#include <charconv>
#include <cmath>

#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

constexpr double PUNTOSPORMM = 72 / 25.4;
constexpr double LETRAROTULO = 6.5;
constexpr double LETRATITULO = 10;
// The captions stand right of the widest line of figures, from this column on.
constexpr double COLUMNAROTULOS = 92;
constexpr double COLUMNAFINAL = 112;
constexpr double FILAFINAL = 40;

std::optional<double> milimetros(std::string_view texto) {
  const std::string t = recorta(texto);
  double valor = 0;
  const char* fin = t.data() + t.size();
  const auto [ptr, error] = std::from_chars(t.data(), fin, valor);
  if (t.empty() || error != std::errc() || ptr != fin || !std::isfinite(valor)) return std::nullopt;
  if (std::fabs(valor) > DESPLAZAMIENTOMAXIMOMM) return std::nullopt;
  return valor;
}

// The captions of the form for plain paper, each beside what it names: the heading's
// in the blank columns left of its figures, the body's and the closing ones right of
// the widest figure, in the row of the figures they name.
std::vector<Rotulo> rotulosDelImpreso() {
  std::vector<Rotulo> r;
  auto pon = [&r](double fila, double columna, std::string_view texto) {
    r.push_back({fila + 0.75, columna, std::string(texto), LETRAROTULO});
  };
  r.push_back({-1.2, 0, std::string("BOLETÍN DE COTIZACIÓN A LA SEGURIDAD SOCIAL (TC-1)"_cp), LETRATITULO});
  pon(0, 0, "Nombre o razón social"_cp);
  pon(1, 0, "Domicilio");
  pon(2, 0, "Localidad, C.P. y provincia"_cp);
  pon(3, 0, "Entidad de AT y EP y clave");
  pon(4, 60, "Expediente");
  pon(6, 0, "NIF, C.C.C., trabajadores, periodo"_cp);
  const std::string_view cuerpo[] = {"Contingencias comunes: base, tipo, cuota",
                                     "Horas extraordinarias estructurales",
                                     "Horas extraordinarias no estructurales",
                                     "Aportación por servicios comunes"_cp,
                                     "Trab. con contrato formativo o prácticas"_cp,
                                     "Otros conceptos",
                                     "Deducción de contingencias excluidas"_cp,
                                     "Deducciones"};
  for (std::size_t i = 0; i < 8; ++i) pon(7 + 2.0 * static_cast<double>(i), COLUMNAROTULOS, cuerpo[i]);
  pon(22, COLUMNAROTULOS, "Comp. I.T., reducciones y total");
  pon(23, COLUMNAROTULOS, "Líquido de contingencias generales"_cp);
  pon(25, COLUMNAROTULOS, "AT y EP: base, cuota I.T., cuota I.M.S.");
  pon(26, COLUMNAROTULOS, "Total AT y EP");
  pon(27, COLUMNAROTULOS, "Compensación por I.T. de AT y EP"_cp);
  pon(29, COLUMNAROTULOS, "Líquido de AT y EP"_cp);
  pon(31, COLUMNAROTULOS, "Otras cotizaciones: base, tipo, cuota");
  pon(33, COLUMNAROTULOS, "Bonificaciones, comp. desempleo, suma");
  pon(35, COLUMNAROTULOS, "Líquido de otras cotizaciones"_cp);
  pon(37, COLUMNAROTULOS, "Total con recargo, %, recargo");
  pon(39, COLUMNAROTULOS, "A percibir / A ingresar");
  return r;
}

// The frame of the form and the rules between its blocks: the heading, the general
// contingencies with the worker's sheet on their left, accidents at work, the other
// contributions and the result.
std::vector<Raya> rayasDelImpreso() {
  std::vector<Raya> r{{-0.5, -0.5, -0.5, COLUMNAFINAL}, {FILAFINAL, -0.5, FILAFINAL, COLUMNAFINAL},
                      {-0.5, -0.5, FILAFINAL, -0.5},    {-0.5, COLUMNAFINAL, FILAFINAL, COLUMNAFINAL},
                      {7, 37.5, 22, 37.5}};
  for (const double fila : {7.0, 24.5, 30.5, 36.5}) r.push_back({fila, -0.5, fila, COLUMNAFINAL});
  return r;
}

// ---- The PDF -----------------------------------------------------------------------------

std::string numero(double valor) {
  char texto[32];
  const auto fin = std::to_chars(texto, texto + sizeof texto, valor, std::chars_format::fixed, 2).ptr;
  return std::string(texto, fin);
}

// A PDF string: its delimiters and the backslash escaped, every byte outside printable
// ASCII in octal.
std::string cadenaPdf(std::string_view texto) {
  std::string s = "(";
  for (const char c : texto) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '(' || c == ')' || c == '\\') {
      s.append(1, '\\').append(1, c);
    } else if (byte < 0x20 || byte >= 0x7F) {
      const char octal[] = {'\\', static_cast<char>('0' + (byte >> 6)), static_cast<char>('0' + ((byte >> 3) & 7)),
                            static_cast<char>('0' + (byte & 7))};
      s.append(octal, sizeof octal);
    } else {
      s.push_back(c);
    }
  }
  return s + ")";
}

// The drawing of the page: PDF's origin is the sheet's bottom left corner.
std::string contenidoPdf(const PaginaBoletin& p) {
  std::string c;
  c += "0.5 w\n";
  for (const Raya& r : p.rayas)
    c += numero(p.x(r.columna1)) + " " + numero(p.alto - p.y(r.fila1)) + " m " + numero(p.x(r.columna2)) + " " +
         numero(p.alto - p.y(r.fila2)) + " l S\n";
  c += "BT\n";
  for (const Rotulo& r : p.rotulos)
    c += "/F2 " + numero(r.puntos) + " Tf 1 0 0 1 " + numero(p.x(r.columna)) + " " + numero(p.alto - p.y(r.fila)) +
         " Tm " + cadenaPdf(r.texto) + " Tj\n";
  c += "/F1 " + numero(PUNTOSLETRA) + " Tf\n";
  for (std::size_t fila = 0; fila < p.lineas.size(); ++fila)
    for (const Tramo& t : tramos(p.lineas[fila]))
      c += "1 0 0 1 " + numero(p.x(static_cast<double>(t.columna))) + " " +
           numero(p.alto - p.base(static_cast<double>(fila))) + " Tm " + cadenaPdf(t.texto) + " Tj\n";
  return c + "ET\n";
}

}  // namespace

std::optional<Desplazamiento> leeDesplazamiento(std::string_view texto) {
  const std::size_t coma = texto.find(',');
  const auto abajo = milimetros(texto.substr(0, coma));
  if (!abajo) return std::nullopt;
  if (coma == std::string_view::npos) return Desplazamiento{*abajo, 0};
  const auto derecha = milimetros(texto.substr(coma + 1));
  if (!derecha) return std::nullopt;
  return Desplazamiento{*abajo, *derecha};
}

std::string desplazamientoRechazado(std::string_view origen, std::string_view texto) {
  return std::string(origen)
      .append(": el desplazamiento «"_cp)
      .append(texto)
      .append("» no es válido. Ha de ser V o V,H: los milímetros hacia abajo y hacia la derecha (negativos "_cp)
      .append("hacia arriba y hacia la izquierda), con punto decimal, de -50 a 50.");
}

std::vector<Tramo> tramos(std::string_view linea) {
  std::vector<Tramo> t;
  std::size_t i = 0;
  while ((i = linea.find_first_not_of(' ', i)) != std::string_view::npos) {
    const std::size_t fin = std::min(linea.find(' ', i), linea.size());
    t.push_back({i, std::string(linea.substr(i, fin - i))});
    i = fin;
  }
  return t;
}

PaginaBoletin paginaBoletin(const std::vector<std::string>& lineasImpresas, bool conImpreso,
                            Desplazamiento desplazamiento) {
  PaginaBoletin p;
  p.arriba += desplazamiento.abajoMm * PUNTOSPORMM;
  p.izquierda += desplazamiento.derechaMm * PUNTOSPORMM;
  for (const std::string& linea : lineasImpresas) p.lineas.push_back(PONACENTOS(linea));
  if (conImpreso) {
    p.rotulos = rotulosDelImpreso();
    p.rayas = rayasDelImpreso();
  }
  return p;
}

std::string pdfDePagina(const PaginaBoletin& pagina) {
  const std::string contenido = contenidoPdf(pagina);
  const std::vector<std::string> objetos{
      "<< /Type /Catalog /Pages 2 0 R >>",
      "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
      "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + numero(pagina.ancho) + " " + numero(pagina.alto) +
          "] /Resources << /Font << /F1 4 0 R /F2 5 0 R >> >> /Contents 6 0 R >>",
      "<< /Type /Font /Subtype /Type1 /BaseFont /Courier /Encoding /WinAnsiEncoding >>",
      "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
      "<< /Length " + std::to_string(contenido.size()) + " >>\nstream\n" + contenido + "endstream",
      "<< /Producer (VALDOR+) /Title (Boletin de cotizacion TC-1) >>"};
  std::string pdf = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";
  std::vector<std::size_t> posiciones;
  for (std::size_t i = 0; i < objetos.size(); ++i) {
    posiciones.push_back(pdf.size());
    pdf += std::to_string(i + 1) + " 0 obj\n" + objetos[i] + "\nendobj\n";
  }
  const std::size_t xref = pdf.size();
  pdf += "xref\n0 " + std::to_string(objetos.size() + 1) + "\n0000000000 65535 f \n";
  for (const std::size_t posicion : posiciones) pdf += llenaIzq(std::to_string(posicion), 10, '0') + " 00000 n \n";
  pdf += "trailer\n<< /Size " + std::to_string(objetos.size() + 1) + " /Root 1 0 R /Info 7 0 R >>\nstartxref\n" +
         std::to_string(xref) + "\n%%EOF\n";
  return pdf;
}

void escribePdf(const std::filesystem::path& destino, const PaginaBoletin& pagina) {
  if (const int error = reemplazaFichero(destino, pdfDePagina(pagina)); error != 0)
    throw ErrorFichero(std::string("No se ha podido escribir el PDF ")
                           .append(entreComillas(destino))
                           .append(": ")
                           .append(razonDelSistema(error))
                           .append(". El fichero no se ha generado."));
}

}  // namespace valdor
