#include "engine/bonificaciones.h"

#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "stores/fechas.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {
namespace {

// The column suffix of each period of the contract.
constexpr std::array<std::string_view, 3> kSufijos = {"", "1", "2"};

std::string columna(std::string_view nombre, std::string_view sufijo) {
  std::string c(nombre);
  c += sufijo;
  return c;
}

// The five percentages of a set into the run variables, each through REDONDEA2.
void cargaPorcentajes(const Tabla& BONIFI, std::string_view sufijo, VariablesCalculo& v) {
  v.PORCCC = REDONDEA2(BONIFI.numero(columna("BONCC", sufijo)));
  v.PORCAT = REDONDEA2(BONIFI.numero(columna("BONAT", sufijo)));
  v.PORCDE = REDONDEA2(BONIFI.numero(columna("BONDE", sufijo)));
  v.PORCFO = REDONDEA2(BONIFI.numero(columna("BONFO", sufijo)));
  v.PORCFP = REDONDEA2(BONIFI.numero(columna("BONFP", sufijo)));
}

// A period length in years; 7 means no limit and stands for the whole table.
double duracion(const Tabla& BONIFI, std::string_view nombre) {
  const double d = BONIFI.numero(nombre);
  return d == 7 ? 100 : d;
}

constexpr int kAnosTabla = 101;  // entries 0 to 100

// Fills entries desde..hasta (a subscript is a whole number, ties to even) with `marca`.
// False when an entry falls outside the table: the rule cannot go on.
bool marcaAnos(std::array<int, kAnosTabla>& anos, double desde, double hasta, int marca) {
  for (double i = desde; i <= hasta; i += 1) {
    const double k = redondeoPar(i);
    if (k < 0 || k >= kAnosTabla) return false;
    anos[static_cast<std::size_t>(k)] = marca;
  }
  return true;
}

// The set of the contract's year (0, 1 or 2), or nothing when the year is outside the
// table or the table cannot be built.
std::optional<int> periodoDelAno(const Tabla& BONIFI, int anoContrato) {
  std::array<int, kAnosTabla> anos{};
  const double du = duracion(BONIFI, "BONDU");
  const double du1 = duracion(BONIFI, "BONDU1");
  const double du2 = duracion(BONIFI, "BONDU2");
  if (!marcaAnos(anos, 1, du, 1)) return std::nullopt;
  if (du + 1 <= 100 && !marcaAnos(anos, du + 1, du + du1, 2)) return std::nullopt;
  if (du + du1 + 1 <= 100 && !marcaAnos(anos, du + du1 + 1, du + du1 + du2, 3)) return std::nullopt;
  if (anoContrato < 0 || anoContrato >= kAnosTabla) return std::nullopt;
  switch (anos[static_cast<std::size_t>(anoContrato)]) {
    case 0:
    case 1:
      return 0;
    case 2:
      return 1;
    case 3:
      return 2;
    default:
      return std::nullopt;
  }
}

}  // namespace

void BONIFICACIONES(Tabla& BONIFI, std::string_view TRA4010, std::string_view TRA1710, VariablesCalculo& v,
                    TablaTrabajo& GRID1) {
  BONIFI.indice("BNNU");
  if (!BONIFI.busca("=", {Valor(v.CODCONT)})) return;

  v.BONREDACT.clear();
  cargaPorcentajes(BONIFI, "", v);
  v.BONREDACT = BONIFI.texto("BONBR");
  v.BONCASILLA = REDONDEA2(BONIFI.numero("BONCS"));

  // The contract's age: from its start to the last day of the contribution month
  // (February always ends on the 28th). A start that is not a date gives no age, and
  // the first set just loaded stands.
  const std::string_view inicioTexto = TRA4010 == MASCARAFECHA ? TRA1710 : TRA4010;
  const std::optional<Fecha> inicio = leeFechaDMA(inicioTexto);
  if (!inicio) return;
  const int mes = static_cast<int>(redondeoPar(v.MESCOT));
  if (DIASMES(mes) == 0) return;
  const Fecha fin{DIASMES(mes), mes, static_cast<int>(redondeoPar(v.ANOCOT))};

  // Year of the contract: a started year counts whole (month 12 is year 1, 13 is year 2).
  const double meses = diferenciaMeses(*inicio, fin);
  double anoContrato = std::floor(meses / 12);
  if (meses / 12 != anoContrato) anoContrato += 1;

  const std::optional<int> periodo = periodoDelAno(BONIFI, static_cast<int>(anoContrato));
  if (!periodo) return;

  const std::string_view sufijo = kSufijos[static_cast<std::size_t>(*periodo)];
  const int fila = GRID1.filaActual;
  // The percentages are shown as the table holds them.
  GRID1.blanqueaYEscribe(fila, 21, BONIFI.texto(columna("BONCC", sufijo)));
  GRID1.blanqueaYEscribe(fila, 22, BONIFI.texto(columna("BONAT", sufijo)));
  GRID1.blanqueaYEscribe(fila, 23, BONIFI.texto(columna("BONTR", sufijo)));
  GRID1.blanqueaYEscribe(fila, 24, BONIFI.texto(columna("BONDE", sufijo)));
  GRID1.blanqueaYEscribe(fila, 25, BONIFI.texto(columna("BONFO", sufijo)));
  GRID1.blanqueaYEscribe(fila, 26, BONIFI.texto(columna("BONFP", sufijo)));
  cargaPorcentajes(BONIFI, sufijo, v);

  GRID1.blanqueaYEscribe(fila, 27, BONIFI.texto("BONBR"));
  GRID1.blanqueaYEscribe(fila, 28, BONIFI.texto("BONCS"));
}

void LEEBONIFICA(Tabla& BONIFI, VariablesCalculo& v, int periodo) {
  BONIFI.indice("BNNU");
  if (!BONIFI.busca("=", {Valor(claveBonifica(v.CODCONT))})) return;

  const std::string_view sufijo = periodo == 2 ? kSufijos[1] : periodo == 3 ? kSufijos[2] : kSufijos[0];
  cargaPorcentajes(BONIFI, sufijo, v);
  v.BONREDACT = BONIFI.texto("BONBR");
  v.BONCASILLA = REDONDEA2(BONIFI.numero("BONCS"));
}

void reglaTRA39(VariablesCalculo& v, TablaTrabajo& GRID1) {
  v.BONMODO = 0;
  const double clave = valorNumerico(v.TRA39V);
  if (!(clave > 0)) return;
  v.BONMODO = 1;

  const int fila = GRID1.filaActual;
  const std::string texto = recorta(textoGeneral(clave));
  static constexpr std::array<std::string_view, 6> kClaves = {"1", "2", "3", "4", "5", "6"};
  for (std::size_t i = 0; i < kClaves.size(); ++i) {
    if (texto != kClaves[i]) continue;
    const double porcentaje = 50.0 + 10.0 * static_cast<double>(i);
    v.PORCCC = porcentaje;
    GRID1.escribe(fila, 21, porcentaje);
    if (i == 5) v.BONMODO = 2;
  }

  if (v.PORCCC > 100) v.PORCCC = 100;
  if (GRID1.valor(fila, 21) > 100) GRID1.escribe(fila, 21, 100.0);
  GRID1.escribe(fila, 27, "B");
  GRID1.escribe(fila, 28, "601");
  v.BONCASILLA = 601;
}

}  // namespace valdor
