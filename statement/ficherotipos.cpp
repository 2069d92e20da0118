// The yearly rate file: its name and its writing.
#include "statement/ficherotipos.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "stores/texto.h"

namespace valdor {

namespace {

namespace fs = std::filesystem;

std::string entreComillas(const fs::path& ruta) { return "\"" + utf8ACp1252(ruta.string()) + "\""; }

// Digits with at most one point and an optional minus in front: the text that the
// readers take back as a number. A blank field is allowed too.
bool esTextoDecimal(std::string_view t) {
  if (t.empty()) return true;
  std::size_t i = t.front() == '-' ? 1 : 0;
  bool hayCifra = false;
  bool hayPunto = false;
  for (; i < t.size(); ++i) {
    if (t[i] >= '0' && t[i] <= '9') {
      hayCifra = true;
    } else if (t[i] == '.' && !hayPunto) {
      hayPunto = true;
    } else {
      return false;
    }
  }
  return hayCifra;
}

std::string motivo(int error) { return utf8ACp1252(std::generic_category().message(error)); }

[[noreturn]] void fallaEscritura(const fs::path& ruta, int error) {
  if (error == ENOSPC || error == EDQUOT)
    throw ErrorFicheroTipos("No queda espacio en el disco para escribir el fichero de tipos " +
                            entreComillas(ruta) + ".");
  throw ErrorFicheroTipos("No se puede escribir el fichero de tipos " + entreComillas(ruta) + ": " +
                          motivo(error) + ".");
}

// Writes all of `datos`; 0 or the error. A write that moves nothing counts as a full disk.
int escribeTodo(int fd, std::string_view datos) {
  std::size_t hecho = 0;
  while (hecho < datos.size()) {
    const ssize_t n = ::write(fd, datos.data() + hecho, datos.size() - hecho);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) return ENOSPC;
    hecho += static_cast<std::size_t>(n);
  }
  return 0;
}

}  // namespace

std::string nombreFicheroTipos(int ano, int mes, std::string_view codigo) {
  const bool primerTrimestre1997 = ano == 1997 && mes >= 1 && mes <= 3;
  char cifras[16];
  std::snprintf(cifras, sizeof cifras, "%04d", ano);
  return std::string(primerTrimestre1997 ? "N-SA" : "N-SS") + cifras + recorta(codigo) + ".MDB";
}

void escribeFicheroTipos(const fs::path& ruta, const std::vector<std::array<std::string, 4>>& registros) {
  std::string contenido;
  const std::size_t total = std::max(registros.size(), REGISTROSTIPOSMINIMOS);
  contenido.reserve(total * LONGITUDREGISTROTIPOS);
  for (std::size_t n = 0; n < registros.size(); ++n) {
    for (std::size_t k = 0; k < 4; ++k) {
      const std::string valor = recorta(registros[n][k]);
      const auto campo = campoIzq(valor, ANCHOTIPCAMPO, ' ');
      if (!campo || !esTextoDecimal(valor))
        throw ErrorFicheroTipos("El valor \"" + valor + "\" del registro " + std::to_string(n + 1) + ", campo " +
                                std::to_string(k + 1) + ", no es un tipo de 7 caracteres como m\xE1ximo para " +
                                entreComillas(ruta) + ".");
      contenido += *campo;
    }
  }
  contenido.resize(total * LONGITUDREGISTROTIPOS, ' ');

  // Beside the final name first, then put in place whole.
  const fs::path temporal = ruta.parent_path() / (ruta.filename().string() + "." + std::to_string(::getpid()) + ".tmp");
  const int fd = ::open(temporal.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) fallaEscritura(ruta, errno);
  int error = escribeTodo(fd, contenido);
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  std::error_code ec;
  if (error == 0) {
    fs::rename(temporal, ruta, ec);
    if (!ec) return;
    error = ec.value();
  }
  fs::remove(temporal, ec);
  fallaEscritura(ruta, error);
}

}  // namespace valdor
