// The exchange wizard PXVALDOR32: the page on which the user says what is to be sent
// (a contribution message FAN or an affiliation message AFI; a normal send, a test or
// the replacement of an earlier send; under which 8-character name), the label lines
// it builds from that page, the path of the exchange file, and fan2, the hand-over to
// the forms that write the file. The desktop form and the command line fill the page
// and call these; every rule of the page lives here.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/ajustes.h"
#include "shell/momento.h"
#include "shell/rutas.h"
#include "stores/numeros.h"

namespace valdor {

class Programa;

// ---- The system's texts of the wizard ------------------------------------------------

std::string_view textoBienvenida();         // Label3 when the page opens
std::string_view textoReferencia();         // Label3 after "Cotización" or "Afiliación"
std::string_view textoVerificarFan();       // Label3 after the FAN file is written
std::string_view textoActivaWinsuite();     // Label3 before the tool starts, the route follows
std::string_view tituloNombreNoValido();    // "NOMBRE DE FICHERO NO VÁLIDO"
std::string_view textoNombreNoValido();
std::string_view tituloExcluidas();         // "VALDOR+ - Sistema RED"
std::string_view textoExcluidas();
// The warning at the end of a FAN run when a worker's line came out longer than 70
// characters and was kept cut.
std::string_view textoLineaLarga();
std::string_view preguntaEditarFan();
// The question that offers to edit the file just written, after what the look at the
// job's files found (Programa::hallazgosEscritos, emptied by this).
std::string conHallazgos(Programa& programa, std::string_view pregunta);
std::string_view tituloValdor();            // the program's own title for its boxes

// ---- The page ---------------------------------------------------------------------

enum class Modo { Normal, Pruebas, Sustitucion };  // Option2(0), Option2(1), Option2(2)

struct PaginaIntercambio {
  // Option1(0) "Cotización" and Option1(1) "Afiliación": never visible, set by the
  // commands of the main window. Neither on takes the AFI path.
  bool Option1Cotizacion = false;
  bool Option1Afiliacion = false;
  Modo modo = Modo::Normal;
  // The replacement panel SSPanel4: Año, Mes, Serie, Envío, Doc of the replaced send.
  bool SSPanel4Visible = false;
  std::string Text3, Text4, Text5, Text6, Text7;
  std::string Text8;    // "Nombre del fichero:", 8 characters
  std::string Label10;  // extension "FAN" or "AFI"
  std::string Label12;  // date of preparation yyyymmdd
  std::string Label13;  // time of preparation hhmm
  std::string Text10;   // "Clave:" (AFI only), 8 characters
  std::string Text11;   // "Nueva clave:" (AFI only), 8 characters
  bool clavesAFIVisibles = false;
  std::string Label3;    // the guidance text
  std::string Label19;   // "para " and the sender
  std::string SSPanel1;  // the page's title
  bool SSPanel2Visible = false;  // the type panel

  // Told whenever Label3 changes, so that a screen shows the new text at once: the work
  // that follows holds the screen.
  std::function<void(const std::string&)> alCambiarGuia;
  void ponGuia(std::string_view texto);

  // Sets Option1(0) or Option1(1) on and the other off, as a pair of option buttons.
  void marcaCotizacion();
  void marcaAfiliacion();
  // Option2 click: the replacement panel shows for Sustitución; otherwise it hides and
  // its five boxes are emptied.
  void ponModo(Modo m);
};

// Widths of the boxes of the page.
inline constexpr std::size_t ANCHONOMBREFICHERO = 8;
inline constexpr std::size_t ANCHOCLAVEAFI = 8;

// The wizard's load: the comma test (COMADECIMAL), Label19 from the sender, Label3, and
// the settings: when the file is empty `muestraConfiguracion` runs (the configuration
// dialog, modally) before the record is read into the program and RUTAWS is set.
void cargaAsistente(Programa& programa, PaginaIntercambio& pagina,
                    const std::function<void()>& muestraConfiguracion);

// The comma test of the forms' load: 28.8 formatted as text and formatted again with
// "   ##.####" reads above 30 only where the machine writes decimals with a comma.
double pruebaComaDecimal(const Separadores& sistema);

// `fan` and `AFI`: prepare the page for a contribution or an affiliation message at the
// moment `ahora`: guidance text, extension, the AFI keys shown or hidden, date and time
// of preparation, the default name "F" + ddmmyyhh cut to 8, and the name rule. When a
// file of the page's kind already stands under that name, the default is the first free
// name that follows it (nombreSiguiente), so that two runs never meet under one name.
void preparaPagina(Programa& programa, PaginaIntercambio& pagina, bool cotizacion);

// The name rule: the trimmed name in upper case, filled with "0" on the right up to 8.
// A longer name is only put in upper case; a blank name stays blank.
std::string reglaNombre(std::string_view nombre);

// The names the exchange folder takes. The name is the trimmed name box: 1 to 8
// characters (the box's width), each a letter A to Z, a digit, "_" or "-"; a small letter
// counts as its capital, since the name rule puts the name in upper case. So no blank
// inside, no dot (nor "." or ".."), no path separator, no accented letter and none of the
// characters Windows forbids in a name. Nor a name Windows keeps for its devices (CON,
// PRN, AUX, NUL, COM1 to COM9, LPT1 to LPT9): it would name a device, not a file.
// std::nullopt for a name the folder takes; otherwise the message that refuses it, which
// says why and states the rule. The desktop wizard and the command line both ask it.
std::optional<std::string> nombreIntercambioRechazado(std::string_view nombre);

// "&Aceptar" takes the page only when a kind of message (FAN or AFI) is chosen and the
// name box holds a name the exchange folder takes.
bool paginaLista(const PaginaIntercambio& pagina);

// ---- Free names and the files already there --------------------------------------------

// The name of the file that follows `nombre` among the files of one run: the digits at
// the end of the name, read as a number, count up by one and keep their width
// (F1511260, F1511261, ...); when the count needs one more digit it takes the place of
// the character before them (SEGUNDO9, SEGUND10); a name that does not end in a digit
// has its last character replaced by the count (INFORMES, INFORME1). std::nullopt when
// the name is all digits and cannot count further (99999999).
std::optional<std::string> nombreSiguiente(std::string_view nombre);

// True when a file stands at `ruta`, a Windows path of the tool's folders, under its name
// in any case of its letters (as the tool's system finds it).
bool ficheroPresente(std::string_view ruta, const EntornoWine& entorno);

// A file of the exchange folder that the page's file would replace.
struct FicheroExistente {
  std::string ruta;        // its Windows path
  std::uintmax_t bytes = 0;
  std::string modificado;  // "dd/mm/aaaa a las hh:mm", local time; empty when unknown
};
// The file that stands under the page's name in the folder of its kind; std::nullopt
// when the name is free (or there is no route to the tool's folders yet).
std::optional<FicheroExistente> ficheroExistente(const Programa& programa, const PaginaIntercambio& pagina);
// "el fichero C:\...\F1511260.FAN, de 1.224 bytes, modificado el 15/11/2026 a las 07:30"
std::string descripcionFichero(const FicheroExistente& fichero);

// Before a page's file is written over a file of the same name, the user is asked (No
// by default), showing the file's date and size. True when the name is free or the user
// says to replace it.
bool reemplazoConsentido(Programa& programa, const PaginaIntercambio& pagina);

// The reference of the replaced send (positions 55 to 68 of the ETI line): Año (2), Mes
// (2), Serie (trimmed, unfilled), Envío (5), Doc (4), each number by value with zeros on
// the left; 14 "0" when Año reads 0 (also when it is empty).
std::string referenciaSustitucion(const PaginaIntercambio& pagina);

// The mode character: " " normal, "P" test, "S" replacement.
std::string caracterModo(Modo modo);

// The ETI label line. The record is the settings as just read.
std::string LINEAETI(const PaginaIntercambio& pagina, const REGINTERCAMBIO& registro);
// The SIL line of an AFI exchange. The two key boxes are first filled to 8 with blanks
// on the right, in the boxes themselves.
std::string LINEASIL(PaginaIntercambio& pagina);

// ---- The exchange file's path ---------------------------------------------------------

// The file name: the trimmed name box, ".", the trimmed extension. A name box that the
// exchange folder refuses (see `nombreIntercambioRechazado`) is an ErrorValdor with that
// message: no writer ever builds a path outside its folder.
std::string nombreFicheroIntercambio(const PaginaIntercambio& pagina);

// The start of every path of the tool's folders: the route of the tool trimmed and in
// upper case, cut after the position of "\VIPTC2\" plus 11 characters (the length of a
// root such as "C:\WINSUITE"; 11 alone when the marker is not there).
std::string raizIntercambio(std::string_view RUTAWS);

// The path of the FAN writer: root, "\VIPTC2\", "FAN\" and the name; when the page's
// first option is not set, root, "AFI\" and the name, without the marker.
std::string rutaFicheroFAN(std::string_view RUTAWS, const PaginaIntercambio& pagina);
// The path of the AFI writer: root, "\VIPTC2\", "FAN\" or "AFI\" by the first option,
// and the name.
std::string rutaFicheroAFI(std::string_view RUTAWS, const PaginaIntercambio& pagina);

// The start of a writer: without the tool's route there is no folder to write into, and
// the user is told so (std::nullopt). Otherwise FICHEROSALIDA := `ruta`, and its native
// path returned. An old file of that name is left alone: the writer replaces it only
// with a whole new one.
std::optional<std::filesystem::path> destinoIntercambio(Programa& programa, const std::string& ruta);

// The "Winsuite" command of the main window: read the settings (holding the lock while
// reading), LANZADOR := RUTAWINSUITE, and when it is not blank start it without
// arguments. A blank route does nothing and says nothing.
void lanzaWinsuite(Programa& programa, Lanzador& lanzador, const EntornoWine& entorno);

// Starts the tool at `ruta` (a route as the settings hold it) without arguments. A start
// that fails is told in a critical box: the route, the command that was run and why it
// failed.
void arrancaHerramienta(Programa& programa, std::string_view ruta, Lanzador& lanzador, const EntornoWine& entorno);

// ---- fan2 --------------------------------------------------------------------------------

// The modal forms that fan2 hands over to. Each returns when its form closes.
class FormulariosIntercambio {
 public:
  virtual ~FormulariosIntercambio() = default;
  virtual void COTIZACION() = 0;  // the company selection and the FAN writer
  virtual void AFILIA() = 0;      // the affiliation module and the AFI writer
  virtual void EDITOR() = 0;      // the exchange file editor on FICHEROSALIDA
};

// "&Aceptar": the page's title, then the whole hand-over. The ETI line from a fresh read
// of the settings; for a contribution the company selection, and after it (unless it
// was cancelled) the guidance text, the excluded-companies box, the editor offer and
// the start of the tool; for an affiliation the SIL line and the affiliation module.
void Command3(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios,
              Lanzador& lanzador, const EntornoWine& entorno);
void fan2(Programa& programa, PaginaIntercambio& pagina, FormulariosIntercambio& formularios,
          Lanzador& lanzador, const EntornoWine& entorno);

// The company names of the configuration dialog's combo: "Configuración General", then
// the first 35 characters of each company's name in the order of the index EMNO.
std::vector<std::string> listaCombo1(Programa& programa);

}  // namespace valdor
