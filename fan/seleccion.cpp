#include "fan/seleccion.h"

#include <algorithm>

#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

std::vector<EmpresaDelMes> empresasDelMes(Almacenes& almacenes, int mes, int ano) {
  almacenes.MESPERIODO = textoMesPeriodo(mes);
  almacenes.ANOPERIODO = textoAnoPeriodo(ano);
  almacenes.CREAPERIODO();
  std::vector<EmpresaDelMes> lista;
  if (almacenes.ABREPERIODO()) {
    try {
      auto q = almacenes.periodo.consulta(
          "SELECT BSSE, BNOMBRE, Count(BMATRI) AS CuentaDeBMATRI FROM NOMIN WHERE BCONT <> 'N' "
          "GROUP BY BSSE, BNOMBRE ORDER BY BNOMBRE COLLATE ESPANOL");
      while (q.siguiente())
        lista.push_back({q.texto("BNOMBRE"), q.texto("BSSE"), static_cast<int>(q.numero("CuentaDeBMATRI"))});
    } catch (const ErrorAlmacen& e) {
      // A month store that cannot be read gives no list, and the user hears why: an empty
      // list would read as a month with no payroll.
      almacenes.avisa(e);
      lista.clear();
    }
  }
  almacenes.CIERRAPERIODO();
  return lista;
}

std::string_view textoAyudaSeleccion() {
  return "Seleccione el mes y año de proceso y a continuación pinche sobre el botón VERIFICAR EMPRESAS con "
         "el fin de que el programa muestre aquellas que contienen nóminas calculadas."_cp;
}
std::string_view textoAyudaEmpresas() {
  return "Seleccione las empresas que desee procesar o marque la opción seleccionar todas. A continuación "
         "pulse sobre el botón procesar."_cp;
}
std::string_view textoSinEmpresas() {
  return "Para iniciar el proceso del fichero debe seleccionar al menos una empresa.";
}
std::string_view tituloSinEmpresas() { return "VALDOR+"; }

const std::vector<std::string>& COTIZACION::meses() {
  static const std::vector<std::string> lista = [] {
    std::vector<std::string> l;
    for (int m = 1; m <= 12; ++m) l.push_back(llenaIzq(std::to_string(m), 2, '0'));
    return l;
  }();
  return lista;
}

const std::vector<std::string>& COTIZACION::anos() {
  static const std::vector<std::string> lista = [] {
    std::vector<std::string> l;
    for (int a = 1901; a <= 2100; ++a) l.push_back(" " + std::to_string(a));
    return l;
  }();
  return lista;
}

const std::vector<std::string>& COTIZACION::clases() {
  static const std::vector<std::string> lista = [] {
    std::vector<std::string> l;
    for (std::string_view c :
         {"L00.- Normal"_cp, "L01.- Complementaria por base mejoradas"_cp,
          "L02.- Complementaria por salarios tramitación normal"_cp, "L03.- Complementaria abono retroactivo"_cp,
          "L04.- Complementaria reintegro prestaciones"_cp, "L07.- Complementaria retraso parte de baja"_cp,
          "L08.- Corrección de errores materiales o de cálculo"_cp, "L09.- Otras complementarias"_cp,
          "L10.- Regulación de empleo (parcial)"_cp, "L11.- Regulación de empleo (total)"_cp,
          "L12.- Regulación anual (Artistas,toreros...)"_cp, "L15.- Rectificaciones,compensaciones y deducciones"_cp,
          "L80.- Devolución de cuotas"_cp, "A70.- Adm.Pública permiso sin sueldo"_cp,
          "A71.- Adm.Pública susp. sin retrib."_cp, "A72.- Adm.Pública servicio militar"_cp,
          "A73.- Adm.Pública s.m. con trienios"_cp, "A74.- Adm.Pública sust. no firme def."_cp,
          "A75.- Adm.Pública sust. no firme def."_cp, "TP1.- Pluriempleo protección común."_cp,
          "TP2.- Pluriempleo protección no común."_cp})
      l.emplace_back(c);
    return l;
  }();
  return lista;
}

const std::vector<std::string>& COTIZACION::calificadores() {
  static const std::vector<std::string> lista = [] {
    std::vector<std::string> l;
    for (std::string_view c :
         {"00.- Liquidación cuota total en plazo"_cp, "01.- Liquidación cuota obrera en plazo"_cp,
          "02.- Liquidación cuota patronal en plazo"_cp, "03.- Liquidación cuota total fuera de plazo"_cp,
          "04.- Diferencias de cotización"_cp, "05.- Cuota inaplazable"_cp, "06.- AT y EP"_cp,
          "08.- Ingreso cuotas aplazables"_cp, "10.- Present. a efectos art, 26"_cp})
      l.emplace_back(c);
    return l;
  }();
  return lista;
}

int COTIZACION::anoDelPeriodo() const { return static_cast<int>(valorNumerico(anos()[static_cast<std::size_t>(anoElegido)])); }
int COTIZACION::mesDelPeriodo() const { return static_cast<int>(valorNumerico(meses()[static_cast<std::size_t>(mesElegido)])); }
std::string COTIZACION::codigoClase() const { return recorta(izquierda(clases()[static_cast<std::size_t>(claseElegida)], 3)); }
std::string COTIZACION::codigoCalificador() const {
  return recorta(izquierda(calificadores()[static_cast<std::size_t>(calificadorElegido)], 2));
}

void COTIZACION::eligeMes(int indice) {
  if (indice < 0 || indice >= static_cast<int>(meses().size())) return;
  mesElegido = indice;
}

void COTIZACION::eligeAno(int indice) {
  if (indice < 0 || indice >= static_cast<int>(anos().size())) return;
  anoElegido = indice;
}

void cargaCOTIZACION(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel) {
  pagina.ponGuia(textoAyudaSeleccion());
  int mes = 0, ano = 0;
  mesAnterior(programa.ahora(), mes, ano);
  sel.claseElegida = 0;
  sel.calificadorElegido = 0;
  sel.eligeMes(mes - 1);
  sel.eligeAno(ano < 1901 || ano > 2100 ? 0 : ano - 1901);
  programa.almacenes.MESPERIODO = textoMesPeriodo(sel.mesDelPeriodo());
  programa.almacenes.ANOPERIODO = textoAnoPeriodo(sel.anoDelPeriodo());
  programa.almacenes.ABREMAESTROS();
}

void descargaCOTIZACION(Programa& programa, COTIZACION&) { programa.almacenes.CIERRAMAESTROS(); }

void PRESIONBOTON(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel) {
  sel.grid.clear();
  pagina.ponGuia(textoAyudaEmpresas());
  sel.listasBloqueadas = true;
  for (const EmpresaDelMes& e : empresasDelMes(programa.almacenes, sel.mesDelPeriodo(), sel.anoDelPeriodo()))
    sel.grid.push_back({e.BNOMBRE, false, e.BSSE, "", "", e.trabajadores});
  sel.marcarTodasActivo = true;
  sel.devEnCtaActivo = true;
}

void marcaTodas(COTIZACION& sel, bool marcar) {
  for (FilaEmpresa& f : sel.grid)
    if (valorNumerico(f.BSSE) != 0) f.marcada = marcar;
}

int empresasMarcadas(const COTIZACION& sel) {
  return static_cast<int>(std::count_if(sel.grid.begin(), sel.grid.end(), [](const FilaEmpresa& f) { return f.marcada; }));
}

std::string textoCuentaEmpresas(const COTIZACION& sel) {
  const std::size_t total = sel.grid.size();
  const int marcadas = empresasMarcadas(sel);
  return std::to_string(total).append(total == 1 ? " empresa, " : " empresas, ").append(std::to_string(marcadas))
      .append(marcadas == 1 ? " marcada" : " marcadas");
}

bool pasaFiltro(const FilaEmpresa& fila, std::string_view filtro) {
  const std::string buscado = mayusculas(recorta(filtro));
  return buscado.empty() || mayusculas(fila.BSSE).find(buscado) != std::string::npos ||
         mayusculas(fila.BNOMBRE).find(buscado) != std::string::npos;
}

std::string textoEmpresaDe(std::string_view que, std::size_t n, std::size_t de, std::string_view nombre) {
  std::string texto = std::string(que).append(": empresa ").append(std::to_string(n)).append(" de ").append(std::to_string(de));
  if (const std::string limpio = recorta(nombre); !limpio.empty()) texto.append(", ").append(limpio);
  return texto;
}

bool puedeProcesar(Programa& programa, COTIZACION& sel) {
  for (const FilaEmpresa& f : sel.grid)
    if (f.marcada) {
      sel.alfabeticaActiva = false;
      return true;
    }
  programa.dialogos().mensaje(tituloSinEmpresas(), textoSinEmpresas(), Icono::Informacion);
  return false;
}

void cancelaCOTIZACION(Programa& programa) { programa.g.CANCELADO = 1; }

}  // namespace valdor
