#include "browser/segmentos.h"

#include "stores/literales.h"

namespace valdor {

namespace {

constexpr std::string_view BLANCOS = "                                                                      ";
constexpr std::string_view CEROS = "0000000000000000000000000000000000000000000000000000000000000000000000";

using C = ClaseCampo;

Campo literal(int desde, std::string_view texto, std::string_view nombre) {
  return {desde, static_cast<int>(texto.size()), nombre, C::Literal, {texto}};
}
Campo blancos(int desde, int ancho) { return literal(desde, BLANCOS.substr(0, ancho), "relleno"); }
Campo ceros(int desde, int ancho) { return literal(desde, CEROS.substr(0, ancho), "ceros"); }
Campo codigo(int desde, int ancho, std::string_view nombre, std::vector<std::string_view> valores) {
  return {desde, ancho, nombre, C::Codigo, std::move(valores)};
}
Campo de(C clase, int desde, int ancho, std::string_view nombre, bool puedeBlanco = false) {
  return {desde, ancho, nombre, clase, {}, puedeBlanco};
}
Campo importe(int desde, int ancho, std::string_view nombre, SignoImporte signo = SignoImporte::Dentro) {
  Campo c = de(C::Importe, desde, ancho, nombre);
  c.signo = signo;
  return c;
}
Campo fecha(int desde, std::string_view nombre, bool puedeSerCero = false) {
  return de(C::Fecha, desde, 8, nombre, puedeSerCero);
}
Campo copia(int desde, int ancho, std::string_view nombre, int original) {
  Campo c = de(C::Copia, desde, ancho, nombre);
  c.original = original;
  return c;
}

// A segment whose lines begin with one of `claves` (all of one length): the key is its
// first field, and `campos` follow it.
Segmento segmento(std::string_view nombre, std::vector<std::string_view> claves, std::vector<Campo> campos) {
  const int ancho = static_cast<int>(claves.front().size());
  campos.insert(campos.begin(), codigo(1, ancho, "clave", claves));
  return {nombre, std::move(claves), std::move(campos)};
}

const std::vector<std::string_view> MODOS{" ", "P", "S"};

// The label line: its message at 4, the keys, the moment, the name and the replaced send.
Segmento eti(std::string_view mensaje, std::string_view extension) {
  return segmento("ETI", {"ETI"},
                  {literal(4, mensaje, "mensaje"), de(C::Texto, 14, 8, "clave de autorización"_cp),
                   de(C::Texto, 22, 8, "clave Silcon", true), fecha(30, "fecha de preparación"_cp),
                   de(C::Hora, 38, 4, "hora de preparación"_cp), de(C::Texto, 42, 8, "nombre del fichero"),
                   literal(50, extension, "extensión"_cp), literal(53, "N", "marca"), codigo(54, 1, "modo", MODOS),
                   de(C::Cifras, 55, 4, "año y mes sustituidos"_cp), de(C::Texto, 59, 1, "serie sustituida"),
                   de(C::Cifras, 60, 9, "envío y documento sustituidos"_cp), blancos(69, 2)});
}

// The employer line up to its account's second copy; the FAN and AFI lines differ after it.
std::vector<Campo> empleador(std::vector<std::string_view> tiposIdentificador) {
  return {de(C::Cuenta, 8, 11, "cuenta de cotización"_cp), codigo(19, 4, "tipo de identificador", tiposIdentificador),
          de(C::Documento, 23, 14, "identificador"), literal(37, "  0111", "régimen"_cp),
          copia(43, 11, "cuenta de cotización repetida"_cp, 8)};
}

Segmento rzs() {
  return segmento("RZS", {"RZS0"},
                  {codigo(5, 1, "clase de empresa", {"1", "2", "3", "4"}), de(C::Texto, 6, 55, "razón social"_cp),
                   blancos(61, 10)});
}

std::vector<Segmento> fan() {
  const Segmento bloqueImporte = segmento(
      "EDL de importe", {"EDLBA01000", "EDLBA02000", "EDLBA10000", "EDLBA20000", "EDLBA11000"},
      {importe(11, 7, "importe"), blancos(18, 1), ceros(19, 26), blancos(45, 26)});
  return {
      eti("TC220VIP28", "FAN"),
      segmento("EMP", {"EMP0111", "EMP0132"},
               [] {
                 auto c = empleador({"1   ", "6   ", "9   "});
                 c.push_back(de(C::Periodo, 54, 6, "periodo"));
                 c.push_back(copia(60, 2, "mes repetido", 58));
                 c.push_back(de(C::Texto, 62, 3, "clase de liquidación"_cp));
                 c.push_back(de(C::Cifras, 65, 2, "calificador"));
                 c.push_back(literal(67, "   E", "marca"));
                 return c;
               }()),
      rzs(),
      segmento("TRA", {"TRA"},
               {de(C::Afiliacion, 4, 12, "número de afiliación"_cp), de(C::Cifras, 16, 1, "tipo de documento"),
                blancos(17, 3), de(C::Documento, 20, 14, "documento"), de(C::Cifras, 34, 3, "centro de trabajo"),
                de(C::Texto, 37, 25, "descripción del centro"_cp, true), ceros(62, 3), blancos(65, 6)}),
      segmento("AYN", {"AYN"},
               {de(C::Texto, 4, 20, "primer apellido"), de(C::Texto, 24, 20, "segundo apellido", true),
                de(C::Texto, 44, 15, "nombre"), de(C::Texto, 59, 5, "iniciales", true), blancos(64, 7)}),
      segmento("DAT", {"DAT0"},
               {de(C::Mes, 5, 4, "mes de cotización"_cp), blancos(9, 1), codigo(10, 1, "tiempo parcial", {" ", "P"}),
                blancos(11, 4), codigo(15, 1, "contrato corto", {" ", "C"}), de(C::Cifras, 16, 3, "días u horas"_cp),
                ceros(19, 2), codigo(21, 1, "horas", {" ", "H"}), blancos(22, 2), ceros(24, 4), blancos(28, 2),
                de(C::Cifras, 30, 2, "grupo de cotización"_cp), blancos(32, 4), de(C::Cifras, 36, 3, "clave de contrato"),
                de(C::Cifras, 39, 3, "epígrafe o clave"_cp), de(C::Cifras, 42, 3, "epígrafe o clave"_cp), ceros(45, 3),
                blancos(48, 15), de(C::Texto, 63, 7, "convenio", true), blancos(70, 1)}),
      bloqueImporte,
      segmento("EDL de días"_cp, {"EDLCD01", "EDLCD03"},
               {de(C::Cifras, 8, 3, "días"_cp), importe(11, 7, "importe"), codigo(18, 3, "marca", {" 01", " 03"}),
                ceros(21, 24), blancos(45, 26)}),
      segmento("EDL de fecha", {"EDLCD06", "EDLCD10", "EDLCD11"},
               {de(C::Cifras, 8, 3, "días"_cp), importe(11, 7, "importe"), codigo(18, 3, "marca", {" 02", " 03"}),
                fecha(21, "fecha de inicio", true), ceros(29, 16), blancos(45, 26)}),
      segmento("EDL de bonificación"_cp, {"EDLCD07", "EDLCD13", "EDLCD16", "EDLCD17"},
               {de(C::Cifras, 8, 3, "días"_cp), importe(11, 7, "importe"), literal(18, " 03", "marca"),
                fecha(21, "fecha de inicio", true), fecha(29, "fecha de fin", true), ceros(37, 8), blancos(45, 26)}),
      segmento("TCT", {"TCT00"},
               {de(C::Texto, 6, 3, "clave de la empresa"), de(C::Cifras, 9, 6, "trabajadores"), ceros(15, 6),
                blancos(21, 28), ceros(49, 8), blancos(57, 14)}),
      segmento("EDT de total", {"EDTBA01000", "EDTBA02000", "EDTBA21000", "EDTBA22000"},
               {importe(11, 11, "total"), blancos(22, 1), ceros(23, 19), blancos(42, 29)}),
      segmento("EDT de importe",
               {"EDTCD01000", "EDTCD03000", "EDTCD06000", "EDTCD07000", "EDTCD13000", "EDTCD10000", "EDTCD11000",
                "EDTCD16000", "EDTCD17000", "EDTCA22000", "EDTCA30000", "EDTCA31000", "EDTCA32000", "EDTCA60000",
                "EDTCA90000"},
               {ceros(11, 11), blancos(22, 1), ceros(23, 8), importe(31, 11, "importe"), blancos(42, 29)}),
      segmento("EDT de liquidación"_cp, {"EDTTT10000", "EDTTT20000", "EDTTT30000", "EDTTT91000", "EDTTT92000"},
               {ceros(11, 11), blancos(22, 1), ceros(23, 8), importe(31, 11, "importe", SignoImporte::Ninguno),
                codigo(42, 1, "signo", {" ", "-"}), blancos(43, 28)}),
      segmento("EDT de cuota", {"EDTCA01000", "EDTCA02000", "EDTBA10000", "EDTBA11000", "EDTCA50000", "EDTCA57000"},
               {importe(11, 11, "base"), literal(22, "T", "marca"), de(C::Cifras, 23, 3, "tipo, enteros"),
                de(C::Cifras, 26, 5, "tipo, decimales"), importe(31, 11, "cuota"), blancos(42, 29)}),
      segmento("EDT de otros conceptos", {"EDTCA11006"},
               {importe(11, 11, "base"), literal(22, "T", "marca"), literal(23, "036", "tipo, enteros"),
                literal(26, "00000", "tipo, decimales"), importe(31, 11, "cuota"), blancos(42, 29)}),
      segmento("DBA", {"DBA "},
               {de(C::Texto, 5, 4, "entidad"), de(C::Texto, 9, 4, "sucursal"), de(C::Texto, 13, 2, "dígitos de control"_cp),
                de(C::Texto, 15, 10, "cuenta"), codigo(25, 1, "tipo de identificador", {"1", "6", "9"}),
                de(C::Documento, 26, 14, "identificador"), de(C::Texto, 40, 31, "razón social"_cp, true)}),
      segmento("ETF", {"ETF"},
               {literal(4, "TC220VIP28", "mensaje"), de(C::Texto, 14, 8, "clave de autorización"_cp),
                de(C::Texto, 22, 8, "clave Silcon", true), fecha(30, "fecha de preparación"_cp),
                de(C::Hora, 38, 4, "hora de preparación"_cp), de(C::Texto, 42, 8, "nombre del fichero"),
                literal(50, "FAN", "extensión"_cp), literal(53, "N", "marca"), codigo(54, 1, "modo", MODOS),
                de(C::Cifras, 55, 5, "empresas"), de(C::Cifras, 60, 8, "líneas"_cp), blancos(68, 3)}),
  };
}

std::vector<Segmento> afi() {
  return {
      eti("AFI31WS342", "AFI"),
      segmento("SIL", {"SIL"},
               {de(C::Texto, 4, 8, "clave", true), de(C::Texto, 12, 8, "nueva clave", true), blancos(20, 51)}),
      segmento("EMP", {"EMP0111", "EMP0132"},
               [] {
                 auto c = empleador({"1   ", "9   "});
                 c.push_back(blancos(54, 17));
                 return c;
               }()),
      rzs(),
      segmento("TRA", {"TRA"},
               {de(C::Afiliacion, 4, 12, "número de afiliación"_cp), de(C::Cifras, 16, 1, "tipo de documento"),
                blancos(17, 3), de(C::Documento, 20, 14, "documento"), blancos(34, 3), blancos(37, 25),
                de(C::Texto, 62, 3, "nacionalidad", true), blancos(65, 6)}),
      segmento("AYN", {"AYN"},
               {de(C::Texto, 4, 20, "primer apellido"), de(C::Texto, 24, 20, "segundo apellido", true),
                de(C::Texto, 44, 15, "nombre"), blancos(59, 12)}),
      segmento("DOM", {"DOM"},
               {blancos(4, 3), de(C::Texto, 7, 36, "domicilio", true), ceros(43, 5), blancos(48, 9),
                de(C::Cifras, 57, 5, "código postal"_cp), ceros(62, 9)}),
      segmento("LDD", {"LDD"},
               {de(C::Texto, 4, 24, "localidad", true), de(C::Texto, 28, 15, "provincia", true), blancos(43, 28)}),
      segmento("FAB", {"FAB"},
               {de(C::Texto, 4, 3, "acción"_cp), de(C::Texto, 7, 2, "situación"_cp, true), fecha(9, "fecha real"),
                de(C::Cifras, 17, 2, "grupo de cotización"_cp), de(C::Texto, 19, 3, "epígrafe"_cp),
                de(C::Cifras, 22, 3, "clave de contrato"), de(C::Cifras, 25, 1, "condición de desempleado"_cp),
                de(C::Texto, 26, 1, "mujer subrepresentada", true), de(C::Cifras, 27, 3, "coeficiente"),
                ceros(30, 3), literal(33, "S", "impresión"_cp), de(C::Cifras, 34, 3, "días trabajados"_cp), ceros(37, 4),
                fecha(41, "fecha de antigüedad"_cp, true), de(C::Cifras, 49, 1, "sexo"), ceros(50, 6),
                de(C::Texto, 56, 1, "incapacitado", true), de(C::Texto, 57, 1, "primer trabajador", true),
                de(C::Cifras, 58, 2, "grado de minusvalía"_cp), fecha(60, "fecha de control", true),
                de(C::Texto, 68, 3, "exclusión social"_cp, true)}),
      segmento("DAM", {"DAM"},
               {fecha(4, "fecha de inicio", true), de(C::Texto, 12, 1, "subrogación parcial"_cp, true),
                de(C::Texto, 13, 4, "relación especial"_cp),
                de(C::Afiliacion, 17, 12, "número del sustituido"_cp, true), de(C::Cifras, 29, 2, "causa de sustitución"_cp),
                blancos(31, 40)}),
      segmento("ETF", {"ETFAFI31WS342"},
               {de(C::Texto, 14, 8, "clave de autorización"_cp, true), de(C::Texto, 22, 8, "clave Silcon", true),
                fecha(30, "fecha de preparación"_cp), de(C::Hora, 38, 4, "hora de preparación"_cp),
                de(C::Texto, 42, 8, "nombre del fichero"), literal(50, "AFIN", "extensión"_cp),
                codigo(54, 1, "modo", MODOS), de(C::Cifras, 55, 5, "empresas"), de(C::Cifras, 60, 8, "líneas"_cp),
                blancos(68, 3)}),
  };
}

}  // namespace

const std::vector<Segmento>& segmentosDeFichero(TipoIntercambio tipo) {
  static const std::vector<Segmento> deFan = fan(), deAfi = afi(), ninguno;
  return tipo == TipoIntercambio::FAN ? deFan : tipo == TipoIntercambio::AFI ? deAfi : ninguno;
}

const Segmento* segmentoDeLinea(std::string_view linea, TipoIntercambio tipo) {
  const Segmento* mejor = nullptr;
  std::size_t largo = 0;
  for (const Segmento& s : segmentosDeFichero(tipo))
    for (std::string_view clave : s.claves)
      if (clave.size() > largo && linea.starts_with(clave)) {
        mejor = &s;
        largo = clave.size();
      }
  return mejor;
}

const Campo* campoEnPosicion(const Segmento& segmento, int posicion) {
  for (const Campo& c : segmento.campos)
    if (posicion >= c.desde && posicion <= c.hasta()) return &c;
  return nullptr;
}

}  // namespace valdor
