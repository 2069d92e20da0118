// The yearly rate file FICHEROTIPOS: a plain file of fixed records of 28 characters,
// four fields TIPCAMPO1 to TIPCAMPO4 of 7 characters of decimal text each (a point for
// the decimals). Record n stands at byte offset (n - 1) * 28; there is no header and no
// end mark. The statement run reads the rates of the year from it.
#pragma once

#include "stores/error.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

inline constexpr std::size_t LONGITUDREGISTROTIPOS = 28;
inline constexpr std::size_t ANCHOTIPCAMPO = 7;
// A new rate file has at least this many records, blank where nothing is written, so
// that every record the readers ask for exists.
inline constexpr std::size_t REGISTROSTIPOSMINIMOS = 32;

// A rate file that cannot be written, or a value that does not fit a field. The message
// is Windows-1252 text that names the file.
class ErrorFicheroTipos : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// The name of the rate file of a year: "N-SS", the year in four digits, the employer's
// code (trimmed; "" for the general file) and ".MDB". January to March 1997 take the
// prefix "N-SA": "N-SA1997.MDB", while April 1997 is "N-SS1997.MDB".
std::string nombreFicheroTipos(int ano, int mes, std::string_view codigo = "");

// Writes a rate file with `registros` as records 1, 2, ... in order. Each field is
// right-aligned in 7 characters with blanks (a blank text gives a blank field); a file
// of fewer than 32 records is filled with blank records up to 32. A field of more than 7
// characters, or one that is not decimal text with a point, is refused. The file is
// written beside its final name and put in place whole, so a failure (a full disk)
// leaves whatever stood under that name as it was.
void escribeFicheroTipos(const std::filesystem::path& ruta,
                         const std::vector<std::array<std::string, 4>>& registros);

}  // namespace valdor
