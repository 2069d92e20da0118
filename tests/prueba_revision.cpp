// The field checks of an exchange file: a small contribution file written by hand from
// its layouts, right as it stands, and the same file with one fault of each kind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "browser/revision.h"
#include "browser/segmentos.h"
#include "stores/literales.h"
#include "tests/fan_revisado.h"

namespace valdor {
namespace {

using pruebas::b;
using pruebas::ficheroCorrecto;
using pruebas::z;

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

// The editor's one question before a save: the line checks and the field findings in one
// list, numbered as in the saved file, where the blank row is gone.
TEST(Revision, AntesDeGuardarSeListanLasFaltasDeLineaYLosHallazgosDeCampo) {
  EXPECT_FALSE(avisoAlGuardar(ficheroCorrecto(), TipoIntercambio::FAN));
  auto l = ficheroCorrecto();
  l[3].replace(13, 2, "41");    // the worker's check digits, which are 40
  l.insert(l.begin() + 1, "");  // dropped by the save
  l.push_back("TRAcorta");      // the 17th line of the saved file; the trailer counts 16
  const auto aviso = avisoAlGuardar(l, TipoIntercambio::FAN);
  ASSERT_TRUE(aviso);
  EXPECT_EQ(*aviso, std::string("El fichero no pasa la revisión:\n"
                                "Línea 17: tiene 8 caracteres y debe tener 70.\n"
                                "El cierre ETF cuenta 16 líneas y el fichero tiene 17.\n"
                                "Línea 4, posiciones 4-15 (número de afiliación): \"281234567841\" — el dígito de "
                                "control del número de afiliación es 40 (módulo 97)\n"
                                "\n¿Desea guardarlo así de todos modos?"_cp));
}

}  // namespace
}  // namespace valdor
