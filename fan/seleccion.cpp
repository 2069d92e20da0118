#include "fan/seleccion.h"

namespace valdor {

std::vector<EmpresaDelMes> empresasDelMes(Almacenes& almacenes, int mes, int ano) {
  almacenes.MESPERIODO = textoMesPeriodo(mes);
  almacenes.ANOPERIODO = textoAnoPeriodo(ano);
  almacenes.CREAPERIODO();
  std::vector<EmpresaDelMes> lista;
  if (almacenes.ABREPERIODO()) {
    try {
      auto q = almacenes.periodo.consulta(
          "SELECT BSSE, BNOMBRE, Count(BMATRI) AS CuentaDeBMATRI FROM NOMIN WHERE BCONT <> 'N' "
          "GROUP BY BSSE, BNOMBRE ORDER BY BNOMBRE COLLATE ESPANOL");
      while (q.siguiente())
        lista.push_back({q.texto("BNOMBRE"), q.texto("BSSE"), static_cast<int>(q.numero("CuentaDeBMATRI"))});
    } catch (const ErrorAlmacen&) {
      // A failing query leaves the list empty and says nothing, as the selection does.
      lista.clear();
    }
  }
  almacenes.CIERRAPERIODO();
  return lista;
}

}  // namespace valdor
