#include "stores/ficheros.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <system_error>

#include "stores/texto.h"

namespace valdor {

std::string entreComillas(const std::filesystem::path& ruta) { return "\"" + utf8ACp1252(ruta.string()) + "\""; }

std::string razonDelSistema(int error) { return utf8ACp1252(std::generic_category().message(error)); }

bool esDiscoLleno(int error) { return error == ENOSPC || error == EDQUOT; }

std::filesystem::path resuelveFichero(const std::filesystem::path& carpeta, std::string_view nombre) {
  const std::filesystem::path exacta = carpeta / std::string(nombre);
  std::error_code ec;
  if (std::filesystem::exists(exacta, ec)) return exacta;
  const std::string buscado = mayusculasAscii(nombre);
  std::optional<std::filesystem::path> hallada;
  const std::filesystem::path donde = carpeta.empty() ? std::filesystem::path(".") : carpeta;
  for (std::filesystem::directory_iterator it(donde, ec), fin; !ec && it != fin; it.increment(ec)) {
    const std::string otro = it->path().filename().string();
    if (mayusculasAscii(otro) == buscado && (!hallada || otro < hallada->filename().string()))
      hallada = carpeta / otro;
  }
  return hallada.value_or(exacta);
}

int escribeTodo(int fd, std::string_view datos, off_t desde) {
  std::size_t hecho = 0;
  while (hecho < datos.size()) {
    const ssize_t n = ::pwrite(fd, datos.data() + hecho, datos.size() - hecho, desde + static_cast<off_t>(hecho));
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) return ENOSPC;
    hecho += static_cast<std::size_t>(n);
  }
  return 0;
}

std::filesystem::path nombreTemporal(const std::filesystem::path& destino, int intento) {
  return destino.parent_path() /
         (destino.filename().string() + "." + std::to_string(::getpid()) + "." + std::to_string(intento) + ".tmp");
}

int reemplazaFichero(const std::filesystem::path& destino, std::string_view contenido) {
  std::filesystem::path temporal;
  int fd = -1;
  for (int intento = 0; fd < 0 && intento < INTENTOSTEMPORAL; ++intento) {
    temporal = nombreTemporal(destino, intento);
    fd = ::open(temporal.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) return errno;
  }
  if (fd < 0) return EEXIST;

  int error = escribeTodo(fd, contenido, 0);
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  if (error == 0 && ::rename(temporal.c_str(), destino.c_str()) != 0) error = errno;
  if (error != 0) ::unlink(temporal.c_str());
  return error;
}

}  // namespace valdor
