// The statement on screen: each box in its field and in its place on the form, each piece
// of the worker's sheet in its field, and the run's window left showing the last worker of
// the sample office.
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

// Boxes on one line, each after the one before: left to right on a row, or top to
// bottom in a column.
void alineadas(const QWidget& vista, const std::vector<int>& cajas, bool enFila) {
  for (std::size_t i = 1; i < cajas.size(); ++i) {
    const QPoint a = sitio(vista, cajas[i - 1]), b = sitio(vista, cajas[i]);
    QVERIFY2(enFila ? a.y() == b.y() && a.x() < b.x() : a.x() == b.x() && a.y() < b.y(),
             qPrintable(QStringLiteral("Text%1, Text%2").arg(cajas[i - 1]).arg(cajas[i])));
  }
}

}  // namespace

class PruebaBoletin : public QObject {
  Q_OBJECT

 private slots:
  void cadaCajaYCadaPiezaDeLaHojaEnSuCampo() {
    VistaBoletin v;
    // Every box the statement record shows has its own read-only field, and no other
    // box has one: there is no Text56, nor anything between 59 and 77.
    std::set<int> cajas, campos;
    for (const auto& d : BOLETIN::campos())
      if (d.caja > 0) cajas.insert(d.caja);
    for (const QLineEdit* c : v.findChildren<QLineEdit*>()) {
      QVERIFY2(c->isReadOnly(), qPrintable(c->objectName()));
      if (c->objectName().startsWith(QStringLiteral("Text"))) campos.insert(c->objectName().mid(4).toInt());
    }
    QCOMPARE(campos, cajas);

    // Each box and each piece of the sheet with a text of its own; a box comes filled on
    // the right as its field leaves it.
    CajasBoletin cb;
    for (int n : cajas) cb[static_cast<std::size_t>(n)] = std::to_string(n) + ".01" + std::string(12, ' ');
    cb[56] = "NO SE VE";
    // Each piece of the sheet, in its order, carries the name of the field that shows it.
    const char* piezas[] = {"Apellidos", "Nombre", "Afiliacion", "Nif", "DiasAlta", "GrupoCotizacion", "ClaseContrato",
                            "Horas", "Epigrafe", "DiasIT", "DiasMaternidad", "EpigrafeIT", "BaseAT", "FechaBonificacion"};
    v.muestra(cb, HojaTC2{piezas[0], piezas[1], piezas[2], piezas[3], piezas[4], piezas[5], piezas[6], piezas[7],
                          piezas[8], piezas[9], piezas[10], piezas[11], piezas[12], piezas[13]});
    for (int n : cajas) QCOMPARE(caja(v, n), QString::number(n) + QStringLiteral(".01"));
    for (const char* pieza : piezas) QCOMPARE(campo(v, QString::fromLatin1(pieza)), QString::fromLatin1(pieza));
    for (const QLineEdit* c : v.findChildren<QLineEdit*>()) QVERIFY(c->text() != QStringLiteral("NO SE VE"));

    // The next worker replaces every piece, the empty ones too.
    v.muestra(CajasBoletin{}, HojaTC2{});
    for (const QLineEdit* c : v.findChildren<QLineEdit*>()) QVERIFY2(c->text().isEmpty(), qPrintable(c->objectName()));
  }

  void lasCajasEnSuSitioDelBoletin() {
    VistaBoletin v;
    v.resize(940, 640);
    v.show();
    QVERIFY(QTest::qWaitForWindowExposed(&v));
    // The contingencies grid: base, rate and quota of a concept on one row; each column
    // of the eight concepts one under the other.
    for (int i = 0; i < 8; ++i) alineadas(v, {14 + 3 * i, 15 + 3 * i, 16 + 3 * i}, true);
    for (int k = 0; k < 3; ++k) alineadas(v, {14 + k, 17 + k, 20 + k, 23 + k, 26 + k, 29 + k, 32 + k, 35 + k}, false);
    // The second row of "OTRAS COTIZACIONES" runs the other way: base 80, rate 79, quota
    // 78, under base 48, rate 49, quota 50.
    alineadas(v, {80, 79, 78}, true);
    for (int k = 0; k < 3; ++k) alineadas(v, {48 + k, 80 - k}, false);
    // The accidents block: base, I.T. quota, I.M.S. quota and their total on one row.
    alineadas(v, {42, 43, 44, 45}, true);
    // The net amounts under the quotas they come from.
    for (const auto& [cuota, liquido] : {std::pair{37, 41}, {45, 47}, {50, 54}}) alineadas(v, {cuota, liquido}, false);
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
    // Affiliation 50 32109876 with its check 5032109876 mod 97 = 39.
    QCOMPARE(campo(*vista, QStringLiteral("Apellidos")), QStringLiteral("CASAS MARÍN"));
    QCOMPARE(campo(*vista, QStringLiteral("Nombre")), QStringLiteral("JORGE"));
    QCOMPARE(campo(*vista, QStringLiteral("Afiliacion")), QStringLiteral("503210987639"));
    descargaCOTIZACION(p, sel);
  }
};

int ejecutaPruebaBoletin(int argc, char** argv) { return ejecuta<PruebaBoletin>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_boletin.moc"
