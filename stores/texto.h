// Text of the core: std::string holding Windows-1252 bytes, so that a width in
// characters is a width in bytes. Conversions to and from UTF-8 happen only at the
// edges (the stores, the console, the screens).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace valdor {

// ---- Windows-1252 <-> UTF-8 -------------------------------------------------------

// Windows-1252 bytes to UTF-8. The five bytes that Windows-1252 leaves undefined
// (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the control characters U+0081 ... U+009D,
// as Windows maps them, so that every byte survives a round trip through a store.
std::string cp1252AUtf8(std::string_view cp1252);

// UTF-8 to Windows-1252. A character with no Windows-1252 form, and every byte of a
// malformed UTF-8 sequence, becomes '?'. When `perdidos` is given it receives the
// number of characters so replaced.
std::string utf8ACp1252(std::string_view utf8, std::size_t* perdidos = nullptr);

// True when every character of the UTF-8 text has a Windows-1252 form.
bool esRepresentableCp1252(std::string_view utf8);

// The Unicode code point of a Windows-1252 byte.
char32_t puntoDeCodigo(unsigned char byte);

// ---- Case ---------------------------------------------------------------------------

// Upper case of a Windows-1252 text, as the system's UCase gives it: a-z, the accented
// small letters 0xE0-0xFE (not 0xF7), š, œ, ž and ÿ take their capitals; ß, µ and every
// other byte stay.
std::string mayusculas(std::string_view texto);

// Upper case of the ASCII letters only: for names of columns and files, which may be
// UTF-8 and must keep every other byte.
std::string mayusculasAscii(std::string_view texto);

// ---- Trimming and cutting (blanks only, as the run-time's Trim) ------------------

std::string recorta(std::string_view texto);     // Trim
std::string recortaIzq(std::string_view texto);  // LTrim
std::string recortaDer(std::string_view texto);  // RTrim

std::string izquierda(std::string_view texto, std::size_t n);  // Left$
std::string derecha(std::string_view texto, std::size_t n);    // Right$
// Mid$: from the 1-based position `desde`, at most `n` characters. A position beyond
// the end gives "".
std::string medio(std::string_view texto, std::size_t desde, std::size_t n = std::string::npos);

// InStr: 1-based position of `buscado` in `texto` from the 1-based `desde`, 0 if absent.
std::size_t posicion(std::string_view texto, std::string_view buscado, std::size_t desde = 1);

// ---- Fixed-width fields -------------------------------------------------------------

// A field of `ancho` characters with `relleno` on the left of the text. A text wider
// than its field has no field: the result is empty (std::nullopt) and the caller
// decides, as the exchange files do, that the field drops out of its line.
std::optional<std::string> campoIzq(std::string_view texto, std::size_t ancho, char relleno);
// The same with the fill on the right.
std::optional<std::string> campoDer(std::string_view texto, std::size_t ancho, char relleno);

// Fill up to `ancho`; a longer text is kept whole (never cut, never lost).
std::string llenaIzq(std::string_view texto, std::size_t ancho, char relleno);
std::string llenaDer(std::string_view texto, std::size_t ancho, char relleno);

// A fixed-length text field: blanks on the right up to `ancho`, cut at `ancho`.
std::string ajusta(std::string_view texto, std::size_t ancho);

// True for the bytes that are no character of a line: the control bytes 0x00 to 0x1F
// and 0x7F. Every other byte is a printable Windows-1252 character (0x80 to 0xFF
// included: the accents and the bytes of the files' accent table).
bool esControl(char c);
// The text as it may stand in an exchange line: each control byte becomes a blank, so
// that a value read from an outside file keeps its width and never carries a NUL, a
// tab or a line end into a line.
std::string imprimible(std::string_view texto);

}  // namespace valdor
