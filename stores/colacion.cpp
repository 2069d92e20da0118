#include "stores/colacion.h"

#include <sqlite3.h>

#include <cstdint>

namespace valdor {

namespace {

// Primary weights: blanks and punctuation by code point, then digits, then the letters
// of the Spanish alphabet in their traditional order.
constexpr std::uint32_t PESODIGITO = 0x200000;
constexpr std::uint32_t PESOLETRA = 0x300000;

// Position of each letter in A B C CH D E F G H I J K L LL M N Ñ O P Q R S T U V W X Y Z.
constexpr int letraBase(char mayuscula) {
  int i = mayuscula - 'A';       // 0..25
  int extra = 0;
  if (mayuscula > 'C') ++extra;  // CH
  if (mayuscula > 'L') ++extra;  // LL
  if (mayuscula > 'N') ++extra;  // Ñ
  return i + extra;
}
constexpr int LETRACH = letraBase('C') + 1;
constexpr int LETRALL = letraBase('L') + 1;
constexpr int LETRAENE = letraBase('N') + 1;

// The base letter (A-Z in upper case) of a Latin letter, '\0' if it is none; Ñ gives 'N'
// with `enie` set.
char baseLatina(char32_t c, bool& enie) {
  enie = false;
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c);
  if (c == 0xD1 || c == 0xF1) {
    enie = true;
    return 'N';
  }
  if (c >= 0xC0 && c <= 0xFF) {
    // À..ÿ: the base letter of each position, '\0' for × and ÷.
    using namespace std::literals;
    static constexpr std::string_view tabla =
        "AAAAAAACEEEEIIIIDNOOOOO\0OUUUUYTS"    // C0..DF
        "AAAAAAACEEEEIIIIDNOOOOO\0OUUUUYTY"sv;  // E0..FF
    return tabla[c - 0xC0];
  }
  switch (c) {
    case 0x160: case 0x161: return 'S';  // Š š
    case 0x17D: case 0x17E: return 'Z';  // Ž ž
    case 0x152: case 0x153: return 'O';  // Œ œ
    case 0x178: return 'Y';              // Ÿ
    default: return '\0';
  }
}

// Reads one code point of UTF-8; a malformed byte stands for itself.
char32_t leeCodigo(std::string_view s, std::size_t& i) {
  const auto b0 = static_cast<unsigned char>(s[i]);
  auto sigue = [&](std::size_t k) -> int {
    if (i + k >= s.size()) return -1;
    const auto b = static_cast<unsigned char>(s[i + k]);
    return (b & 0xC0) == 0x80 ? (b & 0x3F) : -1;
  };
  if (b0 < 0x80) {
    ++i;
    return b0;
  }
  int n = (b0 & 0xE0) == 0xC0 ? 1 : (b0 & 0xF0) == 0xE0 ? 2 : (b0 & 0xF8) == 0xF0 ? 3 : 0;
  char32_t c = n == 1 ? (b0 & 0x1F) : n == 2 ? (b0 & 0x0F) : (b0 & 0x07);
  for (int k = 1; k <= n; ++k) {
    const int r = sigue(k);
    if (r < 0) {
      n = 0;
      break;
    }
    c = (c << 6) | static_cast<char32_t>(r);
  }
  if (n == 0) {
    ++i;
    return b0;
  }
  i += static_cast<std::size_t>(n) + 1;
  return c;
}

// The next primary weight of a UTF-8 text, reading CH and LL as single letters.
std::uint32_t siguientePeso(std::string_view s, std::size_t& i) {
  const char32_t c = leeCodigo(s, i);
  if (c >= '0' && c <= '9') return PESODIGITO + static_cast<std::uint32_t>(c - '0');
  bool enie = false;
  const char base = baseLatina(c, enie);
  if (base == '\0') return static_cast<std::uint32_t>(c) + 1;
  if (enie) return PESOLETRA + LETRAENE;
  if ((base == 'C' || base == 'L') && i < s.size()) {
    const char siguiente = static_cast<char>(s[i] | 0x20);
    if ((base == 'C' && siguiente == 'h') || (base == 'L' && siguiente == 'l')) {
      ++i;
      return PESOLETRA + (base == 'C' ? LETRACH : LETRALL);
    }
  }
  return PESOLETRA + static_cast<std::uint32_t>(letraBase(base));
}

std::string_view sinBlancosFinales(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

int colacionEspanol(void*, int na, const void* a, int nb, const void* b) {
  return comparaEspanol({static_cast<const char*>(a), static_cast<std::size_t>(na)},
                        {static_cast<const char*>(b), static_cast<std::size_t>(nb)});
}

}  // namespace

namespace {

// The weights of the two texts from byte `desde` on, where both start a letter.
int comparaDesde(std::string_view a, std::string_view b, std::size_t desde) {
  std::size_t i = desde, j = desde;
  while (i < a.size() && j < b.size()) {
    const std::uint32_t pa = siguientePeso(a, i);
    const std::uint32_t pb = siguientePeso(b, j);
    if (pa != pb) return pa < pb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

// Whether byte `n` of a text starts a letter of the collation whatever follows: the byte
// before it is plain ASCII that does not begin a CH or an LL.
bool empiezaLetra(std::string_view s, std::size_t n) {
  if (n == 0) return true;
  const auto c = static_cast<unsigned char>(s[n - 1]);
  return c < 0x80 && c != 'C' && c != 'c' && c != 'L' && c != 'l';
}

}  // namespace

int comparaEspanol(std::string_view a, std::string_view b) {
  a = sinBlancosFinales(a);
  b = sinBlancosFinales(b);
  if (a == b) return 0;
  // The keys of the stores share long beginnings (a company's code, a worker's number):
  // the same bytes weigh the same, so the weighing starts where the texts part, taken
  // back to the start of a letter.
  std::size_t comun = 0;
  while (comun < a.size() && comun < b.size() && a[comun] == b[comun]) ++comun;
  while (!empiezaLetra(a, comun)) --comun;
  return comparaDesde(a, b, comun);
}

int comparaEspanolPorPesos(std::string_view a, std::string_view b) {
  return comparaDesde(sinBlancosFinales(a), sinBlancosFinales(b), 0);
}

int registraColacionEspanol(sqlite3* db) {
  return sqlite3_create_collation_v2(db, "ESPANOL", SQLITE_UTF8, nullptr, colacionEspanol, nullptr);
}

}  // namespace valdor
