// The working rows of the per-worker run: payroll rows, workers, contracts, epigraphs,
// incidents and training hours built by hand, and the rows handed to the statement step
// checked column by column.

#include <gtest/gtest.h>

#include "tests/mes_prueba.h"

namespace valdor {
namespace {

using pruebas::Columnas;
using pruebas::inserta;
using pruebas::Mes;

TEST(COTVAL, DiasYBasesConLaMaternidadLaDeduccionYLaBase126) {
  Mes m;
  m.nomina("28000000001", "00001", {{"BDIAS", "01"}, {"COZ1", 4}, {"COZ2", 29}, {"COZ3", 50.5}, {"B126", -10}});
  m.nomina("28000000001", "00002", {{"BDIAL", "31"}, {"COZ2", 30}, {"COZ3", 40}});
  m.nomina("28000000001", "00003", {{"BB6", 1000.004}, {"BHONS", 100.005}, {"BB8", 900.5}, {"COZ2", -2}, {"COZ3", 10}});
  m.nomina("28000000002", "00001");  // not marked
  m.nomina("28000000001", "00004", {{"BCONT", "N"}});
  inserta(m.programa.almacenes.periodo, "INCIDEN",
          {{"IEMP", "28000000001"}, {"ITRA", "00003"}, {"ILIN", "01"}, {"ITIP", "01"}, {"I27", 50}});
  inserta(m.programa.almacenes.periodo, "INCIDEN",
          {{"IEMP", "28000000001"}, {"ITRA", "00003"}, {"ILIN", "02"}, {"ITIP", "01"}, {"I27", 70}});
  m.corre();
  ASSERT_EQ(m.filas.size(), 3u);

  const TablaTrabajo& a = m.filas[0];
  EXPECT_EQ(a.texto(1, 0), "00001");
  EXPECT_DOUBLE_EQ(a.valor(1, 4), 30);  // 1 registered day plus 29 of maternity
  EXPECT_EQ(a.texto(1, 36), "M");
  EXPECT_DOUBLE_EQ(a.valor(1, 37), 1464.5);  // 29 days of 50.50
  EXPECT_EQ(a.texto(1, 35), "29");
  EXPECT_EQ(a.texto(1, 20), "0");  // a negative base 126 reads 0
  EXPECT_DOUBLE_EQ(a.valor(1, 40), 1);  // a contract missing in DESEMPLEO is class 1

  EXPECT_EQ(m.filas[1].texto(1, 4), "31");  // from 30 days on, the contribution days stand alone
  EXPECT_DOUBLE_EQ(m.filas[1].valor(1, 37), 1200);

  const TablaTrabajo& c = m.filas[2];
  EXPECT_EQ(c.texto(1, 4), "30");  // a negative maternity changes no day...
  EXPECT_DOUBLE_EQ(c.valor(1, 37), -20);  // ...but gives a negative base
  // 1000.00 less (100.01 + 50): only the first incident counts; the accidents base keeps
  // the overtime and is not rounded first.
  EXPECT_DOUBLE_EQ(c.valor(1, 9), 849.99);
  EXPECT_DOUBLE_EQ(c.valor(1, 11), 850.5);
  EXPECT_EQ(c.texto(1, 13), "100.005");

  ASSERT_FALSE(m.dialogos.progresos.empty());
  EXPECT_EQ(m.dialogos.progresos.back().titulo, "100");
  EXPECT_EQ(m.dialogos.progresos.back().texto, "Calculando: empresa 1 de 1, EMPRESA 28000000001|RUIZ SOLA, ANA");
}

TEST(COTVAL, ContratoClaseDeJornadaYTrabajador) {
  Mes m;
  inserta(m.programa.almacenes.desempleo, "DESEMPLEO", {{"DESCONT", "007"}, {"CONTIPO", 2}});
  inserta(m.programa.almacenes.desempleo, "DESEMPLEO", {{"DESCONT", "ABC"}, {"CONTIPO", 3}});
  inserta(m.programa.almacenes.constant, "EPIGRA", {{"EPIGRAFE", "113"}, {"ILT", 1.555}, {"IMS", 0.7}});
  m.trabajador("28000000001", "00001", {{"TRA28", 1}, {"HAB", 1}, {"TRA39", "7"}, {"Lib3", 1.004}, {"TRA35", "1"}});
  m.trabajador("28000000001", "00002", {{"TRA22", 1}});
  m.nomina("28000000001", "00001", {{"BCONT", "7"}});
  m.nomina("28000000001", "00002", {{"BCONT", "ABC"}});
  m.nomina("28000000001", "00009");  // not in WK: the worker before's values go on
  m.nomina("0", "00005");            // a company code of 0 with a worker is still a worker
  m.nomina("0", "0");                // neither: no worker
  m.sel.grid.push_back({"CERO", true, "0", "", "", 0});
  m.corre();
  ASSERT_EQ(m.filas.size(), 4u);
  EXPECT_DOUBLE_EQ(m.filas[0].valor(1, 40), 2);  // "7" seeks "007"
  EXPECT_DOUBLE_EQ(m.filas[0].valor(1, 43), 2);  // TRA28 then HAB: class 2, not 1
  EXPECT_EQ(m.variables[0].EPICLAVE, "114");     // Lib3 1.004 rounds to 1
  EXPECT_EQ(m.variables[0].TIPOTRA, "1");
  EXPECT_DOUBLE_EQ(m.filas[1].valor(1, 40), 3);  // a code that is not a number seeks its text
  EXPECT_DOUBLE_EQ(m.filas[1].valor(1, 43), 3);
  EXPECT_EQ(m.variables[2].TRA39V, "");          // the worker before (00002) had no TRA39
  EXPECT_EQ(m.variables[2].TIPOTRA, "");
  EXPECT_DOUBLE_EQ(m.filas[2].valor(1, 43), 0);
  EXPECT_EQ(m.filas[3].texto(1, 0), "00005");

  m.calculo.v.EPIBUSCA = "113";
  m.calculo.LEEEPIGRAFE();
  EXPECT_DOUBLE_EQ(m.calculo.v.TIPOILT, 1.56);
  m.calculo.v.FLAGDECIMAL = 1;
  m.calculo.LEEEPIGRAFE();
  EXPECT_DOUBLE_EQ(m.calculo.v.TIPOILT, 1.555);
  m.calculo.v.EPIBUSCA = "999";  // not found: the rates stay
  m.calculo.LEEEPIGRAFE();
  EXPECT_DOUBLE_EQ(m.calculo.v.TIPOILT, 1.555);
  EXPECT_EQ(claveContrato("85"), "085");
  EXPECT_EQ(claveContrato(" 097"), "097");
}

TEST(COTVAL, LasHorasDeFormacionDeLosContratos85y97) {
  Mes m;
  m.calculo.PRECIOHORADIST = 3.5;
  m.calculo.PRECIOHORAPRES = 6;
  m.trabajador("28000000001", "00001", {{"TRA36", "B"}});
  m.nomina("28000000001", "00001", {{"BCONT", "085"}});
  inserta(m.programa.almacenes.formacion, "FORMACION",
          {{"FORMAPATEMP", "28000000001"}, {"FORMANUMATRI", "00001"}, {"FORMAMES", "10"}, {"FORMAANO", "2026"},
           {"FORMAHORASDISTAN", 10}, {"FORMAHORASPRESEN", 25}});
  m.corre();
  ASSERT_EQ(m.filas.size(), 1u);
  EXPECT_EQ(m.variables[0].CODCONT, "085");
  EXPECT_DOUBLE_EQ(m.filas[0].valor(1, 38), 35);
  EXPECT_DOUBLE_EQ(m.filas[0].valor(1, 39), 150);
}

TEST(COTVAL, ElEmpleadorSoloSeCargaConSuClave) {
  Mes m;
  inserta(m.programa.almacenes.empresas, "ESA",
          {{"A1", "28000000001"}, {"A2", "PRIMERA, S.L."}, {"A4", "MADRID"}, {"EB14", "45"}});
  m.calculo.boletin.BOLNOMBRE = "ANTES";
  m.calculo.CARGAEMPRESA("");  // the per-worker run's key: nothing found, the record blank
  EXPECT_EQ(m.calculo.boletin.BOLNOMBRE.texto(), std::string(65, ' '));
  EXPECT_TRUE(m.calculo.v.empresaPublica.empty());
  m.calculo.CARGAEMPRESA("28000000001");
  EXPECT_EQ(m.calculo.v.empresaPublica, "28000000001");
  EXPECT_EQ(m.calculo.boletin.BOLNOMBRE.texto().substr(0, 13), "PRIMERA, S.L.");
  EXPECT_EQ(m.calculo.cajas[7], "45      ");
  EXPECT_EQ(m.calculo.cajas[10], "28000000001" + std::string(8, ' '));
}

}  // namespace
}  // namespace valdor
