// Dates as the rules handle them: text "dd/mm/yyyy" in the columns and the working
// tables, "yyyymmdd" in the exchange lines, ISO "yyyy-mm-dd" inside the SQLite stores.
// The empty mask "__/__/____" means no date.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdor {

inline constexpr std::string_view MASCARAFECHA = "__/__/____";

struct Fecha {
  int dia = 0;
  int mes = 0;
  int ano = 0;
  friend bool operator==(const Fecha&, const Fecha&) = default;
};

// A calendar date that exists (leap years counted).
bool esFechaValida(const Fecha& f);

// "dd/mm/yyyy" (also "d/m/yyyy"); std::nullopt for anything else or an impossible date.
std::optional<Fecha> leeFechaDMA(std::string_view texto);
// "yyyy-mm-dd"; std::nullopt for anything else.
std::optional<Fecha> leeFechaISO(std::string_view texto);

std::string textoDMA(const Fecha& f);  // "dd/mm/yyyy", day and month with two digits
std::string textoISO(const Fecha& f);  // "yyyy-mm-dd"
std::string textoAMD(const Fecha& f);  // "yyyymmdd"

// Days of a month by the system's table: February has 28 days in every year.
int DIASMES(int mes);

// Number of month boundaries crossed from `desde` to `hasta`, whatever their days
// (DateDiff "m"): 31/01/2002 to 01/02/2002 is 1, negative when `hasta` is earlier.
int diferenciaMeses(const Fecha& desde, const Fecha& hasta);
// Calendar days from `desde` to `hasta` (DateDiff "d"), negative when earlier.
int diferenciaDias(const Fecha& desde, const Fecha& hasta);

// Conversions between the stores' ISO text and the rules' "dd/mm/yyyy". A text that is
// not a date in the expected form comes back unchanged, so nothing is lost.
std::string isoADMA(std::string_view iso);
std::string dmaAISO(std::string_view dma);

// "dd/mm/yyyy" written "yyyymmdd" by taking its characters by position (7 to 10, 4 and 5,
// 1 and 2), as the exchange lines do: whatever stands there is taken, and a short or
// empty text gives a short or empty result.
std::string amdPorPosiciones(std::string_view dma);

}  // namespace valdor
