// The settings file VALDOR.MDB, the sender's name and the configuration grid.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <vector>

#include "shell/ajustes.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using Campos = std::vector<std::string>;
const std::string RUTA = "C:\\WINSUITE\\WINSUITE.EXE";  // 24 characters

Campos campos(const REGINTERCAMBIO& r) {
  return {r.CLAVEAUTORIZA, r.CLAVESILCON, r.RUTAWINSUITE, r.FECHAAUTORIZA};
}

// The message of the refusal to save a blank record.
std::string mensaje(FicheroAjustes& f) {
  return pruebas::mensajeDe<ErrorAjustes>([&] { f.escribe(registroEnBlanco()); });
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
  std::string larga = "C:\\";
  for (int i = 3; i < 160; ++i) larga += char('A' + i % 26);
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

TEST_F(Ajustes, ElFicheroEnOtraCajaSeLeeYSusBytesDeControlNuncaLlegan) {
  std::ofstream(dir / "valdor.mdb", std::ios::binary)
      << "12345678ABCDEFGH" << ajusta("\\\\SERVIDOR\\WS\\WINSUITE.EXE", 150) << "01/02/2024";
  FicheroAjustes f(dir);
  EXPECT_EQ(f.ruta().filename(), "valdor.mdb");
  REGINTERCAMBIO r{"x", "x", "x", "fecha"};
  ASSERT_TRUE(f.lee(r));
  EXPECT_EQ(campos(r), (Campos{"12345678", "ABCDEFGH", ajusta("\\\\SERVIDOR\\WS\\WINSUITE.EXE", 150),
                               "01/02/2024"}));
  EXPECT_FALSE(fs::exists(dir / "VALDOR.MDB"));

  // A tab typed into a key is stored and read back as a blank: a record on disk never
  // holds a control byte, so it always reads back as a settings record.
  REGINTERCAMBIO tab{"12\t4", "A\rB", RUTA, "01/02/2024"};
  f.escribe(tab);
  EXPECT_EQ(bytes("valdor.mdb").substr(0, 16), "12 4    A B     ");
  ASSERT_TRUE(f.lee(r));
  EXPECT_EQ(r.CLAVEAUTORIZA, "12 4    ");
  // The same rule where a record is taken from bytes of any kind.
  desdeBytes(std::string("\0\0\0\0\0\0\0\0\x1F" "B\x7F", 11), r);
  EXPECT_EQ(r.CLAVEAUTORIZA + "|" + r.CLAVESILCON, std::string(8, ' ') + "| B      ");
}

// Each way a file can fail to be a settings record, told in a message that names the
// file, with the record in memory left as it was and the file untouched.
TEST_F(Ajustes, LoQueNoEsUnRegistroDeAjustesSeDiceYNoSeToca) {
  const std::string bueno = "123     ABC     " + RUTA + std::string(126, ' ') + "01/02/2024";
  ASSERT_EQ(bueno.size(), 176u);
  auto conRuta = [&](const std::string& ruta) { return bueno.substr(0, 16) + ajusta(ruta, 150) + bueno.substr(166); };
  const std::vector<std::pair<std::string, std::string>> casos{
      {bueno.substr(0, 175), "mide 175 bytes y un registro de ajustes mide 176"},
      {bueno + "\r\n", "mide 178 bytes"},
      {std::string(176, '\0'), "car\xE1" "cter de control en el byte 1"},
      {bueno.substr(0, 170) + "\n" + bueno.substr(171), "car\xE1" "cter de control en el byte 171"},
      {conRuta("WINSUITE.EXE"), "su ruta de Winsuite \"WINSUITE.EXE\" no es una ruta de Windows"},
      {conRuta("C:WINSUITE.EXE"), "no es una ruta de Windows"},
      {conRuta("C:\\WIN|SUITE.EXE"), "no es una ruta de Windows"},
      {conRuta("//WINSUITE.EXE"), "no es una ruta de Windows"},
      {std::string(176, 'X'), "ruta de Winsuite \"" + std::string(150, 'X') + "\""},
  };
  for (const auto& [contenido, motivo] : casos) {
    pruebas::escribeBytes(dir / "VALDOR.MDB", contenido);
    FicheroAjustes f(dir);
    REGINTERCAMBIO r{"a", "b", "c", "d"};
    const std::string texto = pruebas::mensajeDe<ErrorAjustes>([&] { f.lee(r); });
    EXPECT_EQ(texto.rfind("El fichero de ajustes \"" + (dir / "VALDOR.MDB").string() + "\" no es un registro de ajustes: ", 0), 0u) << texto;
    EXPECT_NE(texto.find(motivo), std::string::npos) << texto;
    EXPECT_EQ(campos(r), (Campos{"a", "b", "c", "d"}));
    EXPECT_EQ(bytes("VALDOR.MDB"), contenido);
  }
  // The start's reading fails the same way, as a failure of a file that the exchange
  // jobs stop on.
  FicheroAjustes roto(dir);
  EXPECT_THROW(leeAjustesAlArrancar(roto), ErrorFichero);

  // The routes a sound record may hold: none, the "no route" of a "0", a drive, a share,
  // a native path.
  for (const char* ruta : {"", "0", "0 ", "c:/ws/winsuite.exe", "\\\\SRV\\WS\\W.EXE", "/opt/ws/winsuite"}) {
    pruebas::escribeBytes(dir / "VALDOR.MDB", conRuta(ruta));
    FicheroAjustes f(dir);
    REGINTERCAMBIO r;
    EXPECT_TRUE(f.lee(r)) << ruta;
  }
  // Nor is a route that is no path saved: the file would no longer read.
  FicheroAjustes f(dir);
  EXPECT_THROW(f.escribe({"1", "2", "WINSUITE.EXE", ""}), ErrorAjustes);
  EXPECT_EQ(bytes("VALDOR.MDB"), conRuta("/opt/ws/winsuite"));
  // Saving over a file longer than a record leaves the record alone.
  pruebas::escribeBytes(dir / "VALDOR.MDB", bueno + bueno);
  FicheroAjustes largo(dir);
  largo.escribe({"9", "", RUTA, ""});
  EXPECT_EQ(bytes("VALDOR.MDB"), "9       " + std::string(8, ' ') + RUTA + std::string(126 + 10, ' '));
}

TEST_F(Ajustes, UnFicheroQueNoSePuedeLeerDiceElMotivoYNoQueFalteLaRuta) {
  fs::create_directory(dir / "VALDOR.MDB");
  FicheroAjustes f(dir);
  REGINTERCAMBIO r{"a", "b", "c", "d"};
  EXPECT_EQ(pruebas::mensajeDe<ErrorAjustes>([&] { f.lee(r); }),
            "No se puede leer el fichero de ajustes \"" + (dir / "VALDOR.MDB").string() + "\": es una carpeta, no un fichero.");
  EXPECT_EQ(campos(r), (Campos{"a", "b", "c", "d"}));
  EXPECT_THROW(f.escribe(registroEnBlanco()), ErrorAjustes);
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
