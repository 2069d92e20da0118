// The field checks of an exchange file: a small contribution file written by hand from
// its layouts, right as it stands, and the same file with one fault of each kind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "browser/revision.h"
#include "browser/segmentos.h"

namespace valdor {
namespace {

std::string b(std::size_t n) { return std::string(n, ' '); }
std::string z(std::size_t n) { return std::string(n, '0'); }

// One company of one worker, month 10 of 2026. Account 28 1234567: 281234567 mod 97 = 42.
// Worker 28 12345678: 2812345678 mod 97 = 40. DNI 87654321: mod 23 = 10, "X"; the
// company's 12345678: mod 23 = 14, "Z". The TC1: 1235.56 at 23.60 % is 291.59216, 291.59.
std::vector<std::string> ficheroCorrecto() {
  return {
      "ETITC220VIP2800000123ABCDEFGH202611150730F1511260FANN " + z(14) + b(2),
      "EMP011128123456742" "1   " "0000012345678Z" "  0111" "28123456742" "202610" "10" "L00" "00" "   E",
      "RZS01" "PANADERIA LOPEZ" + b(40) + b(10),
      "TRA" "281234567840" "1" + b(3) + "0000087654321X" "001" + b(25) + "000" + b(6),
      "AYN" "GARCIA" + b(14) + "LOPEZ" + b(15) + "ANA" + b(12) + "AGL  " + b(7),
      "DAT0" "0010" + b(6) + " " "030" "00" " " + b(2) + "0000" + b(2) + "01" + b(4) + "100" "000" "000" "000" + b(15) +
          "CONV001" " ",
      "EDLBA02000" "0123456" " " + z(26) + b(26),
      "EDLBA10000" "0000100" " " + z(26) + b(26),
      "EDLCD06" "030" "0000500" " 02" "20261001" + z(16) + b(26),
      "TCT001  " "000001" "000000" + b(28) + z(8) + b(14),
      "EDTBA02000" "00000123556" " " + z(19) + b(29),
      "EDTCD06000" + z(11) + " " + z(8) + "00000000500" " " + b(28),
      "EDTCA01000" "00000123556" "T" "023" "60000" "00000029159" + b(29),
      "EDTTT10000" + z(11) + " " + z(8) + "00000029159" " " + b(28),
      "EDTTT91000" + z(11) + " " + z(8) + "00000029159" " " + b(28),
      "ETFTC220VIP2800000123ABCDEFGH202611150730F1511260FANN 0000100000016   ",
  };
}

TEST(Revision, ElFicheroEscritoSegunSusDisenosNoTieneHallazgos) {
  const auto lineas = ficheroCorrecto();
  for (const std::string& l : lineas) {
    ASSERT_EQ(l.size(), 70u) << l;
    const Segmento* s = segmentoDeLinea(l, TipoIntercambio::FAN);
    ASSERT_NE(s, nullptr) << l;
    // Each layout covers the 70 positions one field after the other.
    int siguiente = 1;
    for (const Campo& c : s->campos) {
      EXPECT_EQ(c.desde, siguiente) << s->nombre << " " << c.nombre;
      siguiente = c.hasta() + 1;
    }
    EXPECT_EQ(siguiente, 71) << s->nombre;
  }
  for (const Hallazgo& h : revisaCampos(lineas, TipoIntercambio::FAN)) ADD_FAILURE() << textoHallazgo(h);
}

TEST(Revision, CadaFaltaDaUnHallazgoEnSuLineaYSusPosiciones) {
  auto l = ficheroCorrecto();
  auto pon = [&](std::size_t linea, std::size_t posicion, std::string_view texto) {
    l[linea - 1].replace(posicion - 1, texto.size(), texto);
  };
  pon(2, 17, "43");               // the account's check digits, in both copies
  pon(2, 52, "43");
  pon(4, 14, "41");               // the worker's check digits
  pon(4, 33, "T");                // the DNI's letter
  pon(6, 5, "0009");              // the month of another period
  pon(7, 13, " ");                // a blank inside an amount (and its total cannot be summed)
  pon(9, 21, "20260231");         // 31 February
  pon(12, 41, "1");               // a total one cent over its worker's line
  pon(13, 41, "0");               // a contribution that is not its base at its rate
  const auto hallazgos = revisaCampos(l, TipoIntercambio::FAN);
  struct Esperado {
    std::uintmax_t linea;
    int desde, hasta;
  };
  const std::vector<Esperado> esperados{{2, 8, 18},  {4, 4, 15},  {4, 20, 33},  {6, 5, 8},
                                        {7, 11, 17}, {9, 21, 28}, {12, 31, 41}, {13, 31, 41}};
  ASSERT_EQ(hallazgos.size(), esperados.size());
  for (std::size_t i = 0; i < esperados.size(); ++i) {
    EXPECT_EQ(hallazgos[i].linea, esperados[i].linea) << textoHallazgo(hallazgos[i]);
    EXPECT_EQ(hallazgos[i].desde, esperados[i].desde) << textoHallazgo(hallazgos[i]);
    EXPECT_EQ(hallazgos[i].hasta, esperados[i].hasta) << textoHallazgo(hallazgos[i]);
  }
  EXPECT_NE(hallazgos[0].regla.find("42"), std::string::npos) << hallazgos[0].regla;
  EXPECT_NE(hallazgos[1].regla.find("40"), std::string::npos) << hallazgos[1].regla;
  EXPECT_NE(hallazgos[2].regla.find("X"), std::string::npos) << hallazgos[2].regla;
  EXPECT_EQ(hallazgos[6].regla.substr(hallazgos[6].regla.size() - 11), "00000000500");
  EXPECT_EQ(hallazgos[7].regla.substr(hallazgos[7].regla.size() - 11), "00000029159");
  EXPECT_EQ(textoHallazgo(hallazgos[3]),
            std::string("l\xEDnea 6, posiciones 5-8 (mes de cotizaci\xF3n): \"0009\" \x97 no es el mes del fichero, 10"));
}

TEST(Revision, LaLiquidacionHaDeCuadrarConLasLineasQueSuma) {
  auto l = ficheroCorrecto();
  // The amount to pay one cent short of the liquidation it closes; and a NIE's letter:
  // X1234567 reads 1234567, mod 23 = 19, "L".
  l[14].replace(40, 1, "8");
  l[3].replace(19, 14, "00000X1234567L");
  auto h = revisaCampos(l, TipoIntercambio::FAN);
  ASSERT_EQ(h.size(), 1u);
  EXPECT_EQ(h[0].linea, 15u);
  EXPECT_EQ(h[0].campo, "EDTTT91000");
  // A worker whose total line is missing is told at the company's last line.
  l = ficheroCorrecto();
  l.erase(l.begin() + 11);
  h = revisaCampos(l, TipoIntercambio::FAN);
  ASSERT_EQ(h.size(), 1u);
  EXPECT_EQ(h[0].linea, 14u);
  EXPECT_EQ(h[0].valor, "EDTCD06000");
}

}  // namespace
}  // namespace valdor
