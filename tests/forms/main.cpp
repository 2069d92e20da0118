// The form tests, one Qt Test class after another in one program.
#include <QApplication>

namespace valdor::pruebas {
int ejecutaPruebaPrincipal(int argc, char** argv);
int ejecutaPruebaAsistente(int argc, char** argv);
int ejecutaPruebaConfiguracion(int argc, char** argv);
int ejecutaPruebaAfilia(int argc, char** argv);
int ejecutaPruebaCotizacion(int argc, char** argv);
int ejecutaPruebaBoletin(int argc, char** argv);
int ejecutaPruebaBoletinTC1(int argc, char** argv);
int ejecutaPruebaEditorFicheros(int argc, char** argv);
}  // namespace valdor::pruebas

int main(int argc, char** argv) {
  QApplication aplicacion(argc, argv);
  using namespace valdor::pruebas;
  int fallos = 0;
  for (auto prueba : {ejecutaPruebaPrincipal, ejecutaPruebaAsistente, ejecutaPruebaConfiguracion, ejecutaPruebaAfilia,
                      ejecutaPruebaCotizacion, ejecutaPruebaBoletin, ejecutaPruebaBoletinTC1,
                      ejecutaPruebaEditorFicheros})
    fallos += prueba(argc, argv);
  return fallos == 0 ? 0 : 1;
}
