// What the band over the grid says, and for how long.
#include "app/conexion_que_falla.h"
#include "engine_mdb/mdb_connection.h"
#include "gui/banco_gui.h"
#include "gui/cinta.h"

namespace {

class Avisos : public prueba::Ventana {
 protected:
  std::string Cinta() const {
    const auto* cinta = static_cast<gui::Cinta*>(Hallar<QLabel>("lblAviso"));
    EXPECT_EQ(cinta->isVisible(), !cinta->text().isEmpty());
    if (cinta->isVisible()) {
      EXPECT_GE(cinta->height(), cinta->fontMetrics().height());
      EXPECT_LT(cinta->geometry().bottom(), Hallar<QWidget>("GridAImportar")->y());
      EXPECT_GT(cinta->y(), Hallar<QWidget>("franja")->geometry().bottom());
    }
    return gui::A(cinta->text());
  }
};

TEST_F(Avisos, NothingToSayTakesNoRoom) {
  Abrir();
  EXPECT_EQ(Cinta(), "");
  const QRect franja = Hallar<QWidget>("franja")->geometry();
  EXPECT_EQ(Hallar<QWidget>("barra_de_vista")->y(), franja.y() + franja.height() + gui::Px(180));
}

TEST_F(Avisos, ABaseThatAnotherProgramHasSaysSo) {
  Demo();
  auto otro = engine_mdb::Open(Ruta("Personal.mdb"));
  cajas_.aceptar_todo = true;
  ASSERT_TRUE(Iniciar(demo_.referencia + "*" + demo_.archivo));
  Mostrar();
  EXPECT_EQ(Cinta(), programa_->Ver().solo_lectura);
  EXPECT_NE(Cinta(), "");
  EXPECT_EQ(gui::A(Hallar<QLabel>("LblEmpresa")->text()), "Empresa: " + demo_.referencia);
  EXPECT_FALSE(Hallar<QPushButton>("cbImportar")->isEnabled());
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblEstado")->text()), programa_->Ver().solo_lectura);
  otro.reset();
  Pulsar("cbActualizar");
  EXPECT_EQ(Cinta(), "");
  EXPECT_TRUE(Hallar<QPushButton>("cbImportar")->isEnabled());
  cajas_.respuestas = {true};
  Pulsar("cbImportar");
  EXPECT_GT(programa_->Ver().importacion.importadas, 0U);
}

TEST_F(Avisos, ABaseThatFailedSaysWhatToDo) {
  const auto desperfecto = std::make_shared<prueba::Desperfecto>();
  conectar_ = prueba::ConectarQueFalla(desperfecto);
  AbrirCargada();
  desperfecto->falla = prueba::Falla::Almacenamiento;
  cajas_.esperadas = {"Falló la base: no contesta\r\nNo se importa nada hasta volver a leerla entera."};
  Hallar<QDateEdit>("ObjSelMes")->setDate(QDate(2026, 9, 1));
  EXPECT_EQ(Cinta(), "Falló la base: no contesta\nNo se importa nada hasta leerla de nuevo con Actualizar.");
  cajas_.esperadas = {
      "Falló la base: no contesta\r\nNo se importa nada hasta leerla de nuevo con Actualizar."};
  Pulsar("cbImportar");
  EXPECT_TRUE(cajas_.preguntas.empty());
  desperfecto->falla = prueba::Falla::Ninguna;
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Pulsar("cbActualizar");
  EXPECT_EQ(Cinta(), "");
}

}  // namespace
