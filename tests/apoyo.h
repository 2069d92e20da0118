// Support shared by the tests: a temporary folder that removes itself, files read and
// written whole, the failure a call throws, and a recorder of the rules' messages and
// questions with scripted answers.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "stores/dialogos.h"

namespace valdor::pruebas {

class CarpetaTemporal {
 public:
  CarpetaTemporal();
  ~CarpetaTemporal();
  CarpetaTemporal(const CarpetaTemporal&) = delete;
  CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;
  const std::filesystem::path& ruta() const { return ruta_; }
  std::filesystem::path operator/(std::string_view nombre) const { return ruta_ / std::string(nombre); }

 private:
  std::filesystem::path ruta_;
};

// The program and work folders "programa" and "trabajo" made in `c`.
void creaCarpetas(const CarpetaTemporal& c);

// The whole content of a file as bytes ("" when missing), and a file written whole.
std::string leeBytes(const std::filesystem::path& ruta);
void escribeBytes(const std::filesystem::path& ruta, std::string_view bytes);
// The records of an exchange file, each without its CR LF (a last piece without one is
// given as it stands).
std::vector<std::string> registros(const std::filesystem::path& ruta);

// The `E` that `f` throws; none when it throws nothing.
template <typename E, typename F>
std::optional<E> lanzado(F&& f) {
  try {
    f();
  } catch (const E& e) {
    return e;
  }
  return std::nullopt;
}
// The message of the `E` that `f` throws; "sin error" when it throws nothing.
template <typename E, typename F>
std::string mensajeDe(F&& f) {
  const std::optional<E> e = lanzado<E>(std::forward<F>(f));
  return e ? e->what() : "sin error";
}

// A text quoted for the shell.
std::string paraLaShell(const std::string& texto);

// What a run of valdor-cli gave: its exit status and its two outputs.
struct Resultado {
  int estado = -1;
  std::string salida;
  std::string errores;
};

// Runs valdor-cli, with the folders "programa" and "trabajo" of `c` unless
// `conCarpetas` is false, and the given arguments; its outputs are kept in `c`.
Resultado valdor(const CarpetaTemporal& c, const std::vector<std::string>& argumentos, bool conCarpetas = true);

class DialogosGrabador : public Dialogos {
 public:
  struct Aviso {
    std::string titulo;
    std::string texto;
    Icono icono;
  };

  void mensaje(std::string_view titulo, std::string_view texto, Icono icono) override {
    mensajes.push_back({std::string(titulo), std::string(texto), icono});
  }
  bool pregunta(std::string_view titulo, std::string_view texto, bool) override {
    preguntas.push_back({std::string(titulo), std::string(texto), Icono::Pregunta});
    if (respuestas.empty()) return false;
    const bool r = respuestas.front();
    respuestas.pop_front();
    return r;
  }
  Guardado preguntaGuardar(std::string_view titulo, std::string_view texto) override {
    preguntas.push_back({std::string(titulo), std::string(texto), Icono::Exclamacion});
    if (guardados.empty()) return Guardado::Cancelar;
    const Guardado r = guardados.front();
    guardados.pop_front();
    return r;
  }
  std::optional<std::string> entrada(std::string_view titulo, std::string_view texto) override {
    preguntas.push_back({std::string(titulo), std::string(texto), Icono::Pregunta});
    if (entradas.empty()) return std::nullopt;
    auto r = entradas.front();
    entradas.pop_front();
    return r;
  }
  void progreso(int porcentaje, std::string_view e1, std::string_view e2) override {
    progresos.push_back({std::to_string(porcentaje), std::string(e1) + "|" + std::string(e2), Icono::Informacion});
    if (alProgreso) alProgreso(porcentaje);
  }
  void puntero(Puntero p) override { punteros.push_back(p); }

  std::vector<Aviso> mensajes;
  std::vector<Aviso> preguntas;
  std::vector<Aviso> progresos;
  std::vector<Puntero> punteros;
  // What a test does in the middle of a run, at each progress it tells (a stop, a click).
  std::function<void(int porcentaje)> alProgreso;
  std::deque<bool> respuestas;
  std::deque<Guardado> guardados;
  std::deque<std::optional<std::string>> entradas;
};

}  // namespace valdor::pruebas
