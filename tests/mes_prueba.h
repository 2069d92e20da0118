// A month of payroll for the engine's tests: the master stores, the period store of
// 10/2026 and the work stores made in a temporary folder, with helpers that add rows.
// Every statement step handed to the run is recorded with its working table.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/cotval.h"
#include "fan/seleccion.h"
#include "shell/programa.h"
#include "stores/esquemas.h"
#include "tests/apoyo.h"
#include "tests/trabajo_prueba.h"

namespace valdor::pruebas {

namespace fs = std::filesystem;
using Columnas = std::vector<std::pair<std::string, Valor>>;

inline void inserta(Almacen& a, const std::string& tabla, const Columnas& columnas) {
  std::string nombres, marcas;
  std::vector<Valor> valores;
  for (const auto& [n, v] : columnas) {
    nombres += (nombres.empty() ? "" : ", ") + n;
    marcas += marcas.empty() ? "?" : ", ?";
    valores.push_back(v);
  }
  a.consulta("INSERT INTO " + tabla + " (" + nombres + ") VALUES (" + marcas + ")", valores).siguiente();
}

struct Mes {
  Mes() {
    fs::create_directories(carpetas.programa);
    fs::create_directories(carpetas.trabajo);
    creaMaestros(carpetas.programa);
    programa.arranca();
    Almacenes& a = programa.almacenes;
    a.MESPERIODO = "10";
    a.ANOPERIODO = "2026";
    a.CREAPERIODO();
    a.ABREPERIODO();
    a.CREAFORMACION();
    a.ABREFORMACION();
    calculo.v.MESCOT = 10;
    calculo.v.ANOCOT = 2026;
    calculo.CALCULATRABAJADOR = [this](COTVAL& c) {
      filas.push_back(c.GRID1);
      variables.push_back(c.v);
    };
    sel.grid = {{"UNO", true, "28000000001", "", "", 0}, {"OTRA", false, "28000000002", "", "", 0}};
  }
  // A payroll row of 30 days, contract 100, epigraph 113, with the columns given.
  void nomina(const std::string& bsse, const std::string& bmatri, Columnas mas = {}) {
    Columnas c{{"BSSE", bsse},    {"BMATRI", bmatri}, {"BNOMBRE", "EMPRESA " + bsse}, {"BTRABA", "RUIZ SOLA, ANA"},
               {"BDIAS", "30"},   {"BDIAL", "30"},    {"BCONT", "100"},               {"BEPIG", "113"},
               {"BCEN", "001"},   {"BSEC", "001"}};
    for (auto& m : mas) {
      const auto igual = std::find_if(c.begin(), c.end(), [&](const auto& x) { return x.first == m.first; });
      if (igual != c.end()) igual->second = m.second;
      else c.push_back(m);
    }
    inserta(programa.almacenes.periodo, "NOMIN", c);
  }
  void trabajador(const std::string& emp, const std::string& tra, Columnas mas = {}) {
    Columnas c{{"WKEMP", emp}, {"TRA1", tra}};
    c.insert(c.end(), mas.begin(), mas.end());
    inserta(programa.almacenes.producto, "WK", c);
  }
  void corre() { calculo.CALCULAEMPRESAS(sel); }

  CarpetaTemporal c;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  DialogosGrabador dialogos;
  Programa programa{carpetas, dialogos, Separadores{}, Momento{2026, 11, 15, 7, 30, 0}};
  COTVAL calculo{programa};
  COTIZACION sel;
  std::vector<TablaTrabajo> filas;
  std::vector<VariablesCalculo> variables;
};


}  // namespace valdor::pruebas
