// The statement on screen: each box in its field and in its place on the form, the
// worker's sheet from the working row, and the run's window left showing the last
// worker of the sample office.
#include <QLineEdit>
#include <QtTest>
#include <set>

#include "engine/cotval.h"
#include "engine/forms/cotval.h"
#include "fan/seleccion.h"
#include "statement/forms/boletin.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::VistaBoletin;

namespace {

QString campo(const QWidget& vista, const QString& nombre) {
  const auto* c = vista.findChild<QLineEdit*>(nombre);
  return c ? c->text() : QStringLiteral("<sin campo %1>").arg(nombre);
}
QString caja(const QWidget& vista, int n) { return campo(vista, QStringLiteral("Text%1").arg(n)); }

// Where a box's field stands in the view.
QPoint sitio(const QWidget& vista, int n) {
  const auto* c = vista.findChild<QLineEdit*>(QStringLiteral("Text%1").arg(n));
  return c ? c->mapTo(&vista, QPoint(0, 0)) : QPoint(-1, -1);
}

// A box's text as a field of `ancho` characters leaves it: blanks on the right.
std::string relleno(std::string_view texto, std::size_t ancho) {
  std::string t(texto);
  t.resize(std::max(ancho, t.size()), ' ');
  return t;
}

// A calculation on no stores: the view reads only its boxes and its working table.
struct Calculo {
  CarpetaTemporal carpeta;
  DialogosGrabador dialogos;
  Programa programa{Carpetas{carpeta / "programa", carpeta / "trabajo"}, dialogos, {}, MOMENTO};
  valdor::COTVAL c{programa};
};

}  // namespace

class PruebaBoletin : public QObject {
  Q_OBJECT

 private slots:
  void cadaCajaEnSuCampo() {
    VistaBoletin v;
    // Every box the statement record shows has its own read-only field, and no other
    // box has one: there is no Text56, nor anything between 59 and 77.
    std::set<int> cajas;
    for (const auto& d : BOLETIN::campos())
      if (d.caja > 0) cajas.insert(d.caja);
    QCOMPARE(cajas.size(), std::size_t{60});
    int campos = 0;
    for (const QLineEdit* c : v.findChildren<QLineEdit*>()) {
      QVERIFY2(c->isReadOnly(), qPrintable(c->objectName()));
      if (c->objectName().startsWith(QStringLiteral("Text"))) {
        ++campos;
        QVERIFY2(cajas.count(c->objectName().mid(4).toInt()) == 1, qPrintable(c->objectName()));
      }
    }
    QCOMPARE(campos, 60);

    // Each box with a text of its own, filled on the right as its field leaves it.
    CajasBoletin cb;
    for (int n : cajas) cb[static_cast<std::size_t>(n)] = relleno(std::to_string(n) + ".01", 17);
    cb[1] = relleno("Construcciones Peñalara, S.L."_cp, 65);
    cb[56] = "NO SE VE";
    v.muestra(cb, HojaTC2{});
    for (int n : cajas)
      if (n != 1) QCOMPARE(caja(v, n), QString::number(n) + QStringLiteral(".01"));
    QCOMPARE(caja(v, 1), QStringLiteral("Construcciones Peñalara, S.L."));
    QCOMPARE(caja(v, 58), QStringLiteral("58.01"));
    QCOMPARE(caja(v, 80), QStringLiteral("80.01"));
    for (const QLineEdit* c : v.findChildren<QLineEdit*>()) QVERIFY(c->text() != QStringLiteral("NO SE VE"));

    // Amounts stand on the right of their fields, names on the left.
    const auto alineacion = [&](int n) {
      return v.findChild<QLineEdit*>(QStringLiteral("Text%1").arg(n))->alignment() & Qt::AlignHorizontal_Mask;
    };
    for (int n : {14, 16, 41, 45, 53, 58, 78}) QCOMPARE(alineacion(n), Qt::Alignment(Qt::AlignRight));
    for (int n : {1, 2, 3, 10}) QCOMPARE(alineacion(n), Qt::Alignment(Qt::AlignLeft));
  }

  void lasCajasEnSuSitioDelBoletin() {
    VistaBoletin v;
    v.resize(940, 640);
    v.show();
    QVERIFY(QTest::qWaitForWindowExposed(&v));
    // The contingencies grid: base, rate and quota of a concept on one row, left to
    // right; each column of the eight concepts one under the other.
    for (int i = 0; i < 8; ++i) {
      const int base = 14 + 3 * i;
      QCOMPARE(sitio(v, base + 1).y(), sitio(v, base).y());
      QCOMPARE(sitio(v, base + 2).y(), sitio(v, base).y());
      QVERIFY(sitio(v, base).x() < sitio(v, base + 1).x() && sitio(v, base + 1).x() < sitio(v, base + 2).x());
      if (i > 0)
        for (int k = 0; k < 3; ++k) {
          QCOMPARE(sitio(v, base + k).x(), sitio(v, base - 3 + k).x());
          QVERIFY(sitio(v, base + k).y() > sitio(v, base - 3 + k).y());
        }
    }
    // The second row of "OTRAS COTIZACIONES" runs the other way: base 80, rate 79, quota
    // 78, under base 48, rate 49, quota 50.
    const std::pair<int, int> columnas[] = {{48, 80}, {49, 79}, {50, 78}};
    for (const auto& [primera, segunda] : columnas) {
      QCOMPARE(sitio(v, segunda).x(), sitio(v, primera).x());
      QVERIFY(sitio(v, segunda).y() > sitio(v, primera).y());
      QCOMPARE(sitio(v, segunda).y(), sitio(v, 80).y());
    }
    // The accidents block: base, I.T. quota, I.M.S. quota and their total on one row.
    for (int n = 43; n <= 45; ++n) {
      QCOMPARE(sitio(v, n).y(), sitio(v, 42).y());
      QVERIFY(sitio(v, n).x() > sitio(v, n - 1).x());
    }
    // The net amounts under the quotas they come from.
    QCOMPARE(sitio(v, 41).x(), sitio(v, 37).x());
    QCOMPARE(sitio(v, 47).x(), sitio(v, 45).x());
    QCOMPARE(sitio(v, 54).x(), sitio(v, 50).x());
  }

  void laHojaDelTrabajador() {
    Calculo k;
    VistaBoletin v;
    // Twenty days of sickness with their base under epigraph 126.
    TablaTrabajo& g = k.c.GRID1;
    g.escribe(1, 1, "281234567840");
    g.escribe(1, 2, "02345671X");
    g.escribe(1, 3, "MUÑOZ ÁLVAREZ, FRANCISCO"_cp);
    g.escribe(1, 4, "30");
    g.escribe(1, 5, "8");
    g.escribe(1, 6, "009");
    g.escribe(1, 8, "0");
    g.escribe(1, 10, "016");
    g.escribe(1, 20, "1400.00");
    g.escribe(1, 34, "20");
    g.escribe(1, 35, "0");
    k.c.cajas[58] = relleno("1234.56", 17);
    v.muestra(k.c);
    const std::pair<const char*, QString> hoja[] = {
        {"Apellidos", QStringLiteral("MUÑOZ ÁLVAREZ")}, {"Nombre", QStringLiteral("FRANCISCO")},
        {"Afiliacion", QStringLiteral("281234567840")},  {"Nif", QStringLiteral("02345671X")},
        {"DiasAlta", QStringLiteral("30")},             {"GrupoCotizacion", QStringLiteral("8")},
        {"ClaseContrato", QStringLiteral("009")},       {"Horas", QStringLiteral("0")},
        {"Epigrafe", QStringLiteral("016")},            {"DiasIT", QStringLiteral("20")},
        {"DiasMaternidad", QString()},                  {"EpigrafeIT", QStringLiteral("126")},
        {"BaseAT", QStringLiteral("1400.00")},          {"FechaBonificacion", QStringLiteral("__/__/____")}};
    for (const auto& [nombre, esperado] : hoja) QCOMPARE(campo(v, QString::fromLatin1(nombre)), esperado);
    QCOMPARE(caja(v, 58), QStringLiteral("1234.56"));

    // The next worker replaces every piece: sixteen days, all of maternity, a name with
    // no comma, a bonus date, no box 58.
    g.LIMPIAGRID();
    g.escribe(1, 3, "HANSEN");
    g.escribe(1, 30, "01/03/2026");
    g.escribe(1, 34, "16");
    g.escribe(1, 35, "16");
    k.c.cajas[58].clear();
    v.muestra(k.c);
    QCOMPARE(campo(v, QStringLiteral("Apellidos")), QStringLiteral("HANSEN"));
    QCOMPARE(campo(v, QStringLiteral("Nombre")), QString());
    QCOMPARE(campo(v, QStringLiteral("DiasIT")), QString());
    QCOMPARE(campo(v, QStringLiteral("DiasMaternidad")), QStringLiteral("16"));
    QCOMPARE(campo(v, QStringLiteral("EpigrafeIT")), QString());
    QCOMPARE(campo(v, QStringLiteral("BaseAT")), QString());
    QCOMPARE(campo(v, QStringLiteral("Afiliacion")), QString());
    QCOMPARE(campo(v, QStringLiteral("FechaBonificacion")), QStringLiteral("01/03/2026"));
    QCOMPARE(caja(v, 58), QString());
  }

  void laVentanaDelCalculoTerminaConElUltimoTrabajador() {
    // Every company of the sample office marked: the last payroll row of the run is the
    // third worker of the Asociación Cultural Río Ebro, 00003 CASAS MARÍN, JORGE.
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.arranca();
    PaginaIntercambio pagina;
    pagina.marcaCotizacion();
    valdor::COTIZACION sel;
    cargaCOTIZACION(p, pagina, sel);
    PRESIONBOTON(p, pagina, sel);
    marcaTodas(sel, true);

    formularios::COTVAL ventana(p, sel, nullptr);
    QCOMPARE(ventana.exec(), int(QDialog::Accepted));
    const auto* vista = ventana.findChild<VistaBoletin*>(QStringLiteral("VistaBoletin"));
    QVERIFY(vista);
    // Affiliation 50 32109876 with its check 5032109876 mod 97 = 39; DNI 25476189 with
    // the letter of 25476189 mod 23 = 9, D.
    const std::pair<const char*, QString> hoja[] = {
        {"Apellidos", QStringLiteral("CASAS MARÍN")}, {"Nombre", QStringLiteral("JORGE")},
        {"Afiliacion", QStringLiteral("503210987639")}, {"Nif", QStringLiteral("25476189D")},
        {"DiasAlta", QStringLiteral("30")},           {"ClaseContrato", QStringLiteral("087")},
        {"Epigrafe", QStringLiteral("093")},          {"DiasIT", QString()}};
    for (const auto& [nombre, esperado] : hoja) QCOMPARE(campo(*vista, QString::fromLatin1(nombre)), esperado);
    descargaCOTIZACION(p, sel);
  }
};

int ejecutaPruebaBoletin(int argc, char** argv) {
  PruebaBoletin prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_boletin.moc"
