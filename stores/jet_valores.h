// The values of a Jet row as its bytes hold them, turned into what the stores keep:
// numbers as doubles, dates as ISO text, text as UTF-8. Used by the reader of Jet files
// on the bytes of a row that libmdb has found; every length is the caller's, checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace valdor::jet {

// A Text or Memo value. Jet 4 keeps UCS-2, or, when it starts with FF FE, its
// compressed form, where runs of one byte per character (the high byte 0) and runs of
// two bytes per character follow each other, a 0 byte switching between them. Jet 3
// keeps the bytes of the database's code page, Windows-1252 for a Spanish office.
std::string textoJet(bool jet4, const unsigned char* p, std::size_t n);

// A Date/Time: days since 30/12/1899, the fraction the time of day (for days before
// that one, the fraction still counts forward). ISO text, with the time only when there
// is one; std::nullopt for a value outside Jet's calendar (years 100 to 9999).
std::optional<std::string> fechaJet(double valor);

// A Decimal (17 bytes): a sign byte, then a 96-bit magnitude kept as four 32-bit words,
// the most significant first, each little-endian; the column's scale places the point.
double decimalJet(const unsigned char* p, int escala);

// A Currency (8 bytes): a little-endian count of ten-thousandths.
double monedaJet(const unsigned char* p);

// A Double (8 bytes) and a Single (4 bytes), little-endian.
double dobleJet(const unsigned char* p);
double simpleJet(const unsigned char* p);

std::uint32_t leU32(const unsigned char* p);
std::uint64_t leU64(const unsigned char* p);

}  // namespace valdor::jet
