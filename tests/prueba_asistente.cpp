// The exchange wizard's rules: the page, the label lines, the exchange file's path and
// its native form, the start of the tool, and the hand-over of fan2.

#include <gtest/gtest.h>

#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/colacion.h"
#include "muestra/oficina_muestra.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

const Momento QUINCENOVIEMBRE{2026, 11, 15, 7, 30, 0};

REGINTERCAMBIO registro(std::string autoriza, std::string silcon) {
  return {ajusta(autoriza, 8), ajusta(silcon, 8), ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150), "01/02/2026"};
}

PaginaIntercambio paginaFan() {
  PaginaIntercambio p;
  p.marcaCotizacion();
  p.Label10 = "FAN";
  p.Label12 = "20261115";
  p.Label13 = "0730";
  p.Text8 = "F1511260";
  return p;
}

void ponReferencia(PaginaIntercambio& p) {
  p.Text3 = "1";
  p.Text4 = "3";
  p.Text5 = "A";
  p.Text6 = "12";
  p.Text7 = "7";
}

TEST(Asistente, ElNombreDelFicheroSeCompletaConCerosYEnMayusculas) {
  EXPECT_EQ(reglaNombre("abc"), "ABC00000");
  EXPECT_EQ(reglaNombre("  x1 "), "X1000000");
  EXPECT_EQ(reglaNombre("abcdefgh"), "ABCDEFGH");
  EXPECT_EQ(reglaNombre("abcdefghij"), "ABCDEFGHIJ");  // only upper case; the box holds 8
  EXPECT_EQ(reglaNombre("   "), "");
  EXPECT_EQ(reglaNombre(utf8ACp1252("ñu")), utf8ACp1252("ÑU000000"));
}

TEST(Asistente, LaReferenciaDeLaSustitucionVaPorValorConSuReglaDelCero) {
  PaginaIntercambio p;
  p.ponModo(Modo::Sustitucion);
  EXPECT_TRUE(p.SSPanel4Visible);
  ponReferencia(p);
  EXPECT_EQ(referenciaSustitucion(p), "0103A000120007");
  p.Text5 = "";  // an empty series moves the rest left
  EXPECT_EQ(referenciaSustitucion(p), "0103000120007");
  p.Text3 = "";  // Año reads 0: fourteen zeros whatever the rest holds
  EXPECT_EQ(referenciaSustitucion(p), std::string(14, '0'));

  p.Text3 = "5";
  p.ponModo(Modo::Pruebas);  // leaving Sustitución hides the panel and empties its boxes
  EXPECT_FALSE(p.SSPanel4Visible);
  EXPECT_EQ(p.Text3 + p.Text4 + p.Text5 + p.Text6 + p.Text7, "");
}

TEST(Asistente, LasLineasETIYSILColocanCadaCampoEnSuPosicion) {
  PaginaIntercambio p = paginaFan();
  const std::string eti = LINEAETI(p, registro("123", "ABCDEFGH"));
  EXPECT_EQ(eti,
            "ETI" "TC220VIP28" "00000123" "ABCDEFGH" "20261115" "0730" "F1511260" "FAN" "N" " "
            "00000000000000" "  ");

  // A short SILCON key stays short: everything behind it stands five places to the left.
  const std::string corta = LINEAETI(p, registro("12345678", "ABC"));
  EXPECT_EQ(corta.size(), 65u);
  EXPECT_EQ(corta.substr(21, 3), "ABC");
  EXPECT_EQ(corta.substr(24, 8), "20261115");

  p.marcaAfiliacion();
  p.ponModo(Modo::Sustitucion);
  ponReferencia(p);
  const std::string afi = LINEAETI(p, registro("123456789", "ABCDEFGH"));
  EXPECT_EQ(afi.substr(3, 10), "AFI31WS342");
  EXPECT_EQ(afi.substr(13, 8), "12345678");  // a longer key is cut where the line takes it
  EXPECT_EQ(afi.substr(52, 2), "NS");
  EXPECT_EQ(afi.substr(54, 14), "0103A000120007");

  // The SIL line pads the keys in their own boxes.
  PaginaIntercambio sil;
  sil.Text10 = "K1";
  sil.Text11 = "NUEVA";
  EXPECT_EQ(LINEASIL(sil), "SIL" "K1      " "NUEVA   " + std::string(51, ' '));
  EXPECT_EQ(sil.Text10 + sil.Text11, "K1      NUEVA   ");
}

TEST(Asistente, LaRutaDelFicheroSaleDeLaDeWinsuiteYSeAbreEnWineSinMirarMayusculas) {
  PaginaIntercambio p = paginaFan();
  const std::string winsuite = ajusta("c:\\winsuite\\winsuite.exe", 150);
  EXPECT_EQ(rutaFicheroFAN(winsuite, p), "C:\\WINSUITE\\VIPTC2\\FAN\\F1511260.FAN");
  EXPECT_EQ(rutaFicheroAFI(winsuite, p), "C:\\WINSUITE\\VIPTC2\\FAN\\F1511260.FAN");
  p.marcaAfiliacion();
  p.Label10 = "AFI";
  EXPECT_EQ(rutaFicheroAFI(winsuite, p), "C:\\WINSUITE\\VIPTC2\\AFI\\F1511260.AFI");
  EXPECT_EQ(rutaFicheroFAN(winsuite, p), "C:\\WINSUITEAFI\\F1511260.AFI");  // no marker there
  // The marker in the route: the path keeps 11 characters behind its position.
  p.marcaCotizacion();
  EXPECT_EQ(rutaFicheroFAN("D:\\Programas\\VIPTC2\\WinSuite.exe", p),
            "D:\\PROGRAMAS\\VIPTC2\\WINS\\VIPTC2\\FAN\\F1511260.AFI");

  CarpetaTemporal c;
  const EntornoWine wine{c.ruta()};
  fs::create_directories(c / "drive_c/WinSuite/viptc2/fan");
  EXPECT_EQ(rutaNativa("C:\\WINSUITE\\VIPTC2\\FAN\\F1511260.FAN", wine),
            c / "drive_c/WinSuite/viptc2/fan/F1511260.FAN");
  fs::create_directories(c / "dosdevices");
  fs::create_directories(c / "otra");
  fs::create_directory_symlink(c / "otra", c / "dosdevices/d:");
  EXPECT_EQ(rutaNativa("d:\\x.txt", wine), c / "dosdevices/d:/x.txt");
  EXPECT_EQ(rutaNativa("/usr/bin/true", wine), fs::path("/usr/bin/true"));

  EXPECT_EQ(ordenDeArranque("C:\\WINSUITE\\WINSUITE.EXE", {}, wine),
            (std::vector<std::string>{"wine", (c / "drive_c/WinSuite/WINSUITE.EXE").string()}));
  EXPECT_EQ(ordenDeArranque("  /usr/bin/gedit ", {"/tmp/a b"}, wine),
            (std::vector<std::string>{"/usr/bin/gedit", "/tmp/a b"}));
}

// ---- The run of the wizard ----------------------------------------------------------------

struct LanzadorGrabador : Lanzador {
  std::optional<std::string> lanza(const std::vector<std::string>& orden) override {
    ordenes.push_back(orden);
    return fallo;
  }
  std::optional<std::string> fallo;  // the reason a start fails, when a test wants it to
  std::vector<std::vector<std::string>> ordenes;
};

struct FormulariosGuionados : FormulariosIntercambio {
  explicit FormulariosGuionados(Programa& p) : programa(p) {}
  void COTIZACION() override {
    vistos += "COTIZACION ";
    if (excluye) programa.g.HAYEXCLUIDAS = 1;
    if (lineaLarga) programa.g.LINEALARGA = 1;
  }
  void AFILIA() override { vistos += "AFILIA "; }
  void EDITOR() override { vistos += "EDITOR "; }
  Programa& programa;
  bool excluye = false;
  bool lineaLarga = false;
  std::string vistos;
};

struct Oficina {
  Oficina() {
    fs::create_directories(carpetas.trabajo);
    fs::create_directories(carpetas.programa);
  }
  void ponRuta(const std::string& ruta) {
    FicheroAjustes f(carpetas.trabajo);
    REGINTERCAMBIO r = registro("123", "ABCDEFGH");
    r.RUTAWINSUITE = ruta;
    f.escribe(r);
  }
  CarpetaTemporal c;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  DialogosGrabador dialogos;
  LanzadorGrabador lanzador;
  EntornoWine wine{c / "wine"};
};

TEST(Asistente, LaCargaFuerzaLaConfiguracionConElFicheroVacioYLeeLaRuta) {
  Oficina o;
  guardaEmisor(o.carpetas.trabajo, utf8ACp1252("Gestoría del Valle"));
  Programa p(o.carpetas, o.dialogos, Separadores{',', '.'}, QUINCENOVIEMBRE);
  p.g.EMISORNOMBRE = leeEmisor(o.carpetas.trabajo);
  PaginaIntercambio pagina;
  int configuraciones = 0;
  cargaAsistente(p, pagina, [&] {
    ++configuraciones;
    FicheroAjustes f(o.carpetas.trabajo);
    guardaConfiguracion(f, cargaConfiguracion(f, ""));
  });
  EXPECT_EQ(configuraciones, 1);
  EXPECT_EQ(p.g.RUTAWS, ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150));
  EXPECT_EQ(pagina.Label19, utf8ACp1252("para GESTORÍA DEL VALLE"));
  EXPECT_EQ(p.g.COMADECIMAL, 1);

  Programa punto(o.carpetas, o.dialogos, Separadores{}, QUINCENOVIEMBRE);
  cargaAsistente(punto, pagina, [&] { ++configuraciones; });
  EXPECT_EQ(configuraciones, 1);  // the file is no longer empty
  EXPECT_EQ(punto.g.COMADECIMAL, 0);
}

TEST(Asistente, Fan2TerminadoAvisaDeLasExcluidasOfreceElEditorYArrancaWinsuite) {
  Oficina o;
  o.ponRuta("C:\\WINSUITE\\WINSUITE.EXE");
  Programa p(o.carpetas, o.dialogos, Separadores{}, QUINCENOVIEMBRE);
  p.g.RUTAWS = ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150);
  FormulariosGuionados f(p);
  f.excluye = true;
  f.lineaLarga = true;
  o.dialogos.respuestas = {true};
  PaginaIntercambio pagina = paginaFan();
  fan2(p, pagina, f, o.lanzador, o.wine);

  EXPECT_EQ(f.vistos, "COTIZACION EDITOR ");
  // The excluded companies first, then the lines cut at 70, before the editor's offer.
  ASSERT_EQ(o.dialogos.mensajes.size(), 2u);
  EXPECT_EQ(o.dialogos.mensajes[0].titulo, "VALDOR+ - Sistema RED");
  EXPECT_EQ(o.dialogos.mensajes[1].texto, textoLineaLarga());
  EXPECT_EQ(o.dialogos.mensajes[1].icono, Icono::Exclamacion);
  ASSERT_EQ(o.dialogos.preguntas.size(), 1u);
  EXPECT_EQ(o.dialogos.preguntas[0].texto, preguntaEditarFan());
  EXPECT_EQ(pagina.Label3, std::string(textoActivaWinsuite()) + p.g.RUTAWS);
  EXPECT_EQ(p.g.LANZADOR, "C:\\WINSUITE\\WINSUITE.EXE");
  ASSERT_EQ(o.lanzador.ordenes.size(), 1u);
  EXPECT_EQ(o.lanzador.ordenes[0],
            (std::vector<std::string>{"wine", (o.wine.prefijo / "drive_c/WINSUITE/WINSUITE.EXE").string()}));

  // With no route there is no editor, whatever the answer, and nothing starts.
  o.ponRuta("");
  p.g.RUTAWS = std::string(150, ' ');
  o.dialogos.respuestas = {true};
  f.vistos.clear();
  fan2(p, pagina, f, o.lanzador, o.wine);
  EXPECT_EQ(f.vistos, "COTIZACION ");
  EXPECT_EQ(o.lanzador.ordenes.size(), 1u);
}

TEST(Asistente, Fan2SinCotizacionTomaElCaminoDeLaAfiliacion) {
  Oficina o;
  Programa p(o.carpetas, o.dialogos, Separadores{}, QUINCENOVIEMBRE);
  FormulariosGuionados f(p);
  PaginaIntercambio pagina = paginaFan();
  pagina.Option1Cotizacion = false;  // neither option on
  pagina.Text10 = "CLAVE1";
  Command3(p, pagina, f, o.lanzador, o.wine);
  EXPECT_EQ(f.vistos, "AFILIA ");
  EXPECT_EQ(p.g.LINEAETI.substr(3, 10), "AFI31WS342");
  EXPECT_EQ(p.g.LINEASIL, "SILCLAVE1  " + std::string(8, ' ') + std::string(51, ' '));
  EXPECT_TRUE(o.lanzador.ordenes.empty());
}

TEST(Asistente, ElComboDeLaConfiguracionListaLasEmpresasPorNombre) {
  Oficina o;
  fs::remove_all(o.carpetas.programa);
  fs::remove_all(o.carpetas.trabajo);
  escribeOficinaMuestra(o.carpetas, {10, 2026});
  Programa p(o.carpetas, o.dialogos, Separadores{}, QUINCENOVIEMBRE);
  p.arranca();
  const auto lista = listaCombo1(p);
  ASSERT_GE(lista.size(), 5u);
  EXPECT_EQ(lista[0], utf8ACp1252("Configuración General"));
  for (std::size_t i = 2; i < lista.size(); ++i) {
    EXPECT_LE(lista[i].size(), 35u);
    EXPECT_LE(comparaEspanol(cp1252AUtf8(lista[i - 1]), cp1252AUtf8(lista[i])), 0);
  }
}

}  // namespace
}  // namespace valdor
