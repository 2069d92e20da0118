// A bounded random driver for the fuzz targets, for a build without libFuzzer (GCC).
//
//   fuzz_X                 random inputs for VALDOR_FUZZ_SEGUNDOS seconds (60 unless set)
//   fuzz_X FICHERO|CARPETA  each file given (each file of a folder) once: the replay of
//                          the cases kept in tests/fuzz/casos/X
//
// The random inputs are built from the target's seeds and kept cases (cut, spliced,
// bytes changed, inserted and repeated), from an alphabet of the bytes that matter to
// the readers (line ends, blanks, digits, points, path marks, control bytes, accents),
// and from plain random bytes; a few are long enough to cross the readers' blocks. The
// seed of the run is printed and can be set with VALDOR_FUZZ_SEMILLA to repeat it.
//
// An input that makes the target fail (a sanitizer's report or a failed check) is
// written to fuzz-fallos/X-<hash> in the current folder, and its path printed, before
// the process ends: copied into tests/fuzz/casos/X it becomes part of the replay test.

#include <sanitizer/common_interface_defs.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "tests/apoyo.h"
#include "tests/fuzz/objetivo.h"

namespace valdor::fuzz {
namespace {

namespace fs = std::filesystem;

// The input being tried, for the report of a failure. The driver is one thread and
// the sanitizer's death callback takes no argument, so it lives here.
const std::string* entradaEnCurso = nullptr;

void guardaEntrada() {
  if (!entradaEnCurso) return;
  std::uint64_t hash = 1469598103934665603ull;  // FNV-1a
  for (unsigned char c : *entradaEnCurso) hash = (hash ^ c) * 1099511628211ull;
  char nombre[32];
  std::snprintf(nombre, sizeof nombre, "%016llx", static_cast<unsigned long long>(hash));
  std::error_code ec;
  fs::create_directories("fuzz-fallos", ec);
  const fs::path ruta = fs::absolute(fs::path("fuzz-fallos") / (std::string(NOMBREOBJETIVO) + "-" + nombre));
  pruebas::escribeBytes(ruta, *entradaEnCurso);
  std::cerr << "Entrada que falla (" << entradaEnCurso->size() << " bytes) guardada en " << ruta.string()
            << "\nCópiela a tests/fuzz/casos/" << NOMBREOBJETIVO << "/ para que se repita como prueba.\n";
}

void prueba(const std::string& entrada) {
  entradaEnCurso = &entrada;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(entrada.data()), entrada.size());
  entradaEnCurso = nullptr;
}

// ---- The random inputs -------------------------------------------------------------------

class Generador {
 public:
  Generador(std::uint64_t semilla, std::vector<std::string> base) : azar_(semilla), base_(std::move(base)) {
    if (base_.empty()) base_.push_back("");
  }

  std::string siguiente() {
    switch (entre(0, 9)) {
      case 0: return aleatoria(entre(0, 600));
      case 1: return deAlfabeto(entre(0, 2000));
      case 2: return larga();
      default: return mutada();
    }
  }

 private:
  std::size_t entre(std::size_t desde, std::size_t hasta) {
    return std::uniform_int_distribution<std::size_t>(desde, hasta)(azar_);
  }
  char byte() { return static_cast<char>(entre(0, 255)); }
  char deAlfabeto() {
    static const std::string ALFABETO =
        std::string("\r\n\r\n    0123456789..--,ETFEMPTRAETIXYZ:\\/0C\t\x7F\x1A\xF1\xD1\x81\x9D\xFF") + '\0';
    return ALFABETO[entre(0, ALFABETO.size() - 1)];
  }
  std::string aleatoria(std::size_t n) {
    std::string s(n, '\0');
    for (char& c : s) c = byte();
    return s;
  }
  std::string deAlfabeto(std::size_t n) {
    std::string s(n, '\0');
    for (char& c : s) c = deAlfabeto();
    return s;
  }
  // Around the size of one or two of the readers' 64 KiB blocks, made of repeated
  // pieces, with a line end often right at a block's edge.
  std::string larga() {
    const std::size_t bloque = 64 * 1024;
    std::string pieza = mutada();
    if (pieza.empty()) pieza = deAlfabeto(entre(1, 80));
    std::string s;
    const std::size_t objetivo = bloque * entre(1, 2) + entre(0, 4) - 2;
    while (s.size() < objetivo) s += pieza;
    s.resize(objetivo);
    if (entre(0, 1)) s.insert(std::min(bloque - 1, s.size()), entre(0, 1) ? "\r\n" : "\r");
    return s;
  }
  std::string mutada() {
    std::string s = base_[entre(0, base_.size() - 1)];
    const std::size_t cambios = entre(1, 8);
    for (std::size_t i = 0; i < cambios; ++i) {
      const std::size_t p = s.empty() ? 0 : entre(0, s.size() - 1);
      switch (entre(0, 6)) {
        case 0:
          if (!s.empty()) s[p] = byte();
          break;
        case 1:
          if (!s.empty()) s[p] = deAlfabeto();
          break;
        case 2: s.insert(s.begin() + static_cast<std::ptrdiff_t>(p), deAlfabeto()); break;
        case 3:
          if (!s.empty()) s.erase(p, entre(1, 8));
          break;
        case 4: s.resize(entre(0, s.size() + 4), deAlfabeto()); break;
        case 5: {
          const std::string& otra = base_[entre(0, base_.size() - 1)];
          s = s.substr(0, p) + otra.substr(std::min(otra.size(), entre(0, otra.size())));
          break;
        }
        default:
          if (!s.empty()) s.insert(p, s.substr(p, entre(1, 40)));
          break;
      }
    }
    return s;
  }

  std::mt19937_64 azar_;
  std::vector<std::string> base_;
};

std::vector<std::string> casosDe(const fs::path& ruta) {
  std::vector<std::string> casos;
  std::error_code ec;
  if (fs::is_directory(ruta, ec)) {
    std::vector<fs::path> ficheros;
    for (const auto& e : fs::directory_iterator(ruta, ec))
      if (e.is_regular_file()) ficheros.push_back(e.path());
    std::sort(ficheros.begin(), ficheros.end());
    for (const auto& f : ficheros) casos.push_back(pruebas::leeBytes(f));
  } else if (fs::is_regular_file(ruta, ec)) {
    casos.push_back(pruebas::leeBytes(ruta));
  }
  return casos;
}

int repite(int argc, char** argv) {
  std::size_t total = 0;
  for (int i = 1; i < argc; ++i) {
    const std::vector<std::string> casos = casosDe(argv[i]);
    for (const std::string& c : casos) prueba(c);
    total += casos.size();
  }
  std::cout << NOMBREOBJETIVO << ": " << total << " casos repetidos sin fallos.\n";
  return 0;
}

int busca() {
  const char* segundos = std::getenv("VALDOR_FUZZ_SEGUNDOS");
  const double duracion = segundos ? std::atof(segundos) : 60.0;
  const char* textoSemilla = std::getenv("VALDOR_FUZZ_SEMILLA");
  const std::uint64_t semilla =
      textoSemilla ? std::strtoull(textoSemilla, nullptr, 10)
                   : static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  std::cout << NOMBREOBJETIVO << ": semilla " << semilla << ", " << duracion << " s" << std::endl;

  std::vector<std::string> base = semillas();
  for (std::string& c : casosDe(VALDOR_CASOS_FUZZ)) base.push_back(std::move(c));
  for (const std::string& b : base) prueba(b);

  Generador generador(semilla, base);
  const auto fin = std::chrono::steady_clock::now() + std::chrono::duration<double>(duracion);
  std::size_t entradas = 0;
  while (std::chrono::steady_clock::now() < fin) {
    for (int i = 0; i < 64; ++i, ++entradas) prueba(generador.siguiente());
  }
  std::cout << NOMBREOBJETIVO << ": " << entradas << " entradas sin fallos." << std::endl;
  return 0;
}

}  // namespace

void fallaFuzz(const std::string& que) {
  std::cerr << NOMBREOBJETIVO << ": " << que << "\n";
  guardaEntrada();
  std::abort();
}

}  // namespace valdor::fuzz

int main(int argc, char** argv) {
  __sanitizer_set_death_callback(valdor::fuzz::guardaEntrada);
  return argc > 1 ? valdor::fuzz::repite(argc, argv) : valdor::fuzz::busca();
}
