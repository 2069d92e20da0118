// The statement drawn on a page: the offset of the form's feed, and the PDF of the command
// line against the raw text of the port, character by character, for a whole statement.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "statement/pagina.h"
#include "stores/numeros.h"
#include "stores/texto.h"
#include "tests/cli_prueba.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::contiene;
using pruebas::valdor;

TEST(Pagina, ElDesplazamientoDelAvanceDelImpreso) {
  const auto d = leeDesplazamiento(" 2.5 ,-1");
  ASSERT_TRUE(d);
  EXPECT_EQ(d->abajoMm, 2.5);
  EXPECT_EQ(d->derechaMm, -1);
  EXPECT_EQ(leeDesplazamiento("-50")->abajoMm, -50);
  for (const char* malo : {"", "a", "3,", ",3", "3 mm", "1,2,3", "50.5", "2;5"})
    EXPECT_FALSE(leeDesplazamiento(malo)) << malo;

  // An inch down and half an inch to the left: 72 and 36 points, every line with them.
  const PaginaBoletin quieta = paginaBoletin({"A"}, false);
  const PaginaBoletin movida = paginaBoletin({"A"}, false, {25.4, -12.7});
  EXPECT_NEAR(movida.base(0) - quieta.base(0), 72, 1e-9);
  EXPECT_NEAR(movida.x(3) - quieta.x(3), -36, 1e-9);
  EXPECT_NEAR(quieta.x(10) - quieta.x(0), 72, 1e-9);  // 10 characters an inch
  EXPECT_NEAR(quieta.y(6) - quieta.y(0), 72, 1e-9);   // 6 lines an inch
}

// The output of a command, or std::nullopt when it could not be run.
std::optional<std::string> salidaDe(const std::string& orden) {
  const std::unique_ptr<FILE, int (*)(FILE*)> tubo(popen(orden.c_str(), "r"), pclose);
  if (!tubo) return std::nullopt;
  std::string salida;
  char trozo[4096];
  for (std::size_t n; (n = fread(trozo, 1, sizeof trozo, tubo.get())) > 0;) salida.append(trozo, n);
  return salida;
}

// The lines of a text without the blanks that end them, and without the blank lines at
// its end.
std::vector<std::string> lineasSinBlancosFinales(const std::string& texto, const std::string& fin) {
  std::vector<std::string> l;
  for (std::size_t i = 0; i < texto.size();) {
    const std::size_t j = std::min(texto.find(fin, i), texto.size());
    l.push_back(recortaDer(texto.substr(i, j - i)));
    i = j + fin.size();
  }
  while (!l.empty() && l.back().empty()) l.pop_back();
  return l;
}

// The lines with as many leading columns taken off as every one of them has blank: the
// PDF's text starts where its leftmost character does.
void sinMargen(std::vector<std::string>& lineas) {
  std::size_t margen = std::string::npos;
  for (const std::string& l : lineas)
    if (!l.empty()) margen = std::min(margen, l.find_first_not_of(' '));
  for (std::string& l : lineas) l.erase(0, std::min(margen, l.size()));
}

using PaginaMuestra = pruebas::CliMuestra;

TEST_F(PaginaMuestra, ElPdfLlevaLosMismosCaracteresEnLosMismosSitiosQueElPuerto) {
  if (std::system("command -v pdftotext >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "Falta pdftotext (paquete poppler-utils): no se puede leer el texto del PDF.";
  // The bakery: a sole trader's name with accents and an Ñ, sent by R.E.D., every block
  // of the statement with figures.
  const std::vector<std::string> orden{"imprimir", "--mes", "10", "--ano", "2026", "--empresa", "41123409876", "--red"};
  auto con = [&](std::vector<std::string> mas) {
    mas.insert(mas.begin(), orden.begin(), orden.end());
    return valdor(c, mas);
  };
  ASSERT_EQ(con({"--puerto", "boletin.txt"}).estado, 0);
  const fs::path pdf = c / "boletin.pdf";
  const pruebas::Resultado r = con({"--pdf", pdf.string()});
  ASSERT_EQ(r.estado, 0) << r.errores;
  EXPECT_EQ(r.salida, pdf.string() + "\n");

  // The port's bytes as the printer shows them, and the PDF's text, in UTF-8.
  std::vector<std::string> puerto =
      lineasSinBlancosFinales(cp1252AUtf8(PONACENTOS(pruebas::leeBytes(c / "trabajo" / "boletin.txt"))), "\r\n");
  // Read at the page's own pitch, so that a column of the text is a column of the form.
  const auto texto = salidaDe("pdftotext -layout -fixed 7.2 " + pruebas::paraLaShell(pdf.string()) + " -");
  ASSERT_TRUE(texto);
  std::vector<std::string> enPdf = lineasSinBlancosFinales(*texto, "\n");
  // pdftotext ends the page with a form feed.
  if (!enPdf.empty() && enPdf.back() == "\f") enPdf.pop_back();
  sinMargen(puerto);
  sinMargen(enPdf);
  ASSERT_GT(puerto.size(), 30u);
  EXPECT_EQ(enPdf, puerto);
  EXPECT_TRUE(contiene(cp1252AUtf8(PONACENTOS(pruebas::leeBytes(c / "trabajo" / "boletin.txt"))), "NO ACOMPAÑA TC-2"));

  // A folder that is not there: the message names the file and why; nothing is left.
  const pruebas::Resultado mal = con({"--pdf", (c / "no" / "hay.pdf").string()});
  EXPECT_EQ(mal.estado, 1);
  EXPECT_TRUE(contiene(mal.errores, (c / "no" / "hay.pdf").string()));
  EXPECT_TRUE(contiene(mal.errores, "no existe el fichero o la carpeta"));
  EXPECT_FALSE(fs::exists(c / "no"));
}

}  // namespace
}  // namespace valdor
