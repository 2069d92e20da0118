#include "stores/texto.h"

#include <algorithm>
#include <array>

namespace valdor {

namespace {

// Code points of the bytes 0x80-0x9F. The five bytes that Windows-1252 leaves undefined
// keep their own value, as Windows maps them, so that they survive a round trip.
constexpr std::array<char32_t, 32> kC1 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 0x80-0x87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 0x88-0x8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90-0x97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 0x98-0x9F
};

constexpr char kSustituto = '?';

// The Windows-1252 byte of a code point, if it has one.
std::optional<unsigned char> byteCp1252(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<unsigned char>(cp);
  const auto* it = std::find(kC1.begin(), kC1.end(), cp);
  if (it == kC1.end()) return std::nullopt;
  return static_cast<unsigned char>(0x80 + (it - kC1.begin()));
}

void anadeUtf8(std::string& salida, char32_t cp) {
  auto byte = [&salida](char32_t b) { salida.push_back(static_cast<char>(b)); };
  if (cp < 0x80) {
    byte(cp);
  } else if (cp < 0x800) {
    byte(0xC0 | (cp >> 6));
    byte(0x80 | (cp & 0x3F));
  } else {  // every Windows-1252 character lies in the basic plane
    byte(0xE0 | (cp >> 12));
    byte(0x80 | ((cp >> 6) & 0x3F));
    byte(0x80 | (cp & 0x3F));
  }
}

bool esContinuacion(unsigned char b) { return (b & 0xC0) == 0x80; }

// Reads one well-formed UTF-8 character at `pos` and moves past it. On a malformed
// sequence only the first byte is consumed and std::nullopt comes back, so each bad
// byte is reported on its own. The ranges of the second byte rule out overlong forms,
// surrogates and values above U+10FFFF.
std::optional<char32_t> leeUtf8(std::string_view texto, std::size_t& pos) {
  const auto b0 = static_cast<unsigned char>(texto[pos]);
  if (b0 < 0x80) {
    ++pos;
    return b0;
  }
  std::size_t largo = 0;
  unsigned char min2 = 0x80, max2 = 0xBF;
  char32_t cp = 0;
  if (b0 >= 0xC2 && b0 <= 0xDF) {
    largo = 2;
    cp = b0 & 0x1F;
  } else if (b0 >= 0xE0 && b0 <= 0xEF) {
    largo = 3;
    cp = b0 & 0x0F;
    if (b0 == 0xE0) min2 = 0xA0;
    if (b0 == 0xED) max2 = 0x9F;
  } else if (b0 >= 0xF0 && b0 <= 0xF4) {
    largo = 4;
    cp = b0 & 0x07;
    if (b0 == 0xF0) min2 = 0x90;
    if (b0 == 0xF4) max2 = 0x8F;
  } else {
    ++pos;
    return std::nullopt;
  }
  if (pos + largo > texto.size()) {
    ++pos;
    return std::nullopt;
  }
  const auto b1 = static_cast<unsigned char>(texto[pos + 1]);
  if (b1 < min2 || b1 > max2) {
    ++pos;
    return std::nullopt;
  }
  for (std::size_t i = 1; i < largo; ++i) {
    const auto b = static_cast<unsigned char>(texto[pos + i]);
    if (!esContinuacion(b)) {
      ++pos;
      return std::nullopt;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  pos += largo;
  return cp;
}

char mayuscula(char c) {
  const auto b = static_cast<unsigned char>(c);
  if (b >= 'a' && b <= 'z') return static_cast<char>(b - 0x20);
  if (b >= 0xE0 && b <= 0xFE && b != 0xF7) return static_cast<char>(b - 0x20);
  switch (b) {
    case 0x9A: return static_cast<char>(0x8A);  // š
    case 0x9C: return static_cast<char>(0x8C);  // œ
    case 0x9E: return static_cast<char>(0x8E);  // ž
    case 0xFF: return static_cast<char>(0x9F);  // ÿ
    default: return c;
  }
}

}  // namespace

// ---- Windows-1252 <-> UTF-8 -------------------------------------------------------

char32_t puntoDeCodigo(unsigned char byte) {
  if (byte >= 0x80 && byte <= 0x9F) return kC1[byte - 0x80];
  return byte;
}

namespace {
// The length of the leading part of `texto` that is plain ASCII, the same bytes in
// Windows-1252 and in UTF-8: most of the text of the stores, copied as it stands.
std::size_t prefijoAscii(std::string_view texto) {
  std::size_t i = 0;
  while (i < texto.size() && static_cast<unsigned char>(texto[i]) < 0x80) ++i;
  return i;
}
}  // namespace

std::string cp1252AUtf8(std::string_view cp1252) {
  if (prefijoAscii(cp1252) == cp1252.size()) return std::string(cp1252);
  std::string salida;
  salida.reserve(cp1252.size());
  for (char c : cp1252) anadeUtf8(salida, puntoDeCodigo(static_cast<unsigned char>(c)));
  return salida;
}

std::string utf8ACp1252(std::string_view utf8, std::size_t* perdidos) {
  if (prefijoAscii(utf8) == utf8.size()) {
    if (perdidos != nullptr) *perdidos = 0;
    return std::string(utf8);
  }
  std::string salida;
  salida.reserve(utf8.size());
  std::size_t sustituidos = 0;
  for (std::size_t pos = 0; pos < utf8.size();) {
    const auto cp = leeUtf8(utf8, pos);
    const auto byte = cp ? byteCp1252(*cp) : std::nullopt;
    if (byte) {
      salida.push_back(static_cast<char>(*byte));
    } else {
      salida.push_back(kSustituto);
      ++sustituidos;
    }
  }
  if (perdidos != nullptr) *perdidos = sustituidos;
  return salida;
}

bool esRepresentableCp1252(std::string_view utf8) {
  for (std::size_t pos = 0; pos < utf8.size();) {
    const auto cp = leeUtf8(utf8, pos);
    if (!cp || !byteCp1252(*cp)) return false;
  }
  return true;
}

// ---- Case ---------------------------------------------------------------------------

std::string mayusculas(std::string_view texto) {
  std::string salida(texto);
  std::transform(salida.begin(), salida.end(), salida.begin(), mayuscula);
  return salida;
}

// ---- Trimming and cutting -----------------------------------------------------------

std::string recortaIzq(std::string_view texto) {
  const auto inicio = texto.find_first_not_of(' ');
  return inicio == std::string_view::npos ? std::string() : std::string(texto.substr(inicio));
}

std::string recortaDer(std::string_view texto) {
  const auto fin = texto.find_last_not_of(' ');
  return fin == std::string_view::npos ? std::string() : std::string(texto.substr(0, fin + 1));
}

std::string recorta(std::string_view texto) { return recortaIzq(recortaDer(texto)); }

std::string izquierda(std::string_view texto, std::size_t n) {
  return std::string(texto.substr(0, n));
}

std::string derecha(std::string_view texto, std::size_t n) {
  return std::string(texto.substr(texto.size() - std::min(n, texto.size())));
}

// A position 0, which the run-time refuses, is read as the first character.
std::string medio(std::string_view texto, std::size_t desde, std::size_t n) {
  const std::size_t inicio = desde == 0 ? 0 : desde - 1;
  if (inicio >= texto.size()) return {};
  return std::string(texto.substr(inicio, n));
}

std::size_t posicion(std::string_view texto, std::string_view buscado, std::size_t desde) {
  const std::size_t inicio = desde == 0 ? 0 : desde - 1;
  if (inicio > texto.size()) return 0;
  if (buscado.empty()) return inicio + 1;
  const auto hallado = texto.find(buscado, inicio);
  return hallado == std::string_view::npos ? 0 : hallado + 1;
}

// ---- Fixed-width fields -------------------------------------------------------------

std::optional<std::string> campoIzq(std::string_view texto, std::size_t ancho, char relleno) {
  if (texto.size() > ancho) return std::nullopt;
  return llenaIzq(texto, ancho, relleno);
}

std::optional<std::string> campoDer(std::string_view texto, std::size_t ancho, char relleno) {
  if (texto.size() > ancho) return std::nullopt;
  return llenaDer(texto, ancho, relleno);
}

std::string llenaIzq(std::string_view texto, std::size_t ancho, char relleno) {
  std::string salida(ancho - std::min(ancho, texto.size()), relleno);
  salida += texto;
  return salida;
}

std::string llenaDer(std::string_view texto, std::size_t ancho, char relleno) {
  std::string salida(texto);
  if (salida.size() < ancho) salida.append(ancho - salida.size(), relleno);
  return salida;
}

std::string ajusta(std::string_view texto, std::size_t ancho) {
  return llenaDer(texto.substr(0, ancho), ancho, ' ');
}

bool esControl(char c) {
  const auto b = static_cast<unsigned char>(c);
  return b < 0x20 || b == 0x7F;
}

std::string imprimible(std::string_view texto) {
  std::string r(texto);
  std::replace_if(r.begin(), r.end(), esControl, ' ');
  return r;
}

std::string mayusculasAscii(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return r;
}

}  // namespace valdor
