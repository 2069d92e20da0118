#include "afiliacion/afiliacion.h"

#include <algorithm>

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
std::string_view tituloPendientes() { return "PRODUCTORES PENDIENTES DE AFILIACION"; }
std::string_view preguntaBorrarPendientes() {
  return "Si ha realizado el envío de un fichero de afiliación debería borrar la base de datos de productores "
         "pendientes de envío. ¿Desea que Dortek borre ahora la base de datos?"_cp;
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

int AFILIA::trabajadores() const {
  int n = 0;
  for (std::size_t r = 1; r < GRID1.size(); ++r) n += recorta(GRID1[r][0]).empty() ? 0 : 1;
  return n;
}

int AFILIA::empresas() const {
  int n = 0;
  for (std::size_t r = 1; r < Grid2.size(); ++r) n += recorta(Grid2[r][0]).empty() ? 0 : 1;
  return n;
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

}  // namespace

void LEEPENDIENTES(Programa& programa, AFILIA& afi) {
  Almacenes& a = programa.almacenes;
  a.ABREACUVALDOR();
  for (LineasAfi* l : {&afi.LINEASTRA, &afi.LINEASAYN, &afi.LINEASDOM, &afi.LINEASLDD, &afi.LINEASFAB, &afi.LINEASDAM})
    for (int i = 1; i <= FILASMAXIMAS; ++i) (*l)[static_cast<std::size_t>(i)] = "0";
  afi.GRID1.assign(1, cabecerasAFI());
  afi.Grid2.assign(1, {"Afi. Emp", "EMP", "RZS"});
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
      // A worker or a company that is gone keeps its codes and no lines.
      if (!a.WK.busca("=", {fila[0], fila[1]}) || !a.ESA.busca("=", {fila[0]})) continue;
      columnasTrabajador(pendienteDe(programa, q), fila);
      if (r <= FILASMAXIMAS) {
        const auto lineas = lineasTrabajador(fila);
        afi.LINEASTRA[r] = lineas[0];
        afi.LINEASAYN[r] = lineas[1];
        afi.LINEASDOM[r] = lineas[2];
        afi.LINEASLDD[r] = lineas[3];
        afi.LINEASFAB[r] = lineas[4];
        afi.LINEASDAM[r] = lineas[5];
      }
    }
  } catch (const ErrorAlmacen& e) {
    // The list stops where the store failed; the user hears why.
    programa.dialogos().mensaje(tituloAFILIA(), e.what(), Icono::Exclamacion);
  }

  // The companies in the order of their first worker.
  std::vector<std::string> codigos;
  for (std::size_t r = 1; r < afi.GRID1.size(); ++r) {
    const std::string codigo = recorta(afi.GRID1[r][0]);
    if (!codigo.empty() && std::find(codigos.begin(), codigos.end(), codigo) == codigos.end()) codigos.push_back(codigo);
  }
  for (std::size_t i = 0; i < codigos.size(); ++i) afi.Grid2[i + 1][0] = codigos[i];

  for (int i = 1; i <= FILASMAXIMAS; ++i) {
    afi.LINEASEMP[static_cast<std::size_t>(i)].clear();
    afi.LINEASRZS[static_cast<std::size_t>(i)].clear();
  }
  for (std::size_t i = 1; i <= codigos.size(); ++i) {
    const auto empresa = buscaEmpresa(a.ESA, codigos[i - 1]);
    if (!empresa) continue;
    auto& fila = afi.Grid2[i];
    fila[1] = lineaEMPAFI(empresa->A1, empresa->A8, empresa->EB12);
    fila[2] = lineaRZS(*empresa, programa.g.TEXTOPLANO);
    programa.g.LINEAEMPAFI = fila[1];
    programa.g.LINEARZSAFI = fila[2];
    if (i <= FILASMAXIMAS) {
      afi.LINEASEMP[i] = fila[1];
      afi.LINEASRZS[i] = fila[2];
    }
  }
  afi.generarActivo = afi.trabajadores() > 0;
}

void LINEAPIE(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi) {
  REGINTERCAMBIO registro = registroEnBlanco();
  {
    FicheroAjustes fichero(programa.carpetas().trabajo);
    fichero.lee(registro);
  }
  const Momento m = programa.ahora();
  auto dos = [](int n) { return llenaIzq(std::to_string(n), 2, '0'); };
  afi.LINEAPIEAFI = lineaPieAFI(pagina, recorta(registro.CLAVEAUTORIZA), recorta(registro.CLAVESILCON),
                                std::to_string(m.ano) + dos(m.mes) + dos(m.dia), dos(m.hora) + dos(m.minuto),
                                afi.empresas(), afi.trabajadores());
}

std::optional<std::string> ESCRIBEFICHERO(Programa& programa, PaginaIntercambio& pagina, AFILIA& afi,
                                          FormulariosIntercambio& formularios) {
  Globales& g = programa.g;
  Dialogos& dialogos = programa.dialogos();
  afi.progreso = 0;
  const auto destino = destinoIntercambio(programa, rutaFicheroAFI(g.RUTAWS, pagina));
  if (!destino) return std::nullopt;

  int escritos = 0;
  try {
    FicheroRegistros fichero(*destino);
    auto imprime = [&](std::string_view linea) { fichero.imprime(izquierda(linea, 70)); };
    imprime(g.LINEAETI);
    imprime(g.LINEASIL);
    for (int i = 1; i <= EMPRESASMAXIMAS; ++i) {
      afi.progreso = std::min(100, 100 * i / EMPRESASMAXIMAS);
      const std::string& emp = afi.LINEASEMP[static_cast<std::size_t>(i)];
      if (!recorta(emp).empty()) imprime(emp);
      if (!recorta(afi.LINEASRZS[static_cast<std::size_t>(i)]).empty()) imprime(afi.LINEASRZS[static_cast<std::size_t>(i)]);
      const std::string codigo = medio(emp, 8, 11);
      for (std::size_t j = 1; j < afi.GRID1.size() && j <= FILASMAXIMAS; ++j) {
        const std::string& col0 = afi.GRID1[j][0];
        if (valorNumerico(col0) > 0 && recorta(col0) == codigo) {
          for (const LineasAfi* l : {&afi.LINEASTRA, &afi.LINEASAYN, &afi.LINEASDOM, &afi.LINEASLDD, &afi.LINEASFAB,
                                     &afi.LINEASDAM})
            imprime((*l)[j]);
          ++escritos;
        }
      }
      if (i % 50 == 0) dialogos.progreso(afi.progreso, "Generando fichero:", "");
    }
    imprime(afi.LINEAPIEAFI);
    fichero.confirma();
  } catch (const ErrorFichero& e) {
    dialogos.mensaje(tituloAFILIA(), e.what(), Icono::Critico);
    return std::nullopt;
  }
  dialogos.progreso(100, "Generando fichero:", "");

  // The arrays hold 1,000 workers and the file takes 500 companies: what is beyond is
  // told, never dropped in silence.
  const int fuera = afi.trabajadores() - escritos;
  if (fuera > 0 || afi.empresas() > EMPRESASMAXIMAS) {
    std::string texto = "El fichero no lleva ";
    if (fuera > 0) texto += std::to_string(fuera) + " de los " + std::to_string(afi.trabajadores()) +
                            " trabajadores pendientes";
    if (fuera > 0 && afi.empresas() > EMPRESASMAXIMAS) texto += " ni ";
    if (afi.empresas() > EMPRESASMAXIMAS)
      texto += std::to_string(afi.empresas() - EMPRESASMAXIMAS) + " de las " + std::to_string(afi.empresas()) +
               " empresas";
    texto += std::string(": caben 1.000 trabajadores y 500 empresas por fichero, y los de una empresa que no está "
                         "en el fichero de empresas no se escriben. Envíe el resto en otro fichero; los recuentos "
                         "del pie cuentan a todos."_cp);
    dialogos.mensaje(tituloAFILIA(), texto, Icono::Exclamacion);
  }

  // The question is the user's turn: no hourglass over it.
  dialogos.puntero(Puntero::Normal);
  if (dialogos.pregunta(g.FICHEROSALIDA, preguntaEditarAfi()) && !g.FICHEROSALIDA.empty()) {
    g.EDITAAFI = 1;
    formularios.EDITOR();
  }
  return g.FICHEROSALIDA;
}

void BORRAMETODOSREG(Programa& programa) {
  Almacenes& a = programa.almacenes;
  try {
    if (!a.acuvaldor.abierto()) a.ABREACUVALDOR();
    if (a.acuvaldor.soloLectura()) {
      // The payroll product's own Jet file: its list is emptied there, never here.
      programa.dialogos().mensaje(tituloPendientes(), textoPendientesDelProgramaDeNominas(), Icono::Informacion);
      a.CIERRAACUVALDOR();
      return;
    }
    Transaccion t(a.acuvaldor);
    a.acuvaldor.ejecuta("DELETE FROM VALDORTA");
    t.confirma();
  } catch (const ErrorAlmacen& e) {
    programa.dialogos().mensaje(tituloPendientes(), e.what(), Icono::Critico);
  }
  a.CIERRAACUVALDOR();
}

void salirAFILIA(Programa& programa) {
  if (programa.dialogos().pregunta(tituloPendientes(), preguntaBorrarPendientes(), true)) BORRAMETODOSREG(programa);
}

void nuevoAFILIA(PaginaIntercambio& pagina) {
  pagina.SSPanel2Visible = true;
  pagina.Option1Afiliacion = false;
}

}  // namespace valdor
