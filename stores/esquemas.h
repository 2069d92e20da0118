// The tables of every store: columns in their order, with types and widths, and
// their indices with names and key orders. The month store and the work stores are
// created by the program from these; the master stores belong to the payroll product,
// and their definitions here (with the key columns the system never names) are what
// the sample office and the tests write.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "stores/almacen.h"

namespace valdor::esquemas {

// Month store "PXyyyym.MDB": NOMIN and INCIDEN. `conINUM` adds the index INUM beside
// INDX on INCIDEN, as the payroll product's own files have it.
const DefTabla& NOMIN();
const DefTabla& INCIDEN(bool conINUM = true);

// Work stores.
const DefTabla& TMPVALDOR();   // "TEMPORAL VALDOR.MDB"
const DefTabla& VALDORTA();    // "ACUVALDOR.MDB"
const DefTabla& ILTS();        // "ILTS.MDB"
const DefTabla& FORMACION();   // "FORMACION.MDB"
const DefTabla& TDOCUMENTO();  // "TIPO DE DOCUMENTO.MDB"
const DefTabla& CUENTASTAB();  // "CUENTAS BANCARIAS EMPRESAS.MDB"
// The company's deduction concepts. No store of the system holds this table; a build
// that keeps one opens it on the DESCUENTOS handle.
const DefTabla& DESCUENTOS();

// Master stores, table by table in the catalogue's order.
std::span<const DefTabla> tablasCONVENIO();   // CONVEN, CATEG, CONVEPAGAS, CONVEANTI, CATEGORIAANTI, CATEGORIAPAGAS
std::span<const DefTabla> tablasEMPRESAS();   // ESA, CENT, SECC, EmpresPagas, EmpresAntiguedad
std::span<const DefTabla> tablasPRODUCTO();   // WK, WKPAGAS, WKANTIGUEDAD
std::span<const DefTabla> tablasCONSTANT();   // POSTA, MUT, CONTRA, EPIGRA
std::span<const DefTabla> tablasBONIFICA();   // BONIFI
std::span<const DefTabla> tablasDESEMPLEO();  // DESEMPLEO

// The definition of a table by name (any store, any case), or nullptr.
const DefTabla* busca(std::string_view tabla);

// The tables whose columns the rules read by name; the other tables of the master
// stores are opened and never read.
bool seLeeSuContenido(std::string_view tabla);

// The columns of `def` that the open table `t` lacks (names compared without case), in
// the definition's order.
std::vector<std::string> columnasQueFaltan(const Tabla& t, const DefTabla& def);

}  // namespace valdor::esquemas
