// The worker's sheet "TC2-TC2/1 ABREVIADO" from row 1 of the working table: each piece
// from its column, the sick-leave figures and the blanks, on rows filled by hand.

#include <gtest/gtest.h>

#include "statement/hojatc2.h"
#include "stores/literales.h"

namespace valdor {
namespace {

// Row 1 of a working table with the given cells.
TablaTrabajo fila(std::initializer_list<std::pair<int, std::string_view>> celdas) {
  TablaTrabajo g;
  for (const auto& [columna, texto] : celdas) g.escribe(1, columna, texto);
  return g;
}

TEST(HojaTC2, UnTrabajadorDeBajaConSuBaseDelEpigrafe126) {
  const HojaTC2 h = hojaTC2(fila({{0, "00002"},
                                  {1, "281234567840"},
                                  {2, " 02345671X "},
                                  {3, "MUÑOZ ÁLVAREZ, FRANCISCO"_cp},
                                  {4, "30"},
                                  {5, "08"},
                                  {6, "009"},
                                  {8, "0"},
                                  {10, " 016"},
                                  {20, "1400.00"},
                                  {30, "01/01/2025"},
                                  {34, "20"},
                                  {35, "0"}}));
  EXPECT_EQ(h.apellidos, "MUÑOZ ÁLVAREZ"_cp);
  EXPECT_EQ(h.nombre, "FRANCISCO");
  EXPECT_EQ(h.afiliacion, "281234567840");
  EXPECT_EQ(h.nif, "02345671X");
  EXPECT_EQ(h.diasAlta, "30");
  EXPECT_EQ(h.grupoCotizacion, "08");
  EXPECT_EQ(h.claseContrato, "009");
  EXPECT_EQ(h.horas, "0");  // hours are the cell as it stands, even 0
  EXPECT_EQ(h.epigrafe, "016");
  EXPECT_EQ(h.diasIT, "20");  // 20 days of leave, none of maternity
  EXPECT_EQ(h.diasMaternidad, "");
  EXPECT_EQ(h.epigrafeIT, "126");
  EXPECT_EQ(h.baseAT, "1400.00");  // the cell's own text, not a reformatted number
  EXPECT_EQ(h.fechaBonificacion, "01/01/2025");
}

TEST(HojaTC2, MaternidadYBajaSeRepartenLosDias) {
  // 16 days of leave, all of them maternity: no sick days remain.
  HojaTC2 h = hojaTC2(fila({{3, "ORTEGA RÍOS, MARÍA DEL CARMEN"_cp}, {34, "16"}, {35, "16"}, {20, "0"}}));
  EXPECT_EQ(h.diasIT, "");
  EXPECT_EQ(h.diasMaternidad, "16");
  EXPECT_EQ(h.epigrafeIT, "");
  EXPECT_EQ(h.baseAT, "");
  EXPECT_EQ(h.nombre, "MARÍA DEL CARMEN"_cp);

  // 25 days of leave of which 16 maternity: 9 sick days.
  h = hojaTC2(fila({{34, "25"}, {35, " 16 "}}));
  EXPECT_EQ(h.diasIT, "9");
  EXPECT_EQ(h.diasMaternidad, "16");

  // Empty leave cells read 0: every leave piece blank, and the base 126 too.
  h = hojaTC2(fila({{3, "PÉREZ, ANA"_cp}}));
  EXPECT_EQ(h.diasIT, "");
  EXPECT_EQ(h.diasMaternidad, "");
  EXPECT_EQ(h.epigrafeIT, "");
  EXPECT_EQ(h.baseAT, "");
}

TEST(HojaTC2, FechaVaciaYNombresSinComaOConVariasComas) {
  HojaTC2 h = hojaTC2(fila({{3, "HANSEN"}, {30, "   "}}));
  EXPECT_EQ(h.apellidos, "HANSEN");  // no comma: all surnames
  EXPECT_EQ(h.nombre, "");
  EXPECT_EQ(h.fechaBonificacion, "__/__/____");  // a blank date shows the mask

  // Only the first comma divides; the blanks around each side go.
  h = hojaTC2(fila({{3, "  DE LA TORRE ,  LUCÍA, HIJA  "_cp}}));
  EXPECT_EQ(h.apellidos, "DE LA TORRE");
  EXPECT_EQ(h.nombre, "LUCÍA, HIJA"_cp);
  EXPECT_EQ(h.fechaBonificacion, "__/__/____");

  // A comma at the end: surnames and no given name.
  h = hojaTC2(fila({{3, "GIL SERRANO,"}}));
  EXPECT_EQ(h.apellidos, "GIL SERRANO");
  EXPECT_EQ(h.nombre, "");
}

TEST(HojaTC2, SoloLeeLaFila1) {
  // The sheet is the worker's in row 1; another row's cells never show.
  TablaTrabajo g;
  g.escribe(2, 3, "OTRO, TRABAJADOR");
  g.escribe(2, 34, "5");
  g.escribe(2, 20, "800");
  const HojaTC2 h = hojaTC2(g);
  EXPECT_EQ(h.apellidos, "");
  EXPECT_EQ(h.diasIT, "");
  EXPECT_EQ(h.baseAT, "");
}

}  // namespace
}  // namespace valdor
