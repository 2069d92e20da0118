// The affiliation exchange: the pending list, the worker's columns and lines, the
// employer block of the AFI file, the trailer's counts and the whole file.

#include <gtest/gtest.h>

#include "afiliacion/afiliacion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/ficheros.h"
#include "stores/texto.h"
#include "tests/apoyo.h"
#include "tests/trabajo_prueba.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

PendienteAfi pendiente() {
  return {.VALDEMP = "28000000001", .VALDTRA = "00001", .VALDORTIPO = "AL", .SITU = "01", .VALDNACIONALIDAD = "724",
          .VALDCONDIDESEM = "1", .VALDMUJERSUBRE = "0", .VALDSEXO = "2", .VALDINCAPACITADO = "N",
          .VALDPRIMERTRABAJ = "S", .VALDGRADOMINUSVA = "5", .VALDFECHACONTROL = "03/10/2026",
          .VALDFECHAINICIO = "01/10/2026", .VALDINDISUBPARCIAL = "N", .VALDRELAEXPECIAL = "12",
          .VALDNUSSTRABSUST = "281234567", .VALDCAUSASUSTITU = "3", .VALDEXLUSIONSOCIAL = "AB", .VALDIAS = 30,
          .COEF = 500, .TRA2 = "281234567890", .TRA3 = utf8ACp1252("garcía peña, maría"), .TRA4 = "Calle Mayor, 3",
          .TRA5 = "0800", .TRA9 = "12345678z", .TRA14 = "1", .TRA15 = "7", .TRA51 = "San Lorenzo de El Escorial",
          .TRA1110 = "15/10/2026", .TRA1710 = "01/10/2026", .BAJ10 = "20/10/2026", .A5 = "MADRID",
          .tipoDocumento = "1", .claveContrato = "401"};
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

// ---- The files of a list ------------------------------------------------------------------

// A company of Grid2 row `empresa` with `n` workers, rows numbered from `desde`.
BloqueAfi bloque(std::size_t empresa, std::size_t n, std::size_t desde = 1) {
  BloqueAfi b{empresa, {}};
  for (std::size_t i = 0; i < n; ++i) b.trabajadores.push_back(desde + i);
  return b;
}

// Each file as its blocks: company and number of workers.
using Forma = std::vector<std::vector<std::pair<std::size_t, std::size_t>>>;
Forma forma(const std::vector<FicheroAfi>& ficheros) {
  Forma r;
  for (const FicheroAfi& f : ficheros) {
    r.emplace_back();
    for (const BloqueAfi& b : f.bloques) r.back().emplace_back(b.empresa, b.trabajadores.size());
  }
  return r;
}

TEST(RepartoAfi, CadaEmpresaVaEnteraEnUnFicheroDentroDeLosLimites) {
  // 600 + 500 is more than 1,000: the second company starts a file, and the third
  // joins it (900 workers).
  EXPECT_EQ(forma(repartoAFI({bloque(1, 600), bloque(2, 500), bloque(3, 300)})),
            (Forma{{{1, 600}}, {{2, 500}, {3, 300}}}));
  // Exactly 1,000 workers fit; a company without workers goes into no file.
  EXPECT_EQ(forma(repartoAFI({bloque(1, 999), bloque(2, 0), bloque(3, 1), bloque(4, 1)})),
            (Forma{{{1, 999}, {3, 1}}, {{4, 1}}}));
  // 501 companies of one worker: 500 in the first file, the last one in a second.
  std::vector<BloqueAfi> muchas;
  for (std::size_t i = 1; i <= 501; ++i) muchas.push_back(bloque(i, 1, i));
  const auto ficheros = repartoAFI(muchas);
  ASSERT_EQ(ficheros.size(), 2u);
  EXPECT_EQ(ficheros[0].empresas(), 500);
  EXPECT_EQ(ficheros[0].trabajadores(), 500);
  EXPECT_EQ(forma({ficheros[1]}), (Forma{{{501, 1}}}));
  EXPECT_TRUE(repartoAFI({}).empty());
}

TEST(RepartoAfi, UnaEmpresaDeMasDeMilTrabajadoresSeParteEnFicherosDeMil) {
  // It starts a file of its own, even after a small company; its last part leaves room
  // for the next company.
  const auto ficheros = repartoAFI({bloque(1, 10, 1), bloque(2, 2500, 11), bloque(3, 20, 2511)});
  EXPECT_EQ(forma(ficheros), (Forma{{{1, 10}}, {{2, 1000}}, {{2, 1000}}, {{2, 500}, {3, 20}}}));
  // Its workers in their order, each once.
  std::vector<std::size_t> filas;
  for (std::size_t k = 1; k <= 3; ++k)
    for (std::size_t j : ficheros[k].bloques[0].trabajadores) filas.push_back(j);
  EXPECT_EQ(filas, bloque(2, 2500, 11).trabajadores);

  // The module counts a company split over files once.
  AFILIA afi;
  afi.ficheros = ficheros;
  EXPECT_EQ(afi.empresas(), 3);
  EXPECT_EQ(afi.trabajadores(), 2530);
}

TEST(RepartoAfi, LosNombresDeLosFicherosSiguientesCuentanHaciaArriba) {
  EXPECT_EQ(nombreSiguiente("F1511260"), "F1511261");
  EXPECT_EQ(nombreSiguiente("AFI00009"), "AFI00010");
  EXPECT_EQ(nombreSiguiente("SEGUNDO9"), "SEGUND10");  // the count takes one more place
  EXPECT_EQ(nombreSiguiente("INFORMES"), "INFORME1");  // no digit at the end
  EXPECT_EQ(nombreSiguiente("A9999999"), "10000000");
  EXPECT_EQ(nombreSiguiente("99999999"), std::nullopt);
  EXPECT_EQ(nombreSiguiente(""), std::nullopt);
}

// ---- The module on its stores -------------------------------------------------------------------

struct Modulo : pruebas::TrabajoDePrueba {
  Modulo() {
    pruebas::creaMaestros(carpetas.programa);
    empresas.abre(carpetas.programa / "EMPRESAS.MDB");
    productos.abre(carpetas.programa / "PRODUCTO.MDB");
    FicheroAjustes f(carpetas.trabajo);
    f.escribe({"123", "ABCDEFGH", "C:\\WINSUITE\\WINSUITE.EXE", ""});
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
  void pendiente(const std::string& emp, const std::string& tra) {
    programa.almacenes.acuvaldor.ejecuta(
        "INSERT INTO VALDORTA (VALDEMP, VALDTRA, VALDORTIPO, SITU, VALDCAUSASUSTITU) VALUES (?, ?, 'AL', '01', '00')",
        {emp, tra});
  }
  void arranca() {
    programa.arranca();
    Transaccion t(programa.almacenes.acuvaldor);
    for (const auto& [emp, tra] : pendientes) pendiente(emp, tra);
    t.confirma();
    programa.g.RUTAWS = "C:\\WINSUITE\\WINSUITE.EXE";
    paginaDe("AFI");
    pagina.Text8 = "AFI00001";
    // Label lines of a whole record's width: the writer takes nothing shorter.
    programa.g.LINEAETI = ajusta("ETI", 70);
    programa.g.LINEASIL = ajusta("SIL", 70);
  }
  fs::path fichero(const std::string& nombre) const { return c / ("wine/drive_c/WINSUITE/VIPTC2/AFI/" + nombre); }
  std::vector<std::string> lineasDelFichero(const std::string& nombre = "AFI00001.AFI") const {
    return pruebas::registros(fichero(nombre));
  }
  // The pending rows left in the table, as company and worker.
  std::vector<std::pair<std::string, std::string>> quedan() {
    programa.almacenes.ABREACUVALDOR();
    std::vector<std::pair<std::string, std::string>> r;
    auto q = programa.almacenes.acuvaldor.consulta("SELECT VALDEMP, VALDTRA FROM VALDORTA ORDER BY rowid");
    while (q.siguiente()) r.emplace_back(q.texto("VALDEMP"), q.texto("VALDTRA"));
    return r;
  }
  Almacen empresas, productos;
  std::vector<std::pair<std::string, std::string>> pendientes;
};

struct SinFormularios : FormulariosIntercambio {
  void COTIZACION() override {}
  void AFILIA() override {}
  void EDITOR() override { ++editores; }
  int editores = 0;
};

using Pares = std::vector<std::pair<std::string, std::string>>;

TEST(Afiliacion, UnPendienteSinFichaOSinEmpresaSeDejaFueraYSeDiceYElPieCuentaLoEscrito) {
  Modulo m;
  m.empresa("28000000001", "B12345678");
  m.empresa("28000000002", "12345678Z");
  m.trabajador("28000000001", "00001");
  m.trabajador("28000000002", "00001");
  m.trabajador("28000000001", "00002", false);  // the worker is gone
  m.trabajador("28000000003", "00001");         // the company is gone
  m.arranca();
  AFILIA afi;
  cargaAFILIA(m.programa, m.pagina, afi);
  EXPECT_EQ(afi.GRID1.size(), 51u);  // 50 rows at the least, and the headers
  EXPECT_EQ(afi.GRID1[3][0], "28000000001");  // the grid keeps the row's codes
  EXPECT_EQ(afi.GRID1[3][1], "00002");
  EXPECT_EQ((std::vector<std::string>{afi.Grid2[1][0], afi.Grid2[2][0], afi.Grid2[3][0]}),
            (std::vector<std::string>{"28000000001", "28000000002", "28000000003"}));
  EXPECT_EQ(afi.Grid2[3][1], "");  // no EMP line for a company that is gone
  EXPECT_EQ(afi.empresas(), 2);
  EXPECT_EQ(afi.trabajadores(), 2);
  EXPECT_TRUE(afi.generarActivo);
  EXPECT_EQ(afi.LINEASTRA[3], "");
  // Told at the load, each company and worker named; a warning, not a failure.
  ASSERT_EQ(m.dialogos.mensajes.size(), 1u);
  const auto& aviso = m.dialogos.mensajes[0];
  EXPECT_EQ(aviso.icono, Icono::Exclamacion);
  EXPECT_EQ(aviso.titulo, tituloAFILIA());
  for (const std::string parte :
       {"No van en el fichero de afiliaci\xF3n 2 trabajadores pendientes, que siguen en la lista de pendientes:",
        "\nEmpresa 28000000001, trabajador 00002: el trabajador no est\xE1 en el fichero de trabajadores.",
        "\nEmpresa 28000000003, trabajador 00001: la empresa no est\xE1 en el fichero de empresas."})
    EXPECT_NE(aviso.texto.find(parte), std::string::npos) << aviso.texto;
  // The trailer that "Pie" shows counts what goes into the file: 2 + 4 + 12 + 1 = 19.
  EXPECT_EQ(afi.LINEAPIEAFI.substr(54, 13), "0000200000019");

  SinFormularios f;
  m.dialogos.respuestas = {true};
  const auto rutas = ESCRIBEFICHERO(m.programa, m.pagina, afi, f);
  EXPECT_EQ(rutas, std::vector<std::string>{"C:\\WINSUITE\\VIPTC2\\AFI\\AFI00001.AFI"});
  EXPECT_EQ(m.programa.g.FICHEROSALIDA, rutas.at(0));
  EXPECT_EQ(f.editores, 1);
  EXPECT_EQ(m.programa.g.EDITAAFI, 1);
  const auto l = m.lineasDelFichero();
  ASSERT_EQ(l.size(), 2u + 2 + 6 + 2 + 6 + 1);
  const std::pair<std::size_t, const char*> inicios[] = {{2, "EMP011128000000001" "9   "}, {3, "RZS02"}, {4, "TRA28"},
                                                          {9, "DAM"}, {10, "EMP011128000000002" "1   "}, {11, "RZS01"},
                                                          {12, "TRA28"}};
  for (const auto& [i, inicio] : inicios) EXPECT_TRUE(l[i].starts_with(inicio)) << i << ": " << l[i];
  EXPECT_EQ(l.back(), afi.LINEAPIEAFI);
  for (const std::string& linea : l) EXPECT_NE(linea, "0");
  EXPECT_EQ(m.dialogos.mensajes.size(), 1u);  // nothing more to say for one file
  EXPECT_EQ(afi.enviados, (std::vector<ClavePendiente>{{"28000000001", "00001"}, {"28000000002", "00001"}}));

  // The payroll product adds a worker while the file is out; "yes" at "&Salir" deletes
  // the two rows of the file and nothing else.
  m.programa.almacenes.ABREACUVALDOR();
  m.pendiente("28000000002", "00002");
  m.dialogos.respuestas = {true};
  salirAFILIA(m.programa, afi);
  EXPECT_EQ(m.quedan(), (Pares{{"28000000001", "00002"}, {"28000000003", "00001"}, {"28000000002", "00002"}}));
  ASSERT_EQ(m.dialogos.mensajes.size(), 2u);
  EXPECT_EQ(m.dialogos.mensajes[1].titulo, tituloPendientes());
  EXPECT_EQ(m.dialogos.mensajes[1].texto,
            "Se han borrado de la lista de pendientes de afiliaci\xF3n 2 trabajadores, los que van en los ficheros "
            "escritos. Quedan 3 trabajadores pendientes.");
}

TEST(Afiliacion, SinFicheroEscritoSalirNoBorraNadaYSinNadaQueEnviarNoSeGenera) {
  Modulo m;
  m.arranca();
  AFILIA vacia;
  cargaAFILIA(m.programa, m.pagina, vacia);
  EXPECT_FALSE(vacia.generarActivo);
  EXPECT_EQ(textoNadaQueEnviar(vacia), "No hay trabajadores pendientes de afiliaci\xF3n.");

  // A list of workers none of whom can go into the file: nothing to generate, and why.
  Modulo sinFichas;
  sinFichas.empresa("28000000001", "B1");
  sinFichas.trabajador("28000000001", "00001", false);
  sinFichas.arranca();
  AFILIA ninguno;
  cargaAFILIA(sinFichas.programa, sinFichas.pagina, ninguno);
  EXPECT_FALSE(ninguno.generarActivo);
  EXPECT_NE(textoNadaQueEnviar(ninguno).find("Ninguno de los trabajadores pendientes"), std::string::npos);
  SinFormularios f;
  EXPECT_TRUE(ESCRIBEFICHERO(sinFichas.programa, sinFichas.pagina, ninguno, f).empty());

  Modulo n;
  n.empresa("28000000001", "B1");
  n.trabajador("28000000001", "00001");
  n.arranca();
  AFILIA afi;
  cargaAFILIA(n.programa, n.pagina, afi);
  salirAFILIA(n.programa, afi);  // answered no
  ASSERT_EQ(n.dialogos.preguntas.size(), 1u);
  EXPECT_EQ(n.dialogos.preguntas[0].titulo, tituloPendientes());
  EXPECT_EQ(n.quedan().size(), 1u);
  // Yes, but no file was written by this module: the list stays, and the user hears why.
  n.dialogos.respuestas = {true};
  salirAFILIA(n.programa, afi);
  EXPECT_EQ(n.quedan().size(), 1u);
  ASSERT_EQ(n.dialogos.mensajes.size(), 1u);
  EXPECT_NE(n.dialogos.mensajes[0].texto.find("No se ha escrito ning\xFAn fichero de afiliaci\xF3n"),
            std::string::npos);
}

TEST(Afiliacion, UnaListaQueNoCabeVaEnVariosFicherosEnterosCadaUnoConSuPie) {
  Modulo m;
  m.empresa("28000000001", "B1");
  m.empresa("28000000002", "B2");
  {
    Transaccion t(m.productos);
    for (int i = 1; i <= 600; ++i) m.trabajador("28000000001", llenaIzq(std::to_string(i), 5, '0'));
    for (int i = 1; i <= 500; ++i) m.trabajador("28000000002", llenaIzq(std::to_string(i), 5, '0'));
    t.confirma();
  }
  m.arranca();
  const std::string ETI = "ETI" "AFI31WS342" "00000123" "ABCDEFGH" "20261115" "0730" "AFI00001" "AFI" "N" " "
                          "00000000000000" "  ";
  m.programa.g.LINEAETI = ETI;
  // A file of another run already bears the next name: it is passed over, not overwritten.
  fs::create_directories(m.fichero(""));
  pruebas::escribeBytes(m.fichero("afi00002.afi"), "de otro envío");
  AFILIA afi;
  cargaAFILIA(m.programa, m.pagina, afi);
  ASSERT_EQ(afi.ficheros.size(), 2u);

  // First the second file cannot be written: no file of the run is left, nothing is
  // remembered as sent.
  const fs::path bloqueado = m.fichero("AFI00003.AFI");
  for (int i = 0; i < INTENTOSTEMPORAL; ++i) fs::create_directories(nombreTemporal(bloqueado, i));
  SinFormularios f;
  EXPECT_TRUE(ESCRIBEFICHERO(m.programa, m.pagina, afi, f).empty());
  EXPECT_FALSE(fs::exists(m.fichero("AFI00001.AFI")));
  EXPECT_FALSE(fs::exists(bloqueado));
  EXPECT_TRUE(afi.enviados.empty());
  ASSERT_FALSE(m.dialogos.mensajes.empty());
  EXPECT_EQ(m.dialogos.mensajes.back().icono, Icono::Critico);
  for (int i = 0; i < INTENTOSTEMPORAL; ++i) fs::remove(nombreTemporal(bloqueado, i));
  EXPECT_EQ(std::distance(fs::directory_iterator(m.fichero("")), fs::directory_iterator()), 1);  // no temp file left
  m.dialogos.mensajes.clear();

  // A stop asked while the second file is written (the first takes 600 of the 1,100
  // workers): neither stands, an older file of the first name stays as it was.
  pruebas::escribeBytes(m.fichero("AFI00001.AFI"), "anterior");
  m.dialogos.alProgreso = [&m](int porcentaje) {
    if (porcentaje > 60) m.programa.pideParada();
  };
  EXPECT_TRUE(ESCRIBEFICHERO(m.programa, m.pagina, afi, f).empty());
  m.dialogos.alProgreso = {};
  EXPECT_EQ(pruebas::leeBytes(m.fichero("AFI00001.AFI")), "anterior");
  EXPECT_EQ(std::distance(fs::directory_iterator(m.fichero("")), fs::directory_iterator()), 2);
  EXPECT_TRUE(afi.enviados.empty());
  ASSERT_EQ(m.dialogos.mensajes.size(), 1u);
  EXPECT_EQ(m.dialogos.mensajes[0].texto,
            "Proceso cancelado por el usuario. No se ha generado ninguno de los 2 ficheros.");
  m.dialogos.mensajes.clear();

  // A name that cannot count up gives no second file: nothing is written.
  m.pagina.Text8 = "99999999";
  EXPECT_TRUE(ESCRIBEFICHERO(m.programa, m.pagina, afi, f).empty());
  ASSERT_EQ(m.dialogos.mensajes.size(), 1u);
  EXPECT_NE(m.dialogos.mensajes[0].texto.find("no quedan nombres libres despu\xE9s de 99999999"), std::string::npos);
  EXPECT_FALSE(fs::exists(m.fichero("99999999.AFI")));
  m.pagina.Text8 = "AFI00001";
  m.dialogos.mensajes.clear();

  const auto rutas = ESCRIBEFICHERO(m.programa, m.pagina, afi, f);
  EXPECT_EQ(rutas, (std::vector<std::string>{"C:\\WINSUITE\\VIPTC2\\AFI\\AFI00001.AFI",
                                             "C:\\WINSUITE\\VIPTC2\\AFI\\AFI00003.AFI"}));
  EXPECT_EQ(pruebas::leeBytes(m.fichero("afi00002.afi")), "de otro envío");
  // The first company whole in the first file: 2 + 2 + 6 * 600 + 1 = 3,605 lines.
  const auto uno = m.lineasDelFichero("AFI00001.AFI");
  ASSERT_EQ(uno.size(), 3605u);
  EXPECT_EQ(uno[0], ETI);
  EXPECT_EQ(uno[2].substr(7, 11), "28000000001");
  EXPECT_EQ(uno.back(), "ETFAFI31WS342" "123     " "ABCDEFGH" "20261115" "0730" "AFI00001" "AFIN" " " "00001"
                        "00003605" "   ");
  // The second company in the second file, under its own name: 2 + 2 + 6 * 500 + 1.
  const auto dos = m.lineasDelFichero("AFI00003.AFI");
  ASSERT_EQ(dos.size(), 3005u);
  EXPECT_EQ(dos[0], "ETI" "AFI31WS342" "00000123" "ABCDEFGH" "20261115" "0730" "AFI00003" "AFI" "N" " "
                    "00000000000000" "  ");
  EXPECT_EQ(dos[1], ajusta("SIL", 70));
  EXPECT_EQ(dos[2].substr(7, 11), "28000000002");
  EXPECT_EQ(dos.back(), "ETFAFI31WS342" "123     " "ABCDEFGH" "20261115" "0730" "AFI00003" "AFIN" " " "00001"
                        "00003005" "   ");
  // The user is told every file; the editor is offered for the first.
  ASSERT_EQ(m.dialogos.mensajes.size(), 1u);
  EXPECT_EQ(m.dialogos.mensajes[0].icono, Icono::Informacion);
  EXPECT_NE(m.dialogos.mensajes[0].texto.find("se han escrito 2 ficheros"), std::string::npos);
  EXPECT_NE(m.dialogos.mensajes[0].texto.find("\nC:\\WINSUITE\\VIPTC2\\AFI\\AFI00001.AFI (1 empresa, 600 trabajadores)"
                                               "\nC:\\WINSUITE\\VIPTC2\\AFI\\AFI00003.AFI (1 empresa, 500 trabajadores)"),
            std::string::npos)
      << m.dialogos.mensajes[0].texto;
  EXPECT_EQ(m.dialogos.preguntas.back().titulo, "C:\\WINSUITE\\VIPTC2\\AFI\\AFI00001.AFI");

  // Generating again writes the same two files again, and no third one.
  EXPECT_EQ(ESCRIBEFICHERO(m.programa, m.pagina, afi, f), rutas);
  EXPECT_FALSE(fs::exists(m.fichero("AFI00004.AFI")));
  EXPECT_EQ(m.lineasDelFichero("AFI00003.AFI"), dos);

  ASSERT_EQ(afi.enviados.size(), 1100u);
  BORRAMETODOSREG(m.programa, afi.enviados);
  EXPECT_TRUE(m.quedan().empty());
}

}  // namespace
}  // namespace valdor
