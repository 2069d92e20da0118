// The start and the exit of the program, the month store's name and creation, and the
// company list of a month.

#include <gtest/gtest.h>


#include "fan/seleccion.h"
#include "shell/programa.h"
#include "stores/esquemas.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
namespace fs = std::filesystem;

const Momento MOMENTO{2026, 11, 15, 7, 30, 0};

struct Oficina {
  Oficina() {
    fs::create_directories(carpetas.programa);
    fs::create_directories(carpetas.trabajo);
  }
  CarpetaTemporal c;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  DialogosGrabador dialogos;
};

bool hayMensajeCon(const DialogosGrabador& d, std::string_view trozo) {
  for (const auto& m : d.mensajes)
    if (m.texto.find(trozo) != std::string::npos) return true;
  return false;
}

TEST(Arranque, LosAlmacenesDeTrabajoConservanSusFilasYSoloElTemporalEmpiezaVacio) {
  Oficina o;
  {
    Programa p(o.carpetas, o.dialogos, Separadores{}, MOMENTO);
    p.arranca();
    auto& a = p.almacenes;
    a.VALDORTA.nuevo();
    a.VALDORTA.pon("VALDEMP", "28000000001");
    a.VALDORTA.pon("VALDTRA", "00001");
    a.VALDORTA.actualiza();
    a.TMPVALDOR.nuevo();
    a.TMPVALDOR.pon("TMPEMP", "28000000001");
    a.TMPVALDOR.pon("TMPTRA", "00001");
    a.TMPVALDOR.pon("TMPTIPO", "TRA");
    a.TMPVALDOR.actualiza();
    EXPECT_TRUE(fs::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
    p.termina();
    EXPECT_FALSE(fs::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
  }
  // The master stores are missing in this office: each is named in its message.
  EXPECT_TRUE(hayMensajeCon(o.dialogos, "CONVENIO.MDB"));
  EXPECT_TRUE(hayMensajeCon(o.dialogos, "DESEMPLEO.MDB"));

  Programa p(o.carpetas, o.dialogos, Separadores{}, MOMENTO);
  p.arranca();
  EXPECT_EQ(p.almacenes.VALDORTA.cuenta(), 1);
  EXPECT_EQ(p.almacenes.TMPVALDOR.cuenta(), 0);
  for (const char* f : {"ACUVALDOR.MDB", "TIPO DE DOCUMENTO.MDB", "CUENTAS BANCARIAS EMPRESAS.MDB"})
    EXPECT_TRUE(fs::exists(o.carpetas.trabajo / f)) << f;
}

// The temp store is one run's alone: the rows of a run that was killed are never read
// by the next one, and a second run in the same work folder is refused, never given the
// first one's store.
TEST(Arranque, CadaEjecucionTieneSuTemporalVacioYNoLoComparte) {
  Oficina o;
  const auto ruta = o.carpetas.trabajo / "TEMPORAL VALDOR.MDB";
  Almacen::crea(ruta, std::array<DefTabla, 1>{esquemas::TMPVALDOR()});
  {
    Almacen a;
    a.abre(ruta);
    a.ejecuta("INSERT INTO TMPVALDOR (TMPEMP, TMPTRA, TMPTIPO, TMPLINEA) VALUES ('1', '00001', 'TRA', 'TRA...')");
  }
  pruebas::escribeBytes(ruta.string() + "-journal", "restos de una escritura a medias");
  Programa p(o.carpetas, o.dialogos, Separadores{}, MOMENTO);
  p.arranca();
  EXPECT_EQ(p.almacenes.TMPVALDOR.cuenta(), 0);
  EXPECT_FALSE(std::filesystem::exists(ruta.string() + "-journal"));
  p.almacenes.temporal.ejecuta("INSERT INTO TMPVALDOR (TMPEMP, TMPTRA, TMPTIPO, TMPLINEA) VALUES ('2', '00001', 'TRA', 'X')");

  DialogosGrabador otros;
  Programa segundo(o.carpetas, otros, Separadores{}, MOMENTO);
  EXPECT_NE(pruebas::mensajeDe<CarpetaOcupada>([&] { segundo.arranca(); }).find("Otra ejecuci\xF3n de VALDOR+"),
            std::string::npos);
  EXPECT_EQ(p.almacenes.TMPVALDOR.cuenta(), 1);  // the first run's row is still there
  p.termina();
  EXPECT_FALSE(std::filesystem::exists(ruta));
  // The folder is free again.
  EXPECT_NO_THROW(segundo.arranca());
}

TEST(Arranque, UnAlmacenDanadoSeNombraYSeDejaByteAByteMientrasLosDemasSiguen) {
  Oficina o;
  const auto ruta = o.carpetas.trabajo / "ACUVALDOR.MDB";
  const std::string basura(4096, '\x5A');
  pruebas::escribeBytes(ruta, basura);
  {
    Programa p(o.carpetas, o.dialogos, Separadores{}, MOMENTO);
    p.arranca();
    EXPECT_FALSE(p.almacenes.VALDORTA.abierta());
    EXPECT_FALSE(p.almacenes.VALDORTA.busca("=", {"1", "1"}));
    EXPECT_TRUE(p.almacenes.TDOCUMENTO.abierta());
  }
  EXPECT_TRUE(hayMensajeCon(o.dialogos, "ACUVALDOR.MDB"));
  EXPECT_EQ(pruebas::leeBytes(ruta), basura);
}

TEST(Arranque, LosAjustesElEmisorYLosSeparadoresSeLeenAlArrancar) {
  Oficina o;
  {
    // An empty settings file gives no message; the separators come from the regional settings.
    Programa p(o.carpetas, o.dialogos, Separadores{',', '.'}, MOMENTO);
    const auto antes = o.dialogos.mensajes.size();
    p.arranca();
    EXPECT_EQ(o.dialogos.mensajes.size() - antes, 6u);  // only the six missing master stores
    EXPECT_EQ(p.g.SEPDECIMAL + p.g.SEPMILES, ",.");
  }
  std::string registro = "  123   " "ABC     " + ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150) + "01/02/2026";
  pruebas::escribeBytes(o.carpetas.trabajo / "VALDOR.MDB", registro);
  guardaEmisor(o.carpetas.trabajo, "GESTOR\xCD" "A DEL VALLE");
  Programa p(o.carpetas, o.dialogos, Separadores{'.', ','}, MOMENTO);
  p.arranca();
  EXPECT_EQ(p.g.SEPDECIMAL + p.g.SEPMILES, ".,");
  EXPECT_EQ(p.registro.CLAVEAUTORIZA, "123     ");
  EXPECT_EQ(p.g.RUTAWS, ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150));
  EXPECT_EQ(p.g.EMISORNOMBRE, "GESTOR\xCD" "A DEL VALLE");
}

TEST(Periodo, ElAlmacenDelMesSeNombraSeCreaVacioYSeBuscaSinMirarMayusculas) {
  EXPECT_EQ(nombrePeriodo(textoAnoPeriodo(2002), textoMesPeriodo(3)), "PX20023.MDB");
  EXPECT_EQ(nombrePeriodo(" 2002", "12"), "PX200212.MDB");

  Oficina o;
  Almacenes a(o.carpetas, o.dialogos);
  a.MESPERIODO = "3";
  a.ANOPERIODO = "2002";
  // A month without a store is passed over quietly.
  EXPECT_FALSE(a.ABREPERIODO());
  EXPECT_TRUE(o.dialogos.mensajes.empty());
  EXPECT_TRUE(a.NOMIN.fin());

  EXPECT_TRUE(a.CREAPERIODO());
  EXPECT_TRUE(fs::exists(o.carpetas.programa / "PX20023.MDB"));
  EXPECT_FALSE(a.CREAPERIODO());
  ASSERT_TRUE(a.ABREPERIODO());
  EXPECT_EQ(a.NOMIN.cuenta(), 0);
  EXPECT_TRUE(a.NOMIN.indice("MEEP"));
  EXPECT_TRUE(a.INCIDEN.indice("INDX"));
  EXPECT_TRUE(a.INCIDEN.indice("INUM"));
  a.CIERRAPERIODO();
  a.CIERRAPERIODO();

  // The override replaces the whole name.
  a.NOMBREPERIODOFORZADO = "OTRO.MDB";
  a.CREAPERIODO();
  EXPECT_TRUE(fs::exists(o.carpetas.programa / "OTRO.MDB"));

  CarpetaTemporal c;
  pruebas::escribeBytes(c / "px20023.mdb", "x");
  EXPECT_EQ(resuelveFichero(c.ruta(), "PX20023.MDB"), c / "px20023.mdb");
  EXPECT_EQ(resuelveFichero(c.ruta(), "PX20024.MDB"), c / "PX20024.MDB");
}

void filaNomina(Tabla& t, const std::string& empresa, const std::string& trabajador, const std::string& nombre,
                const std::string& contrato) {
  t.nuevo();
  t.pon("BSSE", empresa);
  t.pon("BMATRI", trabajador);
  t.pon("BNOMBRE", utf8ACp1252(nombre));
  t.pon("BCONT", contrato);
  t.pon("BEPIG", "113");
  t.pon("BCEN", "001");
  t.pon("BSEC", "001");
  t.actualiza();
}

TEST(Seleccion, LasEmpresasDelMesVanEnOrdenEspanolYSinLasFilasMarcadasN) {
  Oficina o;
  Almacenes a(o.carpetas, o.dialogos);
  a.MESPERIODO = "10";
  a.ANOPERIODO = "2026";
  a.CREAPERIODO();
  a.ABREPERIODO();
  filaNomina(a.NOMIN, "28000000004", "00001", "Ñandú, S.A.", "100");
  filaNomina(a.NOMIN, "28000000003", "00001", "Nube, S.L.", "100");
  filaNomina(a.NOMIN, "28000000003", "00002", "Nube, S.L.", "N");
  filaNomina(a.NOMIN, "28000000003", "00003", "Nube, S.L.", "401");
  filaNomina(a.NOMIN, "28000000002", "00001", "Chapa Hermanos", "100");
  filaNomina(a.NOMIN, "28000000001", "00001", "Cuesta y Cía", "100");
  filaNomina(a.NOMIN, "28000000005", "00001", "Excluida", "N");
  a.CIERRAPERIODO();

  const auto lista = empresasDelMes(a, 10, 2026);
  ASSERT_EQ(lista.size(), 4u);
  EXPECT_EQ(cp1252AUtf8(lista[0].BNOMBRE), "Cuesta y Cía");
  EXPECT_EQ(lista[1].BNOMBRE, "Chapa Hermanos");
  EXPECT_EQ(lista[2].BNOMBRE, "Nube, S.L.");
  EXPECT_EQ(lista[2].BSSE, "28000000003");
  EXPECT_EQ(lista[2].trabajadores, 2);
  EXPECT_EQ(cp1252AUtf8(lista[3].BNOMBRE), "Ñandú, S.A.");
  EXPECT_FALSE(a.periodo.abierto());

  // An unknown month gets an empty store, and no company.
  EXPECT_TRUE(empresasDelMes(a, 3, 2002).empty());
  EXPECT_TRUE(fs::exists(o.carpetas.programa / "PX20023.MDB"));
}

}  // namespace
}  // namespace valdor
