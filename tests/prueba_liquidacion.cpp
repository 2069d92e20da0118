// The statement of a worker and the worker's lines, worked out by hand from the rates and
// the tariff of the test month (tests/boletin_prueba.h).

#include <gtest/gtest.h>

#include "statement/lineas.h"
#include "tests/boletin_prueba.h"

namespace valdor {
namespace {

using pruebas::blancos;
using pruebas::Boletin;
using pruebas::ceros;
using pruebas::EMP;
using pruebas::esperaCifras;
using pruebas::esperaTextos;
using pruebas::inserta;

TEST(Liquidacion, TrabajadorDeMesCompleto) {
  Boletin m;
  m.trabajador(EMP, "00001", {{"INICIALES", "AGL"}});
  m.fila(1, {{9, "2000"}, {11, "2000"}});
  m.liquidacion.CALCULATRABAJADOR();

  // Accidents: 2000 at 0.80 and 0.70; the eight empty rows add 0. 2000 at 28.30 is 566.
  esperaCifras(m.b, {{&BOLETIN::ATCUOTAIT, 16}, {&BOLETIN::ATCUOTAIMS, 14}, {&BOLETIN::ATBASE, 2000},
                     {&BOLETIN::CCBASE, 2000}, {&BOLETIN::CCCUOTA, 566}, {&BOLETIN::CGLIQUIDO, 566},
                     {&BOLETIN::ATTOTAL, 30}, {&BOLETIN::ATLIQUIDO, 30}, {&BOLETIN::OTCUOTA, 0}});
  // The rate as the file holds it; rates without a base are not shown; the rows of no
  // concept read "0"; nothing fills the by-class bases here, so the other contributions
  // end at 0 with no rate.
  esperaTextos(m.b, {{&BOLETIN::CCTIPO, "  28.30    "}, {&BOLETIN::HETIPO, blancos(11)},
                     {&BOLETIN::FPTIPO, blancos(11)}, {&BOLETIN::ASTIPO, "0" + blancos(10)},
                     {&BOLETIN::OCCUOTA, "0" + blancos(16)}, {&BOLETIN::OTBASE, "0" + blancos(18)},
                     {&BOLETIN::OTTIPO, blancos(11)}, {&BOLETIN::AINGRESAR, "596" + blancos(14)},
                     {&BOLETIN::APERCIBIR, blancos(17)}, {&BOLETIN::BOLTRABAJADORES, "1" + blancos(10)},
                     {&BOLETIN::BOLPERDESDE, "1026    "}});
  EXPECT_EQ(m.calculo.cajas[58], m.b.AINGRESAR.texto());
  EXPECT_EQ(m.calculo.cajas[16], m.b.CCCUOTA.texto());

  EXPECT_EQ(m.linea("TRA"), "TRA" "28" "1234567890" "1" "   " "0000012345678Z" "001" "OFICINA DE PE\xA5" "ALARA" +
                                blancos(6) + "000" + blancos(6));
  EXPECT_EQ(m.linea("AYN"), "AYN" "GARCIA" + blancos(14) + "LOPEZ" + blancos(15) + "ANA" + blancos(12) + "AGL  " +
                                blancos(7));
  EXPECT_EQ(m.linea("DAT"), "DAT0" "0010" " " " " "    " " " "030" "00" " " "  0000  " "05" "    " "100" "113"
                            "000" "000" + blancos(15) + "2800245" " ");
  EXPECT_EQ(m.linea("ED1"), "EDLBA01000" "0200000" " " + ceros(26) + blancos(26));
  EXPECT_EQ(m.linea("ED2"), "EDLBA02000" "0200000" " " + ceros(26) + blancos(26));
  EXPECT_EQ(m.lineas(), 5);  // no other kind: no days of leave, no bonus
  for (const char* tipo : {"TRA", "AYN", "DAT", "ED1", "ED2"}) EXPECT_EQ(m.linea(tipo).size(), 70u) << tipo;
}

TEST(Liquidacion, LosInterruptoresReservadosSoloActuanSiSeEncienden) {
  Boletin m;
  m.fila(1, {{9, "2000"}, {11, "2000"}, {29, "96"}});
  // A fixed surcharge of 20% on 596 - 96 = 500.
  m.liquidacion.interruptores.MODODOS = 1;
  m.liquidacion.interruptores.RECARGOFIJO = 20;
  m.liquidacion.CALCULATRABAJADOR(false);
  EXPECT_EQ(m.b.RECARGOPCT.texto(), "20");
  esperaCifras(m.b, {{&BOLETIN::RECARGO, 100}, {&BOLETIN::AINGRESAR, 600}});
  // With the first two switches on, no bonus is worked out: the subsidy is not taken.
  m.calculo.CARGAEMPRESA("");
  m.liquidacion.interruptores.MODOUNO = 1;
  m.liquidacion.CALCULATRABAJADOR(false);
  EXPECT_EQ(m.b.OTBONRED.texto(), blancos(15));
  EXPECT_DOUBLE_EQ(m.b.AINGRESAR.valor(), 596 * 1.2);
}

TEST(Liquidacion, BajaPorEnfermedadYAccidenteSeRepartenLaBase126) {
  Boletin m;
  m.fila(1, {{9, "1500"}, {10, "016"}, {11, "1500"}, {14, "262.5"}, {16, "396"}, {20, "900"}});
  m.bajas("00001", 6, 9, 0);
  m.liquidacion.CALCULATRABAJADOR();

  // 600 at epigraph 016 (20.10 and 20.10) and the 900 of leave at 126 (5.85 and 3.15).
  // The compensation of sick pay comes off the general contributions (1500 at 28.30 is
  // 424.50).
  esperaCifras(m.b, {{&BOLETIN::ATCUOTAIT, 25.95}, {&BOLETIN::ATCUOTAIMS, 23.25}, {&BOLETIN::CGTOTAL, 262.5},
                     {&BOLETIN::CGLIQUIDO, 424.5 - 262.5}, {&BOLETIN::ATLIQUIDO, 49.2 - 396}});

  // 30 days less 6 and 9 of leave; the accidents base less the base of leave.
  EXPECT_EQ(m.linea("DAT").substr(14, 6), " 01500");
  EXPECT_EQ(m.linea("ED2"), "EDLBA02000" "0060000" " " + ceros(26) + blancos(26));
  const std::string baja = "DAT0" "0010" " " " " "    " " ";
  EXPECT_EQ(m.linea("DAE"), baja + "006" "00" " " "  0000  " "05" "    " "100" "126" "000" "000" + blancos(23));
  EXPECT_EQ(m.linea("DAA"), baja + "009" "00" " " "  0000  " "05" "    " "100" "126" "000" "000" + blancos(23));
  // 900 shared by days: 900 / 15 x 6 and 900 / 15 x 9.
  EXPECT_EQ(m.linea("EDE"), "EDLBA02000" "0036000" " " + ceros(26) + blancos(26));
  EXPECT_EQ(m.linea("EDA"), "EDLBA02000" "0054000" " " + ceros(26) + blancos(26));
  EXPECT_EQ(m.linea("ED5"), "EDLCD01" "006" "0026250" " 01" + ceros(24) + blancos(26));
  EXPECT_EQ(m.linea("ED6"), "EDLCD03" "009" "0039600" " 03" + ceros(24) + blancos(26));

  // A share that rounds to 0 leaves its line out: 0.01 / 10 x 1 is 0, x 9 is 0.01.
  m.fila(1, {{0, "00002"}, {9, "1500"}, {11, "1500"}, {20, "0.01"}});
  m.bajas("00002", 1, 9, 0);
  m.liquidacion.CALCULATRABAJADOR();
  EXPECT_NE(m.linea("DAE", "00002"), "");
  EXPECT_EQ(m.linea("EDE", "00002"), "");
  EXPECT_EQ(m.linea("EDA", "00002"), "EDLBA02000" "0000001" " " + ceros(26) + blancos(26));
}

TEST(Liquidacion, ElRecalculoSinBajaDejaLaLineaDeBajaAnterior) {
  Boletin m;
  m.fila(1, {{9, "1500"}, {11, "1500"}, {20, "300"}});
  m.bajas("00001", 10, 0, 0);
  m.liquidacion.CALCULATRABAJADOR();
  ASSERT_EQ(m.linea("DAT").substr(15, 3), "020");
  const std::string dae = m.linea("DAE");
  ASSERT_NE(dae, "");

  m.programa.almacenes.ilts.ejecuta("DELETE FROM ILTS");
  m.liquidacion.CALCULATRABAJADOR();
  EXPECT_EQ(m.linea("DAT").substr(15, 3), "030");  // the month's line is replaced...
  EXPECT_EQ(m.linea("DAE"), dae);                   // ...the leave's line stays from before
}

TEST(Liquidacion, MaternidadConLaBonificacionDeLaSustitucion) {
  Boletin m;
  // 14 days worked and 16 of maternity at 58.00 a day.
  m.fila(1, {{4, "30"}, {9, "812"}, {11, "812"}, {35, "16"}, {36, "M"}, {37, "928"}});
  m.bajas("00001", 0, 0, 16);
  inserta(m.programa.almacenes.periodo, "INCIDEN",
          {{"IEMP", EMP}, {"ITRA", "00001"}, {"ILIN", "01"}, {"ITIP", "04"}, {"MATERBONI", "1"},
           {"DIAINICIOMATERBON", "2026-10-15"}, {"DIAFINCIOMATERBON", "2026-11-30"}});
  m.liquidacion.CALCULATRABAJADOR();

  // 812 at 113 (6.50 and 5.68) and the maternity base of 928 at 126 (6.03 and 3.25).
  // The leave from the 15th to the end of October, 17 days: 58 x 17 = 986 at
  // 23.60 + 0.20 + 0.60 + 0.65 + 0.35 + b 5.50 = 30.90 gives 304.674. To receive:
  // 236.30 + 21.46 - 304.67.
  esperaCifras(m.b, {{&BOLETIN::ATCUOTAIT, 12.53}, {&BOLETIN::ATCUOTAIMS, 8.93}, {&BOLETIN::ATBASE, 1740},
                     {&BOLETIN::FPBASE, 928}, {&BOLETIN::FPCUOTA, 6.5}, {&BOLETIN::CCCUOTA, 229.8},
                     {&BOLETIN::OTBONRED, 304.67}, {&BOLETIN::OTLIQUIDO, -304.67}, {&BOLETIN::APERCIBIR, 46.91}});
  EXPECT_DOUBLE_EQ(m.liquidacion.BONIFMATER, 304.67);
  EXPECT_EQ(m.b.AINGRESAR.texto(), blancos(17));

  EXPECT_EQ(m.linea("DAT").substr(15, 3), "014");
  EXPECT_EQ(m.linea("DAM"), "DAT0" "0010" "       " "016" "00" " " "  0000  " "05" "    " "100" "126" "000" "000" +
                                blancos(23));
  EXPECT_EQ(m.linea("EDM"), "EDLBA20000" "0092800" " " + ceros(26) + blancos(26));
  // The bonus line with its key by BONMODO 0 and no dates.
  EXPECT_EQ(m.linea("ED9"), "EDLCD07" "030" "0030467" " 03" + ceros(16) + ceros(8) + blancos(26));
}

TEST(Liquidacion, FinDeLaMaternidadFueraDelMesOSinMarca) {
  Boletin m;
  m.fila(1, {{9, "812"}, {11, "812"}, {35, "16"}, {36, "M"}, {37, "928"}});
  // An end in a month before the period's (February, the year not looked at) stops it.
  inserta(m.programa.almacenes.periodo, "INCIDEN",
          {{"IEMP", EMP}, {"ITRA", "00001"}, {"ILIN", "01"}, {"ITIP", "04"}, {"MATERBONI", "1"},
           {"DIAINICIOMATERBON", "2026-10-15"}, {"DIAFINCIOMATERBON", "2027-02-04"}});
  m.liquidacion.CALCULATRABAJADOR();
  EXPECT_EQ(m.liquidacion.BONIFMATER, 0);

  // A start in the month before and no end: the whole month, 31 days; with I02 = 1, 30.
  m.programa.almacenes.periodo.ejecuta("DELETE FROM INCIDEN");
  inserta(m.programa.almacenes.periodo, "INCIDEN",
          {{"IEMP", EMP}, {"ITRA", "00001"}, {"ILIN", "01"}, {"ITIP", "04"}, {"MATERBONI", "1"},
           {"DIAINICIOMATERBON", "2026-09-20"}, {"I02", 1}});
  m.liquidacion.CALCULATRABAJADOR();
  EXPECT_DOUBLE_EQ(m.liquidacion.BONIFMATER, 537.66);  // 58 x 30 = 1740 at 30.90
}

TEST(Liquidacion, BonificacionQueTerminaDentroDelMes) {
  Boletin m;
  m.fila(1, {{6, "009"}, {9, "2000"}, {11, "2000"}, {28, "601"}, {29, "90"}, {30, "01/03/2025"},
             {31, "20/10/2026"}});
  VariablesCalculo& v = m.calculo.v;
  v.PORCCC = v.PORCDE = v.PORCFO = v.PORCFP = 50;
  v.BONCASILLA = 601;
  m.liquidacion.CALCULATRABAJADOR();

  // The bases go pro rata to the 20th: 2000 / 30 x 20 = 1333.33.
  //   CC: 1333.33 at 23.60 = 314.67, half 157.34.
  //   Unemployment, wage fund, training: half of 73.33, 2.67 and 8.00 = 36.67 + 1.33 + 4.00.
  //   The subsidy of 90 goes pro rata too: 60.
  EXPECT_DOUBLE_EQ(m.liquidacion.BONIFTOTAL, 259.34);
  EXPECT_DOUBLE_EQ(m.calculo.GRID1.valor(1, 44), 199.34);
  esperaCifras(m.b, {{&BOLETIN::OTBONRED, 259.34}, {&BOLETIN::OTSUMA, 259.34}, {&BOLETIN::AINGRESAR, 566 + 30 - 259.34}});
  EXPECT_EQ(m.linea("ED9"), "EDLCD13" "030" "0025934" " 03" "20250301" "20261020" + ceros(8) + blancos(26));
}

TEST(Liquidacion, ContratoDeFormacion97PagaPorCabeza) {
  Boletin m;
  m.fila(1, {{6, "097"}, {9, "1323"}, {11, "1323"}, {28, "601"}, {38, "32"}, {39, "240"}});
  VariablesCalculo& v = m.calculo.v;
  v.PORCCC = v.PORCDE = v.PORCFO = v.PORCFP = 100;
  v.BONCASILLA = 601;
  m.liquidacion.CALCULATRABAJADOR();

  // The bonus is the training amounts alone (the contract's k1 53.61 and the per-head
  // 13.45 are replaced by them). The quota is k1 + k2 for one head, the other
  // contributions h1 + h3; no base is shown, and no surcharge.
  esperaCifras(m.b, {{&BOLETIN::OTBONRED, 272}, {&BOLETIN::CCCUOTA, 64.3}, {&BOLETIN::CGLIQUIDO, 64.3},
                     {&BOLETIN::ATCUOTAIT, 310}, {&BOLETIN::ATCUOTAIMS, 247}, {&BOLETIN::ATTOTAL, 7.38},
                     {&BOLETIN::OTCUOTA, 6.33}, {&BOLETIN::OTLIQUIDO, -265.67}, {&BOLETIN::APERCIBIR, 193.99}});
  esperaTextos(m.b, {{&BOLETIN::CCBASE, blancos(19)}, {&BOLETIN::ATBASE, blancos(18)},
                     {&BOLETIN::TOTALRECARGO, blancos(15)}});

  EXPECT_EQ(m.linea("ED9"), "");  // training amounts: their own lines
  EXPECT_EQ(m.linea("EDD"), "EDLCD10" "030" "0003200" " 03" "00000000" + ceros(16) + blancos(26));
  EXPECT_EQ(m.linea("EDO"), "EDLCD11" "030" "0024000" " 03" "00000000" + ceros(16) + blancos(26));
  EXPECT_EQ(m.calculo.GRID1.valor(1, 38), 0);  // written, the amounts are cleared
}

TEST(Liquidacion, Contratos64y65JuntosYEpigrafeReducido) {
  Boletin m;
  m.fila(1, {{6, "064"}, {9, "1000"}, {11, "0"}});
  m.fila(2, {{6, "065"}, {9, "2000"}, {11, "1000"}, {10, "503"}});
  m.liquidacion.CALCULATRABAJADOR(false);
  // Each share at its own rate, 15.56 and 12.73 (28.30 x 0.55 and x 0.45 cut to 5).
  // 503 is epigraph 003 at 30%: 1000 at 1.00 is 10.00, 30% is 3.00 each.
  EXPECT_EQ(m.b.CCTIPO.texto(), blancos(11));
  esperaCifras(m.b, {{&BOLETIN::CCBASE, 3000}, {&BOLETIN::CCCUOTA, 155.6 + 254.6}, {&BOLETIN::ATCUOTAIT, 3},
                     {&BOLETIN::ATCUOTAIMS, 3}, {&BOLETIN::BOLTRABAJADORES, 2}});

  // Only 65: the rate cut to 45% and the quota on the whole base.
  Boletin n;
  n.fila(1, {{6, "065"}, {9, "2000"}, {11, "2000"}});
  n.liquidacion.CALCULATRABAJADOR(false);
  EXPECT_EQ(n.b.CCTIPO.texto(), "      12.73");
  EXPECT_DOUBLE_EQ(n.b.CCCUOTA.valor(), 254.6);
}

TEST(Liquidacion, ResultadoCeroDejaLosDosEnBlancoYLineaDeDatosConHorasYContratoCorto) {
  Boletin m;
  // 596 due (566 + 30) against a subsidy of 596: exactly 0.
  m.fila(1, {{9, "2000"}, {11, "2000"}, {29, "596"}});
  m.liquidacion.CALCULATRABAJADOR();
  esperaTextos(m.b, {{&BOLETIN::AINGRESAR, blancos(17)}, {&BOLETIN::APERCIBIR, blancos(17)}});
  EXPECT_EQ(m.linea("ED9"), "EDLCD07" "030" "0059600" " 03" + ceros(24) + blancos(26));

  // Part time by hours a day (class 1): 4 hours x 30 days; a five-day contract for a
  // work (401) is short.
  m.trabajador(EMP, "00002", {{"TRA35", "1"}, {"TRA1710", "03/10/2026"}, {"TRA1910", "07/10/2026"}, {"Lib3", 1}});
  m.fila(1, {{0, "00002"}, {6, "020"}, {8, "4"}, {9, "500"}, {11, "500"}, {43, "1"}});
  m.calculo.v.TRAACT = "00002";
  m.liquidacion.CALCULATRABAJADOR();
  // Lib3 puts the key 114 first and the epigraph second.
  EXPECT_EQ(m.linea("DAT", "00002"), "DAT0" "0010" " " "P" "    " "C" "120" "00" "H" "  0000  " "05" "    " "401"
                                     "114" "113" "000" + blancos(15) + "2800245" " ");
}

TEST(Liquidacion, ConceptosDeLaTablaDeDeducciones) {
  Boletin m;
  pruebas::CarpetaTemporal d;
  const std::array<DefTabla, 1> tablas{esquemas::DESCUENTOS()};
  Almacen::crea(d / "DESCUENTOS.MDB", tablas);
  Almacen deducciones;
  deducciones.abre(d / "DESCUENTOS.MDB");
  auto concepto = [&](const std::string& emp, double casilla, double sobre, double pct) {
    inserta(deducciones, "DESCUENTOS",
            {{"DESPATEMP", emp}, {"DESCASILLA", casilla}, {"DESSOBRE", sobre}, {"DESNUMERO", pct}});
  };
  concepto(EMP, 114, 111, 20);
  concepto(EMP, 114, 111, 10);   // the later row of a concept counts
  concepto(EMP, 131, 340, 2);    // on both accidents quotas, 30
  concepto(EMP, 132, 999, 50);   // no figure of its own: base 0
  concepto(EMP, 116, 111, 1);
  concepto("OTRA", 131, 111, 90);  // another company's
  m.programa.almacenes.DESCUENTOS.abre(deducciones, "DESCUENTOS");
  m.calculo.v.empresaPublica = EMP;
  m.fila(1, {{9, "2000"}, {11, "2000"}});
  m.liquidacion.CALCULATRABAJADOR(false);

  esperaCifras(m.b, {{&BOLETIN::ASBASE, 566}, {&BOLETIN::ASTIPO, 10}, {&BOLETIN::ASCUOTA, 56.6},
                     {&BOLETIN::DXCUOTA, 0.6}, {&BOLETIN::DECUOTA, 0}, {&BOLETIN::CGLIQUIDO, 566 + 56.6 - 0.6}});
  EXPECT_EQ(m.b.OCCLAVE.texto(), "8");
  EXPECT_DOUBLE_EQ(m.liquidacion.deducciones.importe116, 20);
  m.programa.almacenes.DESCUENTOS.cierra();
}

}  // namespace
}  // namespace valdor
