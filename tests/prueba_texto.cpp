#include <gtest/gtest.h>

#include <string>

#include "stores/texto.h"

namespace valdor {
namespace {

TEST(Cp1252, CadaByteSobreviveAlViajeYLoSinFormaDaUnaInterrogacionPorByte) {
  std::string todos;
  for (int b = 0; b < 256; ++b) todos.push_back(static_cast<char>(b));
  std::size_t perdidos = 99;
  EXPECT_EQ(utf8ACp1252(cp1252AUtf8(todos), &perdidos), todos);
  EXPECT_EQ(perdidos, 0u);
  EXPECT_TRUE(esRepresentableCp1252(cp1252AUtf8(todos)));

  // Euro, an undefined byte, Ÿ and é.
  EXPECT_EQ(cp1252AUtf8("\x80\x81\x9F\xE9"), "\xE2\x82\xAC\xC2\x81\xC5\xB8\xC3\xA9");

  auto convierte = [](std::string_view utf8) {
    std::size_t perdidos = 0;
    std::string texto = utf8ACp1252(utf8, &perdidos);
    return std::pair{texto, perdidos};
  };
  EXPECT_EQ(convierte("\xE6\x97\xA5"), std::pair(std::string("?"), std::size_t{1}));
  EXPECT_EQ(convierte("\xF0\x9F\x98\x80"), std::pair(std::string("?"), std::size_t{1}));
  // A C1 control other than the five undefined bytes has no Windows-1252 form.
  EXPECT_EQ(convierte("\xC2\x80"), std::pair(std::string("?"), std::size_t{1}));
  EXPECT_EQ(convierte("\xC0\xAF"), std::pair(std::string("??"), std::size_t{2}));
  EXPECT_EQ(convierte("\xE0\x80\xAF"), std::pair(std::string("???"), std::size_t{3}));
  EXPECT_EQ(convierte("\xED\xA0\x80"), std::pair(std::string("???"), std::size_t{3}));
  EXPECT_EQ(convierte("\xF4\x90\x80\x80"), std::pair(std::string("????"), std::size_t{4}));
  EXPECT_EQ(convierte("a\xE2\x82"), std::pair(std::string("a??"), std::size_t{2}));
  EXPECT_EQ(convierte("\xE2\x82" "b"), std::pair(std::string("??b"), std::size_t{2}));
  // A question mark of the text itself is not a loss.
  EXPECT_EQ(convierte("\xC2\xBF?"), std::pair(std::string("\xBF?"), std::size_t{0}));

  EXPECT_TRUE(esRepresentableCp1252("\xE2\x82\xAC"));
  EXPECT_FALSE(esRepresentableCp1252("\xE6\x97\xA5"));
  EXPECT_FALSE(esRepresentableCp1252("\xC0\xAF"));
}

TEST(Subtextos, MayusculasRecortesPosicionesDesdeUnoYCampos) {
  EXPECT_EQ(mayusculas("a\xF1o 1-z"), "A\xD1O 1-Z");
  EXPECT_EQ(mayusculas("\xE7\xFE\x9A\x9C\x9E\xFF"), "\xC7\xDE\x8A\x8C\x8E\x9F");
  // ÷, ß and µ stay as they are.
  EXPECT_EQ(mayusculas("\xF7\xDF\xB5"), "\xF7\xDF\xB5");

  EXPECT_EQ(recorta("  a b  "), "a b");
  EXPECT_EQ(recorta("\ta\t "), "\ta\t");
  EXPECT_EQ(recortaIzq("  a "), "a ");
  EXPECT_EQ(recortaDer("  a "), "  a");

  EXPECT_EQ(medio("ABCDEF", 2, 3), "BCD");
  EXPECT_EQ(medio("ABC", 4), "");
  EXPECT_EQ(medio("ABC", 2, 10), "BC");
  EXPECT_EQ(derecha("ABC", 2), "BC");
  EXPECT_EQ(derecha("ABC", 9), "ABC");

  EXPECT_EQ(posicion("ABCABC", "BC"), 2u);
  EXPECT_EQ(posicion("ABCABC", "BC", 3), 5u);
  EXPECT_EQ(posicion("ABC", "C", 4), 0u);
  EXPECT_EQ(posicion("ABC", "", 4), 4u);
  EXPECT_EQ(posicion("ABC", "", 5), 0u);

  // Fields that do not fit do not exist; padding never cuts.
  EXPECT_EQ(campoIzq("12", 5, '0'), "00012");
  EXPECT_EQ(campoIzq("123456", 5, '0'), std::nullopt);
  EXPECT_EQ(campoDer("AB", 4, ' '), "AB  ");
  EXPECT_EQ(campoDer("ABCDE", 4, ' '), std::nullopt);
  EXPECT_EQ(llenaIzq("ABCDE", 3, '0'), "ABCDE");
  EXPECT_EQ(llenaDer("AB", 4, '*'), "AB**");
  EXPECT_EQ(ajusta("ABCDE", 3), "ABC");
  EXPECT_EQ(ajusta("AB", 4), "AB  ");
}

TEST(Subtextos, ImprimibleCambiaCadaByteDeControlPorUnBlancoYDejaLosDemas) {
  // NUL, tab, CR, LF, 0x1F and DEL become blanks, one for one; the accents, the euro
  // (0x80) and the undefined 0x81 and 0x9D stay.
  const std::string entrada("A\0B\tC\r\nD\x1F" "E\x7F" "\xF1\x80\x81\x9D\x20~", 17);
  EXPECT_EQ(imprimible(entrada), std::string("A B C  D E \xF1\x80\x81\x9D ~"));
  EXPECT_EQ(imprimible(""), "");
}

}  // namespace
}  // namespace valdor
