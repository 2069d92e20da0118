// The statement state: the fixed-width fields of BOLETIN and their boxes, and the
// working table GRID1.

#include <gtest/gtest.h>

#include <set>

#include "statement/estado.h"

namespace valdor {
namespace {

TEST(Boletin, UnaCifraQueNoCabeSeCortaYBlanquearVaciarYVolcarTocanLosCamposDeLaLista) {
  BOLETIN b;
  CajasBoletin cajas;
  muestraFigura(b, cajas, &BOLETIN::COMPIT, 12345678.91);  // COMPIT holds 10 characters
  EXPECT_EQ(b.COMPIT.texto(), "12345678.9");
  EXPECT_EQ(cajas[38], "12345678.9");
  EXPECT_DOUBLE_EQ(b.COMPIT.valor(), 12345678.9);
  muestraFigura(b, cajas, &BOLETIN::CCTIPO, "28.3");
  EXPECT_EQ(b.CCTIPO.texto(), "28.3       ");
  EXPECT_EQ(cajas[15], "28.3       ");
  b.CGTOTAL = -0.5;  // no box
  EXPECT_EQ(b.CGTOTAL.texto(), "-0.5" + std::string(13, ' '));
  EXPECT_DOUBLE_EQ(b.CGTOTAL.valor(), -0.5);
  b.ATBASE = "";
  EXPECT_DOUBLE_EQ(b.ATBASE.valor(), 0);

  // Blanking, emptying and copying touch the fields and the boxes of the list.
  std::set<int> cajasVistas;
  for (const auto& d : BOLETIN::campos())
    if (d.caja > 0) {
      EXPECT_TRUE(cajasVistas.insert(d.caja).second) << d.nombre;
    }
  EXPECT_EQ(cajasVistas.count(56), 0u);  // "A PERCIBIR" is Text57; there is no Text56 figure

  b.BOLNOMBRE = "EMPRESA";
  b.RECARGOPCT = "20";
  BLANQUEABOLETIN(b);
  EXPECT_EQ(b.BOLNOMBRE.texto(), std::string(65, ' '));
  EXPECT_EQ(b.RECARGOPCT.texto(), "  ");

  cajas[80] = "1500.5";  // the second "OTRAS COTIZACIONES" row is shown in Text80, 79, 78
  cajas[79] = "7.05";
  cajas[1] = "NOMBRE";
  VUELCABOLETIN(cajas, b);
  EXPECT_EQ(b.OT2BASE.texto().substr(0, 6), "1500.5");
  EXPECT_EQ(b.OT2TIPO.texto().substr(0, 4), "7.05");
  EXPECT_EQ(b.BOLNOMBRE.texto().substr(0, 6), "NOMBRE");
  std::string empresa = "28000000001";
  VACIABOLETIN(cajas, empresa);
  EXPECT_TRUE(empresa.empty());
  EXPECT_TRUE(cajas[80].empty());
}

TEST(TablaTrabajo, DiezFilasConCabeceraYLasEscriturasFueraDeLaTablaNoHacenNada) {
  TablaTrabajo t;
  EXPECT_EQ(t.filas(), 10);
  t.escribe(1, 9, 1234.5);
  t.escribe(1, 45, "nada");
  t.escribe(10, 0, "nada");
  EXPECT_EQ(t.texto(1, 9), "1234.5");
  EXPECT_EQ(t.texto(1, 45), "");
  EXPECT_DOUBLE_EQ(t.valor(1, 9), 1234.5);
  EXPECT_DOUBLE_EQ(t.valor(2, 9), 0);  // an empty cell reads 0
  t.escribe(1, 11, "1,5");                // read as the run-time reads: up to the comma
  EXPECT_DOUBLE_EQ(t.valor(1, 11), 1);

  t.ponFilas(12);  // the tenth worker of a batch run adds the eleventh data row
  t.escribe(11, 0, "00010");
  EXPECT_EQ(t.texto(11, 0), "00010");
  t.filaActual = 11;
  t.LIMPIAGRID();
  EXPECT_EQ(t.filas(), 10);
  EXPECT_EQ(t.filaActual, 1);
  EXPECT_EQ(t.texto(1, 9), "");
}

}  // namespace
}  // namespace valdor
