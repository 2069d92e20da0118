// The statement form TC1VAL on the sample office of October 2026: its choices, the
// one-company and all-companies runs with the TC1 lines under the statement, the cancel
// at a company break, and the main window that opens it and waits while it runs.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <cmath>
#include <map>
#include <memory>

#include "engine/forms/boletin_tc1.h"
#include "shell/forms/frmmain.h"
#include "shell/forms/pxvaldor32.h"
#include "statement/forms/boletin.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "tests/apoyo.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::TC1VAL;

namespace {

// The companies of the sample office with a statement in October 2026, by their
// contribution account: province, number and (province and number) mod 97.
//   08 1987654: 81987654 mod 97 = 53      28 1076543: 281076543 mod 97 = 31
//   41 1234098: 411234098 mod 97 = 76     50 1045321: 501045321 mod 97 = 66
// In the order of the index MEEP (by account) Café Nórdico comes first and the
// Asociación Cultural Río Ebro last; Talleres Úbeda (23...) has only a row marked "N".
const std::string CAFE = "08198765453";
const std::string PANADERIA = "41123409876";
const std::string ASOCIACION = "50104532166";

template <typename T>
T* control(QWidget* f, const char* nombre) {
  T* c = f->findChild<T*>(QString::fromLatin1(nombre));
  if (!c) qFatal("sin control %s", nombre);
  return c;
}

QString caja(QWidget* f, int n) { return control<QLineEdit>(f, qPrintable(QStringLiteral("Text%1").arg(n)))->text(); }

QStringList lineas(QWidget* f) {
  QStringList l;
  const auto* lista = control<QListWidget>(f, "ListaTC1");
  for (int i = 0; i < lista->count(); ++i) l << lista->item(i)->text();
  return l;
}

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

// Every TC1 line listed is 70 characters, comes once, and carries the figures of the
// statement on screen: base and quota for the lines of a rate, the amount (and its
// sign in the totals) for the others. A line left by another company fails here.
void compruebaLineasDelBoletin(QWidget* f) {
  struct Cifras {
    CampoFijo BOLETIN::*base;  // nullptr: a line of one amount
    CampoFijo BOLETIN::*importe;
    bool conSigno;
  };
  using B = BOLETIN;
  const std::map<QString, Cifras> cifras = {
      {QStringLiteral("EDTCA01000"), {&B::CCBASE, &B::CCCUOTA, false}},
      {QStringLiteral("EDTCA02000"), {&B::FPBASE, &B::FPCUOTA, false}},
      {QStringLiteral("EDTBA10000"), {&B::HEBASE, &B::HECUOTA, false}},
      {QStringLiteral("EDTBA11000"), {&B::HNBASE, &B::HNCUOTA, false}},
      {QStringLiteral("EDTCA11006"), {&B::OCBASE, &B::OCCUOTA, false}},
      {QStringLiteral("EDTCA22000"), {nullptr, &B::COMPIT, false}},
      {QStringLiteral("EDTCA30000"), {nullptr, &B::ATTOTAL, false}},
      {QStringLiteral("EDTCA31000"), {nullptr, &B::ATCUOTAIT, false}},
      {QStringLiteral("EDTCA32000"), {nullptr, &B::ATCUOTAIMS, false}},
      {QStringLiteral("EDTCA50000"), {&B::OTBASE, &B::OTCUOTA, false}},
      {QStringLiteral("EDTCA57000"), {&B::OT2BASE, &B::OT2CUOTA, false}},
      {QStringLiteral("EDTCA60000"), {nullptr, &B::OTSUMA, false}},
      {QStringLiteral("EDTCA90000"), {nullptr, &B::RECARGO, false}},
      {QStringLiteral("EDTTT10000"), {nullptr, &B::CGLIQUIDO, true}},
      {QStringLiteral("EDTTT20000"), {nullptr, &B::ATLIQUIDO, true}},
      {QStringLiteral("EDTTT30000"), {nullptr, &B::OTLIQUIDO, true}},
      {QStringLiteral("EDTTT91000"), {nullptr, &B::AINGRESAR, true}},
      {QStringLiteral("EDTTT92000"), {nullptr, &B::APERCIBIR, true}}};
  QSet<QString> vistos;
  for (const QString& l : lineas(f)) {
    QVERIFY2(l.size() == 70, qPrintable(l));
    const QString codigo = l.left(10);
    QVERIFY2(!vistos.contains(codigo), qPrintable(l));
    vistos.insert(codigo);
    const auto c = cifras.find(codigo);
    if (c == cifras.end()) continue;  // the refund account's line has no figure on screen
    const Cifras& k = c->second;
    if (k.base) QVERIFY2(centimos(l, 10) == centimosDeCaja(f, k.base), qPrintable(l));
    qint64 importe = centimos(l, 30);
    if (k.conSigno && l.at(41) == QLatin1Char('-')) importe = -importe;
    QVERIFY2(importe == centimosDeCaja(f, k.importe),
             qPrintable(l + QStringLiteral(" / ") + caja(f, cajaDe(k.importe))));
  }
}

bool hayLinea(QWidget* f, const char* codigo) {
  for (const QString& l : lineas(f))
    if (l.startsWith(QLatin1String(codigo))) return true;
  return false;
}

void eligeEmpresa(QWidget* f, std::string_view nombre) {
  control<QRadioButton>(f, "Option3D1_1")->click();
  auto* empresas = control<QComboBox>(f, "ComboEmpresa");
  const int i = empresas->findText(q(nombre), Qt::MatchEndsWith);
  QVERIFY(i >= 0);
  empresas->setCurrentIndex(i);
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
  explicit Formulario(Momento momento = MOMENTO) : programa(o.carpetas, o.dialogos, {}, momento) {
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

QToolButton* elemento(QWidget* ventana, const QString& clave) {
  for (QToolButton* b : ventana->findChildren<QToolButton*>())
    if (b->property("clave").toString() == clave) return b;
  return nullptr;
}

}  // namespace

class PruebaBoletinTC1 : public QObject {
  Q_OBJECT

 private slots:
  void lasEleccionesDelFormulario() {
    Formulario s;
    QCOMPARE(s.f->windowTitle(), QStringLiteral("Boletín de cotización a la Seguridad Social"));
    // 15 November 2026: October of the same year.
    QCOMPARE(s.c("Combo1")->count(), 12);
    QCOMPARE(s.c("Combo1")->itemText(0), QStringLiteral("Enero"));
    QCOMPARE(s.c("Combo1")->itemText(11), QStringLiteral("Diciembre"));
    QCOMPARE(s.c("Combo1")->currentText(), QStringLiteral("Octubre"));
    QCOMPARE(s.c("Combo2")->currentText(), QStringLiteral("2026"));
    const QString recargos[] = {QStringLiteral("&Sin recargo"), QStringLiteral("&5% Recargo"),
                                QStringLiteral("&20% Recargo")};
    for (int i = 0; i < 3; ++i) {
      auto* b = control<QRadioButton>(s.f.get(), qPrintable(QStringLiteral("Option1_%1").arg(i)));
      QCOMPARE(b->text(), recargos[i]);
      QCOMPARE(b->isChecked(), i == 0);
    }
    QCOMPARE(s.c<QRadioButton>("Option3D1_0")->text(), QStringLiteral("&Todas."));
    QVERIFY(s.c<QRadioButton>("Option3D1_0")->isChecked());
    QVERIFY(!s.c("ComboEmpresa")->isEnabled());
    QVERIFY(s.c<QPushButton>("Calcular")->isEnabled());
    QVERIFY(!s.c<QPushButton>("Command3D8")->isEnabled());
    QVERIFY(!s.c<QLabel>("Panel3D3")->isVisible());

    // One company: the companies of the month in name order, each with its account.
    QCOMPARE(s.c<QRadioButton>("Option3D1_1")->text(), QStringLiteral("&Una empresa."));
    s.c<QRadioButton>("Option3D1_1")->click();
    QVERIFY(s.c("ComboEmpresa")->isEnabled());
    const std::pair<std::string, std::string_view> empresas[] = {
        {ASOCIACION, "Asociación Cultural Río Ebro"_cp},
        {CAFE, "Café Nórdico Lars Hansen"_cp},
        {"28107654331", "Construcciones Peñalara, S.L."_cp},
        {PANADERIA, "Panadería Ángel Muñoz Ortega"_cp}};
    QCOMPARE(s.c("ComboEmpresa")->count(), 4);
    for (int i = 0; i < 4; ++i) {
      const QString texto = s.c("ComboEmpresa")->itemText(i);
      QVERIFY2(texto.startsWith(q(empresas[i].first)) && texto.endsWith(q(empresas[i].second)), qPrintable(texto));
    }
    // September has no payroll: no company to calculate.
    s.c("Combo1")->setCurrentIndex(8);
    QCOMPARE(s.c("ComboEmpresa")->count(), 0);
    QVERIFY(!s.c<QPushButton>("Calcular")->isEnabled());
    s.c<QRadioButton>("Option3D1_0")->click();
    QVERIFY(!s.c("ComboEmpresa")->isEnabled() && s.c<QPushButton>("Calcular")->isEnabled());

    // "TC2" shows the worker's sheet under the statement, and hides it again.
    auto* hoja = control<QWidget>(s.f.get(), "HojaTC2");
    QVERIFY(!hoja->isVisibleTo(s.f.get()));
    s.c<QPushButton>("TC2")->click();
    QVERIFY(hoja->isVisibleTo(s.f.get()));
    s.c<QPushButton>("TC2")->click();
    QVERIFY(!hoja->isVisibleTo(s.f.get()));

    // In January, December of the year before.
    Formulario enero(Momento{2027, 1, 10, 9, 0, 0});
    QCOMPARE(enero.c("Combo1")->currentText(), QStringLiteral("Diciembre"));
    QCOMPARE(enero.c("Combo2")->currentText(), QStringLiteral("2026"));
  }

  void unaEmpresaYLuegoTodas() {
    Formulario s;
    // The master stores closed, as the selection of a FAN file leaves them: the run
    // opens them again.
    s.programa.almacenes.CIERRAMAESTROS();
    eligeEmpresa(s.f.get(), "Panadería Ángel Muñoz Ortega"_cp);
    s.calcula();
    QVERIFY(s.o.dialogos.mensajes.empty());
    // The sole trader's statement: its name and account, its three payroll rows, and
    // the period October 2026 as "1026" in both boxes.
    QCOMPARE(caja(s.f.get(), 1), q("Panadería Ángel Muñoz Ortega"_cp));
    QCOMPARE(caja(s.f.get(), 10), q(PANADERIA));
    QCOMPARE(caja(s.f.get(), 11), QStringLiteral("3"));
    QCOMPARE(caja(s.f.get(), 12), QStringLiteral("1026"));
    QCOMPARE(caja(s.f.get(), 13), QStringLiteral("1026"));
    QVERIFY(hayLinea(s.f.get(), "EDTCA01000"));
    QVERIFY(hayLinea(s.f.get(), "EDTTT91000"));
    compruebaLineasDelBoletin(s.f.get());
    QVERIFY(s.c<QPushButton>("Calcular")->isEnabled() && s.c<QPushButton>("Salir")->isEnabled());
    QVERIFY(!s.c<QPushButton>("Command3D8")->isEnabled());
    QVERIFY(!s.c<QLabel>("Panel3D3")->isVisible());

    // "Imprimir" sends the statement on screen to the port, here a file of the work
    // folder: its first line is the sole trader's name after the form's 32 blanks, in the
    // printer's letters.
    s.programa.g.PUERTOIMPRESORA = "boletin.txt";
    s.c<QCheckBox>("Check4")->setChecked(true);
    s.c<QPushButton>("Imprimir")->click();
    const std::string impreso = pruebas::leeBytes(s.o.carpetas.trabajo / "boletin.txt");
    QVERIFY(impreso.starts_with(std::string(32, ' ') + QUITAACENTOS("Panadería Ángel Muñoz Ortega"_cp)));
    QVERIFY(impreso.find("AUTORIZACION TGSS") != std::string::npos);

    // Every company: the closing box, and the last company of the index on screen with
    // its own lines only.
    s.c<QRadioButton>("Option3D1_0")->click();
    bool cancelarActivo = false, calcularActivo = true, salirActivo = true, seCierra = true;
    QString progreso;
    DuranteLaEjecucion durante(s.f.get(), [&] {
      cancelarActivo = s.c<QPushButton>("Command3D8")->isEnabled();
      calcularActivo = s.c<QPushButton>("Calcular")->isEnabled();
      salirActivo = s.c<QPushButton>("Salir")->isEnabled();
      progreso = s.c<QLabel>("Panel3D3")->text();
      seCierra = s.f->close();
    });
    s.calcula();
    QVERIFY(durante.hecho);
    QVERIFY(cancelarActivo && !calcularActivo && !salirActivo && !seCierra);
    QCOMPARE(progreso, q("Dortek está calculando el modelo TC1 para la empresa Café Nórdico Lars Hansen"_cp));
    QCOMPARE(s.o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(s.o.dialogos.mensajes[0].titulo, std::string("Valdor Plus"));
    QCOMPARE(s.o.dialogos.mensajes[0].texto, std::string("DORTEK ha finalizado la impresión de sus modelos TC-1"_cp));
    QVERIFY(s.o.dialogos.mensajes[0].icono == Icono::Informacion);
    QCOMPARE(caja(s.f.get(), 1), q("Asociación Cultural Río Ebro"_cp));
    QCOMPARE(caja(s.f.get(), 10), q(ASOCIACION));
    QCOMPARE(caja(s.f.get(), 11), QStringLiteral("3"));
    QVERIFY(!lineas(s.f.get()).isEmpty());
    compruebaLineasDelBoletin(s.f.get());
    QVERIFY(s.f->isVisible());
    QVERIFY(!s.c<QPushButton>("Command3D8")->isEnabled() && s.c<QPushButton>("Calcular")->isEnabled());
    QVERIFY(!s.c<QLabel>("Panel3D3")->isVisible());
  }

  void cancelarParaEnElCorteDeLaPrimeraEmpresa() {
    Formulario s;
    DuranteLaEjecucion durante(s.f.get(), [&] { s.c<QPushButton>("Command3D8")->click(); });
    s.calcula();
    QVERIFY(durante.hecho);
    // Stopped after Café Nórdico, the first of the index: no closing box.
    QVERIFY(s.o.dialogos.mensajes.empty());
    QCOMPARE(caja(s.f.get(), 1), q("Café Nórdico Lars Hansen"_cp));
    QCOMPARE(caja(s.f.get(), 10), q(CAFE));
    compruebaLineasDelBoletin(s.f.get());
    QVERIFY(!s.c<QLabel>("Panel3D3")->isVisible());
    QVERIFY(!s.c<QPushButton>("Command3D8")->isEnabled());
    QVERIFY(s.c<QPushButton>("Calcular")->isEnabled() && s.c<QPushButton>("Salir")->isEnabled());
  }

  void laVentanaPrincipalLoAbreYEsperaMientrasCalcula() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    formularios::frmMain v(p, o.lanzador, o.entorno);
    v.carga();
    v.show();
    // The new item stands before "Salir", the others in their places.
    QStringList claves;
    for (QToolButton* b : v.findChildren<QToolButton*>())
      if (b->property("clave").isValid()) claves << b->property("clave").toString();
    QCOMPARE(claves, (QStringList{"cotiza", "afilia", "Winsuite", "FICHE", "BOLETIN", "salir"}));
    QCOMPARE(elemento(&v, QStringLiteral("BOLETIN"))->text(), QStringLiteral("Boletín TC1"));
    auto* menu = v.findChild<QAction*>(QStringLiteral("mnuFileBoletin"));
    QVERIFY(menu);
    QCOMPARE(menu->text(), QStringLiteral("&Boletín de cotización..."));

    auto* mdi = v.findChild<QMdiArea*>(QStringLiteral("mdi"));
    elemento(&v, QStringLiteral("BOLETIN"))->click();
    TC1VAL* f = v.boletin();
    QVERIFY(f && f->isVisible());
    QVERIFY(qobject_cast<QMdiSubWindow*>(f->parentWidget()));
    QCOMPARE(mdi->subWindowList().size(), 2);
    // The menu raises the same form.
    menu->trigger();
    QCOMPARE(v.boletin(), f);
    QCOMPARE(mdi->subWindowList().size(), 2);
    QCOMPARE(mdi->activeSubWindow(), f->parentWidget());

    // While the run goes, the window's other commands wait and the window does not
    // close: the close stops the run at its company break.
    bool listaActiva = true, asistenteActivo = true, cerrada = true;
    DuranteLaEjecucion durante(f, [&] {
      listaActiva = elemento(&v, QStringLiteral("cotiza"))->isEnabled();
      asistenteActivo = v.asistente()->isEnabled();
      cerrada = v.close();
    });
    control<QPushButton>(f, "Calcular")->click();
    QVERIFY(durante.hecho);
    QVERIFY(!listaActiva && !asistenteActivo && !cerrada);
    QVERIFY(v.isVisible());
    QVERIFY(std::filesystem::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
    QVERIFY(o.dialogos.mensajes.empty());
    QCOMPARE(caja(f, 10), q(CAFE));
    QVERIFY(elemento(&v, QStringLiteral("cotiza"))->isEnabled() && v.asistente()->isEnabled());

    // The wizard's commands bring the wizard back in front of it.
    elemento(&v, QStringLiteral("cotiza"))->click();
    QCOMPARE(mdi->activeSubWindow(), v.asistente()->parentWidget());
    elemento(&v, QStringLiteral("BOLETIN"))->click();
    QCOMPARE(mdi->activeSubWindow(), f->parentWidget());

    // "Salir" unloads it; the item loads it anew.
    control<QPushButton>(f, "Salir")->click();
    QVERIFY(!v.boletin());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(mdi->subWindowList().size(), 1);
    elemento(&v, QStringLiteral("BOLETIN"))->click();
    QVERIFY(v.boletin());
    QCOMPARE(mdi->subWindowList().size(), 2);
    v.close();
    QVERIFY(!std::filesystem::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
  }
};

int ejecutaPruebaBoletinTC1(int argc, char** argv) {
  PruebaBoletinTC1 prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_boletin_tc1.moc"
