// The file selector and the exchange file editor over small files written by hand in a
// temporary Wine drive: the load with the rows the size suggests, the edit of a line and
// what it refuses, the search, the save without blank lines (and its warning), the
// question before unsaved edits are dropped, the two character sets of a line, the print
// order, and the road from the selector's tree and from the wizard to the editor.
#include "browser/forms/editor.h"
#include "browser/forms/selector.h"
#include "shell/ajustes.h"
#include "app/formularios.h"
#include "stores/literales.h"
#include "tests/fan_revisado.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::EDITOR;

namespace {

namespace fs = std::filesystem;

const std::string ETI = "ETI" + std::string(67, ' ');
const std::string EMP = "EMP" + std::string(67, '0');
const std::string RZS = "RZS" + std::string(67, 'R');
const std::string TRA = "TRA" + std::string(67, 'X');
// The trailer's counts are its last 13 figures before the blanks: 5 of companies and 8 of
// lines.
std::string cierre(std::string_view cuentas) { return "ETF" + std::string(51, ' ') + std::string(cuentas) + "   "; }

std::string fichero(const std::vector<std::string>& lineas) {
  std::string bytes;
  for (const std::string& l : lineas) bytes += l + "\r\n";
  return bytes;
}

// A program with its Wine drive in a temporary folder, and the editor on one of the FAN
// folder's files.
struct Banco {
  Banco() {
    fs::create_directories(fan);
    fs::create_directories(carpetas.trabajo);
    p.entornoWine = EntornoWine{carpeta / "wine"};
  }

  // The editor on F2211260.FAN, written with `lineas` unless none are given.
  void abre(const std::vector<std::string>& lineas = {}) {
    if (!lineas.empty()) escribeBytes(fan / "F2211260.FAN", fichero(lineas));
    p.g.FICHEROSALIDA = p.g.FICHEROEDITADO = "C:\\WINSUITE\\VIPTC2\\FAN\\F2211260.FAN";
    f = std::make_unique<EDITOR>(p, lanzador);
    f->show();
    QCoreApplication::processEvents();
  }
  std::string guardado() const { return leeBytes(fan / "F2211260.FAN"); }
  QTableWidget* rejilla() const { return f->findChild<QTableWidget*>(QStringLiteral("REJILLA")); }
  QString celda(int fila, int columna) const {
    const QTableWidgetItem* c = rejilla()->item(fila, columna);
    return c ? c->text() : QString();
  }
  QStringList fila(int f) const { return {celda(f, 0), celda(f, 1), celda(f, 2), celda(f, 3)}; }
  QString etiqueta(const char* nombre) const { return f->findChild<QLabel*>(QString::fromLatin1(nombre))->text(); }
  void pulsa(const char* clave) { elemento(f.get(), QString::fromLatin1(clave))->click(); }

  // The editor of a line as the user opens it; only one is open at a time.
  QLineEdit* abreEdicion(int fila) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    rejilla()->editItem(rejilla()->item(fila, EDITOR::LINEA));
    return rejilla()->findChild<QLineEdit*>(QStringLiteral("edicion"));
  }
  void termina(QLineEdit* edicion) {
    QTest::keyClick(edicion, Qt::Key_Return);
    QCoreApplication::processEvents();
  }
  void edita(int fila, const QString& texto) {
    QLineEdit* e = abreEdicion(fila);
    QVERIFY(e);
    e->setText(texto);
    termina(e);
  }

  CarpetaTemporal carpeta;
  Carpetas carpetas{carpeta / "programa", carpeta / "trabajo"};
  fs::path fan = carpeta / "wine/drive_c/WINSUITE/VIPTC2/FAN";
  DialogosGrabador dialogos;
  LanzadorGrabador lanzador;
  Programa p{carpetas, dialogos, {}, MOMENTO};
  std::unique_ptr<EDITOR> f;
};

// The editor that opens while this lives: its grid's rows and second line.
struct EditorAbierto : AlAbrirModal {
  explicit EditorAbierto(QWidget* salvo = nullptr)
      : AlAbrirModal(
            [this](QWidget* m) {
              const auto* r = m->findChild<QTableWidget*>(QStringLiteral("REJILLA"));
              filas = r->rowCount();
              if (r->item(1, EDITOR::LINEA)) segunda = r->item(1, EDITOR::LINEA)->text();
            },
            salvo) {}
  int filas = -1;
  QString segunda;
};

}  // namespace

class PruebaEditorFicheros : public QObject {
  Q_OBJECT

 private slots:
  void cargaCadaLineaTalCualConSuLongitudYSuRevision() {
    Banco b;
    // 72 + 73 + 72 = 217 bytes: 3 rows, and one more, empty, for an affiliation file.
    b.p.g.EDITAAFI = 1;
    b.abre({ETI, TRA + "Y", EMP});
    QCOMPARE(b.rejilla()->rowCount(), 4);
    QCOMPARE(b.fila(0), (QStringList{"1", q(ETI), "70", ""}));
    QCOMPARE(b.fila(1), (QStringList{"2", q(TRA + "Y"), "71", "longitud 71"}));
    QCOMPARE(b.fila(3), (QStringList{"", "", "", ""}));
    // Only the marked row is tinted; only the line is edited.
    QCOMPARE(b.rejilla()->item(0, EDITOR::REVISION)->background().style(), Qt::NoBrush);
    QVERIFY(b.rejilla()->item(1, EDITOR::REVISION)->background().style() != Qt::NoBrush);
    for (int c = 0; c < EDITOR::COLUMNAS; ++c)
      QCOMPARE(bool(b.rejilla()->item(1, c)->flags() & Qt::ItemIsEditable), c == EDITOR::LINEA);
    QCOMPARE(b.etiqueta("cierre"), q("No hay línea de cierre ETF con sus cuentas de empresas y de líneas."_cp));
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("1 línea con observaciones (columna Revisión)."));

    // "Cancelar" closes, and the affiliation flag goes with the editor.
    b.pulsa("can");
    QVERIFY(!b.f->isVisible());
    QCOMPARE(b.f->result(), int(QDialog::Rejected));
    QCOMPARE(b.p.g.EDITAAFI, 0.0);

    // The wizard's editor opens on the file just written, named by FICHEROSALIDA.
    b.p.g.EDITAAFI = 1;
    PaginaIntercambio pagina;
    formularios::FormulariosQt formularios(b.p, pagina, nullptr);
    EditorAbierto editor;
    formularios.EDITOR();
    QCOMPARE(editor.filas, 4);
    QCOMPARE(editor.segunda, q(TRA + "Y"));
    QCOMPARE(b.p.g.EDITAAFI, 0.0);
    QVERIFY(b.dialogos.mensajes.empty());
  }

  // A line end that is not CR LF is marked in the row until a save ends every line with CR LF.
  void losFinesQueNoSonCRLFSeMarcanHastaQueSeGuarda() {
    Banco b;
    escribeBytes(b.fan / "F2211260.FAN", ETI + "\n" + EMP + "\r\n" + TRA);
    b.abre();
    QCOMPARE(b.fila(0), (QStringList{"1", q(ETI), "70", "fin LF"}));
    QCOMPARE(b.fila(1)[3], QString());
    QCOMPARE(b.fila(2), (QStringList{"3", q(TRA), "70", q("sin fin de línea"_cp)}));
    QCOMPARE(b.etiqueta("observaciones"), q("2 líneas con observaciones (columna Revisión)."_cp));
    b.dialogos.respuestas = {true};  // saved without a trailer, on the user's word
    b.pulsa("guar");
    QCOMPARE(b.guardado(), fichero({ETI, EMP, TRA}));
    QCOMPARE(b.fila(0)[3], QString());
    QCOMPARE(b.fila(2)[3], QString());
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("Ninguna línea con observaciones."));
  }

  void laEdicionCuentaDeNuevoYRehusaLoQueNoCabeEnElFichero() {
    Banco b;
    // ETI, one company (EMP, RZS), one worker and the trailer: 1 company, 5 lines.
    b.abre({ETI, EMP, RZS, TRA, cierre("0000100000005")});
    QCOMPARE(b.etiqueta("cierre"), QStringLiteral("Cierre ETF: 1 empresa, 5 líneas: cuadran con el fichero."));
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("Ninguna línea con observaciones."));

    // Typing stops at 70 characters; seventy W are no segment, and the line is marked.
    QLineEdit* e = b.abreEdicion(3);
    QVERIFY(e);
    e->selectAll();
    QTest::keyClicks(e, QString(75, QLatin1Char('W')));
    QCOMPARE(e->text().size(), 70);
    b.termina(e);
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("1 línea con observaciones (columna Revisión)."));

    // A Greek omega (U+03C9, the 4th character) has no byte in the file: the line stays.
    b.edita(3, QStringLiteral("TRA\u03C9"));
    QCOMPARE(b.celda(3, 1), QString(70, QLatin1Char('W')));
    QTRY_COMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(b.dialogos.mensajes[0].icono, Icono::Exclamacion);
    QVERIFY(b.dialogos.mensajes[0].texto.find("U+03C9") != std::string::npos);
    QVERIFY(b.dialogos.mensajes[0].texto.find("número 4 "_cp) != std::string::npos);
    // The euro sign has one: 0x80.
    b.edita(1, QStringLiteral("EMP\u20AC") + QString(66, QLatin1Char('0')));

    // A line emptied: no length, and the trailer now counts one line too many.
    b.edita(2, QString());
    QCOMPARE(b.fila(2), (QStringList{"3", "", "", ""}));
    QCOMPARE(b.etiqueta("cierre"),
             QStringLiteral("Cierre ETF: 1 empresa, 5 líneas. No cuadran: el fichero tiene 4 líneas."));

    // The save drops the emptied line, and takes the line still being typed; the rows
    // keep their numbers on the screen, and success says nothing.
    QLineEdit* abierta = b.abreEdicion(0);
    QVERIFY(abierta);
    abierta->setText(q("ETI a medio escribir"_cp));
    // Lines that fail the check are listed before the save, which waits for the user's word.
    b.pulsa("guar");
    QCOMPARE(b.dialogos.preguntas.size(), std::size_t{1});
    QVERIFY(b.dialogos.preguntas[0].texto.find("Línea 1: tiene 20 caracteres y debe tener 70.\nLínea 3: \"WWW\" no es "
                                               "un segmento de un fichero FAN.\nEl cierre ETF cuenta 5 líneas y el "
                                               "fichero tiene 4."_cp) != std::string::npos);
    QVERIFY(b.f->isWindowModified());
    b.dialogos.respuestas = {true, true};
    b.pulsa("guar");
    QVERIFY(!b.f->isWindowModified());
    QCOMPARE(b.guardado(), fichero({"ETI a medio escribir", "EMP\x80" + std::string(66, '0'), std::string(70, 'W'),
                                    cierre("0000100000005")}));
    QCOMPARE(b.fila(0), (QStringList{"1", "ETI a medio escribir", "20", "longitud 20"}));
    QCOMPARE(b.rejilla()->rowCount(), 5);  // 360 bytes
    QCOMPARE(b.celda(3, 0), QStringLiteral("4"));
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QVERIFY(b.f->isVisible());

    // A folder that went away: the failure is told, critically.
    fs::remove_all(b.fan);
    b.pulsa("guar");
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{2});
    QCOMPARE(b.dialogos.mensajes[1].titulo, std::string("VALDOR+"));
    QCOMPARE(b.dialogos.mensajes[1].icono, Icono::Critico);
    QVERIFY(b.dialogos.mensajes[1].texto.starts_with("No se puede guardar el fichero"));
  }

  // The field checks: the field in error drawn in its colour inside its line, with its
  // rule under the pointer; the panel's list; a click that opens the line with the field
  // selected; the findings that follow an edit; the one question before a save. With
  // VALDOR_CAPTURA set, the editor's picture goes to that file (tools/captura-editor.sh).
  void losHallazgosDeCampoSeMarcanSeListanYLlevanAlCampo() {
    Banco b;
    std::vector<std::string> lineas = ficheroCorrecto();
    lineas[3].replace(13, 2, "41");  // the worker's check digits, which are 40
    lineas[11].replace(40, 1, "1");  // a company total one cent over its worker's line
    b.abre(lineas);
    auto* panel = b.f->findChild<QTableWidget*>(QStringLiteral("HALLAZGOS"));
    auto filaPanel = [&](int f) {
      QStringList celdas;
      for (int c = 0; c < EDITOR::H_COLUMNAS; ++c) celdas << panel->item(f, c)->text();
      return celdas;
    };
    const QString regla = q("el dígito de control del número de afiliación es 40 (módulo 97)"_cp);
    QCOMPARE(panel->rowCount(), 2);
    QCOMPARE(filaPanel(0), (QStringList{"4", "4-15", q("número de afiliación"_cp), "\"281234567841\"", regla}));
    QCOMPARE(filaPanel(1), (QStringList{"12", "31-41", "total", "\"00000000501\"",
                                        "la suma de las líneas de sus trabajadores es 00000000500"}));
    QCOMPARE(b.etiqueta("campos"), QStringLiteral("2 hallazgos en los campos (lista de abajo)."));

    // Only the field's 12 characters of the 4th line are marked, with their rule.
    const QString consejo = q("posiciones 4-15 (número de afiliación): "_cp) + regla;
    const QVariantList marcas = b.rejilla()->item(3, EDITOR::LINEA)->data(EDITOR::MARCAS).toList();
    QCOMPARE(marcas.size(), 1);
    QCOMPARE(marcas[0].toMap().value("desde").toInt(), 3);
    QCOMPARE(marcas[0].toMap().value("ancho").toInt(), 12);
    QCOMPARE(b.rejilla()->item(3, EDITOR::LINEA)->toolTip(), consejo);
    QVERIFY(b.rejilla()->item(2, EDITOR::LINEA)->data(EDITOR::MARCAS).isNull());
    // On the screen: the mark's colour spans those 12 characters, 3 characters in.
    const QRect celda = b.rejilla()->visualItemRect(b.rejilla()->item(3, EDITOR::LINEA));
    const QImage imagen = b.rejilla()->viewport()->grab().toImage();
    const qreal escala = imagen.devicePixelRatio();
    int primera = -1, ultima = -1;
    for (int x = celda.left(); x <= celda.right(); ++x)
      if (imagen.pixelColor(QPoint(x, celda.center().y()) * escala) == QColor(0xc62828)) {
        if (primera < 0) primera = x;
        ultima = x;
      }
    const QFontMetricsF medida(b.rejilla()->font());
    const qreal tres = medida.horizontalAdvance(QString(3, QLatin1Char('0')));
    const qreal doce = medida.horizontalAdvance(QString(12, QLatin1Char('0')));
    QVERIFY(primera - celda.left() >= tres && primera - celda.left() <= tres + 8);
    QVERIFY(std::abs(ultima - primera + 1 - doce) <= 1.5);
    // The pointer over the field shows its rule.
    const QPoint sobreCampo(primera + static_cast<int>(doce / 2), celda.center().y());
    QHelpEvent ayuda(QEvent::ToolTip, sobreCampo, b.rejilla()->viewport()->mapToGlobal(sobreCampo));
    QApplication::sendEvent(b.rejilla()->viewport(), &ayuda);
    QTRY_COMPARE(QToolTip::text(), consejo);

    // A click on the second finding opens its line with the total selected.
    QTest::mouseClick(panel->viewport(), Qt::LeftButton, {}, panel->visualItemRect(panel->item(1, 2)).center());
    QCOMPARE(b.rejilla()->currentRow(), 11);
    auto* edicion = b.rejilla()->findChild<QLineEdit*>(QStringLiteral("edicion"));
    QVERIFY(edicion);
    QCOMPARE(edicion->selectionStart(), 30);
    QCOMPARE(edicion->selectedText(), QStringLiteral("00000000501"));
    if (const QByteArray captura = qgetenv("VALDOR_CAPTURA"); !captura.isEmpty()) {
      b.f->resize(1120, 620);
      QTest::qWait(300);
      QVERIFY(b.f->grab().save(QString::fromLocal8Bit(captura), "PNG"));
    }
    QTest::keyClick(edicion, Qt::Key_Escape);

    // The findings follow the edit that puts the check digits right.
    std::string tra = lineas[3];
    tra.replace(13, 2, "40");
    b.edita(3, q(tra));
    QCOMPARE(panel->rowCount(), 1);
    QCOMPARE(panel->item(0, EDITOR::H_LINEA)->text(), QStringLiteral("12"));
    QVERIFY(b.rejilla()->item(3, EDITOR::LINEA)->data(EDITOR::MARCAS).isNull());
    QCOMPARE(b.rejilla()->item(3, EDITOR::LINEA)->toolTip(), QString());
    QCOMPARE(b.etiqueta("campos"), QStringLiteral("1 hallazgo en los campos (lista de abajo)."));

    // The save asks first, listing the finding left; "No" keeps the file as it was.
    b.pulsa("guar");
    QCOMPARE(b.dialogos.preguntas.size(), std::size_t{1});
    QCOMPARE(b.dialogos.preguntas[0].texto,
             std::string("El fichero no pasa la revisión:\nLínea 12, posiciones 31-41 (total): \"00000000501\" — la "
                         "suma de las líneas de sus trabajadores es 00000000500\n\n¿Desea guardarlo así de todos modos?"_cp));
    QCOMPARE(b.guardado(), fichero(lineas));
    b.dialogos.respuestas = {true};
    b.pulsa("guar");
    lineas[3] = tra;
    QCOMPARE(b.guardado(), fichero(lineas));
  }

  // While the wizard's forms live, a file just written is checked before it takes its
  // name: its findings go to the question that offers the editor, and the file is kept.
  void elFicheroEscritoDesdeElEscritorioSeRevisaYSusHallazgosVanALaPregunta() {
    Banco b;
    std::vector<std::string> lineas = ficheroCorrecto();
    lineas[3].replace(13, 2, "41");
    escribeBytes(b.fan / "escrito.tmp", fichero(lineas));
    PaginaIntercambio pagina;
    {
      formularios::FormulariosQt formularios(b.p, pagina, nullptr);
      b.p.revisaEscrito(b.fan / "escrito.tmp", b.fan / "F2211260.FAN");
    }
    QVERIFY(!b.p.revisaEscrito);
    const std::string pregunta = conHallazgos(b.p, preguntaEditarFan());
    QVERIFY(pregunta.starts_with(std::string("El fichero \"")
                                     .append((b.fan / "F2211260.FAN").string())
                                     .append("\" tiene 1 hallazgo en sus campos:\nlínea 4, posiciones 4-15"_cp)));
    QVERIFY(pregunta.ends_with(preguntaEditarFan()));
    QVERIFY(b.p.hallazgosEscritos.empty());
  }

  void buscarSubeLaPrimeraLineaConElTextoArriba() {
    Banco b;
    // Sixty lines, workers at rows 10 and 20: enough to scroll.
    std::vector<std::string> lineas(60, "AYN" + std::string(67, ' '));
    lineas[10] = "TRA" + std::string(67, '1');
    lineas[20] = "TRA" + std::string(67, '2');
    b.abre(lineas);
    QCOMPARE(b.rejilla()->rowAt(0), 0);

    b.dialogos.entradas = {std::string("tra")};
    b.pulsa("BUSCA");
    QCOMPARE(b.dialogos.preguntas.back().titulo, std::string("BUSQUEDA DE TEXTO"));
    QCOMPARE(b.dialogos.preguntas.back().texto, std::string(" Introduzca el texto que desee buscar"));
    QCOMPARE(b.rejilla()->rowAt(0), 10);
    QCOMPARE(b.rejilla()->currentRow(), 10);
    QVERIFY(b.rejilla()->item(10, 1)->isSelected());

    // No hit, or no text: nothing moves and nothing is said.
    b.rejilla()->scrollToTop();
    b.dialogos.entradas = {std::string("zzz"), std::nullopt};
    b.pulsa("BUSCA");
    b.pulsa("BUSCA");
    QCOMPARE(b.dialogos.preguntas.size(), std::size_t{3});
    QCOMPARE(b.rejilla()->rowAt(0), 0);
    QCOMPARE(b.rejilla()->currentRow(), 10);
    QVERIFY(b.dialogos.mensajes.empty());

    // The search reads the grid as edited, not the file.
    b.edita(5, "EXTRA" + QString(65, QLatin1Char(' ')));
    b.dialogos.entradas = {std::string("Tra")};
    b.pulsa("BUSCA");
    QCOMPARE(b.rejilla()->rowAt(0), 5);
  }

  // The print, the Cancel that drops an edit, a form closed in mid-edit, and a file that
  // was not generated.
  void imprimirEntregaElFicheroYCancelarNoGuarda() {
    Banco b;
    b.abre({ETI, EMP});
    const std::string bytes = b.guardado();
    b.pulsa("IMPRI");
    QCOMPARE(b.lanzador.ordenes,
             (std::vector<std::vector<std::string>>{{"xdg-open", (b.fan / "F2211260.FAN").string()}}));
    QVERIFY(b.f->isVisible());

    b.edita(1, QString());
    b.dialogos.guardados = {Guardado::Descartar};
    b.pulsa("can");
    QVERIFY(!b.f->isVisible());
    QCOMPARE(b.guardado(), bytes);

    // A form destroyed in the middle of an edit: the edit ends as the window loses its
    // focus, without reaching back into the form, and nothing is saved.
    b.abre();
    b.f->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(b.f.get()));
    QLineEdit* abierta = b.abreEdicion(0);
    QVERIFY(abierta);
    abierta->setFocus();
    abierta->selectAll();
    QTest::keyClicks(abierta, QStringLiteral("ETI nuevo"));
    b.f.reset();
    QCoreApplication::processEvents();
    QVERIFY(b.dialogos.mensajes.empty());
    QCOMPARE(b.guardado(), bytes);

    // A file that was not generated: an empty grid, and nothing to save or to print.
    b.p.g.FICHEROSALIDA = "   ";
    EDITOR vacio(b.p, b.lanzador);
    QCOMPARE(vacio.findChild<QTableWidget*>(QStringLiteral("REJILLA"))->rowCount(), 0);
    vacio.pulsaBarraLista(QStringLiteral("guar"));
    vacio.pulsaBarraLista(QStringLiteral("IMPRI"));
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(b.dialogos.mensajes[0].titulo, std::string("VALDOR+"));
    QCOMPARE(b.dialogos.mensajes[0].texto, std::string("El fichero no se generó. El proceso ha sido abortado."_cp));
    QCOMPARE(b.dialogos.mensajes[0].icono, Icono::Critico);
    QCOMPARE(b.lanzador.ordenes.size(), std::size_t{1});  // the print of the file above
  }

  // Escape, "Cancelar" and the window's close ask before unsaved edits are dropped; the
  // title names the file and marks the edits.
  void conCambiosSinGuardarCerrarPreguntaGuardarDescartarOCancelar() {
    Banco b;
    const std::string cierre4 = cierre("0000100000004");
    b.abre({ETI, EMP, RZS, cierre4});
    QCOMPARE(b.f->windowTitle(), QStringLiteral("Edición del fichero C:\\WINSUITE\\VIPTC2\\FAN\\F2211260.FAN[*]"));
    QVERIFY(!b.f->isWindowModified());
    QTest::keyClick(b.f.get(), Qt::Key_Escape);  // nothing to lose: no question
    QVERIFY(!b.f->isVisible() && b.dialogos.preguntas.empty());

    b.abre();
    const std::string otra = "RZS" + std::string(67, 'S');
    b.edita(2, q(otra));
    QVERIFY(b.f->isWindowModified());
    // Cancelar (also the box's Escape) stays, with the edit.
    QTest::keyClick(b.f.get(), Qt::Key_Escape);
    QVERIFY(b.f->isVisible());
    QCOMPARE(b.dialogos.preguntas.size(), std::size_t{1});
    QVERIFY(b.dialogos.preguntas[0].texto.find("F2211260.FAN tiene cambios sin guardar") != std::string::npos);
    QCOMPARE(b.celda(2, 1), q(otra));
    // The window's close asks too; Guardar saves and closes (these lines, written by hand,
    // have field findings: the save is told yes).
    b.dialogos.guardados = {Guardado::Guardar};
    b.dialogos.respuestas = {true};
    b.f->close();
    QVERIFY(!b.f->isVisible());
    QCOMPARE(b.guardado(), fichero({ETI, EMP, otra, cierre4}));
    QVERIFY(b.dialogos.mensajes.empty());
  }

  // The company name and the surnames hold the DOS accent table's bytes, the given name
  // Windows-1252: each shows its letters, and one surname typed anew is written as the
  // writer writes it while every other byte stays.
  void unCampoEditadoSeEscribeComoElEscritorYElRestoByteAByte() {
    Banco b;
    auto ancho = [](std::string t, std::size_t n) { return t.append(n - t.size(), ' '); };
    // "Café Nórdico": the table (é 130, ó 162), then capitals. "Muñoz Peña, José": the
    // surnames in capitals, then the table (Ñ 165); the given name as it is (É 201).
    const std::string rzs = "RZS01" + ancho("CAF\x82 N\xA2RDICO", 55) + std::string(10, ' ');
    const std::string ayn = "AYN" + ancho("MU\xA5OZ", 20) + ancho("PE\xA5" "A", 20) + ancho("JOS\xC9", 15) +
                            std::string(12, ' ');
    const std::string pie = cierre("0000000000004");
    b.abre({ETI, rzs, ayn, pie});
    QCOMPARE(b.celda(1, 1), q(rzs).replace(5, 12, QStringLiteral("CAFé NóRDICO")));
    QCOMPARE(b.celda(2, 1), q(ayn).replace(3, 4, QStringLiteral("MUÑO")).replace(23, 4, QStringLiteral("PEÑA")));
    QVERIFY(b.celda(2, 1).contains(QStringLiteral("JOSÉ")));

    // The second surname retyped: capitals, then the table (Ú 163, Ñ 165).
    b.edita(2, b.celda(2, 1).replace(23, 20, QStringLiteral("Núñez").leftJustified(20)));
    QCOMPARE(b.celda(2, 1).mid(23, 5), QStringLiteral("NúÑEZ"));
    b.dialogos.respuestas = {true};  // these lines have field findings
    b.pulsa("guar");
    const std::string nueva = "AYN" + ancho("MU\xA5OZ", 20) + ancho("N\xA3\xA5" "EZ", 20) + ancho("JOS\xC9", 15) +
                              std::string(12, ' ');
    QCOMPARE(b.guardado(), fichero({ETI, rzs, nueva, pie}));
  }

  void elSelectorMuestraLasCarpetasYAbreElEditorSoloSobreUnFichero() {
    Banco b;
    const fs::path viptc2 = b.carpeta / "wine/drive_c/WINSUITE/VIPTC2";
    fs::create_directories(viptc2 / "AFI");
    escribeBytes(b.fan / "B2211260.FAN", fichero({ETI, EMP}));
    escribeBytes(b.fan / "a1511260.fan", fichero({ETI, EMP, RZS}));
    escribeBytes(b.fan / "NOTAS.TXT", "x");
    escribeBytes(viptc2 / "AFI/F2211260.AFI", fichero({ETI}));
    // The route comes from the settings file, not from what the program read at its start.
    REGINTERCAMBIO ajustes = registroEnBlanco();
    ajustes.RUTAWINSUITE = "C:\\WINSUITE\\Winsuite.exe";
    FicheroAjustes(b.carpetas.trabajo).escribe(ajustes);
    b.p.registro.RUTAWINSUITE = "C:\\OTRA\\Winsuite.exe";
    b.p.g.FICHEROEDITADO = "ANTES";

    formularios::selector s(b.p, b.lanzador);
    s.show();
    QCoreApplication::processEvents();
    QCOMPARE(s.windowTitle(), QStringLiteral("Editar ficheros en C:\\WINSUITE\\"));
    QCOMPARE(b.dialogos.punteros, std::vector<Puntero>{Puntero::Normal});
    auto* arbol = s.findChild<QTreeWidget*>(QStringLiteral("TreeView1"));
    QCOMPARE(arbol->topLevelItemCount(), 4);
    const int hijos[] = {2, 1, 0, 0};
    for (int i = 0; i < 4; ++i) {
      QCOMPARE(arbol->topLevelItem(i)->childCount(), hijos[i]);
      QVERIFY(arbol->topLevelItem(i)->isExpanded());
    }

    QTreeWidgetItem* cotizacion = arbol->topLevelItem(0);
    auto pulsa = [arbol](QTreeWidgetItem* nodo) {
      QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {}, arbol->visualItemRect(nodo).center());
    };
    // A branch title opens nothing.
    {
      AlAbrirModal ninguno({}, &s);
      pulsa(cotizacion);
      QCOMPARE(ninguno.nombre, QString());
    }
    QCOMPARE(b.p.g.FICHEROEDITADO, std::string("ANTES"));

    // A file opens the editor on itself, by a click or by Enter.
    {
      EditorAbierto editor(&s);
      pulsa(cotizacion->child(0));
      QCOMPARE(editor.titulo, QStringLiteral("Edición del fichero C:\\WINSUITE\\VIPTC2\\FAN\\a1511260.fan[*]"));
      QCOMPARE(editor.filas, 3);  // 216 bytes
    }
    EditorAbierto editor(&s);
    arbol->setCurrentItem(arbol->topLevelItem(1)->child(0));
    QTest::keyClick(arbol, Qt::Key_Return);
    QCOMPARE(editor.filas, 1);  // 72 bytes
    QCOMPARE(b.p.g.FICHEROEDITADO, std::string("C:\\WINSUITE\\VIPTC2\\AFI\\F2211260.AFI"));
  }
};

int ejecutaPruebaEditorFicheros(int argc, char** argv) { return ejecuta<PruebaEditorFicheros>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_editor_ficheros.moc"
