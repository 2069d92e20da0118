// The statement of one worker on screen: the "Boletín de cotización a la Seguridad
// Social" (TC1) laid out by blocks as on the form, and beside it the worker's sheet
// "TC2-TC2/1 ABREVIADO". Every field is read-only.
//
// Two arrangements of the blocks. In two columns (the run's window): the employer, the
// general contingencies and the result on the left; accidents at work, other
// contributions and the sheet on the right. Compact (a child window of the main frame,
// which must show the whole statement in less room): a letter one point smaller, the
// employer and the result side by side on top, the general contingencies and the
// right-hand blocks side by side under them; the sheet is left out of the view, for the
// form to place where it has room (hoja()).
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

class QGroupBox;
class QLineEdit;

namespace valdor {
class EstadoCalculo;
}

namespace valdor::formularios {

class VistaBoletin : public QWidget {
  Q_OBJECT

 public:
  enum class Disposicion { DosColumnas, Compacta };

  explicit VistaBoletin(QWidget* padre = nullptr, Disposicion disposicion = Disposicion::DosColumnas);

  // The statement boxes of the run and the sheet of the worker in row 1 of its GRID1.
  void muestra(const valdor::EstadoCalculo& calculo);
  // The same from boxes and a sheet kept aside. Each field shows its box's text without
  // the blanks that fill the box's field on the right.
  void muestra(const CajasBoletin& cajas, const HojaTC2& hoja);

  // The decimal separator the figures are shown with: the user's, unless the program
  // pins another.
  void usaDecimal(char decimal) { decimal_ = decimal; }

  // The worker's sheet, filled by muestra wherever it stands: in the compact arrangement
  // the form gives it a place (a widget of its own there).
  QWidget* hoja() const;

 private:
  QLineEdit* caja(int numero, int caracteres, bool importe);
  QLineEdit* campoHoja(const char* nombre, int caracteres, bool importe);

  char decimal_;
  // The field of each box (nullptr for the boxes not shown).
  std::array<QLineEdit*, 81> cajas_{};
  QGroupBox* hoja_ = nullptr;
  QLineEdit *apellidos_ = nullptr, *nombre_ = nullptr, *afiliacion_ = nullptr, *nif_ = nullptr;
  QLineEdit *diasAlta_ = nullptr, *grupo_ = nullptr, *contrato_ = nullptr, *horas_ = nullptr;
  QLineEdit *epigrafe_ = nullptr, *diasIT_ = nullptr, *diasMaternidad_ = nullptr, *epigrafeIT_ = nullptr;
  QLineEdit *baseAT_ = nullptr, *fechaBonificacion_ = nullptr;
};

}  // namespace valdor::formularios
