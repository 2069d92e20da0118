// The exchange wizard: the name box, the replacement panel, the AFI keys, and
// "&Aceptar" with the desktop's stand-in forms.
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

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
  void reglaDelNombreAlPulsarIntroYAlSalirDeLaCaja() {
    Asistente a;
    a.w.fan();
    QLineEdit* Text8 = a.control("Text8");
    QCOMPARE(Text8->maxLength(), 8);

    a.escribe("Text8", QStringLiteral("abc"));
    QTest::keyClick(Text8, Qt::Key_Return);
    QCOMPARE(Text8->text(), QStringLiteral("ABC00000"));
    QCOMPARE(a.w.pagina().Text8, std::string("ABC00000"));

    Text8->setText(q("ñu"_cp));
    QFocusEvent salida(QEvent::FocusOut);
    QApplication::sendEvent(Text8, &salida);
    QCOMPARE(Text8->text(), q("ÑU000000"_cp));

    // A full name is left as typed; an empty one stays empty.
    a.escribe("Text8", QStringLiteral("abcdefgh"));
    QTest::keyClick(Text8, Qt::Key_Return);
    QCOMPARE(Text8->text(), QStringLiteral("abcdefgh"));
    Text8->clear();
    QTest::keyClick(Text8, Qt::Key_Return);
    QApplication::sendEvent(Text8, &salida);
    QCOMPARE(Text8->text(), QString());
    QCOMPARE(a.w.pagina().Text8, std::string());
  }

  void elPanelDeSustitucionSoloParaSustitucion() {
    Asistente a;
    QVERIFY(a.control<QRadioButton>("Option2_0")->isChecked());
    QVERIFY(!a.visible("SSPanel4"));

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
  }

  void lasClavesSoloParaAfiliacionYPasanALaLineaSil() {
    Asistente a;
    a.w.fan();
    QVERIFY(!a.visible("Text10") && !a.visible("Text11") && !a.visible("Label16") && !a.visible("Label17"));
    a.w.AFI();
    QVERIFY(a.visible("Text10") && a.visible("Text11") && a.visible("Label16") && a.visible("Label17"));
    a.escribe("Text10", QStringLiteral("123456789"));
    QCOMPARE(a.control("Text10")->text(), QStringLiteral("12345678"));

    // "&Aceptar" opens the affiliation module, left by its "&Nuevo".
    QString modulo;
    alAbrirModal([&modulo](QWidget* m) {
      modulo = m->objectName();
      m->findChild<QPushButton*>(QStringLiteral("Command3"))->click();
    });
    a.control<QPushButton>("Command3")->click();
    QCOMPARE(modulo, QStringLiteral("AFILIA"));
    QCOMPARE(a.programa.g.LINEASIL, "SIL12345678" + std::string(8 + 51, ' '));
    QCOMPARE(a.control<QLabel>("SSPanel1")->text(), q("   Afiliación"_cp));
  }

  void aceptarConLaSeleccionCanceladaNoOfreceElEditor() {
    Asistente a;
    a.w.fan();
    a.control<QRadioButton>("Option2_1")->click();
    a.escribe("Text8", QStringLiteral("abc"));
    QTest::keyClick(a.control("Text8"), Qt::Key_Return);
    a.o.dialogos.punteros.clear();

    // The selection is left by the window's own close, which counts as "Cancelar".
    QString seleccion;
    alAbrirModal([&](QWidget* modal) {
      seleccion = modal->objectName();
      modal->close();
    });
    a.control<QPushButton>("Command3")->click();
    QCOMPARE(seleccion, QStringLiteral("COTIZACION"));
    // The sample office's keys are 20731542 and SLC48213.
    QCOMPARE(a.programa.g.LINEAETI, std::string("ETI" "TC220VIP28" "20731542" "SLC48213" "20261115" "0730"
                                                "ABC00000" "FAN" "N" "P" "00000000000000" "  "));
    QVERIFY(a.o.dialogos.mensajes.empty());
    QVERIFY(a.o.dialogos.preguntas.empty());
    QVERIFY(a.o.lanzador.ordenes.empty());
    QCOMPARE(a.programa.g.CANCELADO, 0.0);
    // The hourglass of the hand-over, the arrow while the user chooses, and back.
    QCOMPARE(a.o.dialogos.punteros, (std::vector<Puntero>{Puntero::Reloj, Puntero::Normal, Puntero::Normal}));
    QCOMPARE(a.control<QLabel>("SSPanel1")->text(), q("   Cotización"_cp));
    QVERIFY(a.control<QLabel>("Label3")->text().startsWith(QStringLiteral("Seleccione el mes")));
  }
};

int ejecutaPruebaAsistente(int argc, char** argv) {
  PruebaAsistente prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_asistente.moc"
