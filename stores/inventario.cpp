#include "stores/inventario.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "stores/esquemas.h"
#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor {

namespace {

enum class Clase { Maestro, Mes, Trabajo, Temporal };

struct Entrada {
  std::string fichero;
  Clase clase;
  std::vector<const DefTabla*> tablas;
};

std::vector<const DefTabla*> punteros(std::span<const DefTabla> tablas) {
  std::vector<const DefTabla*> r;
  for (const DefTabla& t : tablas) r.push_back(&t);
  return r;
}

std::vector<Entrada> catalogo(int mes, int ano) {
  return {
      {std::string(NOMBRECONVENIO), Clase::Maestro, punteros(esquemas::tablasCONVENIO())},
      {std::string(NOMBREEMPRESAS), Clase::Maestro, punteros(esquemas::tablasEMPRESAS())},
      {std::string(NOMBREPRODUCTO), Clase::Maestro, punteros(esquemas::tablasPRODUCTO())},
      {std::string(NOMBRECONSTANT), Clase::Maestro, punteros(esquemas::tablasCONSTANT())},
      {std::string(NOMBREBONIFICA), Clase::Maestro, punteros(esquemas::tablasBONIFICA())},
      {std::string(NOMBREDESEMPLEO), Clase::Maestro, punteros(esquemas::tablasDESEMPLEO())},
      {nombrePeriodo(textoAnoPeriodo(ano), textoMesPeriodo(mes)), Clase::Mes,
       {&esquemas::NOMIN(), &esquemas::INCIDEN()}},
      {std::string(NOMBREACUVALDOR), Clase::Trabajo, {&esquemas::VALDORTA()}},
      {std::string(NOMBREILTS), Clase::Trabajo, {&esquemas::ILTS()}},
      {std::string(NOMBREFORMACION), Clase::Trabajo, {&esquemas::FORMACION()}},
      {std::string(NOMBRETIPODOC), Clase::Trabajo, {&esquemas::TDOCUMENTO()}},
      {std::string(NOMBRECUENTAS), Clase::Trabajo, {&esquemas::CUENTASTAB()}},
      {std::string(NOMBRETEMPORAL), Clase::Temporal, {&esquemas::TMPVALDOR()}},
  };
}

std::string unidos(const std::vector<std::string>& nombres) {
  std::string r;
  for (const std::string& n : nombres) r += (r.empty() ? "" : ", ") + n;
  return r;
}

void avisaQueFalta(AlmacenInventario& a, Clase clase, bool oficinaJet) {
  switch (clase) {
    case Clase::Maestro:
      a.problemas.emplace_back("falta el fichero: es del programa de nóminas y VALDOR+ lo necesita"_cp);
      return;
    case Clase::Mes:
      a.avisos.emplace_back("no hay almacén de ese mes: el mes se lee sin nóminas"_cp);
      return;
    case Clase::Trabajo:
      a.avisos.emplace_back(oficinaJet ? "no existe: se lee vacío, y VALDOR+ no lo crea junto a los ficheros del "
                                      "programa de nóminas"_cp
                                    : "no existe: VALDOR+ lo crea vacío al empezar"_cp);
      return;
    case Clase::Temporal:
      a.avisos.emplace_back("no existe: VALDOR+ lo crea en cada ejecución y lo borra al acabar"_cp);
      return;
  }
}

void revisaTablas(Almacen& almacen, const Entrada& e, AlmacenInventario& a) {
  auto q = almacen.consulta("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid");
  std::vector<std::string> nombres;
  while (q.siguiente()) nombres.push_back(q.texto("name"));
  for (const std::string& nombre : nombres) {
    Tabla t;
    t.abre(almacen, nombre);
    a.tablas.push_back({t.nombre(), t.cuenta()});
  }
  for (const DefTabla* def : e.tablas) {
    const auto hallada = std::find_if(nombres.begin(), nombres.end(), [&](const std::string& n) {
      return mayusculasAscii(n) == mayusculasAscii(def->nombre);
    });
    if (hallada == nombres.end()) {
      a.problemas.emplace_back("falta la tabla " + def->nombre);
      continue;
    }
    if (!esquemas::seLeeSuContenido(def->nombre)) continue;
    Tabla t;
    t.abre(almacen, *hallada);
    const std::vector<std::string> faltan = esquemas::columnasQueFaltan(t, *def);
    if (!faltan.empty())
      a.problemas.emplace_back("faltan en la tabla " + def->nombre + " columnas que VALDOR+ lee: " + unidos(faltan));
  }
  // An SQLite file's pages are checked too: a damaged one is found now, not half-way
  // through a run. A Jet file was read whole to make its copy.
  if (a.motor == Motor::SQLite) {
    auto revision = almacen.consulta("PRAGMA quick_check");
    std::vector<std::string> fallos;
    while (revision.siguiente())
      if (const std::string r = revision.campo(0).texto(); r != "ok") fallos.push_back(r);
    if (!fallos.empty()) a.problemas.emplace_back(std::string("el fichero está dañado: "_cp) + fallos.front());
  }
}

}  // namespace

std::vector<AlmacenInventario> inventarioOficina(const Carpetas& carpetas, int mes, int ano) {
  std::vector<AlmacenInventario> r;
  bool oficinaJet = false;
  for (const Entrada& e : catalogo(mes, ano)) {
    AlmacenInventario a;
    a.fichero = e.fichero;
    a.enPrograma = e.clase == Clase::Maestro || e.clase == Clase::Mes;
    a.ruta = resuelveFichero(a.enPrograma ? carpetas.programa : carpetas.trabajo, e.fichero);
    a.motor = motorDe(a.ruta);
    if (e.clase == Clase::Maestro && esJet(a.motor)) oficinaJet = true;
    std::error_code ec;
    if (!std::filesystem::exists(a.ruta, ec)) {
      avisaQueFalta(a, e.clase, oficinaJet);
    } else {
      if (esJet(a.motor) && e.clase == Clase::Temporal)
        a.avisos.emplace_back("es una base de datos Jet de una ejecución del programa antiguo: VALDOR+ la sustituye "
                           "por la suya al empezar"_cp);
      try {
        Almacen almacen;
        almacen.abre(a.ruta);
        revisaTablas(almacen, e, a);
      } catch (const ErrorAlmacen& error) {
        a.problemas.emplace_back(error.detalle().empty() ? std::string(error.what())
                                                      : std::string(error.what()) + " (" + error.detalle() + ")");
      }
    }
    r.push_back(std::move(a));
  }
  return r;
}

}  // namespace valdor
