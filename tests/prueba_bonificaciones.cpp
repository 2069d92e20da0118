// Contract bonuses, the reader of a period's set and the TRA39 key. Expected values are
// worked by hand; the month is October 2026 (last day 31/10/2026), and a contract's months
// are the month changes from its start to that day.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/bonificaciones.h"
#include "stores/almacen.h"
#include "stores/esquemas.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using Textos = std::vector<std::string>;
using Numeros = std::vector<double>;

class Bonificaciones : public ::testing::Test {
 protected:
  void SetUp() override {
    Almacen::crea(carpeta / "BONIFICA.MDB", esquemas::tablasBONIFICA());
    almacen.abre(carpeta / "BONIFICA.MDB");
    // Code, then three sets of common, accidents, unemployment, training, FP, "TR" and
    // years, then BONBR and BONCS. 100: 2, 2 and 0 years; 200: one year each; 300: 7
    // years, which means no limit on the first set.
    contrato(
        {"100", 50, 10, 20, 30, 40, 5, 2, 25.5, 11, 21, 31, 41, 6, 2, 12.345, 12, 22, 32, Valor(), 7, 0, "B", 610});
    contrato({"200", 60, 1, 2, 3, 4, 5, 1, 70, 1.5, 2.5, 3.5, 4.5, 5.5, 1, 80, 9, 8, 7, 6, 5, 1, "R", 620});
    contrato({"300", 90, 1, 1, 1, 1, 1, 7, 91, 2, 2, 2, 2, 2, 2, 92, 3, 3, 3, 3, 3, 3, "B", 630});
    // Keys of the reader.
    almacen.ejecuta("INSERT INTO BONIFI (BONCONT, BONCC, BONCC1, BONCC2, BONCS) VALUES ('012', 15, 16, 17, 640)");
    almacen.ejecuta("INSERT INTO BONIFI (BONCONT, BONCC, BONCC1, BONCC2, BONCS) VALUES ('45', 45, 46, 47, 650)");
    BONIFI.abre(almacen, "BONIFI");
    v.MESCOT = 10;
    v.ANOCOT = 2026;
    GRID1.ponFilas(5);
    GRID1.filaActual = 3;
  }

  void contrato(std::initializer_list<Valor> fila) {
    almacen.ejecuta(
        "INSERT INTO BONIFI (BONCONT, BONCC, BONAT, BONDE, BONFO, BONFP, BONTR, BONDU, BONCC1, BONAT1, BONDE1, "
        "BONFO1, BONFP1, BONTR1, BONDU1, BONCC2, BONAT2, BONDE2, BONFO2, BONFP2, BONTR2, BONDU2, BONBR, BONCS) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        fila);
  }

  // The percentage written to column 21 (blank when the row was left alone).
  std::string calcula(const std::string& codigo, std::string_view inicio, std::string_view alternativa = "") {
    v.CODCONT = codigo;
    BONIFICACIONES(BONIFI, inicio, alternativa, v, GRID1);
    return GRID1.texto(3, 21);
  }

  // Columns 21 to 28 of row `fila`.
  Textos columnas(int fila = 3) const {
    Textos c;
    for (int i = 21; i <= 28; ++i) c.push_back(GRID1.texto(fila, i));
    return c;
  }
  // PORCCC, PORCAT, PORCDE, PORCFO, PORCFP.
  Numeros porcentajes() const { return {v.PORCCC, v.PORCAT, v.PORCDE, v.PORCFO, v.PORCFP}; }

  CarpetaTemporal carpeta;
  Almacen almacen;
  Tabla BONIFI;
  VariablesCalculo v;
  TablaTrabajo GRID1;
  const Textos blancas = Textos(8, "");
};

TEST_F(Bonificaciones, ElAnoDelContratoEligeElConjuntoQueVaALaFilaYALasVariables) {
  // Contract 200, one year per set. The same month: 0 months, year 0, the first set.
  EXPECT_EQ(calcula("200", "31/10/2026"), "60");
  EXPECT_EQ(columnas(), (Textos{"60", "1", "5", "2", "3", "4", "R", "620"}));
  // 30/09/2025: 13 months, year 2 -> second set; 01/10/2025: 12 months, year 1.
  EXPECT_EQ(calcula("200", "30/09/2025"), "70");
  EXPECT_EQ(columnas(), (Textos{"70", "1.5", "5.5", "2.5", "3.5", "4.5", "R", "620"}));
  EXPECT_EQ(porcentajes(), (Numeros{70, 1.5, 2.5, 3.5, 4.5}));
  EXPECT_EQ(v.BONREDACT, "R");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 620);
  EXPECT_EQ(columnas(2), blancas);  // only the current row
  EXPECT_EQ(calcula("200", "01/10/2025"), "60");
  // 25 months: year 3, the third set; 24 months: year 2.
  EXPECT_EQ(calcula("200", "15/09/2024"), "80");
  EXPECT_EQ(columnas(), (Textos{"80", "9", "5", "8", "7", "6", "R", "620"}));
  EXPECT_EQ(calcula("200", "15/10/2024"), "70");
  // 37 months: year 4, past the last period, back on the first set; 36 months: year 3.
  EXPECT_EQ(calcula("200", "30/09/2023"), "60");
  EXPECT_EQ(calcula("200", "01/10/2023"), "80");

  // Contract 300: 7 years stands for 100. 1200 months is year 100, the last entry; 96
  // months is year 8, which a literal 7 would put in the second set (91).
  EXPECT_EQ(calcula("300", "31/10/1926"), "90");
  EXPECT_EQ(calcula("300", "31/10/2018"), "90");

  // Contract 100 (2, 2, 0 years), month February 2024 (it ends on the 28th): 48 months is
  // year 4, the second set; 49 months is year 5, no third period, the first set.
  v.MESCOT = 2;
  v.ANOCOT = 2024;
  EXPECT_EQ(calcula("100", "29/02/2020"), "25.5");
  EXPECT_EQ(calcula("100", "31/01/2020"), "50");
  EXPECT_EQ(columnas(), (Textos{"50", "10", "5", "20", "30", "40", "B", "610"}));

  // The column shows the table's value, the variable its rounding; an empty one is 0.
  almacen.ejecuta("UPDATE BONIFI SET BONCC = 33.333, BONFP = NULL WHERE BONCONT = '100'");
  EXPECT_EQ(calcula("100", "31/01/2020"), "33.333");
  EXPECT_EQ(GRID1.texto(3, 26), "");
  EXPECT_DOUBLE_EQ(v.PORCCC, 33.33);
  EXPECT_DOUBLE_EQ(v.PORCFP, 0);
}

TEST_F(Bonificaciones, SinFechaOFueraDeLaTablaLaFilaQuedaYValeElPrimerConjunto) {
  // A blank or impossible start is not a date; 30/09/1926 is 1201 months, year 101,
  // outside the table. The row is not written and the variables keep the first set.
  for (std::string_view inicio : {"", "31/02/2025", "30/09/1926"}) {
    v.PORCCC = 999;
    EXPECT_EQ(calcula("200", inicio, "15/09/2024"), "") << inicio;
    EXPECT_EQ(columnas(), blancas) << inicio;
    EXPECT_EQ(porcentajes(), (Numeros{60, 1, 2, 3, 4})) << inicio;
    EXPECT_DOUBLE_EQ(v.BONCASILLA, 620) << inicio;
  }
  // The empty mask takes the other date: 25 months, year 3, the third set.
  EXPECT_EQ(calcula("200", "__/__/____", "15/09/2024"), "80");
  EXPECT_DOUBLE_EQ(v.PORCCC, 80);

  // No row for the contract, sought as it stands (" 200" is not "200"): nothing changes.
  v.BONREDACT = "X";
  v.BONCASILLA = 6;
  GRID1.escribe(3, 21, "7");
  calcula("999", "15/10/2025");
  calcula(" 200", "15/10/2025");
  EXPECT_EQ(porcentajes(), (Numeros{80, 9, 8, 7, 6}));
  EXPECT_EQ(v.BONREDACT, "X");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 6);
  EXPECT_EQ(columnas(), (Textos{"7", "9", "5", "8", "7", "6", "R", "620"}));
}

TEST_F(Bonificaciones, LeerUnPeriodoCargaSoloLasVariablesPorSuClave) {
  v.CODCONT = "100";
  LEEBONIFICA(BONIFI, v, 2);
  EXPECT_EQ(porcentajes(), (Numeros{25.5, 11, 21, 31, 41}));
  EXPECT_EQ(v.BONREDACT, "B");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 610);
  LEEBONIFICA(BONIFI, v, 3);  // 12.345 rounded, an empty FP is 0
  EXPECT_EQ(porcentajes(), (Numeros{12.35, 12, 22, 32, 0}));
  for (int periodo : {1, 0, 4}) {
    LEEBONIFICA(BONIFI, v, periodo);
    EXPECT_EQ(porcentajes(), (Numeros{50, 10, 20, 30, 40})) << periodo;
  }
  EXPECT_EQ(columnas(), blancas);

  // " 12": three characters, the first as a number is 0, so the key is "012".
  v.CODCONT = " 12";
  LEEBONIFICA(BONIFI, v, 2);
  EXPECT_DOUBLE_EQ(v.PORCCC, 16);
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 640);
  // "  45 " is not three characters: sought trimmed, "45".
  v.CODCONT = "  45 ";
  LEEBONIFICA(BONIFI, v, 3);
  EXPECT_DOUBLE_EQ(v.PORCCC, 47);
  // " 45" is three characters: key "045", which has no row, so nothing changes.
  v.CODCONT = " 45";
  LEEBONIFICA(BONIFI, v, 1);
  EXPECT_DOUBLE_EQ(v.PORCCC, 47);
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 650);
}

// ---- TRA39 ---------------------------------------------------------------------------

class ReglaTRA39 : public ::testing::Test {
 protected:
  // Applies `clave` to a row bonused at `previo` % on line 610, and gives columns 21, 27, 28.
  Textos aplica(std::string_view clave, double previo = 25) {
    GRID1.ponFilas(4);
    GRID1.filaActual = 2;
    GRID1.escribe(2, 21, previo);
    GRID1.escribe(2, 27, "R");
    GRID1.escribe(2, 28, "610");
    v.PORCCC = previo;
    v.BONCASILLA = 610;
    v.BONMODO = 2;
    v.TRA39V = std::string(clave);
    reglaTRA39(v, GRID1);
    return {GRID1.texto(2, 21), GRID1.texto(2, 27), GRID1.texto(2, 28)};
  }
  VariablesCalculo v;
  TablaTrabajo GRID1;
};

TEST_F(ReglaTRA39, LasClavesFijanElPorcentajeOLoLimitanACienYLasQueNoPasanDeCeroNoCambianNada) {
  const std::pair<std::string_view, std::string> casos[] = {{"1", "50"}, {"5", "90"}, {"02", "60"}, {"6", "100"}};
  for (const auto& [clave, porcentaje] : casos) {
    EXPECT_EQ(aplica(clave), (Textos{porcentaje, "B", "601"})) << clave;
    EXPECT_DOUBLE_EQ(v.PORCCC, std::stod(porcentaje)) << clave;
    EXPECT_DOUBLE_EQ(v.BONMODO, clave == "6" ? 2 : 1) << clave;
    EXPECT_DOUBLE_EQ(v.BONCASILLA, 601) << clave;
  }
  EXPECT_EQ(GRID1.texto(1, 21), "");

  // Any other key keeps the percentage, up to 100.
  EXPECT_EQ(aplica("7"), (Textos{"25", "B", "601"}));
  EXPECT_DOUBLE_EQ(v.BONMODO, 1);
  EXPECT_DOUBLE_EQ(v.PORCCC, 25);
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 601);
  // 1.5 is not one of the keys; a percentage above 100 is capped in both places.
  EXPECT_EQ(aplica("1.5", 150), (Textos{"100", "B", "601"}));
  EXPECT_DOUBLE_EQ(v.PORCCC, 100);
  for (std::string_view clave : {"0", "-1"}) {
    EXPECT_EQ(aplica(clave, 150), (Textos{"150", "R", "610"})) << clave;
    EXPECT_DOUBLE_EQ(v.BONMODO, 0) << clave;
    EXPECT_DOUBLE_EQ(v.PORCCC, 150) << clave;
    EXPECT_DOUBLE_EQ(v.BONCASILLA, 610) << clave;
  }
}

}  // namespace
}  // namespace valdor
