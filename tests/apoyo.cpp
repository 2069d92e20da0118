#include "tests/apoyo.h"

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <system_error>

namespace valdor::pruebas {

CarpetaTemporal::CarpetaTemporal() {
  static std::atomic<int> contador{0};
  ruta_ = std::filesystem::temp_directory_path() /
          ("valdor-prueba-" + std::to_string(::getpid()) + "-" + std::to_string(contador++));
  std::filesystem::remove_all(ruta_);
  std::filesystem::create_directories(ruta_);
}

CarpetaTemporal::~CarpetaTemporal() {
  std::error_code ec;
  std::filesystem::remove_all(ruta_, ec);
}

std::string leeBytes(const std::filesystem::path& ruta) {
  std::ifstream f(ruta, std::ios::binary);
  return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

void escribeBytes(const std::filesystem::path& ruta, std::string_view bytes) {
  std::ofstream f(ruta, std::ios::binary | std::ios::trunc);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace valdor::pruebas
