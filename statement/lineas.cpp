#include "statement/lineas.h"

#include "stores/almacen.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

void GUARDATEMPORAL(Tabla& TMPVALDOR, std::string_view empresa, std::string_view trabajador, std::string_view tipo,
                    std::string_view linea, double& LINEALARGA) {
  if (linea.size() > 70) LINEALARGA = 1;
  TMPVALDOR.indice("TMPVALDORnum");
  if (TMPVALDOR.busca("=", {std::string(empresa), std::string(trabajador), std::string(tipo)})) {
    TMPVALDOR.edita();
  } else {
    TMPVALDOR.nuevo();
  }
  TMPVALDOR.pon("TMPEMP", std::string(empresa));
  TMPVALDOR.pon("TMPTRA", std::string(trabajador));
  TMPVALDOR.pon("TMPTIPO", std::string(tipo));
  TMPVALDOR.pon("TMPLINEA", izquierda(linea, 70));
  TMPVALDOR.actualiza();
}

std::string Z(std::string_view numero, std::size_t n) { return llenaIzq(recortaIzq(numero), n, '0'); }

std::string I(double importe) { return CAMPONUM(textoGeneral(importe), 7, "0", true).value_or(""); }

std::string lineaImporte(std::string_view clave, double importe) {
  return std::string(clave) + I(importe) + " " + std::string(26, '0') + std::string(26, ' ');
}

std::string lineaImporteDias(std::string_view clave, double dias, double importe, std::string_view marca) {
  return std::string(clave) + Z(textoGeneral(dias), 3) + I(importe) + std::string(marca) + std::string(24, '0') +
         std::string(26, ' ');
}

}  // namespace valdor
