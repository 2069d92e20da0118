// The affiliation exchange: the pending list, the worker's columns and lines, the
// employer block of the AFI file, the trailer's counts and the whole file.

#include <gtest/gtest.h>

#include "afiliacion/afiliacion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/esquemas.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

PendienteAfi pendiente() {
  PendienteAfi p;
  p.VALDEMP = "28000000001";
  p.VALDTRA = "00001";
  p.VALDORTIPO = "AL";
  p.SITU = "01";
  p.VALDNACIONALIDAD = "724";
  p.VALDCONDIDESEM = "1";
  p.VALDMUJERSUBRE = "0";
  p.VALDSEXO = "2";
  p.VALDINCAPACITADO = "N";
  p.VALDPRIMERTRABAJ = "S";
  p.VALDGRADOMINUSVA = "5";
  p.VALDFECHACONTROL = "03/10/2026";
  p.VALDFECHAINICIO = "01/10/2026";
  p.VALDINDISUBPARCIAL = "N";
  p.VALDRELAEXPECIAL = "12";
  p.VALDNUSSTRABSUST = "281234567";
  p.VALDCAUSASUSTITU = "3";
  p.VALDEXLUSIONSOCIAL = "AB";
  p.VALDIAS = 30;
  p.COEF = 500;
  p.TRA2 = "281234567890";
  p.TRA3 = utf8ACp1252("garcía peña, maría");
  p.TRA4 = "Calle Mayor, 3";
  p.TRA5 = "0800";
  p.TRA9 = "12345678z";
  p.TRA14 = "1";
  p.TRA15 = "7";
  p.TRA51 = "San Lorenzo de El Escorial";
  p.TRA1110 = "15/10/2026";
  p.TRA1710 = "01/10/2026";
  p.BAJ10 = "20/10/2026";
  p.A5 = "MADRID";
  p.tipoDocumento = "1";
  p.claveContrato = "401";
  return p;
}

TEST(LineasAfi, LasSeisLineasDelTrabajadorColumnaAColumna) {
  FilaAfiliacion f;
  columnasTrabajador(pendiente(), f);
  const auto l = lineasTrabajador(f);
  EXPECT_EQ(l[0], "TRA" "28" "1234567890" "1" "   " "0000012345678Z" "   " + std::string(25, ' ') + "724" " " +
                      "     ");
  EXPECT_EQ(l[1], "AYN" + ajusta(utf8ACp1252("GARCÍA"), 20) + ajusta(utf8ACp1252("PEÑA"), 20) +
                      ajusta(utf8ACp1252("MARÍA"), 15) + std::string(12, ' '));
  EXPECT_EQ(l[2], "DOM" " " "  " + ajusta("CALLE MAYOR, 3", 36) + "00000" "  " "  " "  " "   " "08000" "000000000");
  EXPECT_EQ(l[3], "LDD" + ajusta("SAN LORENZO DE EL ESCORI", 24) + ajusta("MADRID", 15) + std::string(28, ' '));
  EXPECT_EQ(l[4], "FAB" " AL" "01" "20261001" "07" "001" "401" "10" "500" "000" "S" "030" "00" "00" "20261015"
                  "2000000N" "S05" "20261003AB ");
  EXPECT_EQ(l[5], "DAM" "20261001" "N" "0012" "000281234567" "03" + std::string(40, ' '));
}

TEST(LineasAfi, LaBajaLosNombresRarosYLosCamposQueNoCaben) {
  PendienteAfi p = pendiente();
  p.VALDORTIPO = "MB";
  p.TRA3 = "";
  p.VALDCAUSASUSTITU = "12";
  p.TRA9 = "123456789012345";  // wider than 14: the column keeps its former text
  FilaAfiliacion f;
  f[7] = "ANTES";
  columnasTrabajador(p, f);
  EXPECT_EQ(f[36], "20261020");  // the real date of a leaver is BAJ10
  EXPECT_EQ(f[47], "00000000");
  EXPECT_EQ(f[7], "ANTES");
  EXPECT_EQ(f[56], "12");
  EXPECT_EQ(lineasTrabajador(f)[1], "AYN" + std::string(12, ' '));

  p.TRA3 = "HANSEN, ERIK";  // no second surname
  p.VALDCAUSASUSTITU = "";
  FilaAfiliacion g;
  columnasTrabajador(p, g);
  EXPECT_EQ(g[14], ajusta("HANSEN,", 20));
  EXPECT_EQ(g[15], "");
  EXPECT_EQ(g[16], ajusta("ERIK", 15));
  EXPECT_EQ(g[56], "0");
}

TEST(LineasAfi, ElEmpleadorYElPieDelFicheroDeAfiliacion) {
  const std::string emp = lineaEMPAFI("28000123456", "B12345678", "");
  EXPECT_EQ(emp, "EMP0111" "28" "000123456" "9   " "00000B12345678" "  0111" "28" "000123456" + std::string(17, ' '));
  EXPECT_EQ(lineaEMPAFI("28000123456", "12345678Z", "7").substr(0, 22), "EMP013228000123456" "1   ");

  PaginaIntercambio p;
  p.Text8 = "F1511260";
  p.ponModo(Modo::Pruebas);
  // Two companies and three workers: 2 + 4 + 18 + 1 = 25 lines.
  EXPECT_EQ(lineaPieAFI(p, "123", "ABC", "20261115", "0730", 2, 3),
            "ETFAFI31WS342" "123     " "ABC     " "20261115" "0730" "F1511260" "AFIN" "P" "00002" "00000025" "   ");
}

// ---- The module on its stores -------------------------------------------------------------------

struct Modulo {
  Modulo() {
    fs::create_directories(carpetas.programa);
    fs::create_directories(carpetas.trabajo);
    Almacen::crea(carpetas.programa / "EMPRESAS.MDB", esquemas::tablasEMPRESAS());
    Almacen::crea(carpetas.programa / "PRODUCTO.MDB", esquemas::tablasPRODUCTO());
    Almacen::crea(carpetas.programa / "CONSTANT.MDB", esquemas::tablasCONSTANT());
    Almacen::crea(carpetas.programa / "CONVENIO.MDB", esquemas::tablasCONVENIO());
    Almacen::crea(carpetas.programa / "BONIFICA.MDB", esquemas::tablasBONIFICA());
    Almacen::crea(carpetas.programa / "DESEMPLEO.MDB", esquemas::tablasDESEMPLEO());
    empresas.abre(carpetas.programa / "EMPRESAS.MDB");
    productos.abre(carpetas.programa / "PRODUCTO.MDB");
    FicheroAjustes f(carpetas.trabajo);
    f.escribe({"123", "ABC", "C:\\WINSUITE\\WINSUITE.EXE", ""});
    programa.entornoWine = {c / "wine"};
  }
  void empresa(const std::string& a1, const std::string& a8) {
    empresas.ejecuta("INSERT INTO ESA (A1, A2, A8, A5) VALUES (?, ?, ?, 'MADRID')", {a1, "EMPRESA " + a1, a8});
  }
  void trabajador(const std::string& emp, const std::string& tra, bool enWK = true) {
    if (enWK)
      productos.ejecuta("INSERT INTO WK (WKEMP, TRA1, TRA2, TRA3, TRA1710) VALUES (?, ?, '281234567890', ?, '01/10/2026')",
                        {emp, tra, "RUIZ SOLA, ANA"});
    pendientes.push_back({emp, tra});
  }
  void arranca() {
    programa.arranca();
    Transaccion t(programa.almacenes.acuvaldor);
    for (const auto& [emp, tra] : pendientes)
      programa.almacenes.acuvaldor.ejecuta("INSERT INTO VALDORTA (VALDEMP, VALDTRA, VALDORTIPO, SITU) VALUES (?, ?, 'AL', '01')",
                                           {emp, tra});
    t.confirma();
    programa.g.RUTAWS = "C:\\WINSUITE\\WINSUITE.EXE";
    pagina.marcaAfiliacion();
    pagina.Text8 = "AFI00001";
    pagina.Label10 = "AFI";
    programa.g.LINEAETI = "ETI";
    programa.g.LINEASIL = "SIL";
  }
  std::vector<std::string> lineasDelFichero() const {
    return pruebas::registros(c / "wine/drive_c/WINSUITE/VIPTC2/AFI/AFI00001.AFI");
  }
  CarpetaTemporal c;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  Almacen empresas, productos;
  DialogosGrabador dialogos;
  Programa programa{carpetas, dialogos, Separadores{}, Momento{2026, 11, 15, 7, 30, 0}};
  PaginaIntercambio pagina;
  std::vector<std::pair<std::string, std::string>> pendientes;
};

struct SinFormularios : FormulariosIntercambio {
  void COTIZACION() override {}
  void AFILIA() override {}
  void EDITOR() override { ++editores; }
  int editores = 0;
};

TEST(Afiliacion, LasEmpresasVanEnElOrdenDeSuPrimerTrabajadorYUnPendienteSinFichaCuenta) {
  Modulo m;
  m.empresa("28000000001", "B12345678");
  m.empresa("28000000002", "12345678Z");
  m.trabajador("28000000001", "00001");
  m.trabajador("28000000002", "00001");
  m.trabajador("28000000001", "00002", false);  // the worker is gone
  m.arranca();
  AFILIA afi;
  cargaAFILIA(m.programa, m.pagina, afi);
  EXPECT_EQ(afi.GRID1.size(), 51u);  // 50 rows at the least, and the headers
  EXPECT_EQ(afi.Grid2[1][0], "28000000001");
  EXPECT_EQ(afi.Grid2[2][0], "28000000002");
  EXPECT_EQ(afi.Grid2[3][0], "");
  EXPECT_EQ(afi.empresas(), 2);
  EXPECT_EQ(afi.trabajadores(), 3);
  EXPECT_TRUE(afi.generarActivo);
  EXPECT_EQ(afi.LINEASTRA[3], "0");

  SinFormularios f;
  m.dialogos.respuestas = {true};
  const auto ruta = ESCRIBEFICHERO(m.programa, m.pagina, afi, f);
  ASSERT_TRUE(ruta);
  EXPECT_EQ(*ruta, "C:\\WINSUITE\\VIPTC2\\AFI\\AFI00001.AFI");
  EXPECT_EQ(f.editores, 1);
  EXPECT_EQ(m.programa.g.EDITAAFI, 1);
  const auto l = m.lineasDelFichero();
  ASSERT_EQ(l.size(), 2u + 2 + 12 + 2 + 6 + 1);
  EXPECT_EQ(l[2].substr(18, 4), "9   ");
  EXPECT_EQ(l[3].substr(0, 5), "RZS02");
  EXPECT_EQ(l[4].substr(0, 3), "TRA");
  for (int i = 10; i < 16; ++i) EXPECT_EQ(l[static_cast<std::size_t>(i)], "0");  // the worker with no record
  EXPECT_EQ(l[16].substr(18, 4), "1   ");
  EXPECT_EQ(l[17].substr(0, 5), "RZS01");
  EXPECT_EQ(l.back().substr(54, 13), "0000200000025");  // C = 2, T = 2 + 4 + 18 + 1
  EXPECT_TRUE(m.dialogos.mensajes.empty());
}

TEST(Afiliacion, SinPendientesNoSeGeneraYSalirSoloBorraConUnSi) {
  Modulo m;
  m.arranca();
  AFILIA afi;
  cargaAFILIA(m.programa, m.pagina, afi);
  EXPECT_FALSE(afi.generarActivo);

  Modulo n;
  n.empresa("28000000001", "B1");
  n.trabajador("28000000001", "00001");
  n.arranca();
  salirAFILIA(n.programa);  // answered no
  ASSERT_EQ(n.dialogos.preguntas.size(), 1u);
  EXPECT_EQ(n.dialogos.preguntas[0].titulo, tituloPendientes());
  n.programa.almacenes.ABREACUVALDOR();
  EXPECT_EQ(n.programa.almacenes.VALDORTA.cuenta(), 1);
  n.dialogos.respuestas = {true};
  salirAFILIA(n.programa);
  n.programa.almacenes.ABREACUVALDOR();
  EXPECT_EQ(n.programa.almacenes.VALDORTA.cuenta(), 0);
}

TEST(Afiliacion, LosTrabajadoresQueNoCabenSeDicenYNoSePierdenEnSilencio) {
  Modulo m;
  m.empresa("28000000001", "B1");
  {
    Transaccion t(m.productos);
    for (int i = 1; i <= FILASMAXIMAS + 1; ++i) m.trabajador("28000000001", llenaIzq(std::to_string(i), 5, '0'));
    t.confirma();
  }
  m.arranca();
  AFILIA afi;
  cargaAFILIA(m.programa, m.pagina, afi);
  SinFormularios f;
  ASSERT_TRUE(ESCRIBEFICHERO(m.programa, m.pagina, afi, f));
  ASSERT_EQ(m.dialogos.mensajes.size(), 1u);
  EXPECT_NE(m.dialogos.mensajes[0].texto.find("1 de los 1001 trabajadores"), std::string::npos)
      << m.dialogos.mensajes[0].texto;
  EXPECT_EQ(m.lineasDelFichero().size(), 2u + 2 + 6 * 1000 + 1);
}

}  // namespace
}  // namespace valdor
