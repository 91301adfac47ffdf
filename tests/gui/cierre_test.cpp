// Closing, by whatever way.
#include <QGuiApplication>
#include <QTimer>

#include "gui/banco_gui.h"

namespace {

class Cierre : public prueba::Ventana {
 protected:
  void AbrirSinBase() {
    cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
    ASSERT_TRUE(Iniciar("nada*"));
    Mostrar();
  }
};

TEST_F(Cierre, TheExitButtonWritesEveryKeyInItsOrder) {
  AbrirSinBase();
  Escribir(Caja("txtSeparador"), ";");
  Caja("txtFiltro")->setText(QStringLiteral("Nombre='Íñigo'"));
  Escribir(Caja("txtFormulaSGN"), "/60");
  Tilde("chkConCC")->click();
  Tilde("chkNoImpValEnCero")->click();
  Tilde("chkSumarAyaIng")->click();
  cajas_.esperadas = {"La Base no está Abierta"};
  Tilde("chkSoloDReloj")->click();
  cajas_.esperadas = {"El Archivo '' no existe"};
  Combo("cbTipoClave")->setCurrentIndex(2);
  Pulsar("optTipoArch_1");
  Escribir(Caja("txtD_0"), "22");
  Escribir(Caja("txtD_1"), "30");
  Pulsar("cbSalir");
  EXPECT_TRUE(ventana_->Cerrada());
  EXPECT_FALSE(ventana_->isVisible());
  // CP1252: the accented letters are one byte each.
  EXPECT_EQ(Leer("ImportDeMarcas.ini"),
            "[TextoDeFiltro]\r\nNombre='\xCD\xF1igo'\r\n[/TextoDeFiltro]\r\n"
            "[Conceptos]\r\nHC*65535**7*Horas Comunes*0\r\nHE*65280**2*Horas Extras*0\r\n[/Conceptos]\r\n"
            "[Configura]\r\n2\r\n[/Configura]\r\n"
            "[Separador]\r\n;\r\n[/Separador]\r\n"
            "[LiqHCaMensuales]\r\nNO\r\n[/LiqHCaMensuales]\r\n"
            "[NoImpCantEn0]\r\nSI\r\n[/NoImpCantEn0]\r\n"
            "[SoloDatosDeRel]\r\nNO\r\n[/SoloDatosDeRel]\r\n"
            "[TipoArchivo]\r\nAF\r\n[/TipoArchivo]\r\n"
            "[ConfDeAF]\r\n1*1*6\r\n2*8*3\r\n3*12*9\r\n4*22*30\r\n5*-1*0\r\n[/ConfDeAF]\r\n"
            "[FactMultiplica]\r\n/60\r\n[/FactMultiplica]\r\n"
            "[CodTipoNumerico]\r\nSI\r\n[/CodTipoNumerico]\r\n"
            "[TotalizarConc]\r\nSI\r\n[/TotalizarConc]\r\n"
            "[SumarAyaIng]\r\nNO\r\n[/SumarAyaIng]\r\n"
            "[ImportarCuotas]\r\nNO\r\n[/ImportarCuotas]\r\n"
            "[TextoTipoCuota]\r\nRef:[DatoExtra]\r\n[/TextoTipoCuota]\r\n"
            "[CCDefEnArch]\r\nSI\r\n[/CCDefEnArch]\r\n"
            "[CCEnDE]\r\nNO\r\n[/CCEnDE]\r\n"
            "[MismoCodigoDeOrsa]\r\nNO\r\n[/MismoCodigoDeOrsa]");
}

TEST_F(Cierre, TheWindowsOwnCloseSavesToo) {
  AbrirSinBase();
  Escribir(Caja("txtFormulaSGN"), "*3");
  ventana_->close();
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[FactMultiplica]\r\n*3\r\n"), std::string::npos);
}

TEST_F(Cierre, SoDoesQuittingTheProgram) {
  AbrirSinBase();
  Escribir(Caja("txtFormulaSGN"), "*4");
  QApplication::closeAllWindows();
  EXPECT_TRUE(ventana_->Cerrada());
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[FactMultiplica]\r\n*4\r\n"), std::string::npos);
}

TEST_F(Cierre, ClosingTwiceSavesOnce) {
  AbrirSinBase();
  ventana_->close();
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  ventana_->close();
  EXPECT_FALSE(std::filesystem::exists(Ruta("ImportDeMarcas.ini")));
}

// The relations are kept in the base as well when they come from there.
TEST_F(Cierre, TheRelationsGoToTheBase) {
  Demo();
  Escribir("ImportDeMarcas.ini",
           Leer("ImportDeMarcas.ini") + "\r\n[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]");
  ASSERT_TRUE(Iniciar(demo_.referencia));
  Mostrar();
  ASSERT_EQ(Grilla("GridRelaciones")->model()->rowCount(), 0);
  Combo("cmbConceptos")
      ->setCurrentIndex(Combo("cmbConceptos")->findText(QStringLiteral("HE - "), Qt::MatchStartsWith));
  Escribir(Caja("txtTipo"), "02,EX");
  Pulsar("cbAgrQuit_0");
  Pulsar("cbSalir");
  EXPECT_EQ(Consulta("Select idDE From DatExtDatos Where idTDE=77"), "02,EX");
}

// Closing while the lines are being read: the load stops, then the window goes, by itself.
TEST_F(Cierre, DuringALoadItWaitsForItsEnd) {
  Demo();
  ASSERT_TRUE(Iniciar(demo_.referencia));
  Mostrar();
  Cargar("1;1;8");
  std::string texto;
  for (int i = 0; i < 500; ++i) texto += "1;1;8\r\n";
  Escribir("x.txt", texto + "1;1;8");
  Escribir(Caja("txtFormulaSGN"), "*5");
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces != 10) return;
    EXPECT_FALSE(ventana_->close());
    EXPECT_FALSE(ventana_->Cerrada());
  };
  Pulsar("cbActualizar");
  EXPECT_LT(veces, 30) << "the load was told to stop";
  eventos_.al_correr = nullptr;
  Esperar();
  EXPECT_TRUE(ventana_->Cerrada());
  EXPECT_FALSE(ventana_->isVisible());
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[FactMultiplica]\r\n*5\r\n"), std::string::npos);
}

TEST_F(Cierre, TheTimerNeverTicksAfterwards) {
  AbrirSinBase();
  Escribir(Caja("txtSeparador"), ";");
  auto* timer = ventana_->findChild<QTimer*>(QStringLiteral("Timer1"));
  ASSERT_TRUE(timer->isActive());
  const unsigned antes = programa_->Ver().revision.previa;
  ventana_->close();
  EXPECT_FALSE(timer->isActive());
  timer->start();  // not even if it did
  QTest::qWait(600);
  EXPECT_EQ(programa_->Ver().revision.previa, antes);
}

TEST_F(Cierre, NothingIsDoneAfterwards) {
  AbrirSinBase();
  ventana_->close();
  // Not one box: no handler reaches the program.
  for (auto* boton : ventana_->findChildren<QAbstractButton*>()) boton->click();
  EXPECT_TRUE(cajas_.dialogos.empty());
}

// The desktop asks before it ends its session. Who emits cannot be made here, and nobody looks at the
// manager.
void PedirSesion(void (QGuiApplication::*pedido)(QSessionManager&)) {
  (qGuiApp->*pedido)(reinterpret_cast<QSessionManager&>(*qGuiApp));
}

TEST_F(Cierre, LoggingOffSavesAsClosingDoes) {
  for (const auto pedido : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest}) {
    AbrirSinBase();
    Escribir(Caja("txtFormulaSGN"), "*6");
    PedirSesion(pedido);
    EXPECT_NE(Leer("ImportDeMarcas.ini").find("[FactMultiplica]\r\n*6\r\n"), std::string::npos);
    // The session may go on.
    EXPECT_FALSE(ventana_->Cerrada());
    EXPECT_TRUE(ventana_->isVisible());
    Escribir(Caja("txtFormulaSGN"), "*7");
    ventana_->close();
    EXPECT_NE(Leer("ImportDeMarcas.ini").find("[FactMultiplica]\r\n*7\r\n"), std::string::npos);
    PedirSesion(pedido);  // closed: nothing more
    std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
    PedirSesion(pedido);
    EXPECT_FALSE(std::filesystem::exists(Ruta("ImportDeMarcas.ini")));
  }
}

TEST_F(Cierre, TheEndOfTheSystemsSessionClosesWithoutABox) {
  AbrirSinBase();
  Escribir(Caja("txtFormulaSGN"), "*8");
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  std::filesystem::create_directories(
      Ruta("ImportDeMarcas.ini"));  // it cannot be stored, and that is no time for boxes
  ventana_->Terminar();
  EXPECT_TRUE(ventana_->Cerrada());
  bool aparte = false;
  for (const auto& entrada : std::filesystem::directory_iterator(carpeta_))
    aparte = aparte || entrada.path().filename().string().starts_with("ImportDeMarcas sin guardar");
  EXPECT_TRUE(aparte);
}

}  // namespace
