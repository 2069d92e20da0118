#include "afiliacion/afiliacion.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <utility>

#include "browser/editor.h"
#include "fan/empleador.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/fechas.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {


// ---- Texts and headers ----------------------------------------------------------------------

std::string_view tituloAFILIA() { return "Módulo de afiliación"_cp; }
std::string_view tituloPendientes() { return "PRODUCTORES PENDIENTES DE AFILIACIÓN"_cp; }
std::string_view preguntaBorrarPendientes() {
  return "Si ha realizado el envío de un fichero de afiliación debería borrar la base de datos de productores "
         "pendientes de envío. ¿Desea que VALDOR+ borre ahora la base de datos?"_cp;
}
std::string_view textoPendientesDelProgramaDeNominas() {
  return "La lista de trabajadores pendientes de afiliación (ACUVALDOR.MDB) es del programa de nóminas: VALDOR+ "
         "no la vacía ni cambia nada en ella. Vacíela desde el programa de nóminas después de enviar el "
         "fichero de afiliación."_cp;
}
std::string_view preguntaEditarAfi() {
  return "El asistente ha terminado de preparar su fichero .AFI ¿Desea editar el fichero para verificar su "
         "sintaxis?"_cp;
}

const FilaAfiliacion& cabecerasAFI() {
  static const FilaAfiliacion cabeceras = [] {
    FilaAfiliacion c;
    const std::string_view nombres[COLUMNASAFI] = {
        "Empresa", "Trabajador", "CABECERA", "Provinc.", "Afiliac.", "Tip. Ide", "Pais.", "Alfaclav", "Respuesta",
        "Cod. Rup.", "Nacional.", "Ind. trab", "Reservad.", "APE Y NOM", "1er Ape.", "2º Apel."_cp, "Nombre",
        "Reservad", "Domicilio", "Tip. Domic", "CL/AV/ETC.", "Calle", "Numero", "Bloque", "Escale", "Piso", "Puerta",
        "C.Postal", "Clave munic", "CAB LOCAL", "Localid.", "Provinc.", "Ent. menor", "CAB FAB", "ACCION",
        "SITUACION", "FECHA REAL", "GRU. COTIZ", "EPIGRAFE", "CLAV. CONT.", "C.DES.+MUJ.SUB.", "COEF. T.P.",
        "COLEC TRAB.", "IMPRESION", "DIAS TRAB.", "ENTER COEF.", "DECIM COEF.", "RESERVADO", "RESERVADO",
        "RESERVADO", "RESERVADO", "", "", "", "", "", "", ""};
    for (int i = 0; i < COLUMNASAFI; ++i) c[static_cast<std::size_t>(i)] = std::string(nombres[i]);
    return c;
  }();
  return cabeceras;
}

// ---- The state ----------------------------------------------------------------------------

int FicheroAfi::trabajadores() const {
  int n = 0;
  for (const BloqueAfi& b : bloques) n += static_cast<int>(b.trabajadores.size());
  return n;
}

int AFILIA::trabajadores() const {
  int n = 0;
  for (const FicheroAfi& f : ficheros) n += f.trabajadores();
  return n;
}

int AFILIA::empresas() const {
  // The parts of a split company stand one after the other: the last block of a file
  // and the first of the next.
  int n = 0;
  std::optional<std::size_t> anterior;
  for (const FicheroAfi& f : ficheros)
    for (const BloqueAfi& b : f.bloques) {
      if (b.empresa != anterior) ++n;
      anterior = b.empresa;
    }
  return n;
}

// ---- The files of a list --------------------------------------------------------------------

std::vector<FicheroAfi> repartoAFI(const std::vector<BloqueAfi>& empresas) {
  std::vector<FicheroAfi> ficheros;
  const auto cabe = [&ficheros](std::size_t trabajadores) {
    if (ficheros.empty()) return false;
    const FicheroAfi& f = ficheros.back();
    return f.empresas() < EMPRESASPORFICHERO &&
           static_cast<std::size_t>(f.trabajadores()) + trabajadores <= TRABAJADORESPORFICHERO;
  };
  constexpr auto porFichero = static_cast<std::size_t>(TRABAJADORESPORFICHERO);
  for (const BloqueAfi& e : empresas) {
    const std::size_t n = e.trabajadores.size();
    if (n == 0) continue;
    if (!cabe(n)) ficheros.emplace_back();
    for (std::size_t desde = 0; desde < n; desde += porFichero) {
      if (desde > 0) ficheros.emplace_back();
      const auto inicio = e.trabajadores.begin() + static_cast<std::ptrdiff_t>(desde);
      const auto fin = e.trabajadores.begin() + static_cast<std::ptrdiff_t>(std::min(n, desde + porFichero));
      ficheros.back().bloques.push_back({e.empresa, {inicio, fin}});
    }
  }
  return ficheros;
}

// ---- The worker's columns -----------------------------------------------------------------

namespace {

// The fills of the columns. A value wider than its column fails the fill: the column
// keeps its former text.
void pon(std::string& columna, const std::optional<std::string>& valor) {
  if (valor) columna = *valor;
}
std::optional<std::string> ceroIzq(std::string_view v, std::size_t ancho) { return campoIzq(recorta(v), ancho, '0'); }
std::optional<std::string> ceroDer(std::string_view v, std::size_t ancho) { return campoDer(recorta(v), ancho, '0'); }
std::optional<std::string> blancoIzq(std::string_view v, std::size_t ancho) { return campoIzq(recorta(v), ancho, ' '); }
std::optional<std::string> blancoDer(std::string_view v, std::size_t ancho) { return campoDer(recorta(v), ancho, ' '); }
std::string blancos(std::size_t n) { return std::string(n, ' '); }

// The parts of "APELLIDO1 APELLIDO2, NOMBRE". A part whose bounds are not there fails.
std::optional<std::string> primerApellido(std::string_view n) {
  const std::size_t blanco = posicion(n, " ");
  if (blanco == 0) return std::nullopt;
  return izquierda(n, blanco - 1);
}
std::optional<std::string> segundoApellido(std::string_view n) {
  const std::size_t blanco = posicion(n, " ");
  const std::size_t coma = posicion(n, ",");
  if (blanco == 0 || coma == 0 || coma <= blanco) return std::nullopt;
  return medio(n, blanco + 1, coma - blanco - 1);
}
std::optional<std::string> nombrePila(std::string_view n) {
  const std::size_t coma = posicion(n, ",");
  if (coma == 0) return std::nullopt;
  return recorta(medio(n, coma + 1));
}

template <typename F>
std::optional<std::string> y(const std::optional<std::string>& a, F&& f) {
  return a ? f(*a) : std::nullopt;
}

std::string causaSustitucion(std::string_view v) {
  const std::string t = recorta(v);
  if (t.empty()) return "0";
  if (t.size() == 1) return "0" + t;
  return t.size() == 2 ? t : std::string();
}

}  // namespace

void columnasTrabajador(const PendienteAfi& p, FilaAfiliacion& c) {
  const std::string tra2 = recorta(p.TRA2);
  const bool baja = recorta(p.VALDORTIPO) == "MB";
  // TRA
  c[2] = "TRA";
  c[3] = izquierda(tra2, 2);
  c[4] = medio(tra2, 3, 10);
  c[5] = p.tipoDocumento;
  c[6] = blancos(3);
  pon(c[7], ceroIzq(mayusculas(p.TRA9), 14));
  c[8] = blancos(3);
  c[9] = blancos(25);
  pon(c[10], blancoIzq(p.VALDNACIONALIDAD, 3));
  c[11] = " ";
  c[12] = blancos(5);
  // AYN: left empty when the worker has no name.
  c[13] = "AYN";
  if (!p.TRA3.empty()) {
    const std::string nombre = mayusculas(p.TRA3);
    pon(c[14], y(primerApellido(nombre), [](const std::string& s) { return campoDer(s, 20, ' '); }));
    pon(c[15], y(segundoApellido(nombre), [](const std::string& s) { return campoDer(s, 20, ' '); }));
    pon(c[16], y(nombrePila(nombre), [](const std::string& s) { return campoDer(s, 15, ' '); }));
  }
  c[17] = blancos(12);
  // DOM
  c[18] = "DOM";
  c[19] = " ";
  c[20] = blancos(2);
  pon(c[21], blancoDer(mayusculas(p.TRA4), 36));
  c[22] = "00000";
  c[23] = c[24] = c[25] = blancos(2);
  c[26] = blancos(3);
  pon(c[27], ceroDer(mayusculas(p.TRA5), 5));  // the zeros of the postal code stand on the right
  c[28] = "000000000";
  // LDD
  c[29] = "LDD";
  pon(c[30], blancoDer(izquierda(mayusculas(p.TRA51), 24), 24));
  pon(c[31], blancoDer(izquierda(mayusculas(p.A5), 15), 15));
  c[32] = blancos(28);
  // FAB
  c[33] = "FAB";
  c[34] = " " + recorta(p.VALDORTIPO);
  c[35] = recorta(p.SITU);
  c[36] = amdPorPosiciones(baja ? p.BAJ10 : p.TRA1710);
  pon(c[37], ceroIzq(mayusculas(p.TRA15), 2));
  pon(c[38], ceroIzq(mayusculas(p.TRA14), 3));
  c[39] = p.claveContrato;
  {
    const auto desempleo = ceroIzq(p.VALDCONDIDESEM, 1);
    const auto mujer = blancoIzq(p.VALDMUJERSUBRE, 1);
    if (desempleo && mujer) c[40] = *desempleo + *mujer;
  }
  pon(c[41], ceroIzq(textoGeneral(p.COEF), 3));
  c[42] = "000";
  c[43] = "S";
  pon(c[44], ceroIzq(textoGeneral(p.VALDIAS), 3));
  c[45] = c[46] = "00";
  pon(c[47], ceroIzq(baja ? "" : amdPorPosiciones(p.TRA1110), 8));
  {
    const auto sexo = ceroIzq(p.VALDSEXO, 1);
    const auto incapacitado = blancoDer(p.VALDINCAPACITADO, 1);
    if (sexo && incapacitado) c[48] = *sexo + "000000" + *incapacitado;
  }
  {
    const auto primero = blancoDer(p.VALDPRIMERTRABAJ, 1);
    const auto grado = ceroIzq(p.VALDGRADOMINUSVA, 2);
    if (primero && grado) c[49] = *primero + *grado;
  }
  {
    const auto control = ceroIzq(amdPorPosiciones(p.VALDFECHACONTROL), 8);
    if (control) {
      std::string exclusion;
      for (std::size_t i = 1; i <= 3; ++i) exclusion += llenaDer(medio(p.VALDEXLUSIONSOCIAL, i, 1), 1, ' ');
      c[50] = *control + exclusion;
    }
  }
  // DAM
  c[51] = "DAM";
  pon(c[52], ceroIzq(amdPorPosiciones(p.VALDFECHAINICIO), 8));
  pon(c[53], blancoDer(p.VALDINDISUBPARCIAL, 1));
  pon(c[54], ceroIzq(izquierda(recorta(p.VALDRELAEXPECIAL), 4), 4));
  pon(c[55], ceroIzq(p.VALDNUSSTRABSUST, 12));
  c[56] = causaSustitucion(p.VALDCAUSASUSTITU);
  c[57] = blancos(40);
}

std::array<std::string, 6> lineasTrabajador(const FilaAfiliacion& fila) {
  auto une = [&](int desde, int hasta) {
    std::string linea;
    for (int i = desde; i <= hasta; ++i) linea += fila[static_cast<std::size_t>(i)];
    return linea;
  };
  return {une(2, 12), une(13, 17), une(18, 28), une(29, 32), une(33, 50), une(51, 57)};
}

std::string lineaEMPAFI(std::string_view A1, std::string_view A8, std::string_view EB12) {
  const std::string provincia = izquierda(A1, 2);
  const std::string numero = numeroCuenta(A1).value_or("");
  const std::string tipo = valorNumerico(izquierda(recorta(A8), 1)) == 0 ? "9   " : "1   ";
  return cabeceraEMP(EB12) + provincia + numero + tipo + identificadorRelleno(A8).value_or("") + "  0111" +
         provincia + numero + blancos(17);
}

std::string lineaPieAFI(const PaginaIntercambio& pagina, std::string_view CLAVEAUTORIZA,
                        std::string_view CLAVESILCON, std::string_view fecha, std::string_view hora, int C, int W) {
  const int T = 2 + 2 * C + 6 * W + 1;
  return "ETFAFI31WS342" + claveParaPieAFI(CLAVEAUTORIZA) + claveParaPieAFI(CLAVESILCON) + std::string(fecha) +
         std::string(hora) + recorta(pagina.Text8) + "AFIN" + caracterModo(pagina.modo) +
         campoIzq(std::to_string(C), 5, '0').value_or("") + campoIzq(std::to_string(T), 8, '0').value_or("") + "   ";
}

// ---- The module ---------------------------------------------------------------------------------

void cargaAFILIA(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi) {
  afi.inicio = programa.marca();
  programa.g.COMADECIMAL = pruebaComaDecimal(programa.separadores());
  pagina.Label19 = "para " + mayusculas(recorta(programa.g.EMISORNOMBRE));
  programa.almacenes.ABREMAESTROS();
  LEEPENDIENTES(programa, afi);
  LINEAPIE(programa, pagina, afi);
}

namespace {

PendienteAfi pendienteDe(Programa& programa, const Consulta& q) {
  Almacenes& a = programa.almacenes;
  PendienteAfi p;
  p.VALDEMP = q.texto("VALDEMP");
  p.VALDTRA = q.texto("VALDTRA");
  p.VALDORTIPO = q.texto("VALDORTIPO");
  p.SITU = q.texto("SITU");
  p.VALDNACIONALIDAD = q.texto("VALDNACIONALIDAD");
  p.VALDCONDIDESEM = q.texto("VALDCONDIDESEM");
  p.VALDMUJERSUBRE = q.texto("VALDMUJERSUBRE");
  p.VALDSEXO = q.texto("VALDSEXO");
  p.VALDINCAPACITADO = q.texto("VALDINCAPACITADO");
  p.VALDPRIMERTRABAJ = q.texto("VALDPRIMERTRABAJ");
  p.VALDGRADOMINUSVA = q.texto("VALDGRADOMINUSVA");
  p.VALDFECHACONTROL = q.texto("VALDFECHACONTROL");
  p.VALDFECHAINICIO = q.texto("VALDFECHAINICIO");
  p.VALDINDISUBPARCIAL = q.texto("VALDINDISUBPARCIAL");
  p.VALDRELAEXPECIAL = q.texto("VALDRELAEXPECIAL");
  p.VALDNUSSTRABSUST = q.texto("VALDNUSSTRABSUST");
  p.VALDCAUSASUSTITU = q.texto("VALDCAUSASUSTITU");
  p.VALDEXLUSIONSOCIAL = q.texto("VALDEXLUSIONSOCIAL");
  p.VALDIAS = q.numero("VALDIAS");
  p.COEF = q.numero("COEF");
  Tabla& wk = a.WK;
  p.TRA2 = wk.texto("TRA2");
  p.TRA3 = wk.texto("TRA3");
  p.TRA4 = wk.texto("TRA4");
  p.TRA5 = wk.texto("TRA5");
  p.TRA9 = wk.texto("TRA9");
  p.TRA14 = wk.texto("TRA14");
  p.TRA15 = wk.texto("TRA15");
  p.TRA51 = wk.texto("TRA51");
  p.TRA1110 = wk.texto("TRA1110");
  p.TRA1710 = wk.texto("TRA1710");
  p.BAJ10 = wk.texto("BAJ10");
  p.A5 = a.ESA.texto("A5");
  if (a.TDOCUMENTO.indice("TIPDOCUnum") && a.TDOCUMENTO.busca("=", {p.VALDEMP, p.VALDTRA})) {
    const double tipo = a.TDOCUMENTO.numero("TIPDOIDE");
    p.tipoDocumento = textoGeneral(tipo == 0 ? 1 : tipo);
  }
  if (a.CONTRA.indice("CNNU") && a.CONTRA.busca("=", {recorta(wk.texto("tra21"))}))
    p.claveContrato = izquierda(recorta(a.CONTRA.texto("CONTSEGSOC")), 3);
  return p;
}

// What became of a row of the working grid at the load.
enum class EstadoFila { Vacia, Completa, SinEmpresa, SinTrabajador };

std::string cuantos(std::size_t n, std::string_view uno, std::string_view varios) {
  return std::to_string(n) + " " + std::string(n == 1 ? uno : varios);
}

// The warning of the rows left out of the file: each company and worker, up to a
// screenful, then how many more.
std::string textoFuera(const std::vector<PendienteFuera>& fuera) {
  constexpr std::size_t nombrados = 30;
  std::string texto = fuera.size() == 1
                          ? std::string("No va en el fichero de afiliación 1 trabajador pendiente, que sigue en la "
                                        "lista de pendientes:"_cp)
                          : std::string("No van en el fichero de afiliación "_cp) + std::to_string(fuera.size()) +
                                " trabajadores pendientes, que siguen en la lista de pendientes:";
  for (std::size_t i = 0; i < fuera.size() && i < nombrados; ++i) {
    const ClavePendiente& c = fuera[i].clave;
    const std::string empresa = recorta(c.VALDEMP).empty() ? "(en blanco)" : recorta(c.VALDEMP);
    texto += "\nEmpresa " + empresa + ", trabajador " + recorta(c.VALDTRA) +
             (fuera[i].motivo == MotivoFuera::SinEmpresa
                  ? std::string(": la empresa no está en el fichero de empresas."_cp)
                  : std::string(": el trabajador no está en el fichero de trabajadores."_cp));
  }
  if (fuera.size() > nombrados) texto += "\nY " + std::to_string(fuera.size() - nombrados) + std::string(" más."_cp);
  return texto;
}

// The rows of the grid from VALDORTA, in table order, each joined with its worker and
// its company. Returns what became of each row.
std::vector<EstadoFila> leeFilas(Programa& programa, AFILIA& afi) {
  Almacenes& a = programa.almacenes;
  std::vector<EstadoFila> estado(1, EstadoFila::Vacia);
  try {
    const std::int64_t registros = a.VALDORTA.cuenta();
    const std::size_t filas = static_cast<std::size_t>(std::max<std::int64_t>(registros + 10, 50));
    afi.GRID1.resize(filas + 1);
    afi.Grid2.resize(filas + 1);
    auto q = a.acuvaldor.consulta("SELECT * FROM VALDORTA ORDER BY rowid");
    a.WK.indice("WKNU");
    a.ESA.indice("EMNU");
    for (std::size_t r = 1; q.siguiente(); ++r) {
      if (r >= afi.GRID1.size()) afi.GRID1.resize(r + 1), afi.Grid2.resize(r + 1);
      FilaAfiliacion& fila = afi.GRID1[r];
      fila[0] = q.texto("VALDEMP");
      fila[1] = q.texto("VALDTRA");
      // A row whose company or worker is gone keeps its codes in the grid, and no lines.
      if (!a.ESA.busca("=", {fila[0]})) {
        estado.push_back(EstadoFila::SinEmpresa);
      } else if (!a.WK.busca("=", {fila[0], fila[1]})) {
        estado.push_back(EstadoFila::SinTrabajador);
      } else {
        columnasTrabajador(pendienteDe(programa, q), fila);
        estado.push_back(EstadoFila::Completa);
      }
    }
  } catch (const ErrorAlmacen& e) {
    // The list stops where the store failed; the user hears why.
    programa.dialogos().mensaje(tituloAFILIA(), e.what(), Icono::Exclamacion);
  }
  // A row cut short by the failure has its codes and nothing else: it is left as blank.
  estado.resize(afi.GRID1.size(), EstadoFila::Vacia);
  return estado;
}

// Grid2 from GRID1: the companies in the order of their first worker, with their EMP
// and RZS lines when the company table has them.
void leeEmpresas(Programa& programa, AFILIA& afi) {
  std::vector<std::string> codigos;
  for (std::size_t r = 1; r < afi.GRID1.size(); ++r) {
    const std::string codigo = recorta(afi.GRID1[r][0]);
    if (!codigo.empty() && std::find(codigos.begin(), codigos.end(), codigo) == codigos.end()) codigos.push_back(codigo);
  }
  afi.LINEASEMP.assign(afi.Grid2.size(), "");
  afi.LINEASRZS.assign(afi.Grid2.size(), "");
  for (std::size_t i = 1; i <= codigos.size(); ++i) {
    auto& fila = afi.Grid2[i];
    fila[0] = codigos[i - 1];
    const auto empresa = buscaEmpresa(programa.almacenes.ESA, codigos[i - 1]);
    if (!empresa) continue;
    fila[1] = lineaEMPAFI(empresa->A1, empresa->A8, empresa->EB12);
    fila[2] = lineaRZS(*empresa, programa.g.TEXTOPLANO);
    programa.g.LINEAEMPAFI = fila[1];
    programa.g.LINEARZSAFI = fila[2];
    afi.LINEASEMP[i] = fila[1];
    afi.LINEASRZS[i] = fila[2];
  }
}

// The six lines of every complete row; each company's block of workers; the files.
// A worker goes into a file only under its company's lines: a company without them
// leaves its workers out.
void preparaFicheros(AFILIA& afi, std::vector<EstadoFila>& estado) {
  for (LineasAfi* l : {&afi.LINEASTRA, &afi.LINEASAYN, &afi.LINEASDOM, &afi.LINEASLDD, &afi.LINEASFAB, &afi.LINEASDAM})
    l->assign(afi.GRID1.size(), "");
  std::map<std::string, std::size_t> filaEmpresa;
  std::vector<BloqueAfi> bloques;
  for (std::size_t i = 1; i < afi.Grid2.size() && !afi.Grid2[i][0].empty(); ++i) {
    filaEmpresa.emplace(afi.Grid2[i][0], i);
    bloques.push_back({i, {}});
  }
  for (std::size_t r = 1; r < afi.GRID1.size(); ++r) {
    if (estado[r] != EstadoFila::Completa) continue;
    const auto empresa = filaEmpresa.find(recorta(afi.GRID1[r][0]));
    if (empresa == filaEmpresa.end() || recorta(afi.LINEASEMP[empresa->second]).empty()) {
      estado[r] = EstadoFila::SinEmpresa;
      continue;
    }
    const std::size_t i = empresa->second;
    const auto lineas = lineasTrabajador(afi.GRID1[r]);
    afi.LINEASTRA[r] = lineas[0];
    afi.LINEASAYN[r] = lineas[1];
    afi.LINEASDOM[r] = lineas[2];
    afi.LINEASLDD[r] = lineas[3];
    afi.LINEASFAB[r] = lineas[4];
    afi.LINEASDAM[r] = lineas[5];
    bloques[i - 1].trabajadores.push_back(r);
  }
  afi.ficheros = repartoAFI(bloques);
}

}  // namespace

void LEEPENDIENTES(Programa& programa, AFILIA& afi) {
  programa.almacenes.ABREACUVALDOR();
  afi.GRID1.assign(1, cabecerasAFI());
  afi.Grid2.assign(1, {"Afi. Emp", "EMP", "RZS"});
  std::vector<EstadoFila> estado = leeFilas(programa, afi);
  leeEmpresas(programa, afi);
  preparaFicheros(afi, estado);

  afi.fuera.clear();
  for (std::size_t r = 1; r < afi.GRID1.size(); ++r)
    if (estado[r] == EstadoFila::SinEmpresa || estado[r] == EstadoFila::SinTrabajador)
      afi.fuera.push_back({{afi.GRID1[r][0], afi.GRID1[r][1]},
                           estado[r] == EstadoFila::SinEmpresa ? MotivoFuera::SinEmpresa : MotivoFuera::SinTrabajador});
  if (!afi.fuera.empty()) programa.dialogos().mensaje(tituloAFILIA(), textoFuera(afi.fuera), Icono::Exclamacion);
  afi.generarActivo = afi.trabajadores() > 0;
}

namespace {

// The page of one file of a run: the page itself under the file's name, which its
// label line, its trailer and its path carry.
PaginaIntercambio paginaDeFichero(const PaginaIntercambio& pagina, std::string_view nombre) {
  PaginaIntercambio p = pagina;
  p.Text8 = std::string(nombre);
  p.alCambiarGuia = nullptr;
  return p;
}

std::string pieDeFichero(const PaginaIntercambio& pagina, const PieAfi& pie, const FicheroAfi& fichero) {
  return lineaPieAFI(pagina, pie.CLAVEAUTORIZA, pie.CLAVESILCON, pie.fecha, pie.hora, fichero.empresas(),
                     fichero.trabajadores());
}

}  // namespace

void LINEAPIE(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi) {
  REGINTERCAMBIO registro = registroEnBlanco();
  {
    FicheroAjustes fichero(programa.carpetas().trabajo);
    fichero.lee(registro);
  }
  const Momento m = programa.ahora();
  auto dos = [](int n) { return llenaIzq(std::to_string(n), 2, '0'); };
  afi.pie = {recorta(registro.CLAVEAUTORIZA), recorta(registro.CLAVESILCON),
             std::to_string(m.ano) + dos(m.mes) + dos(m.dia), dos(m.hora) + dos(m.minuto)};
  afi.LINEAPIEAFI = pieDeFichero(pagina, afi.pie, afi.ficheros.empty() ? FicheroAfi{} : afi.ficheros.front());
}

std::string textoNadaQueEnviar(const AFILIA& afi) {
  if (afi.fuera.empty()) return std::string("No hay trabajadores pendientes de afiliación."_cp);
  return std::string("Ninguno de los trabajadores pendientes de afiliación puede ir en el fichero: no se escribe "
                     "ningún fichero."_cp);
}

namespace {

namespace fs = std::filesystem;

// The names of the `n` files of a run: the page's name, then the names that follow it
// (nombreSiguiente) whose file is not in the folder, in any case of its letters, or is
// one that this module wrote before (`propios`: generating again writes the same files
// again). So no other file is overwritten but the one the page names, as with a single
// file. Fewer names when the count runs out.
std::vector<std::string> nombresDeFicheros(const Programa& programa, const PaginaIntercambio& pagina, std::size_t n,
                                           const std::vector<std::string>& propios) {
  std::vector<std::string> nombres{recorta(pagina.Text8)};
  std::optional<std::string> nombre = nombres.front();
  while (nombres.size() < n && (nombre = nombreSiguiente(*nombre))) {
    const std::string ruta = rutaFicheroAFI(programa.g.RUTAWS, paginaDeFichero(pagina, *nombre));
    if (std::find(propios.begin(), propios.end(), ruta) != propios.end() || !ficheroPresente(ruta, programa.entornoWine))
      nombres.push_back(*nombre);
  }
  return nombres;
}

std::string textoVariosFicheros(const AFILIA& afi, const std::vector<std::string>& rutas) {
  std::string texto = std::string("Los trabajadores pendientes no caben en un solo fichero de afiliación (cada uno "
                                  "lleva como máximo 1.000 trabajadores y 500 empresas): se han escrito "_cp) +
                      std::to_string(rutas.size()) + " ficheros, cada uno con su pie:";
  for (std::size_t k = 0; k < rutas.size(); ++k) {
    const FicheroAfi& f = afi.ficheros[k];
    texto += "\n" + rutas[k] + " (" + cuantos(static_cast<std::size_t>(f.empresas()), "empresa", "empresas") + ", " +
             cuantos(static_cast<std::size_t>(f.trabajadores()), "trabajador", "trabajadores") + ")";
  }
  return texto;
}

// The lines of one file in order, each told to `registro` with where it comes from: its
// two label lines, the block of each of its companies, its trailer. `alTrabajador` is
// told after each worker.
void recorreFicheroAfi(const AFILIA& afi, const FicheroAfi& contenido, std::string_view ETI, std::string_view SIL,
                       std::string_view pie, const std::function<void(std::string_view, std::string_view)>& registro,
                       const std::function<void()>& alTrabajador) {
  registro(ETI, "ETI, la cabecera del fichero,");
  registro(SIL, "SIL, la de las claves,");
  for (const BloqueAfi& b : contenido.bloques) {
    const std::string empresa = " de la empresa " + recorta(medio(afi.LINEASEMP[b.empresa], 8, 11));
    registro(afi.LINEASEMP[b.empresa], "EMP" + empresa);
    registro(afi.LINEASRZS[b.empresa], "RZS" + empresa);
    for (const std::size_t j : b.trabajadores) {
      const std::string trabajador = " del trabajador " + recorta(afi.GRID1[j][1]) + " de la empresa " +
                                     recorta(afi.GRID1[j][0]);
      for (const LineasAfi* l :
           {&afi.LINEASTRA, &afi.LINEASAYN, &afi.LINEASDOM, &afi.LINEASLDD, &afi.LINEASFAB, &afi.LINEASDAM})
        registro((*l)[j], izquierda((*l)[j], 3) + trabajador);
      alTrabajador();
    }
  }
  registro(pie, "ETF, el pie del fichero,");
}

void imprimeFicheroAfi(FicheroRegistros& fichero, const AFILIA& afi, const FicheroAfi& contenido,
                       std::string_view ETI, std::string_view SIL, std::string_view pie,
                       const std::function<void()>& alTrabajador) {
  recorreFicheroAfi(
      afi, contenido, ETI, SIL, pie,
      [&](std::string_view linea, std::string_view donde) { fichero.imprimeRegistro(linea, donde); }, alTrabajador);
}

// Every file of the run written whole beside its name, then all of them put under their
// names. On a failure (ErrorFichero) no file of the run is left: those already under
// their names are removed again.
void escribeFicherosAfi(Programa& programa, const PaginaIntercambio& pagina, AFILIA& afi,
                        const std::vector<std::string>& nombres, const std::vector<std::string>& rutas) {
  // The errors shown since this "Generar" began, and the store failures since the list
  // was read: either leaves no file.
  const MarcaTrabajo inicio{programa.marca().errores, afi.inicio.fallos};
  const int total = afi.trabajadores();
  int hechos = 0;
  const auto alTrabajador = [&] {
    const int progreso = std::min(100, 100 * ++hechos / total);
    if (progreso != afi.progreso) programa.dialogos().progreso(afi.progreso = progreso, "Generando fichero:", "");
    // A stop asked while this worker was written ends the run here, before any file of
    // it takes its name: the temporary files go with `ficheros`.
    programa.atiendeParada();
  };
  std::deque<FicheroRegistros> ficheros;  // a deque: its elements never move
  for (std::size_t k = 0; k < afi.ficheros.size(); ++k) {
    // The first file's label line is the one the page made; the others carry their names.
    const PaginaIntercambio paginaK = paginaDeFichero(pagina, nombres[k]);
    const std::string ETI = k == 0 ? programa.g.LINEAETI : LINEAETI(paginaK, programa.registro);
    ficheros.emplace_back(rutaNativa(rutas[k], programa.entornoWine));
    imprimeFicheroAfi(ficheros.back(), afi, afi.ficheros[k], ETI, programa.g.LINEASIL,
                      pieDeFichero(paginaK, afi.pie, afi.ficheros[k]), alTrabajador);
  }
  if (const auto motivo = programa.motivoDeFallo(inicio)) throw ErrorFichero(*motivo);
  std::vector<fs::path> puestos;
  try {
    for (std::size_t k = 0; k < ficheros.size(); ++k) {
      ficheros[k].confirma(programa.revisaEscrito);
      puestos.push_back(rutaNativa(rutas[k], programa.entornoWine));
    }
  } catch (const ErrorFichero&) {
    for (const fs::path& f : puestos) {
      std::error_code ec;
      fs::remove(f, ec);
    }
    throw;
  }
}

}  // namespace

std::vector<std::string> ESCRIBEFICHERO(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi,
                                        FormulariosIntercambio& formularios) {
  Globales& g = programa.g;
  Dialogos& dialogos = programa.dialogos();
  afi.progreso = 0;
  programa.hallazgosEscritos.clear();
  const std::vector<std::string> anteriores = std::exchange(afi.escritos, {});
  afi.enviados.clear();
  programa.retiraParada();
  if (afi.ficheros.empty()) return {};
  if (!destinoIntercambio(programa, rutaFicheroAFI(g.RUTAWS, pagina))) return {};
  const std::vector<std::string> nombres = nombresDeFicheros(programa, pagina, afi.ficheros.size(), anteriores);
  if (nombres.size() < afi.ficheros.size()) {
    dialogos.mensaje(tituloAFILIA(),
                     "Los trabajadores pendientes necesitan " + std::to_string(afi.ficheros.size()) +
                         std::string(" ficheros de afiliación y no quedan nombres libres después de "_cp) +
                         nombres.back() + ". Escriba otro nombre de fichero.",
                     Icono::Critico);
    return {};
  }
  std::vector<std::string> rutas;
  for (const std::string& nombre : nombres) rutas.push_back(rutaFicheroAFI(g.RUTAWS, paginaDeFichero(pagina, nombre)));
  try {
    escribeFicherosAfi(programa, pagina, afi, nombres, rutas);
  } catch (const TrabajoCancelado& e) {
    // Nothing of the run stands under a name, older files of those names are as they
    // were, and nothing is remembered as sent.
    const std::string texto = afi.ficheros.size() == 1
                                  ? std::string(e.what())
                                  : std::string("Proceso cancelado por el usuario. No se ha generado ninguno de los "_cp) +
                                        std::to_string(afi.ficheros.size()) + " ficheros.";
    dialogos.mensaje(tituloAFILIA(), texto, Icono::Informacion);
    return {};
  } catch (const ErrorFichero& e) {
    dialogos.mensaje(tituloAFILIA(), conFicheroNoGenerado(e.what()), Icono::Critico);
    return {};
  }
  afi.progreso = 100;
  dialogos.progreso(100, "Generando fichero:", "");

  afi.escritos = rutas;
  for (const FicheroAfi& f : afi.ficheros)
    for (const BloqueAfi& b : f.bloques)
      for (const std::size_t j : b.trabajadores) afi.enviados.push_back({afi.GRID1[j][0], afi.GRID1[j][1]});
  g.FICHEROSALIDA = rutas.front();
  if (rutas.size() > 1) dialogos.mensaje(tituloAFILIA(), textoVariosFicheros(afi, rutas), Icono::Informacion);

  // The question is the user's turn: no hourglass over it.
  dialogos.puntero(Puntero::Normal);
  if (dialogos.pregunta(g.FICHEROSALIDA, conHallazgos(programa, preguntaEditarAfi())) && !g.FICHEROSALIDA.empty()) {
    g.EDITAAFI = 1;
    formularios.EDITOR();
  }
  return rutas;
}

std::optional<std::string> avisoAntesDeGenerar(const Programa& programa, const PaginaIntercambio& pagina,
                                               const AFILIA& afi) {
  std::string aviso;
  if (recorta(pagina.Text10).empty())
    aviso = std::string("La clave (Clave) de la línea SIL está en blanco.\n"_cp);
  for (std::size_t k = 0; k < afi.ficheros.size(); ++k) {
    std::vector<std::string> lineas;
    recorreFicheroAfi(
        afi, afi.ficheros[k], programa.g.LINEAETI, programa.g.LINEASIL, pieDeFichero(pagina, afi.pie, afi.ficheros[k]),
        [&](std::string_view linea, std::string_view) { lineas.emplace_back(linea); }, [] {});
    if (const auto faltas = faltasDeLineas(lineas, TipoIntercambio::AFI)) {
      aviso.append(std::string("Las líneas del fichero"_cp));
      if (afi.ficheros.size() > 1) aviso.append(" ").append(std::to_string(k + 1));
      aviso.append(std::string(" no pasan la revisión:\n"_cp)).append(*faltas);
    }
  }
  if (aviso.empty()) return std::nullopt;
  return aviso.append(std::string("\n¿Desea generar el fichero de todos modos?"_cp));
}

void BORRAMETODOSREG(Programa& programa, const std::vector<ClavePendiente>& enviados) {
  Almacenes& a = programa.almacenes;
  Dialogos& dialogos = programa.dialogos();
  try {
    if (!a.acuvaldor.abierto()) a.ABREACUVALDOR();
    if (a.acuvaldor.soloLectura()) {
      // The payroll product's own Jet file: its list is emptied there, never here.
      dialogos.mensaje(tituloPendientes(), textoPendientesDelProgramaDeNominas(), Icono::Informacion);
    } else if (enviados.empty()) {
      dialogos.mensaje(tituloPendientes(),
                       "No se ha escrito ningún fichero de afiliación en este módulo: no se borra ningún trabajador "
                       "de la lista de pendientes."_cp,
                       Icono::Informacion);
    } else {
      // Only the rows the files carry: a row left out, or added since the list was
      // read, stays for the next file.
      std::int64_t borrados = 0;
      {
        Transaccion t(a.acuvaldor);
        for (const ClavePendiente& c : enviados)
          borrados +=
              a.acuvaldor.ejecuta("DELETE FROM VALDORTA WHERE VALDEMP = ? AND VALDTRA = ?", {c.VALDEMP, c.VALDTRA});
        t.confirma();
      }
      const std::int64_t quedan = a.VALDORTA.cuenta();
      dialogos.mensaje(tituloPendientes(),
                       std::string("Se han borrado de la lista de pendientes de afiliación "_cp) +
                           cuantos(static_cast<std::size_t>(borrados), "trabajador", "trabajadores") +
                           ", los que van en los ficheros escritos. Quedan " +
                           cuantos(static_cast<std::size_t>(quedan), "trabajador pendiente", "trabajadores pendientes") +
                           ".",
                       Icono::Informacion);
    }
  } catch (const ErrorAlmacen& e) {
    dialogos.mensaje(tituloPendientes(), e.what(), Icono::Critico);
  }
  a.CIERRAACUVALDOR();
}

void salirAFILIA(Programa& programa, const AFILIA& afi) {
  if (programa.dialogos().pregunta(tituloPendientes(), preguntaBorrarPendientes(), true))
    BORRAMETODOSREG(programa, afi.enviados);
}

void nuevoAFILIA(PaginaIntercambio& pagina) {
  pagina.SSPanel2Visible = true;
  pagina.Option1Afiliacion = false;
}

}  // namespace valdor
