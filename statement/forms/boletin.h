// The statement of one worker on screen: the "Boletín de cotización a la Seguridad
// Social" (TC1) laid out by blocks as on the form, and beside it the worker's sheet
// "TC2-TC2/1 ABREVIADO". Every field is read-only.
//
// Names of the controls:
//  - the statement boxes: "Text1" ... "Text58" (there is no Text56) and "Text78",
//    "Text79", "Text80" (the second row of "OTRAS COTIZACIONES"), each showing its box;
//  - the sheet, in the group "HojaTC2": "Apellidos", "Nombre", "Afiliacion", "Nif",
//    "DiasAlta", "GrupoCotizacion", "ClaseContrato", "Horas", "Epigrafe", "DiasIT",
//    "DiasMaternidad", "EpigrafeIT", "BaseAT", "FechaBonificacion", one for each piece
//    of HojaTC2.
#pragma once

#include <QWidget>
#include <array>

#include "statement/estado.h"
#include "statement/hojatc2.h"

class QBoxLayout;
class QGroupBox;
class QLineEdit;

namespace valdor {
class EstadoCalculo;
}

namespace valdor::formularios {

class VistaBoletin : public QWidget {
  Q_OBJECT

 public:
  explicit VistaBoletin(QWidget* padre = nullptr);

  // The statement boxes of the run and the sheet of the worker in row 1 of its GRID1.
  void muestra(const valdor::EstadoCalculo& calculo);
  // The same from boxes and a sheet kept aside. Each field shows its box's text without
  // the blanks that fill the box's field on the right.
  void muestra(const CajasBoletin& cajas, const HojaTC2& hoja);

  // The decimal separator the figures are shown with: the user's, unless the program
  // pins another.
  void usaDecimal(char decimal) { decimal_ = decimal; }

  // The blocks on the right (accidents at work, other contributions, the sheet) beside
  // the statement, or under it in a narrow window.
  void apila(bool apilada);
  // The width the view needs with the blocks beside the statement.
  int anchoEnDosColumnas() const;

  // The worker's sheet shown or hidden; the statement stays as it is.
  void muestraHoja(bool visible);
  bool hojaVisible() const;

 private:
  QLineEdit* caja(int numero, int caracteres, bool importe);
  QLineEdit* campoHoja(const char* nombre, int caracteres, bool importe);

  char decimal_;
  QBoxLayout* capa_ = nullptr;
  // The field of each box (nullptr for the boxes not shown).
  std::array<QLineEdit*, 81> cajas_{};
  QGroupBox* hoja_ = nullptr;
  QLineEdit *apellidos_ = nullptr, *nombre_ = nullptr, *afiliacion_ = nullptr, *nif_ = nullptr;
  QLineEdit *diasAlta_ = nullptr, *grupo_ = nullptr, *contrato_ = nullptr, *horas_ = nullptr;
  QLineEdit *epigrafe_ = nullptr, *diasIT_ = nullptr, *diasMaternidad_ = nullptr, *epigrafeIT_ = nullptr;
  QLineEdit *baseAT_ = nullptr, *fechaBonificacion_ = nullptr;
};

}  // namespace valdor::formularios
