// The operator's actions in any order, also while a load yields to the window: what must hold after each of
// them.
#include <algorithm>
#include <random>

#include "app/banco.h"

namespace {

using Azar = std::mt19937;

// Answers whatever it is asked, one way or the other.
struct Operador final : ports::Prompts, ports::FilePicker {
  explicit Operador(Azar& a) : azar(a) {}
  bool Show(const ports::Notice&) override { return azar() % 3 == 0; }
  bool Confirm(const std::string&) override { return azar() % 2 == 0; }
  std::string PickFile(const std::string&, const std::string&, const std::string&) override {
    return rutas[azar() % rutas.size()];
  }
  std::int32_t PickColor(std::int32_t inicial) override {
    return azar() % 2 == 0 ? inicial : static_cast<std::int32_t>(azar() % 0x1000000);
  }
  Azar& azar;
  std::vector<std::string> rutas;
};

using Accion = std::function<void(app::Programa&, Operador&)>;

bool Moneda(Operador& o) { return o.azar() % 2 == 0; }

std::string Texto(Operador& o) {
  static const char* const kTextos[] = {"",      "1", "7",       " ",       "-1",
                                        "99999", "x", "Horas*2", "Tipo=HC", ";",
                                        "HC,01", "'", "[(",      "SI(1;2)", "SQL(CAMPO 1)"};
  return kTextos[o.azar() % std::size(kTextos)];
}

// An entry of the list, or none.
int Entrada(Operador& o, const formula::ListControl& lista) {
  return static_cast<int>(o.azar() % (lista.items.size() + 1)) - 1;
}

std::vector<Accion> DeArchivo() {
  return {
      [](auto& p, auto&) { p.Archivo().cbBuscar_Click(); },
      [](auto& p, auto&) { p.Archivo().cbActualizar_Click(); },
      [](auto& p, auto& o) { p.Archivo().txtRuta_Change(o.rutas[o.azar() % o.rutas.size()]); },
      [](auto& p, auto&) { p.Archivo().txtRuta_KeyPress(13); },
      [](auto& p, auto& o) { p.Archivo().txtFiltro_Change(Texto(o)); },
      [](auto& p, auto& o) { p.Archivo().OptFiltro_Click(Moneda(o) ? 1 : 0); },
      [](auto& p, auto& o) {
        p.Archivo().ObjSelMes_Change(base::MakeDate(2026, 1 + static_cast<int>(o.azar() % 12), 5));
      },
      [](auto& p, auto& o) {
        p.Archivo().cmbLiquidaciones_Click(Entrada(o, p.Ver().tipos.cmbLiquidaciones));
      },
      [](auto& p, auto& o) { p.Archivo().cmbAgrupa_Click(Entrada(o, p.Ver().tipos.cmbAgrupa)); },
      [](auto& p, auto& o) { p.Lineas().GridAImportar_HeadClick(Moneda(o) ? "Horas" : "Resultado"); },
      [](auto& p, auto& o) { p.Formato().optTipoArch_Click(Moneda(o) ? 1 : 0); },
      [](auto& p, auto& o) { p.Formato().txtSeparador_Change(Texto(o)); },
      [](auto& p, auto& o) {
        p.Formato().txtAE_Change(static_cast<int>(o.azar() % 5), Moneda(o) ? 1 : 0, Texto(o));
      },
      [](auto& p, auto& o) {
        std::array<int, 5> lugares{0, 1, 2, 3, 4};
        std::shuffle(lugares.begin(), lugares.end(), o.azar);
        p.Formato().GridPVConf_ColumnasMovidas(lugares);
      },
      [](auto& p, auto& o) { p.Formato().txtFormulaSGN_Change(Texto(o)); },
      [](auto& p, auto&) { p.Formato().Timer1_Timer(); },
      [](auto& p, auto&) { p.Importador().cbImportar_Click(1); },
      [](auto& p, auto&) { p.Activate(); },
  };
}

std::vector<Accion> DeOpciones() {
  return {
      [](auto& p, auto& o) { p.Opciones().chkSoloDReloj_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkLiqHCaMensuales_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkNoImpValEnCero_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkCodigoNumerico_Click(Moneda(o)); },
      [](auto& p, auto& o) {
        if (p.Ver().chkTotalizarConc.enabled) p.Opciones().chkTotalizarConc_Click(Moneda(o));
      },
      [](auto& p, auto& o) { p.Opciones().chkSumarAyaIng_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkImportarCuotas_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().txtTextoTipoCuota_Change(Texto(o)); },
      [](auto& p, auto& o) { p.Opciones().chkConCC_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkCCDefEnDatExt_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().chkVincAutConOrsa_Click(Moneda(o)); },
      [](auto& p, auto& o) { p.Opciones().cbTipoClave_Click(Entrada(o, p.Ver().cbTipoClave)); },
      [](auto& p, auto& o) { p.Relaciones().cmbConceptos_Click(Entrada(o, p.Ver().conceptos.cmbConceptos)); },
      [](auto& p, auto& o) { p.Relaciones().cmbAgrupaDef_Click(Entrada(o, p.Ver().tipos.cmbAgrupaDef)); },
      [](auto& p, auto& o) { p.Relaciones().txtTipo_Change(Texto(o)); },
      [](auto& p, auto& o) { p.Relaciones().GridRelaciones_RowChange(static_cast<int>(o.azar() % 12) - 1); },
      [](auto& p, auto& o) { p.Relaciones().cbAgrQuit_Click(Moneda(o) ? 1 : 0); },
      [](auto& p, auto&) { p.Relaciones().cbColor_Click(); },
      [](auto& p, auto& o) { p.Opciones().cbConfigurar_Click(Moneda(o) ? 1 : 0); },
  };
}

void VerQueVale(app::Programa& p) {
  const app::Estado& e = p.Ver();
  EXPECT_EQ(e.relaciones.Cantidad(), e.relaciones.Grid().size());
  EXPECT_EQ(e.conceptos.cmbConceptos.items.size(), e.conceptos.tabla.Cantidad());
  EXPECT_EQ(e.lineas, e.filas.size() + e.aparte.size());
  EXPECT_TRUE(p.PuedeCerrar());
  EXPECT_FALSE(p.BarraDeProgreso().Visible());
  EXPECT_FALSE(p.Sesion().conexion->InTransaction());
  EXPECT_TRUE(e.opciones.TotalizarConc || !e.opciones.SumarAyaIng);
  EXPECT_FALSE(e.AreConf_visible[0] && e.AreConf_visible[1]);
}

class Secuencias : public prueba::Banco {};

TEST_F(Secuencias, NoOrderOfTheActionsBreaksWhatMustHold) {
  constexpr unsigned kSemillas = 15;
  constexpr int kPasos = 150;
  Demo();
  std::string repetida = "7008;HC;1";
  for (int i = 0; i < 60; ++i) repetida += "\r\n7008;HE;1";
  Escribir("larga.txt", repetida);
  Escribir("mala.txt", "7008;HC;8\r\n7031;HE;2;x;5\r\n\r\n7031\r\n1;TK;3\r\n");
  std::vector<Accion> acciones = DeArchivo();
  for (Accion& accion : DeOpciones()) acciones.push_back(std::move(accion));

  for (unsigned semilla = 0; semilla < kSemillas && !HasFailure(); ++semilla) {
    SCOPED_TRACE("seed " + std::to_string(semilla));
    Azar azar(semilla);
    Operador operador(azar);
    operador.rutas = {"",         Ruta("larga.txt"), Ruta("mala.txt"),
                      Ruta("no"), demo_.archivo,     Ruta("horas_ancho_fijo.txt")};
    app::Programa p(app::Puertos{operador, operador, reloj_, &eventos_},
                    app::Arranque{carpeta_.string(), "1.0.0", {}, {}, false});
    const auto actuar = [&] { acciones[azar() % acciones.size()](p, operador); };
    ASSERT_TRUE(p.Iniciar(demo_.referencia + "*" + demo_.archivo));
    int hondo = 0;
    eventos_.al_correr = [&] {
      if (hondo > 0 || azar() % 40 != 0) return;
      ++hondo;
      actuar();
      --hondo;
    };
    for (int paso = 0; paso < kPasos && !HasFailure(); ++paso) {
      SCOPED_TRACE("step " + std::to_string(paso));
      actuar();
      VerQueVale(p);
    }
    eventos_.al_correr = nullptr;
    EXPECT_TRUE(p.Unload());
  }
}

}  // namespace
