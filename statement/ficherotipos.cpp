// The yearly rate file: its name and its writing.
#include "statement/ficherotipos.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "stores/ficheros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

namespace fs = std::filesystem;

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

[[noreturn]] void fallaEscritura(const fs::path& ruta, int error) {
  if (esDiscoLleno(error))
    throw ErrorFicheroTipos("No queda espacio en el disco para escribir el fichero de tipos " +
                            entreComillas(ruta) + ".");
  throw ErrorFicheroTipos("No se puede escribir el fichero de tipos " + entreComillas(ruta) + ": " +
                          razonDelSistema(error) + ".");
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
  if (const int error = reemplazaFichero(ruta, contenido); error != 0) fallaEscritura(ruta, error);
}

}  // namespace valdor
