#include "engine/tc1val.h"

#include <cmath>

#include "shell/asistente.h"
#include "shell/programa.h"
#include "statement/liquidacion.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

std::string textoCalculandoTC1(std::string_view nombreEmpresa) {
  return std::string("VALDOR+ está calculando el modelo TC1 de la empresa "_cp).append(nombreEmpresa);
}

std::string textoFinTC1(std::size_t empresas) {
  // The run calculates and prints nothing: printing is the statement form's own command,
  // for the statement on screen.
  const std::string cuantas = empresas == 1 ? std::string("1 empresa") : std::to_string(empresas) + " empresas";
  return std::string("VALDOR+ ha calculado el boletín TC-1 de "_cp)
      .append(cuantas)
      .append(". No se ha impreso ninguno: «Imprimir» imprime el que se ve en pantalla."_cp);
}

EmpleadorBoletin empleadorDe(const BOLETIN& b) {
  return {b.BOLNOMBRE.texto(), b.BOLDOMICILIO.texto(), b.BOLLOCALIDAD.texto(),
          b.BOLENTIDAD.texto(), b.BOLPROV.texto(),     b.BOLNIF.texto()};
}

// ---- The TC1 lines ----------------------------------------------------------------------------

namespace {

// An amount of the statement in whole cents, 11 characters. A figure that does not fit
// (or is no finite number) drops out, and the FAN writer refuses the short line.
std::string importe11(std::string_view texto) { return CAMPONUM(recorta(texto), 11, "0", true).value_or(""); }

// A rate cut at the decimal separator: the whole part with "0" on the left up to 3 and
// the decimals with "0" on the right up to 5. Without the separator the cut stands at
// position 0: no whole part, and the whole text as the decimals.
std::string tipoPartidoEnComa(std::string_view tipo, char sepDecimal) {
  const std::string t = recorta(tipo);
  const std::size_t p = posicion(t, std::string(1, sepDecimal));
  const std::string entera = p > 0 ? izquierda(t, p - 1) : std::string();
  return llenaIzq(entera, 3, '0') + llenaDer(medio(t, p + 1), 5, '0');
}

std::string lineaA(std::string_view codigo, const CampoFijo& base, std::string_view tipo, const CampoFijo& cuota,
                   char sepDecimal) {
  return std::string(codigo) + importe11(base.texto()) + "T" + tipoPartidoEnComa(tipo, sepDecimal) +
         importe11(cuota.texto()) + std::string(29, ' ');
}

std::string lineaB(std::string_view codigo, const CampoFijo& importe, bool conSigno) {
  std::string texto = recorta(importe.texto());
  std::string signo = " ";
  if (conSigno && importe.valor() < 0) {
    signo = "-";
    if (texto.starts_with('-')) texto.erase(0, 1);
  }
  return std::string(codigo) + std::string(11, '0') + " " + std::string(8, '0') + importe11(texto) + signo +
         std::string(28, ' ');
}

std::string lineaC(std::string_view codigo, const CampoFijo& base, const CampoFijo& cuota) {
  return std::string(codigo) + importe11(base.texto()) + "T03600000" + importe11(cuota.texto()) +
         std::string(29, ' ');
}

}  // namespace

void MONTALINEASTC1(BOLETIN& b, const EmpleadorBoletin& e, char sepDecimal, std::array<std::string, 26>& L) {
  b.BOLNOMBRE = e.BOLNOMBRE;
  b.BOLDOMICILIO = e.BOLDOMICILIO;
  b.BOLLOCALIDAD = e.BOLLOCALIDAD;
  b.BOLENTIDAD = e.BOLENTIDAD;
  b.BOLPROV = e.BOLPROV;
  b.BOLNIF = e.BOLNIF;

  auto pon = [&L](int entrada, const CampoFijo& prueba, const std::string& linea) {
    if (prueba.valor() != 0) L[static_cast<std::size_t>(entrada)] = linea;
  };
  pon(1, b.CCBASE, lineaA("EDTCA01000", b.CCBASE, b.CCTIPO.texto(), b.CCCUOTA, sepDecimal));
  pon(2, b.FPBASE, lineaA("EDTCA02000", b.FPBASE, b.FPTIPO.texto(), b.FPCUOTA, sepDecimal));
  pon(3, b.HEBASE, lineaA("EDTBA10000", b.HEBASE, b.HETIPO.texto(), b.HECUOTA, sepDecimal));
  pon(4, b.HNBASE, lineaA("EDTBA11000", b.HNBASE, b.HNTIPO.texto(), b.HNCUOTA, sepDecimal));
  pon(5, b.OCBASE, lineaC("EDTCA11006", b.OCBASE, b.OCCUOTA));
  pon(6, b.COMPIT, lineaB("EDTCA22000", b.COMPIT, false));
  pon(7, b.ATTOTAL, lineaB("EDTCA30000", b.ATTOTAL, false));
  pon(8, b.ATCUOTAIT, lineaB("EDTCA31000", b.ATCUOTAIT, false));
  pon(9, b.ATCUOTAIMS, lineaB("EDTCA32000", b.ATCUOTAIMS, false));
  pon(10, b.OTBASE, lineaA("EDTCA50000", b.OTBASE, b.OTTIPO.texto(), b.OTCUOTA, sepDecimal));
  const std::string tipoOT2 = formatea(b.OT2TIPO.valor(), "##.00", Separadores{sepDecimal, ','});
  pon(11, b.OT2BASE, lineaA("EDTCA57000", b.OT2BASE, tipoOT2, b.OT2CUOTA, sepDecimal));
  pon(12, b.OTSUMA, lineaB("EDTCA60000", b.OTSUMA, false));
  pon(13, b.RECARGO, lineaB("EDTCA90000", b.RECARGO, false));
  pon(14, b.CGLIQUIDO, lineaB("EDTTT10000", b.CGLIQUIDO, true));
  pon(15, b.ATLIQUIDO, lineaB("EDTTT20000", b.ATLIQUIDO, true));
  pon(16, b.OTLIQUIDO, lineaB("EDTTT30000", b.OTLIQUIDO, true));
  pon(17, b.AINGRESAR, lineaB("EDTTT91000", b.AINGRESAR, true));
  pon(18, b.APERCIBIR, lineaB("EDTTT92000", b.APERCIBIR, true));
}

std::string tipoDocumentoDBA(std::string_view A8) {
  const std::string t = recorta(A8);
  const std::string dos = izquierda(t, 2);
  if (dos == "00" || dos == "  ") return "1";
  if (mayusculas(izquierda(t, 1)) == "X") return "6";
  if (valorNumerico(t) == 0 && valorNumerico(izquierda(t, 1)) == 0) return "9";
  return "1";
}

std::optional<std::string> lineaDBA(Almacenes& a, std::string_view empresa) {
  try {
    auto cuenta = a.cuentas.consulta(
        "SELECT CUENTENTIDAD, CUENTSUCURSAL, CUENTDIGITO, CUENTCUENTA FROM CUENTASTAB WHERE CUENTCOTIZA = ? COLLATE "
        "ESPANOL",
        {Valor(recorta(empresa))});
    if (!cuenta.siguiente()) return std::nullopt;
    auto esa = a.empresas.consulta("SELECT A2, A8 FROM ESA WHERE A1 = ? COLLATE ESPANOL", {Valor(empresa)});
    std::string A2, A8;
    if (esa.siguiente()) {
      A2 = recorta(esa.texto("A2"));
      A8 = recorta(esa.texto("A8"));
    }
    auto campo = [&](const char* columna, std::size_t ancho) { return llenaIzq(recorta(cuenta.texto(columna)), ancho, ' '); };
    return "DBA " + campo("CUENTENTIDAD", 4) + campo("CUENTSUCURSAL", 4) + campo("CUENTDIGITO", 2) +
           campo("CUENTCUENTA", 10) + tipoDocumentoDBA(A8) + llenaIzq(A8, 14, '0') + izquierda(llenaDer(A2, 31, ' '), 31);
  } catch (const ErrorAlmacen&) {
    return std::nullopt;  // no account to read: no line
  }
}

// ---- The runs ---------------------------------------------------------------------------------

TC1VAL::TC1VAL(COTVAL& calculo, Liquidacion& liquidacion, Programa& programa)
    : calculo_(calculo), liquidacion_(liquidacion), programa_(programa) {
  liquidacion_.porEmpresa = true;
}

void TC1VAL::CARGAEMPRESA(std::string_view empresa, bool una) {
  calculo_.CARGAEMPRESA(empresa);
  empleador_ = empleadorDe(calculo_.boletin);
  if (pagina) pagina->ponGuia(textoCalculandoTC1(recorta(calculo_.boletin.BOLNOMBRE.texto())));
  if (valorNumerico(calculo_.v.empresaPublica) != 0 && una) unaEmpresa(empresa);
}

namespace {

// A payroll row that is a worker of the statement: a company or a worker, and not marked "N".
bool esFilaDelTC1(const FilaNomina& f) {
  if (valorNumerico(f.BSSE.texto()) == 0 && valorNumerico(f.BMATRI.texto()) == 0) return false;
  return izquierda(recortaIzq(f.BCONT.texto()), 1) != "N";
}

constexpr const char* ORDENMEEP =
    " ORDER BY BSSE COLLATE ESPANOL, BEPIG COLLATE ESPANOL, BCEN COLLATE ESPANOL, BMATRI COLLATE ESPANOL, rowid";

}  // namespace

void TC1VAL::ponFila(const FilaNomina& f) {
  VariablesCalculo& v = calculo_.v;
  v.EMPACT = f.BSSE.texto();
  v.TRAACT = f.BMATRI.texto();
  ++filas_;
  if (filas_ > 9) calculo_.GRID1.ponFilas(filas_ + 1);
  calculo_.GRID1.filaActual = filas_;
  calculo_.filaDeTrabajo(f);
}

void TC1VAL::liquidaEmpresa() {
  liquidacion_.CALCULATRABAJADOR(false);
  Globales& g = programa_.g;
  if (limpiaLineas)
    for (int i = 1; i <= 18; ++i) g.LINEASTC1[static_cast<std::size_t>(i)].clear();
  MONTALINEASTC1(calculo_.boletin, empleador_, programa_.separadores().decimal, g.LINEASTC1);
  if (devEnCta) {
    if (auto dba = lineaDBA(programa_.almacenes, recorta(calculo_.v.empresaPublica))) g.LINEASTC1[19] = *dba;
  }
}

void TC1VAL::unaEmpresa(std::string_view empresa) {
  calculo_.GRID1.LIMPIAGRID();
  filas_ = 0;
  // The company's rows in the order of the index MEEP from (company, "00001"), as a seek
  // there and a walk would find them; the rows of other companies are never read.
  const double codigo = valorNumerico(empresa);
  try {
    auto q = programa_.almacenes.periodo.consulta(
        std::string("SELECT * FROM NOMIN WHERE BSSE = ? COLLATE ESPANOL AND BEPIG >= ? COLLATE ESPANOL") + ORDENMEEP,
        {Valor(empresa), Valor("00001")});
    while (q.siguiente()) {
      const FilaNomina f = leeFilaNomina(q);
      if (valorNumerico(f.BSSE.texto()) == codigo && esFilaDelTC1(f)) ponFila(f);
    }
  } catch (const ErrorAlmacen&) {
    // A month store that cannot be read gives a company without rows: a statement of zeros.
  }
  liquidaEmpresa();
}

void TC1VAL::todasLasEmpresas() {
  calculo_.GRID1.LIMPIAGRID();
  filas_ = 0;
  std::string ultima;
  std::size_t calculadas = 0;
  try {
    auto q = programa_.almacenes.periodo.consulta(std::string("SELECT * FROM NOMIN") + ORDENMEEP);
    while (q.siguiente()) {
      const FilaNomina f = leeFilaNomina(q);
      if (!esFilaDelTC1(f)) continue;
      const std::string empresa = f.BSSE.texto();
      if (empresa != ultima) {
        if (valorNumerico(ultima) != 0) {
          liquidaEmpresa();
          ++calculadas;
          if (enCadaEmpresa) enCadaEmpresa();
          if (cancelado) return;
        }
        CARGAEMPRESA(empresa, false);
        filas_ = 0;
        calculo_.GRID1.LIMPIAGRID();
        ultima = empresa;
      }
      ponFila(f);
    }
  } catch (const ErrorAlmacen& e) {
    programa_.dialogos().mensaje(tituloValdor(), e.what(), Icono::Critico);
    return;
  }
  if (ultima.empty()) return;
  liquidaEmpresa();
  ++calculadas;
  if (enCadaEmpresa) enCadaEmpresa();
  programa_.dialogos().mensaje(tituloValdor(), textoFinTC1(calculadas), Icono::Informacion);
  liquidacion_.CALCULATRABAJADOR(false);
}

}  // namespace valdor
