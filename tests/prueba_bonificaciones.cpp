// Contract bonuses: the set of percentages picked by the contract's year for the month,
// what reaches the working row and the run variables, the reader of a period's set, and
// the fixed reduced percentage of the TRA39 key. Expected values are worked from the
// period lengths and the dates by hand; the contribution month is October 2026, whose
// last day is 31/10/2026.

#include <gtest/gtest.h>

#include <string>

#include "engine/bonificaciones.h"
#include "stores/almacen.h"
#include "stores/esquemas.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;

// One set of a contract: common, accidents, unemployment, training, FP, "TR", years.
struct Conjunto {
  Valor cc, at, de, fo, fp, tr, du;
};

class Bonificaciones : public ::testing::Test {
 protected:
  void SetUp() override {
    Almacen::crea(carpeta / "BONIFICA.MDB", esquemas::tablasBONIFICA());
    almacen.abre(carpeta / "BONIFICA.MDB");
    // Two years of the first set, two of the second, none of the third.
    contrato("100", {50, 10, 20, 30, 40, 5, 2}, {25.5, 11, 21, 31, 41, 6, 2}, {12.345, 12, 22, 32, Valor(), 7, 0},
             "B", 610);
    // One year of each set.
    contrato("200", {60, 1, 2, 3, 4, 5, 1}, {70, 1.5, 2.5, 3.5, 4.5, 5.5, 1}, {80, 9, 8, 7, 6, 5, 1}, "R", 620);
    // No limit on the first set: the other two are never reached.
    contrato("300", {90, 1, 1, 1, 1, 1, 7}, {91, 2, 2, 2, 2, 2, 2}, {92, 3, 3, 3, 3, 3, 3}, "B", 630);
    // Keys of the reader.
    contrato("012", {15, 0, 0, 0, 0, 0, 1}, {16, 0, 0, 0, 0, 0, 1}, {17, 0, 0, 0, 0, 0, 1}, "R", 640);
    contrato("45", {45, 0, 0, 0, 0, 0, 1}, {46, 0, 0, 0, 0, 0, 1}, {47, 0, 0, 0, 0, 0, 1}, "B", 650);
    BONIFI.abre(almacen, "BONIFI");

    v.MESCOT = 10;
    v.ANOCOT = 2026;
    GRID1.ponFilas(5);
    GRID1.filaActual = 3;
  }

  void contrato(const std::string& codigo, const Conjunto& a, const Conjunto& b, const Conjunto& c,
                const std::string& br, double cs) {
    almacen.ejecuta(
        "INSERT INTO BONIFI (BONCONT, BONCC, BONAT, BONDE, BONFO, BONFP, BONTR, BONDU, "
        "BONCC1, BONAT1, BONDE1, BONFO1, BONFP1, BONTR1, BONDU1, "
        "BONCC2, BONAT2, BONDE2, BONFO2, BONFP2, BONTR2, BONDU2, BONBR, BONCS) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {codigo, a.cc, a.at, a.de, a.fo, a.fp, a.tr, a.du, b.cc, b.at, b.de, b.fo, b.fp, b.tr, b.du,
         c.cc, c.at, c.de, c.fo, c.fp, c.tr, c.du, br, cs});
  }

  void calcula(const std::string& codigo, std::string_view inicio, std::string_view alternativa = "") {
    v.CODCONT = codigo;
    BONIFICACIONES(BONIFI, inicio, alternativa, v, GRID1);
  }

  // Columns 21 to 28 of the current row.
  std::vector<std::string> columnas() const {
    std::vector<std::string> c;
    for (int i = 21; i <= 28; ++i) c.push_back(GRID1.texto(GRID1.filaActual, i));
    return c;
  }
  // PORCCC, PORCAT, PORCDE, PORCFO, PORCFP.
  std::vector<double> porcentajes() const { return {v.PORCCC, v.PORCAT, v.PORCDE, v.PORCFO, v.PORCFP}; }

  CarpetaTemporal carpeta;
  Almacen almacen;
  Tabla BONIFI;
  VariablesCalculo v;
  TablaTrabajo GRID1;
  const std::vector<std::string> blancas = std::vector<std::string>(8, "");
};

TEST_F(Bonificaciones, LaCifraDeAnosEligeElConjuntoQueVaALaFilaYALasVariables) {
  // 15/09/2025 to 31/10/2026: 13 months, year 2 -> second set of contract 200.
  calcula("200", "15/09/2025");
  EXPECT_EQ(columnas(), (std::vector<std::string>{"70", "1.5", "5.5", "2.5", "3.5", "4.5", "R", "620"}));
  EXPECT_EQ(porcentajes(), (std::vector<double>{70, 1.5, 2.5, 3.5, 4.5}));
  EXPECT_EQ(v.BONREDACT, "R");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 620);
  // Only the current row is written.
  for (int c = 21; c <= 28; ++c) {
    EXPECT_EQ(GRID1.texto(1, c), "");
    EXPECT_EQ(GRID1.texto(2, c), "");
  }

  // 15/10/2024: 24 months, year 2 still; 15/09/2024: 25 months, year 3 -> third set.
  calcula("200", "15/10/2024");
  EXPECT_EQ(GRID1.texto(3, 21), "70");
  calcula("200", "15/09/2024");
  EXPECT_EQ(columnas(), (std::vector<std::string>{"80", "9", "5", "8", "7", "6", "R", "620"}));
  EXPECT_EQ(porcentajes(), (std::vector<double>{80, 9, 8, 7, 6}));

  // Year 4 is past the last period: entry 0, back on the first set.
  calcula("200", "01/10/2023");  // 36 months -> year 3
  EXPECT_EQ(GRID1.texto(3, 21), "80");
  calcula("200", "30/09/2023");  // 37 months -> year 4
  EXPECT_EQ(columnas(), (std::vector<std::string>{"60", "1", "5", "2", "3", "4", "R", "620"}));
  EXPECT_EQ(porcentajes(), (std::vector<double>{60, 1, 2, 3, 4}));
}

TEST_F(Bonificaciones, UnAnoEmpezadoCuentaEnteroYLosDiasNoCuentan) {
  // 01/10/2025 to 31/10/2026 is 12 month changes: year 1, first set.
  calcula("200", "01/10/2025");
  EXPECT_EQ(GRID1.texto(3, 21), "60");
  // 30/09/2025 is one day earlier but 13 month changes: year 2, second set.
  calcula("200", "30/09/2025");
  EXPECT_EQ(GRID1.texto(3, 21), "70");
  EXPECT_DOUBLE_EQ(v.PORCCC, 70);
  // The same calendar month: 0 months, year 0, the first set written.
  calcula("200", "31/10/2026");
  EXPECT_EQ(columnas(), (std::vector<std::string>{"60", "1", "5", "2", "3", "4", "R", "620"}));
  EXPECT_DOUBLE_EQ(v.PORCCC, 60);
}

TEST_F(Bonificaciones, FebreroAcabaSiempreEl28) {
  // End 28/02/2024 in a leap year; start 29/02/2020 lies 48 months before: year 4.
  v.MESCOT = 2;
  v.ANOCOT = 2024;
  calcula("100", "29/02/2020");  // 2 + 2 + 0 years: year 4 is the second set
  EXPECT_EQ(GRID1.texto(3, 21), "25.5");
  calcula("100", "31/01/2020");  // 49 months -> year 5, entry 0: first set
  EXPECT_EQ(GRID1.texto(3, 21), "50");
}

TEST_F(Bonificaciones, SinTercerPeriodoElQuintoAnoVuelveAlPrimerConjunto) {
  // Contract 100: 2, 2 and 0 years. Year 3 is the second set, year 5 entry 0.
  calcula("100", "15/10/2023");  // 36 months -> year 3
  EXPECT_EQ(columnas(), (std::vector<std::string>{"25.5", "11", "6", "21", "31", "41", "B", "610"}));
  EXPECT_EQ(porcentajes(), (std::vector<double>{25.5, 11, 21, 31, 41}));
  calcula("100", "15/10/2021");  // 60 months -> year 5
  EXPECT_EQ(columnas(), (std::vector<std::string>{"50", "10", "5", "20", "30", "40", "B", "610"}));
  EXPECT_EQ(porcentajes(), (std::vector<double>{50, 10, 20, 30, 40}));
  EXPECT_EQ(v.BONREDACT, "B");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 610);
}

TEST_F(Bonificaciones, LaColumnaMuestraElValorDeLaTablaYLaVariableElRedondeado) {
  // The third set of contract 100 is never reached by years (0 years); through the
  // reader it shows 12.345 loaded as 12.35 and an empty FP as 0.
  v.CODCONT = "100";
  v.PORCFP = 9;
  LEEBONIFICA(BONIFI, v, 3);
  EXPECT_DOUBLE_EQ(v.PORCCC, 12.35);
  EXPECT_DOUBLE_EQ(v.PORCFP, 0);

  almacen.ejecuta("UPDATE BONIFI SET BONCC = 33.333, BONFP = NULL WHERE BONCONT = '200'");
  calcula("200", "31/10/2026");
  EXPECT_EQ(GRID1.texto(3, 21), "33.333");
  EXPECT_EQ(GRID1.texto(3, 26), "");
  EXPECT_DOUBLE_EQ(v.PORCCC, 33.33);
  EXPECT_DOUBLE_EQ(v.PORCFP, 0);
}

TEST_F(Bonificaciones, SieteAnosSonCienAnosDelPrimerConjunto) {
  calcula("300", "15/10/1976");  // 600 months -> year 50
  EXPECT_EQ(GRID1.texto(3, 21), "90");
  calcula("300", "31/10/1926");  // 1200 months -> year 100, the last entry
  EXPECT_EQ(columnas(), (std::vector<std::string>{"90", "1", "1", "1", "1", "1", "B", "630"}));
  EXPECT_DOUBLE_EQ(v.PORCCC, 90);
}

TEST_F(Bonificaciones, UnAnoFueraDeLaTablaDejaLaFilaYElPrimerConjunto) {
  // 30/09/1926: 1201 months, year 101, outside the table of years.
  v.PORCCC = 999;
  v.BONCASILLA = 1;
  calcula("300", "30/09/1926");
  EXPECT_EQ(columnas(), blancas);
  EXPECT_EQ(porcentajes(), (std::vector<double>{90, 1, 1, 1, 1}));
  EXPECT_EQ(v.BONREDACT, "B");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 630);

  // The same for contract 200, whose first set differs from the chosen one of other years.
  calcula("200", "30/09/1926");
  EXPECT_EQ(columnas(), blancas);
  EXPECT_EQ(porcentajes(), (std::vector<double>{60, 1, 2, 3, 4}));
}

TEST_F(Bonificaciones, LaMascaraTomaLaFechaAlternativaYElBlancoNo) {
  // 15/09/2024: 25 months, year 3 -> third set of contract 200.
  calcula("200", "__/__/____", "15/09/2024");
  EXPECT_EQ(GRID1.texto(3, 21), "80");
  EXPECT_DOUBLE_EQ(v.PORCCC, 80);

  // A blank start is not a date: the first set stands in the variables, the row is not written.
  GRID1.LIMPIAGRID();
  GRID1.ponFilas(5);
  GRID1.filaActual = 3;
  calcula("200", "", "15/09/2024");
  EXPECT_EQ(columnas(), blancas);
  EXPECT_EQ(porcentajes(), (std::vector<double>{60, 1, 2, 3, 4}));
  EXPECT_EQ(v.BONREDACT, "R");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 620);

  // Nor is an impossible date; and the mask with an empty alternative is none either.
  calcula("200", "31/02/2025", "15/09/2024");
  EXPECT_EQ(columnas(), blancas);
  calcula("200", "__/__/____", "");
  EXPECT_EQ(columnas(), blancas);
}

TEST_F(Bonificaciones, UnContratoSinFilaNoCambiaNada) {
  v.PORCCC = 1;
  v.PORCAT = 2;
  v.PORCDE = 3;
  v.PORCFO = 4;
  v.PORCFP = 5;
  v.BONREDACT = "X";
  v.BONCASILLA = 6;
  GRID1.escribe(3, 21, "7");
  GRID1.escribe(3, 27, "Y");
  calcula("999", "15/10/2025");
  EXPECT_EQ(porcentajes(), (std::vector<double>{1, 2, 3, 4, 5}));
  EXPECT_EQ(v.BONREDACT, "X");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 6);
  EXPECT_EQ(columnas(), (std::vector<std::string>{"7", "", "", "", "", "", "Y", ""}));
  // The key is sought as it stands: " 100" is not "100".
  calcula(" 100", "15/10/2025");
  EXPECT_DOUBLE_EQ(v.PORCCC, 1);
}

TEST_F(Bonificaciones, LeerUnPeriodoCargaSoloLasVariables) {
  v.CODCONT = "100";
  LEEBONIFICA(BONIFI, v, 2);
  EXPECT_EQ(porcentajes(), (std::vector<double>{25.5, 11, 21, 31, 41}));
  EXPECT_EQ(v.BONREDACT, "B");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 610);
  LEEBONIFICA(BONIFI, v, 3);
  EXPECT_EQ(porcentajes(), (std::vector<double>{12.35, 12, 22, 32, 0}));
  for (int periodo : {1, 0, 4, -2}) {
    v.PORCCC = -1;
    LEEBONIFICA(BONIFI, v, periodo);
    EXPECT_EQ(porcentajes(), (std::vector<double>{50, 10, 20, 30, 40})) << periodo;
  }
  for (int c = 21; c <= 28; ++c) EXPECT_EQ(GRID1.texto(3, c), "");
}

TEST_F(Bonificaciones, LeerBuscaTresCaracteresPorNumeroYTextoYLosDemasRecortados) {
  // " 12": the first character as a number is 0, so the key is "012".
  v.CODCONT = " 12";
  LEEBONIFICA(BONIFI, v, 2);
  EXPECT_DOUBLE_EQ(v.PORCCC, 16);
  EXPECT_EQ(v.BONREDACT, "R");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 640);
  // "  45 " is not three characters: sought as "45".
  v.CODCONT = "  45 ";
  LEEBONIFICA(BONIFI, v, 3);
  EXPECT_DOUBLE_EQ(v.PORCCC, 47);
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 650);
  // " 45" is three characters: key "045", which has no row, so nothing changes.
  v.CODCONT = " 45";
  LEEBONIFICA(BONIFI, v, 1);
  EXPECT_DOUBLE_EQ(v.PORCCC, 47);
  EXPECT_EQ(v.BONREDACT, "B");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 650);
}

// ---- TRA39 ---------------------------------------------------------------------------

class ReglaTRA39 : public ::testing::Test {
 protected:
  void SetUp() override {
    GRID1.ponFilas(4);
    GRID1.filaActual = 2;
    GRID1.escribe(2, 21, "25");
    GRID1.escribe(2, 27, "R");
    GRID1.escribe(2, 28, "610");
    v.PORCCC = 25;
    v.BONCASILLA = 610;
    v.BONMODO = 2;
  }
  void aplica(std::string_view clave) {
    v.TRA39V = std::string(clave);
    reglaTRA39(v, GRID1);
  }
  VariablesCalculo v;
  TablaTrabajo GRID1;
};

TEST_F(ReglaTRA39, LasClavesDeUnoACincoFijanElPorcentaje) {
  const std::pair<std::string_view, double> casos[] = {{"1", 50}, {"2", 60}, {"3", 70}, {"4", 80}, {"5", 90},
                                                       {"02", 60}, {" 3x", 70}};
  for (const auto& [clave, porcentaje] : casos) {
    SetUp();
    aplica(clave);
    EXPECT_DOUBLE_EQ(v.PORCCC, porcentaje) << clave;
    EXPECT_DOUBLE_EQ(GRID1.valor(2, 21), porcentaje) << clave;
    EXPECT_DOUBLE_EQ(v.BONMODO, 1) << clave;
    EXPECT_EQ(GRID1.texto(2, 27), "B");
    EXPECT_EQ(GRID1.texto(2, 28), "601");
    EXPECT_DOUBLE_EQ(v.BONCASILLA, 601);
  }
  EXPECT_EQ(GRID1.texto(2, 21), "70");
  EXPECT_EQ(GRID1.texto(1, 21), "");
}

TEST_F(ReglaTRA39, ElSeisEsElCienPorCienYModoDos) {
  aplica("6");
  EXPECT_DOUBLE_EQ(v.BONMODO, 2);
  EXPECT_DOUBLE_EQ(v.PORCCC, 100);
  EXPECT_EQ(GRID1.texto(2, 21), "100");
  EXPECT_EQ(GRID1.texto(2, 27), "B");
  EXPECT_EQ(GRID1.texto(2, 28), "601");
}

TEST_F(ReglaTRA39, OtraClaveMantieneElPorcentajeYMarcaLaLinea601) {
  aplica("7");
  EXPECT_DOUBLE_EQ(v.BONMODO, 1);
  EXPECT_DOUBLE_EQ(v.PORCCC, 25);
  EXPECT_EQ(GRID1.texto(2, 21), "25");
  EXPECT_EQ(GRID1.texto(2, 27), "B");
  EXPECT_EQ(GRID1.texto(2, 28), "601");
  EXPECT_DOUBLE_EQ(v.BONCASILLA, 601);

  // 1.5 is not one of the keys; a percentage above 100 is capped in both places.
  v.PORCCC = 150;
  GRID1.escribe(2, 21, "150");
  aplica("1.5");
  EXPECT_DOUBLE_EQ(v.BONMODO, 1);
  EXPECT_DOUBLE_EQ(v.PORCCC, 100);
  EXPECT_EQ(GRID1.texto(2, 21), "100");
}

TEST_F(ReglaTRA39, UnaClaveQueNoPasaDeCeroSoloPoneElModoACero) {
  for (std::string_view clave : {"0", "", "-1", "abc"}) {
    SetUp();
    v.PORCCC = 150;
    aplica(clave);
    EXPECT_DOUBLE_EQ(v.BONMODO, 0) << clave;
    EXPECT_DOUBLE_EQ(v.PORCCC, 150) << clave;
    EXPECT_DOUBLE_EQ(v.BONCASILLA, 610) << clave;
    EXPECT_EQ(GRID1.texto(2, 21), "25") << clave;
    EXPECT_EQ(GRID1.texto(2, 27), "R") << clave;
    EXPECT_EQ(GRID1.texto(2, 28), "610") << clave;
  }
}

}  // namespace
}  // namespace valdor
