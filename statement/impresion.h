// The statement printed on the pre-printed TC1 form: plain text lines sent to the printer
// port, placed by counted blanks and blank lines, with a piece of the worker's abbreviated
// TC2 sheet ahead of each row of the body. No amount is printed in words.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "statement/estado.h"

namespace valdor {

class Dialogos;
struct REGINTERCAMBIO;

// LIMPIAIMPORTE: an amount of a field of `ancho` characters: its text right-aligned in
// the field's width; a figure that reads 0 is the field's width in blanks.
std::string LIMPIAIMPORTE(const CampoFijo& campo);
// LIMPIATIPO: a rate with its whole part right-aligned in 2 and its decimals after a
// comma ("28,30", " 7,95"); a rate below 1 keeps its plain text with the comma ("0,6");
// padded with blanks to the field's width, all blanks when it reads 0.
std::string LIMPIATIPO(const CampoFijo& campo);

// The three texts of a statement sent by R.E.D. ("Enviado por R.E.D."): "NO ACOMPAÑA
// TC-2", "AUTORIZACION TGSS" and the authorisation (its date and number), each through
// the accent mapping of the printer; three empty texts when it is not ticked.
struct TextosRed {
  std::string noAcompana, autorizacion, numero;
};
// leerred: the authorisation of the sender from the settings (the key and its date).
TextosRed leerred(const REGINTERCAMBIO& registro, bool enviadoPorRed);

// The printer port: the name given, or "LPT1" when it is empty or begins with a NUL or a
// blank.
std::string nombrePuerto(std::string_view puerto);

// The ports a statement may be printed on. The printers the program knows: "LPT1" to
// "LPT3", the machine's parallel printers /dev/lp0 to /dev/lp2, and "PRN", Windows' other
// name for LPT1 (small letters count as capitals). Any other port is a plain file name,
// written in the work folder: no blank at either end, no path separator, not "." or
// "..", no control character nor any of the characters Windows forbids in a name
// (< > : " | ? *), at most 255 bytes, and not one of the device names Windows keeps
// (CON, AUX, NUL, COM1 to COM9, LPT4 to LPT9). std::nullopt for a port that is taken;
// otherwise the message that refuses it, which says why and states the rule.
std::optional<std::string> puertoRechazado(std::string_view nombre);
// The path of a port: the printer's device, or the file in the work folder. A port the
// rule refuses is an ErrorValdor with that message, so nothing is written elsewhere.
std::filesystem::path rutaPuerto(std::string_view nombre, const std::filesystem::path& carpetaTrabajo);

// The printed lines of the statement (without their CR LF): the heading, the body with
// the sheet pieces of row 1 of `GRID1`, and the closing lines.
std::vector<std::string> lineasBoletin(const BOLETIN& b, const TablaTrabajo& GRID1, const TextosRed& red);

// IMPRIMEBOLETIN: the lines sent to the port, each ended by CR LF. A printer's device
// (a path in /dev) must be there: it is never made as a file. A file port is made or
// emptied, and a symbolic link in its place is not followed. An error asks
// "ERROR DE IMPRESION" whether to try again (from the opening of the port); true when
// the statement was printed, false when the user gave up.
bool IMPRIMEBOLETIN(const BOLETIN& b, const TablaTrabajo& GRID1, const TextosRed& red,
                    const std::filesystem::path& puerto, Dialogos& dialogos);

}  // namespace valdor
