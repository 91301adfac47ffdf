// Settings and relations are never lost: what closing stores, what it does not, and where it goes when it
// cannot.
#include "app/banco.h"
#include "engine_mdb/mdb_connection.h"

namespace {

class Guardar : public prueba::Banco {
 protected:
  static constexpr const char* kGuardadas = "[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n[/Conceptos]";

  void Ajustes(bool automaticas, const std::string& ademas = {}) {
    Escribir("ImportDeMarcas.ini", std::string(kGuardadas) + "\r\n[MismoCodigoDeOrsa]\r\n" +
                                       (automaticas ? "SI" : "NO") + "\r\n[/MismoCodigoDeOrsa]" + ademas);
  }
  bool SiguenLasGuardadas() const { return Leer("ImportDeMarcas.ini").find(kGuardadas) != std::string::npos; }
  void Abrir() {
    Escribir("x.txt", "7001 HE 8\r\n7001 HE 9\r\n7003 HE 9");
    cajas_.aceptar_todo = true;
    ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("x.txt")));
  }
  // Does this in the middle of a load, tells the program to close, and closes when the load has ended.
  void CerrarCargando(const std::function<void(app::Programa&)>& hacer) {
    bool hecho = false;
    eventos_.al_correr = [&] {
      if (hecho) return;
      hecho = true;
      hacer(*programa_);
      EXPECT_FALSE(programa_->Unload());
    };
    programa_->Lineas().CargarDatos();
    eventos_.al_correr = nullptr;
    EXPECT_TRUE(hecho);
    EXPECT_TRUE(programa_->Unload());
  }
  void AgregarRelacion(const char* codigos) {
    programa_->Relaciones().cmbConceptos_Click(0);
    programa_->Relaciones().txtTipo_Change(codigos);
    programa_->Relaciones().cbAgrQuit_Click(0);
  }
  // The file that was written beside, "" when there is none.
  std::string Aparte() const {
    for (const auto& entrada : std::filesystem::directory_iterator(carpeta_))
      if (entrada.path().filename().string().starts_with("ImportDeMarcas sin guardar"))
        return entrada.path().filename().string();
    return {};
  }
};

// The option is another at once, its relations come when the load has ended, and closing comes first.
TEST_F(Guardar, UntickedWhileALoadRunsTheAutomaticListIsNotStored) {
  Demo();
  Ajustes(true);
  Abrir();
  ASSERT_GT(programa_->Ver().relaciones.Cantidad(), 2U);
  CerrarCargando([](app::Programa& p) { p.Opciones().chkVincAutConOrsa_Click(false); });
  EXPECT_TRUE(SiguenLasGuardadas());
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[MismoCodigoDeOrsa]\r\nNO\r\n"), std::string::npos);
}

// Nor into the base, when the relations are kept there.
TEST_F(Guardar, NorInTheBase) {
  Demo();
  Ajustes(true, "\r\n[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]");
  Abrir();
  programa_->Sesion().conexion->Execute("Insert into DatExtDatos (idTDE,idLoc,idDE) Values(77,7,'09')");
  CerrarCargando([](app::Programa& p) { p.Opciones().chkVincAutConOrsa_Click(false); });
  EXPECT_EQ(Consulta("Select idDE From DatExtDatos Where idTDE=77"), "09");
  EXPECT_TRUE(SiguenLasGuardadas());
}

TEST_F(Guardar, TickedAndUntickedWhileALoadRunsTheEditedListIs) {
  Demo();
  Ajustes(false);
  Abrir();
  AgregarRelacion("ZZ");
  CerrarCargando([](app::Programa& p) {
    p.Opciones().chkVincAutConOrsa_Click(true);
    p.Opciones().chkVincAutConOrsa_Click(false);
  });
  const std::string texto = Leer("ImportDeMarcas.ini");
  EXPECT_NE(texto.find("[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n"), std::string::npos);
  EXPECT_NE(texto.find(",ZZ,"), std::string::npos);
}

// The reload that waited has run: what it brought is the option's.
TEST_F(Guardar, UntickedWhileALoadRunsTheStoredListComesBackAfterIt) {
  Demo();
  Ajustes(true);
  Abrir();
  bool hecho = false;
  eventos_.al_correr = [&] {
    if (!hecho) programa_->Opciones().chkVincAutConOrsa_Click(false);
    hecho = true;
  };
  programa_->Lineas().CargarDatos();
  eventos_.al_correr = nullptr;
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 1U);
  EXPECT_TRUE(programa_->Unload());
  EXPECT_TRUE(SiguenLasGuardadas());
}

// A folder in the file's place cannot be read by anybody.
TEST_F(Guardar, UnreadableSettingsStopTheStart) {
  Demo();
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  std::filesystem::create_directories(Ruta("ImportDeMarcas.ini/dentro"));
  app::Programa& p = Crear();
  cajas_.aceptar_todo = true;
  EXPECT_FALSE(p.Iniciar(demo_.referencia));
  ASSERT_EQ(cajas_.mostradas.size(), 1U);
  EXPECT_EQ(cajas_.mostradas[0], p.Ver().motivo_fin);
  EXPECT_NE(p.Ver().motivo_fin.find("No se pueden leer los ajustes"), std::string::npos);
  EXPECT_NE(p.Ver().motivo_fin.find(Ruta("ImportDeMarcas.ini")), std::string::npos);
  EXPECT_FALSE(p.Sesion().Abierta());
  p.Unload();
  EXPECT_TRUE(std::filesystem::is_directory(Ruta("ImportDeMarcas.ini/dentro")));
  EXPECT_EQ(Aparte(), "");
}

// Read well at the start and not any more: the relations of a reload are not the default ones, and closing
// writes what was changed beside.
TEST_F(Guardar, SettingsThatBecomeUnreadableAreKeptBeside) {
  Demo();
  Ajustes(false);
  Abrir();
  programa_->Archivo().txtFiltro_Change("Tipo=7");
  std::filesystem::rename(Ruta("ImportDeMarcas.ini"), Ruta("guardado.ini"));
  std::filesystem::create_directories(Ruta("ImportDeMarcas.ini"));
  programa_->Opciones().chkVincAutConOrsa_Click(true);
  programa_->Opciones().chkVincAutConOrsa_Click(false);
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 0U);
  EXPECT_NE(programa_->MotivoParaNoImportar().find("la lista de relaciones"), std::string::npos);
  EXPECT_TRUE(programa_->Unload());
  ASSERT_NE(Aparte(), "");
  EXPECT_NE(cajas_.mostradas.back().find("Los ajustes no se pudieron guardar. "), std::string::npos);
  EXPECT_NE(cajas_.mostradas.back().find("Quedaron escritos en " + Ruta(Aparte())), std::string::npos);
  EXPECT_NE(Leer(Aparte()).find("[TextoDeFiltro]\r\nTipo=7\r\n"), std::string::npos);
  EXPECT_EQ(Leer(Aparte()).find("[Conceptos]"), std::string::npos);
  EXPECT_NE(Leer("guardado.ini").find(kGuardadas), std::string::npos);
}

// Another program has the Access file: it is told, and relations that were edited are kept beside.
TEST_F(Guardar, WhatAReadOnlyBaseDoesNotTakeIsKeptBeside) {
  Demo();
  Ajustes(false, "\r\n[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]");
  auto otro = engine_mdb::Open(Ruta("Personal.mdb"));
  Abrir();
  const app::Estado& e = programa_->Ver();
  ASSERT_NE(e.solo_lectura, "");
  EXPECT_EQ(e.LblEmpresa, "Empresa: " + demo_.referencia);
  EXPECT_EQ(cajas_.mostradas.front(),
            e.solo_lectura + "\r\nSe puede mirar, pero no importar ni guardar relaciones en ella.");
  AgregarRelacion("ZZ");
  const std::string editadas = e.relaciones.Texto();
  EXPECT_TRUE(programa_->Unload());
  ASSERT_NE(Aparte(), "");
  EXPECT_EQ(cajas_.mostradas.back(), "Las relaciones no se pudieron guardar. " + e.solo_lectura +
                                         "\r\nQuedaron escritos en " + Ruta(Aparte()));
  EXPECT_NE(Leer(Aparte()).find("[Conceptos]\r\n" + editadas + "\r\n[/Conceptos]"), std::string::npos);
}

// Nothing was edited: there is nothing to lose, and nothing to tell.
TEST_F(Guardar, AReadOnlyBaseWithoutEditsClosesInSilence) {
  Demo();
  Ajustes(false, "\r\n[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]");
  auto otro = engine_mdb::Open(Ruta("Personal.mdb"));
  Abrir();
  const std::size_t cajas = cajas_.mostradas.size();
  EXPECT_TRUE(programa_->Unload());
  EXPECT_EQ(cajas_.mostradas.size(), cajas);
  EXPECT_EQ(Aparte(), "");
}

// The other program has gone: the import opens the base for writing by itself, and the state says so.
TEST_F(Guardar, TheStateForgetsTheOtherProgramOnceItHasGone) {
  Demo();
  auto otro = engine_mdb::Open(Ruta("Personal.mdb"));
  Abrir();
  programa_->Activate();
  ASSERT_NE(programa_->Ver().solo_lectura, "");
  otro.reset();
  programa_->Importador().Importar(false);
  EXPECT_EQ(programa_->Ver().solo_lectura, "");
}

// The session may end, or go on: everything is stored and nothing closed, without a box.
TEST_F(Guardar, ASessionThatMayEndIsSavedInSilence) {
  Demo();
  Ajustes(false);
  Abrir();
  AgregarRelacion("ZZ");
  programa_->Archivo().txtFiltro_Change("Tipo=7");
  const std::size_t cajas = cajas_.mostradas.size();
  programa_->Resguardar();
  EXPECT_EQ(cajas_.mostradas.size(), cajas);
  EXPECT_NE(Leer("ImportDeMarcas.ini").find(",ZZ,"), std::string::npos);
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[TextoDeFiltro]\r\nTipo=7\r\n"), std::string::npos);
  EXPECT_FALSE(programa_->CierrePedido());
}

// In the middle of an import the base has its transaction open: the relations are stored when it has ended.
TEST_F(Guardar, ASessionThatMayEndDuringAnImportLeavesItsTransactionAlone) {
  Demo();
  Ajustes(false, "\r\n[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]");
  Abrir();
  programa_->Archivo().OptFiltro_Click(0);
  AgregarRelacion("ZZ");
  bool hecho = false;
  programa_->BarraDeProgreso().al_pintar = [&] {
    if (hecho || programa_->Ver().tarea != app::Tarea::Importacion) return;
    hecho = true;
    programa_->Resguardar();
    EXPECT_EQ(Consulta("Select Count(*) From DatExtDatos Where idTDE=77"), "0");
  };
  programa_->Importador().Importar(true);  // undone: the relations would go with it
  programa_->BarraDeProgreso().al_pintar = nullptr;
  ASSERT_TRUE(hecho);
  EXPECT_EQ(Consulta("Select Count(*) From DatExtDatos Where idTDE=77"), "1");
}

// During the start nothing was read yet that could be stored.
TEST_F(Guardar, ASessionThatMayEndDuringTheStartStoresNothing) {
  Demo();
  Ajustes(true);
  const std::string antes = Leer("ImportDeMarcas.ini");
  app::Programa& p = Crear();
  p.AlCambiar([&] {
    if (p.Ver().cargando) p.Resguardar();
  });
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_EQ(Leer("ImportDeMarcas.ini"), antes);
  p.AlCambiar(nullptr);
}

// While the start sets the controls their handlers reload nothing and take nothing over.
class Arrancando : public prueba::Banco {
 protected:
  // Runs it once, at the first change of the start.
  void Al_arrancar(const std::function<void(app::Programa&)>& hacer) {
    app::Programa& p = Crear();
    bool hecho = false;
    cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
    p.AlCambiar([&] {
      if (hecho || !p.Ver().cargando) return;
      hecho = true;
      const auto esperadas = std::exchange(cajas_.esperadas, {});  // a reload would show a box
      hacer(p);
      cajas_.esperadas = esperadas;
      EXPECT_TRUE(p.Ver().cargando);
      EXPECT_EQ(p.Ver().tarea, app::Tarea::Ninguna);
      EXPECT_EQ(p.Ver().revision.relaciones, 0U);
      EXPECT_FALSE(p.Ver().Timer1_enabled);
    });
    EXPECT_TRUE(p.Iniciar("nada*"));
    EXPECT_TRUE(hecho);
    p.AlCambiar(nullptr);
  }
};

TEST_F(Arrancando, ClockDataReloadNoPersons) {
  Al_arrancar([](app::Programa& p) {
    p.Opciones().chkSoloDReloj_Click(false);
    EXPECT_TRUE(p.Ver().opciones.SoloDatosDeRel);
  });
}
TEST_F(Arrancando, TheAutomaticLinkReloadsNoRelations) {
  Al_arrancar([](app::Programa& p) {
    p.Opciones().chkVincAutConOrsa_Click(true);
    EXPECT_FALSE(p.Ver().opciones.MismoCodigoDeOrsa);
  });
}
TEST_F(Arrancando, TheKindOfKeyLoadsNoFile) {
  Al_arrancar([](app::Programa& p) {
    p.Opciones().cbTipoClave_Click(2);
    EXPECT_EQ(p.Ver().opciones.Configura, 5);
  });
}
TEST_F(Arrancando, TheMonthReloadsNothing) {
  Al_arrancar([](app::Programa& p) { p.Archivo().ObjSelMes_Change(base::MakeDate(2026, 3, 5)); });
}
TEST_F(Arrancando, TheSeparatorStartsNoTimer) {
  Al_arrancar([](app::Programa& p) { p.Formato().txtSeparador_Change(";"); });
}
TEST_F(Arrancando, TheLayoutBoxesChangeNoLayout) {
  Al_arrancar([](app::Programa& p) {
    p.Formato().txtAE_Change(0, 0, "7");
    EXPECT_EQ(p.Ver().opciones.ConfDeAF, settings::LayoutPorDefecto());
  });
}
TEST_F(Arrancando, ThePreviewsColumnsStay) {
  Al_arrancar([](app::Programa& p) {
    p.Formato().GridPVConf_ColumnasMovidas({4, 3, 2, 1, 0});
    EXPECT_EQ(p.Ver().posicion_previa, (std::array<int, 5>{0, 1, 2, 3, 4}));
  });
}

}  // namespace
