// The moment of a run: the date and time of preparation, the default file name and
// the trailer's date come from it. The command line can fix it, so that a run can be
// repeated byte for byte.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdor {

struct Momento {
  int ano = 0;
  int mes = 0;
  int dia = 0;
  int hora = 0;
  int minuto = 0;
  int segundo = 0;
  friend bool operator==(const Momento&, const Momento&) = default;
};

// The local date and time of the machine.
Momento momentoActual();

// "AAAA-MM-DD HH:MM" (seconds ":SS" optional); std::nullopt when it is not a real
// moment.
std::optional<Momento> leeMomento(std::string_view texto);

// The month before the moment's: in January, December of the year before.
void mesAnterior(const Momento& m, int& mes, int& ano);

}  // namespace valdor
