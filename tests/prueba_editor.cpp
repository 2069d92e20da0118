// The root of the file selector and the editor's rules: the rows of a file, the checks
// that mark a line without changing it, the typing of a field and the reading of lines.

#include <gtest/gtest.h>

#include "browser/editor.h"
#include "browser/selector.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::escribeBytes;
namespace fs = std::filesystem;

TEST(Selector, LaRaizSoloSeCortaAnteWinsuiteExeEscritoAsi) {
  EXPECT_EQ(raizSelector("C:\\WINSUITE\\Winsuite.exe"), "C:\\WINSUITE\\");
  EXPECT_EQ(raizSelector("  D:\\RED\\Winsuite.exe  "), "D:\\RED\\");
  EXPECT_EQ(raizSelector("C:\\WINSUITE\\WINSUITE.EXE"), "C:\\WINSUITE\\WINSUITE.EXE");
  EXPECT_EQ(raizSelector("0:\\WINSUITE\\Winsuite.exe"), "");
  EXPECT_EQ(raizSelector(""), "");
}

const std::string L70 = "TRA" + std::string(67, 'X');

// The load, the search and the save through the editor's window are the form tests';
// here, the rows a size suggests, a blank search and a save into a folder that is not there.
TEST(Editor, LasFilasQueSugiereElTamanoUnaBusquedaEnBlancoYUnGuardadoSinCarpeta) {
  // Three lines of 70 with their ends: 216 bytes, 3.09 rows rounded to 3, and one more
  // for an affiliation file; 1.5 and 2.5 round to the even 2.
  EXPECT_EQ(filasEstimadas(216, false), 3);
  EXPECT_EQ(filasEstimadas(216, true), 4);
  EXPECT_EQ(filasEstimadas(105, false), 2);
  EXPECT_EQ(filasEstimadas(175, false), 2);
  CarpetaTemporal c;
  EXPECT_TRUE(leeLineas(c / "NOESTA.FAN").empty());
  EXPECT_FALSE(buscaLinea({L70}, "   "));
  EXPECT_THROW(guardaLineas(c / "no/existe/X.FAN", {L70}), ErrorFichero);
}

TEST(Editor, LaRevisionMarcaLongitudSegmentoYCuentasDelCierre) {
  EXPECT_EQ(tipoDeFichero("c:\\x\\f2211260.fan"), TipoIntercambio::FAN);
  EXPECT_EQ(tipoDeFichero("F1511260.AFI"), TipoIntercambio::AFI);
  EXPECT_EQ(tipoDeFichero("NOTAS.TXT"), TipoIntercambio::Otro);

  EXPECT_TRUE(observacionesDeLinea(L70, TipoIntercambio::FAN).empty());
  EXPECT_EQ(observacionesDeLinea(L70.substr(0, 69), TipoIntercambio::FAN),
            (std::vector<std::string>{"longitud 69"}));
  // DOM is a segment of the affiliation file, not of the contribution file.
  const std::string dom = "DOM" + std::string(67, ' ');
  EXPECT_TRUE(observacionesDeLinea(dom, TipoIntercambio::AFI).empty());
  EXPECT_EQ(observacionesDeLinea(dom, TipoIntercambio::FAN), (std::vector<std::string>{"segmento DOM"}));
  EXPECT_TRUE(observacionesDeLinea("   ", TipoIntercambio::FAN).empty());

  // ETI, EMP, RZS, TRA and the trailer: 1 company, 5 lines.
  auto pie = [](std::string_view cuentas) {
    return "ETF" + std::string(51, 'X') + std::string(cuentas) + "   ";
  };
  std::vector<std::string> f{"ETI" + std::string(67, ' '), "EMP" + std::string(67, ' '),
                             "RZS" + std::string(67, ' '), L70, pie("0000100000005")};
  ASSERT_EQ(f.back().size(), 70u);
  CuentasPie c = cuentasDelPie(f);
  EXPECT_TRUE(c.cuadran());
  EXPECT_EQ(informeRevision(f, TipoIntercambio::FAN),
            (std::vector<std::string>{std::string("Las cuentas del cierre ETF cuadran con el fichero: 1 empresas y 5 líneas."_cp)}));

  // A line added by hand: the count of lines no longer tallies, and the line is marked.
  f.insert(f.begin() + 3, "XYZ corta");
  c = cuentasDelPie(f);
  EXPECT_FALSE(c.cuadran());
  EXPECT_EQ(c.lineas, 6);
  EXPECT_EQ(c.lineasPie, 5);
  EXPECT_EQ(informeRevision(f, TipoIntercambio::FAN),
            (std::vector<std::string>{std::string("Línea 4: tiene 9 caracteres y debe tener 70."_cp),
                                      std::string("Línea 4: \"XYZ\" no es un segmento de un fichero FAN."_cp),
                                      std::string("El cierre ETF cuenta 5 líneas y el fichero tiene 6."_cp)}));
  f.pop_back();
  EXPECT_FALSE(cuentasDelPie(f).hayPie);
}

// Every line end that is not CR LF is marked with the line's number, in the grid's
// short form and in the report; a blank line is left alone, whatever its end.
// Each text field of the accent table is typed as its writer writes it: the company name
// through the table and then in capitals (é stays 130, the DOS small é), a surname in
// capitals and then through the table (é becomes É, 144); the given name, and every field
// of an AFI worker, in Windows-1252.
TEST(Editor, CadaCampoSeTecleaComoLoEscribeSuEscritor) {
  const std::string rzs = "RZS01" + std::string(55, 'A') + std::string(10, ' ');
  const std::string ayn = "AYN" + std::string(20, 'B') + std::string(20, 'C') + std::string(15, 'D') + std::string(12, ' ');
  auto teclea = [](const std::string& linea, std::size_t desde, std::string_view utf8, TipoIntercambio tipo) {
    std::string mostrada = lineaParaMostrar(linea, tipo);
    mostrada.replace(desde, 3, utf8);
    return lineaTecleada(linea, mostrada, tipo);
  };
  EXPECT_EQ(teclea(rzs, 5, "ñé.", TipoIntercambio::FAN), "RZS01\xA4\x82." + rzs.substr(8));
  EXPECT_EQ(teclea(rzs, 5, "ñé.", TipoIntercambio::AFI), "RZS01\xA4\x82." + rzs.substr(8));
  EXPECT_EQ(teclea(ayn, 3, "ñé.", TipoIntercambio::FAN), "AYN\xA5\x90." + ayn.substr(6));
  EXPECT_EQ(teclea(ayn, 43, "ñé.", TipoIntercambio::FAN), ayn.substr(0, 43) + "\xF1\xE9." + ayn.substr(46));
  EXPECT_EQ(teclea(ayn, 3, "ñé.", TipoIntercambio::AFI), "AYN\xF1\xE9." + ayn.substr(6));
  // Shown by the letters of the table, and given back byte for byte when left as shown,
  // also a byte the table never writes (225, á in Windows-1252).
  const std::string dos = "RZS01\xA4\x82\xE1" + std::string(52, 'A') + std::string(10, ' ');
  EXPECT_EQ(lineaParaMostrar(dos, TipoIntercambio::FAN).substr(0, 11), "RZS01ñéá");
  EXPECT_EQ(lineaTecleada(dos, lineaParaMostrar(dos, TipoIntercambio::FAN), TipoIntercambio::FAN), dos);
}

TEST(Editor, CadaFinDeLineaQueNoEsCRLFSeMarcaConSuNumero) {
  CarpetaTemporal c;
  const fs::path f = c / "FINES.FAN";
  escribeBytes(f, L70 + "\r\n" + L70 + "\n" + L70 + "\r" + "\r\n" + "\n" + L70);
  std::vector<FinDeLinea> finales;
  const std::vector<std::string> lineas = leeLineas(f, &finales);
  EXPECT_EQ(lineas, (std::vector<std::string>{L70, L70, L70, "", "", L70}));
  EXPECT_EQ(finales, (std::vector<FinDeLinea>{FinDeLinea::CRLF, FinDeLinea::LF, FinDeLinea::CR, FinDeLinea::CRLF,
                                              FinDeLinea::LF, FinDeLinea::Ninguno}));
  EXPECT_EQ(observacionesDeLinea(L70, TipoIntercambio::FAN, FinDeLinea::LF), (std::vector<std::string>{"fin LF"}));
  EXPECT_EQ(observacionesDeLinea("TRA", TipoIntercambio::FAN, FinDeLinea::Ninguno),
            (std::vector<std::string>{"longitud 3", std::string("sin fin de línea"_cp)}));
  EXPECT_TRUE(observacionesDeLinea("", TipoIntercambio::FAN, FinDeLinea::CR).empty());

  LectorLineas lector(f, LIMITELINEA);
  RevisionFichero revision(TipoIntercambio::FAN);
  std::vector<std::string> informe;
  LineaLeida linea;
  while (lector.siguiente(linea))
    for (const std::string& l : revision.revisa(linea)) informe.push_back(l);
  EXPECT_EQ(informe, (std::vector<std::string>{std::string("Línea 2: termina en LF y no en CR LF."_cp),
                                               std::string("Línea 3: termina en CR y no en CR LF."_cp),
                                               std::string("Línea 6: es la última y no termina en CR LF."_cp)}));
  EXPECT_EQ(revision.lineas(), 6u);
  EXPECT_EQ(revision.cuentas().lineas, 4);
  EXPECT_FALSE(revision.bien());
}

// The reader goes through the file a block of 64 KiB at a time: a CR LF split between
// two blocks is one end, a CR at the end of a block followed by another byte is a CR
// alone, and a line longer than the limit is told with its whole length.
TEST(Editor, ElLectorCruzaLosBloquesYCortaLasLineasLargas) {
  CarpetaTemporal c;
  const fs::path f = c / "LARGO.AFI";
  const std::size_t bloque = 64 * 1024;
  const std::string primera(bloque - 1, 'A');  // its CR is the block's last byte
  const std::string segunda(bloque - 2, 'B');  // its CR is the last byte of the second block
  escribeBytes(f, primera + "\r\n" + segunda + "\r" + "C\r");
  LectorLineas lector(f, LIMITELINEA);
  LineaLeida l;
  ASSERT_TRUE(lector.siguiente(l));
  EXPECT_EQ(l.longitud, bloque - 1);
  EXPECT_EQ(l.texto, std::string(LIMITELINEA, 'A'));
  EXPECT_EQ(l.fin, FinDeLinea::CRLF);
  ASSERT_TRUE(lector.siguiente(l));
  EXPECT_EQ(l.longitud, bloque - 2);
  EXPECT_EQ(l.fin, FinDeLinea::CR);
  ASSERT_TRUE(lector.siguiente(l));
  EXPECT_EQ(l.texto, "C");
  EXPECT_EQ(l.fin, FinDeLinea::CR);  // a CR that ends the file
  EXPECT_FALSE(lector.siguiente(l));
  EXPECT_FALSE(lector.siguiente(l));
  // Without a limit, as the editor loads a file, the line is whole.
  EXPECT_EQ(leeLineas(f).at(1), segunda);

  // A file that is missing or a folder: a message that says which, naming it.
  auto mensaje = [](const fs::path& ruta) { return pruebas::mensajeDe<ErrorFichero>([&] { LectorLineas l(ruta); }); };
  EXPECT_EQ(mensaje(c / "NOESTA.FAN"), "No existe el fichero \"" + (c / "NOESTA.FAN").string() + "\".");
  EXPECT_EQ(mensaje(c.ruta()), "\"" + c.ruta().string() + "\" es una carpeta, no un fichero.");
  EXPECT_TRUE(leeLineas(c.ruta()).empty());
}

}  // namespace
}  // namespace valdor
