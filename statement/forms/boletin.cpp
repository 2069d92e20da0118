#include "statement/forms/boletin.h"

#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "statement/estado.h"
#include "shell/forms/texto_qt.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor::formularios {

namespace {

// Characters an amount field and a rate field have room for: more than any figure of
// the statement takes, so that no figure is ever shown cut.
constexpr int IMPORTE = 12;
constexpr int TIPO = 8;

QFont letraFija(const QFont& base) {
  QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  f.setPointSizeF(base.pointSizeF());
  return f;
}

QLabel* etiqueta(const QString& texto, QWidget* padre, Qt::Alignment alineacion = Qt::AlignLeft | Qt::AlignVCenter) {
  auto* l = new QLabel(texto, padre);
  l->setAlignment(alineacion);
  return l;
}

// A column heading: centred over its fields.
QLabel* cabecera(const QString& texto, QWidget* padre) {
  QLabel* l = etiqueta(texto, padre, Qt::AlignHCenter | Qt::AlignBottom);
  QFont negrita = l->font();
  negrita.setBold(true);
  l->setFont(negrita);
  return l;
}

// The tight grid of a block.
QGridLayout* rejilla(QWidget* bloque) {
  auto* g = new QGridLayout(bloque);
  g->setContentsMargins(6, 4, 6, 4);
  g->setHorizontalSpacing(6);
  g->setVerticalSpacing(2);
  return g;
}

QFrame* marco(QWidget* padre) {
  auto* f = new QFrame(padre);
  f->setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
  return f;
}

QGroupBox* grupo(const QString& titulo, QWidget* padre) { return new QGroupBox(titulo, padre); }

// The width of a field with room for `caracteres` characters of its type.
int anchoPara(const QLineEdit* campo, int caracteres) {
  return campo->fontMetrics().horizontalAdvance(QString(caracteres, QLatin1Char('0'))) + 10;
}

void pon(QLineEdit* campo, std::string_view cp1252) {
  campo->setText(aQString(cp1252));
  campo->setCursorPosition(0);  // a text longer than its field shows its start
}

}  // namespace

QLineEdit* VistaBoletin::campoHoja(const char* nombre, int caracteres, bool importe) {
  auto* c = new QLineEdit(this);
  c->setObjectName(QString::fromLatin1(nombre));
  c->setReadOnly(true);
  c->setFocusPolicy(Qt::NoFocus);
  c->setFont(letraFija(font()));
  c->setAlignment(importe ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeft | Qt::AlignVCenter);
  if (caracteres > 0) c->setFixedWidth(anchoPara(c, caracteres));
  return c;
}

QLineEdit* VistaBoletin::caja(int numero, int caracteres, bool importe) {
  QLineEdit* c = campoHoja("", caracteres, importe);
  c->setObjectName(QStringLiteral("Text%1").arg(numero));
  cajas_[static_cast<std::size_t>(numero)] = c;
  return c;
}

VistaBoletin::VistaBoletin(QWidget* padre, Disposicion disposicion)
    : QWidget(padre), decimal_(separadoresDelSistema().decimal) {
  setObjectName(QStringLiteral("VistaBoletin"));
  const bool compacta = disposicion == Disposicion::Compacta;
  if (compacta) {
    // Every field and caption takes it, since each is made after this.
    QFont menor = font();
    menor.setPointSizeF(menor.pointSizeF() - 1);
    setFont(menor);
  }
  const auto izq = Qt::AlignLeft | Qt::AlignVCenter;
  const auto der = Qt::AlignRight | Qt::AlignVCenter;
  // The blocks, made in the order of the form, then arranged.
  QWidget *empleador = nullptr, *contingencias = nullptr, *resultado = nullptr, *accidentes = nullptr,
          *otras = nullptr;

  // The employer.
  {
    QFrame* b = marco(this);
    QGridLayout* g = rejilla(b);
    g->addWidget(caja(1, 0, false), 0, 0, 1, 6);
    g->addWidget(caja(2, 0, false), 1, 0, 1, 6);
    g->addWidget(etiqueta(QStringLiteral("Localidad:"), b), 2, 0);
    QLineEdit* localidad = caja(3, 0, false);
    localidad->setMinimumWidth(anchoPara(localidad, 14));
    g->addWidget(localidad, 2, 1);
    g->addWidget(etiqueta(QStringLiteral("C.P.:"), b), 2, 2);
    g->addWidget(caja(4, 8, false), 2, 3);
    g->addWidget(etiqueta(QStringLiteral("Prov."), b), 2, 4);
    g->addWidget(caja(5, 0, false), 2, 5);
    g->addWidget(etiqueta(QStringLiteral("Entidad de AT y EP:"), b), 3, 0);
    g->addWidget(caja(6, 0, false), 3, 1);
    g->addWidget(etiqueta(QStringLiteral("Clave"), b), 3, 2);
    g->addWidget(caja(7, 8, false), 3, 3);
    g->addWidget(etiqueta(QStringLiteral("Exp."), b), 3, 4);
    g->addWidget(caja(8, 0, false), 3, 5);
    g->addWidget(etiqueta(QStringLiteral("N.I.F."), b), 4, 0);
    g->addWidget(caja(9, 0, false), 4, 1);
    g->addWidget(etiqueta(QStringLiteral("Código cuenta cotización"), b), 4, 2, 1, 3);
    QLineEdit* ccc = caja(10, 0, false);
    ccc->setMinimumWidth(anchoPara(ccc, 14));
    g->addWidget(ccc, 4, 5);
    g->addWidget(etiqueta(QStringLiteral("Nº Trabajadores"), b), 5, 0);
    g->addWidget(caja(11, 8, true), 5, 1, izq);
    g->addWidget(etiqueta(QStringLiteral("Período:"), b), 5, 2);
    auto* periodo = new QHBoxLayout;
    periodo->setSpacing(4);
    periodo->addWidget(caja(12, 8, false));
    periodo->addWidget(caja(13, 8, false));
    periodo->addStretch(1);
    g->addLayout(periodo, 5, 3, 1, 3);
    g->setColumnStretch(1, 3);
    g->setColumnStretch(5, 2);
    empleador = b;
  }

  // General contingencies: base, rate and quota of each concept, the compensations and
  // reductions, and the net amount.
  {
    QFrame* b = marco(this);
    QGridLayout* g = rejilla(b);
    g->addWidget(cabecera(QStringLiteral("BASES"), b), 0, 1);
    g->addWidget(cabecera(QStringLiteral("TIPOS"), b), 0, 2);
    g->addWidget(cabecera(QStringLiteral("Cuotas/Importes"), b), 0, 3);
    const QString conceptos[] = {
        QStringLiteral("Contingencias Comunes:"),    QStringLiteral("H. Extraordinarias estr."),
        QStringLiteral("H. Extraordinarias no ext."), QStringLiteral("Aportación Servicios com."),
        QStringLiteral("Trab. con cont. form/prac."), QStringLiteral("Otros conceptos"),
        QStringLiteral("Deduc. conting. excluidas"),  QStringLiteral("Deducciones")};
    for (int i = 0; i < 8; ++i) {
      const int primera = 14 + 3 * i;  // boxes 14, 15, 16 ... 35, 36, 37
      g->addWidget(etiqueta(conceptos[i], b), 1 + i, 0);
      g->addWidget(caja(primera, IMPORTE, true), 1 + i, 1, der);
      g->addWidget(caja(primera + 1, TIPO, true), 1 + i, 2, der);
      g->addWidget(caja(primera + 2, IMPORTE, true), 1 + i, 3, der);
    }
    g->addWidget(etiqueta(QStringLiteral("I.T."), b, Qt::AlignHCenter | Qt::AlignBottom), 9, 1);
    g->addWidget(etiqueta(QStringLiteral("REDUCCIONES"), b, Qt::AlignHCenter | Qt::AlignBottom), 9, 3);
    g->addWidget(etiqueta(QStringLiteral("Compensaciones y reduc."), b), 10, 0);
    g->addWidget(caja(38, IMPORTE, true), 10, 1, der);
    g->addWidget(caja(39, 2, false), 10, 2, der);
    g->addWidget(caja(40, IMPORTE, true), 10, 3, der);
    g->addWidget(etiqueta(QStringLiteral("Líquido contingencias generales"), b), 11, 0, 1, 3);
    g->addWidget(caja(41, IMPORTE, true), 11, 3, der);
    g->setColumnStretch(0, 1);
    contingencias = b;
  }

  // Surcharge and the result.
  {
    QFrame* b = marco(this);
    QGridLayout* g = rejilla(b);
    g->addWidget(etiqueta(QStringLiteral("Recargo de mora"), b), 0, 0);
    g->addWidget(caja(55, IMPORTE, true), 0, 1, der);
    g->addWidget(etiqueta(QStringLiteral("A PERCIBIR"), b), 1, 0);
    g->addWidget(caja(57, IMPORTE, true), 1, 1, der);
    g->addWidget(cabecera(QStringLiteral("A INGRESAR"), b), 2, 0, izq);
    g->addWidget(caja(58, IMPORTE, true), 2, 1, der);
    g->setColumnStretch(0, 1);
    resultado = b;
  }

  // Accidents at work and occupational diseases.
  {
    QGroupBox* b = grupo(QStringLiteral("ACCIDENTES DE TRABAJO Y ENFERMEDADES PROFESIONALES"), this);
    QGridLayout* g = rejilla(b);
    g->addWidget(etiqueta(QStringLiteral("Bases"), b, Qt::AlignHCenter | Qt::AlignBottom), 0, 0);
    g->addWidget(etiqueta(QStringLiteral("Cuotas I.T."), b, Qt::AlignHCenter | Qt::AlignBottom), 0, 1);
    g->addWidget(etiqueta(QStringLiteral("Cuotas I.M.S."), b, Qt::AlignHCenter | Qt::AlignBottom), 0, 2);
    for (int i = 0; i < 4; ++i) g->addWidget(caja(42 + i, IMPORTE, true), 1, i, der);
    auto* compensa =
        etiqueta(QStringLiteral("Compensación por I.T., accidentes de trab. y enf. prof."), b, der);
    g->addWidget(compensa, 2, 0, 1, 3);
    g->addWidget(caja(46, IMPORTE, true), 2, 3, der);
    g->addWidget(etiqueta(QStringLiteral("Líquido Acc. trabajo y enf. prof."), b, der), 3, 0, 1, 3);
    g->addWidget(caja(47, IMPORTE, true), 3, 3, der);
    accidentes = b;
  }

  // Other contributions: two rows of base, rate and quota, the bonuses and the partial
  // unemployment compensation, their sum and the net amount.
  {
    QGroupBox* b = grupo(QStringLiteral("OTRAS COTIZACIONES"), this);
    QGridLayout* g = rejilla(b);
    g->addWidget(etiqueta(QStringLiteral("Bases"), b, Qt::AlignHCenter | Qt::AlignBottom), 0, 1);
    g->addWidget(etiqueta(QStringLiteral("Tipo (%)"), b, Qt::AlignHCenter | Qt::AlignBottom), 0, 2);
    g->addWidget(caja(48, IMPORTE, true), 1, 1, der);
    g->addWidget(caja(49, TIPO, true), 1, 2, der);
    g->addWidget(caja(50, IMPORTE, true), 1, 3, der);
    g->addWidget(caja(80, IMPORTE, true), 2, 1, der);
    g->addWidget(caja(79, TIPO, true), 2, 2, der);
    g->addWidget(caja(78, IMPORTE, true), 2, 3, der);
    g->addWidget(etiqueta(QStringLiteral("Bonif./Reduc."), b), 3, 0);
    g->addWidget(caja(51, IMPORTE, true), 3, 1, der);
    g->addWidget(etiqueta(QStringLiteral("Comp. Des. Parc."), b), 4, 0);
    g->addWidget(caja(52, IMPORTE, true), 4, 1, der);
    g->addWidget(caja(53, IMPORTE, true), 4, 3, der);
    g->addWidget(etiqueta(QStringLiteral("Líquido Otras Cotizaciones"), b, der), 5, 0, 1, 3);
    g->addWidget(caja(54, IMPORTE, true), 5, 3, der);
    g->setColumnStretch(0, 1);
    otras = b;
  }

  // The worker's sheet.
  {
    QGroupBox* b = grupo(QStringLiteral("TC2-TC2/1 ABREVIADO"), this);
    b->setObjectName(QStringLiteral("HojaTC2"));
    hoja_ = b;
    QGridLayout* g = rejilla(b);
    struct Identidad {
      QString titulo;
      const char* nombre;
      QLineEdit** campo;
    };
    const Identidad identidad[] = {{QStringLiteral("Apellidos:"), "Apellidos", &apellidos_},
                                   {QStringLiteral("Nombre:"), "Nombre", &nombre_},
                                   {QStringLiteral("Núm.Afiliación:"), "Afiliacion", &afiliacion_},
                                   {QStringLiteral("Nif:"), "Nif", &nif_}};
    for (int i = 0; i < 4; ++i) {
      g->addWidget(etiqueta(identidad[i].titulo, b), i, 0);
      *identidad[i].campo = campoHoja(identidad[i].nombre, 0, false);
      g->addWidget(*identidad[i].campo, i, 1);
    }
    // Two rows of four figures under their one-line heading, a figure every ten
    // characters of the heading.
    const QFont fija = letraFija(font());
    const int paso = QFontMetrics(fija).horizontalAdvance(QString(10, QLatin1Char('0')));
    auto fila = [&](int r, const QString& titulo, std::array<std::pair<const char*, QLineEdit**>, 4> campos) {
      QLabel* t = etiqueta(titulo, b);
      t->setFont(fija);
      g->addWidget(t, r, 0, 1, 2);
      auto* h = new QHBoxLayout;
      h->setSpacing(0);
      for (const auto& [nombre, campo] : campos) {
        *campo = campoHoja(nombre, 0, true);
        (*campo)->setFixedWidth(paso - 4);
        h->addWidget(*campo);
        h->addSpacing(4);
      }
      h->addStretch(1);
      g->addLayout(h, r + 1, 0, 1, 2);
    };
    fila(4, QStringLiteral(" D.Alta    G.Cotiz.  Cl.Contr.  N.Horas"),
         {{{"DiasAlta", &diasAlta_}, {"GrupoCotizacion", &grupo_}, {"ClaseContrato", &contrato_}, {"Horas", &horas_}}});
    fila(6, QStringLiteral(" Epígraf  Días IT    D.Mater  Ep.I.T."),
         {{{"Epigrafe", &epigrafe_}, {"DiasIT", &diasIT_}, {"DiasMaternidad", &diasMaternidad_},
           {"EpigrafeIT", &epigrafeIT_}}});
    g->addWidget(etiqueta(QStringLiteral("Base AT y EP."), b), 8, 0);
    baseAT_ = campoHoja("BaseAT", IMPORTE, true);
    g->addWidget(baseAT_, 8, 1, izq);
    g->addWidget(etiqueta(QStringLiteral("Fecha Bonificac:"), b), 9, 0);
    fechaBonificacion_ = campoHoja("FechaBonificacion", 10, false);
    g->addWidget(fechaBonificacion_, 9, 1, izq);
    g->setColumnStretch(1, 1);
  }

  if (compacta) {
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    auto* arriba = new QHBoxLayout;
    arriba->addWidget(empleador, 1);
    arriba->addWidget(resultado, 0, Qt::AlignTop);
    auto* abajo = new QHBoxLayout;
    abajo->addWidget(contingencias, 1, Qt::AlignTop);
    auto* derecha = new QVBoxLayout;
    derecha->addWidget(accidentes);
    derecha->addWidget(otras);
    derecha->addStretch(1);
    abajo->addLayout(derecha);
    capa->addLayout(arriba);
    capa->addLayout(abajo);
    capa->addStretch(1);
    hoja_->hide();
    return;
  }
  auto* capa = new QHBoxLayout(this);
  capa->setContentsMargins(0, 0, 0, 0);
  auto* izquierda = new QVBoxLayout;
  for (QWidget* b : {empleador, contingencias, resultado}) izquierda->addWidget(b);
  izquierda->addStretch(1);
  auto* derecha = new QVBoxLayout;
  for (QWidget* b : {accidentes, otras, static_cast<QWidget*>(hoja_)}) derecha->addWidget(b);
  derecha->addStretch(1);
  capa->addLayout(izquierda, 1);
  capa->addLayout(derecha, 0);
}

QWidget* VistaBoletin::hoja() const { return hoja_; }

void VistaBoletin::muestra(const valdor::EstadoCalculo& calculo) { muestra(calculo.cajas, hojaTC2(calculo.GRID1)); }

void VistaBoletin::muestra(const CajasBoletin& cajas, const HojaTC2& hoja) {
  for (std::size_t n = 0; n < cajas_.size(); ++n)
    if (cajas_[n]) pon(cajas_[n], cajaEnPantalla(static_cast<int>(n), recortaDer(cajas[n]), decimal_));
  pon(apellidos_, hoja.apellidos);
  pon(nombre_, hoja.nombre);
  pon(afiliacion_, hoja.afiliacion);
  pon(nif_, hoja.nif);
  pon(diasAlta_, hoja.diasAlta);
  pon(grupo_, hoja.grupoCotizacion);
  pon(contrato_, hoja.claseContrato);
  pon(horas_, cifraEnPantalla(hoja.horas, decimal_));
  pon(epigrafe_, hoja.epigrafe);
  pon(diasIT_, hoja.diasIT);
  pon(diasMaternidad_, hoja.diasMaternidad);
  pon(epigrafeIT_, hoja.epigrafeIT);
  pon(baseAT_, cifraEnPantalla(hoja.baseAT, decimal_));
  pon(fechaBonificacion_, hoja.fechaBonificacion);
}

}  // namespace valdor::formularios
