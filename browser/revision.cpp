#include "browser/revision.h"

#include <algorithm>
#include <cmath>

#include "browser/segmentos.h"
#include "stores/fechas.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

constexpr std::size_t LARGOLINEA = 70;

bool esCifra(char c) { return c >= '0' && c <= '9'; }
bool todoCifras(std::string_view t) { return !t.empty() && std::all_of(t.begin(), t.end(), esCifra); }
bool todoDe(std::string_view t, char c) {
  return std::all_of(t.begin(), t.end(), [c](char x) { return x == c; });
}
long long numero(std::string_view cifras) {
  long long n = 0;
  for (char c : cifras) n = n * 10 + (c - '0');
  return n;
}
std::string dosCifras(long long n) { return std::string(1, static_cast<char>('0' + n / 10)) + static_cast<char>('0' + n % 10); }

// Cents as an amount field of `ancho` characters: zeros on the left, a negative amount
// with its sign between the zeros and the digits.
std::string enCampo(long long centimos, int ancho) {
  const std::string cifras = std::to_string(centimos < 0 ? -centimos : centimos);
  const std::string texto = centimos < 0 ? "-" + cifras : cifras;
  return std::string(static_cast<std::size_t>(std::max<int>(0, ancho - static_cast<int>(texto.size()))), '0') + texto;
}

// An amount field in cents; nothing when it breaks its sign rule.
std::optional<long long> leeImporte(std::string_view t, SignoImporte signo) {
  std::size_t i = 0;
  while (i < t.size() && t[i] == '0') ++i;
  const bool negativo = signo == SignoImporte::Dentro && i < t.size() && t[i] == '-';
  const std::string_view cifras = t.substr(i + (negativo ? 1 : 0));
  if (cifras.empty() && !negativo) return 0;
  if (!todoCifras(cifras)) return std::nullopt;
  return negativo ? -numero(cifras) : numero(cifras);
}

// The check digits of a contribution account (province, 7 digits) or of a Social
// Security number (province, 8 digits): the number, behind its province, modulo 97. A
// worker's number below 10^7 stands on the province's seventh power of ten.
long long controlCuenta(long long provincia, long long numero) { return (provincia * 10000000LL + numero) % 97; }
long long controlAfiliacion(long long provincia, long long numero) {
  return numero < 10000000LL ? controlCuenta(provincia, numero) : (provincia * 100000000LL + numero) % 97;
}

constexpr std::string_view LETRASDNI = "TRWAGMYFPDXBNJZSQVHLCKE";

// The letter that a DNI (digits and letter) or NIE (X, Y or Z, digits and letter)
// should have, and what it is; nothing for any other document.
struct Letra {
  char esperada;
  bool nie;
};
std::optional<Letra> letraDocumento(std::string_view campo) {
  std::size_t i = 0;
  while (i < campo.size() && campo[i] == '0') ++i;
  std::string_view doc = campo.substr(i);
  if (doc.size() < 2 || doc.back() < 'A' || doc.back() > 'Z') return std::nullopt;
  const bool nie = doc[0] == 'X' || doc[0] == 'Y' || doc[0] == 'Z';
  const std::string_view cifras = doc.substr(nie ? 1 : 0, doc.size() - (nie ? 2 : 1));
  if (!todoCifras(cifras) || cifras.size() > (nie ? 7u : 8u)) return std::nullopt;
  const long long n = (nie ? (doc[0] - 'X') * 10000000LL : 0) + numero(cifras);
  return Letra{LETRASDNI[static_cast<std::size_t>(n % 23)], nie};
}

std::string listaDeValores(const std::vector<std::string_view>& valores) {
  std::string lista;
  for (std::string_view v : valores) lista.append(lista.empty() ? "" : ", ").append("\"").append(v).append("\"");
  return lista;
}

// What is wrong with a field's text by its kind; nothing when it is right. `linea` is
// the whole line, for a field that repeats another.
std::optional<std::string> faltaDeCampo(const Campo& c, std::string_view t, std::string_view linea,
                                        const std::optional<PeriodoFichero>& periodo) {
  using C = ClaseCampo;
  const bool blanco = todoDe(t, ' ');
  if (blanco && c.puedeBlanco) return std::nullopt;
  switch (c.clase) {
    case C::Literal:
      if (t == c.valores.front()) return std::nullopt;
      if (todoDe(c.valores.front(), ' ')) return std::string("debe estar en blanco");
      if (todoDe(c.valores.front(), '0')) return std::string("debe ser todo ceros");
      return std::string("debe ser \"").append(c.valores.front()).append("\"");
    case C::Codigo:
      if (std::find(c.valores.begin(), c.valores.end(), t) != c.valores.end()) return std::nullopt;
      return std::string("no es uno de los valores admitidos: ").append(listaDeValores(c.valores));
    case C::Cifras:
      if (todoCifras(t)) return std::nullopt;
      return std::string("solo admite cifras");
    case C::Importe:
      if (leeImporte(t, c.signo)) return std::nullopt;
      return std::string(c.signo == SignoImporte::Dentro
                             ? "un importe en céntimos lleva solo cifras, con ceros a la izquierda y, si es negativo, el signo - delante de las cifras"_cp
                             : "un importe en céntimos lleva solo cifras, con ceros a la izquierda"_cp);
    case C::Fecha: {
      if (c.puedeBlanco && todoDe(t, '0')) return std::nullopt;
      if (todoCifras(t) && esFechaValida({static_cast<int>(numero(t.substr(6, 2))),
                                          static_cast<int>(numero(t.substr(4, 2))),
                                          static_cast<int>(numero(t.substr(0, 4)))}))
        return std::nullopt;
      return std::string("no es una fecha que exista, escrita aaaammdd");
    }
    case C::Hora:
      if (todoCifras(t) && numero(t.substr(0, 2)) < 24 && numero(t.substr(2, 2)) < 60) return std::nullopt;
      return std::string("no es una hora, escrita hhmm");
    case C::Periodo: {
      const bool forma = todoCifras(t) && numero(t.substr(4, 2)) >= 1 && numero(t.substr(4, 2)) <= 12;
      if (!forma) return std::string("no es un periodo, escrito aaaamm");
      if (!periodo || (numero(t.substr(0, 4)) == periodo->ano && numero(t.substr(4, 2)) == periodo->mes))
        return std::nullopt;
      return std::string("no es el periodo del fichero, ")
          .append(std::to_string(periodo->ano))
          .append(dosCifras(periodo->mes));
    }
    case C::Mes:
      if (!todoCifras(t)) return std::string("solo admite cifras");
      if (!periodo || numero(t) == periodo->mes) return std::nullopt;
      return std::string("no es el mes del fichero, ").append(std::to_string(periodo->mes));
    case C::Texto:
      if (blanco) return std::string("no puede estar en blanco");
      if (std::any_of(t.begin(), t.end(), esControl)) return std::string("lleva caracteres de control");
      return std::nullopt;
    case C::Cuenta:
    case C::Afiliacion: {
      const bool cuenta = c.clase == C::Cuenta;
      if (c.puedeBlanco && todoDe(t, '0')) return std::nullopt;
      if (!todoCifras(t)) return std::string("solo admite cifras");
      const long long provincia = numero(t.substr(0, 2));
      const long long n = numero(t.substr(2, t.size() - 4));
      const long long control = cuenta ? controlCuenta(provincia, n) : controlAfiliacion(provincia, n);
      if (numero(t.substr(t.size() - 2)) == control) return std::nullopt;
      return std::string(cuenta ? "el dígito de control de la cuenta de cotización es "_cp
                                : "el dígito de control del número de afiliación es "_cp)
          .append(dosCifras(control))
          .append(" (módulo 97)"_cp);
    }
    case C::Documento: {
      if (blanco) return std::string("no puede estar en blanco");
      const auto letra = letraDocumento(t);
      if (!letra || t.back() == letra->esperada) return std::nullopt;
      return std::string(letra->nie ? "la letra del NIE es " : "la letra del DNI es ") + letra->esperada;
    }
    case C::Copia: {
      const std::string_view original = linea.substr(static_cast<std::size_t>(c.original - 1), t.size());
      if (t == original) return std::nullopt;
      return std::string("debe repetir las posiciones ")
          .append(std::to_string(c.original))
          .append("-")
          .append(std::to_string(c.original + c.ancho - 1))
          .append(": \"")
          .append(original)
          .append("\"");
    }
  }
  return std::nullopt;
}

std::string_view texto(std::string_view linea, const Campo& c) {
  return linea.substr(static_cast<std::size_t>(c.desde - 1), static_cast<std::size_t>(c.ancho));
}

Hallazgo hallazgo(std::uintmax_t numero, std::string_view linea, const Campo& c, std::string regla) {
  return {numero, c.desde, c.hasta(), std::string(c.nombre), std::string(texto(linea, c)), std::move(regla)};
}

const Campo& campoLlamado(const Segmento& s, std::string_view nombre) {
  return *std::find_if(s.campos.begin(), s.campos.end(), [&](const Campo& c) { return c.nombre == nombre; });
}

// A contribution line: base (cents), rate (3 whole and 5 decimal digits) and amount. The
// amount is the base at the rate, the rate first taken to two decimals, rounded to cents
// as every contribution of the statement is.
std::optional<std::string> faltaDeCuota(std::string_view linea) {
  const auto base = leeImporte(linea.substr(10, 11), SignoImporte::Dentro);
  const auto cuota = leeImporte(linea.substr(30, 11), SignoImporte::Dentro);
  const std::string_view entero = linea.substr(22, 3), decimales = linea.substr(25, 5);
  if (!base || !cuota || !todoCifras(entero) || !todoCifras(decimales)) return std::nullopt;
  const double tipo = static_cast<double>(numero(entero)) + static_cast<double>(numero(decimales)) / 100000;
  if (tipo == 0) return std::nullopt;  // a rate left blank: the amount is a sum of several rates
  const double euros = REDONDEA2(REDONDEA2(tipo) * (static_cast<double>(*base) / 100) / 100);
  const long long esperada = std::llround(euros * 100);
  if (esperada == *cuota) return std::nullopt;
  return std::string("la cuota de esa base a ese tipo es ").append(enCampo(esperada, 11));
}

}  // namespace

std::string textoPosiciones(const Hallazgo& h) {
  if (h.desde == h.hasta) return std::string("posición "_cp).append(std::to_string(h.desde));
  return std::string("posiciones ").append(std::to_string(h.desde)).append("-").append(std::to_string(h.hasta));
}

std::string textoHallazgo(const Hallazgo& h) {
  return std::string("línea "_cp)
      .append(std::to_string(h.linea))
      .append(", ")
      .append(textoPosiciones(h))
      .append(" (")
      .append(h.campo)
      .append("): \"")
      .append(imprimible(h.valor))
      .append("\" ")
      .append(std::string("— "_cp))
      .append(h.regla);
}

std::vector<Hallazgo> hallazgosDeLinea(std::string_view linea, std::uintmax_t numero, TipoIntercambio tipo,
                                       const std::optional<PeriodoFichero>& periodo) {
  std::vector<Hallazgo> h;
  if (linea.size() != LARGOLINEA) return h;
  const Segmento* s = segmentoDeLinea(linea, tipo);
  if (!s) {
    // A line of a known segment whose key is none of the keys VALDOR+ writes.
    const auto& tres = segmentosDe(tipo);
    if (std::find(tres.begin(), tres.end(), linea.substr(0, 3)) != tres.end())
      h.push_back({numero, 1, 10, "clave", std::string(linea.substr(0, 10)),
                   std::string("no es la clave de ninguna línea de este tipo de fichero"_cp)});
    return h;
  }
  for (const Campo& c : s->campos)
    if (auto falta = faltaDeCampo(c, texto(linea, c), linea, periodo)) h.push_back(hallazgo(numero, linea, c, *falta));
  if (s->nombre == "EDT de cuota" || s->nombre == "EDT de otros conceptos")
    if (auto falta = faltaDeCuota(linea)) h.push_back(hallazgo(numero, linea, campoLlamado(*s, "cuota"), *falta));
  return h;
}

// ---- Across lines -------------------------------------------------------------------------

namespace {

// The company total that a worker's amount line goes into (the mothering line goes into
// two); none for a line whose total is printed nowhere.
std::vector<std::string> totalesDe(std::string_view clave) {
  if (clave == "EDLBA01000") return {"EDTBA01000"};
  if (clave == "EDLBA02000" || clave == "EDLBA10000") return {"EDTBA02000"};
  if (clave == "EDLBA20000") return {"EDTBA21000", "EDTBA22000"};
  if (clave.starts_with("EDLCD")) return {std::string("EDTCD").append(clave.substr(5, 2)).append("000")};
  return {};
}

bool esTotal(std::string_view clave) {
  return clave == "EDTBA01000" || clave == "EDTBA02000" || clave == "EDTBA21000" || clave == "EDTBA22000" ||
         clave.starts_with("EDTCD");
}

// Where the amount of a line stands: the totals of the EDTBA family at 11, the others at 31.
std::size_t posicionImporte(std::string_view clave) { return clave.starts_with("EDTBA") && esTotal(clave) ? 11 : 31; }

}  // namespace

void RevisionCampos::sumaTrabajador(std::string_view linea, std::string_view clave) {
  const auto importe = leeImporte(linea.substr(10, 7), SignoImporte::Dentro);
  for (const std::string& total : totalesDe(clave)) {
    Suma& s = sumas_[total];
    if (importe) s.centimos += *importe;
    else s.legible = false;
  }
}

void RevisionCampos::compruebaTotal(std::string_view linea, std::string_view clave, std::vector<Hallazgo>& h) {
  totales_[std::string(clave)] = numero_;
  const std::size_t desde = posicionImporte(clave);
  const auto importe = leeImporte(linea.substr(desde - 1, 11), SignoImporte::Dentro);
  const auto s = sumas_.find(clave);
  const Suma suma = s == sumas_.end() ? Suma{} : s->second;
  if (!importe || !suma.legible || *importe == suma.centimos) return;
  h.push_back({numero_, static_cast<int>(desde), static_cast<int>(desde) + 10, "total", std::string(linea.substr(desde - 1, 11)),
               std::string("la suma de las líneas de sus trabajadores es "_cp).append(enCampo(suma.centimos, 11))});
}

std::vector<Hallazgo> RevisionCampos::revisa(std::string_view linea) {
  ++numero_;
  const bool fan = tipo_ == TipoIntercambio::FAN;
  if (fan && !periodo_ && linea.size() == LARGOLINEA && linea.starts_with("EMP")) {
    const std::string_view p = linea.substr(53, 6);
    if (todoCifras(p)) periodo_ = PeriodoFichero{static_cast<int>(numero(p.substr(0, 4))), static_cast<int>(numero(p.substr(4, 2)))};
  }
  std::vector<Hallazgo> h = hallazgosDeLinea(linea, numero_, tipo_, periodo_);
  if (!fan || linea.size() != LARGOLINEA) return h;
  const std::string_view clave = linea.substr(0, 10);
  if (linea.starts_with("EMP") || linea.starts_with("ETF")) {
    cierraEmpresa(h);
    enEmpresa_ = linea.starts_with("EMP");
  }
  if (!enEmpresa_) return h;
  ultimaDeEmpresa_ = numero_;
  if (linea.starts_with("TRA")) {
    ++trabajadores_;
  } else if (linea.starts_with("EDL")) {
    sumaTrabajador(linea, linea.substr(0, linea.starts_with("EDLBA") ? 10 : 7));
  } else if (linea.starts_with("TCT00")) {
    const std::string_view cuenta = linea.substr(8, 6);
    if (todoCifras(cuenta) && numero(cuenta) != trabajadores_)
      h.push_back({numero_, 9, 14, "trabajadores", std::string(cuenta),
                   std::string("la empresa tiene ").append(std::to_string(trabajadores_)).append(" líneas TRA"_cp)});
  } else if (esTotal(clave)) {
    compruebaTotal(linea, clave, h);
  } else if (linea.starts_with("EDT")) {
    const auto importe = leeImporte(linea.substr(30, 11), linea.starts_with("EDTTT") ? SignoImporte::Ninguno : SignoImporte::Dentro);
    const long long signo = linea[41] == '-' ? -1 : 1;
    tc1_[std::string(clave)] = {numero_, importe ? signo * *importe : 0, importe.has_value(), std::string(linea.substr(30, 11))};
  }
  return h;
}

// The sums of a company once its last line is read: a total its workers' lines call for
// and that is missing, and the liquidation lines against the lines they sum.
void RevisionCampos::cierraEmpresa(std::vector<Hallazgo>& h) {
  if (!enEmpresa_) return;
  for (const auto& [total, suma] : sumas_)
    if (suma.legible && suma.centimos != 0 && !totales_.contains(total))
      h.push_back({ultimaDeEmpresa_, 1, 10, "total", total,
                   std::string("falta esta línea de total de la empresa: sus trabajadores suman "_cp).append(
                       enCampo(suma.centimos, 11))});
  auto valor = [&](std::string_view clave) -> std::optional<long long> {
    const auto i = tc1_.find(clave);
    if (i == tc1_.end()) return 0;
    if (!i->second.legible) return std::nullopt;
    return i->second.centimos;
  };
  // `clave` must equal `esperado` (nothing: not known); an absent line is 0.
  auto cuadra = [&](std::string_view clave, std::optional<long long> esperado, std::string_view regla) {
    const auto tiene = valor(clave);
    if (!esperado || !tiene || *tiene == *esperado) return;
    const auto i = tc1_.find(clave);
    const std::uintmax_t linea = i == tc1_.end() ? ultimaDeEmpresa_ : i->second.linea;
    const std::string importe = i == tc1_.end() ? std::string("(no está)"_cp) : i->second.texto;
    h.push_back({linea, i == tc1_.end() ? 1 : 31, i == tc1_.end() ? 10 : 41, std::string(clave), importe,
                 std::string(regla).append(enCampo(*esperado, 11))});
  };
  auto suma = [&](std::initializer_list<std::pair<std::string_view, int>> partes) -> std::optional<long long> {
    long long s = 0;
    for (const auto& [clave, signo] : partes) {
      const auto v = valor(clave);
      if (!v) return std::nullopt;
      s += signo * *v;
    }
    return s;
  };
  if (!tc1_.empty()) {
    // The statement of fixed quotas (training contracts) has no base line of common
    // contingencies: its accident total is a rate per head that its two quotas do not
    // add up to, and its other contributions have no lines. Only the ordinary statement
    // has these two sums.
    if (tc1_.contains("EDTCA01000")) {
      cuadra("EDTCA30000", suma({{"EDTCA31000", 1}, {"EDTCA32000", 1}}),
             "las cuotas de IT e IMS (EDTCA31000 y EDTCA32000) suman ");
      cuadra("EDTTT30000", suma({{"EDTCA50000", 1}, {"EDTCA57000", 1}, {"EDTCA60000", -1}}),
             "las otras cotizaciones (EDTCA50000 y EDTCA57000) menos sus deducciones (EDTCA60000) dan ");
    }
    const auto final = suma({{"EDTTT10000", 1}, {"EDTTT20000", 1}, {"EDTTT30000", 1}, {"EDTCA90000", 1}});
    const std::string_view liquido = "la liquidación (EDTTT10000, EDTTT20000, EDTTT30000 y EDTCA90000) da "_cp;
    cuadra("EDTTT91000", final ? std::optional(std::max(0LL, *final)) : std::nullopt, liquido);
    cuadra("EDTTT92000", final ? std::optional(std::max(0LL, -*final)) : std::nullopt, liquido);
  }
  trabajadores_ = 0;
  sumas_.clear();
  totales_.clear();
  tc1_.clear();
  enEmpresa_ = false;
}

std::vector<Hallazgo> RevisionCampos::cierre() {
  std::vector<Hallazgo> h;
  cierraEmpresa(h);
  return h;
}

std::vector<Hallazgo> revisaFichero(const std::filesystem::path& fichero, TipoIntercambio tipo,
                                    std::optional<PeriodoFichero> periodo) {
  RevisionCampos revision(tipo, periodo);
  LectorLineas lector(fichero, LIMITELINEA);
  std::vector<Hallazgo> todos;
  LineaLeida linea;
  while (lector.siguiente(linea)) {
    auto h = revision.revisa(linea.texto);
    todos.insert(todos.end(), h.begin(), h.end());
  }
  auto h = revision.cierre();
  todos.insert(todos.end(), h.begin(), h.end());
  return todos;
}

std::vector<Hallazgo> revisaCampos(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  RevisionCampos revision(tipo);
  std::vector<Hallazgo> todos;
  for (const std::string& l : lineas) {
    auto h = revision.revisa(l);
    todos.insert(todos.end(), h.begin(), h.end());
  }
  auto h = revision.cierre();
  todos.insert(todos.end(), h.begin(), h.end());
  return todos;
}

std::string avisoDeHallazgos(const std::filesystem::path& destino, const std::vector<Hallazgo>& hallazgos) {
  std::vector<std::string> textos;
  for (const Hallazgo& h : hallazgos) textos.push_back(textoHallazgo(h));
  return std::string("El fichero ")
      .append(entreComillas(destino))
      .append(" tiene ")
      .append(std::to_string(hallazgos.size()))
      .append(hallazgos.size() == 1 ? " hallazgo en sus campos:\n" : " hallazgos en sus campos:\n")
      .append(listaLimitada(textos));
}

RevisionEscrito revisionDeEscritos(AvisoHallazgos avisa, std::optional<std::string> estricto,
                                   std::optional<PeriodoFichero> periodo) {
  return [avisa = std::move(avisa), estricto = std::move(estricto), periodo](const std::filesystem::path& escrito,
                                                                            const std::filesystem::path& destino) {
    const auto hallazgos = revisaFichero(escrito, tipoDeFichero(destino.filename().string()), periodo);
    if (hallazgos.empty()) return;
    avisa(destino, hallazgos);
    if (estricto)
      throw ErrorFichero(std::to_string(hallazgos.size()) + " hallazgos en los campos de " + entreComillas(destino) +
                         ", y " + *estricto + " no se escribe.");
  };
}

}  // namespace valdor
