// The project's own collation ESPANOL: Spanish traditional order, blind to case,
// accents and trailing blanks, with CH after C, LL after L and Ñ after N; blanks and
// punctuation before digits, digits before letters. Every connection of the program
// registers it, and the indices of the stores the program creates are declared with it.
// Another SQLite client that writes into those stores registers it too, through the
// loadable extension built beside the program (stores/extension/extension_espanol.cpp).
#pragma once

#include <string_view>

struct sqlite3;

namespace valdor {

// Compares two UTF-8 texts: negative, zero or positive as strcmp.
int comparaEspanol(std::string_view a, std::string_view b);
// The same comparison weighing both texts from their first letter; `comparaEspanol`
// skips the bytes the two share first, and the two must always agree.
int comparaEspanolPorPesos(std::string_view a, std::string_view b);

// Registers the collation on a connection; returns SQLite's result code.
int registraColacionEspanol(sqlite3* db);

}  // namespace valdor
