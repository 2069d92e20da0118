// Damaged Jet files, read under AddressSanitizer and UndefinedBehaviorSanitizer.
//
// Every Jet file of the sample office is copied and damaged in thousands of ways: cut
// short at every page boundary and inside pages, with bits flipped and bytes replaced in
// every kind of page it holds (the page's header fields, its table of rows or
// definitions, its contents, its end), or reduced to its first page followed by
// garbage. Each copy is opened as a store and, when it opens, read whole through table
// cursors. It must end with the message of a damaged store or with a complete reading,
// in bounded time, leaving the file as it was; and neither this process nor the
// readers it forks may trip a sanitizer.
//
// The sanitizers read their options when a process starts, and the readers are forks
// of this process: main() therefore runs the tests in a copy of itself started with the
// options that send every report to a folder of its own, and fails when that folder
// holds a report afterwards.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "stores/almacen.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::CarpetaTemporal;
using pruebas::escribeBytes;
using pruebas::leeBytes;

constexpr std::size_t PAGINA = 4096;
constexpr auto SILENCIO = std::chrono::seconds(5);
// A case that takes longer than the silence allowed plus this margin hung.
constexpr auto MARGEN = std::chrono::seconds(5);
// A case still running after this long is stopped with the whole test.
constexpr unsigned PLAZOMAXIMO = 60;

const char* const VARIABLE_INFORMES = "VALDOR_INFORMES_SANITIZADOR";

// The Jet files of the sample office (those of its files that are not Jet are left out).
std::vector<fs::path> ficherosJet() {
  std::vector<fs::path> r;
  for (const char* sub : {"programa", "trabajo"})
    for (const auto& e : fs::directory_iterator(fs::path(VALDOR_OFICINA_JET) / sub))
      if (e.path().extension() == ".MDB" && esJet(motorDe(e.path()))) r.push_back(e.path());
  std::sort(r.begin(), r.end());
  return r;
}

// ---- The damage -------------------------------------------------------------------

struct Dano {
  std::string descripcion;
  std::function<void(std::string&)> aplica;
  // The copy is the original cut short: what it still holds is the original's, so a
  // complete reading of it must give every value of the original.
  bool corte = false;
};

std::uint16_t leU16(const std::string& b, std::size_t i) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(b[i]) | static_cast<unsigned char>(b[i + 1]) << 8);
}

std::uint32_t leU32(const std::string& b, std::size_t i) {
  return static_cast<std::uint32_t>(leU16(b, i)) | static_cast<std::uint32_t>(leU16(b, i + 2)) << 16;
}

void escribeU32(std::string& b, std::size_t i, std::uint32_t n) {
  for (int k = 0; k < 4; ++k) b[i + k] = static_cast<char>(n >> (8 * k));
}

// The offsets of the fields of a page's header, by kind (Jet 4 layout): for the
// database's own page its version and the fields of its masked block; for a data page
// and a usage map (both kept as rows) the free space, the owner and the count of rows;
// for a table definition its next page, length, count of rows, columns and indices and
// its usage maps; for an index page its parent, neighbours, tail and prefix.
std::vector<std::size_t> camposDeCabecera(unsigned char tipo) {
  switch (tipo) {
    case 0x00: return {0x14, 0x18, 0x3C, 0x3E, 0x42, 0x56, 0x72};
    case 0x01:
    case 0x05: return {1, 2, 4, 8, 12};
    case 0x02: return {2, 4, 8, 16, 20, 40, 41, 43, 45, 47, 51, 55, 59};
    default: return {2, 4, 8, 12, 16, 20, 22};
  }
}

// The part of a page that locates what it holds: the table of row offsets of a row
// page, the column and index definitions of a table definition, the entry mask of an
// index page, the masked block of the database's page.
std::pair<std::size_t, std::size_t> zonaDeDirectorio(const std::string& b, std::size_t inicio, unsigned char tipo) {
  switch (tipo) {
    case 0x00: return {0x18, 0x98};
    case 0x01:
    case 0x05: {
      const std::size_t filas = std::min<std::size_t>(leU16(b, inicio + 12), 200);
      return {12, 14 + 2 * filas};
    }
    case 0x02: return {63, 63 + 512};
    default: return {0x1B, 0x1E0};
  }
}

class Danos {
 public:
  Danos(const std::string& nombre, const std::string& original) : original_(original) {
    std::seed_seq semilla(nombre.begin(), nombre.end());
    azar_.seed(semilla);
    cortes();
    porPaginas();
    mapasDesbordados();
    cabeceraConBasura();
  }
  const std::vector<Dano>& lista() const { return lista_; }

 private:
  std::size_t azar(std::size_t n) { return static_cast<std::size_t>(azar_() % n); }
  unsigned char byteAzar() { return static_cast<unsigned char>(azar_()); }
  std::string basura(std::size_t n) {
    std::string r(n, '\0');
    for (char& c : r) c = static_cast<char>(byteAzar());
    return r;
  }

  void anade(std::string descripcion, std::function<void(std::string&)> aplica, bool corte = false) {
    lista_.push_back({std::move(descripcion), std::move(aplica), corte});
  }
  void corta(std::size_t largo) {
    anade("cortado a " + std::to_string(largo) + " bytes", [largo](std::string& b) { b.resize(largo); }, true);
  }
  void invierteBit(std::string que, std::size_t posicion) {
    const unsigned bit = static_cast<unsigned>(azar(8));
    anade(que + ": bit " + std::to_string(bit) + " del byte " + std::to_string(posicion) + " invertido",
          [posicion, bit](std::string& b) { b[posicion] = static_cast<char>(b[posicion] ^ (1u << bit)); });
  }
  void sustituye(std::string que, std::size_t posicion, std::size_t n) {
    n = std::min(n, original_.size() - posicion);
    const std::string nuevos = basura(n);
    anade(que + ": " + std::to_string(n) + " bytes al azar desde " + std::to_string(posicion),
          [posicion, nuevos](std::string& b) { b.replace(posicion, nuevos.size(), nuevos); });
  }

  // Cut short at every page boundary, and inside pages down to a few bytes.
  void cortes() {
    const std::size_t paginas = original_.size() / PAGINA;
    for (std::size_t p = 1; p < paginas; ++p) corta(p * PAGINA);
    for (std::size_t largo : {1, 2, 4, 8, 20, 21, 100, 1000, 2048, 4095, 4097, 6000}) corta(largo);
    for (int i = 0; i < 8; ++i) corta(PAGINA * (1 + azar(paginas - 1)) + 1 + azar(PAGINA - 1));
    corta(original_.size() - 1);
  }

  // Damage in every page, at the places each kind of page is read from.
  void porPaginas() {
    for (std::size_t inicio = 0; inicio + PAGINA <= original_.size(); inicio += PAGINA) {
      const auto tipo = static_cast<unsigned char>(original_[inicio]);
      std::ostringstream que;
      que << "página " << inicio / PAGINA << " (tipo " << static_cast<int>(tipo) << ")";
      const std::string pagina = que.str();

      const std::vector<std::size_t> campos = camposDeCabecera(tipo);
      invierteBit(pagina + ", cabecera", inicio + campos[azar(campos.size())]);
      invierteBit(pagina + ", cabecera", inicio + campos[azar(campos.size())]);
      sustituye(pagina + ", cabecera", inicio + campos[azar(campos.size())], 4);

      const auto [desde, hasta] = zonaDeDirectorio(original_, inicio, tipo);
      sustituye(pagina + ", directorio", inicio + desde + azar(hasta - desde), 2);

      // The contents: what the page holds, its bytes that are not zero.
      std::vector<std::size_t> ocupados;
      for (std::size_t i = 16; i < PAGINA; ++i)
        if (original_[inicio + i] != '\0') ocupados.push_back(i);
      if (ocupados.empty()) ocupados.push_back(16 + azar(PAGINA - 16));
      invierteBit(pagina + ", contenido", inicio + ocupados[azar(ocupados.size())]);
      sustituye(pagina + ", contenido", inicio + ocupados[azar(ocupados.size())], 1 + azar(16));

      sustituye(pagina + ", final", inicio + PAGINA - 1 - azar(8), 8);
      sustituye(pagina + ", entera", inicio + 1, PAGINA - 1);
    }
  }

  // A table's usage map (Jet 4: a row of a data page, which the table's definition
  // points to at offset 55) that lists the pages itself, from a first page number and a
  // bitmap: the first page number made so large that the place of the map's last bit
  // wraps round to the page the map listed first, and that bit the only one set.
  void mapasDesbordados() {
    for (std::size_t definicion = 0; definicion + PAGINA <= original_.size(); definicion += PAGINA) {
      if (original_[definicion] != 0x02) continue;
      const std::uint32_t direccion = leU32(original_, definicion + 55);
      const std::size_t pagina = (direccion >> 8) * PAGINA, fila = direccion & 0xFF;
      if (pagina == 0 || pagina + PAGINA > original_.size() || original_[pagina] != 0x01 ||
          fila >= leU16(original_, pagina + 12))
        continue;
      const std::size_t desde = pagina + (leU16(original_, pagina + 14 + 2 * fila) & 0x1FFF);
      const std::size_t hasta = pagina + (fila == 0 ? PAGINA : leU16(original_, pagina + 12 + 2 * fila) & 0x1FFF);
      if (hasta < desde + 6 || hasta > pagina + PAGINA || original_[desde] != 0x00) continue;
      const std::size_t bits = (hasta - desde - 5) * 8;
      std::size_t primero = 0;
      while (primero < bits && !(static_cast<unsigned char>(original_[desde + 5 + primero / 8]) >> (primero % 8) & 1))
        ++primero;
      if (primero == bits) continue;
      const std::uint32_t desbordado =
          leU32(original_, desde + 1) + static_cast<std::uint32_t>(primero) - static_cast<std::uint32_t>(bits - 1);
      std::ostringstream que;
      que << "mapa de páginas de la definición de la página " << definicion / PAGINA << " desbordado";
      anade(que.str(), [desde, hasta, desbordado](std::string& b) {
        escribeU32(b, desde + 1, desbordado);
        std::fill(b.begin() + static_cast<std::ptrdiff_t>(desde + 5), b.begin() + static_cast<std::ptrdiff_t>(hasta),
                  '\0');
        b[hasta - 1] = static_cast<char>(0x80);
      });
    }
  }

  // The database's first page followed by garbage.
  void cabeceraConBasura() {
    for (std::size_t largo : {PAGINA, 10 * PAGINA, original_.size() - PAGINA + 1000}) {
      const std::string resto = basura(largo);
      anade("primera página y " + std::to_string(largo) + " bytes de basura",
            [resto](std::string& b) { b = b.substr(0, PAGINA) + resto; });
    }
  }

  const std::string& original_;
  std::mt19937 azar_;
  std::vector<Dano> lista_;
};

// ---- The reading --------------------------------------------------------------------

// Every row and every column of every table of an open store, read through table
// cursors, as text: the name of each table, then its rows, a value per line.
std::string leeEntero(Almacen& a) {
  std::vector<std::string> tablas;
  Consulta c = a.consulta("SELECT name FROM sqlite_master WHERE type='table'");
  while (c.siguiente()) tablas.push_back(c.campo(0).texto());
  std::string r;
  for (const std::string& nombre : tablas) {
    Tabla t;
    t.abre(a, nombre);
    r += "[" + nombre + "]\n";
    for (t.primero(); !t.fin(); t.siguiente())
      for (const DefColumna& col : t.columnas()) r += col.nombre + "=" + t.campo(col.nombre).texto() + "\n";
  }
  return r;
}

OpcionesAlmacen opciones() {
  OpcionesAlmacen o;
  o.jet.silencioMaximo = SILENCIO;
  return o;
}

// The case running, for the message of a case stopped by the alarm.
char casoEnCurso[512];

void plazoAgotado(int) {
  const char aviso[] = "\nCaso colgado, detenido: ";
  [[maybe_unused]] auto r = ::write(STDERR_FILENO, aviso, sizeof aviso - 1);
  r = ::write(STDERR_FILENO, casoEnCurso, std::strlen(casoEnCurso));
  r = ::write(STDERR_FILENO, "\n", 1);
  ::_exit(3);
}

// The sanitizers' reports written so far.
std::vector<fs::path> informes() {
  std::vector<fs::path> r;
  std::error_code ec;
  for (fs::directory_iterator i(std::getenv(VARIABLE_INFORMES), ec), fin; !ec && i != fin; i.increment(ec))
    r.push_back(i->path());
  return r;
}

// Runs `falta` in a child that, like a reader, writes nothing to the standard outputs;
// returns the report it left, removed so that it counts for nothing at the end.
std::string informeDeUnHijo(void (*falta)()) {
  const pid_t hijo = ::fork();
  if (hijo == 0) {
    std::freopen("/dev/null", "w", stderr);
    falta();
    ::_exit(0);
  }
  int estado = 0;
  while (::waitpid(hijo, &estado, 0) < 0 && errno == EINTR) {
  }
  std::string informe;
  for (const fs::path& p : informes())
    if (p.extension() == "." + std::to_string(hijo)) {
      informe += leeBytes(p);
      fs::remove(p);
    }
  return informe;
}

volatile int indiceFuera = 4;

void desbordaMemoria() {
  volatile char* volatile p = new char[4];
  p[indiceFuera] = 1;
  delete[] p;
}

void desbordaEntero() {
  volatile int n = 2147483647;
  n = n + indiceFuera;
}

// The check at the end counts for something only if the reports of a reader, a child
// with no standard error, do reach the folder: one of each sanitizer is made here.
TEST(JetDanado, LosInformesDeUnLectorLleganALaCarpeta) {
  EXPECT_NE(informeDeUnHijo(desbordaMemoria).find("AddressSanitizer: heap-buffer-overflow"), std::string::npos);
  EXPECT_NE(informeDeUnHijo(desbordaEntero).find("runtime error: signed integer overflow"), std::string::npos);
}

TEST(JetDanado, CadaCopiaDanadaDaElMensajeOSeLeeEnteraSinColgarseNiCambiar) {
  CarpetaTemporal c;
  ::signal(SIGALRM, plazoAgotado);
  std::size_t probados = 0, conMensaje = 0, leidos = 0, colgados = 0, silenciosos = 0;
  std::chrono::steady_clock::duration masLento{};
  const auto inicioPrueba = std::chrono::steady_clock::now();
  for (const fs::path& original : ficherosJet()) {
    const std::string bytes = leeBytes(original);
    const fs::path copia = c.ruta() / original.filename();
    std::string contenido;
    {
      escribeBytes(copia, bytes);
      Almacen a;
      a.abre(copia, opciones());
      contenido = leeEntero(a);
    }
    ASSERT_NE(contenido.find("="), std::string::npos) << original << ": el original se lee sin valores";
    Danos danos(original.filename().string(), bytes);
    for (const Dano& d : danos.lista()) {
      const std::string caso = original.filename().string() + ", " + d.descripcion;
      std::snprintf(casoEnCurso, sizeof casoEnCurso, "%s", caso.c_str());
      std::string danado = bytes;
      d.aplica(danado);
      escribeBytes(copia, danado);
      ++probados;
      const std::size_t informesAntes = informes().size();

      const auto inicio = std::chrono::steady_clock::now();
      ::alarm(PLAZOMAXIMO);
      Almacen a;
      bool abierto = false;
      try {
        a.abre(copia, opciones());
        abierto = true;
      } catch (const ErrorAlmacen& e) {
        ++conMensaje;
        EXPECT_EQ(e.tipo(), ErrorAlmacen::Tipo::Danado) << caso << ": " << e.what();
        EXPECT_NE(std::string(e.what()).find(original.filename().string()), std::string::npos)
            << caso << ": " << e.what();
      } catch (const std::exception& e) {
        ADD_FAILURE() << caso << ": " << e.what();
      }
      if (abierto) {
        try {
          const std::string leido = leeEntero(a);
          ++leidos;
          // A copy cut so short that its header no longer reads as Jet is opened as an
          // SQLite store: what SQLite makes of it is not the Jet reader's to answer.
          if (d.corte && esJet(motorDe(copia))) {
            EXPECT_EQ(leido, contenido) << caso << ": se leyó entero con valores perdidos";
          }
        } catch (const std::exception& e) {
          ADD_FAILURE() << caso << ": abierto, pero no se puede leer: " << e.what();
        }
      }
      a.cierra();
      ::alarm(0);
      const auto duracion = std::chrono::steady_clock::now() - inicio;
      masLento = std::max(masLento, duracion);
      if (duracion >= SILENCIO) ++silenciosos;
      if (duracion > SILENCIO + MARGEN) {
        ++colgados;
        ADD_FAILURE() << caso << ": colgado";
      }
      EXPECT_EQ(informes().size(), informesAntes) << caso << ": el sanitizador escribió un informe";
      EXPECT_EQ(leeBytes(copia), danado) << caso << ": el fichero ha cambiado";
      fs::remove(copia);
    }
  }
  using segundos = std::chrono::duration<double>;
  std::cout << std::fixed << std::setprecision(2) << "Ficheros Jet dañados: " << probados << " probados, " << conMensaje
            << " con el mensaje de fichero dañado, " << leidos << " leídos sin daño, " << colgados << " colgados ("
            << silenciosos << " lectores detenidos por silencio; el caso más lento, "
            << segundos(masLento).count() << " s; en total, "
            << segundos(std::chrono::steady_clock::now() - inicioPrueba).count() << " s)" << std::endl;
  EXPECT_EQ(probados, conMensaje + leidos);
  EXPECT_GT(conMensaje, 0u);
  EXPECT_GT(leidos, 0u);
}

// ---- The sanitizers' reports -----------------------------------------------------------

// Runs the tests in a copy of this program whose sanitizers write their reports into a
// folder of its own, forks included; fails when any report was written.
int ejecutaVigilado(char** argv) {
  CarpetaTemporal carpeta;
  const std::string base = (carpeta.ruta() / "san").string();
  ::setenv(VARIABLE_INFORMES, carpeta.ruta().c_str(), 1);
  // A small quarantine keeps the process small, and so each fork of a reader cheap.
  ::setenv("ASAN_OPTIONS", ("log_path=" + base + ":abort_on_error=0:quarantine_size_mb=16").c_str(), 1);
  ::setenv("UBSAN_OPTIONS", ("log_path=" + base + ":print_stacktrace=1:halt_on_error=1").c_str(), 1);
  const pid_t hijo = ::fork();
  if (hijo < 0) return 1;
  if (hijo == 0) {
    ::execv("/proc/self/exe", argv);
    ::_exit(127);
  }
  int estado = 0;
  while (::waitpid(hijo, &estado, 0) < 0 && errno == EINTR) {
  }
  int escritos = 0;
  for (const auto& e : fs::directory_iterator(carpeta.ruta())) {
    ++escritos;
    std::cerr << "Informe del sanitizador " << e.path().filename() << ":\n" << leeBytes(e.path()) << "\n";
  }
  std::cout << "Informes del sanitizador: " << escritos << std::endl;
  return WIFEXITED(estado) && WEXITSTATUS(estado) == 0 && escritos == 0 ? 0 : 1;
}

// With GCC, UBSan's runtime is a library of its own beside ASan's, and the report path
// that UBSAN_OPTIONS gives it is set in ASan's instead: it is set here in its own.
void dirigeInformesDeUbsan() {
  void* ubsan = ::dlopen("libubsan.so.1", RTLD_NOW | RTLD_NOLOAD);
  if (!ubsan) return;
  if (auto* fija = reinterpret_cast<void (*)(const char*)>(::dlsym(ubsan, "__sanitizer_set_report_path")))
    fija((fs::path(std::getenv(VARIABLE_INFORMES)) / "san").c_str());
}

}  // namespace
}  // namespace valdor

int main(int argc, char** argv) {
  if (!std::getenv(valdor::VARIABLE_INFORMES)) return valdor::ejecutaVigilado(argv);
  valdor::dirigeInformesDeUbsan();
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
