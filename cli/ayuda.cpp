#include "cli/ayuda.h"

#include <array>

#include "stores/literales.h"

namespace valdor::cli {

namespace {

constexpr std::string_view LLAMADA =
    R"(valdor-cli [--programa DIR] [--trabajo DIR] [--ahora "AAAA-MM-DD HH:MM"])";

constexpr std::string_view FORMAOPCIONES = R"(
Cada opción va una sola vez, escrita «--mes 10» o «--mes=10», y ningún valor
puede ir vacío.
)"_cp;

constexpr std::string_view PERIODO = R"(  --mes M           mes, de 1 a 12 (por omisión, el anterior al actual)
  --ano A           año, con cuatro cifras, de 1901 a 2100
)"_cp;

constexpr std::string_view NOMBREMODO = R"(  --nombre N        nombre del fichero: de 1 a 8 caracteres, solo letras de la A a la Z,
                    cifras, guion (-) o guion bajo (_); uno corto se completa con ceros
                    (ABC pasa a ABC00000). No vale un nombre reservado de Windows (CON,
                    PRN, AUX, NUL, COM1 a COM9, LPT1 a LPT9). Por omisión, F y el día,
                    mes, año y hora, o el primer nombre libre que le sigue (F1511261...)
  --reemplazar      reemplaza un fichero de ese nombre que ya esté en la carpeta; sin
                    ella, la orden se niega a reemplazarlo y acaba con 1
  --modo M          normal, pruebas o sustitucion
  --sustituye AA,MM,S,EEEEE,DDDD
                    el envío que se sustituye: año (1 o 2 cifras, no 0), mes (de 1 a 12),
                    serie (una letra de la A a la Z o una cifra), número de envío (hasta 5
                    cifras) y documento (hasta 4 cifras). Supone --modo sustitucion
)"_cp;

// One order: its synopsis and what it does (as the whole help lists it), and the values
// of its options (for its own help).
struct Orden {
  std::string_view nombre;
  std::string_view resumen;
  bool conPeriodo;     // --mes and --ano
  bool conNombreModo;  // --nombre, --modo and --sustituye
  std::string_view valores;
};

const std::array<Orden, 8>& ordenes() {
  static const std::array<Orden, 8> lista{{
      {"muestra", R"(  muestra  [--mes M --ano A] [--empresas N --trabajadores M]
           escribe la oficina de muestra en las carpetas del programa y de trabajo
           (por omisión, la del mes anterior al actual)
)"_cp,
       true, false, R"(  --empresas N      empresas de una oficina grande, de 1 a 99999; va con --trabajadores
  --trabajadores M  trabajadores de cada empresa de la oficina grande, de 1 a 99999
)"_cp},
      {"ajustes", R"(  ajustes  [--clave-autorizacion V] [--clave-silcon V] [--fecha-autorizacion V]
           [--ruta-winsuite V] [--emisor NOMBRE]
           muestra los ajustes del intercambio; con opciones, los guarda
)"_cp,
       false, false, R"(  --clave-autorizacion V   hasta 8 caracteres
  --clave-silcon V         hasta 8 caracteres
  --fecha-autorizacion V   una fecha que exista, con la forma dd/mm/aaaa
  --ruta-winsuite V        hasta 150 caracteres (C:\WINSUITE\WINSUITE.EXE)
  --emisor NOMBRE          hasta 35 caracteres
)"_cp},
      {"empresas", R"(  empresas [--mes M --ano A]
           lista las empresas con nóminas calculadas en el mes: código, nombre, trabajadores
)"_cp,
       true, false, ""},
      {"fan", R"(  fan      [--mes M --ano A] [--empresas C1,C2,...] [--clase L00] [--calificador 00]
           [--nombre N] [--modo normal|pruebas|sustitucion] [--sustituye AA,MM,S,EEEEE,DDDD]
           [--dev-cta] [--lanzar] [--reemplazar] [--estricto]
           escribe el fichero de cotización .FAN; sin --empresas, todas las del mes;
           la última línea es la ruta del fichero
)"_cp,
       true, true, R"(  --empresas C1,... códigos de cuenta de cotización de 11 cifras, separados por comas,
                    al menos uno y ninguno repetido; si alguno no tiene nóminas
                    calculadas en el mes, no se escribe el fichero
  --clase L00       clase de liquidación de la pantalla de selección (L00, L01, ..., TP2)
  --calificador 00  calificador de la liquidación (00 a 10)
  --dev-cta         añade la línea DBA de «Dev. en Cta.» a cada empresa
  --lanzar          arranca WINSUITE al terminar; si no arranca, dice qué se intentó
                    y por qué falló, y acaba con 1
  --estricto        no escribe el fichero si la revisión de sus campos encuentra algo
)"_cp},
      {"afi", R"(  afi      [--nombre N] [--modo normal|pruebas|sustitucion] [--sustituye AA,MM,S,EEEEE,DDDD]
           [--clave V] [--nueva-clave V] [--borrar-pendientes] [--reemplazar] [--estricto]
           escribe los ficheros de afiliación .AFI de los trabajadores pendientes; con
           --borrar-pendientes borra después los pendientes que van en ellos
)"_cp,
       false, true, R"(  --clave V         clave de la línea SIL, hasta 8 caracteres
  --nueva-clave V   nueva clave de la línea SIL, hasta 8 caracteres
  --borrar-pendientes
                    borra de la lista de pendientes, por su clave, los que van
                    en los ficheros escritos, después de escribirlos
  --estricto        no escribe los ficheros si la revisión de sus campos encuentra algo
)"_cp},
      {"imprimir", R"(  imprimir --empresa CODIGO [--mes M --ano A] [--puerto P | --pdf F] [--red]
           imprime el boletín TC1 de la empresa en el impreso: en el puerto P, o en el de
           VALDOR_IMPRESORA, o en LPT1 (/dev/lp0); P es LPT1 a LPT3, PRN o el nombre de un
           fichero de la carpeta de trabajo. Con --pdf F lo dibuja en el PDF F, cada
           carácter en su sitio del impreso. --red lo marca como enviado por R.E.D.
           con la autorización
)"_cp,
       true, false, R"(  --empresa CODIGO  código de cuenta de cotización de 11 cifras, con nóminas en el mes
  --puerto P        LPT1, LPT2 o LPT3 (/dev/lp0 a /dev/lp2), PRN (LPT1) o el nombre de
                    un fichero que se escribe en la carpeta de trabajo: sin carpetas, ni
                    «.» o «..», ni los caracteres < > : " | ? *, ni un nombre reservado
                    de Windows. VALDOR_IMPRESORA sigue la misma regla
  --red             el boletín va como enviado por R.E.D., con la autorización de los
                    ajustes
  --pdf F           escribe el boletín en el PDF F (relativo a la carpeta actual), en una
                    hoja A4 apaisada, a 10 caracteres por pulgada y 6 líneas por pulgada;
                    el fichero se escribe al lado y se renombra, nunca queda a medias
  --impreso         con --pdf: dibuja también las rayas y los rótulos del impreso, para
                    imprimirlo en papel en blanco
  --desplazamiento V,H
                    con --pdf: mueve el boletín V milímetros hacia abajo y H hacia la
                    derecha (negativos: arriba, izquierda), para ajustarlo al avance del
                    impreso; por defecto, el de VALDOR_DESPLAZAMIENTO
)"_cp},
      {"revisar", R"(  revisar  FICHERO [--json]
           revisa un fichero .FAN o .AFI sin cambiarlo: las líneas que no tienen 70
           caracteres, las que no empiezan por un segmento de su tipo, si las cuentas
           del cierre ETF cuadran, y cada campo (cifras, importes, fechas, periodo,
           dígitos de control, letra del DNI, sumas de la empresa y del TC1); acaba con
           1 si encuentra algo. Con --json, lo mismo para un guion. FICHERO puede ser una
           ruta de Windows (C:\...) de las unidades de Wine
)"_cp,
       false, false, ""},
      {"almacenes", R"(  almacenes [--mes M --ano A]
           lista los almacenes de la oficina (carpetas del programa y de trabajo, y el
           del mes): fichero, motor (Jet 3, Jet 4 o SQLite), tablas con sus filas y los
           problemas que encuentra; acaba con 1 si hay alguno. No escribe nada
)"_cp,
       true, false, ""},
  }};
  return lista;
}

const Orden* buscaOrden(std::string_view nombre) {
  for (const Orden& o : ordenes())
    if (o.nombre == nombre) return &o;
  return nullptr;
}

}  // namespace

bool pideAyuda(std::string_view argumento) {
  return argumento == "-h" || argumento == "--help" || argumento == "--ayuda";
}

bool esOrden(std::string_view orden) { return buscaOrden(orden) != nullptr; }

std::string ayudaGeneral() {
  std::string texto = "Uso: " + std::string(LLAMADA) + " ORDEN [opciones]\n";
  texto += "     valdor-cli ORDEN --ayuda\n     valdor-cli --ayuda | --version\n\n";
  texto += std::string("Órdenes:\n"_cp);
  for (const Orden& o : ordenes()) texto += std::string(o.resumen);
  texto += FORMAOPCIONES;
  texto += std::string(R"(«valdor-cli ORDEN --ayuda» dice qué valores admite cada opción.

La carpeta del programa es la del ejecutable, salvo --programa o VALDOR_PROGRAMA.
La carpeta de trabajo es la actual; --trabajo cambia a ella antes de empezar.
Estado de salida: 0 si todo fue bien, 1 si el trabajo falló o encontró fallos,
2 si la llamada está mal hecha.
)"_cp);
  return texto;
}

std::optional<std::string> ayudaDeOrden(std::string_view orden) {
  const Orden* o = buscaOrden(orden);
  if (!o) return std::nullopt;
  std::string texto = "Uso: " + std::string(LLAMADA) + " " + std::string(o->nombre) +
                      (o->nombre == "revisar" ? " FICHERO [--json]\n\n" : " [opciones]\n\n");
  texto += o->resumen;
  if (o->conPeriodo || o->conNombreModo || !o->valores.empty()) {
    texto += "\nOpciones:\n";
    if (o->conPeriodo) texto += PERIODO;
    if (o->conNombreModo) texto += NOMBREMODO;
    texto += o->valores;
    texto += FORMAOPCIONES;
  }
  return texto;
}

std::string pistaDeAyuda(std::string_view orden) {
  if (esOrden(orden))
    return std::string("Use «valdor-cli "_cp) + std::string(orden) +
           std::string(" --ayuda» para ver sus opciones y los valores que admiten."_cp);
  return std::string("Use «valdor-cli --ayuda» para ver las órdenes y sus opciones."_cp);
}

}  // namespace valdor::cli
