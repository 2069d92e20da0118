// The layouts of every line that VALDOR+ writes into an exchange file, written down once:
// for each segment (kind of line) of the FAN and AFI files, each field's positions, its
// kind and whether it may be blank. The field checks, the editor and the writers' tests
// read them from here.
#pragma once

#include <string_view>
#include <vector>

#include "browser/editor.h"

namespace valdor {

// What a field holds.
enum class ClaseCampo {
  Literal,    // one fixed text (`valores[0]`): a key, blanks, zeros
  Codigo,     // one of the texts of `valores`
  Cifras,     // digits only
  Importe,    // cents, digits with zeros on the left; the sign rule below
  Fecha,      // yyyymmdd, a day that exists; with `puedeBlanco`, "00000000" too
  Hora,       // hhmm
  Periodo,    // yyyymm, the month of the file
  Mes,        // the month of the file, with zeros on the left to the field's width
  Texto,      // free text
  Cuenta,     // contribution account: province (2), number (7), check digits (2)
  Afiliacion, // Social Security number: province (2), number (8), check digits (2)
  Documento,  // an identity document with zeros on the left; a DNI or NIE has its letter checked
  Copia,      // the same characters as the field that starts at `original`
};

// How an amount carries its sign.
enum class SignoImporte {
  Dentro,  // a negative amount has "-" between the zeros and the digits: 000000-1234
  Ninguno, // digits only (the sign, when there is one, stands in a field of its own)
};

struct Campo {
  int desde = 1;  // first position, from 1
  int ancho = 1;
  std::string_view nombre;
  ClaseCampo clase = ClaseCampo::Texto;
  std::vector<std::string_view> valores = {};  // Literal and Codigo
  bool puedeBlanco = false;                    // all blanks (for a date, also all zeros) is right
  SignoImporte signo = SignoImporte::Dentro;
  int original = 0;                            // Copia: the position where the copied field starts
  int hasta() const { return desde + ancho - 1; }
};

// A kind of line: the keys its lines begin with (a key of 3 to 13 characters) and its
// fields, which cover positions 1 to 70 one after the other.
struct Segmento {
  std::string_view nombre;
  std::vector<std::string_view> claves;
  std::vector<Campo> campos;
};

// The segments of each kind of file.
const std::vector<Segmento>& segmentosDeFichero(TipoIntercambio tipo);

// The segment of a line: the one with the longest key that the line begins with; none
// when no key fits (or the file is of no known kind).
const Segmento* segmentoDeLinea(std::string_view linea, TipoIntercambio tipo);

// The field of a segment that covers position `posicion` (from 1); none beyond 70.
const Campo* campoEnPosicion(const Segmento& segmento, int posicion);

}  // namespace valdor
