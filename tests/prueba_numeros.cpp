#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <locale>
#include <optional>
#include <string>
#include <tuple>

#include "stores/numeros.h"

namespace valdor {
namespace {

constexpr Separadores kComa{',', '.'};

// A fixed sequence of doubles in [0, 1), the same on every run.
struct Aleatorio {
  explicit Aleatorio(std::uint64_t semilla) : semilla_(semilla) {}
  double operator()() {
    semilla_ = semilla_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(semilla_ >> 11) / 9007199254740992.0;
  }
  std::uint64_t semilla_;
};

TEST(Formatea, RedondeoMarcadoresGruposYSeparadores) {
  const std::tuple<double, const char*, const char*> casos[] = {
      // 2.675 and 1.005 are held a little under the half; the written digits decide.
      {2.675, "##,##.00", "2.68"}, {-2.675, "##,##.00", "-2.68"},
      // Exact binary ties go away from zero, never to the even digit.
      {0.125, "##.00", ".13"}, {2.5, "#####", "3"}, {-2.5, "#####", "-3"},
      // A carry that reaches a new thousands group; a negative zero has no sign.
      {999.995, "##,##.00", "1,000.00"}, {-0.004, "##,##.00", ".00"},
      // Placeholders, groups and separators.
      {0, "##,##.00", ".00"}, {0.5, "##,##0.00", "0.50"}, {1234567.891, "##,##.00", "1,234,567.89"},
      {-0.5, "##.00", "-.50"}, {12345, "#####", "12345"}, {123456, "###", "123456"}, {0, "#####", ""},
      {28.8, "   ##.####", "   28.8"}, {5, "   ##.####", "   5."}};
  for (const auto& [valor, mascara, texto] : casos) EXPECT_EQ(formatea(valor, mascara), texto) << valor << " " << mascara;
  EXPECT_EQ(formatea(1234.5, "##,##.00", kComa), "1.234,50");
}

TEST(Formatea, TextoLeidoConLosSeparadoresDeLaMaquina) {
  // The decimal-comma probe: under a comma the point of "28.8" is a thousands mark.
  EXPECT_EQ(formateaTexto("28.8", "   ##.####", kComa), "   288,");
  EXPECT_EQ(formateaTexto("28.8", "   ##.####"), "   28.8");
  EXPECT_GT(valorNumerico(formateaTexto("28.8", "   ##.####", kComa)), 30.0);
  EXPECT_EQ(formateaTexto("n/a", "##.00"), "n/a");
}

TEST(Redondea2, DosDecimalesSinCeroNegativo) {
  EXPECT_EQ(REDONDEA2(0.005), 0.01);
  EXPECT_EQ(REDONDEA2(-0.005), -0.01);
  EXPECT_EQ(REDONDEA2R(1.005), 1.01);
  EXPECT_FALSE(std::signbit(REDONDEA2(-0.001)));
  EXPECT_FALSE(std::signbit(REDONDEA2(-0.0)));
  EXPECT_EQ(REDONDEA2(std::string_view(" 2.675")), 2.68);
  EXPECT_EQ(REDONDEA2(std::string_view("")), 0.0);
}

// The quick rounding of ordinary figures must give the very double that the rounding of
// the figure's 15-digit text gives, ties and near-ties included.
TEST(Redondea2, ElAtajoDeLasCifrasCorrientesCoincideConElRedondeoDelTexto) {
  auto porTexto = [](double x) { return convierteNumero(formatea(x, "##,##.00")).value_or(0.0); };
  auto siguiente = Aleatorio(12345);
  for (int i = 0; i < 200000; ++i) {
    const double escala = std::pow(10.0, static_cast<int>(siguiente() * 12) - 3);
    const double x = (siguiente() - 0.5) * escala;
    ASSERT_EQ(REDONDEA2(x), porTexto(x)) << x;
    // Products and quotients of cents, where the binary value sits next to a tie.
    const double cents = std::floor(siguiente() * 1e7) / 100;
    for (double y : {cents * 50 / 100, cents * 30.9 / 100, cents / 30 * 20, cents + 0.005})
      ASSERT_EQ(REDONDEA2(y), porTexto(y)) << y;
  }
}

// The short paths of the general text and of Val against their general paths: whole
// numbers of cents at every magnitude, values just beside them, and texts of every shape
// that the stores hold or that a hand edit could leave.
TEST(AtajosDeNumeros, CoincidenConElCaminoGeneral) {
  auto siguiente = Aleatorio(987654321);
  for (int i = 0; i < 200000; ++i) {
    const double escala = std::pow(10.0, static_cast<int>(siguiente() * 16) - 2);
    const double centimos = std::floor(siguiente() * escala) / 100;
    for (double x : {centimos, -centimos, std::nextafter(centimos, 1e300), centimos * 1.21, centimos / 3,
                     std::floor(siguiente() * escala)})
      ASSERT_EQ(textoGeneral(x), textoGeneralPorCifras(x)) << x;
  }
  for (double x : {0.01, 0.1, 0.05, 9999999999999.99, 10000000000000.0, 1e15, 0.009, 1e-5, -0.0, 1.0 / 0.0})
    EXPECT_EQ(textoGeneral(x), textoGeneralPorCifras(x)) << x;

  const std::string piezas[] = {"0", "1", "9", "12", ".", "-", "+", " ", "\t", "E", "e2", "D", "&H", "x", "00", "5."};
  for (int i = 0; i < 200000; ++i) {
    std::string texto;
    const int n = static_cast<int>(siguiente() * 7);
    for (int k = 0; k < n; ++k) texto += piezas[static_cast<std::size_t>(siguiente() * std::size(piezas))];
    const double rapido = valorNumerico(texto), general = valorNumericoGeneral(texto);
    ASSERT_TRUE(rapido == general || (std::isnan(rapido) && std::isnan(general))) << '"' << texto << '"';
    ASSERT_EQ(std::signbit(rapido), std::signbit(general)) << '"' << texto << '"';
  }
}

TEST(Camponum, CentimosConElRellenoDelanteDelSignoYEnterosConEmpateAlPar) {
  using Caso = std::tuple<const char*, int, const char*, bool, std::optional<std::string>>;
  const Caso casos[] = {
      {"1234.56", 11, "0", true, "00000123456"}, {"-12.34", 11, "0", true, "000000-1234"},
      {"0", 11, "0", true, "00000000000"},
      // 1.15 * 100.0 is 114.99999999999999: the 15-digit text makes it whole.
      {"1.15", 5, "0", true, "00115"}, {"  12.5", 6, "*0", true, "**1250"},
      {"1234567.89", 9, "0", true, "123456789"}, {"1234567.89", 8, "0", true, std::nullopt},
      {"", 11, "0", true, std::nullopt},
      // Whole numbers: ties to even.
      {"12", 5, "0", false, "00012"}, {"2.5", 3, "0", false, "002"}, {"3.5", 3, "0", false, "004"},
      {"-2.5", 3, "0", false, "0-2"}, {"12345", 4, "0", false, std::nullopt},
      {"3000000000", 11, "0", false, std::nullopt}};
  for (const auto& [texto, ancho, relleno, centimos, campo] : casos)
    EXPECT_EQ(CAMPONUM(texto, ancho, relleno, centimos), campo) << texto << " " << ancho;
}

TEST(LecturaDeNumeros, ValLeeLoQuePuedeYLaConversionTodoONada) {
  const std::pair<const char*, double> val[] = {{" 1 2x", 12}, {"  -3.5e2", -350}, {"\t\r\n 7", 7}, {"1.2.3", 1.2},
                                                 {"12,5", 12}, {"2D3", 2000}, {"1e", 1}, {"&H1F", 31},
                                                 {"&HFFFF", -1}, {"", 0}};
  for (const auto& [texto, valor] : val) EXPECT_EQ(valorNumerico(texto), valor) << texto;

  const std::pair<const char*, std::optional<double>> conversion[] = {
      {"1,234.5", 1234.5}, {" -3 ", -3}, {"1e3", 1000}, {"12a", std::nullopt}, {"1e", std::nullopt}, {"", std::nullopt}};
  for (const auto& [texto, valor] : conversion) EXPECT_EQ(convierteNumero(texto), valor) << texto;
  EXPECT_EQ(convierteNumero("1.234,5", kComa), 1234.5);
}

TEST(TextoGeneral, QuinceCifrasSignificativas) {
  const std::pair<double, const char*> casos[] = {
      {0.0, "0"},        {-0.0, "0"},        {-0.5, "-0.5"}, {123456789012345.0, "123456789012345"},
      {123.456 * 100.0, "12345.6"}, {0.0001, "0.0001"}, {0.00001, "1E-05"}, {1e15, "1E+15"},
      {999999999999999.9, "1E+15"}};
  for (const auto& [valor, texto] : casos) EXPECT_EQ(textoGeneral(valor), texto) << valor;
}

TEST(EnterosLargos, EmpateAlParYLimitesDelLong) {
  EXPECT_EQ(redondeoPar(2.5), 2.0);
  EXPECT_EQ(redondeoPar(3.5), 4.0);
  EXPECT_EQ(redondeoPar(-2.5), -2.0);
  EXPECT_FALSE(std::signbit(redondeoPar(-0.5)));
  EXPECT_EQ(aEnteroLargo(2147483647.4), 2147483647);
  EXPECT_EQ(aEnteroLargo(2147483647.5), std::nullopt);
  EXPECT_EQ(aEnteroLargo(-2147483648.5), -2147483647 - 1);
  EXPECT_EQ(aEnteroLargo(-2147483648.6), std::nullopt);
}

TEST(QuitaAcentos, LetrasEspanolasAlCodigoDeLosFicheros) {
  EXPECT_EQ(QUITAACENTOS("\xD1O\xD1O"), "\xA5O\xA5O");  // ÑOÑO -> 165 79 165 79
  EXPECT_EQ(QUITAACENTOS("\xAA\xBA\xC1\xC9\xCD\xD3\xDA\xFA\xE0\xE1"),
            "\xA6\xA7\x8F\x90\xA1\xA2\xA3\xA3\x85\xA0");
  EXPECT_EQ(QUITAACENTOS("\xE8\xE9\xEC\xED\xF1\xF2\xF3\xF9\xFC"),
            "\x8A\x82\x8D\xA1\xA4\xA4\xA2\x97\x81");
  EXPECT_EQ(QUITAACENTOS("\xE7\xC7\xE4 A1"), "\xE7\xC7\xE4 A1");

  std::string plano = "anterior";
  QUITAACENTOS("", plano);
  EXPECT_EQ(plano, "anterior");
  QUITAACENTOS("\xF1", plano);
  EXPECT_EQ(plano, "\xA4");
}

// Runs `prueba` with LC_ALL set to `valor`, and puts the environment back.
template <typename F>
void conLcAll(const char* valor, F prueba) {
  const char* antes = std::getenv("LC_ALL");
  const std::optional<std::string> guardado =
      antes ? std::optional<std::string>(antes) : std::nullopt;
  setenv("LC_ALL", valor, 1);
  prueba();
  if (guardado) {
    setenv("LC_ALL", guardado->c_str(), 1);
  } else {
    unsetenv("LC_ALL");
  }
}

TEST(Separadores, DelEntornoSinTocarElLocaleGlobal) {
  const std::string globalAntes = std::locale().name();
  for (const char* valor : {"C", "xx_XX.inexistente"})
    conLcAll(valor, [] {
      const Separadores sep = separadoresDelSistema();
      EXPECT_EQ((std::string{sep.decimal, sep.miles}), ".,");
    });
  EXPECT_EQ(std::locale().name(), globalAntes);
}

}  // namespace
}  // namespace valdor
