// The worker's lines kept for the FAN writer: each a fixed line of 70 characters, kept
// in TMPVALDOR under its company, worker and kind by GUARDATEMPORAL.
#pragma once

#include <string>
#include <string_view>

namespace valdor {

class Tabla;

// GUARDATEMPORAL: the line of kind `tipo` of the worker: added when the store has no
// line of that kind for the company and worker, replaced when it has one. The stored
// column holds 70 characters; a longer line is cut there and `LINEALARGA` is set to 1.
void GUARDATEMPORAL(Tabla& TMPVALDOR, std::string_view empresa, std::string_view trabajador, std::string_view tipo,
                    std::string_view linea, double& LINEALARGA);

// Z(n): a number as left-trimmed text with "0" on the left up to n (a longer text is not cut).
std::string Z(std::string_view numero, std::size_t n);
// I: an amount in cents, 7 characters, zeros on the left; nothing when it does not fit.
std::string I(double importe);

// The amount lines ED1, ED2, ED3, EDE, EDA, EDM and ED4: the key (10), the amount, a
// blank, 26 "0" and 26 blanks.
std::string lineaImporte(std::string_view clave, double importe);
// ED5 and ED6: the key (7), the days Z(3), the amount, " 01" or " 03", 24 "0", 26 blanks.
std::string lineaImporteDias(std::string_view clave, double dias, double importe, std::string_view marca);

}  // namespace valdor
