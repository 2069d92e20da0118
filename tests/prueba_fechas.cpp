#include <gtest/gtest.h>

#include "stores/fechas.h"

namespace valdor {
namespace {

TEST(TextosDeFecha, SoloFechasQueExistenYLasConversiones) {
  EXPECT_EQ(leeFechaDMA("01/03/2002"), (Fecha{1, 3, 2002}));
  EXPECT_EQ(leeFechaDMA("1/3/2002"), (Fecha{1, 3, 2002}));
  EXPECT_EQ(leeFechaDMA("29/02/2000"), (Fecha{29, 2, 2000}));
  EXPECT_EQ(leeFechaDMA("29/02/1900"), std::nullopt);
  EXPECT_EQ(leeFechaDMA("31/04/2002"), std::nullopt);
  EXPECT_EQ(leeFechaDMA("01/13/2002"), std::nullopt);
  EXPECT_EQ(leeFechaDMA(MASCARAFECHA), std::nullopt);
  EXPECT_EQ(leeFechaDMA("01/03/02"), std::nullopt);
  EXPECT_EQ(leeFechaDMA("001/03/2002"), std::nullopt);
  EXPECT_EQ(leeFechaDMA("01/03/2002 "), std::nullopt);
  EXPECT_EQ(leeFechaDMA("01-03-2002"), std::nullopt);

  EXPECT_EQ(isoADMA("2002-03-01"), "01/03/2002");
  EXPECT_EQ(dmaAISO("01/03/2002"), "2002-03-01");
  EXPECT_EQ(dmaAISO("1/3/2002"), "2002-03-01");
  EXPECT_EQ(dmaAISO(MASCARAFECHA), MASCARAFECHA);
  EXPECT_EQ(isoADMA("2002-02-30"), "2002-02-30");
  EXPECT_EQ(isoADMA("2002-3-01"), "2002-3-01");
  EXPECT_EQ(textoAMD(Fecha{5, 1, 2002}), "20020105");
}

TEST(Diferencias, MesesPorFronteraDiasDeCalendarioYFebreroSiempreDe28) {
  EXPECT_EQ(diferenciaMeses({31, 1, 2002}, {1, 2, 2002}), 1);
  EXPECT_EQ(diferenciaMeses({15, 12, 2001}, {15, 1, 2002}), 1);
  EXPECT_EQ(diferenciaMeses({1, 1, 2002}, {31, 12, 2001}), -1);
  EXPECT_EQ(diferenciaMeses({1, 3, 2000}, {28, 2, 2003}), 35);

  EXPECT_EQ(diferenciaDias({28, 2, 2000}, {1, 3, 2000}), 2);
  EXPECT_EQ(diferenciaDias({28, 2, 2001}, {1, 3, 2001}), 1);
  EXPECT_EQ(diferenciaDias({1, 1, 2002}, {31, 12, 2001}), -1);
  EXPECT_EQ(diferenciaDias({1, 1, 2001}, {1, 1, 2002}), 365);

  EXPECT_EQ(DIASMES(2), 28);
  EXPECT_EQ(DIASMES(1), 31);
  EXPECT_EQ(DIASMES(4), 30);
  EXPECT_EQ(DIASMES(0), 0);
  EXPECT_EQ(DIASMES(13), 0);
}

}  // namespace
}  // namespace valdor
