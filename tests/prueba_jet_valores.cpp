// The values of a Jet row from their bytes, worked by hand: text in its three forms,
// dates around the calendar's origin and edges, Decimal, Currency and Double.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "stores/jet_valores.h"

namespace valdor::jet {
namespace {

std::string texto(bool jet4, std::string_view bytes) {
  return textoJet(jet4, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

TEST(ValoresJet, ElTextoSeLeeEnSusTresFormas) {
  // UCS-2: "AÑ", and a last odd byte that is no character.
  EXPECT_EQ(texto(true, std::string_view("A\0\xD1\0\x41", 5)), "A\xC3\x91");
  // Compressed: "PEÑA" one byte each, a 0 to two bytes for "€" (U+20AC), a 0 back to one
  // byte for "S".
  EXPECT_EQ(texto(true, std::string_view("\xFF\xFEPE\xD1" "A\0\xAC\x20\0S", 11)), "PE\xC3\x91" "A\xE2\x82\xAC" "S");
  // A whole compressed text, and FF FE alone: the empty text.
  EXPECT_EQ(texto(true, std::string_view("\xFF\xFE" "Jos\xE9", 6)), "Jos\xC3\xA9");
  EXPECT_EQ(texto(true, std::string_view("\xFF\xFE", 2)), "");
  // A character beyond the first plane by its surrogate pair, and a lone surrogate.
  EXPECT_EQ(texto(true, std::string_view("\x3D\xD8\x00\xDE", 4)), "\xF0\x9F\x98\x80");
  EXPECT_EQ(texto(true, std::string_view("\x3D\xD8" "A\0", 4)), "\xEF\xBF\xBD" "A");
  // Jet 3: the code page's bytes.
  EXPECT_EQ(texto(false, "PE\xD1" "A \x80"), "PE\xC3\x91" "A \xE2\x82\xAC");
}

TEST(ValoresJet, LasFechasCuentanDiasDesdeEl30DeDiciembreDe1899) {
  // 01/01/2002 is 36526 + 366 + 365; then January, February and 14 days.
  EXPECT_EQ(fechaJet(37330.0), "2002-03-15");
  EXPECT_EQ(fechaJet(0.0), "1899-12-30");
  EXPECT_EQ(fechaJet(1.5), "1899-12-31 12:00:00");
  // Before the origin the day counts back and the time of day forward.
  EXPECT_EQ(fechaJet(-1.25), "1899-12-29 06:00:00");
  // 29/02/2000 exists; 23:59:59.9 rounds to the next day.
  EXPECT_EQ(fechaJet(36585.0), "2000-02-29");
  EXPECT_EQ(fechaJet(36585.0 + 86399.9 / 86400.0), "2000-03-01");
  EXPECT_EQ(fechaJet(2958465.0), "9999-12-31");
  EXPECT_EQ(fechaJet(2958466.0), std::nullopt);
  EXPECT_EQ(fechaJet(-657435.0), std::nullopt);
  EXPECT_EQ(fechaJet(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

TEST(ValoresJet, DecimalMonedaYDobleSonExactos) {
  // 123456 in the last word (little-endian 40 E2 01 00), scale 2.
  unsigned char decimal[17] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0xE2, 0x01, 0x00};
  EXPECT_EQ(decimalJet(decimal, 2), 1234.56);
  EXPECT_EQ(decimalJet(decimal, 0), 123456.0);
  EXPECT_EQ(decimalJet(decimal, 7), 0.0123456);
  decimal[0] = 0x80;
  EXPECT_EQ(decimalJet(decimal, 2), -1234.56);
  // 2^32 + 1: a 1 in the third word and in the last.
  unsigned char grande[17] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  EXPECT_EQ(decimalJet(grande, 0), 4294967297.0);

  // 12345678 ten-thousandths (0x00BC614E), and -1.
  const unsigned char moneda[8] = {0x4E, 0x61, 0xBC, 0x00, 0, 0, 0, 0};
  EXPECT_EQ(monedaJet(moneda), 1234.5678);
  const unsigned char menosUno[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(monedaJet(menosUno), -0.0001);

  // 0.1 as a Double keeps every bit; as a Single it is the float nearest to 0.1.
  const unsigned char doble[8] = {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F};
  EXPECT_EQ(dobleJet(doble), 0.1);
  const unsigned char simple[4] = {0xCD, 0xCC, 0xCC, 0x3D};
  EXPECT_EQ(simpleJet(simple), static_cast<double>(0.1f));
}

}  // namespace
}  // namespace valdor::jet
