#include "tests/apoyo.h"

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <sstream>
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

void creaCarpetas(const CarpetaTemporal& c) {
  std::filesystem::create_directories(c / "programa");
  std::filesystem::create_directories(c / "trabajo");
}

std::string leeBytes(const std::filesystem::path& ruta) {
  std::ifstream f(ruta, std::ios::binary);
  std::ostringstream bytes;
  bytes << f.rdbuf();
  return bytes.str();
}

void escribeBytes(const std::filesystem::path& ruta, std::string_view bytes) {
  std::ofstream f(ruta, std::ios::binary | std::ios::trunc);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> registros(const std::filesystem::path& ruta) {
  const std::string bytes = leeBytes(ruta);
  std::vector<std::string> r;
  for (std::size_t p = 0; p < bytes.size();) {
    const std::size_t fin = bytes.find("\r\n", p);
    r.push_back(bytes.substr(p, fin == std::string::npos ? std::string::npos : fin - p));
    if (fin == std::string::npos) break;
    p = fin + 2;
  }
  return r;
}

std::string paraLaShell(const std::string& texto) {
  std::string r = "'";
  for (char c : texto) r += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return r + "'";
}

}  // namespace valdor::pruebas
