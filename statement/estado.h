// The state of a statement run: the statement record BOLETIN (every figure of the
// "Boletín de cotización a la Seguridad Social" as fixed-width text), the statement
// boxes that show the same figures, the working table GRID1 of the rows being
// calculated, and the run variables. The calculation reads its own figures back from
// these, exactly as they stand: a figure cut by its field's width is the cut figure
// from then on.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

// A fixed-width text field: an assignment fills with blanks on the right and cuts at
// the width.
class CampoFijo {
 public:
  explicit CampoFijo(std::size_t ancho) : ancho_(ancho), texto_(ancho, ' ') {}
  CampoFijo& operator=(std::string_view texto);
  // A number stands in the record as its left-trimmed decimal text, with a point.
  CampoFijo& operator=(double numero);
  const std::string& texto() const { return texto_; }
  std::size_t ancho() const { return ancho_; }
  // The field read through REDONDEA2: V(f). A blank field is 0.
  double valor() const;
  void blanquea() { texto_.assign(ancho_, ' '); }

 private:
  std::size_t ancho_;
  std::string texto_;
};

// The statement boxes Text1 to Text80 (index 0 is not used).
using CajasBoletin = std::array<std::string, 81>;

struct BOLETIN {
  CampoFijo BOLNOMBRE{65}, BOLDOMICILIO{65}, BOLLOCALIDAD{29}, BOLCP{8}, BOLPROV{21}, BOLENTIDAD{25},
      BOLCLAVE{8}, BOLEXP{18}, BOLNIF{12}, BOLCCC{19}, BOLTRABAJADORES{11}, BOLPERDESDE{8}, BOLPERHASTA{7};
  CampoFijo CCBASE{19}, CCTIPO{11}, CCCUOTA{17};
  CampoFijo HEBASE{19}, HETIPO{11}, HECUOTA{17};
  CampoFijo HNBASE{19}, HNTIPO{11}, HNCUOTA{17};
  CampoFijo ASBASE{19}, ASTIPO{11}, ASCUOTA{17};
  CampoFijo FPBASE{19}, FPTIPO{11}, FPCUOTA{17};
  CampoFijo OCCLAVE{1};
  CampoFijo OCBASE{19}, OCTIPO{11}, OCCUOTA{17};
  CampoFijo DXBASE{19}, DXTIPO{11}, DXCUOTA{17};
  CampoFijo DEBASE{19}, DETIPO{11}, DECUOTA{17};
  CampoFijo COMPIT{10}, REDCLAVE{2}, REDUCCIONES{11}, CGTOTAL{17}, CGLIQUIDO{17};
  CampoFijo ATBASE{18}, ATCUOTAIT{15}, ATCUOTAIMS{12}, ATTOTAL{17}, ATCOMPENSA{17}, ATLIQUIDO{17};
  CampoFijo OTBASE{19}, OTTIPO{11}, OTCUOTA{17};
  CampoFijo OT2BASE{19}, OT2TIPO{11}, OT2CUOTA{17};
  CampoFijo OTBONRED{15}, OTBONAUX1{15}, OTBONAUX2{15}, OTCOMPDES{15}, OTSUMA{17}, OTLIQUIDO{17};
  CampoFijo RECARGO{17}, APERCIBIR{17}, AINGRESAR{17}, TOTALRECARGO{15}, RECARGOPCT{2};

  // Every field in the order of the record, with the box that shows it (0: none).
  struct Descripcion {
    std::string_view nombre;
    CampoFijo BOLETIN::*campo;
    int caja;
  };
  static const std::vector<Descripcion>& campos();
};

// The box that shows a field (0: none).
int cajaDe(CampoFijo BOLETIN::*campo);

// True for the boxes that hold a figure (a count, a base, a rate, a quota or an amount);
// the others hold names, codes and periods.
bool cajaDeCifra(int caja);
// A figure's text as the screen shows it: its decimal mark, a point or a comma as the
// statement holds it (amounts come with a point, rates as the rate file writes them),
// written as the user's `decimal` separator. The figures carry no thousands marks.
std::string cifraEnPantalla(std::string_view texto, char decimal);
// The text of box `caja` as the screen shows it: a figure by cifraEnPantalla, any other
// box as it is.
std::string cajaEnPantalla(int caja, std::string_view texto, char decimal);

// BLANQUEABOLETIN: every field filled with as many blanks as its width.
void BLANQUEABOLETIN(BOLETIN& b);
// VACIABOLETIN: the public company variable and every statement box emptied.
void VACIABOLETIN(CajasBoletin& cajas, std::string& empresaPublica);
// VUELCABOLETIN: every box named in the record copied into its field, in the record's order.
void VUELCABOLETIN(const CajasBoletin& cajas, BOLETIN& b);
// A figure of the statement: assigned to its field, then the field's text shown in its box
// (so a figure cut by the width is what is shown).
void muestraFigura(BOLETIN& b, CajasBoletin& cajas, CampoFijo BOLETIN::*campo, std::string_view texto);
void muestraFigura(BOLETIN& b, CajasBoletin& cajas, CampoFijo BOLETIN::*campo, double numero);

// ---- The working table ---------------------------------------------------------------------

// GRID1: a header row 0, data rows from 1, 45 text columns numbered 0 to 44. A number is
// written in its plain decimal form and read back through REDONDEA2.
class TablaTrabajo {
 public:
  static constexpr int COLUMNAS = 45;
  static constexpr int FILASINICIALES = 10;  // the header and nine data rows

  TablaTrabajo() { LIMPIAGRID(); }

  // LIMPIAGRID: every data row removed down to row 2, row 1 blank, ten rows in all, the
  // headers written; the current row is 1.
  void LIMPIAGRID();

  int filas() const { return static_cast<int>(filas_.size()); }
  // Sets the number of rows (the header included); new rows are blank.
  void ponFilas(int n);
  int filaActual = 1;

  // A cell; "" outside the table.
  const std::string& texto(int fila, int columna) const;
  // A cell through REDONDEA2: an empty cell reads 0.
  double valor(int fila, int columna) const;
  // A write outside the table (a column above 44, a row beyond the last) changes nothing.
  void escribe(int fila, int columna, std::string_view texto);
  void escribe(int fila, int columna, double numero);
  // Blank a cell, then write it.
  void blanqueaYEscribe(int fila, int columna, std::string_view texto);

  static const std::array<std::string_view, COLUMNAS>& cabeceras();

 private:
  std::vector<std::array<std::string, COLUMNAS>> filas_;
};

// ---- Run variables ------------------------------------------------------------------------

// The month names of the statement, by month number 1 to 12.
std::string_view NOMBREMES(int mes);

struct VariablesCalculo {
  double MESCOT = 0, ANOCOT = 0;  // the contribution period
  std::string MES2, ANO4;         // the same as left-trimmed text cut to 2 and 4
  std::string EMPACT, TRAACT;     // BSSE and BMATRI of the payroll row under calculation
  std::string CODCONT;            // contract code, 3 digits when it is a number
  std::string TIPOTRA;            // TRA35
  std::string CLASEBON;           // first character of the left-trimmed TRA36
  std::string TRA37V, TRA38V, TRA39V, TRA42V, TRA4010V, TRA4110V;
  std::string EPICLAVE = "000";  // "000", or "114" when Lib3 is 1
  std::string EPIBUSCA;          // key of the epigraph lookup
  double PORCCC = 0, PORCAT = 0, PORCDE = 0, PORCFO = 0, PORCFP = 0;  // bonus percentages in force
  std::string BONREDACT;    // BONBR in force
  double BONCASILLA = 0;    // BONCS in force
  double BONMODO = 0;       // 0, 1 or 2 by the TRA39 rule
  double TIPOILT = 0, TIPOIMS = 0;  // rates of the epigraph
  double FLAGDECIMAL = 0;   // the epigraph rates unrounded when not 0
  std::string empresaPublica;  // the public company variable (A1 of the loaded employer)
};

// The key of the contract code CODCONT in the bonus table BONIFI: a code of exactly three
// characters is the number of its first character followed by the other two ("007" is
// "07"), any other code is the code trimmed.
std::string claveBonifica(std::string_view CODCONT);

// ---- The state of a run -----------------------------------------------------------------

// What the derivation of a statement works on: the statement, its boxes, the working
// rows and the run variables, and the two master lookups that the derivation asks for
// on its way (the contribution engine that builds the rows answers them).
class EstadoCalculo {
 public:
  BOLETIN boletin;
  CajasBoletin cajas;
  TablaTrabajo GRID1;
  VariablesCalculo v;
  double PRECIOHORADIST = 0;
  double PRECIOHORAPRES = 0;

  // LEETRABAJADOR: the worker's variables for EMPACT and TRAACT; a worker not found keeps
  // the previous worker's values.
  virtual void LEETRABAJADOR() = 0;
  // LEEEPIGRAFE: TIPOILT and TIPOIMS of EPIBUSCA; an epigraph not found keeps the rates.
  virtual void LEEEPIGRAFE() = 0;

 protected:
  EstadoCalculo() = default;
  ~EstadoCalculo() = default;
  EstadoCalculo(const EstadoCalculo&) = default;
  EstadoCalculo& operator=(const EstadoCalculo&) = default;
};

}  // namespace valdor
