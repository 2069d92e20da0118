#include "shell/momento.h"

#include <charconv>
#include <ctime>

#include "stores/fechas.h"

namespace valdor {

Momento momentoActual() {
  const std::time_t t = std::time(nullptr);
  std::tm local{};
  localtime_r(&t, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

namespace {
bool numero(std::string_view s, int& n) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  const auto r = std::from_chars(s.data(), s.data() + s.size(), n);
  return r.ec == std::errc();
}
}  // namespace

std::optional<Momento> leeMomento(std::string_view texto) {
  // AAAA-MM-DD HH:MM[:SS]
  if (texto.size() != 16 && texto.size() != 19) return std::nullopt;
  if (texto[4] != '-' || texto[7] != '-' || texto[10] != ' ' || texto[13] != ':') return std::nullopt;
  Momento m;
  if (!numero(texto.substr(0, 4), m.ano) || !numero(texto.substr(5, 2), m.mes) ||
      !numero(texto.substr(8, 2), m.dia) || !numero(texto.substr(11, 2), m.hora) ||
      !numero(texto.substr(14, 2), m.minuto))
    return std::nullopt;
  if (texto.size() == 19 && (texto[16] != ':' || !numero(texto.substr(17, 2), m.segundo))) return std::nullopt;
  if (!esFechaValida({m.dia, m.mes, m.ano}) || m.hora > 23 || m.minuto > 59 || m.segundo > 59) return std::nullopt;
  return m;
}

void mesAnterior(const Momento& m, int& mes, int& ano) {
  mes = m.mes - 1;
  ano = m.ano;
  if (mes < 1) {
    mes = 12;
    --ano;
  }
}

}  // namespace valdor
