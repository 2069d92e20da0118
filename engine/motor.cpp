#include "engine/motor.h"

#include "engine/cotval.h"
#include "engine/tc1val.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "statement/ficherotipos.h"
#include "statement/liquidacion.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

void preparaCOTVAL(Programa& programa, int mes, int ano, valdor::COTVAL& calculo, TiposDeLaEjecucion& tipos) {
  VariablesCalculo& v = calculo.v;
  v.MESCOT = mes;
  v.ANOCOT = ano;
  v.MES2 = izquierda(recortaIzq(textoGeneral(v.MESCOT)), 2);
  v.ANO4 = izquierda(recortaIzq(textoGeneral(v.ANOCOT)), 4);
  if (const TiposLeidos* t = tipos.lee(programa.carpetas().trabajo, ano, mes, "")) {
    calculo.PRECIOHORADIST = t->PRECIOHORADIST;
    calculo.PRECIOHORAPRES = t->PRECIOHORAPRES;
  }
}

void preparaCOTVAL(Programa& programa, const COTIZACION& sel, valdor::COTVAL& calculo, TiposDeLaEjecucion& tipos) {
  preparaCOTVAL(programa, sel.mesDelPeriodo(), sel.anoDelPeriodo(), calculo, tipos);
}

void MotorCalculo::COTVAL(Programa& programa, COTIZACION& sel) {
  Almacenes& a = programa.almacenes;
  valdor::COTVAL calculo(programa);
  TiposDeLaEjecucion tipos;
  preparaCOTVAL(programa, sel, calculo, tipos);
  calculo.trabajadorCalculado = trabajadorCalculado;
  Liquidacion liquidacion(calculo, programa, tipos);
  calculo.CALCULATRABAJADOR = [&liquidacion](valdor::COTVAL&) { liquidacion.CALCULATRABAJADOR(); };
  programa.g.LINEALARGA = 0;
  a.CREAILTS();
  a.ABREILTS();
  a.CREAFORMACION();
  a.ABREFORMACION();
  a.MESPERIODO = textoMesPeriodo(sel.mesDelPeriodo());
  a.ANOPERIODO = textoAnoPeriodo(sel.anoDelPeriodo());
  a.CREAPERIODO();
  a.ABREPERIODO();
  // The stores are closed however the run ends: a stop asked by the user, a figure too
  // wide for its line.
  struct Cierre {
    Almacenes& a;
    ~Cierre() {
      a.CIERRAPERIODO();
      a.CIERRAFORMACION();
      a.CIERRAILTS();
    }
  } cierre{a};
  // One read lock per store for the whole run, instead of one per read.
  LecturaContinua l1(a.periodo), l2(a.producto), l3(a.empresas), l4(a.constant), l5(a.desempleo), l6(a.bonifica),
      l7(a.formacion), l8(a.ilts), l9(a.convenio), l10(a.tipodoc);
  // The worker's lines of the whole run go to the temp store in one write.
  std::optional<Transaccion> lineas;
  if (a.temporal.abierto()) lineas.emplace(a.temporal);
  calculo.CALCULAEMPRESAS(sel);
  if (lineas) lineas->confirma();
}

MotorCalculo::AperturaTC1::AperturaTC1(Almacenes& a, int mes, int ano, bool crea) : almacenes(a) {
  a.MESPERIODO = textoMesPeriodo(mes);
  a.ANOPERIODO = textoAnoPeriodo(ano);
  if (crea) a.CREAPERIODO();
  a.ABREPERIODO();
  if (crea) a.CREAFORMACION();
  a.ABREFORMACION();
}

MotorCalculo::AperturaTC1::~AperturaTC1() {
  almacenes.CIERRAFORMACION();
  almacenes.CIERRAPERIODO();
}

MotorCalculo::SesionTC1::SesionTC1(Almacenes& a, int mes, int ano, bool crea)
    : apertura(a, mes, ano, crea),
      periodo(a.periodo),
      producto(a.producto),
      empresas(a.empresas),
      constant(a.constant),
      bonifica(a.bonifica),
      desempleo(a.desempleo),
      formacion(a.formacion),
      cuentas(a.cuentas) {}

void tc1DeEmpresa(Programa& programa, MotorCalculo::SesionTC1& sesion, int mes, int ano, bool devEnCta,
                  PaginaIntercambio& pagina, const std::string& CODEMPRESA) {
  valdor::COTVAL calculo(programa);
  calculo.modo = ModoCalculo::UnaEmpresa;
  preparaCOTVAL(programa, mes, ano, calculo, sesion.tipos);
  Liquidacion liquidacion(calculo, programa, sesion.tipos);
  valdor::TC1VAL tc1(calculo, liquidacion, programa);
  tc1.devEnCta = devEnCta;
  tc1.pagina = &pagina;
  VACIABOLETIN(calculo.cajas, calculo.v.empresaPublica);
  tc1.CARGAEMPRESA(CODEMPRESA, true);
}

void MotorCalculo::TC1VAL(Programa& programa, COTIZACION& sel, PaginaIntercambio& pagina,
                          const std::string& CODEMPRESA) {
  if (adelanto_) {
    if (auto hecho = adelanto_->toma(CODEMPRESA)) {
      pagina.ponGuia(hecho->guia);
      for (int i = 1; i <= 18; ++i) programa.g.LINEASTC1[static_cast<std::size_t>(i)] = std::move(hecho->lineas[static_cast<std::size_t>(i)]);
      if (hecho->dba) programa.g.LINEASTC1[19] = std::move(*hecho->dba);
      ++adelantadas;
      return;
    }
  }
  if (!sesion_) sesion_.emplace(programa.almacenes, sel.mesDelPeriodo(), sel.anoDelPeriodo());
  tc1DeEmpresa(programa, *sesion_, sel.mesDelPeriodo(), sel.anoDelPeriodo(), sel.devEnCta, pagina, CODEMPRESA);
}

void MotorCalculo::adelantaTC1(Programa& programa, const COTIZACION& sel) {
  adelanto_.reset();
  adelantadas = 0;
  if (!adelantar || !almacenesEnVariosHilos()) return;
  // A Jet month is read whole into memory by each reader: the second thread would pay
  // that reading again and hold a second copy.
  Almacenes& a = programa.almacenes;
  a.MESPERIODO = textoMesPeriodo(sel.mesDelPeriodo());
  a.ANOPERIODO = textoAnoPeriodo(sel.anoDelPeriodo());
  if (motorDe(a.rutaPeriodo()) != Motor::SQLite) return;
  adelanto_.emplace(programa, sel);
}

void MotorCalculo::terminaTC1(Programa&) {
  adelanto_.reset();
  sesion_.reset();
}

void ejecutaTC1(Programa& programa, const EjecucionTC1& e) {
  // The list of the month's companies closes the master stores when it goes; the run
  // reads them.
  Almacenes& a = programa.almacenes;
  for (const Almacen* maestro : {&a.convenio, &a.empresas, &a.producto, &a.constant, &a.bonifica, &a.desempleo})
    if (!maestro->abierto()) {
      a.ABREMAESTROS();
      break;
    }
  MotorCalculo::SesionTC1 sesion(programa.almacenes, e.mes, e.ano);
  valdor::COTVAL calculo(programa);
  calculo.modo = e.empresa.empty() ? ModoCalculo::TodasLasEmpresas : ModoCalculo::UnaEmpresa;
  preparaCOTVAL(programa, e.mes, e.ano, calculo, sesion.tipos);
  Liquidacion liquidacion(calculo, programa, sesion.tipos);
  liquidacion.interruptores.Option1 = e.Option1;
  valdor::TC1VAL tc1(calculo, liquidacion, programa);
  tc1.limpiaLineas = true;
  programa.g.LINEASTC1[19].clear();  // no refund line outside a FAN file
  tc1.enCadaEmpresa = [&] {
    if (e.empresaCalculada) e.empresaCalculada(calculo);
    if (e.cancelado && e.cancelado()) tc1.cancelado = true;
  };
  VACIABOLETIN(calculo.cajas, calculo.v.empresaPublica);
  if (e.empresa.empty()) {
    tc1.todasLasEmpresas();
  } else {
    tc1.CARGAEMPRESA(e.empresa, true);
  }
  if (e.empresaCalculada) e.empresaCalculada(calculo);
}

std::string_view textoOrigenTC1(bool todasLasEmpresas) {
  if (!todasLasEmpresas) return "Cifras del cálculo de esta empresa sola, con todos sus pasos."_cp;
  return "Cifras del cálculo de todas las empresas, que no lleva las columnas de maternidad, las horas de "
         "formación ni la regla de TRA39: calculada sola, una empresa con esos casos puede dar otras cifras."_cp;
}

}  // namespace valdor
