// The statement drawn on a page instead of sent to a port: the same printed lines
// (lineasBoletin), each character in its row and column of a fixed pitch of 10
// characters per inch and 6 lines per inch, as the form's printer lays them. The page
// knows nothing of how it is drawn: the desktop paints it through Qt's print support,
// and the PDF of the command line and of the desktop is written here, text only, in the
// PDF's own Courier.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

// The pitch: 72 points an inch, 10 characters and 6 lines to the inch.
inline constexpr double PUNTOSPORCOLUMNA = 7.2;
inline constexpr double PUNTOSPORFILA = 12.0;
// The letters of the printed lines, in points.
inline constexpr double PUNTOSLETRA = 12.0;

// How far the form's feed puts the first character from where the page places it, in
// millimetres: down and to the right (negative: up and to the left).
struct Desplazamiento {
  double abajoMm = 0;
  double derechaMm = 0;
};
// The largest offset taken, either way: a larger one is a mistyped figure.
inline constexpr double DESPLAZAMIENTOMAXIMOMM = 50;
// An offset written "V" or "V,H" (millimetres down, and to the right), with a point for
// decimals; std::nullopt for anything else or beyond DESPLAZAMIENTOMAXIMOMM.
std::optional<Desplazamiento> leeDesplazamiento(std::string_view texto);

// The message that refuses the offset `texto` given by `origen` (an option or a
// variable of the environment), stating the rule.
std::string desplazamientoRechazado(std::string_view origen, std::string_view texto);

// A caption of the form, in a small sans-serif letter of `puntos` points, its baseline
// `fila` rows and its start `columna` columns from the first character's cell.
struct Rotulo {
  double fila, columna;
  std::string texto;  // Windows-1252
  double puntos;
};
// A rule of the form, from one corner of the character cells to another.
struct Raya {
  double fila1, columna1, fila2, columna2;
};

struct PaginaBoletin {
  // An A4 sheet across: the statement's lines run to 97 columns, 9.7 inches.
  double ancho = 841.89, alto = 595.28;
  // The top left corner of the first character's cell, in points from the sheet's: half
  // an inch down and three columns in, so that every column falls on a whole number of
  // columns from the sheet's edge.
  double arriba = 36, izquierda = 3 * PUNTOSPORCOLUMNA;
  // The printed lines, each byte read as the printer's code page reads it: the letters
  // of the accent table are Windows-1252 letters here.
  std::vector<std::string> lineas;
  // The form's own captions and rules, for plain paper; none on the pre-printed form.
  std::vector<Rotulo> rotulos;
  std::vector<Raya> rayas;

  // Where things fall, in points from the sheet's top left corner.
  double x(double columna) const { return izquierda + columna * PUNTOSPORCOLUMNA; }
  double y(double fila) const { return arriba + fila * PUNTOSPORFILA; }
  // The baseline of row `fila`: the letter's ascent below the cell's top.
  double base(double fila) const { return y(fila) + 9.0; }
};

// The page of the printed lines of a statement. With `conImpreso` it carries the form's
// captions and rules as well, for a statement on plain paper.
PaginaBoletin paginaBoletin(const std::vector<std::string>& lineasImpresas, bool conImpreso,
                            Desplazamiento desplazamiento = {});

// The runs of characters that are not blanks in a line, with their first column: what
// is drawn, each run at its column.
struct Tramo {
  std::size_t columna;
  std::string texto;
};
std::vector<Tramo> tramos(std::string_view linea);

// The bytes of a one-page PDF of the page: Courier for the lines and Helvetica for the
// captions, both the PDF's standard letters in Windows-1252 (WinAnsiEncoding).
std::string pdfDePagina(const PaginaBoletin& pagina);

// The PDF written under `destino`, never half of it: written beside it and renamed over
// it. A failure is an ErrorFichero that names the file and says why.
void escribePdf(const std::filesystem::path& destino, const PaginaBoletin& pagina);

}  // namespace valdor
