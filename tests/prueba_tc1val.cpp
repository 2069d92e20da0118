// The company's TC1: all its payroll rows in the working table, the statement over them,
// and its lines of the FAN file, worked out by hand from the rates and tariff of the test
// month (tests/boletin_prueba.h).

#include <gtest/gtest.h>

#include "engine/motor.h"
#include "engine/tc1val.h"
#include "shell/asistente.h"
#include "stores/literales.h"
#include "tests/boletin_prueba.h"

namespace valdor {
namespace {

using pruebas::blancos;
using pruebas::Boletin;
using pruebas::ceros;
using pruebas::EMP;
using pruebas::inserta;


struct Empresa : Boletin {
  Empresa() {
    Almacenes& a = programa.almacenes;
    inserta(a.desempleo, "DESEMPLEO", {{"DESCONT", "100"}, {"CONTIPO", 1}});
    inserta(a.desempleo, "DESEMPLEO", {{"DESCONT", "021"}, {"CONTIPO", 2}});
    inserta(a.bonifica, "BONIFI",
            {{"BONCONT", "007"}, {"BONCC", 50}, {"BONDE", 50}, {"BONFO", 50}, {"BONFP", 50}, {"BONDU", 7},
             {"BONBR", "B"}, {"BONCS", 601}});
    calculo.modo = ModoCalculo::UnaEmpresa;
  }
  // The one-company run as the FAN writer starts it for a company.
  void unaEmpresa(const std::string& empresa, bool devEnCta = false) {
    for (auto& l : programa.g.LINEASTC1) l.clear();
    TC1VAL tc1(calculo, liquidacion, programa);
    tc1.devEnCta = devEnCta;
    VACIABOLETIN(calculo.cajas, calculo.v.empresaPublica);
    tc1.CARGAEMPRESA(empresa, true);
  }
  const std::array<std::string, 26>& L = programa.g.LINEASTC1;
};

// Three workers: an indefinite one at epigraph 113 with 100 of structural overtime, an
// eventual one (unemployment class 2) at 016, and one under the bonus of contract 007.
TEST(TC1VAL, EmpresaDeTresTrabajadoresLineaALinea) {
  Empresa m;
  m.trabajador(EMP, "00003", {{"TRA36", "B"}, {"TRA4010", "01/03/2026"}});
  m.nomina(EMP, "00001", {{"BB6", 2000}, {"BB8", 2000}, {"BHOES", 100}});
  m.nomina(EMP, "00002", {{"BCONT", "021"}, {"BEPIG", "016"}, {"BB6", 1500}, {"BB8", 1500}});
  m.nomina(EMP, "00003", {{"BCONT", "007"}, {"BB6", 1000}, {"BB8", 1000}});
  m.nomina("28000000002", "00001", {{"BB6", 9999}, {"BB8", 9999}});  // another company
  m.unaEmpresa(EMP);

  // In the order of the index: the epigraph 016 first.
  const TablaTrabajo& g = m.calculo.GRID1;
  EXPECT_EQ(g.filas(), 10);
  EXPECT_EQ(g.texto(1, 0), "00002");
  EXPECT_EQ(g.texto(3, 0), "00003");
  EXPECT_EQ(g.texto(3, 41), "601");
  // Accidents 50.25 + 16.00 + 8.00 and 50.25 + 14.00 + 7.00; the bonus of 1000: half of
  // 236.00, and half of 55.00, 2.00 and 6.00; the other contributions by class: 3000 at
  // 7.95 and 1500 at 1.55 + 6.70 + 0.20 + 0.70.
  pruebas::esperaCifras(m.calculo.boletin,
                        {{&BOLETIN::CCBASE, 4500}, {&BOLETIN::ATCUOTAIT, 74.25}, {&BOLETIN::ATCUOTAIMS, 71.25},
                         {&BOLETIN::OTBONRED, 149.5}, {&BOLETIN::OTCUOTA, 238.5 + 137.25}, {&BOLETIN::BOLTRABAJADORES, 3}});
  const std::array<std::string, 26>& L = m.L;

  EXPECT_EQ(L[1], "EDTCA01000" "00000450000" "T" "028" "30000" "00000127350" + blancos(29));
  EXPECT_EQ(L[3], "EDTBA10000" "00000010000" "T" "028" "30000" "00000002830" + blancos(29));
  EXPECT_EQ(L[7], "EDTCA30000" + ceros(11) + " " + ceros(8) + "00000014550" " " + blancos(28));
  EXPECT_EQ(L[8], "EDTCA31000" + ceros(11) + " " + ceros(8) + "00000007425" " " + blancos(28));
  EXPECT_EQ(L[9], "EDTCA32000" + ceros(11) + " " + ceros(8) + "00000007125" " " + blancos(28));
  // Two classes with a base: no single rate, the whole base and the sum of the quotas.
  EXPECT_EQ(L[10], "EDTCA50000" "00000450000" "T" "000" "00000" "00000037575" + blancos(29));
  EXPECT_EQ(L[12], "EDTCA60000" + ceros(11) + " " + ceros(8) + "00000014950" " " + blancos(28));
  EXPECT_EQ(L[14], "EDTTT10000" + ceros(11) + " " + ceros(8) + "00000130180" " " + blancos(28));
  EXPECT_EQ(L[15], "EDTTT20000" + ceros(11) + " " + ceros(8) + "00000014550" " " + blancos(28));
  EXPECT_EQ(L[16], "EDTTT30000" + ceros(11) + " " + ceros(8) + "00000022625" " " + blancos(28));
  EXPECT_EQ(L[17], "EDTTT91000" + ceros(11) + " " + ceros(8) + "00000167355" " " + blancos(28));
  for (int vacia : {2, 4, 5, 6, 11, 13, 18, 19}) EXPECT_EQ(L[static_cast<std::size_t>(vacia)], "") << vacia;
  for (const std::string& l : L) EXPECT_TRUE(l.empty() || l.size() == 70u) << l;
}

TEST(TC1VAL, LaTablaCreceDesdeElDecimoTrabajadorYUnLiquidoNegativoLlevaSigno) {
  Empresa m;
  for (int i = 1; i <= 9; ++i) m.nomina(EMP, "0000" + std::to_string(i), {{"BB6", 100}, {"BB8", 100}});
  m.unaEmpresa(EMP);
  EXPECT_EQ(m.calculo.GRID1.filas(), 10);
  m.nomina(EMP, "00010", {{"BB6", 100}, {"BB8", 100}, {"BENFE", 600}});
  m.unaEmpresa(EMP);
  EXPECT_EQ(m.calculo.GRID1.filas(), 11);
  EXPECT_EQ(m.calculo.GRID1.texto(10, 0), "00010");

  // 1000 at 28.30 is 283.00, less 600 of sick pay: -317.00.
  EXPECT_EQ(m.L[14], "EDTTT10000" + ceros(11) + " " + ceros(8) + "00000031700" "-" + blancos(28));
  EXPECT_EQ(m.L[6], "EDTCA22000" + ceros(11) + " " + ceros(8) + "00000060000" " " + blancos(28));
}

TEST(TC1VAL, LaReglaDeTRA39SoloEnElCalculoDeUnaEmpresa) {
  Empresa m;
  m.trabajador(EMP, "00001", {{"TRA36", "B"}, {"TRA39", "3"}, {"TRA4010", "01/03/2026"}});
  m.nomina(EMP, "00001", {{"BCONT", "007"}, {"BB6", 1000}, {"BB8", 1000}, {"COZ2", 10}, {"COZ3", 20}});
  m.unaEmpresa(EMP);
  EXPECT_EQ(m.calculo.GRID1.valor(1, 21), 70);
  EXPECT_EQ(m.calculo.GRID1.valor(1, 43), 1);    // BONMODO of the row
  EXPECT_EQ(m.calculo.GRID1.valor(1, 37), 200);  // its maternity base

  Empresa todas;
  todas.calculo.modo = ModoCalculo::TodasLasEmpresas;
  todas.trabajador(EMP, "00001", {{"TRA36", "B"}, {"TRA39", "3"}, {"TRA4010", "01/03/2026"}});
  todas.nomina(EMP, "00001", {{"BCONT", "007"}, {"BB6", 1000}, {"BB8", 1000}, {"COZ2", 10}, {"COZ3", 20}});
  TC1VAL tc1(todas.calculo, todas.liquidacion, todas.programa);
  tc1.todasLasEmpresas();
  EXPECT_EQ(todas.calculo.GRID1.valor(1, 21), 50);  // the table's own percentage
  EXPECT_EQ(todas.calculo.GRID1.texto(1, 37), "");  // no maternity columns
  ASSERT_EQ(todas.dialogos.mensajes.size(), 1u);
  EXPECT_EQ(todas.dialogos.mensajes[0].texto,
            "VALDOR+ ha calculado el boletín TC-1 de 1 empresa. No se ha impreso ninguno: «Imprimir» imprime el "
            "que se ve en pantalla."_cp);
}

TEST(TC1VAL, TodasLasEmpresasParaEnElCorteSiSeCancela) {
  Empresa m;
  m.calculo.modo = ModoCalculo::TodasLasEmpresas;
  m.nomina(EMP, "00001", {{"BB6", 100}, {"BB8", 100}});
  m.nomina("28000000002", "00001", {{"BB6", 100}, {"BB8", 100}});
  m.nomina("28000000003", "00001", {{"BB6", 100}, {"BB8", 100}});
  TC1VAL tc1(m.calculo, m.liquidacion, m.programa);
  int cortes = 0;
  tc1.enCadaEmpresa = [&] {
    if (++cortes == 2) tc1.cancelado = true;
  };
  tc1.todasLasEmpresas();
  EXPECT_EQ(cortes, 2);
  EXPECT_TRUE(m.dialogos.mensajes.empty());  // stopped: no closing message
}

TEST(TC1VAL, LaLineaDBAYLaDeLaEmpresaAnteriorQueSeRepite) {
  Empresa m;
  inserta(m.programa.almacenes.cuentas, "CUENTASTAB",
          {{"CUENTCOTIZA", EMP}, {"CUENTENTIDAD", "2100"}, {"CUENTSUCURSAL", "1234"}, {"CUENTDIGITO", "58"},
           {"CUENTCUENTA", "0200123456"}});
  inserta(m.programa.almacenes.empresas, "ESA", {{"A1", "28000000002"}, {"A2", "OTRA, S.A."}, {"A8", "X1234567L"}});
  m.programa.almacenes.empresas.ejecuta("UPDATE ESA SET A8 = 'B28456718' WHERE A1 = '28000000001'");
  m.nomina(EMP, "00001", {{"BB6", 100}, {"BB8", 100}});
  m.nomina("28000000002", "00001", {{"BB6", 100}, {"BB8", 100}});
  m.unaEmpresa(EMP, true);
  EXPECT_EQ(m.L[19], "DBA " "2100" "1234" "58" "0200123456" "9" "00000B28456718" "OBRAS DEL SUR, S.L." + blancos(12));
  // The next company has no account: the line of the one before stays to be printed again.
  const std::string anterior = m.L[19];
  TC1VAL tc1(m.calculo, m.liquidacion, m.programa);
  tc1.devEnCta = true;
  tc1.CARGAEMPRESA("28000000002", true);
  EXPECT_EQ(m.L[19], anterior);

  EXPECT_EQ(tipoDocumentoDBA("12345678Z"), "1");
  EXPECT_EQ(tipoDocumentoDBA("x1234567l"), "6");
  EXPECT_EQ(tipoDocumentoDBA("B28456718"), "9");
  EXPECT_EQ(tipoDocumentoDBA("0012345678"), "1");
}

TEST(TC1VAL, ElTipoSinSeparadorDecimalSeCortaEnLaPosicionCero) {
  BOLETIN b;
  BLANQUEABOLETIN(b);
  b.CCBASE = "1000";
  b.CCTIPO = "  28.30";
  b.CCCUOTA = "283";
  b.OT2BASE = "200";
  b.OT2TIPO = "6.3";
  b.OT2CUOTA = "12.6";
  std::array<std::string, 26> L;
  // A machine whose decimal separator is the comma does not find it in "28.30".
  MONTALINEASTC1(b, empleadorDe(b), ',', L);
  EXPECT_EQ(L[1], "EDTCA01000" "00000100000" "T" "000" "28.30" "00000028300" + blancos(29));
  // The second rate of the other contributions is formatted with the machine's comma first.
  EXPECT_EQ(L[11], "EDTCA57000" "00000020000" "T" "006" "30000" "00000001260" + blancos(29));
}

}  // namespace
}  // namespace valdor
