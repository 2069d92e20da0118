#include "statement/estado.h"

#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

// ---- Fields ---------------------------------------------------------------------------------

CampoFijo& CampoFijo::operator=(std::string_view texto) {
  texto_ = ajusta(texto, ancho_);
  return *this;
}

CampoFijo& CampoFijo::operator=(double numero) { return *this = recortaIzq(textoGeneral(numero)); }

double CampoFijo::valor() const { return REDONDEA2(std::string_view(texto_)); }

const std::vector<BOLETIN::Descripcion>& BOLETIN::campos() {
  using B = BOLETIN;
  static const std::vector<Descripcion> lista{
      {"BOLNOMBRE", &B::BOLNOMBRE, 1},      {"BOLDOMICILIO", &B::BOLDOMICILIO, 2},
      {"BOLLOCALIDAD", &B::BOLLOCALIDAD, 3}, {"BOLCP", &B::BOLCP, 4},
      {"BOLPROV", &B::BOLPROV, 5},          {"BOLENTIDAD", &B::BOLENTIDAD, 6},
      {"BOLCLAVE", &B::BOLCLAVE, 7},        {"BOLEXP", &B::BOLEXP, 8},
      {"BOLNIF", &B::BOLNIF, 9},            {"BOLCCC", &B::BOLCCC, 10},
      {"BOLTRABAJADORES", &B::BOLTRABAJADORES, 11}, {"BOLPERDESDE", &B::BOLPERDESDE, 12},
      {"BOLPERHASTA", &B::BOLPERHASTA, 13}, {"CCBASE", &B::CCBASE, 14},
      {"CCTIPO", &B::CCTIPO, 15},           {"CCCUOTA", &B::CCCUOTA, 16},
      {"HEBASE", &B::HEBASE, 17},           {"HETIPO", &B::HETIPO, 18},
      {"HECUOTA", &B::HECUOTA, 19},         {"HNBASE", &B::HNBASE, 20},
      {"HNTIPO", &B::HNTIPO, 21},           {"HNCUOTA", &B::HNCUOTA, 22},
      {"ASBASE", &B::ASBASE, 23},           {"ASTIPO", &B::ASTIPO, 24},
      {"ASCUOTA", &B::ASCUOTA, 25},         {"FPBASE", &B::FPBASE, 26},
      {"FPTIPO", &B::FPTIPO, 27},           {"FPCUOTA", &B::FPCUOTA, 28},
      {"OCCLAVE", &B::OCCLAVE, 0},          {"OCBASE", &B::OCBASE, 29},
      {"OCTIPO", &B::OCTIPO, 30},           {"OCCUOTA", &B::OCCUOTA, 31},
      {"DXBASE", &B::DXBASE, 32},           {"DXTIPO", &B::DXTIPO, 33},
      {"DXCUOTA", &B::DXCUOTA, 34},         {"DEBASE", &B::DEBASE, 35},
      {"DETIPO", &B::DETIPO, 36},           {"DECUOTA", &B::DECUOTA, 37},
      {"COMPIT", &B::COMPIT, 38},           {"REDCLAVE", &B::REDCLAVE, 39},
      {"REDUCCIONES", &B::REDUCCIONES, 40}, {"CGTOTAL", &B::CGTOTAL, 0},
      {"CGLIQUIDO", &B::CGLIQUIDO, 41},     {"ATBASE", &B::ATBASE, 42},
      {"ATCUOTAIT", &B::ATCUOTAIT, 43},     {"ATCUOTAIMS", &B::ATCUOTAIMS, 44},
      {"ATTOTAL", &B::ATTOTAL, 45},         {"ATCOMPENSA", &B::ATCOMPENSA, 46},
      {"ATLIQUIDO", &B::ATLIQUIDO, 47},     {"OTBASE", &B::OTBASE, 48},
      {"OTTIPO", &B::OTTIPO, 49},           {"OTCUOTA", &B::OTCUOTA, 50},
      {"OT2BASE", &B::OT2BASE, 80},         {"OT2TIPO", &B::OT2TIPO, 79},
      {"OT2CUOTA", &B::OT2CUOTA, 78},       {"OTBONRED", &B::OTBONRED, 51},
      {"OTBONAUX1", &B::OTBONAUX1, 0},      {"OTBONAUX2", &B::OTBONAUX2, 0},
      {"OTCOMPDES", &B::OTCOMPDES, 52},     {"OTSUMA", &B::OTSUMA, 53},
      {"OTLIQUIDO", &B::OTLIQUIDO, 54},     {"RECARGO", &B::RECARGO, 55},
      {"APERCIBIR", &B::APERCIBIR, 57},     {"AINGRESAR", &B::AINGRESAR, 58},
      {"TOTALRECARGO", &B::TOTALRECARGO, 0}, {"RECARGOPCT", &B::RECARGOPCT, 0}};
  return lista;
}

void BLANQUEABOLETIN(BOLETIN& b) {
  for (const auto& d : BOLETIN::campos()) (b.*d.campo).blanquea();
}

void VACIABOLETIN(CajasBoletin& cajas, std::string& empresaPublica) {
  empresaPublica.clear();
  for (std::string& c : cajas) c.clear();
}

void VUELCABOLETIN(const CajasBoletin& cajas, BOLETIN& b) {
  for (const auto& d : BOLETIN::campos())
    if (d.caja > 0) b.*d.campo = cajas[static_cast<std::size_t>(d.caja)];
}

int cajaDe(CampoFijo BOLETIN::*campo) {
  for (const auto& d : BOLETIN::campos())
    if (d.campo == campo) return d.caja;
  return 0;
}

bool cajaDeCifra(int caja) {
  return caja == 11 || (caja >= 14 && caja <= 58 && caja != 39 && caja != 56) || (caja >= 78 && caja <= 80);
}

std::string cifraEnPantalla(std::string_view texto, char decimal) {
  std::string t(texto);
  for (char& c : t)
    if (c == '.' || c == ',') c = decimal;
  return t;
}

std::string cajaEnPantalla(int caja, std::string_view texto, char decimal) {
  return cajaDeCifra(caja) ? cifraEnPantalla(texto, decimal) : std::string(texto);
}

void muestraFigura(BOLETIN& b, CajasBoletin& cajas, CampoFijo BOLETIN::*campo, std::string_view texto) {
  b.*campo = texto;
  if (const int caja = cajaDe(campo); caja > 0) cajas[static_cast<std::size_t>(caja)] = (b.*campo).texto();
}

void muestraFigura(BOLETIN& b, CajasBoletin& cajas, CampoFijo BOLETIN::*campo, double numero) {
  muestraFigura(b, cajas, campo, recortaIzq(textoGeneral(numero)));
}

// ---- The working table -----------------------------------------------------------------

const std::array<std::string_view, TablaTrabajo::COLUMNAS>& TablaTrabajo::cabeceras() {
  static const std::array<std::string_view, COLUMNAS> c{
      "MAT", "NUM.AFILIACION", "D.N.I.", "APELLIDOS Y NOMBRE", "DA", "GT", "TC", "DC", "HC", "C.COMUNES",
      "EPI", "AT y EP", "HORAS EST", "H.NO EST", "ENF./MATERN.", "DIA", "AT y EP", "Centro", "AL", "BJ",
      "Base 126", "Bon. CC", "Bon. AT", "Bon. TR", "Bon. DE", "Bon. FO", "Bon. FP", "BON/RED", "Casilla",
      "SUB.Tec", "FEC.BON", "FIN.BON", "BONIFIC", "REDUCC.", "TOTAL E", "MATERNI", "", "", "", "", "", "", "",
      "", ""};
  return c;
}

void TablaTrabajo::LIMPIAGRID() {
  filas_.assign(FILASINICIALES, {});
  for (int c = 0; c < COLUMNAS; ++c) filas_[0][static_cast<std::size_t>(c)] = std::string(cabeceras()[static_cast<std::size_t>(c)]);
  filaActual = 1;
}

void TablaTrabajo::ponFilas(int n) {
  if (n < 1) n = 1;
  filas_.resize(static_cast<std::size_t>(n));
  if (filaActual >= n) filaActual = n - 1;
}

const std::string& TablaTrabajo::texto(int fila, int columna) const {
  static const std::string vacio;
  if (fila < 0 || fila >= filas() || columna < 0 || columna >= COLUMNAS) return vacio;
  return filas_[static_cast<std::size_t>(fila)][static_cast<std::size_t>(columna)];
}

double TablaTrabajo::valor(int fila, int columna) const { return REDONDEA2(std::string_view(texto(fila, columna))); }

void TablaTrabajo::escribe(int fila, int columna, std::string_view t) {
  if (fila < 0 || fila >= filas() || columna < 0 || columna >= COLUMNAS) return;
  filas_[static_cast<std::size_t>(fila)][static_cast<std::size_t>(columna)] = std::string(t);
}

void TablaTrabajo::escribe(int fila, int columna, double numero) { escribe(fila, columna, textoGeneral(numero)); }

void TablaTrabajo::blanqueaYEscribe(int fila, int columna, std::string_view t) {
  escribe(fila, columna, "");
  escribe(fila, columna, t);
}

std::string_view NOMBREMES(int mes) {
  static constexpr std::array<std::string_view, 12> nombres{"Enero",  "Febrero", "Marzo",      "Abril",
                                                            "Mayo",   "Junio",   "Julio",      "Agosto",
                                                            "Septiembre", "Octubre", "Noviembre", "Diciembre"};
  return mes >= 1 && mes <= 12 ? nombres[static_cast<std::size_t>(mes - 1)] : std::string_view{};
}

std::string claveBonifica(std::string_view CODCONT) {
  if (CODCONT.size() != 3) return recorta(CODCONT);
  return textoGeneral(valorNumerico(CODCONT.substr(0, 1))) + std::string(CODCONT.substr(1, 2));
}

}  // namespace valdor
