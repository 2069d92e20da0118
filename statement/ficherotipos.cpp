// The yearly rate file: its name, its writing and the reading of the rates.
#include "statement/ficherotipos.h"

#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "stores/ficheros.h"
#include "stores/numeros.h"
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

// ---- Reading ---------------------------------------------------------------------------

namespace {

// How long a read waits for a record that another opening of the file holds.

// An open file descriptor, closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int fd() const { return fd_; }
  bool abierto() const { return fd_ >= 0; }

 private:
  int fd_;
};


std::array<std::string, 4> registroEnBlanco() {
  const std::string blanco(ANCHOTIPCAMPO, ' ');
  return {blanco, blanco, blanco, blanco};
}

bool existeConContenido(const fs::path& ruta) {
  std::error_code ec;
  if (!fs::is_regular_file(ruta, ec)) return false;
  const auto tam = fs::file_size(ruta, ec);
  return !ec && tam > 0;
}

// Gives a missing general file its 32 blank records. The file is made here, so a file
// that exists (one that holds rates, or one that another copy of the program has just
// made) is never changed. Any failure leaves things as they are: the reads then find
// no records and give blanks.
void preparaFicheroGeneral(const fs::path& ruta) {
  Descriptor d(::open(ruta.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!d.abierto()) return;
  struct stat st {};
  if (::fstat(d.fd(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_size != 0) return;
  const std::string blancos(REGISTROSTIPOSMINIMOS * LONGITUDREGISTROTIPOS, ' ');
  (void)escribeTodo(d.fd(), blancos, 0);
}

}  // namespace

std::optional<std::array<std::string, 4>> leeRegistroTipos(const fs::path& ruta, int numero) {
  if (numero < 1) return registroEnBlanco();
  bool escritura = true;
  int fd = ::open(ruta.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0 && (errno == EACCES || errno == EROFS || errno == EPERM)) {
    escritura = false;
    fd = ::open(ruta.c_str(), O_RDONLY | O_CLOEXEC);
  }
  Descriptor d(fd);
  if (!d.abierto()) return std::nullopt;

  const off_t desde = static_cast<off_t>(numero - 1) * static_cast<off_t>(LONGITUDREGISTROTIPOS);
  CerrojoRegistro cerrojo(d.fd(), desde, static_cast<off_t>(LONGITUDREGISTROTIPOS), escritura);
  if (cerrojo.ocupado()) return std::nullopt;

  std::string bytes(LONGITUDREGISTROTIPOS, ' ');
  std::size_t leidos = 0;
  while (leidos < bytes.size()) {
    const ssize_t n = ::pread(d.fd(), bytes.data() + leidos, bytes.size() - leidos,
                              desde + static_cast<off_t>(leidos));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    leidos += static_cast<std::size_t>(n);
  }
  if (leidos < bytes.size()) return registroEnBlanco();

  std::array<std::string, 4> campos;
  for (std::size_t k = 0; k < 4; ++k) campos[k] = imprimible(bytes.substr(k * ANCHOTIPCAMPO, ANCHOTIPCAMPO));
  return campos;
}

fs::path ficheroTiposDe(int ano, int mes, std::string_view codigoEmpresa,
                        const std::function<fs::path(std::string_view)>& resuelve) {
  if (!recorta(codigoEmpresa).empty()) {
    const fs::path propio = resuelve(nombreFicheroTipos(ano, mes, codigoEmpresa));
    if (existeConContenido(propio)) return propio;
  }
  const fs::path general = resuelve(nombreFicheroTipos(ano, mes));
  std::error_code ec;
  if (!fs::exists(fs::symlink_status(general, ec))) preparaFicheroGeneral(general);
  return general;
}

fs::path ficheroTiposDe(const fs::path& carpeta, int ano, int mes, std::string_view codigoEmpresa) {
  return ficheroTiposDe(ano, mes, codigoEmpresa,
                        [&carpeta](std::string_view nombre) { return resuelveFichero(carpeta, nombre); });
}

namespace {

// The records whose fields the rates come from, and the last one read.
constexpr int REGISTROSUSADOS[] = {12, 13, 15, 16, 19, 20, 21, 23, 24, 26, 27, 28};
constexpr int ULTIMOREGISTROLEIDO = 28;

// A field as the rates take it: blank, or decimal text with blanks around it.
bool esCampoDeTipo(std::string_view campo) { return esTextoDecimal(recorta(campo)); }

[[noreturn]] void fallaLecturaTipos(const fs::path& ruta, const std::string& motivo) {
  throw ErrorFicheroTipos("El fichero de tipos " + entreComillas(ruta) + " " + motivo +
                          ". Sin sus tipos no se pueden calcular las cuotas.");
}

}  // namespace

void compruebaFicheroTipos(const fs::path& ruta) {
  Descriptor d(::open(ruta.c_str(), O_RDONLY | O_CLOEXEC));
  if (!d.abierto()) {
    if (errno == ENOENT || errno == ENOTDIR) return;  // missing: blank rates
    fallaLecturaTipos(ruta, "no se puede leer: " + razonDelSistema(errno));
  }
  struct stat st {};
  if (::fstat(d.fd(), &st) != 0) fallaLecturaTipos(ruta, "no se puede leer: " + razonDelSistema(errno));
  if (S_ISDIR(st.st_mode)) fallaLecturaTipos(ruta, "es una carpeta, no un fichero");
  if (st.st_size == 0) fallaLecturaTipos(ruta, "est\xE1 vac\xEDo");

  std::string bytes(ULTIMOREGISTROLEIDO * LONGITUDREGISTROTIPOS, ' ');
  std::size_t leidos = 0;
  while (leidos < bytes.size()) {
    const ssize_t n = ::pread(d.fd(), bytes.data() + leidos, bytes.size() - leidos, static_cast<off_t>(leidos));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fallaLecturaTipos(ruta, "no se puede leer: " + razonDelSistema(errno));
    if (n == 0) break;
    leidos += static_cast<std::size_t>(n);
  }
  if (leidos < bytes.size())
    fallaLecturaTipos(ruta, "est\xE1 da\xF1" "ado: mide " + std::to_string(leidos) + " bytes y no llega al registro " +
                                std::to_string(ULTIMOREGISTROLEIDO) + " (" + std::to_string(bytes.size()) + " bytes)");
  for (const int numero : REGISTROSUSADOS) {
    const std::size_t desde = static_cast<std::size_t>(numero - 1) * LONGITUDREGISTROTIPOS;
    for (std::size_t k = 0; k < 4; ++k) {
      const std::string_view campo = std::string_view(bytes).substr(desde + k * ANCHOTIPCAMPO, ANCHOTIPCAMPO);
      if (!esCampoDeTipo(campo))
        fallaLecturaTipos(ruta, "est\xE1 da\xF1" "ado: el campo " + std::to_string(k + 1) + " del registro " +
                                    std::to_string(numero) + " no es un tipo (\"" + imprimible(campo) + "\")");
    }
  }
}

std::string tipoPartido(double valor) { return std::string(6, ' ') + izquierda(recorta(textoGeneral(valor)), 5); }

bool LEETIPOS(const fs::path& carpeta, int ano, int mes, std::string_view codigoEmpresa, TiposLeidos& t) {
  if (!anoConTipos(ano)) return false;
  leeTipos(ficheroTiposDe(carpeta, ano, mes, codigoEmpresa), t);
  return true;
}

void leeTipos(const fs::path& ruta, TiposLeidos& t) {
  compruebaFicheroTipos(ruta);
  TiposLeidos n;
  // Reads record `numero` (blank when it cannot be read), keeps its fields 2 and 3 as
  // they stand, and gives its four fields.
  auto lee = [&](int numero) {
    auto r = leeRegistroTipos(ruta, numero).value_or(registroEnBlanco());
    n.campo2[static_cast<std::size_t>(numero)] = r[1];
    n.campo3[static_cast<std::size_t>(numero)] = r[2];
    return r;
  };
  auto v = [](const std::string& campo) { return REDONDEA2(std::string_view(campo)); };

  auto r = lee(12);
  n.e1 = v(r[1]);
  n.CCTIPO = r[3];
  const double cc = valorNumerico(n.CCTIPO);
  n.CCTIPO45 = tipoPartido(cc * 0.45);
  n.CCTIPO55 = tipoPartido(cc * 0.55);

  n.FPTIPO = lee(13)[3];
  n.HETIPO = lee(15)[3];
  n.HNTIPO = lee(16)[3];

  r = lee(19);
  n.t2 = v(r[0]);
  n.b = v(r[1]);
  n.a = v(r[2]);
  n.c = v(r[3]);
  r = lee(20);
  n.t3 = v(r[0]);
  n.e2 = v(r[1]);
  n.t4 = v(r[2]);
  n.f = v(r[3]);
  if (n.t2 == 0) n.t2 = n.a;
  if (n.t3 == 0) n.t3 = n.a;
  if (n.t4 == 0) n.t4 = n.a;
  r = lee(21);
  n.q = v(r[1]);
  n.p = v(r[3]);

  n.OTTIPOS[1] = n.a + n.b + n.f + n.p;
  n.OTTIPO = textoGeneral(n.c + n.f + n.p);
  n.OT2TIPOS[1] = n.f + n.b + n.q;
  n.OT2TIPO = textoGeneral(n.c - n.a + n.f + n.q);

  (void)lee(22);  // read in its turn; nothing of it is used
  r = lee(23);
  n.g1 = v(r[0]);
  n.g2 = v(r[1]);
  n.g3 = v(r[2]);
  n.g4 = v(r[3]);
  r = lee(24);
  n.h1 = v(r[0]);
  n.h3 = v(r[2]);
  r = lee(26);
  n.k1 = v(r[0]);
  n.k2 = v(r[1]);
  // Record 27 holds two values that the rate loading keeps; this system reads them as
  // the hour prices of training, at a distance (field 1) and on site (field 2).
  r = lee(27);
  n.PRECIOHORADIST = v(r[0]);
  n.PRECIOHORAPRES = v(r[1]);
  r = lee(28);
  n.r2 = v(r[0]);
  n.r3 = v(r[1]);
  n.r4 = v(r[2]);

  n.OTTIPOS[2] = n.t2 + n.r2 + n.f + n.p;
  n.OTTIPOS[3] = n.t3 + n.r3 + n.f + n.p;
  n.OTTIPOS[4] = n.t4 + n.r4 + n.f + n.p;
  n.OT2TIPOS[2] = n.f + n.r2 + n.q;
  n.OT2TIPOS[3] = n.f + n.r3 + n.q;
  n.OT2TIPOS[4] = n.f + n.r4 + n.q;

  t = std::move(n);
}

const TiposLeidos* TiposDeLaEjecucion::lee(const fs::path& carpeta, int ano, int mes, std::string_view codigoEmpresa) {
  if (!anoConTipos(ano)) return nullptr;
  auto clave = std::make_tuple(ano, mes, recorta(codigoEmpresa));
  if (const auto it = porEmpresa_.find(clave); it != porEmpresa_.end()) return it->second;
  const fs::path ruta =
      ficheroTiposDe(ano, mes, codigoEmpresa, [&](std::string_view nombre) { return resuelve(carpeta, nombre); });
  auto it = porFichero_.find(ruta);
  if (it == porFichero_.end()) {
    TiposLeidos t;
    leeTipos(ruta, t);
    it = porFichero_.emplace(ruta, std::move(t)).first;
  }
  porEmpresa_.emplace(std::move(clave), &it->second);
  return &it->second;
}

fs::path TiposDeLaEjecucion::resuelve(const fs::path& carpeta, std::string_view nombre) {
  // The folder listed once, as resuelveFichero would list it for every name.
  if (!listada_ || *listada_ != carpeta) {
    listada_ = carpeta;
    nombres_.clear();
    std::error_code ec;
    const fs::path donde = carpeta.empty() ? fs::path(".") : carpeta;
    for (fs::directory_iterator it(donde, ec), fin; !ec && it != fin; it.increment(ec)) {
      std::string otro = it->path().filename().string();
      auto& hallado = nombres_[mayusculasAscii(otro)];
      hallado.insert(std::move(otro));
    }
  }
  const auto it = nombres_.find(mayusculasAscii(nombre));
  if (it == nombres_.end()) return carpeta / std::string(nombre);
  const auto exacto = it->second.find(std::string(nombre));
  return carpeta / (exacto != it->second.end() ? *exacto : *it->second.begin());
}

void LEETIPOSLIQ(const TiposLeidos& t, bool patronal, std::string& CCTIPO, std::string& HETIPO,
                 std::string& HNTIPO, std::string& FPTIPO, std::string& OTTIPO) {
  const auto& campo = patronal ? t.campo2 : t.campo3;
  auto v = [&](std::size_t registro) { return REDONDEA2(std::string_view(campo[registro])); };
  CCTIPO = campo[12];
  HETIPO = campo[15];
  HNTIPO = campo[16];
  FPTIPO = campo[13];
  OTTIPO = textoGeneral(patronal ? v(19) + v(20) + v(21) : v(19) + v(21));
}

}  // namespace valdor
