#include "stores/fechas.h"

#include <array>
#include <charconv>
#include <chrono>

#include "stores/texto.h"

namespace valdor {

namespace {

namespace cr = std::chrono;

// Years written with four digits, as every date text of the system carries them.
constexpr int kPrimerAno = 1;
constexpr int kUltimoAno = 9999;

cr::year_month_day comoCalendario(const Fecha& f) {
  return cr::year{f.ano} / cr::month{static_cast<unsigned>(f.mes)} /
         cr::day{static_cast<unsigned>(f.dia)};
}

// The whole number written by the digits of `texto`, which must be all digits and
// between `minimo` and `maximo` of them.
std::optional<int> leeCifras(std::string_view texto, std::size_t minimo, std::size_t maximo) {
  if (texto.size() < minimo || texto.size() > maximo) return std::nullopt;
  for (char c : texto) {
    if (c < '0' || c > '9') return std::nullopt;
  }
  int valor = 0;
  std::from_chars(texto.data(), texto.data() + texto.size(), valor);
  return valor;
}

std::string conCeros(int valor, std::size_t cifras) {
  std::array<char, 16> buf{};
  const auto fin = std::to_chars(buf.data(), buf.data() + buf.size(), valor).ptr;
  std::string texto(buf.data(), fin);
  if (texto.size() < cifras) texto.insert(0, cifras - texto.size(), '0');
  return texto;
}

std::optional<Fecha> fechaValida(std::optional<int> dia, std::optional<int> mes,
                                 std::optional<int> ano) {
  if (!dia || !mes || !ano) return std::nullopt;
  const Fecha f{*dia, *mes, *ano};
  if (!esFechaValida(f)) return std::nullopt;
  return f;
}

}  // namespace

bool esFechaValida(const Fecha& f) {
  if (f.ano < kPrimerAno || f.ano > kUltimoAno) return false;
  if (f.mes < 1 || f.mes > 12 || f.dia < 1 || f.dia > 31) return false;
  return comoCalendario(f).ok();
}

std::optional<Fecha> leeFechaDMA(std::string_view texto) {
  const auto barra1 = texto.find('/');
  if (barra1 == std::string_view::npos) return std::nullopt;
  const auto barra2 = texto.find('/', barra1 + 1);
  if (barra2 == std::string_view::npos) return std::nullopt;
  return fechaValida(leeCifras(texto.substr(0, barra1), 1, 2),
                     leeCifras(texto.substr(barra1 + 1, barra2 - barra1 - 1), 1, 2),
                     leeCifras(texto.substr(barra2 + 1), 4, 4));
}

std::optional<Fecha> leeFechaISO(std::string_view texto) {
  if (texto.size() != 10 || texto[4] != '-' || texto[7] != '-') return std::nullopt;
  return fechaValida(leeCifras(texto.substr(8, 2), 2, 2), leeCifras(texto.substr(5, 2), 2, 2),
                     leeCifras(texto.substr(0, 4), 4, 4));
}

std::string textoDMA(const Fecha& f) {
  return conCeros(f.dia, 2) + '/' + conCeros(f.mes, 2) + '/' + conCeros(f.ano, 4);
}

std::string textoISO(const Fecha& f) {
  return conCeros(f.ano, 4) + '-' + conCeros(f.mes, 2) + '-' + conCeros(f.dia, 2);
}

std::string textoAMD(const Fecha& f) {
  return conCeros(f.ano, 4) + conCeros(f.mes, 2) + conCeros(f.dia, 2);
}

int DIASMES(int mes) {
  constexpr std::array<int, 12> kDias = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (mes < 1 || mes > 12) return 0;
  return kDias[static_cast<std::size_t>(mes - 1)];
}

int diferenciaMeses(const Fecha& desde, const Fecha& hasta) {
  return (hasta.ano * 12 + hasta.mes) - (desde.ano * 12 + desde.mes);
}

int diferenciaDias(const Fecha& desde, const Fecha& hasta) {
  const cr::sys_days inicio{comoCalendario(desde)};
  const cr::sys_days fin{comoCalendario(hasta)};
  return static_cast<int>((fin - inicio).count());
}

std::string isoADMA(std::string_view iso) {
  const auto f = leeFechaISO(iso);
  return f ? textoDMA(*f) : std::string(iso);
}

std::string dmaAISO(std::string_view dma) {
  const auto f = leeFechaDMA(dma);
  return f ? textoISO(*f) : std::string(dma);
}

std::string amdPorPosiciones(std::string_view dma) { return medio(dma, 7, 4) + medio(dma, 4, 2) + medio(dma, 1, 2); }

}  // namespace valdor
