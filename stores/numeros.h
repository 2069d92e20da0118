// The arithmetic of the system's old run-time, in one place: rounding by way of
// formatted text, the numeric value of a text, whole numbers with ties to even, the
// general text of a double, the format pictures, and the number fields of the
// exchange files. Everything else calls these; nobody re-implements a rounding.
//
// Every conversion here is locale-independent (a point for the decimals) unless it
// takes a `Separadores`: only the rules that depend on the machine's regional setting
// receive one, read once by `separadoresDelSistema`.
#pragma once

#include "stores/error.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace valdor {

// Decimal and thousands separators of number formatting.
struct Separadores {
  char decimal = '.';
  char miles = ',';
};

// The separators of the user's locale (std::locale("") and its numpunct facet), read
// without changing the process's global locale. Falls back on "." and "," when the
// environment names no usable locale.
Separadores separadoresDelSistema();

// ---- Reading numbers ---------------------------------------------------------------

// The numeric value of a text, as the run-time's Val: leading blanks, tabs and line
// feeds are skipped, blanks inside the digits are ignored, a point marks the decimals,
// an exponent E or D is read, "&H" and "&O" prefixes read hexadecimal and octal, and
// reading stops at the first other character. " 1 2x" is 12; "abc" is 0.
double valorNumerico(std::string_view texto);
// The same reading, always by the general path; `valorNumerico` reads the plain
// decimal texts of the stores by a shorter one, and the two must always agree.
double valorNumericoGeneral(std::string_view texto);

// The conversion of a text to a number that the run-time's CDbl makes under the given
// separators: blanks around it allowed, thousands marks ignored in the whole part, one
// decimal mark, a sign, an exponent. A text that is not a number gives std::nullopt
// (the run-time raises "type mismatch" there).
std::optional<double> convierteNumero(std::string_view texto, Separadores sep = {});

// ---- Whole numbers -----------------------------------------------------------------

// Round to the nearest whole number, ties to the even one (2.5 -> 2, 3.5 -> 4,
// -2.5 -> -2), as the run-time's CLng and CInt.
double redondeoPar(double valor);

// CLng: the rounded value when it fits a 32-bit Long, std::nullopt on overflow.
std::optional<std::int32_t> aEnteroLargo(double valor);

// ---- Writing numbers ---------------------------------------------------------------

// The general text of a double, as the run-time's CStr: up to 15 significant digits,
// no trailing zeros, no trailing point, a leading "0" before the point, scientific
// form (1E+15, 1.5E-05) from 1E15 up and below 1E-4. Always a point.
std::string textoGeneral(double valor);
// The same text, always through the 15 significant digits; `textoGeneral` writes the
// whole numbers of cents by a shorter path, and the two must always agree.
std::string textoGeneralPorCifras(double valor);

// Format with a numeric picture of the subset the system uses: "##,##.00",
// "##,##0.00", "#####", "###", "##.00", "   ##.####" (literal characters stand as
// they are). The value is first taken to 15 significant digits and then cut to the
// picture's decimals with ties away from zero. A comma in the whole part of the
// picture asks for thousands marks. `sep` gives the characters written for the
// picture's point and comma.
std::string formatea(double valor, std::string_view picture, Separadores sep = {});

// Format of a text value: the text is taken as a number under `sep` (CDbl); a text
// that is not a number comes back unchanged, as the run-time's Format does.
std::string formateaTexto(std::string_view valor, std::string_view picture, Separadores sep = {});

// ---- The system's helpers ---------------------------------------------------------

// REDONDEA2: to two decimals by way of the picture "##,##.00" and back to a double.
// 2.675 -> 2.68, 1.005 -> 1.01, -0.005 -> -0.01, 0 -> 0. A text is first taken
// through its numeric value (an empty or blank text is 0).
double REDONDEA2(double valor);
double REDONDEA2(std::string_view valor);
// REDONDEA2R: the same for a double argument.
double REDONDEA2R(double valor);

// CAMPONUM: a number field of `ancho` characters with the first character of `relleno`
// on the left. With `decimales` the value is written in whole cents (1234.56 ->
// "00000123456" in 11); without, as a whole number with ties to even. The sign is part
// of the text, so the fill stands before it: -12.34 in 11 is "000000-1234".
// A value wider than its field, or a text that is not a number, has no field:
// std::nullopt, and the caller leaves the field out of its line.
std::optional<std::string> CAMPONUM(std::string_view valor, int ancho, std::string_view relleno,
                                    bool decimales);

// A value that does not fit its field of an exchange line: the line would come out
// shorter than 70, so the job stops instead, naming the field, the value and the width.
class ErrorCampo : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// CAMPONUM for a field of an exchange line, named `que` in the message: a value that is
// not a finite number or is wider than the field throws ErrorCampo.
std::string campoDeLinea(std::string_view que, std::string_view valor, int ancho, std::string_view relleno,
                         bool decimales);
std::string campoDeLinea(std::string_view que, double valor, int ancho, std::string_view relleno, bool decimales);

// QUITAACENTOS: maps the Spanish letters of a Windows-1252 text to the bytes of the DOS
// code page that the exchange files carry (Ñ -> 165, ñ -> 164, á -> 160, ...). When the
// source is empty, `TEXTOPLANO` keeps what it held; otherwise it is replaced.
void QUITAACENTOS(std::string_view TEXTOORIGEN, std::string& TEXTOPLANO);
// The mapped text of a non-empty source (an empty source gives "").
std::string QUITAACENTOS(std::string_view TEXTOORIGEN);
// The way back of the accent table, for showing what an exchange file holds: each byte
// the table gives a letter becomes that letter in Windows-1252 (the letter the DOS code
// page gives the byte when two letters share it: 161 is í, 164 is ñ); any other byte
// stays. QUITAACENTOS(PONACENTOS(QUITAACENTOS(t))) is QUITAACENTOS(t).
std::string PONACENTOS(std::string_view dos);

}  // namespace valdor
