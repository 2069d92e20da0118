// A folder of its own for a fuzz target's files, made once and removed at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace valdor::fuzz {

class CarpetaFuzz {
 public:
  CarpetaFuzz() {
    std::string plantilla = (std::filesystem::temp_directory_path() / "valdor-fuzz-XXXXXX").string();
    if (::mkdtemp(plantilla.data())) ruta_ = plantilla;
  }
  ~CarpetaFuzz() {
    std::error_code ec;
    if (!ruta_.empty()) std::filesystem::remove_all(ruta_, ec);
  }
  CarpetaFuzz(const CarpetaFuzz&) = delete;
  CarpetaFuzz& operator=(const CarpetaFuzz&) = delete;

  const std::filesystem::path& ruta() const { return ruta_; }

  // `nombre` in the folder holding exactly `bytes`, whatever stood there before.
  std::filesystem::path escribe(const std::string& nombre, std::string_view bytes) const {
    const std::filesystem::path f = ruta_ / nombre;
    std::error_code ec;
    std::filesystem::remove_all(f, ec);
    std::ofstream(f, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return f;
  }

 private:
  std::filesystem::path ruta_;
};

// The folder of this fuzz target's run, made at its first use.
inline CarpetaFuzz& carpeta() {
  static CarpetaFuzz c;
  return c;
}

// The whole content of a file as bytes.
inline std::string leeTodo(const std::filesystem::path& f) {
  std::ifstream entrada(f, std::ios::binary);
  return {std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
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
