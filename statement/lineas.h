// The worker's lines kept for the FAN writer: each a fixed line of 70 characters, kept
// in TMPVALDOR under its company, worker and kind by GUARDATEMPORAL.
#pragma once

#include <string>
#include <string_view>

namespace valdor {

class Almacen;
class EstadoCalculo;
class Programa;

// GUARDATEMPORAL: the line of kind `tipo` of the worker in TMPVALDOR of the temp store:
// added when the store has no line of that kind for the company and worker, replaced
// when it has one. A line longer than 70 characters is kept whole and `LINEALARGA` is
// set to 1: the FAN writer refuses it, naming its company, worker and kind.
void GUARDATEMPORAL(Almacen& temporal, std::string_view empresa, std::string_view trabajador, std::string_view tipo,
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

// ED8, EDD and EDO: the key (7), the days Z(3), the amount, the mark, the date
// "yyyymmdd", 16 "0" and 26 blanks. ED9 carries a second date in place of 8 of the "0".
std::string lineaImporteFecha(std::string_view clave, std::string_view dias, double importe, std::string_view marca,
                              std::string_view fecha, std::string_view segundaFecha = {});

// The name of column 3, "SURNAMES, GIVEN NAME", upper-cased: the given name is what
// stands after the first comma, the first surname what stands before the first blank of
// the surnames, the second surname the rest. Each part is trimmed.
struct NombreTrabajador {
  std::string apellido1, apellido2, nombre;
};
NombreTrabajador partesNombre(std::string_view columna3);

// TRA: the affiliation number (province and number), the document type, the document
// "0"-filled to 14, the centre Z(3) and its description of 25.
std::string lineaTRA(std::string_view afiliacion, std::string_view TIPDOIDE, std::string_view documento,
                     std::string_view centro, std::string_view DCE);
// AYN: the surnames through QUITAACENTOS (20 each), the given name upper case with its
// accents (15), the initials (5), cut at 70. The accent mapping of each part passes
// through `TEXTOPLANO` as the program's mapping always does; only the surnames keep it.
std::string lineaAYN(const NombreTrabajador& nombre, std::string_view INICIALES, std::string& TEXTOPLANO);

// The data of a DAT line. `completa` is the whole month's line; the lines of the days
// of illness, accident and maternity stop after position 47.
struct DatosDAT {
  double mes = 0;
  bool parcial = false;     // "P": part-time worker
  bool corto = false;       // "C": a contract of up to 7 days
  double figura = 0;        // days, or hours with `horas`
  bool horas = false;       // "H"
  std::string grupo;        // column 5
  std::string CONTSEGSOC;   // the contract's Social Security key
  std::string epigrafe1, epigrafe2;
  std::string CTC2;         // the agreement's key, 7 characters
};
std::string lineaDAT(const DatosDAT& d, bool completa);

// The worker's lines of row 1 of GRID1 after its statement: TRA, AYN, DAT, ED1, ED2,
// ED3, DAE, EDE, DAA, EDA, DAM, EDM, ED4, ED5, ED6, ED8, ED9, EDD and EDO, each under its
// condition, kept in TMPVALDOR by GUARDATEMPORAL. `REDUCTOTAL` is the statement's
// reductions (ED8).
void ESCRIBELINEAS(EstadoCalculo& calculo, Programa& programa, double REDUCTOTAL);

}  // namespace valdor
