#include "statement/hojatc2.h"

#include "stores/fechas.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

// Columns of the working row that the sheet reads.
constexpr int AFILIACION = 1, NIF = 2, NOMBRE = 3, DIASALTA = 4, GRUPO = 5, CONTRATO = 6, HORAS = 8, EPIGRAFE = 10,
              BASE126 = 20, FECHABON = 30, DIASBAJA = 34, DIASMATERNIDAD = 35;
constexpr int FILA = 1;

// A cell's text, trimmed, or blank when the cell reads 0.
std::string siNoEsCero(const TablaTrabajo& g, int columna) {
  return g.valor(FILA, columna) != 0 ? recorta(g.texto(FILA, columna)) : std::string();
}

}  // namespace

HojaTC2 hojaTC2(const TablaTrabajo& g) {
  HojaTC2 h;
  const std::string& nombre = g.texto(FILA, NOMBRE);
  if (const auto coma = nombre.find(','); coma != std::string::npos) {
    h.apellidos = recorta(std::string_view(nombre).substr(0, coma));
    h.nombre = recorta(std::string_view(nombre).substr(coma + 1));
  } else {
    h.apellidos = recorta(nombre);
  }
  h.afiliacion = recorta(g.texto(FILA, AFILIACION));
  h.nif = recorta(g.texto(FILA, NIF));
  h.diasAlta = recorta(g.texto(FILA, DIASALTA));
  h.grupoCotizacion = recorta(g.texto(FILA, GRUPO));
  h.claseContrato = recorta(g.texto(FILA, CONTRATO));
  h.horas = recorta(g.texto(FILA, HORAS));
  h.epigrafe = recorta(g.texto(FILA, EPIGRAFE));

  const double diasIT = REDONDEA2R(g.valor(FILA, DIASBAJA) - g.valor(FILA, DIASMATERNIDAD));
  if (diasIT != 0) h.diasIT = textoGeneral(diasIT);
  h.diasMaternidad = siNoEsCero(g, DIASMATERNIDAD);
  h.baseAT = siNoEsCero(g, BASE126);
  if (!h.baseAT.empty()) h.epigrafeIT = "126";

  h.fechaBonificacion = recorta(g.texto(FILA, FECHABON));
  if (h.fechaBonificacion.empty()) h.fechaBonificacion = MASCARAFECHA;
  return h;
}

}  // namespace valdor
