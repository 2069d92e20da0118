// The worker's sheet "TC2-TC2/1 ABREVIADO" from row 1 of the working table: each piece
// from its column, the sick-leave figures and the blanks, on rows filled by hand.

#include <gtest/gtest.h>

#include "statement/hojatc2.h"
#include "stores/literales.h"

namespace valdor {
namespace {

using Piezas = std::vector<std::string>;

// The sheet of a working table whose row `fila` holds the given cells, as its pieces in
// order: surnames, name, affiliation, NIF, days, group, contract, hours, epigraph, sick
// days, maternity days, epigraph of the leave, its base and the bonus date.
Piezas hoja(std::initializer_list<std::pair<int, std::string_view>> celdas, int fila = 1) {
  TablaTrabajo g;
  for (const auto& [columna, texto] : celdas) g.escribe(fila, columna, texto);
  const HojaTC2 h = hojaTC2(g);
  return {h.apellidos, h.nombre,     h.afiliacion, h.nif,           h.diasAlta,   h.grupoCotizacion, h.claseContrato,
          h.horas,     h.epigrafe,   h.diasIT,     h.diasMaternidad, h.epigrafeIT, h.baseAT,          h.fechaBonificacion};
}

// Only a name: every other piece blank, the bonus date its mask.
Piezas nombre(std::string_view apellidos, std::string_view nombre) {
  Piezas p(14, "");
  p[0] = apellidos;
  p[1] = nombre;
  p[13] = "__/__/____";
  return p;
}

TEST(HojaTC2, UnTrabajadorDeBajaConSuBaseDelEpigrafe126) {
  // Hours are the cell as it stands, even 0; 20 days of leave, none of maternity; the
  // base is the cell's own text, not a reformatted number.
  EXPECT_EQ(hoja({{0, "00002"}, {1, "281234567840"}, {2, " 02345671X "}, {3, "MUÑOZ ÁLVAREZ, FRANCISCO"_cp}, {4, "30"},
                  {5, "08"}, {6, "009"}, {8, "0"}, {10, " 016"}, {20, "1400.00"}, {30, "01/01/2025"}, {34, "20"},
                  {35, "0"}}),
            (Piezas{std::string("MUÑOZ ÁLVAREZ"_cp), "FRANCISCO", "281234567840", "02345671X", "30", "08", "009", "0", "016", "20",
                    "", "126", "1400.00", "01/01/2025"}));
}

TEST(HojaTC2, MaternidadYBajaSeRepartenLosDiasYLosCerosQuedanEnBlanco) {
  // 16 days of leave, all of them maternity: no sick days remain; a base of 0 is blank.
  Piezas p = nombre("ORTEGA RÍOS"_cp, "MARÍA DEL CARMEN"_cp);
  p[10] = "16";
  EXPECT_EQ(hoja({{3, "ORTEGA RÍOS, MARÍA DEL CARMEN"_cp}, {34, "16"}, {35, "16"}, {20, "0"}}), p);
  // 25 days of leave of which 16 maternity: 9 sick days.
  p = nombre("", "");
  p[9] = "9";
  p[10] = "16";
  EXPECT_EQ(hoja({{34, "25"}, {35, " 16 "}}), p);
  // Empty leave cells read 0: every leave piece blank.
  EXPECT_EQ(hoja({{3, "PÉREZ, ANA"_cp}}), nombre("PÉREZ"_cp, "ANA"));
}

TEST(HojaTC2, NombresSinComaOConVariasComasYSoloLaFila1) {
  // No comma: all surnames; a blank date shows the mask.
  EXPECT_EQ(hoja({{3, "HANSEN"}, {30, "   "}}), nombre("HANSEN", ""));
  // Only the first comma divides; the blanks around each side go.
  EXPECT_EQ(hoja({{3, "  DE LA TORRE ,  LUCÍA, HIJA  "_cp}}), nombre("DE LA TORRE", "LUCÍA, HIJA"_cp));
  EXPECT_EQ(hoja({{3, "GIL SERRANO,"}}), nombre("GIL SERRANO", ""));
  // The sheet is the worker's in row 1; another row's cells never show.
  EXPECT_EQ(hoja({{3, "OTRO, TRABAJADOR"}, {34, "5"}, {20, "800"}}, 2), nombre("", ""));
}

}  // namespace
}  // namespace valdor
