// The month of the engine's tests with a rate file and a tariff written by hand, for
// statements worked out figure by figure:
//   e1 23.60 (CC rate 28.30), FP 0.70, HE 28.30, HN 14.00; a 1.55, b 5.50, c 7.05;
//   e2 0.20, f 0.20; q 0.60, p 0.70; g1 53.61, g2 10.69, g3 7.38, g4 2.00;
//   h1 4.07, h3 2.26; k1 53.61, k2 10.69; r2 6.70, r3 6.70.
//   Epigraphs: 113 at 0.80/0.70, 016 at 3.35/3.35, 003 at 1.00/1.00, 126 at 0.65/0.35.
// The company 28000000001 ("OBRAS DEL SUR, S.L.", agreement 2800245, centre 001 "Oficina
// de Peñalara") and the contracts 100 (key 100) and 020 (key 401) are in the masters.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "statement/ficherotipos.h"
#include "statement/liquidacion.h"
#include "stores/literales.h"
#include "tests/mes_prueba.h"

namespace valdor::pruebas {

inline const std::string EMP = "28000000001";

// Each field of the statement named, read as its number, against its worked-out value;
// and each as its text.
using Cifras = std::initializer_list<std::pair<CampoFijo BOLETIN::*, double>>;
using Textos = std::initializer_list<std::pair<CampoFijo BOLETIN::*, std::string>>;
inline std::string_view nombreDe(CampoFijo BOLETIN::*campo) {
  for (const auto& d : BOLETIN::campos())
    if (d.campo == campo) return d.nombre;
  return "?";
}
inline void esperaCifras(const BOLETIN& b, Cifras cifras) {
  for (const auto& [campo, valor] : cifras) EXPECT_DOUBLE_EQ((b.*campo).valor(), valor) << nombreDe(campo);
}
inline void esperaTextos(const BOLETIN& b, Textos textos) {
  for (const auto& [campo, texto] : textos) EXPECT_EQ((b.*campo).texto(), texto) << nombreDe(campo);
}

// Runs of "0" and of blanks in the expected lines.
inline std::string ceros(std::size_t n) { return std::string(n, '0'); }
inline std::string blancos(std::size_t n) { return std::string(n, ' '); }

struct Boletin : Mes {
  Boletin() {
    std::vector<std::array<std::string, 4>> r(28);
    r[11] = {"", "23.60", "4.70", "28.30"};
    r[12] = {"", "0.60", "0.10", "0.70"};
    r[14] = {"", "", "", "28.30"};
    r[15] = {"", "", "", "14.00"};
    r[18] = {"", "5.50", "1.55", "7.05"};
    r[19] = {"", "0.20", "", "0.20"};
    r[20] = {"", "0.60", "", "0.70"};
    r[22] = {"53.61", "10.69", "7.38", "2.00"};
    r[23] = {"4.07", "", "2.26", ""};
    r[25] = {"53.61", "10.69", "", ""};
    r[27] = {"6.70", "6.70", "", ""};
    escribeFicheroTipos(carpetas.trabajo / "N-SS2026.MDB", r);

    Almacenes& a = programa.almacenes;
    for (const auto& [epi, ilt, ims] : {std::tuple{"113", 0.80, 0.70}, std::tuple{"016", 3.35, 3.35},
                                        std::tuple{"003", 1.00, 1.00}, std::tuple{"126", 0.65, 0.35}})
      inserta(a.constant, "EPIGRA", {{"EPIGRAFE", epi}, {"ILT", ilt}, {"IMS", ims}});
    inserta(a.constant, "CONTRA", {{"tra21", "100"}, {"CONTSEGSOC", "100"}});
    inserta(a.constant, "CONTRA", {{"tra21", "020"}, {"CONTSEGSOC", "401"}});
    inserta(a.empresas, "ESA", {{"A1", EMP}, {"A2", "OBRAS DEL SUR, S.L."}, {"EB11", "00210"}});
    inserta(a.empresas, "CENT", {{"CENEMP", EMP}, {"CENCOD", "001"}, {"DCE", "Oficina de Peñalara"_cp}});
    inserta(a.convenio, "CONVEN", {{"EB11", "00210"}, {"CTC2", "2800245"}});
    inserta(a.bonifica, "BONIFI", {{"BONCONT", "009"}, {"BONCS", 601}, {"BONNEWTIP", 13}});
    a.CREAILTS();
    a.ABREILTS();

    calculo.CARGAEMPRESA("");
    calculo.GRID1.LIMPIAGRID();
    calculo.v.EMPACT = EMP;
    calculo.v.TRAACT = "00001";
  }

  // Row `r` of the working table; a plain full month at epigraph 113 unless told.
  void fila(int r, std::map<int, std::string> celdas) {
    std::map<int, std::string> base{{0, "0000" + std::to_string(r)}, {1, "281234567890"}, {2, "12345678Z"},
                                    {3, "GARCIA LOPEZ, ANA"}, {4, "30"}, {5, "05"}, {6, "100"}, {7, "30"},
                                    {8, "0"}, {10, "113"}, {17, "001"}, {40, "1"}, {43, "0"}};
    for (auto& [c, t] : celdas) base[c] = t;
    for (auto& [c, t] : base) calculo.GRID1.escribe(r, c, t);
  }
  void bajas(std::string_view tra, double enf, double acc, double mat) {
    inserta(programa.almacenes.ilts, "ILTS",
            {{"ILTSPATEMP", EMP}, {"ILTSNUMATRI", std::string(tra)}, {"ILTSMES", "10"}, {"ILTSANO", "2026"},
             {"ENFSDIAS", enf}, {"ACCSDIAS", acc}, {"MATSDIAS", mat}});
  }
  // The stored line of a kind ("" when the worker has none).
  std::string linea(std::string_view tipo, std::string_view tra = "00001") {
    auto q = programa.almacenes.temporal.consulta(
        "SELECT TMPLINEA FROM TMPVALDOR WHERE TMPEMP = ? AND TMPTRA = ? AND TMPTIPO = ?",
        {Valor(EMP), Valor(tra), Valor(tipo)});
    return q.siguiente() ? q.texto("TMPLINEA") : "";
  }
  int lineas() {
    auto q = programa.almacenes.temporal.consulta("SELECT COUNT(*) AS N FROM TMPVALDOR", {});
    q.siguiente();
    return static_cast<int>(q.numero("N"));
  }

  TiposDeLaEjecucion tipos;
  Liquidacion liquidacion{calculo, programa, tipos};
  const BOLETIN& b = calculo.boletin;
};

}  // namespace valdor::pruebas
