#include "stores/esquemas.h"

#include <algorithm>
#include <array>
#include <string>

#include "stores/texto.h"

namespace valdor::esquemas {
namespace {

DefColumna texto(std::string nombre, int ancho) { return {std::move(nombre), TipoColumna::Texto, ancho}; }
DefColumna doble(std::string nombre) { return {std::move(nombre), TipoColumna::Doble, 0}; }
DefColumna fecha(std::string nombre) { return {std::move(nombre), TipoColumna::Fecha, 0}; }

DefIndice primario(std::string nombre, std::vector<std::string> claves) {
  return {std::move(nombre), std::move(claves), true, true};
}
DefIndice unico(std::string nombre, std::vector<std::string> claves) {
  return {std::move(nombre), std::move(claves), false, true};
}

// The engine's default width for a text column created without a size.
constexpr int ANCHOTEXTOPORDEFECTO = 50;

DefTabla defNOMIN() {
  DefTabla t{"NOMIN", {}, {}};
  auto& c = t.columnas;
  c = {texto("BSSE", 11), texto("BMATRI", 5), texto("BCEN", 3),   texto("BSEC", 3),
       texto("BNOMBRE", 35), texto("BTRABA", 35), texto("BDOMI", 35), texto("BCAT", 30),
       texto("BANTI", 8),  texto("BAFI", 12),  texto("BDEL", 2),   texto("BMESI", 12),
       texto("BDAL", 2),   texto("BANI", 2),   texto("BDIAS", 2),  texto("BCONT", 3),
       texto("BDIAC", 2),  texto("BDIAL", 2),  texto("BHCON", 3),  texto("BEPIG", 3)};
  for (const char* n : {"BHOES", "BHONS", "BENFE", "BHOIL", "BACCI", "BIMPRESA"}) c.push_back(doble(n));
  c.push_back(texto("A20", 4));
  c.push_back(texto("B20", 4));
  // The payroll concept lines: LW and CB with a plain number, UN and PRE with two digits.
  // LW12 was made without a size and LW17 with 30; both are kept so.
  for (int i = 1; i <= 34; ++i) {
    const std::string n = std::to_string(i);
    const std::string nn = (i < 10 ? "0" : "") + n;
    const int ancho = i == 12 ? ANCHOTEXTOPORDEFECTO : i == 17 ? 30 : 35;
    c.push_back(texto("LW" + n, ancho));
    c.push_back(doble("CB" + n));
    c.push_back(doble("UN" + nn));
    c.push_back(doble("PRE" + nn));
  }
  for (int i = 1; i <= 9; ++i) c.push_back(doble(std::string("TAB").append(std::to_string(i))));
  for (int i = 1; i <= 3; ++i) c.push_back(doble(std::string("G").append(std::to_string(i))));
  for (int i = 1; i <= 14; ++i)
    if (i != 4) c.push_back(doble("BB" + std::to_string(i)));  // there is no BB4
  for (int i = 1; i <= 4; ++i) c.push_back(doble("TB" + std::to_string(i)));
  for (const char* n : {"IRB", "BASUB", "BANOB", "COZ1", "COZ2", "COZ3"}) c.push_back(doble(n));
  c.push_back(texto("BUDIEN", 11));
  c.push_back(texto("BEE", 20));
  c.push_back(texto("BEME", 12));
  c.push_back(texto("BEA", 2));
  c.push_back(texto("BNIFCU", 11));
  c.push_back(doble("B126"));
  t.indices = {primario("MENU", {"BSSE", "BMATRI"}),
               unico("MECE", {"BSSE", "BCEN", "BMATRI"}),
               unico("MESE", {"BSSE", "BCEN", "BSEC", "BMATRI"}),
               unico("MEEP", {"BSSE", "BEPIG", "BCEN", "BMATRI"})};
  return t;
}

DefTabla defINCIDEN(bool conINUM) {
  DefTabla t{"INCIDEN", {}, {}};
  auto& c = t.columnas;
  c = {texto("IEMP", 11), texto("ITRA", 5), texto("IDES", 35), texto("ILIN", 2), texto("ITIP", 2),
       doble("I01"), doble("I02")};
  // From I03, five groups of a Text 15 followed by four Doubles.
  for (int g = 0; g < 5; ++g) {
    const int base = 3 + g * 5;
    auto nombre = [](int i) { return std::string(i < 10 ? "I0" : "I") + std::to_string(i); };
    c.push_back(texto(nombre(base), 15));
    for (int k = 1; k <= 4; ++k) c.push_back(doble(nombre(base + k)));
  }
  for (int i = 28; i <= 32; ++i) c.push_back(doble(std::string("I").append(std::to_string(i))));
  c.push_back(texto("I33", 1));
  c.push_back(texto("I34", 8));
  c.push_back(texto("I35", 35));
  c.push_back(texto("I36", 10));
  c.push_back(texto("MATERBONI", 1));
  c.push_back(fecha("DIAINICIOMATERBON"));
  c.push_back(fecha("DIAFINCIOMATERBON"));
  c.push_back(texto("ITRASOMES", 1));
  t.indices = {primario("INDX", {"IEMP", "ITRA", "ILIN"})};
  if (conINUM) t.indices.push_back(unico("INUM", {"IEMP", "ITRA", "ILIN"}));
  return t;
}

DefTabla defVALDORTA() {
  DefTabla t{"VALDORTA",
             {texto("VALDEMP", 11), texto("VALDTRA", 5), texto("VALDORTIPO", 2), doble("VALDDES"),
              texto("SITU", 2), doble("VALHORAS"), doble("VALDIAS"), doble("COEF")},
             {primario("VALDORTAnum", {"VALDEMP", "VALDTRA"})}};
  for (const char* n : {"VALDNACIONALIDAD", "VALDCONDIDESEM", "VALDMUJERSUBRE", "VALDSEXO",
                        "VALDCATEGORIA", "VALDINCAPACITADO", "VALDPRIMERTRABAJ", "VALDGRADOMINUSVA",
                        "VALDFECHACONTROL", "VALDFECHAINICIO", "VALDINDISUBPARCIAL",
                        "VALDRELAEXPECIAL", "VALDNUSSTRABSUST", "VALDCAUSASUSTITU",
                        "VALDEXLUSIONSOCIAL"})
    t.columnas.push_back(texto(n, 35));
  return t;
}

// A table of a master store that the system opens and never reads: a key column only.
DefTabla soloClave(std::string nombre) { return {std::move(nombre), {texto("CLAVE", 11)}, {}}; }

DefTabla defWK() {
  DefTabla t{"WK", {texto("WKEMP", 11), texto("TRA1", 5)}, {primario("WKNU", {"WKEMP", "TRA1"})}};
  auto& c = t.columnas;
  c.insert(c.end(), {texto("TRA2", 12), texto("TRA3", 60), texto("TRA4", 40), texto("TRA5", 5),
                     texto("TRA9", 14), texto("TRA14", 3), texto("TRA15", 2), doble("TRA20"),
                     texto("tra21", 3), doble("TRA22"), doble("TRA23"), doble("TRA28"),
                     texto("TRA35", 2), texto("TRA36", 1), texto("TRA37", 10), texto("TRA38", 10),
                     texto("TRA39", 3), doble("TRA42"), texto("TRA51", 30), texto("TRA1110", 10),
                     texto("TRA1710", 10), texto("TRA1910", 10), texto("TRA4010", 10),
                     texto("TRA4110", 10), texto("BAJ10", 10), doble("DMG"), doble("HAB"),
                     texto("INICIALES", 5), doble("Lib3")});
  for (const char* d : {"LUN", "MAR", "MIE", "JUE", "VIE", "SAB"}) c.push_back(doble(d));
  return t;
}

DefTabla defBONIFI() {
  DefTabla t{"BONIFI", {texto("BONCONT", 3)}, {primario("BNNU", {"BONCONT"})}};
  for (const char* sufijo : {"", "1", "2"})
    for (const char* n : {"BONCC", "BONAT", "BONDE", "BONFO", "BONFP", "BONTR", "BONDU"})
      t.columnas.push_back(doble(std::string(n) + sufijo));
  t.columnas.push_back(texto("BONBR", 1));
  t.columnas.push_back(doble("BONCS"));
  t.columnas.push_back(doble("BONNEWTIP"));
  return t;
}

}  // namespace

const DefTabla& NOMIN() {
  static const DefTabla t = defNOMIN();
  return t;
}

const DefTabla& INCIDEN(bool conINUM) {
  static const DefTabla con = defINCIDEN(true);
  static const DefTabla sin = defINCIDEN(false);
  return conINUM ? con : sin;
}

const DefTabla& TMPVALDOR() {
  static const DefTabla t{"TMPVALDOR",
                          {texto("TMPEMP", 11), texto("TMPTRA", 5), texto("TMPTIPO", 3),
                           texto("TMPLINEA", 70)},
                          {primario("TMPVALDORnum", {"TMPEMP", "TMPTRA", "TMPTIPO"})}};
  return t;
}

const DefTabla& VALDORTA() {
  static const DefTabla t = defVALDORTA();
  return t;
}

const DefTabla& ILTS() {
  static const DefTabla t{"ILTS",
                          {texto("ILTSPATEMP", 11), texto("ILTSNUMATRI", 5), texto("ILTSMES", 2),
                           texto("ILTSANO", 4), doble("ENFSDIAS"), doble("ACCSDIAS"),
                           doble("MATSDIAS")},
                          {primario("ILTSNUM", {"ILTSPATEMP", "ILTSNUMATRI", "ILTSMES", "ILTSANO"})}};
  return t;
}

const DefTabla& FORMACION() {
  static const DefTabla t{
      "FORMACION",
      {texto("FORMAPATEMP", 11), texto("FORMANUMATRI", 5), texto("FORMAMES", 2), texto("FORMAANO", 4),
       doble("FORMAHORASDISTAN"), doble("FORMAHORASPRESEN")},
      {primario("FORMANUM", {"FORMAPATEMP", "FORMANUMATRI", "FORMAMES", "FORMAANO"})}};
  return t;
}

const DefTabla& TDOCUMENTO() {
  static const DefTabla t{"TDOCUMENTO",
                          {texto("TIPDOPAT", 11), texto("TIPDOTRA", 5), doble("TIPDOIDE"),
                           texto("TIPDOPAS", 1), doble("TIPDOLIB1"), doble("TIPDOLIB2"),
                           doble("TIPDOLIB3")},
                          {primario("TIPDOCUnum", {"TIPDOPAT", "TIPDOTRA"})}};
  return t;
}

const DefTabla& CUENTASTAB() {
  static const DefTabla t{"CUENTASTAB",
                          {texto("CUENTCOTIZA", 11), texto("CUENTENTIDAD", 4),
                           texto("CUENTSUCURSAL", 4), texto("CUENTDIGITO", 2),
                           texto("CUENTCUENTA", 10), texto("CUENTTIPO", 1)},
                          {primario("CUENTINDICE", {"CUENTCOTIZA"})}};
  return t;
}

const DefTabla& DESCUENTOS() {
  static const DefTabla t{"DESCUENTOS",
                          {texto("DESPATEMP", 11), doble("DESCASILLA"), doble("DESSOBRE"), doble("DESNUMERO")},
                          {DefIndice{"DESCUNUM", {"DESPATEMP", "DESCASILLA"}, false, false}}};
  return t;
}

std::span<const DefTabla> tablasCONVENIO() {
  static const std::array<DefTabla, 6> t{
      DefTabla{"CONVEN", {texto("EB11", 5), texto("CTC2", 7)}, {primario("INUM", {"EB11"})}},
      soloClave("CATEG"), soloClave("CONVEPAGAS"), soloClave("CONVEANTI"),
      soloClave("CATEGORIAANTI"), soloClave("CATEGORIAPAGAS")};
  return t;
}

std::span<const DefTabla> tablasEMPRESAS() {
  static const std::array<DefTabla, 5> t{
      DefTabla{"ESA",
               {texto("A1", 11), texto("A2", 50), texto("A3", 50), texto("A4", 30), texto("A5", 20),
                texto("A6", 30), texto("A8", 15), texto("CPE", 5), texto("EB11", 5),
                texto("EB12", 2), texto("EB14", 8)},
               {primario("EMNU", {"A1"}), DefIndice{"EMNO", {"A2"}, false, false}}},
      DefTabla{"CENT",
               {texto("CENEMP", 11), texto("CENCOD", 3), texto("DCE", 35)},
               {primario("CENU", {"CENEMP", "CENCOD"})}},
      soloClave("SECC"), soloClave("EmpresPagas"), soloClave("EmpresAntiguedad")};
  return t;
}

std::span<const DefTabla> tablasPRODUCTO() {
  static const std::array<DefTabla, 3> t{defWK(), soloClave("WKPAGAS"), soloClave("WKANTIGUEDAD")};
  return t;
}

std::span<const DefTabla> tablasCONSTANT() {
  static const std::array<DefTabla, 4> t{
      soloClave("POSTA"), soloClave("MUT"),
      DefTabla{"CONTRA", {texto("tra21", 3), texto("CONTSEGSOC", 3)}, {primario("CNNU", {"tra21"})}},
      DefTabla{"EPIGRA",
               {texto("EPIGRAFE", 3), doble("ILT"), doble("IMS")},
               {primario("EGNU", {"EPIGRAFE"})}}};
  return t;
}

std::span<const DefTabla> tablasBONIFICA() {
  static const std::array<DefTabla, 1> t{defBONIFI()};
  return t;
}

std::span<const DefTabla> tablasDESEMPLEO() {
  static const std::array<DefTabla, 1> t{DefTabla{
      "DESEMPLEO", {texto("DESCONT", 3), doble("CONTIPO")}, {primario("TIPOINDEX", {"DESCONT"})}}};
  return t;
}

const DefTabla* busca(std::string_view tabla) {
  // Table names are the same whatever their case, as in both engines.
  const std::string buscada = mayusculasAscii(tabla);
  for (const DefTabla* t : {&NOMIN(), &INCIDEN(), &TMPVALDOR(), &VALDORTA(), &ILTS(), &FORMACION(),
                            &TDOCUMENTO(), &CUENTASTAB()})
    if (mayusculasAscii(t->nombre) == buscada) return t;
  for (auto grupo : {tablasCONVENIO(), tablasEMPRESAS(), tablasPRODUCTO(), tablasCONSTANT(),
                     tablasBONIFICA(), tablasDESEMPLEO()})
    for (const DefTabla& t : grupo)
      if (mayusculasAscii(t.nombre) == buscada) return &t;
  return nullptr;
}

bool seLeeSuContenido(std::string_view tabla) {
  static constexpr std::array<std::string_view, 16> leidas{
      "NOMIN", "INCIDEN", "ESA",       "CENT",     "WK",         "CONTRA",     "EPIGRA",     "BONIFI",
      "DESEMPLEO", "CONVEN", "VALDORTA", "ILTS", "FORMACION", "TDOCUMENTO", "CUENTASTAB", "TMPVALDOR"};
  return std::find(leidas.begin(), leidas.end(), mayusculasAscii(tabla)) != leidas.end();
}

std::vector<std::string> columnasQueFaltan(const Tabla& t, const DefTabla& def) {
  std::vector<std::string> faltan;
  for (const DefColumna& c : def.columnas) {
    const bool esta = std::any_of(t.columnas().begin(), t.columnas().end(), [&](const DefColumna& d) {
      return mayusculasAscii(d.nombre) == mayusculasAscii(c.nombre);
    });
    if (!esta) faltan.push_back(c.nombre);
  }
  return faltan;
}

}  // namespace valdor::esquemas
