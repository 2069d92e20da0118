#include "stores/numeros.h"

#include "stores/literales.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <stdexcept>
#include <system_error>

#include "stores/texto.h"

namespace valdor {

namespace {

// ---- Small helpers -----------------------------------------------------------------

bool esCifra(char c) { return c >= '0' && c <= '9'; }

// A zero of either sign becomes +0, so that no "-0" can reach a text or a field.
double sinCeroNegativo(double valor) { return valor == 0.0 ? 0.0 : valor; }

std::string textoEntero(long long valor) {
  std::array<char, 24> buf{};
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), valor).ptr};
}

// Locale-free reading of a plain decimal text "digits[.digits][e[-]digits]".
std::optional<double> leeDecimal(const std::string& texto) {
  double valor = 0.0;
  const auto [fin, error] = std::from_chars(texto.data(), texto.data() + texto.size(), valor);
  if (error != std::errc{} || fin != texto.data() + texto.size()) return std::nullopt;
  return valor;
}

// The first 15 significant digits of a finite, non-zero magnitude and the decimal
// exponent of the first one: 1234.5 is {"123450000000000", 3}.
struct Cifras15 {
  std::string cifras;
  int exponente = 0;
};

Cifras15 cifras15(double magnitud) {
  std::array<char, 32> buf{};
  const auto fin = std::to_chars(buf.data(), buf.data() + buf.size(), magnitud,
                                 std::chars_format::scientific, 14)
                       .ptr;
  const std::string_view texto(buf.data(), static_cast<std::size_t>(fin - buf.data()));
  const auto e = texto.find('e');
  Cifras15 resultado;
  resultado.cifras.push_back(texto[0]);
  resultado.cifras.append(texto.substr(2, e - 2));
  const auto potencia = texto.substr(e + 1);
  const std::size_t salto = potencia[0] == '+' ? 1 : 0;
  std::from_chars(potencia.data() + salto, potencia.data() + potencia.size(),
                  resultado.exponente);
  return resultado;
}

// ---- Format pictures -------------------------------------------------------------

// A magnitude cut to a fixed number of decimals: the whole digits without leading
// zeros ("" for a zero whole part) and exactly as many decimal digits as asked.
struct Decimal {
  std::string entero;
  std::string fraccion;
  bool esCero() const {
    return entero.empty() && fraccion.find_first_not_of('0') == std::string::npos;
  }
};

// Adds one unit in the last place of a digit text; true when a carry falls out.
bool incrementa(std::string& cifras) {
  for (auto it = cifras.rbegin(); it != cifras.rend(); ++it) {
    if (*it != '9') {
      ++*it;
      return false;
    }
    *it = '0';
  }
  return true;
}

// The magnitude taken to 15 significant digits, then those digits cut to `decimales`
// places with ties away from zero. Rounding the decimal text, not the double, makes a
// value held a little under a half (2.675, 1.005) round up as its written form says.
Decimal redondeaTexto(double magnitud, std::size_t decimales) {
  std::string entero;
  std::string fraccion;
  if (magnitud != 0.0) {
    const auto [cifras, exponente] = cifras15(magnitud);
    if (exponente >= 0) {
      const auto enteras = static_cast<std::size_t>(exponente) + 1;
      entero = cifras.substr(0, enteras);
      if (entero.size() < enteras) entero.append(enteras - entero.size(), '0');
      if (enteras < cifras.size()) fraccion = cifras.substr(enteras);
    } else {
      fraccion = std::string(static_cast<std::size_t>(-exponente - 1), '0') + cifras;
    }
  }
  const bool subir = fraccion.size() > decimales && fraccion[decimales] >= '5';
  fraccion.resize(decimales, '0');
  std::string todo = entero + fraccion;
  if (subir && incrementa(todo)) todo.insert(todo.begin(), '1');
  Decimal resultado;
  resultado.entero = todo.substr(0, todo.size() - decimales);
  resultado.fraccion = todo.substr(todo.size() - decimales);
  resultado.entero.erase(0, resultado.entero.find_first_not_of('0'));
  return resultado;
}

bool esMarcador(char c) { return c == '#' || c == '0'; }

std::size_t cuentaMarcadores(std::string_view picture) {
  return static_cast<std::size_t>(std::count_if(picture.begin(), picture.end(), esMarcador));
}

// The whole part of the picture: the digits fill the placeholders from the right, the
// leftmost placeholder takes every digit left over, '0' placeholders force a digit,
// the sign stands before the first digit and a comma anywhere asks for a thousands
// mark every three digits. Other characters are written where they stand.
std::string parteEntera(std::string_view picture, std::string cifras, bool negativo,
                        Separadores sep) {
  const auto primero = picture.find_first_of("#0");
  const auto primerCero = picture.find('0');
  const std::size_t forzadas =
      primerCero == std::string_view::npos ? 0 : cuentaMarcadores(picture.substr(primerCero));
  if (cifras.size() < forzadas) cifras.insert(0, forzadas - cifras.size(), '0');
  const bool agrupa = picture.find(',') != std::string_view::npos;

  // Built from right to left, then turned round.
  std::string salida;
  std::size_t usadas = 0;  // digits already written, counted from the right
  auto escribeCifra = [&] {
    if (agrupa && usadas > 0 && usadas % 3 == 0) salida.push_back(sep.miles);
    salida.push_back(cifras[cifras.size() - 1 - usadas]);
    ++usadas;
  };
  auto escribeResto = [&] {
    while (usadas < cifras.size()) escribeCifra();
    if (negativo) salida.push_back('-');
  };
  if (primero == std::string_view::npos) escribeResto();
  for (std::size_t i = picture.size(); i-- > 0;) {
    const char c = picture[i];
    if (i == primero) {
      escribeResto();
    } else if (esMarcador(c)) {
      if (usadas < cifras.size()) escribeCifra();
    } else if (c != ',') {
      salida.push_back(c);
    }
  }
  return {salida.rbegin(), salida.rend()};
}

// The decimal part of the picture (after its point): placeholders take the decimal
// digits in order; the trailing zeros that fall on '#' placeholders are left out.
std::string parteDecimal(std::string_view picture, std::string_view cifras) {
  std::size_t ultima = 0;  // digits to write: up to the last non-zero or forced one
  std::size_t n = 0;
  for (char c : picture) {
    if (!esMarcador(c)) continue;
    if (c == '0' || cifras[n] != '0') ultima = n + 1;
    ++n;
  }
  std::string salida;
  n = 0;
  for (char c : picture) {
    if (!esMarcador(c)) {
      salida.push_back(c);
    } else if (n < ultima) {
      salida.push_back(cifras[n++]);
    }
  }
  return salida;
}

// ---- Reading text the way Val does -------------------------------------------------

bool esBlancoInicial(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool esBlancoInterior(char c) { return c == ' ' || c == '\t'; }

int valorCifra(char c, int base) {
  int v = -1;
  if (esCifra(c)) v = c - '0';
  if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
  return v < base ? v : -1;
}

// "&H" and "&O" numbers: a value that fits 16 bits is an Integer and one that fits 32
// bits a Long, so that the high bit gives a negative value (&HFFFF is -1).
double valorEnBase(std::string_view texto, int base) {
  std::uint64_t valor = 0;
  for (char c : texto) {
    if (esBlancoInterior(c)) continue;
    const int cifra = valorCifra(c, base);
    if (cifra < 0 || valor > 0xFFFFFFFFu) break;
    valor = valor * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(cifra);
  }
  if (valor <= 0xFFFFu) return static_cast<std::int16_t>(valor);
  if (valor <= 0xFFFFFFFFu) return static_cast<std::int32_t>(valor);
  return static_cast<double>(valor);
}

// The decimal number at the start of `texto`, blanks and tabs inside ignored, as a
// plain text for from_chars: sign, digits, one point, an exponent E or D.
// The value of the texts that the stores and the rate file hold almost always: an
// optional minus, digits with at most one point, and nothing after but blanks. The
// general reading gives these the same value; std::nullopt for any other text.
std::optional<double> valorDecimalSimple(std::string_view texto) {
  std::size_t i = !texto.empty() && texto[0] == '-' ? 1 : 0;
  bool cifras = false, punto = false;
  for (; i < texto.size(); ++i) {
    if (esCifra(texto[i])) {
      cifras = true;
    } else if (texto[i] == '.' && !punto) {
      punto = true;
    } else {
      break;
    }
  }
  const std::size_t fin = i;
  for (; i < texto.size(); ++i)
    if (!esBlancoInterior(texto[i])) return std::nullopt;
  if (!cifras) return std::nullopt;
  double valor = 0.0;
  const auto [hasta, error] = std::from_chars(texto.data(), texto.data() + fin, valor);
  if (error != std::errc{} || hasta != texto.data() + fin) return std::nullopt;
  return valor;
}

std::string prefijoDecimal(std::string_view texto) {
  std::string numero;
  std::string exponente;
  bool punto = false;
  bool enExponente = false;
  for (char c : texto) {
    if (esBlancoInterior(c)) continue;
    if (enExponente) {
      if (esCifra(c) || ((c == '+' || c == '-') && exponente.empty())) {
        exponente.push_back(c);
        continue;
      }
      break;
    }
    if (esCifra(c)) {
      numero.push_back(c);
    } else if (c == '.' && !punto) {
      punto = true;
      numero.push_back(c);
    } else if ((c == '+' || c == '-') && numero.empty()) {
      numero.push_back(c);
    } else if (c == 'E' || c == 'e' || c == 'D' || c == 'd') {
      enExponente = true;
    } else {
      break;
    }
  }
  if (!exponente.empty() && esCifra(exponente.back())) numero += 'e' + exponente;
  if (!numero.empty() && numero[0] == '+') numero.erase(0, 1);
  return numero;
}

// The exponent after an E, to the end of the text: an optional sign and at least one
// digit. Appended to `numero` in the form from_chars reads; false if malformed.
bool anadeExponente(std::string_view texto, std::string& numero) {
  std::string exponente = "e";
  if (!texto.empty() && (texto[0] == '+' || texto[0] == '-')) {
    if (texto[0] == '-') exponente.push_back('-');
    texto.remove_prefix(1);
  }
  if (texto.empty() || !std::all_of(texto.begin(), texto.end(), esCifra)) return false;
  numero += exponente;
  numero += texto;
  return true;
}

}  // namespace

// ---- Separators --------------------------------------------------------------------

Separadores separadoresDelSistema() {
  Separadores sep;
  try {
    const std::locale usuario("");
    const auto& np = std::use_facet<std::numpunct<char>>(usuario);
    sep.decimal = np.decimal_point();
    sep.miles = np.thousands_sep();
  } catch (const std::exception&) {
    return Separadores{};
  }
  const bool imprimible = sep.miles >= ' ' && sep.miles <= '~';
  if (sep.miles == sep.decimal || !imprimible) sep.miles = sep.decimal == ',' ? '.' : ',';
  return sep;
}

// ---- Reading numbers ---------------------------------------------------------------

double valorNumerico(std::string_view texto) {
  const auto inicio = std::find_if_not(texto.begin(), texto.end(), esBlancoInicial);
  if (const auto simple = valorDecimalSimple(texto.substr(static_cast<std::size_t>(inicio - texto.begin()))))
    return sinCeroNegativo(*simple);
  return valorNumericoGeneral(texto);
}

double valorNumericoGeneral(std::string_view texto) {
  const auto inicio = std::find_if_not(texto.begin(), texto.end(), esBlancoInicial);
  texto.remove_prefix(static_cast<std::size_t>(inicio - texto.begin()));
  if (texto.size() >= 2 && texto[0] == '&') {
    if (texto[1] == 'H' || texto[1] == 'h') return valorEnBase(texto.substr(2), 16);
    if (texto[1] == 'O' || texto[1] == 'o') return valorEnBase(texto.substr(2), 8);
  }
  const std::string numero = prefijoDecimal(texto);
  if (numero.find_first_of("0123456789") == std::string::npos) return 0.0;
  // A value beyond the range of a double is an overflow for the run-time; it reads 0.
  return sinCeroNegativo(leeDecimal(numero).value_or(0.0));
}

std::optional<double> convierteNumero(std::string_view texto, Separadores sep) {
  const std::string limpio = recorta(texto);
  std::string numero;
  std::size_t i = 0;
  if (i < limpio.size() && (limpio[i] == '+' || limpio[i] == '-')) {
    if (limpio[i] == '-') numero.push_back('-');
    ++i;
  }
  bool hayCifras = false;
  for (; i < limpio.size() && limpio[i] != sep.decimal; ++i) {
    if (esCifra(limpio[i])) {
      numero.push_back(limpio[i]);
      hayCifras = true;
    } else if (limpio[i] != sep.miles) {
      break;
    }
  }
  if (i < limpio.size() && limpio[i] == sep.decimal) {
    numero.push_back('.');
    for (++i; i < limpio.size() && esCifra(limpio[i]); ++i) {
      numero.push_back(limpio[i]);
      hayCifras = true;
    }
  }
  if (!hayCifras) return std::nullopt;
  if (i < limpio.size() && (limpio[i] == 'E' || limpio[i] == 'e')) {
    if (!anadeExponente(std::string_view(limpio).substr(i + 1), numero)) return std::nullopt;
    i = limpio.size();
  }
  if (i != limpio.size()) return std::nullopt;
  const auto valor = leeDecimal(numero);
  if (!valor) return std::nullopt;
  return sinCeroNegativo(*valor);
}

// ---- Whole numbers -----------------------------------------------------------------

double redondeoPar(double valor) {
  if (!std::isfinite(valor)) return valor;
  const double suelo = std::floor(valor);
  const double resto = valor - suelo;  // exact for every double
  double entero = suelo + 1.0;
  if (resto < 0.5 || (resto == 0.5 && std::fmod(suelo, 2.0) == 0.0)) entero = suelo;
  return sinCeroNegativo(entero);
}

std::optional<std::int32_t> aEnteroLargo(double valor) {
  const double entero = redondeoPar(valor);
  if (!(entero >= -2147483648.0 && entero <= 2147483647.0)) return std::nullopt;
  return static_cast<std::int32_t>(entero);
}

// ---- Writing numbers ---------------------------------------------------------------

namespace {
// The general text of the amounts that the statement works with: a value that is the
// double nearest to a whole number of cents below 10^13 has at most 15 significant
// digits, so its 15-digit rounding is that number of cents, written here without the
// digit text of the general path. std::nullopt for any other value.
std::optional<std::string> textoDeCentimos(double valor) {
  const double x = std::fabs(valor);
  if (!(x >= 0.01 && x < 1e13)) return std::nullopt;  // also 0, infinities and NaN
  const double centimos = std::round(x * 100);
  if (centimos / 100 != x) return std::nullopt;
  const auto n = static_cast<std::uint64_t>(centimos);
  std::array<char, 24> buf{};
  char* p = buf.data();
  if (valor < 0) *p++ = '-';
  p = std::to_chars(p, buf.data() + buf.size(), n / 100).ptr;
  if (const auto resto = static_cast<unsigned>(n % 100); resto != 0) {
    *p++ = '.';
    *p++ = static_cast<char>('0' + resto / 10);
    if (resto % 10 != 0) *p++ = static_cast<char>('0' + resto % 10);
  }
  return std::string(buf.data(), p);
}
}  // namespace

std::string textoGeneral(double valor) {
  if (auto enCentimos = textoDeCentimos(valor)) return *std::move(enCentimos);
  return textoGeneralPorCifras(valor);
}

std::string textoGeneralPorCifras(double valor) {
  if (valor == 0.0) return "0";
  if (!std::isfinite(valor)) {
    std::array<char, 8> buf{};
    return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), valor).ptr};
  }
  auto [cifras, exponente] = cifras15(std::fabs(valor));
  cifras.erase(cifras.find_last_not_of('0') + 1);
  std::string texto = valor < 0 ? "-" : "";
  if (exponente >= 15 || exponente < -4) {
    texto += cifras[0];
    if (cifras.size() > 1) texto += '.' + cifras.substr(1);
    const int magnitud = exponente < 0 ? -exponente : exponente;
    texto += exponente < 0 ? "E-" : "E+";
    if (magnitud < 10) texto += '0';
    texto += textoEntero(magnitud);
  } else if (exponente < 0) {
    texto += "0." + std::string(static_cast<std::size_t>(-exponente - 1), '0') + cifras;
  } else {
    const auto enteras = static_cast<std::size_t>(exponente) + 1;
    if (cifras.size() <= enteras) {
      texto += cifras + std::string(enteras - cifras.size(), '0');
    } else {
      texto += cifras.substr(0, enteras) + '.' + cifras.substr(enteras);
    }
  }
  return texto;
}

std::string formatea(double valor, std::string_view picture, Separadores sep) {
  if (!std::isfinite(valor)) return textoGeneral(valor);
  const auto punto = picture.find('.');
  const auto entera = picture.substr(0, punto);
  const auto decimal = punto == std::string_view::npos ? std::string_view{}
                                                       : picture.substr(punto + 1);
  const Decimal d = redondeaTexto(std::fabs(valor), cuentaMarcadores(decimal));
  const bool negativo = valor < 0 && !d.esCero();
  std::string texto = parteEntera(entera, d.entero, negativo, sep);
  if (punto != std::string_view::npos) texto += sep.decimal + parteDecimal(decimal, d.fraccion);
  return texto;
}

std::string formateaTexto(std::string_view valor, std::string_view picture, Separadores sep) {
  const auto numero = convierteNumero(valor, sep);
  return numero ? formatea(*numero, picture, sep) : std::string(valor);
}

// ---- The system's helpers ---------------------------------------------------------

double REDONDEA2(double valor) {
  if (!std::isfinite(valor)) return valor;
  // Below 1e9 the 15 significant digits reach well past the cents, so away from a tie
  // the rounding of the digit text and the rounding of the binary value agree, and the
  // cents divided by 100 are the double nearest to the decimal figure, as its text
  // would read back. Near a tie, and for larger values, the digit text decides.
  const double x = std::fabs(valor);
  if (x < 1e9) {
    const double centesimas = x * 100;
    const double fraccion = centesimas - std::floor(centesimas);
    if (std::fabs(fraccion - 0.5) > 1e-4) {
      const double n = std::floor(centesimas + 0.5);
      if (n == 0) return 0.0;
      return (valor < 0 ? -n : n) / 100;
    }
  }
  // The text of a finite value always reads back under the same separators.
  return convierteNumero(formatea(valor, "##,##.00")).value_or(0.0);
}

double REDONDEA2(std::string_view valor) { return REDONDEA2(valorNumerico(valor)); }

double REDONDEA2R(double valor) { return REDONDEA2(valor); }

std::optional<std::string> CAMPONUM(std::string_view valor, int ancho, std::string_view relleno,
                                    bool decimales) {
  if (ancho < 0 || relleno.empty()) return std::nullopt;
  const auto numero = convierteNumero(valor);
  if (!numero || !std::isfinite(*numero)) return std::nullopt;
  std::string texto;
  if (decimales) {
    const double centimos = REDONDEA2(*numero) * 100.0;
    if (!std::isfinite(centimos)) return std::nullopt;
    texto = recorta(textoGeneral(centimos));
  } else {
    const auto entero = aEnteroLargo(*numero);
    if (!entero) return std::nullopt;
    texto = textoEntero(*entero);
  }
  return campoIzq(texto, static_cast<std::size_t>(ancho), relleno[0]);
}

std::string campoDeLinea(std::string_view que, std::string_view valor, int ancho, std::string_view relleno,
                         bool decimales) {
  if (auto campo = CAMPONUM(valor, ancho, relleno, decimales)) return *std::move(campo);
  throw ErrorCampo("El valor \"" + std::string(valor) + "\" de " + std::string(que) +
                   std::string(" no cabe en su campo de "_cp) + std::to_string(ancho) +
                   (decimales ? std::string(" cifras (en céntimos)"_cp) : std::string(" cifras")) +
                   std::string(" o no es un número válido."_cp));
}

std::string campoDeLinea(std::string_view que, double valor, int ancho, std::string_view relleno, bool decimales) {
  return campoDeLinea(que, textoGeneral(valor), ancho, relleno, decimales);
}

namespace {

// A byte map that leaves every byte as it is but the pairs {from, to} of `cambios`.
template <std::size_t N>
constexpr std::array<unsigned char, 256> tablaDeBytes(const std::array<std::array<unsigned char, 2>, N>& cambios) {
  std::array<unsigned char, 256> tabla{};
  for (std::size_t i = 0; i < tabla.size(); ++i) tabla[i] = static_cast<unsigned char>(i);
  for (const auto& [origen, destino] : cambios) tabla[origen] = destino;
  return tabla;
}

// The DOS code page bytes of the Spanish letters in the exchange files.
constexpr auto kAcentos = tablaDeBytes<20>({{
    {170, 166}, {186, 167}, {193, 143}, {201, 144}, {205, 161},  // ª º Á É Í
    {209, 165}, {211, 162}, {218, 163}, {250, 163}, {224, 133},  // Ñ Ó Ú ú à
    {225, 160}, {232, 138}, {233, 130}, {236, 141}, {237, 161},  // á è é ì í
    {241, 164}, {242, 164}, {243, 162}, {249, 151}, {252, 129},  // ñ ò ó ù ü
}});

// The letter that each byte of the accent table stands for.
constexpr auto kLetras = tablaDeBytes<16>({{
    {160, 225}, {130, 233}, {161, 237}, {162, 243}, {163, 250}, {164, 241},  // á é í ó ú ñ
    {165, 209}, {143, 193}, {144, 201}, {166, 170}, {167, 186}, {133, 224},  // Ñ Á É ª º à
    {138, 232}, {141, 236}, {151, 249}, {129, 252},                          // è ì ù ü
}});

// Each byte of `texto` through `tabla`.
std::string porTabla(std::string_view texto, const std::array<unsigned char, 256>& tabla) {
  std::string salida;
  salida.reserve(texto.size());
  for (char c : texto) salida.push_back(static_cast<char>(tabla[static_cast<unsigned char>(c)]));
  return salida;
}

}  // namespace

std::string QUITAACENTOS(std::string_view TEXTOORIGEN) { return porTabla(TEXTOORIGEN, kAcentos); }

std::string PONACENTOS(std::string_view dos) { return porTabla(dos, kLetras); }

void QUITAACENTOS(std::string_view TEXTOORIGEN, std::string& TEXTOPLANO) {
  if (TEXTOORIGEN.empty()) return;
  TEXTOPLANO = QUITAACENTOS(TEXTOORIGEN);
}

}  // namespace valdor
