// The exchange wizard by itself: the replacement panel, the name box, "&Aceptar" and Enter
// with the desktop's forms, and the question before a file of the same name is replaced.
#include "shell/forms/pxvaldor32.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::fabricaFormulariosQt;
using formularios::PXVALDOR32;

namespace {

// A wizard loaded on the sample office, shown by itself.
struct Asistente {
  Asistente() {
    programa.entornoWine = o.entorno;
    programa.arranca();
    w.carga();
    w.muestraPanelTipo();
    w.show();
  }
  template <typename T = QLineEdit>
  T* control(const char* nombre) {
    return w.findChild<T*>(QString::fromLatin1(nombre));
  }
  bool visible(const char* nombre) { return control<QWidget>(nombre)->isVisibleTo(&w); }
  void escribe(const char* caja, const QString& texto) {
    control(caja)->clear();
    QTest::keyClicks(control(caja), texto);
  }

  Oficina o;
  Programa programa{o.carpetas, o.dialogos, {}, MOMENTO};
  PXVALDOR32 w{programa, o.lanzador, o.entorno, fabricaFormulariosQt()};
};

}  // namespace

class PruebaAsistente : public QObject {
  Q_OBJECT

 private slots:
  void laSustitucionElNombreYAceptarConLaSeleccionCancelada() {
    Asistente a;
    // No kind of message chosen yet: "&Aceptar" takes nothing.
    auto* aceptar = a.control<QPushButton>("Command3");
    QVERIFY(!aceptar->isEnabled());
    QVERIFY(a.control<QRadioButton>("Option2_0")->isChecked());
    QVERIFY(!a.visible("SSPanel4"));

    // The replaced send's panel only for a replacement, each box at its width; another
    // mode hides it and empties it.
    a.control<QRadioButton>("Option2_2")->click();
    QVERIFY(a.visible("SSPanel4"));
    QCOMPARE(a.w.pagina().modo, Modo::Sustitucion);
    const std::pair<const char*, int> cajas[] = {{"Text3", 2}, {"Text4", 2}, {"Text5", 1}, {"Text6", 5}, {"Text7", 4}};
    for (const auto& [caja, ancho] : cajas) {
      a.escribe(caja, QStringLiteral("123456"));
      QCOMPARE(a.control(caja)->text().size(), ancho);
    }
    QCOMPARE(a.w.pagina().Text6, std::string("12345"));
    a.control<QRadioButton>("Option2_1")->click();
    QVERIFY(!a.visible("SSPanel4"));
    QCOMPARE(a.w.pagina().modo, Modo::Pruebas);
    for (const auto& [caja, ancho] : cajas) QVERIFY(a.control(caja)->text().isEmpty());
    QCOMPARE(a.w.pagina().Text3, std::string());

    // The name: a full one is left as typed, cut at 8; a short one is put in capitals and
    // filled with "0" on leaving the box; an empty one stays empty, and "&Aceptar" with it.
    a.w.fan();
    QVERIFY(aceptar->isEnabled());
    QLineEdit* Text8 = a.control("Text8");
    QFocusEvent salida(QEvent::FocusOut);
    a.escribe("Text8", QStringLiteral("abcdefghi"));
    QApplication::sendEvent(Text8, &salida);
    QCOMPARE(Text8->text(), QStringLiteral("abcdefgh"));
    Text8->setText(q("ñu"_cp));
    QApplication::sendEvent(Text8, &salida);
    QCOMPARE(Text8->text(), q("ÑU000000"_cp));
    Text8->clear();
    QApplication::sendEvent(Text8, &salida);
    QCOMPARE(Text8->text(), QString());
    QCOMPARE(a.w.pagina().Text8, std::string());
    QVERIFY(!aceptar->isEnabled());

    // A name the exchange folder would not take leaves "&Aceptar" off; Enter tells why,
    // and no selection opens and no label line is made.
    a.escribe("Text8", QStringLiteral("../x"));
    QVERIFY(!aceptar->isEnabled());
    {
      AlAbrirModal ninguna;
      QTest::keyClick(Text8, Qt::Key_Return);
      QVERIFY(ninguna.nombre.isEmpty());
    }
    QCOMPARE(a.o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(a.o.dialogos.mensajes[0].titulo, std::string("NOMBRE DE FICHERO NO VÁLIDO"_cp));
    QVERIFY(a.o.dialogos.mensajes[0].texto.find("no es válido: lleva el carácter «.»"_cp) != std::string::npos);
    QCOMPARE(a.programa.g.LINEAETI, std::string());
    a.o.dialogos.mensajes.clear();

    // Enter in the name box: the name rule, then "&Aceptar" on a test send. The selection
    // is left by the window's own close, which counts as "Cancelar", so no editor is
    // offered and nothing is started.
    a.escribe("Text8", QStringLiteral("abc"));
    a.o.dialogos.punteros.clear();
    AlAbrirModal seleccion;
    QTest::keyClick(Text8, Qt::Key_Return);
    QCOMPARE(Text8->text(), QStringLiteral("ABC00000"));
    QCOMPARE(seleccion.nombre, QStringLiteral("COTIZACION"));
    // The sample office's keys are 20731542 and SLC48213.
    QCOMPARE(a.programa.g.LINEAETI, std::string("ETI" "TC220VIP28" "20731542" "SLC48213" "20261115" "0730"
                                                "ABC00000" "FAN" "N" "P" "00000000000000" "  "));
    QVERIFY(a.o.dialogos.mensajes.empty() && a.o.dialogos.preguntas.empty() && a.o.lanzador.ordenes.empty());
    QCOMPARE(a.programa.g.CANCELADO, 0.0);
    // The hourglass of the hand-over, the arrow while the user chooses, and back.
    QCOMPARE(a.o.dialogos.punteros, (std::vector<Puntero>{Puntero::Reloj, Puntero::Normal, Puntero::Normal}));
    QVERIFY(a.control<QLabel>("Label3")->text().startsWith(QStringLiteral("Seleccione el mes")));
  }

  void unFicheroDelMismoNombreSoloSeReemplazaSiElUsuarioLoDice() {
    Asistente a;
    // A file of the default name (F, day, month, year, first digit of the hour) is there.
    PaginaIntercambio ocupada;
    ocupada.marcaCotizacion();
    ocupada.Text8 = "F1511260";
    ocupada.Label10 = "FAN";
    const auto existente = rutaNativa(rutaFicheroFAN(a.programa.g.RUTAWS, ocupada), a.o.entorno);
    std::filesystem::create_directories(existente.parent_path());
    escribeBytes(existente, std::string(144, 'x'));

    // The default is the next free name of the same form.
    a.w.fan();
    QLineEdit* Text8 = a.control("Text8");
    QCOMPARE(Text8->text(), QStringLiteral("F1511261"));

    // The taken name typed back: "&Aceptar" asks, naming the file, its size and its date;
    // "No" leaves the name box waiting and opens nothing.
    a.escribe("Text8", QStringLiteral("F1511260"));
    {
      AlAbrirModal ninguna;
      a.control<QPushButton>("Command3")->click();
      QVERIFY(ninguna.nombre.isEmpty());
    }
    QCOMPARE(a.o.dialogos.preguntas.size(), std::size_t{1});
    const std::string& pregunta = a.o.dialogos.preguntas[0].texto;
    QVERIFY(pregunta.find("C:\\WINSUITE\\VIPTC2\\FAN\\F1511260.FAN, de 144 bytes, modificado el ") != std::string::npos);
    QVERIFY(pregunta.find("¿Desea reemplazarlo?"_cp) != std::string::npos);
    QCOMPARE(a.programa.g.LINEAETI, std::string());

    // "Sí": the hand-over goes on to the selection.
    a.o.dialogos.respuestas = {true};
    AlAbrirModal seleccion;
    a.control<QPushButton>("Command3")->click();
    QCOMPARE(seleccion.nombre, QStringLiteral("COTIZACION"));
    QCOMPARE(a.o.dialogos.preguntas.size(), std::size_t{2});
    QCOMPARE(leeBytes(existente), std::string(144, 'x'));  // the selection was cancelled
  }
};

int ejecutaPruebaAsistente(int argc, char** argv) { return ejecuta<PruebaAsistente>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_asistente.moc"
