// The worker's sheet "TC2-TC2/1 ABREVIADO" that goes with the statement: the worker's
// identity, days, group, contract and the sick-leave figures, taken from row 1 of the
// working table GRID1. The screen of the run and the printed form show the same pieces.
#pragma once

#include <string>

#include "statement/estado.h"

namespace valdor {

// Every piece as the sheet shows it (Windows-1252 text); a blank piece is "".
struct HojaTC2 {
  std::string apellidos;          // "Apellidos:"
  std::string nombre;             // "Nombre:"
  std::string afiliacion;         // "Núm.Afiliación:"
  std::string nif;                // "Nif:"
  std::string diasAlta;           // "D.Alta"
  std::string grupoCotizacion;    // "G.Cotiz."
  std::string claseContrato;      // "Cl.Contr."
  std::string horas;              // "N.Horas"
  std::string epigrafe;           // "Epígraf"
  std::string diasIT;             // "Dias IT"
  std::string diasMaternidad;     // "D.Mater"
  std::string epigrafeIT;         // "Ep.I.T."
  std::string baseAT;             // "Base AT y EP."
  std::string fechaBonificacion;  // "Fecha Bonificac:"
};

// The sheet of the worker in row 1 of GRID1.
//  - The name column holds "SURNAMES, GIVEN NAME": the given name is what follows the
//    first comma, the surnames what precedes it, both trimmed; with no comma it is all
//    surnames.
//  - Affiliation, NIF, days, group, contract, hours and epigraph are their cells, trimmed.
//  - Sick days are the total days of the sick-leave columns less the maternity days;
//    they, the maternity days and the base under epigraph 126 are blank when 0. With a
//    base 126 the epigraph of the sick leave is "126".
//  - A bonus date that is empty shows the date mask.
HojaTC2 hojaTC2(const TablaTrabajo& GRID1);

}  // namespace valdor
