// The worker's lines in the temp store and the layouts of the amount lines.

#include <gtest/gtest.h>

#include <limits>

#include "statement/lineas.h"
#include "stores/numeros.h"
#include "stores/almacen.h"
#include "stores/esquemas.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

TEST(GUARDATEMPORAL, UnaLineaPorTipoReemplazadaAlRecalcularYLaLargaGuardadaEntera) {
  pruebas::CarpetaTemporal c;
  const std::array<DefTabla, 1> tablas{esquemas::TMPVALDOR()};
  Almacen::crea(c / "TEMPORAL VALDOR.MDB", tablas);
  Almacen a;
  a.abre(c / "TEMPORAL VALDOR.MDB");
  Tabla t;
  t.abre(a, "TMPVALDOR");
  t.indice("TMPVALDORnum");
  double LINEALARGA = 0;
  GUARDATEMPORAL(a, "28000000001", "00001", "ED1", "PRIMERA", LINEALARGA);
  GUARDATEMPORAL(a, "28000000001", "00001", "ED2", "OTRA", LINEALARGA);
  GUARDATEMPORAL(a, "28000000001", "00001", "ED1", "SEGUNDA", LINEALARGA);
  EXPECT_EQ(t.cuenta(), 2);
  ASSERT_TRUE(t.busca("=", {"28000000001", "00001", "ED1"}));
  EXPECT_EQ(t.texto("TMPLINEA"), "SEGUNDA");
  EXPECT_EQ(LINEALARGA, 0);
  GUARDATEMPORAL(a, "28000000001", "00002", "TRA", std::string(71, 'X'), LINEALARGA);
  EXPECT_EQ(LINEALARGA, 1);
  ASSERT_TRUE(t.busca("=", {"28000000001", "00002", "TRA"}));
  EXPECT_EQ(t.texto("TMPLINEA"), std::string(71, 'X'));  // whole: the writer refuses it by name
}

TEST(LineasImporte, LosImportesVanEnCentimosConSusRellenos) {
  EXPECT_EQ(lineaImporte("EDLBA01000", 1234.56),
            "EDLBA01000" "0123456" " " + std::string(26, '0') + std::string(26, ' '));
  EXPECT_EQ(lineaImporte("EDLBA01000", 1234.56).size(), 70u);
  // An amount wider than its seven places, or no finite number, stops the job: the line
  // would come out short.
  EXPECT_EQ(lineaImporte("EDLBA01000", 99999.99).substr(10, 7), "9999999");
  EXPECT_THROW(lineaImporte("EDLBA01000", 123456.78), ErrorCampo);
  EXPECT_THROW(lineaImporte("EDLBA01000", 1e308), ErrorCampo);
  EXPECT_THROW(lineaImporte("EDLBA01000", std::numeric_limits<double>::infinity()), ErrorCampo);
  EXPECT_EQ(lineaImporteDias("EDLCD01", 5, 12.3, " 01"),
            "EDLCD01" "005" "0001230" " 01" + std::string(24, '0') + std::string(26, ' '));
  EXPECT_EQ(Z("  7", 3), "007");
  EXPECT_EQ(Z("1234", 3), "1234");  // Z never cuts
}

}  // namespace
}  // namespace valdor
