// The settings file VALDOR.MDB, the sender's name and the configuration grid.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <vector>

#include "shell/ajustes.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using Campos = std::vector<std::string>;
const std::string RUTA = "C:\\WINSUITE\\WINSUITE.EXE";  // 24 characters

Campos campos(const REGINTERCAMBIO& r) {
  return {r.CLAVEAUTORIZA, r.CLAVESILCON, r.RUTAWINSUITE, r.FECHAAUTORIZA};
}

std::string mensaje(FicheroAjustes& f) try {
  f.escribe(registroEnBlanco());
  return "sin error";
} catch (const ErrorAjustes& e) {
  return e.what();
}

class Ajustes : public ::testing::Test {
 protected:
  std::string bytes(const std::string& nombre) { return pruebas::leeBytes(dir / nombre); }
  REGINTERCAMBIO guarda(const std::string& clave, const std::string& ruta) {
    FicheroAjustes f(dir);
    auto fila = [](std::string v) { return FilaConfiguracion{"", std::move(v), 0, ""}; };
    return guardaConfiguracion(
        f, {fila("no"), fila(clave), fila("ABC"), fila("01/02/2024"), fila(ruta)});
  }
  pruebas::CarpetaTemporal carpeta;
  fs::path dir = carpeta.ruta();
};

TEST_F(Ajustes, CarpetaNuevaDaFicheroVacioYLosRellenosDeCadaLector) {
  FicheroAjustes f(dir);
  ASSERT_TRUE(f.abierto());
  auto blancos = [](std::size_t n) { return std::string(n, ' '); };
  EXPECT_EQ(campos(leeAjustesAlArrancar(f)),
            (Campos{blancos(8), blancos(8), blancos(150), blancos(10)}));
  auto filas = cargaConfiguracion(f, "  Emisor  ");
  EXPECT_EQ(filas[0].valor + "|" + filas[1].etiqueta + "|" + filas[1].valor + "|" + filas[4].valor,
            "Emisor|Clave de autorizaci\xF3n||" + RUTA);
  EXPECT_EQ(fs::file_size(dir / "VALDOR.MDB"), 0u);  // reading never writes
}

TEST_F(Ajustes, GuardarPoneCadaCampoEnSuSitioYLaCargaLoMuestra) {
  guarda("123", RUTA);
  EXPECT_EQ(bytes("VALDOR.MDB"), "123     ABC     " + RUTA + std::string(126, ' ') + "01/02/2024");
  FicheroAjustes f(dir);
  auto filas = cargaConfiguracion(f, "");
  EXPECT_EQ(filas[1].valor + "|" + filas[3].valor + "|" + filas[4].valor, "123|01/02/2024|" + RUTA);
  std::string larga;
  for (int i = 0; i < 160; ++i) larga += char('A' + i % 26);
  EXPECT_EQ(guarda("1", larga).RUTAWINSUITE, larga.substr(0, 150));
  EXPECT_EQ(bytes("VALDOR.MDB"), "1       ABC     " + larga.substr(0, 150) + "01/02/2024");
  // A route behind a blank or a "0" isn't shown, but the start keeps it untrimmed.
  guarda("  12 ", " C:\\X.EXE");
  EXPECT_EQ(cargaConfiguracion(f, "")[4].valor, "");
  REGINTERCAMBIO r = leeAjustesAlArrancar(f);
  EXPECT_EQ(r.CLAVEAUTORIZA, "12      ");
  EXPECT_EQ(r.RUTAWINSUITE, " C:\\X.EXE" + std::string(141, ' '));
  guarda("1", "0C:\\X.EXE");
  EXPECT_EQ(cargaConfiguracion(f, "")[4].valor, "");
}

TEST_F(Ajustes, FicheroCortoEnOtraCajaTomaLosCamposQueAlcanza) {
  std::ofstream(dir / "valdor.mdb", std::ios::binary) << "12345678ABCDEFGHC:\\W";
  FicheroAjustes f(dir);
  EXPECT_EQ(f.ruta().filename(), "valdor.mdb");
  REGINTERCAMBIO r{"x", "x", "x", "fecha"};
  ASSERT_TRUE(f.lee(r));
  EXPECT_EQ(campos(r), (Campos{"12345678", "ABCDEFGH", "C:\\W" + std::string(146, ' '), "fecha"}));
  EXPECT_FALSE(fs::exists(dir / "VALDOR.MDB"));
}

TEST_F(Ajustes, CerrojoAjenoHaceEsperarYRendirseSinTocarNada) {
  guarda("123", RUTA);
  FicheroAjustes f(dir);
  const int otro = ::open((dir / "VALDOR.MDB").c_str(), O_RDWR);
  struct flock c {};
  c.l_type = F_WRLCK;
  c.l_len = 176;
  ASSERT_EQ(::fcntl(otro, F_OFD_SETLK, &c), 0);
  REGINTERCAMBIO r{"a", "b", "c", "d"};
  const auto t0 = std::chrono::steady_clock::now();
  EXPECT_FALSE(f.lee(r));
  const auto espera = std::chrono::steady_clock::now() - t0;
  EXPECT_TRUE(espera > std::chrono::milliseconds(1500) && espera < std::chrono::seconds(5));
  EXPECT_EQ(campos(r), (Campos{"a", "b", "c", "d"}));
  EXPECT_THROW(f.escribe(r), ErrorAjustes);
  c.l_type = F_UNLCK;
  ASSERT_EQ(::fcntl(otro, F_OFD_SETLK, &c), 0);
  ::close(otro);
  ASSERT_TRUE(f.lee(r));
  EXPECT_EQ(r.CLAVEAUTORIZA, "123     ");
}

TEST(AjustesClaves, CadaLineaEnsanchaLasClavesYLaFechaSigueSuMascara) {
  EXPECT_EQ(claveAutorizaParaETI("123     "), "00000123");
  EXPECT_EQ(claveAutorizaParaETI("123456789"), "123456789");
  EXPECT_EQ(claveSilconParaETI(" ABC    "), "ABC");
  EXPECT_EQ(claveParaPieAFI("123"), "123     ");
  EXPECT_EQ(claveParaPieAFI("123456789"), "123456789");
}

TEST_F(Ajustes, EmisorIdaYVueltaCortadoA35) {
  EXPECT_EQ(leeEmisor(dir), "");
  guardaEmisor(dir, "Pe\xF1" "a");
  EXPECT_EQ(bytes("EMISOR.TXT"), "Pe\xF1" "a\n");
  guardaEmisor(dir, std::string(40, 'N'));
  EXPECT_EQ(leeEmisor(dir), std::string(35, 'N'));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 1);  // no temporary left
  fs::rename(dir / "EMISOR.TXT", dir / "emisor.txt");
  std::ofstream(dir / "emisor.txt", std::ios::binary) << "Asesor\xED" "a\r\nsegunda\r\n";
  EXPECT_EQ(leeEmisor(dir), "Asesor\xED" "a");
}

TEST_F(Ajustes, CarpetaInexistenteODiscoLlenoDanUnErrorQueNombraElFichero) {
  FicheroAjustes no(dir / "no");
  REGINTERCAMBIO r{"a", "b", "c", "d"};
  EXPECT_FALSE(no.abierto() || no.lee(r));
  EXPECT_NE(mensaje(no).find("/no/VALDOR.MDB\""), std::string::npos);
  EXPECT_THROW(guardaEmisor(dir / "no", "X"), ErrorAjustes);
  fs::create_symlink("/dev/full", dir / "VALDOR.MDB");
  FicheroAjustes lleno(dir);
  EXPECT_EQ(mensaje(lleno).rfind("No queda espacio en el disco", 0), 0u);

  // A date of digits or blanks with its bars at 3 and 6.
  for (auto si : {"", "01/02/2024", "  /  /    ", "01/0"}) EXPECT_TRUE(encajaMascaraFecha(si));
  for (auto no : {"01-02-2024", "01/02/20245", "0a/0", "1/02/2024"})
    EXPECT_FALSE(encajaMascaraFecha(no));
}

}  // namespace
}  // namespace valdor
