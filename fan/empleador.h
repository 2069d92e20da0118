// The employer block with which each company opens in the exchange files: the EMP line
// (the contribution account, the identifier and, in the FAN file, the period, class
// and qualifier) and the RZS line (the kind of company and its name).
//
// Every part is a fixed-width field. A value wider than its field has no field, and the
// line comes out without it, shorter than 70: that is how the file shows the fault.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "stores/almacen.h"

namespace valdor {

struct COTIZACION;
struct FilaEmpresa;

// The columns of a company (ESA) that the employer block reads.
struct DatosEmpresa {
  std::string A1;    // contribution account: two characters of province, then the number
  std::string A2;    // name
  std::string A8;    // tax identifier
  std::string EB12;  // "6" or "7": the second kind of employer line
  std::string EB14;  // key of the company
};

// The company by its code in ESA (index EMNU); std::nullopt when it is not there.
std::optional<DatosEmpresa> buscaEmpresa(Tabla& ESA, std::string_view codigo);

// "EMP0132" when EB12 is "6" or "7", else "EMP0111".
std::string cabeceraEMP(std::string_view EB12);
// The province of the account: its first two characters, trimmed.
std::string provinciaCuenta(std::string_view A1);
// The number of the account: the nine characters from position 3 by their numeric
// value, with zeros on the left to 9; no field when wider.
std::optional<std::string> numeroCuenta(std::string_view A1);
// The identifier: A8 trimmed, in upper case, with zeros on the left to 14.
std::optional<std::string> identificadorRelleno(std::string_view A8);

// The identifier type of the FAN file: "1   " for "00" (or two blanks) in front, "6   "
// for an X in front, "9   " when the identifier reads 0 and its first character is
// not a digit (a letter, or nothing), else "1   ".
std::string tipoIdentificadorFAN(std::string_view A8);
// The kind of company of the RZS line: "1" when the first character of the trimmed A8
// reads other than 0; else "3" for E, F or G, "2" for A or B, "4" for anything else.
std::string claseEmpresa(std::string_view A8);

// The RZS line: "RZS0", the kind, the name after the accent mapping (trimmed, blanks
// on the right to 55, upper case), ten blanks. `TEXTOPLANO` is the mapping's output,
// kept from one company to the next: an empty name leaves the previous company's text.
std::string lineaRZS(const DatosEmpresa& e, std::string& TEXTOPLANO);

// The EMP line of the FAN file for the period, class and qualifier.
std::string lineaEMPFAN(const DatosEmpresa& e, int ano, int mes, std::string_view clase,
                        std::string_view calificador);

// LINEAEMP of the FAN file: for the company of `fila`, the two lines into its columns
// 3 and 4, CUENTAEMPRESAS up by one and CLAVEEMPRESA from EB14. A company missing in
// ESA leaves the row's lines as they were.
void LINEAEMP(Tabla& ESA, COTIZACION& sel, FilaEmpresa& fila, std::string& TEXTOPLANO);

}  // namespace valdor
