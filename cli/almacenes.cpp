// valdor-cli almacenes: the inventory of the office's stores, for support.
#include <iostream>

#include "cli/consola.h"
#include "cli/ordenes.h"
#include "stores/inventario.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor::cli {

int ordenAlmacenes(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--mes", "--ano"}, {});
  int mes = 0, ano = 0;
  periodoDeLaOrden(o, llamada.ahora, mes, ano);
  const auto almacenes = inventarioOficina(llamada.carpetas, mes, ano);
  escribeLinea(std::cout, "Carpeta del programa: " + utf8ACp1252(llamada.carpetas.programa.string()));
  escribeLinea(std::cout, "Carpeta de trabajo:   " + utf8ACp1252(llamada.carpetas.trabajo.string()));
  int problemas = 0;
  for (const AlmacenInventario& a : almacenes) {
    escribeLinea(std::cout, "");
    escribeLinea(std::cout, a.fichero + " (" + (a.enPrograma ? "programa" : "trabajo") + "): " +
                                std::string(a.motor == Motor::Ninguno ? "no existe" : nombreMotor(a.motor)));
    for (const TablaInventario& t : a.tablas)
      escribeLinea(std::cout, "  tabla " + t.nombre + ": " + std::to_string(t.filas) + " filas");
    for (const std::string& p : a.problemas) escribeLinea(std::cout, "  PROBLEMA: " + p);
    for (const std::string& p : a.avisos) escribeLinea(std::cout, "  aviso: " + p);
    problemas += static_cast<int>(a.problemas.size());
  }
  escribeLinea(std::cout, "");
  escribeLinea(std::cout, problemas == 0 ? std::string("Sin problemas.")
                                         : std::to_string(problemas) + (problemas == 1 ? " problema." : " problemas."));
  return problemas == 0 ? SALIDABIEN : SALIDAFALLO;
}

}  // namespace valdor::cli
