// The TC1 of the marked companies of a FAN file, worked out ahead on a second thread
// while the first works out the workers' statements. The companies' TC1 runs read the
// month and the masters and nothing that the statement run writes, and each starts from
// a cleared statement, so a company's run gives the same lines on either thread. The
// second thread reads through stores of its own (connections of its own to the same
// files), and gives up at the first thing that is not plain: a store that fails, a
// message of any kind, an error. The file then runs that company, and every later one,
// itself, and meets and reports the same thing in its turn.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace valdor {

class Programa;
struct COTIZACION;

// What the TC1 run of one company leaves for the file: the wizard's guide text, entries
// 1 to 18 of LINEASTC1, and the refund line of entry 19 when the run made one.
struct ResultadoTC1 {
  std::string empresa;
  std::string guia;
  std::array<std::string, 19> lineas;  // entries 1 to 18; 0 unused
  std::optional<std::string> dba;
};

// The companies a FAN file runs TC1VAL for, in its order: the marked rows of the grid
// whose code reads as a number.
std::vector<std::string> empresasDelTC1(const COTIZACION& sel);

class AdelantoTC1 {
 public:
  // Starts the second thread over the companies of `sel`, for its period and its
  // "Dev. en Cta.", with the folders, separators and moment of `programa`.
  AdelantoTC1(const Programa& programa, const COTIZACION& sel);
  // Stops the thread after the company it is on, and waits for it.
  ~AdelantoTC1();
  AdelantoTC1(const AdelantoTC1&) = delete;
  AdelantoTC1& operator=(const AdelantoTC1&) = delete;

  // The result of the next company, waiting for it, when it is `empresa`; std::nullopt
  // when the thread gave up before it, or the file asks for another company than the
  // thread worked out: from then on every answer is std::nullopt.
  std::optional<ResultadoTC1> toma(std::string_view empresa);

 private:
  struct Encargo;
  void trabaja(std::stop_token alto, const Encargo& encargo);
  void publica(ResultadoTC1 resultado);
  void acaba();

  std::mutex cerrojo_;
  std::condition_variable listo_;
  std::vector<ResultadoTC1> hechos_;  // in the file's order
  std::size_t entregados_ = 0;
  bool acabado_ = false;     // nothing more will come
  bool abandonado_ = false;  // the file asked out of order: nothing more is handed
  std::jthread hilo_;        // last, so that it stops before the rest goes
};

}  // namespace valdor
