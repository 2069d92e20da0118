#include "fan/empleador.h"

#include "fan/seleccion.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

bool esCifra(char c) { return c >= '0' && c <= '9'; }

// A field's text, or nothing when it is lost.
std::string o(const std::optional<std::string>& campo) { return campo.value_or(""); }

std::string primero(std::string_view A8) { return izquierda(recorta(A8), 1); }

}  // namespace

std::optional<DatosEmpresa> buscaEmpresa(Tabla& ESA, std::string_view codigo) {
  if (!ESA.indice("EMNU") || !ESA.busca("=", {std::string(codigo)})) return std::nullopt;
  return DatosEmpresa{ESA.texto("A1"), ESA.texto("A2"), ESA.texto("A8"), ESA.texto("EB12"), ESA.texto("EB14")};
}

std::string cabeceraEMP(std::string_view EB12) {
  const std::string t = recorta(EB12);
  return t == "6" || t == "7" ? "EMP0132" : "EMP0111";
}

std::string provinciaCuenta(std::string_view A1) { return recorta(izquierda(A1, 2)); }

std::optional<std::string> numeroCuenta(std::string_view A1) {
  return campoIzq(textoGeneral(valorNumerico(medio(A1, 3, 9))), 9, '0');
}

std::optional<std::string> identificadorRelleno(std::string_view A8) {
  return campoIzq(mayusculas(recorta(A8)), 14, '0');
}

std::string tipoIdentificadorFAN(std::string_view A8) {
  const std::string limpio = recorta(A8);
  const std::string p = izquierda(limpio, 2);
  const std::string f = izquierda(limpio, 1);
  if (p == "00" || p == "  ") return "1   ";
  if (mayusculas(f) == "X") return "6   ";
  // A first character that is not a digit cannot be read as a number: such an
  // identifier (a letter in front, or none at all) is of type 9.
  if (valorNumerico(limpio) == 0 && (f.empty() || !esCifra(f[0]) || valorNumerico(f) != 0)) return "9   ";
  return "1   ";
}

std::string claseEmpresa(std::string_view A8) {
  const std::string f = primero(A8);
  if (valorNumerico(f) != 0) return "1";
  const std::string m = mayusculas(f);
  if (m == "E" || m == "F" || m == "G") return "3";
  if (m == "A" || m == "B") return "2";
  return "4";
}

std::string lineaRZS(const DatosEmpresa& e, std::string& TEXTOPLANO) {
  QUITAACENTOS(e.A2, TEXTOPLANO);
  return "RZS0" + claseEmpresa(e.A8) + mayusculas(o(campoDer(recorta(TEXTOPLANO), 55, ' '))) + std::string(10, ' ');
}

std::string lineaEMPFAN(const DatosEmpresa& e, int ano, int mes, std::string_view clase,
                        std::string_view calificador) {
  const std::string provincia = provinciaCuenta(e.A1);
  const std::string numero = o(numeroCuenta(e.A1));
  const std::string m = o(campoIzq(std::to_string(mes), 2, '0'));
  return cabeceraEMP(e.EB12) + provincia + numero + tipoIdentificadorFAN(e.A8) + o(identificadorRelleno(e.A8)) +
         "  0111" + provincia + numero + o(campoIzq(std::to_string(ano), 4, '0')) + m + m + recorta(clase) +
         recorta(calificador) + "   E";
}

void LINEAEMP(Tabla& ESA, COTIZACION& sel, FilaEmpresa& fila, std::string& TEXTOPLANO) {
  const auto empresa = buscaEmpresa(ESA, fila.BSSE);
  if (!empresa) return;
  sel.CLAVEEMPRESA = empresa->EB14;
  fila.lineaEMP = lineaEMPFAN(*empresa, sel.anoDelPeriodo(), sel.mesDelPeriodo(), sel.codigoClase(),
                              sel.codigoCalificador());
  sel.CUENTAEMPRESAS += 1;
  fila.lineaRZS = lineaRZS(*empresa, TEXTOPLANO);
}

}  // namespace valdor
