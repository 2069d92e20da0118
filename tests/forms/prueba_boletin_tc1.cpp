// The statement form TC1VAL on the sample office of October 2026: its choices and its
// keyboard, the one-company and all-companies runs with their TC1 lines, the cancel at a
// company break, and the main window that opens it, gives it room for all of it and
// waits while it runs.
#include <array>
#include <cmath>

#include "engine/forms/boletin_tc1.h"
#include "shell/forms/pxvaldor32.h"
#include "statement/forms/boletin.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::frmMain;
using formularios::TC1VAL;

namespace {

// The companies of the sample office with a statement in October 2026 go by their
// contribution account in the index MEEP: Café Nórdico (08...) first, the Asociación
// Cultural Río Ebro (50 1045321, 501045321 mod 97 = 66) last. Talleres Úbeda has only a
// row marked "N".
const std::string ASOCIACION = "50104532166";

template <typename T>
T* control(QWidget* f, const char* nombre) {
  T* c = f->findChild<T*>(QString::fromLatin1(nombre));
  if (!c) qFatal("sin control %s", nombre);
  return c;
}

QString caja(QWidget* f, int n) { return control<QLineEdit>(f, qPrintable(QStringLiteral("Text%1").arg(n)))->text(); }

// A figure of a line in whole cents: eleven characters, the sign among them when the
// figure is negative ("000000-1234").
qint64 centimos(const QString& linea, int desde) {
  QString cifra = linea.mid(desde, 11);
  const bool negativa = cifra.contains(QLatin1Char('-'));
  cifra.remove(QLatin1Char('-'));
  return negativa ? -cifra.toLongLong() : cifra.toLongLong();
}

// A box of the view in whole cents (an empty box is 0).
qint64 centimosDeCaja(QWidget* f, CampoFijo BOLETIN::*campo) {
  return std::llround(caja(f, cajaDe(campo)).toDouble() * 100);
}

// The TC1 lines listed belong to the statement on screen: each of 70 characters and listed
// once, and the net of the general contingencies and the amount to pay, each with its
// sign in the 42nd place, are the figures of their boxes.
void compruebaLineasDelBoletin(QWidget* f) {
  QMap<QString, QString> lineas;
  const auto* lista = control<QListWidget>(f, "ListaTC1");
  for (int i = 0; i < lista->count(); ++i) {
    const QString l = lista->item(i)->text();
    QVERIFY2(l.size() == 70 && !lineas.contains(l.left(10)), qPrintable(l));
    lineas.insert(l.left(10), l);
  }
  const std::pair<const char*, CampoFijo BOLETIN::*> totales[] = {{"EDTTT10000", &BOLETIN::CGLIQUIDO},
                                                                 {"EDTTT91000", &BOLETIN::AINGRESAR}};
  for (const auto& [codigo, campo] : totales) {
    const QString l = lineas.value(QString::fromLatin1(codigo));
    QVERIFY2(!l.isEmpty(), codigo);
    QCOMPARE(l.at(41) == QLatin1Char('-') ? -centimos(l, 30) : centimos(l, 30), centimosDeCaja(f, campo));
  }
}

// "Calcular", "Cancelar" and "Salir" enabled or not, and the progress shown or not.
using Mandos = std::array<bool, 4>;
constexpr Mandos LIBRE{true, false, true, false}, CALCULANDO{false, true, false, true};
Mandos mandos(QWidget* f) {
  return {control<QPushButton>(f, "Calcular")->isEnabled(), control<QPushButton>(f, "Command3D8")->isEnabled(),
          control<QPushButton>(f, "Salir")->isEnabled(), control<QLabel>(f, "Panel3D3")->isVisible()};
}

// Runs `accion` once, inside the run of the form, at the first moment the run lets the
// screen take events (after its first company).
class DuranteLaEjecucion {
 public:
  DuranteLaEjecucion(TC1VAL* f, std::function<void()> accion) {
    QObject::connect(&reloj_, &QTimer::timeout, &reloj_, [this, f, accion = std::move(accion)] {
      if (hecho || !f->enMarcha()) return;
      hecho = true;
      reloj_.stop();
      accion();
    });
    reloj_.start(0);
  }
  bool hecho = false;

 private:
  QTimer reloj_;
};

// The form by itself over the sample office.
struct Formulario {
  explicit Formulario(Momento momento = MOMENTO, Separadores separadores = {})
      : programa(o.carpetas, o.dialogos, separadores, momento) {
    programa.arranca();
    f = std::make_unique<TC1VAL>(programa);
    f->resize(1100, 900);
    f->show();
  }
  ~Formulario() {
    f.reset();
    programa.termina();
  }
  template <typename T = QComboBox>
  T* c(const char* nombre) {
    return control<T>(f.get(), nombre);
  }
  void calcula() { c<QPushButton>("Calcular")->click(); }

  Oficina o;
  Programa programa;
  std::unique_ptr<TC1VAL> f;
};

}  // namespace

class PruebaBoletinTC1 : public QObject {
  Q_OBJECT

 private slots:
  void lasEleccionesDelFormulario() {
    Formulario s;
    // 15 November 2026: October of the same year; no surcharge, every company.
    QCOMPARE(s.c("Combo1")->currentText(), QStringLiteral("Octubre"));
    QCOMPARE(s.c("Combo2")->currentText(), QStringLiteral("2026"));
    QVERIFY(s.c<QRadioButton>("Option1_0")->isChecked() && s.c<QRadioButton>("Option3D1_0")->isChecked());
    QVERIFY(!s.c("ComboEmpresa")->isEnabled());
    QCOMPARE(mandos(s.f.get()), LIBRE);

    // One company: the companies of the month in name order, each after its account.
    s.c<QRadioButton>("Option3D1_1")->click();
    QVERIFY(s.c("ComboEmpresa")->isEnabled());
    QCOMPARE(s.c("ComboEmpresa")->count(), 4);
    QCOMPARE(s.c("ComboEmpresa")->itemText(0), q(ASOCIACION + "  " + std::string("Asociación Cultural Río Ebro"_cp)));
    // September has no payroll: no company to calculate.
    s.c("Combo1")->setCurrentIndex(8);
    QCOMPARE(s.c("ComboEmpresa")->count(), 0);
    QVERIFY(!s.c<QPushButton>("Calcular")->isEnabled());
    s.c<QRadioButton>("Option3D1_0")->click();
    QVERIFY(!s.c("ComboEmpresa")->isEnabled() && s.c<QPushButton>("Calcular")->isEnabled());

    // In January, December of the year before.
    Formulario enero(Momento{2027, 1, 10, 9, 0, 0});
    QCOMPARE(enero.c("Combo1")->currentText(), QStringLiteral("Diciembre"));
    QCOMPARE(enero.c("Combo2")->currentText(), QStringLiteral("2026"));
  }

  void elTeclado() {
    Formulario s;
    // Every control has an Alt letter, and no two the same.
    QCOMPARE(letrasAlt(s.f.get()), QStringLiteral("125BCDEFGHLMNOPRSTUV"));

    // Tab goes down the rows, each from left to right, and then to the pages.
    const auto* paginas = s.c<QTabWidget>("Pestanas");
    const QStringList orden{"Combo1",   "Combo2",      "Option1_0",   "Option1_1", "Option1_2", "Option3D1_0",
                            "Option3D1_1", "ComboEmpresa", "Calcular", "Command3D8", "Imprimir", "VistaPrevia",
                            "Impresora", "Pdf",         "Check4",      "ConImpreso", "Salir",     "Pestanas"};
    QStringList recorrido;
    QWidget* w = s.c("Combo1");
    do {
      const QWidget* control = w->parentWidget() == paginas ? paginas : w;  // the pages' tab bar
      if (orden.contains(control->objectName()) && !recorrido.contains(control->objectName()))
        recorrido << control->objectName();
      w = w->nextInFocusChain();
    } while (w != s.c("Combo1"));
    QCOMPARE(recorrido, orden);

    // Enter on a combo is "Calcular" (every company: the closing box); Escape closes.
    QTest::keyClick(s.c("Combo2"), Qt::Key_Return);
    QCOMPARE(s.o.dialogos.mensajes.size(), std::size_t{1});
    QTest::keyClick(s.c("Combo2"), Qt::Key_Escape);
    QVERIFY(!s.f->isVisible());
  }

  void unaEmpresaTodasYElCancelar() {
    Formulario s;
    // The master stores closed, as the selection of a FAN file leaves them: the run
    // opens them again.
    s.programa.almacenes.CIERRAMAESTROS();
    s.c<QRadioButton>("Option3D1_1")->click();
    s.c("ComboEmpresa")->setCurrentIndex(3);  // the bakery, last by name
    s.calcula();
    QVERIFY(s.o.dialogos.mensajes.empty());
    QCOMPARE(caja(s.f.get(), 1), q("Panadería Ángel Muñoz Ortega"_cp));
    compruebaLineasDelBoletin(s.f.get());
    QCOMPARE(mandos(s.f.get()), LIBRE);
    QCOMPARE(s.c<QLabel>("Origen")->text(), q("Cifras del cálculo de esta empresa sola, con todos sus pasos."_cp));

    // "Imprimir" sends the statement on screen to the port, here a file of the work
    // folder: its first line is the sole trader's name after the form's 32 blanks, in the
    // printer's letters.
    s.programa.g.PUERTOIMPRESORA = "boletin.txt";
    s.c<QCheckBox>("Check4")->setChecked(true);
    s.c<QPushButton>("Imprimir")->click();
    const std::string impreso = pruebas::leeBytes(s.o.carpetas.trabajo / "boletin.txt");
    QVERIFY(impreso.starts_with(std::string(32, ' ') + QUITAACENTOS("Panadería Ángel Muñoz Ortega"_cp)));
    QVERIFY(impreso.find("AUTORIZACION TGSS") != std::string::npos);

    // Every company: while it runs only "Cancelar" is enabled and the form does not
    // close; then the closing box, and the last company of the index on screen with its
    // own lines only.
    s.c<QRadioButton>("Option3D1_0")->click();
    Mandos enMarcha{};
    bool seCierra = true;
    QString progreso;
    DuranteLaEjecucion durante(s.f.get(), [&] {
      enMarcha = mandos(s.f.get());
      progreso = s.c<QLabel>("Panel3D3")->text();
      seCierra = s.f->close();
    });
    s.calcula();
    QVERIFY(durante.hecho);
    QCOMPARE(enMarcha, CALCULANDO);
    QVERIFY(!seCierra);
    QCOMPARE(progreso, q("VALDOR+ está calculando el modelo TC1 de la empresa Café Nórdico Lars Hansen"_cp));
    QCOMPARE(s.o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(s.o.dialogos.mensajes[0].titulo, std::string("VALDOR+"));
    QCOMPARE(s.o.dialogos.mensajes[0].texto,
             std::string("VALDOR+ ha calculado el boletín TC-1 de 4 empresas. No se ha impreso ninguno: "
                         "«Imprimir» imprime el que se ve en pantalla."_cp));
    QCOMPARE(s.o.dialogos.mensajes[0].icono, Icono::Informacion);
    QCOMPARE(caja(s.f.get(), 1), q("Asociación Cultural Río Ebro"_cp));
    compruebaLineasDelBoletin(s.f.get());
    // The figures say which run made them, and what it leaves out.
    QVERIFY(s.c<QLabel>("Origen")->text().startsWith(q("Cifras del cálculo de todas las empresas, que no lleva las "
                                                        "columnas de maternidad"_cp)));
    QVERIFY(s.f->isVisible());
    QCOMPARE(mandos(s.f.get()), LIBRE);

    // Escape, as "Cancelar", stops the next run at the break after Café Nórdico, the
    // first of the index: its statement stays on screen, and there is no closing box.
    DuranteLaEjecucion cancela(s.f.get(), [&] { QTest::keyClick(s.f.get(), Qt::Key_Escape); });
    s.calcula();
    QVERIFY(cancela.hecho);
    QCOMPARE(s.o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(caja(s.f.get(), 1), q("Café Nórdico Lars Hansen"_cp));
    compruebaLineasDelBoletin(s.f.get());
    QCOMPARE(mandos(s.f.get()), LIBRE);
  }

  void lasCifrasConLaComaDelUsuarioYLaImpresionContadaTalCual() {
    // A user whose decimal separator is the comma: every figure of the statement shows
    // it, the amounts (written with a point) as much as the rates (written with a comma).
    Formulario s(MOMENTO, Separadores{',', '.'});
    s.c<QRadioButton>("Option3D1_1")->click();
    s.c("ComboEmpresa")->setCurrentIndex(3);
    s.calcula();
    int conComa = 0;
    for (int n = 1; n <= 80; ++n) {
      const auto* campo = s.f->findChild<QLineEdit*>(QStringLiteral("Text%1").arg(n));
      if (!campo || !cajaDeCifra(n)) continue;
      QVERIFY2(!campo->text().contains(QLatin1Char('.')), qPrintable(campo->objectName() + campo->text()));
      conComa += campo->text().contains(QLatin1Char(',')) ? 1 : 0;
    }
    QVERIFY(conComa >= 3);

    // A port that fails: the box names it, and the form says that nothing was printed.
    s.programa.g.PUERTOIMPRESORA = "LPT3";
    s.c<QPushButton>("Imprimir")->click();
    QCOMPARE(s.o.dialogos.preguntas.size(), std::size_t{1});
    QVERIFY(s.o.dialogos.preguntas[0].texto.find("\"/dev/lp2\"") != std::string::npos);
    QCOMPARE(s.c<QLabel>("Panel3D3")->text(),
             QStringLiteral("El boletín no se ha impreso: no se ha podido enviar a /dev/lp2."));

    // The PDF: written and told; a folder that is not there, named in the box.
    const auto pdf = s.o.carpetas.trabajo / "boletin.pdf";
    s.f->guardaPdfEn(QString::fromStdString(pdf.string()));
    QVERIFY(pruebas::leeBytes(pdf).starts_with("%PDF-1.4"));
    QCOMPARE(s.c<QLabel>("Panel3D3")->text(), QStringLiteral("Boletín guardado en el PDF %1.").arg(pdf.c_str()));
    const auto mal = s.o.carpetas.trabajo / "no" / "boletin.pdf";
    s.f->guardaPdfEn(QString::fromStdString(mal.string()));
    QCOMPARE(s.o.dialogos.mensajes.size(), std::size_t{1});
    QVERIFY(s.o.dialogos.mensajes[0].texto.find(mal.string()) != std::string::npos);
    QCOMPARE(s.c<QLabel>("Panel3D3")->text(),
             QStringLiteral("No se ha podido escribir el PDF \"%1\": no existe el fichero o la carpeta. El fichero no "
                            "se ha generado.")
                 .arg(mal.c_str()));
  }

  void laVentanaPrincipalLoAbreYEsperaMientrasCalcula() {
    Escritorio e;
    auto* mdi = e.v.findChild<QMdiArea*>(QStringLiteral("mdi"));
    e.pulsa("BOLETIN");
    TC1VAL* f = e.v.boletin();
    QVERIFY(f && f->isVisible());
    QCOMPARE(mdi->subWindowList().size(), 2);
    // The menus' letters are the window's: the form has none of them.
    const QString letras = letrasAlt(f);
    for (const QAction* menu : e.v.menuBar()->actions()) {
      const qsizetype i = menu->text().indexOf(QLatin1Char('&'));
      QVERIFY2(i >= 0 && !letras.contains(menu->text().at(i + 1).toUpper()), qPrintable(menu->text()));
    }

    // The menu raises the same form.
    e.v.findChild<QAction*>(QStringLiteral("mnuFileBoletin"))->trigger();
    QCOMPARE(e.v.boletin(), f);
    QCOMPARE(mdi->subWindowList().size(), 2);
    QCOMPARE(mdi->activeSubWindow(), f->parentWidget());

    // While the run goes, the window's other commands wait and the window does not
    // close: the close stops the run at its company break.
    QToolButton* cotiza = elemento(&e.v, QStringLiteral("cotiza"));
    bool listaActiva = true, asistenteActivo = true, cerrada = true;
    DuranteLaEjecucion durante(f, [&] {
      listaActiva = cotiza->isEnabled();
      asistenteActivo = e.v.asistente()->isEnabled();
      cerrada = e.v.close();
    });
    control<QPushButton>(f, "Calcular")->click();
    QVERIFY(durante.hecho);
    QVERIFY(!listaActiva && !asistenteActivo && !cerrada);
    QVERIFY(e.v.isVisible());
    QVERIFY(std::filesystem::exists(e.o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
    QVERIFY(e.o.dialogos.mensajes.empty());
    QCOMPARE(caja(f, 1), q("Café Nórdico Lars Hansen"_cp));
    QVERIFY(cotiza->isEnabled() && e.v.asistente()->isEnabled());
    // In the window as the program opens it, the form has room for all of it, the note
    // of the all-companies run included.
    e.v.resize(frmMain::TAMANOINICIAL);
    QCoreApplication::sendPostedEvents();
    const auto* desplaza = control<QScrollArea>(f, "desplaza");
    const QSize necesita = desplaza->widget()->minimumSizeHint(), tiene = desplaza->size();
    QVERIFY2(necesita.width() <= tiene.width() && necesita.height() <= tiene.height(),
             qPrintable(QStringLiteral("%1x%2 en %3x%4").arg(necesita.width()).arg(necesita.height())
                            .arg(tiene.width()).arg(tiene.height())));

    // The wizard's commands bring the wizard back in front of it.
    cotiza->click();
    QCOMPARE(mdi->activeSubWindow(), e.v.asistente()->parentWidget());
    e.pulsa("BOLETIN");
    QCOMPARE(mdi->activeSubWindow(), f->parentWidget());

    // "Salir" unloads it; the item loads it anew.
    control<QPushButton>(f, "Salir")->click();
    QVERIFY(!e.v.boletin());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(mdi->subWindowList().size(), 1);
    e.pulsa("BOLETIN");
    QVERIFY(e.v.boletin());
    QCOMPARE(mdi->subWindowList().size(), 2);
    e.v.close();
    QVERIFY(!std::filesystem::exists(e.o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
  }
};

int ejecutaPruebaBoletinTC1(int argc, char** argv) { return ejecuta<PruebaBoletinTC1>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_boletin_tc1.moc"
