#include "statement/impresion.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "shell/ajustes.h"
#include "stores/dialogos.h"
#include "statement/hojatc2.h"
#include "stores/error.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

std::string LIMPIAIMPORTE(const CampoFijo& campo) {
  if (campo.valor() == 0) return std::string(campo.ancho(), ' ');
  return llenaIzq(recorta(campo.texto()), campo.ancho(), ' ');
}

std::string LIMPIATIPO(const CampoFijo& campo) {
  const double valor = campo.valor();
  if (valor == 0) return std::string(campo.ancho(), ' ');
  std::string texto = recorta(campo.texto());
  const std::size_t punto = texto.find('.');
  const std::string entera = texto.substr(0, punto);
  if (valorNumerico(entera) != 0) {
    texto = llenaIzq(entera, 2, ' ') + (punto == std::string::npos ? "" : texto.substr(punto));
  }
  for (char& c : texto)
    if (c == '.') c = ',';
  return llenaDer(texto, campo.ancho(), ' ');
}

TextosRed leerred(const REGINTERCAMBIO& registro, bool enviadoPorRed) {
  if (!enviadoPorRed) return {};
  // The authorisation that goes on the statement: the date the settings keep for it and
  // the authorisation key.
  const std::string numero = recorta(registro.FECHAAUTORIZA) + " " + recorta(registro.CLAVEAUTORIZA);
  return {QUITAACENTOS("NO ACOMPAÑA TC-2"_cp), QUITAACENTOS("AUTORIZACION TGSS"), QUITAACENTOS(numero)};
}

std::string nombrePuerto(std::string_view puerto) {
  if (puerto.empty() || puerto[0] == '\0' || puerto[0] == ' ') return "LPT1";
  return std::string(puerto);
}

namespace {

constexpr std::size_t LARGOMAXIMOFICHERO = 255;

// The device of a printer the program knows, or std::nullopt.
std::optional<std::filesystem::path> dispositivoImpresora(std::string_view nombre) {
  const std::string n = mayusculasAscii(nombre);
  if (n == "PRN") return "/dev/lp0";
  if (n == "LPT1" || n == "LPT2" || n == "LPT3") return "/dev/lp" + std::to_string(n[3] - '1');
  return std::nullopt;
}

bool dispositivoDeWindows(std::string_view nombre) {
  const std::string n = mayusculasAscii(nombre);
  if (n == "CON" || n == "AUX" || n == "NUL") return true;
  return n.size() == 4 && (n.starts_with("COM") || n.starts_with("LPT")) && n[3] >= '1' && n[3] <= '9';
}

// Why a port name is refused, as the middle of the refusal; empty when it is taken.
std::string motivoRechazoPuerto(std::string_view nombre) {
  if (recorta(nombre).empty()) return std::string("está en blanco"_cp);
  if (recorta(nombre) != nombre) return "empieza o acaba con un blanco";
  if (nombre == "." || nombre == "..") return "no es un nombre de fichero";
  if (nombre.size() > LARGOMAXIMOFICHERO) return "tiene " + std::to_string(nombre.size()) + " caracteres";
  for (const char c : nombre) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) return std::string("lleva un carácter de control"_cp);
    if (c == '/' || c == '\\') return "es una ruta, no un nombre de fichero";
    if (std::string_view("<>:\"|?*").find(c) != std::string_view::npos)
      return std::string("lleva el carácter «"_cp) + c + std::string("»"_cp);
  }
  if (dispositivoDeWindows(nombre)) return "es un dispositivo de Windows que no es una impresora conocida";
  return "";
}

}  // namespace

std::optional<std::string> puertoRechazado(std::string_view nombre) {
  if (dispositivoImpresora(nombre)) return std::nullopt;
  const std::string motivo = motivoRechazoPuerto(nombre);
  if (motivo.empty()) return std::nullopt;
  return std::string("El puerto de la impresora «"_cp) + std::string(nombre) + std::string("» no es válido: "_cp) +
         motivo +
         ". Ha de ser LPT1, LPT2 o LPT3 (/dev/lp0 a /dev/lp2), PRN (LPT1) o el nombre de un fichero de la "
         "carpeta de trabajo, sin carpetas ni los caracteres < > : \" | ? *.";
}

std::filesystem::path rutaPuerto(std::string_view nombre, const std::filesystem::path& carpetaTrabajo) {
  if (const auto rechazo = puertoRechazado(nombre)) throw ErrorValdor(*rechazo);
  if (const auto dispositivo = dispositivoImpresora(nombre)) return *dispositivo;
  return carpetaTrabajo / std::string(nombre);
}

namespace {

std::string blancos(std::size_t n) { return std::string(n, ' '); }

// The pieces of the worker's abbreviated TC2 sheet that stand ahead of the eight rows of
// the body, from row 1 of the working table. Each takes the 38 columns the form keeps
// for the sheet on its left. The blank counts follow the form in use:
//   row CC: 2 blanks, the province (2), a blank, the number (8) of the affiliation;
//   row HE: 13 blanks, its two check figures;
//   row HN: 2 blanks, days (2), 3 blanks, group (2), 3 blanks, contract (3);
//   row AS: 2 blanks, the days of leave (2, blank when 0), 5 blanks, those of maternity;
//   row FP: 2 blanks, the base of leave and, when it is not 0, 2 blanks and "126";
//   row OC: 2 blanks, the date of the bonus ("__/__/____" when there is none).
std::vector<std::string> piezasHoja(const TablaTrabajo& g) {
  const HojaTC2 h = hojaTC2(g);
  const std::string naf = llenaDer(h.afiliacion, 12, ' ');
  std::vector<std::string> p{
      blancos(2) + naf.substr(0, 2) + " " + naf.substr(2, 8),
      blancos(13) + naf.substr(10, 2),
      blancos(2) + llenaIzq(h.diasAlta, 2, ' ') + blancos(3) + llenaIzq(h.grupoCotizacion, 2, ' ') + blancos(3) +
          llenaIzq(h.claseContrato, 3, ' '),
      blancos(2) + llenaIzq(h.diasIT, 2, ' ') + blancos(5) + llenaIzq(h.diasMaternidad, 2, ' '),
      h.baseAT.empty() ? std::string() : blancos(2) + h.baseAT + blancos(2) + h.epigrafeIT,
      blancos(2) + h.fechaBonificacion,
      std::string(),
      std::string()};
  for (std::string& pieza : p) pieza = izquierda(llenaDer(pieza, 38, ' '), 38);
  return p;
}

}  // namespace

std::vector<std::string> lineasBoletin(const BOLETIN& original, const TablaTrabajo& GRID1, const TextosRed& red) {
  BOLETIN b = original;
  for (auto campo : {&BOLETIN::BOLNOMBRE, &BOLETIN::BOLDOMICILIO, &BOLETIN::BOLLOCALIDAD, &BOLETIN::BOLENTIDAD,
                     &BOLETIN::BOLPROV, &BOLETIN::BOLNIF})
    b.*campo = QUITAACENTOS((b.*campo).texto());

  std::vector<std::string> l;
  // The heading. The texts of a statement sent by R.E.D. take the line left blank before
  // the tax identifier.
  l.push_back(blancos(32) + b.BOLNOMBRE.texto());
  l.push_back(blancos(32) + b.BOLDOMICILIO.texto());
  l.push_back(blancos(32) + b.BOLLOCALIDAD.texto() + "   " + b.BOLCP.texto() + "    " + b.BOLPROV.texto());
  l.push_back(blancos(36) + b.BOLENTIDAD.texto() + "   " + b.BOLCLAVE.texto());
  l.push_back(blancos(79) + b.BOLEXP.texto());
  l.push_back(recortaDer(blancos(25) + red.noAcompana + "   " + red.autorizacion + " " + red.numero));
  l.push_back(blancos(25) + b.BOLNIF.texto() + blancos(5) + b.BOLCCC.texto() + "  " + b.BOLTRABAJADORES.texto() + " " +
              b.BOLPERDESDE.texto() + " " + b.BOLPERHASTA.texto());

  // The body: the eight rows of the general contributions, the sheet's piece ahead of each.
  const std::vector<std::string> hoja = piezasHoja(GRID1);
  const std::array<std::array<CampoFijo BOLETIN::*, 3>, 8> filas{{
      {&BOLETIN::CCBASE, &BOLETIN::CCTIPO, &BOLETIN::CCCUOTA},
      {&BOLETIN::HEBASE, &BOLETIN::HETIPO, &BOLETIN::HECUOTA},
      {&BOLETIN::HNBASE, &BOLETIN::HNTIPO, &BOLETIN::HNCUOTA},
      {&BOLETIN::ASBASE, &BOLETIN::ASTIPO, &BOLETIN::ASCUOTA},
      {&BOLETIN::FPBASE, &BOLETIN::FPTIPO, &BOLETIN::FPCUOTA},
      {&BOLETIN::OCBASE, &BOLETIN::OCTIPO, &BOLETIN::OCCUOTA},
      {&BOLETIN::DXBASE, &BOLETIN::DXTIPO, &BOLETIN::DXCUOTA},
      {&BOLETIN::DEBASE, &BOLETIN::DETIPO, &BOLETIN::DECUOTA},
  }};
  for (std::size_t i = 0; i < filas.size(); ++i) {
    if (i > 0) l.emplace_back();
    const auto& [base, tipo, cuota] = filas[i];
    l.push_back(hoja[i] + LIMPIAIMPORTE(b.*base) + "   " + LIMPIATIPO(b.*tipo) + "  " + LIMPIAIMPORTE(b.*cuota));
  }

  // The closing lines. Where the form gives no count, an amount stands under the body's
  // bases (38 blanks) or in the right-hand column of the liquid amounts (71 blanks).
  const std::string bajoBases = blancos(38), derecha = blancos(71);
  l.push_back(bajoBases + LIMPIAIMPORTE(b.COMPIT) + " " + b.REDCLAVE.texto() + " " + LIMPIAIMPORTE(b.REDUCCIONES) +
              " " + LIMPIAIMPORTE(b.CGTOTAL));
  l.push_back(derecha + LIMPIAIMPORTE(b.CGLIQUIDO));
  l.emplace_back();
  l.push_back(blancos(19) + LIMPIAIMPORTE(b.ATBASE) + "  " + LIMPIAIMPORTE(b.ATCUOTAIT) + "   " +
              LIMPIAIMPORTE(b.ATCUOTAIMS) + "    ");
  l.push_back(derecha + LIMPIAIMPORTE(b.ATTOTAL));
  l.push_back(blancos(73) + LIMPIAIMPORTE(b.ATCOMPENSA));
  l.emplace_back();
  l.push_back(derecha + LIMPIAIMPORTE(b.ATLIQUIDO));
  l.emplace_back();
  l.push_back(bajoBases + LIMPIAIMPORTE(b.OTBASE) + "   " + LIMPIATIPO(b.OTTIPO) + "  " + LIMPIAIMPORTE(b.OTCUOTA));
  l.emplace_back();
  l.push_back(bajoBases + LIMPIAIMPORTE(b.OTBONRED) + " " + LIMPIAIMPORTE(b.OTCOMPDES) + " " +
              LIMPIAIMPORTE(b.OTSUMA));
  l.emplace_back();
  l.push_back(derecha + LIMPIAIMPORTE(b.OTLIQUIDO));
  l.emplace_back();
  l.push_back(bajoBases + LIMPIAIMPORTE(b.TOTALRECARGO) + " " + b.RECARGOPCT.texto() + "  " +
              LIMPIAIMPORTE(b.RECARGO));
  l.emplace_back();
  l.push_back(blancos(42) + LIMPIAIMPORTE(b.APERCIBIR) + blancos(14) + LIMPIAIMPORTE(b.AINGRESAR));
  return l;
}

namespace {

// The text of the retry box for an error of the port: the port and the system's reason.
std::string textoErrorImpresion(const std::filesystem::path& puerto, int error) {
  return std::string("No se ha podido imprimir el boletín en "_cp)
      .append(entreComillas(puerto))
      .append(": ")
      .append(razonDelSistema(error))
      .append(".\n")
      .append("¿Desea intentar de nuevo la impresión?"_cp);
}

// One attempt: the port opened, every line written, closed. 0 or the errno.
int imprimeUnaVez(const std::filesystem::path& puerto, const std::string& contenido) {
  const bool dispositivo = puerto.parent_path() == "/dev";
  const int banderas = dispositivo ? O_WRONLY | O_CLOEXEC : O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
  const int fd = ::open(puerto.c_str(), banderas, 0644);
  if (fd < 0) return errno;
  struct stat datos {};
  if (dispositivo && (::fstat(fd, &datos) != 0 || !S_ISCHR(datos.st_mode))) {
    ::close(fd);
    return ENODEV;  // a plain file where the printer should be is no printer
  }
  int error = escribeTodo(fd, contenido, 0);
  if (::close(fd) != 0 && error == 0) error = errno;
  return error;
}

}  // namespace

bool IMPRIMEBOLETIN(const BOLETIN& b, const TablaTrabajo& GRID1, const TextosRed& red,
                    const std::filesystem::path& puerto, Dialogos& dialogos) {
  std::string contenido;
  for (const std::string& linea : lineasBoletin(b, GRID1, red)) contenido += linea + "\r\n";
  while (true) {
    const int error = imprimeUnaVez(puerto, contenido);
    if (error == 0) return true;
    if (!dialogos.pregunta("ERROR DE IMPRESION", textoErrorImpresion(puerto, error))) return false;
  }
}

}  // namespace valdor
