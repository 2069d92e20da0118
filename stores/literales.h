// Spanish text in the source: "Módulo de afiliación"_cp is the Windows-1252 form of a
// UTF-8 literal, converted while compiling. A character with no Windows-1252 form is
// a compile error, so the system's texts can be written as they read.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace valdor {
namespace detalle {

template <std::size_t N>
struct LiteralUtf8 {
  char datos[N]{};
  consteval LiteralUtf8(const char (&s)[N]) {
    for (std::size_t i = 0; i < N; ++i) datos[i] = s[i];
  }
};

// The Windows-1252 byte of a code point of U+0080..U+017F and the typographic marks.
constexpr unsigned char byteCp1252(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<unsigned char>(c);
  constexpr char32_t tabla[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                  0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
  for (int i = 0; i < 32; ++i)
    if (tabla[i] == c) return static_cast<unsigned char>(0x80 + i);
  throw "car\xC3\xA1" "cter sin forma en Windows-1252";  // not a constant expression: compile error
}

template <LiteralUtf8 S>
struct EnCp1252 {
  static constexpr auto calcula() {
    std::array<char, sizeof(S.datos)> r{};
    std::size_t n = 0;
    for (std::size_t i = 0; i + 1 < sizeof(S.datos);) {
      const auto b = static_cast<unsigned char>(S.datos[i]);
      char32_t c = b;
      int extra = 0;
      if (b >= 0xF0) {
        c = b & 0x07;
        extra = 3;
      } else if (b >= 0xE0) {
        c = b & 0x0F;
        extra = 2;
      } else if (b >= 0xC0) {
        c = b & 0x1F;
        extra = 1;
      }
      for (int k = 1; k <= extra; ++k) c = (c << 6) | (static_cast<unsigned char>(S.datos[i + k]) & 0x3F);
      i += static_cast<std::size_t>(extra) + 1;
      r[n++] = static_cast<char>(byteCp1252(c));
    }
    return std::pair{r, n};
  }
  static constexpr auto resultado = calcula();
};

}  // namespace detalle

template <detalle::LiteralUtf8 S>
constexpr std::string_view operator""_cp() {
  return {detalle::EnCp1252<S>::resultado.first.data(), detalle::EnCp1252<S>::resultado.second};
}

}  // namespace valdor
