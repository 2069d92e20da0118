// The contribution exchange file: the employer block, the worker blocks read back from
// the temp store with the held-back ED1, the totals, the TC1 lines and the trailer,
// checked line by line in files written from hand-filled stores.

#include <gtest/gtest.h>

#include "fan/comando.h"
#include "fan/empleador.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/texto.h"
#include "tests/apoyo.h"
#include "tests/trabajo_prueba.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

// ---- The employer block ------------------------------------------------------------------

DatosEmpresa empresa(std::string A1, std::string A8, std::string EB12 = "", std::string A2 = "NOMBRE") {
  return {std::move(A1), std::move(A2), std::move(A8), std::move(EB12), "45"};
}

TEST(Empleador, LasLineasEMPYRZSColocanCuentaIdentificadorPeriodoYNombre) {
  EXPECT_EQ(lineaEMPFAN(empresa("28000123456", "B12345678"), 2002, 3, "L00", "00"),
            "EMP0111" "28" "000123456" "9   " "00000B12345678" "  0111" "28" "000123456" "2002" "03" "03" "L00" "00"
            "   E");
  // The account's number by its value; a foreign identifier in capitals.
  EXPECT_EQ(lineaEMPFAN(empresa("08 12345", "x1234567l", "6"), 2002, 3, "L15", "04").substr(0, 36),
            "EMP0132" "08" "000012345" "6   " "00000X1234567L");
  EXPECT_EQ(cabeceraEMP(" 7 "), "EMP0132");
  EXPECT_EQ(cabeceraEMP("5"), "EMP0111");

  // A value wider than its field drops out and the line comes out short.
  EXPECT_EQ(lineaEMPFAN(empresa("28000123456", "B123456789012345"), 2002, 3, "L00", "00").size(), 70u - 14u);

  // The identifier's kind and the company's class, by the tax code's first characters.
  const std::tuple<const char*, const char*, const char*> codigos[] = {
      {"B12345678", "9   ", "2"}, {"G50123454", "9   ", "3"}, {"12345678Z", "1   ", "1"}, {"X1234567L", "6   ", "4"},
      {"00123", "1   ", "4"},     {"0ABC", "1   ", "4"},      {"", "9   ", "4"}};
  for (const auto& [A8, tipo, clase] : codigos) {
    EXPECT_EQ(tipoIdentificadorFAN(A8), tipo) << A8;
    EXPECT_EQ(claseEmpresa(A8), clase) << A8;
  }

  // The name goes in the files' letter set, in capitals.
  std::string plano;
  const std::string rzs = lineaRZS(empresa("28000123456", "B12345678", "", utf8ACp1252("Ángel Peñalara")), plano);
  EXPECT_EQ(rzs, "RZS02" "\x8FNGEL PE\xA4" "ALARA" + std::string(55 - 14, ' ') + std::string(10, ' '));
  // An empty name keeps what the mapping held from the company before.
  EXPECT_EQ(lineaRZS(empresa("1", "B1", "", ""), plano).substr(5, 14), "\x8FNGEL PE\xA4" "ALARA");
  // A name wider than 55 is lost.
  EXPECT_EQ(lineaRZS(empresa("1", "B1", "", std::string(56, 'A')), plano), "RZS02" + std::string(10, ' '));
}

// ---- Worker blocks ------------------------------------------------------------------------

std::string amount(std::string_view clave, std::string_view centimos) {
  return ajusta(std::string(clave), 10) + std::string(centimos) + " " + std::string(26, '0') + std::string(26, ' ');
}
std::string dat(std::string_view dias) { return "DAT00010 " + std::string(6, ' ') + std::string(dias) + "00"; }

std::vector<std::string> claves(const std::vector<std::string>& lineas) {
  std::vector<std::string> r;
  for (const auto& l : lineas) r.push_back(izquierda(l, 3) + (izquierda(l, 3) == "EDL" ? medio(l, 4, 7) : ""));
  return r;
}

TEST(BloqueTrabajador, SinDiasElED1SeRetieneHastaElPrimerEDEEDAoEDM) {
  EstadoBloques estado;
  TotalesEmpresa t;
  const auto sinDias = bloqueTrabajador({{"EDE", amount("EDLBA02000", "0000100")},
                                         {"DAE", "DAT0DAE"},
                                         {"ED3", amount("EDLBA10000", "0000200")},
                                         {"ED2", amount("EDLBA02000", "0000300")},
                                         {"ED1", amount("EDLBA01000", "0012345")},
                                         {"DAT", dat("000")},
                                         {"AYN", "AYN"},
                                         {"TRA", "TRA"}},
                                        estado, t);
  EXPECT_EQ(claves(sinDias), (std::vector<std::string>{"TRA", "AYN", "EDLBA02000", "EDLBA10000", "DAT", "EDLBA01000",
                                                       "EDLBA02000"}));
  EXPECT_EQ(sinDias[4], "DAT0DAE");
  EXPECT_DOUBLE_EQ(t.EDTBA01000, 123.45);
  EXPECT_DOUBLE_EQ(t.EDTBA02000, 6.00);
  EXPECT_EQ(t.trabajadores, 1);

  // A held ED1 without EDE, EDA or EDM waits for a later worker's.
  bloqueTrabajador({{"TRA", "TRA"}, {"DAT", dat("000")}, {"ED1", amount("EDLBA01000", "0000001")}}, estado, t);
  const auto conDias = bloqueTrabajador({{"TRA", "TRA"},
                                         {"DAT", dat("030")},
                                         {"ED1", amount("EDLBA01000", "0000002")},
                                         {"EDM", amount("EDLBA20000", "0000500")}},
                                        estado, t);
  EXPECT_EQ(claves(conDias),
            (std::vector<std::string>{"TRA", "DAT", "EDLBA01000", "EDLBA01000", "EDLBA20000"}));
  EXPECT_EQ(medio(conDias[2], 11, 7), "0000002");
  EXPECT_EQ(medio(conDias[3], 11, 7), "0000001");
  EXPECT_DOUBLE_EQ(t.EDTBA21000, 5.00);
  EXPECT_DOUBLE_EQ(t.EDTBA22000, 5.00);
  EXPECT_TRUE(estado.lineaRetenida.empty());
}

TEST(BloqueTrabajador, CadaLineaDeImporteAlimentaSuTotal) {
  auto ed = [](std::string clave, int centimos) {
    return clave + "000" + llenaIzq(std::to_string(centimos), 7, '0') + " 0" + std::string(50, '0');
  };
  using Total = double TotalesEmpresa::*;
  // One line of each type in a block (amounts of 2, 3, ... euros); ED9 by its key, one a block.
  const std::tuple<const char*, const char*, Total> casos[] = {
      {"ED5", "EDLCD01", &TotalesEmpresa::EDTCD01000}, {"ED6", "EDLCD03", &TotalesEmpresa::EDTCD03000},
      {"ED7", "EDLCD07", &TotalesEmpresa::EDTCD07000}, {"ED8", "EDLCD06", &TotalesEmpresa::EDTCD06000},
      {"ED9", "EDLCD16", &TotalesEmpresa::EDTCD16000}, {"EDD", "EDLCD10", &TotalesEmpresa::EDTCD10000},
      {"EDO", "EDLCD11", &TotalesEmpresa::EDTCD11000}};
  EstadoBloques estado;
  TotalesEmpresa t;
  std::vector<std::pair<std::string, std::string>> bloque{{"TRA", "TRA"}, {"ED4", amount("EDLBA11000", "0000100")}};
  int euros = 1;
  for (const auto& [tipo, clave, total] : casos) bloque.push_back({tipo, ed(clave, 100 * ++euros)});
  bloqueTrabajador(bloque, estado, t);
  EXPECT_DOUBLE_EQ(t.ED4, 1);
  euros = 1;
  for (const auto& [tipo, clave, total] : casos) EXPECT_DOUBLE_EQ(t.*total, ++euros) << clave;

  // An ED9 key of no other total goes to CD07; a block without TRA counts no worker.
  const std::pair<const char*, Total> ed9[] = {
      {"EDLCD13", &TotalesEmpresa::EDTCD13000}, {"EDLCD17", &TotalesEmpresa::EDTCD17000},
      {"EDLCD99", &TotalesEmpresa::EDTCD07000}};
  TotalesEmpresa u;
  for (const auto& [clave, total] : ed9) {
    bloqueTrabajador({{"ED9", ed(clave, 100)}}, estado, u);
    EXPECT_DOUBLE_EQ(u.*total, 1) << clave;
  }
  EXPECT_EQ(u.trabajadores, 0);
}

TEST(TotalesEmpresa, LasLineasTCT00YEDTLlevanSusCamposEnSuOrden) {
  EXPECT_EQ(lineaTCT00("45", 12),
            "TCT00" "45 " "000012" "000000" + std::string(28, ' ') + "00000000" + std::string(14, ' '));
  TotalesEmpresa t;
  EXPECT_TRUE(lineasEDT(t).empty());
  t.EDTBA01000 = 1234.56;
  t.EDTCD10000 = 1;
  t.EDTCD13000 = -12.34;
  const auto lineas = lineasEDT(t);
  ASSERT_EQ(lineas.size(), 3u);
  EXPECT_EQ(lineas[0], "EDTBA01000" "00000123456" " " + std::string(19, '0') + std::string(29, ' '));
  EXPECT_EQ(lineas[1], "EDTCD13000" + std::string(11, '0') + " " + std::string(8, '0') + "000000-1234" + " " +
                           std::string(28, ' '));
  EXPECT_EQ(lineas[2].substr(0, 10), "EDTCD10000");
}

// ---- The whole file ------------------------------------------------------------------------

// A scripted line made a whole record: its text, then blanks up to 70.
std::string a70(std::string_view texto) { return ajusta(texto, 70); }

struct MotorGuionado : MotorCotizacion {
  void COTVAL(Programa&, COTIZACION&) override { ++calculos; }
  void TC1VAL(Programa& p, COTIZACION&, PaginaIntercambio&, const std::string& empresa) override {
    if (empresa == "28000000001") {
      p.g.LINEASTC1[1] = a70("EDTCA01000 DE LA PRIMERA");
      p.g.LINEASTC1[19] = a70("DBA  DE LA PRIMERA");
    }
  }
  int calculos = 0;
};

struct Intercambio : pruebas::TrabajoDePrueba {
  Intercambio() {
    // Every master store, for a job refuses to write when one is missing.
    pruebas::creaMaestros(carpetas.programa);
    Almacen a;
    a.abre(carpetas.programa / "EMPRESAS.MDB");
    a.ejecuta("INSERT INTO ESA (A1, A2, A8, EB12, EB14) VALUES (?, ?, ?, ?, ?)",
              {"28000000001", "PRIMERA, S.L.", "B12345678", "", "45"});
    a.ejecuta("INSERT INTO ESA (A1, A2, A8, EB12, EB14) VALUES (?, ?, ?, ?, ?)",
              {"28000000002", "SEGUNDA", "12345678Z", "6", "7"});
    FicheroAjustes f(carpetas.trabajo);
    f.escribe({"00000123", "SILCON01", "C:\\WINSUITE\\WINSUITE.EXE", ""});
    programa.arranca();
    programa.g.RUTAWS = ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150);
    paginaDe("FAN");
    pagina.Text8 = "PRUEBA01";
    programa.g.LINEAETI = LINEAETI(pagina, {"00000123", "SILCON01", "", ""});
    sel.eligeMes(2);
    sel.eligeAno(2002 - 1901);
    sel.grid = {{"PRIMERA", true, "28000000001", "", "", 0},
                {"CERO", true, "0", "", "", 0},
                {"SEGUNDA", true, "28000000002", "", "", 0},
                {"SIN MARCA", false, "28000000003", "", "", 0}};
  }
  void linea(const std::string& emp, const std::string& tra, const std::string& tipo, const std::string& texto) {
    programa.almacenes.temporal.ejecuta("INSERT INTO TMPVALDOR VALUES (?, ?, ?, ?)", {emp, tra, tipo, a70(texto)});
  }
  std::vector<std::string> lineas() const {
    return pruebas::registros(c / "wine/drive_c/WINSUITE/VIPTC2/FAN/PRUEBA01.FAN");
  }
  COTIZACION sel;
  MotorGuionado motor;
};

TEST(FicheroFAN, LasLineasDeCadaEmpresaSalenEnSuOrdenYElPieCuentaElFichero) {
  Intercambio x;
  x.linea("28000000001", "00002", "TRA", "TRA DEL DOS");
  x.linea("28000000001", "00002", "AYN", "AYN DEL DOS");
  x.linea("28000000001", "00001", "TRA", "TRA DEL UNO");
  x.linea("28000000001", "00001", "ED2", amount("EDLBA02000", "0123456"));
  x.linea("28000000001", "     ", "TRA", "TRA EN BLANCO");  // passed over
  x.linea("28000000009", "00001", "TRA", "TRA DE OTRA");    // not in the run
  x.linea("28000000002", "00001", "AYN", "AYN SIN TRA");    // no TRA: no worker

  const auto ruta = comando(x.programa, x.pagina, x.sel, x.motor);
  ASSERT_TRUE(ruta) << (x.dialogos.mensajes.empty() ? "" : x.dialogos.mensajes[0].texto);
  EXPECT_EQ(*ruta, "C:\\WINSUITE\\VIPTC2\\FAN\\PRUEBA01.FAN");
  EXPECT_EQ(x.motor.calculos, 1);
  const auto l = x.lineas();
  ASSERT_EQ(l.size(), 16u);
  EXPECT_EQ(l[0], x.programa.g.LINEAETI);
  EXPECT_EQ(l[1].substr(0, 18), "EMP011128000000001");
  EXPECT_EQ(l[1].substr(53, 8), "20020303");
  EXPECT_EQ(l[2].substr(0, 18), "RZS02PRIMERA, S.L.");
  EXPECT_EQ(l[3], a70("TRA DEL UNO"));
  EXPECT_EQ(medio(l[4], 1, 17), "EDLBA020000123456");
  EXPECT_EQ(l[5], a70("TRA DEL DOS"));
  EXPECT_EQ(l[6], a70("AYN DEL DOS"));
  EXPECT_EQ(l[7].substr(0, 14), "TCT0045 000002");
  EXPECT_EQ(l[8], "EDTBA02000" "00000123456" " " + std::string(19, '0') + std::string(29, ' '));
  EXPECT_EQ(l[9], a70("EDTCA01000 DE LA PRIMERA"));
  EXPECT_EQ(l[10], a70("DBA  DE LA PRIMERA"));
  EXPECT_EQ(l[11].substr(0, 7), "EMP0132");  // the second company: no workers, no amounts
  EXPECT_EQ(l[13].substr(0, 14), "TCT007  000000");
  // Entry 19 is not cleared between companies: printed again; entry 1 was.
  EXPECT_EQ(l[14].substr(0, 3), "DBA");
  // Before the trailer stand 15 records of 72 bytes, and the trailer counts itself.
  EXPECT_EQ(l[15], "ETF" "TC220VIP28" "00000123" "SILCON01" "20261115" "0730" "PRUEBA01" "FAN" "N" " " "00002" "00000016"
                   "   ");
}

// The user's Cancelar, met while the first company's TC1 is worked out: the file stops
// before the next company, no file nor temporary file is left, and the user is told.
TEST(FicheroFAN, CancelarEntreEmpresasNoDejaFicheroYLoDice) {
  struct MotorQueCancela : MotorGuionado {
    void TC1VAL(Programa& p, COTIZACION&, PaginaIntercambio&, const std::string&) override { p.pideParada(); }
  };
  Intercambio x;
  MotorQueCancela motor;
  EXPECT_FALSE(comando(x.programa, x.pagina, x.sel, motor));
  EXPECT_TRUE(fs::is_empty(x.c / "wine/drive_c/WINSUITE/VIPTC2/FAN"));
  ASSERT_EQ(x.dialogos.mensajes.size(), 1u);
  EXPECT_EQ(x.dialogos.mensajes[0].icono, Icono::Informacion);
  EXPECT_EQ(x.dialogos.mensajes[0].texto, "Proceso cancelado por el usuario. El fichero no se ha generado.");
  // The three marked companies; the second was announced, the third never reached.
  std::vector<std::string> textos;
  for (const auto& p : x.dialogos.progresos) textos.push_back(p.texto);
  EXPECT_EQ(textos, (std::vector<std::string>{"Generando fichero: empresa 1 de 3, PRIMERA|",
                                              "Generando fichero: empresa 2 de 3, CERO|"}));

  // The next job starts without the stop of the one before.
  EXPECT_TRUE(comando(x.programa, x.pagina, x.sel, x.motor));
  EXPECT_EQ(x.lineas().back().substr(0, 3), "ETF");
}

TEST(FicheroFAN, ElPieRepiteElIntercambioYCuentaLasLineasPorLaLongitud) {
  PaginaIntercambio p;
  p.marcaCotizacion();
  p.Label10 = "FAN";
  p.Label12 = "20261115";
  p.Label13 = "0730";
  p.Text8 = "F1511260";
  p.ponModo(Modo::Pruebas);
  // The ETI line and two companies of five lines each: 11 lines of 72 bytes.
  const std::string pie = lineaPieFAN(p, {"123     ", "ABCDEFGH", "", ""}, 2, 11 * 72);
  EXPECT_EQ(pie, "ETF" "TC220VIP28" "123" "ABCDEFGH" "20261115" "0730" "F1511260" "FAN" "N" "P" "00002" "00000012"
                 "   ");
  // Short lines make the length no multiple of 72: the count is rounded, ties to even;
  // keys that could not be read leave the later fields shifted.
  EXPECT_EQ(lineaPieFAN(p, {}, 0, 180).substr(36), "NP0000000000003   ");  // 2.5 -> 2
  EXPECT_EQ(lineaPieFAN(p, {}, 0, 252).substr(36), "NP0000000000005   ");  // 3.5 -> 4
  p.marcaAfiliacion();
  EXPECT_EQ(lineaPieFAN(p, {}, 0, 0).substr(3, 10), "AFI10AFI23");
}

TEST(FicheroFAN, SinRutaOSinCarpetaNoQuedaFicheroYSeDiceElPorQue) {
  Intercambio x;
  x.programa.g.RUTAWS = std::string(150, ' ');
  EXPECT_FALSE(comando(x.programa, x.pagina, x.sel, x.motor));
  ASSERT_FALSE(x.dialogos.mensajes.empty());
  EXPECT_EQ(x.dialogos.mensajes.back().titulo, "RUTA NO VÁLIDA PARA WINSUITE"_cp);

  // The folder cannot be made (a file stands in its place): nothing is left behind.
  x.programa.g.RUTAWS = "C:\\WINSUITE\\WINSUITE.EXE";
  fs::create_directories(x.c / "wine/drive_c/WINSUITE");
  pruebas::escribeBytes(x.c / "wine/drive_c/WINSUITE/VIPTC2", "no soy una carpeta");
  EXPECT_FALSE(comando(x.programa, x.pagina, x.sel, x.motor));
  EXPECT_EQ(x.dialogos.mensajes.back().icono, Icono::Critico);
  EXPECT_NE(x.dialogos.mensajes.back().texto.find("PRUEBA01.FAN"), std::string::npos);
}

// ---- The selection -----------------------------------------------------------------------------

TEST(Seleccion, LosValoresPorDefectoYLasMarcas) {
  CarpetaTemporal c;
  Carpetas carpetas{c / "p", c / "t"};
  fs::create_directories(carpetas.programa);
  fs::create_directories(carpetas.trabajo);
  DialogosGrabador d;
  Programa enero(carpetas, d, Separadores{}, Momento{2027, 1, 10, 9, 0, 0});
  PaginaIntercambio pagina;
  COTIZACION sel;
  cargaCOTIZACION(enero, pagina, sel);
  EXPECT_EQ(sel.mesDelPeriodo(), 12);
  EXPECT_EQ(sel.anoDelPeriodo(), 2026);
  EXPECT_EQ(sel.codigoClase(), "L00");
  EXPECT_EQ(sel.codigoCalificador(), "00");

  sel.grid = {{"A", false, "28000000001", "", "", 1}, {"B", false, "B2800", "", "", 1}};
  d.mensajes.clear();
  EXPECT_FALSE(puedeProcesar(enero, sel));
  ASSERT_EQ(d.mensajes.size(), 1u);
  EXPECT_EQ(d.mensajes[0].texto, textoSinEmpresas());
  marcaTodas(sel, true);
  EXPECT_TRUE(sel.grid[0].marcada);
  EXPECT_FALSE(sel.grid[1].marcada);  // a code with a letter in front reads 0
  EXPECT_TRUE(puedeProcesar(enero, sel));
  EXPECT_FALSE(sel.alfabeticaActiva);
  cancelaCOTIZACION(enero);
  EXPECT_EQ(enero.g.CANCELADO, 1);
}

TEST(Seleccion, LaCuentaYElFiltroDeLaLista) {
  COTIZACION sel;
  EXPECT_EQ(textoCuentaEmpresas(sel), "0 empresas, 0 marcadas");
  sel.grid = {{std::string("Construcciones Peñalara"_cp), true, "28000000001", "", "", 1}};
  EXPECT_EQ(textoCuentaEmpresas(sel), "1 empresa, 1 marcada");
  sel.grid.push_back({std::string("Café Nórdico"_cp), false, "08000000027", "", "", 1});
  EXPECT_EQ(textoCuentaEmpresas(sel), "2 empresas, 1 marcada");

  const FilaEmpresa& penalara = sel.grid[0];
  EXPECT_TRUE(pasaFiltro(penalara, "  "));
  EXPECT_TRUE(pasaFiltro(penalara, " PEÑA"_cp));  // any case, the accented letters too
  EXPECT_TRUE(pasaFiltro(penalara, "00001"));    // the code
  EXPECT_FALSE(pasaFiltro(penalara, "pena"));    // an accent is a letter of its own
  EXPECT_FALSE(pasaFiltro(penalara, "27"));
}

}  // namespace
}  // namespace valdor
