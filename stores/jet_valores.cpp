#include "stores/jet_valores.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "stores/texto.h"

namespace valdor::jet {

std::uint32_t leU32(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::uint64_t leU64(const unsigned char* p) {
  return static_cast<std::uint64_t>(leU32(p)) | static_cast<std::uint64_t>(leU32(p + 4)) << 32;
}

namespace {

void anadeUtf8(std::string& r, char32_t c) {
  if (c < 0x80) {
    r += static_cast<char>(c);
  } else if (c < 0x800) {
    r += static_cast<char>(0xC0 | (c >> 6));
    r += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    r += static_cast<char>(0xE0 | (c >> 12));
    r += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    r += static_cast<char>(0xF0 | (c >> 18));
    r += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    r += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// UTF-16 units to UTF-8; a lone surrogate becomes U+FFFD (and '?' in the core's text).
std::string utf16AUtf8(const std::vector<char16_t>& u) {
  std::string r;
  r.reserve(u.size());
  for (std::size_t i = 0; i < u.size(); ++i) {
    const char32_t c = u[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < u.size() && u[i + 1] >= 0xDC00 && u[i + 1] <= 0xDFFF) {
      anadeUtf8(r, 0x10000 + ((c - 0xD800) << 10) + (u[i + 1] - 0xDC00));
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      anadeUtf8(r, 0xFFFD);
    } else {
      anadeUtf8(r, c);
    }
  }
  return r;
}

}  // namespace

std::string textoJet(bool jet4, const unsigned char* p, std::size_t n) {
  if (!jet4) return cp1252AUtf8(std::string_view(reinterpret_cast<const char*>(p), n));
  std::vector<char16_t> u;
  u.reserve(n);
  if (n >= 2 && p[0] == 0xFF && p[1] == 0xFE) {
    bool comprimido = true;
    for (std::size_t i = 2; i < n;) {
      if (p[i] == 0) {
        comprimido = !comprimido;
        ++i;
      } else if (comprimido) {
        u.push_back(p[i]);
        ++i;
      } else if (i + 1 < n) {
        u.push_back(static_cast<char16_t>(p[i] | p[i + 1] << 8));
        i += 2;
      } else {
        break;
      }
    }
  } else {
    for (std::size_t i = 0; i + 1 < n; i += 2) u.push_back(static_cast<char16_t>(p[i] | p[i + 1] << 8));
  }
  return utf16AUtf8(u);
}

std::optional<std::string> fechaJet(double valor) {
  if (!std::isfinite(valor) || valor < -657434.0 || valor >= 2958466.0) return std::nullopt;
  const double entero = std::trunc(valor);
  long long segundos = std::llround(std::fabs(valor - entero) * 86400.0);
  long long dias = static_cast<long long>(entero) - 25569;  // days from 01/01/1970
  if (segundos >= 86400) {
    segundos -= 86400;
    dias += valor < 0 ? -1 : 1;
  }
  // Civil date of a day number (proleptic Gregorian calendar).
  const long long z = dias + 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const long long doe = z - era * 146097;
  const long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const long long mp = (5 * doy + 2) / 153;
  const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  const int a = static_cast<int>(yoe + era * 400 + (m <= 2 ? 1 : 0));
  const int hora = static_cast<int>(segundos / 3600), minuto = static_cast<int>(segundos / 60 % 60),
            segundo = static_cast<int>(segundos % 60);
  char texto[64];
  if (segundos == 0)
    std::snprintf(texto, sizeof texto, "%04d-%02d-%02d", a, m, d);
  else
    std::snprintf(texto, sizeof texto, "%04d-%02d-%02d %02d:%02d:%02d", a, m, d, hora, minuto, segundo);
  return std::string(texto);
}

double decimalJet(const unsigned char* p, int escala) {
  unsigned __int128 v = 0;
  for (int palabra = 0; palabra < 4; ++palabra) v = v << 32 | leU32(p + 1 + 4 * palabra);
  // The digits from the last, the point after `escala` of them, then the sign; read
  // back as text, the nearest double to the decimal value.
  std::string alReves;
  const int cifrasDecimales = std::clamp(escala, 0, 38);
  for (int i = 0; v != 0 || i <= cifrasDecimales; ++i) {
    if (i == cifrasDecimales && i > 0) alReves += '.';
    alReves += static_cast<char>('0' + static_cast<int>(v % 10));
    v /= 10;
  }
  if (p[0] & 0x80) alReves += '-';
  const std::string texto(alReves.rbegin(), alReves.rend());
  return std::strtod(texto.c_str(), nullptr);
}

double monedaJet(const unsigned char* p) {
  // The division is correctly rounded: the nearest double to the amount, as its
  // decimal text would read.
  return static_cast<double>(static_cast<std::int64_t>(leU64(p))) / 10000.0;
}

double dobleJet(const unsigned char* p) {
  const std::uint64_t b = leU64(p);
  double v;
  std::memcpy(&v, &b, sizeof v);
  return v;
}

double simpleJet(const unsigned char* p) {
  const std::uint32_t b = leU32(p);
  float v;
  std::memcpy(&v, &b, sizeof v);
  return v;
}

}  // namespace valdor::jet
