// The TC1 of every company ("Todas.") against the TC1 of each company alone ("Una
// empresa."), on the sample office of October 2026. The all-companies run leaves out
// three steps of the one-company run: the maternity columns, the training hours and the
// TRA39 rule. The figures of a company differ by what those steps give and by nothing
// else; here, worked out by hand from the office's rows and its rate file:
//  - 41123409876: the stand-in (A20 = 1, 16 days, base 928.00) goes into the maternity
//    columns only in the one-company run: training base 928.00 at 0.70 % = 6.50, the
//    other contributions' second base 928.00 at c - a + f + q = 7.05 - 1.55 + 0.20 +
//    0.60 = 6.30 % = 58.46, and the accidents base 2,430.00 + 928.00 = 3,358.00;
//  - 50104532166: the training hours of the bonused training contract (97), 8 at a
//    distance at 4.00 and 30 on site at 8.00, are a bonus of 272.00 only in the
//    one-company run;
//  - the other two companies have none of those rows, and come out the same.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "engine/cotval.h"
#include "engine/motor.h"
#include "stores/numeros.h"
#include "muestra/oficina_muestra.h"
#include "stores/texto.h"
#include "tests/trabajo_prueba.h"

namespace valdor {
namespace {

// Every field of a company's statement, by name, as a run leaves it.
using Figuras = std::map<std::string, std::string>;

Figuras figuras(const COTVAL& calculo) {
  Figuras f;
  for (const auto& d : BOLETIN::campos()) f[std::string(d.nombre)] = recorta((calculo.boletin.*d.campo).texto());
  return f;
}

struct MesDeMuestra : pruebas::TrabajoDePrueba {
  MesDeMuestra() {
    escribeOficinaMuestra(carpetas, {10, 2026, 0, 0});
    programa.arranca();
  }
  // The statement of each company as the run for `empresa` ("" for all) leaves it.
  std::map<std::string, Figuras> ejecuta(const std::string& empresa) {
    std::map<std::string, Figuras> porEmpresa;
    EjecucionTC1 e;
    e.mes = 10;
    e.ano = 2026;
    e.empresa = empresa;
    // Each company at its own break; the run tells the last one once more at its end.
    e.empresaCalculada = [&](const COTVAL& c) { porEmpresa.emplace(recorta(c.v.empresaPublica), figuras(c)); };
    ejecutaTC1(programa, e);
    return porEmpresa;
  }
};

std::set<std::string> distintos(const Figuras& a, const Figuras& b) {
  std::set<std::string> r;
  for (const auto& [campo, valor] : a)
    if (b.at(campo) != valor) r.insert(campo);
  return r;
}

TEST(TC1DeTodas, SoloDifiereEnLoQueLaEjecucionDeTodasDejaFuera) {
  MesDeMuestra m;
  const auto todas = m.ejecuta("");
  ASSERT_EQ(todas.size(), 4u);
  std::map<std::string, Figuras> una;
  for (const auto& [empresa, f] : todas) una[empresa] = m.ejecuta(empresa).at(empresa);

  EXPECT_TRUE(distintos(todas.at("08198765453"), una.at("08198765453")).empty());
  EXPECT_TRUE(distintos(todas.at("28107654331"), una.at("28107654331")).empty());

  // The stand-in's maternity columns, and the sums and totals they reach.
  const Figuras& t41 = todas.at("41123409876");
  const Figuras& u41 = una.at("41123409876");
  EXPECT_EQ(distintos(t41, u41),
            (std::set<std::string>{"FPBASE", "FPTIPO", "FPCUOTA", "OT2BASE", "OT2TIPO", "OT2CUOTA", "ATBASE",
                                   "ATCUOTAIT", "ATCUOTAIMS", "ATTOTAL", "ATLIQUIDO", "CGLIQUIDO", "OTLIQUIDO",
                                   "AINGRESAR", "TOTALRECARGO"}));
  EXPECT_EQ(t41.at("FPBASE"), "0");
  EXPECT_EQ(u41.at("FPBASE"), "928");
  EXPECT_EQ(u41.at("FPCUOTA"), "6.5");
  EXPECT_EQ(u41.at("OT2BASE"), "928");
  EXPECT_EQ(u41.at("OT2TIPO"), "6.3");
  EXPECT_EQ(u41.at("OT2CUOTA"), "58.46");
  EXPECT_EQ(REDONDEA2(valorNumerico(u41.at("ATBASE")) - valorNumerico(t41.at("ATBASE"))), 928);

  // The training hours' bonus, and what it takes off.
  const Figuras& t50 = todas.at("50104532166");
  const Figuras& u50 = una.at("50104532166");
  EXPECT_EQ(distintos(t50, u50),
            (std::set<std::string>{"OTBONRED", "OTSUMA", "OTLIQUIDO", "AINGRESAR", "APERCIBIR"}));
  EXPECT_EQ(t50.at("OTBONRED"), "0");
  EXPECT_EQ(u50.at("OTBONRED"), "272");
  EXPECT_EQ(u50.at("OTSUMA"), "272");
  EXPECT_EQ(REDONDEA2(valorNumerico(t50.at("OTLIQUIDO")) - valorNumerico(u50.at("OTLIQUIDO"))), 272);
}

}  // namespace
}  // namespace valdor
