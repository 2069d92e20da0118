// The folder of a fuzz target's files, made at its first use and removed at the end, and
// the check that a text holds no control byte.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/apoyo.h"

namespace valdor::fuzz {

using pruebas::leeBytes;

inline const pruebas::CarpetaTemporal& carpeta() {
  static const pruebas::CarpetaTemporal c;
  return c;
}

// `nombre` in the folder, holding exactly `bytes`.
inline std::filesystem::path escribe(const std::string& nombre, std::string_view bytes) {
  const std::filesystem::path f = carpeta() / nombre;
  pruebas::escribeBytes(f, bytes);
  return f;
}

// True when no byte of `texto` is a control byte.
inline bool sinControl(std::string_view texto) {
  for (char c : texto) {
    const auto b = static_cast<unsigned char>(c);
    if (b < 0x20 || b == 0x7F) return false;
  }
  return true;
}

}  // namespace valdor::fuzz
