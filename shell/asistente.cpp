#include "shell/asistente.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

#include "shell/programa.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace fs = std::filesystem;

// ---- Texts ----------------------------------------------------------------------------

std::string_view textoBienvenida() {
  return "Bienvenido al asistente para la remisión electrónica de documentos a la Seguridad Social. Por "
         "favor, indique en la barra superior si desea realizar un proceso de envío normal, en pruebas o de "
         "sustitución de otro. En este último caso deberá indicar el año, el mes y los números de serie, envío "
         "y documento del envío que sustituye. Una vez ultimado este proceso marque en la barra de opciones si desea "
         "remitir un mensaje de cotización (FAN) o uno de afiliación (AFI)."_cp;
}
std::string_view textoReferencia() {
  return "Indique la referencia del control de intercambio. (Nombre del fichero que se generará para el "
         "envío.) Pulse ACEPTAR una vez seleccionado. Recuerde que el nombre del fichero debe tener una "
         "longitud de 8 caracteres."_cp;
}
std::string_view textoVerificarFan() {
  return "Ahora puede verificar la sintaxis de su fichero FAN. Si lo desea puede abrir el editor para "
         "realizar variaciones."_cp;
}
std::string_view textoActivaWinsuite() {
  return "El asistente activará ahora el programa WINSUITE para la validación del envío en la ruta "_cp;
}
std::string_view tituloNombreNoValido() { return "NOMBRE DE FICHERO NO VÁLIDO"_cp; }
std::string_view textoNombreNoValido() {
  return "El nombre del fichero de intercambio no puede estar en blanco. Debe tener una longitud de ocho "
         "caracteres.";
}
std::string_view tituloExcluidas() { return "VALDOR+ - Sistema RED"; }
std::string_view textoLineaLarga() {
  return "Algunas líneas de trabajadores pasaban de 70 caracteres y se han cortado al guardarlas. Revise el "
         "fichero con el editor antes de enviarlo: un nombre, un documento o un convenio demasiado largos en "
         "los datos de la nómina pueden ser la causa."_cp;
}
std::string_view textoExcluidas() {
  return "Algunas empresas no cumplen los requisitos necesarios para procesar el fichero y su posterior "
         "envío a la Seguridad Social."_cp;
}
std::string_view preguntaEditarFan() {
  return "El asistente ha terminado de preparar su fichero .FAN. ¿Desea editar el fichero para verificar su "
         "sintaxis?"_cp;
}
std::string_view tituloValdor() { return "VALDOR+"; }

std::string conHallazgos(Programa& programa, std::string_view pregunta) {
  std::string texto = std::exchange(programa.hallazgosEscritos, {});
  if (!texto.empty()) texto.append("\n");
  return texto.append(pregunta);
}

// ---- The page -------------------------------------------------------------------------

void PaginaIntercambio::ponGuia(std::string_view texto) {
  Label3 = std::string(texto);
  if (alCambiarGuia) alCambiarGuia(Label3);
}

void PaginaIntercambio::marcaCotizacion() {
  Option1Cotizacion = true;
  Option1Afiliacion = false;
}

void PaginaIntercambio::marcaAfiliacion() {
  Option1Cotizacion = false;
  Option1Afiliacion = true;
}

void PaginaIntercambio::ponModo(Modo m) {
  modo = m;
  SSPanel4Visible = m == Modo::Sustitucion;
  if (!SSPanel4Visible) Text3 = Text4 = Text5 = Text6 = Text7 = "";
}

double pruebaComaDecimal(const Separadores& sistema) {
  // Under a comma locale the point of "28.8" reads as a thousands mark: 288.
  const std::string formateado = formateaTexto(textoGeneral(28.8), "   ##.####", sistema);
  return valorNumerico(formateado) > 30 ? 1 : 0;
}

void cargaAsistente(Programa& programa, PaginaIntercambio& pagina,
                    const std::function<void()>& muestraConfiguracion) {
  programa.g.COMADECIMAL = pruebaComaDecimal(programa.separadores());
  pagina.Label19 = "para " + mayusculas(recorta(programa.g.EMISORNOMBRE));
  pagina.ponGuia(textoBienvenida());
  bool vacio = false;
  {
    FicheroAjustes fichero(programa.carpetas().trabajo);
    vacio = fichero.vacio();
  }
  if (vacio && muestraConfiguracion) muestraConfiguracion();
  FicheroAjustes fichero(programa.carpetas().trabajo);
  fichero.lee(programa.registro);
  programa.g.RUTAWS = programa.registro.RUTAWINSUITE;
}

namespace {

std::string dosCifras(int n) { return llenaIzq(std::to_string(n), 2, '0'); }

// The page's name, or the first name after it whose file is not in the folder.
void primerNombreLibre(const Programa& programa, PaginaIntercambio& pagina) {
  if (nombreIntercambioRechazado(pagina.Text8)) return;
  std::optional<std::string> nombre = recorta(pagina.Text8);
  PaginaIntercambio prueba = pagina;
  prueba.alCambiarGuia = nullptr;
  while (nombre) {
    prueba.Text8 = *nombre;
    if (!ficheroExistente(programa, prueba)) {
      pagina.Text8 = *nombre;
      return;
    }
    nombre = nombreSiguiente(*nombre);
  }
}

}  // namespace

void preparaPagina(Programa& programa, PaginaIntercambio& pagina, bool cotizacion) {
  pagina.ponGuia(textoReferencia());
  pagina.Label10 = cotizacion ? "FAN" : "AFI";
  pagina.clavesAFIVisibles = !cotizacion;
  const Momento m = programa.ahora();
  pagina.Label12 = std::to_string(m.ano) + dosCifras(m.mes) + dosCifras(m.dia);
  pagina.Label13 = dosCifras(m.hora) + dosCifras(m.minuto);
  // "F" and ddmmyyhh is nine characters; the box keeps eight, so the last digit of the
  // hour is lost.
  const std::string completo = std::string("F").append(dosCifras(m.dia) + dosCifras(m.mes) + dosCifras(m.ano % 100) + dosCifras(m.hora));
  pagina.Text8 = izquierda(completo, ANCHONOMBREFICHERO);
  if (recorta(pagina.Text8).empty()) {
    programa.dialogos().mensaje(tituloNombreNoValido(), textoNombreNoValido(), Icono::Informacion);
    programa.g.PASOASISTENTE = 2;
  }
  pagina.Text8 = reglaNombre(pagina.Text8);
  primerNombreLibre(programa, pagina);
}

std::string reglaNombre(std::string_view nombre) {
  const std::string limpio = mayusculas(recorta(nombre));
  if (limpio.empty()) return limpio;
  return llenaDer(limpio, ANCHONOMBREFICHERO, '0');
}

namespace {

bool caracterDeNombre(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

bool nombreDeDispositivo(std::string_view nombre) {
  const std::string n = mayusculasAscii(nombre);
  if (n == "CON" || n == "PRN" || n == "AUX" || n == "NUL") return true;
  return n.size() == 4 && (n.starts_with("COM") || n.starts_with("LPT")) && n[3] >= '1' && n[3] <= '9';
}

// Why a trimmed name is refused, as the middle of the refusal; empty when it is taken.
std::string motivoRechazoNombre(std::string_view nombre) {
  if (nombre.empty()) return std::string("está en blanco"_cp);
  if (nombre.size() > ANCHONOMBREFICHERO) return "tiene " + std::to_string(nombre.size()) + " caracteres";
  for (const char c : nombre) {
    if (caracterDeNombre(c)) continue;
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) return std::string("lleva un carácter de control"_cp);
    return std::string("lleva el carácter «"_cp) + c + std::string("»"_cp);
  }
  if (nombreDeDispositivo(nombre)) return "es un nombre que Windows reserva para un dispositivo";
  return "";
}

}  // namespace

std::optional<std::string> nombreIntercambioRechazado(std::string_view nombre) {
  const std::string limpio = recorta(nombre);
  const std::string motivo = motivoRechazoNombre(limpio);
  if (motivo.empty()) return std::nullopt;
  return std::string("El nombre del fichero de intercambio «"_cp) + limpio + std::string("» no es válido: "_cp) +
         motivo +
         ". Ha de tener de 1 a 8 caracteres, solo letras de la A a la Z, cifras, guion (-) o guion bajo (_), y no "
         "puede ser un nombre reservado de Windows (CON, PRN, AUX, NUL, COM1 a COM9, LPT1 a LPT9).";
}

bool paginaLista(const PaginaIntercambio& pagina) {
  return (pagina.Option1Cotizacion || pagina.Option1Afiliacion) && !nombreIntercambioRechazado(pagina.Text8);
}

// ---- Free names and the files already there -----------------------------------------------

namespace {

bool esCifra(char c) { return c >= '0' && c <= '9'; }

// A number written in decimal digits, plus one; one digit more when it was all nines.
std::string masUno(std::string cifras) {
  for (std::size_t i = cifras.size(); i-- > 0;) {
    if (cifras[i] != '9') {
      ++cifras[i];
      return cifras;
    }
    cifras[i] = '0';
  }
  return "1" + cifras;
}

}  // namespace

std::optional<std::string> nombreSiguiente(std::string_view nombre) {
  std::size_t inicio = nombre.size();
  while (inicio > 0 && esCifra(nombre[inicio - 1])) --inicio;
  const std::string cuenta = inicio == nombre.size() ? std::string("1") : masUno(std::string(nombre.substr(inicio)));
  if (nombre.empty() || cuenta.size() > nombre.size()) return std::nullopt;
  const std::size_t ancho = std::max<std::size_t>(cuenta.size(), nombre.size() - inicio);
  return std::string(nombre.substr(0, nombre.size() - ancho)) + llenaIzq(cuenta, ancho, '0');
}

bool ficheroPresente(std::string_view ruta, const EntornoWine& entorno) {
  std::error_code ec;
  return fs::exists(rutaNativa(ruta, entorno), ec);
}

namespace {

// The moment of a file's last change in local time, "dd/mm/aaaa a las hh:mm".
std::string modificacion(const fs::path& fichero) {
  std::error_code ec;
  const fs::file_time_type cuando = fs::last_write_time(fichero, ec);
  if (ec) return "";
  const auto sistema = std::chrono::time_point_cast<std::chrono::system_clock::duration>(
      std::chrono::file_clock::to_sys(cuando));
  const std::time_t t = std::chrono::system_clock::to_time_t(sistema);
  std::tm local{};
  if (!::localtime_r(&t, &local)) return "";
  return dosCifras(local.tm_mday) + "/" + dosCifras(local.tm_mon + 1) + "/" + std::to_string(local.tm_year + 1900) +
         " a las " + dosCifras(local.tm_hour) + ":" + dosCifras(local.tm_min);
}

// A count of bytes with a point every three digits, as Spanish writes it.
std::string conMillares(std::uintmax_t n) {
  std::string cifras = std::to_string(n);
  for (std::size_t i = cifras.size(); i > 3; i -= 3) cifras.insert(i - 3, ".");
  return cifras;
}

}  // namespace

std::optional<FicheroExistente> ficheroExistente(const Programa& programa, const PaginaIntercambio& pagina) {
  if (recorta(programa.g.RUTAWS).empty() || nombreIntercambioRechazado(pagina.Text8)) return std::nullopt;
  // The folder of the page's kind: the AFI writer's path names it for both kinds.
  const std::string ruta = rutaFicheroAFI(programa.g.RUTAWS, pagina);
  const fs::path nativa = rutaNativa(ruta, programa.entornoWine);
  std::error_code ec;
  if (!fs::exists(nativa, ec)) return std::nullopt;
  const std::uintmax_t bytes = fs::file_size(nativa, ec);
  return FicheroExistente{ruta, ec ? 0 : bytes, modificacion(nativa)};
}

std::string descripcionFichero(const FicheroExistente& fichero) {
  std::string texto = std::string("el fichero ").append(fichero.ruta).append(", de ").append(conMillares(fichero.bytes));
  texto.append(" bytes");
  if (!fichero.modificado.empty()) texto.append(", modificado el ").append(fichero.modificado);
  return texto;
}

bool reemplazoConsentido(Programa& programa, const PaginaIntercambio& pagina) {
  const auto fichero = ficheroExistente(programa, pagina);
  if (!fichero) return true;
  const std::string pregunta = std::string("Ya existe ").append(descripcionFichero(*fichero)).append(
      std::string(". Si todavía no lo ha enviado, al reemplazarlo se pierde. ¿Desea reemplazarlo?"_cp));
  return programa.dialogos().pregunta(tituloValdor(), pregunta, true);
}

std::string referenciaSustitucion(const PaginaIntercambio& pagina) {
  if (valorNumerico(pagina.Text3) == 0) return std::string(14, '0');
  auto numero = [](std::string_view caja, std::size_t ancho) {
    return formatea(valorNumerico(caja), std::string(ancho, '0'));
  };
  return numero(pagina.Text3, 2) + numero(pagina.Text4, 2) + recorta(pagina.Text5) + numero(pagina.Text6, 5) +
         numero(pagina.Text7, 4);
}

std::string caracterModo(Modo modo) {
  switch (modo) {
    case Modo::Pruebas: return "P";
    case Modo::Sustitucion: return "S";
    case Modo::Normal: break;
  }
  return " ";
}

std::string LINEAETI(const PaginaIntercambio& pagina, const REGINTERCAMBIO& registro) {
  return "ETI" + std::string(pagina.Option1Cotizacion ? "TC220VIP28" : "AFI31WS342") +
         izquierda(claveAutorizaParaETI(registro.CLAVEAUTORIZA), 8) +
         izquierda(claveSilconParaETI(registro.CLAVESILCON), 8) + izquierda(recorta(pagina.Label12), 8) +
         izquierda(recorta(pagina.Label13), 4) + izquierda(recorta(pagina.Text8), 8) +
         izquierda(recorta(pagina.Label10), 3) + "N" + caracterModo(pagina.modo) + referenciaSustitucion(pagina) + "  ";
}

std::string LINEASIL(PaginaIntercambio& pagina) {
  pagina.Text10 = ajusta(pagina.Text10, ANCHOCLAVEAFI);
  pagina.Text11 = ajusta(pagina.Text11, ANCHOCLAVEAFI);
  return "SIL" + pagina.Text10 + pagina.Text11 + std::string(51, ' ');
}

// ---- Paths --------------------------------------------------------------------------------

std::string nombreFicheroIntercambio(const PaginaIntercambio& pagina) {
  if (const auto rechazo = nombreIntercambioRechazado(pagina.Text8)) throw ErrorValdor(*rechazo);
  return recorta(pagina.Text8) + "." + recorta(pagina.Label10);
}

std::string raizIntercambio(std::string_view RUTAWS) {
  const std::string ruta = mayusculas(recorta(RUTAWS));
  return izquierda(ruta, posicion(ruta, "\\VIPTC2\\") + 11);
}

std::string rutaFicheroFAN(std::string_view RUTAWS, const PaginaIntercambio& pagina) {
  const std::string raiz = raizIntercambio(RUTAWS);
  if (pagina.Option1Cotizacion) return raiz + "\\VIPTC2\\FAN\\" + nombreFicheroIntercambio(pagina);
  return raiz + "AFI\\" + nombreFicheroIntercambio(pagina);
}

std::string rutaFicheroAFI(std::string_view RUTAWS, const PaginaIntercambio& pagina) {
  return raizIntercambio(RUTAWS) + "\\VIPTC2\\" + (pagina.Option1Cotizacion ? "FAN\\" : "AFI\\") +
         nombreFicheroIntercambio(pagina);
}

void lanzaWinsuite(Programa& programa, Lanzador& lanzador, const EntornoWine& entorno) {
  FicheroAjustes fichero(programa.carpetas().trabajo);
  fichero.lee(programa.registro);
  programa.g.LANZADOR = programa.registro.RUTAWINSUITE;
  if (recorta(programa.g.LANZADOR).empty()) {
    // Nothing to start: said, so that the user knows where to set it.
    programa.dialogos().mensaje(tituloValdor(),
                                "No se ha arrancado WINSUITE: la ruta de WINSUITE.EXE de la configuración general está "
                                "en blanco. Indíquela con la lupa de la configuración."_cp,
                                Icono::Critico);
    return;
  }
  arrancaHerramienta(programa, programa.g.LANZADOR, lanzador, entorno);
}

void arrancaHerramienta(Programa& programa, std::string_view ruta, Lanzador& lanzador, const EntornoWine& entorno) {
  const std::vector<std::string> orden = ordenDeArranque(ruta, {}, entorno);
  if (const auto motivo = lanzador.lanza(orden))
    programa.dialogos().mensaje(tituloValdor(), textoFalloArranque(ruta, orden, *motivo), Icono::Critico);
}

std::optional<std::filesystem::path> destinoIntercambio(Programa& programa, const std::string& ruta) {
  if (recorta(programa.g.RUTAWS).empty()) {
    programa.dialogos().mensaje("RUTA NO VÁLIDA PARA WINSUITE"_cp,
                                "Debe indicar una ruta válida para el fichero WINSUITE. Pinche sobre la lupa para "
                                "seleccionar la ubicación del fichero."_cp,
                                Icono::Exclamacion);
    return std::nullopt;
  }
  programa.g.FICHEROSALIDA = ruta;
  // A file already under that name is kept until the new one is whole: the writer puts
  // the new one over it with a rename.
  return rutaNativa(ruta, programa.entornoWine);
}

// ---- fan2 ---------------------------------------------------------------------------------

void Command3(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios,
              Lanzador& lanzador, const EntornoWine& entorno) {
  pagina.SSPanel1 = pagina.Option1Cotizacion ? "   Cotización"_cp : "   Afiliación"_cp;
  fan2(programa, pagina, formularios, lanzador, entorno);
}

void fan2(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios, Lanzador& lanzador,
          const EntornoWine& entorno) {
  Globales& g = programa.g;
  Dialogos& dialogos = programa.dialogos();
  {
    FicheroAjustes fichero(programa.carpetas().trabajo);
    fichero.lee(programa.registro);
  }
  g.LINEAETI = LINEAETI(pagina, programa.registro);

  if (!pagina.Option1Cotizacion) {
    dialogos.puntero(Puntero::Reloj);
    g.LINEASIL = LINEASIL(pagina);
    formularios.AFILIA();
    dialogos.puntero(Puntero::Normal);
    return;
  }

  dialogos.puntero(Puntero::Reloj);
  formularios.COTIZACION();
  if (g.CANCELADO == 1) {
    g.CANCELADO = 0;
    dialogos.puntero(Puntero::Normal);
    return;
  }
  pagina.ponGuia(textoVerificarFan());
  if (g.HAYEXCLUIDAS == 1) dialogos.mensaje(tituloExcluidas(), textoExcluidas(), Icono::Informacion);
  if (g.LINEALARGA == 1) dialogos.mensaje(tituloValdor(), textoLineaLarga(), Icono::Exclamacion);
  dialogos.puntero(Puntero::Normal);
  g.LANZADOR = mayusculas(recorta(g.RUTAWS));
  if (dialogos.pregunta(tituloValdor(), conHallazgos(programa, preguntaEditarFan())) && !g.LANZADOR.empty()) formularios.EDITOR();
  pagina.ponGuia(std::string(textoActivaWinsuite()) + g.RUTAWS);
  if (!g.LANZADOR.empty()) arrancaHerramienta(programa, g.LANZADOR, lanzador, entorno);
}

std::vector<std::string> listaCombo1(Programa& programa) {
  std::vector<std::string> lista{std::string("Configuración General"_cp)};
  Tabla& esa = programa.almacenes.ESA;
  if (esa.indice("EMNO"))
    for (esa.primero(); !esa.fin(); esa.siguiente()) lista.push_back(izquierda(esa.texto("A2"), 35));
  return lista;
}

}  // namespace valdor
