// Contract bonuses and reductions: the percentages of a worker's contract for the
// contribution month, picked by the age of the contract from the three periods of the
// BONIFI row, and the fixed reduced percentage of the worker's TRA39 key.
#pragma once

#include <string>
#include <string_view>

#include "statement/estado.h"
#include "stores/almacen.h"

namespace valdor {

// BONIFICACIONES: the bonus of CODCONT on the current row of GRID1.
//  - No BONIFI row for CODCONT: nothing changes.
//  - Otherwise the first set, BONBR and BONCS are loaded into the run variables; then the
//    contract's year for the month (start TRA4010, or TRA1710 when TRA4010 is the empty
//    mask; end the last day of MESCOT/ANOCOT) picks the set whose percentages are written
//    to columns 21 to 26 and loaded again into the variables, and BONBR and BONCS go to
//    columns 27 and 28.
//  - A start date that is not a date, a month that is not 1 to 12, a contract year or a
//    period length that falls outside the 101-entry year table: the rule stops there, so
//    the variables keep the first set and the row is left as it was.
void BONIFICACIONES(Tabla& BONIFI, std::string_view TRA4010, std::string_view TRA1710, VariablesCalculo& v,
                    TablaTrabajo& GRID1);

// LEEBONIFICA: the percentages of CODCONT for period 1, 2 or 3 (any other number is the
// first), with BONBR and BONCS, into the run variables only. A code of exactly three
// characters is sought as the number of its first character followed by the other two;
// any other code is sought trimmed. A missing row changes nothing.
void LEEBONIFICA(Tabla& BONIFI, VariablesCalculo& v, int periodo);


// The TRA39 rule, after BONIFICACIONES: a TRA39V key of 1 to 5 fixes the common
// percentage at 50 to 90 (BONMODO 1), 6 at 100 (BONMODO 2), any other key above 0 keeps
// it (BONMODO 1); every key above 0 caps the percentage at 100 and marks the row as a
// bonus of line 601. A key not above 0 leaves BONMODO 0 and changes nothing else.
void reglaTRA39(VariablesCalculo& v, TablaTrabajo& GRID1);

}  // namespace valdor
