// Pictures of the window on the demo base, for the manual: capturas FOLDER, or capturas --una FILE for the
// loaded window alone. The month and the day are fixed, so that the pictures change only when the window
// does.
#include <QDir>
#include <QFontDatabase>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <functional>
#include <memory>

#include "app/carpeta_demo.h"
#include "app/conector.h"
#include "base/file.h"
#include "base/standard_streams.h"
#include "gui/aplicacion.h"
#include "gui/dialogos.h"
#include "gui/frm_principal2.h"
#include "gui/texto.h"

namespace {

// Every box is answered with its first button; a picture of the question is kept when a file is named.
class Respuestas final : public ports::Prompts, public ports::FilePicker {
 public:
  bool Mostrar(const ports::Aviso&) override { return true; }
  bool Confirmar(const std::string& texto) override {
    if (foto_.isEmpty()) return true;
    QTimer::singleShot(200, [this] {
      QWidget* caja = QApplication::activeModalWidget();
      guardado_ = caja != nullptr && caja->grab().save(foto_);
      if (auto* mensaje = qobject_cast<QMessageBox*>(caja)) mensaje->button(QMessageBox::Yes)->click();
    });
    const bool si = gui::Dialogos().Confirmar(texto);
    foto_.clear();
    return si && guardado_;
  }
  std::string AbrirArchivo(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::int32_t ElegirColor(std::int32_t inicial) override { return inicial; }
  void Fotografiar(const QString& archivo) { foto_ = archivo; }

 private:
  QString foto_;
  bool guardado_ = false;
};

// A picture in the middle of a load.
class BombaConFoto final : public ports::EventPump {
 public:
  void DoEvents() override {
    if (al_correr) al_correr();
  }
  std::function<void()> al_correr;
};

// The window on a demo of its own, in a folder of that name under the current one.
class Escena {
 public:
  // `ajena`: another program has the base.
  Escena(const QString& carpeta, const gui::Tema& tema, bool con_archivo, bool ajena = false) {
    gui::Aplicacion::Vestir(tema);
    demo_ = app::CrearCarpetaDemo(gui::A(carpeta), base::FechaDe(2026, 11, 1), reloj_);
    if (ajena) otro_ = app::AbrirReferencia(demo_.referencia, reloj_);
    app::Arranque arranque;
    arranque.carpeta = gui::A(carpeta);
    arranque.version = IDM_VERSION;
    programa_ = std::make_unique<app::Programa>(app::Puertos{cajas_, cajas_, reloj_, &bomba_}, arranque);
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, tema, nullptr);
    ventana_->resize(1280, 720);
    ventana_->Iniciar(gui::De(demo_.referencia + (con_archivo ? "*" + demo_.archivo : "")));
    ventana_->show();
    ventana_->activateWindow();
    Esperar();
  }

  bool Foto(const QString& archivo) {
    Esperar();
    if (ventana_->grab().save(archivo)) return true;
    QTextStream(stderr) << "cannot write " << archivo << '\n';
    return false;
  }
  void Pulsar(const char* nombre) {
    ventana_->findChild<QPushButton*>(QLatin1String(nombre))->click();
    Esperar();
  }
  // Loads many lines and keeps a picture of the window at the middle.
  bool FotoCargando(const QString& archivo) {
    std::string lineas;
    for (int i = 0; i < 2000; ++i) lineas += "7001;HC;8\r\n";
    if (!base::EscribirArchivo("marcas_noviembre.txt", lineas + "7001;HC;8")) return false;
    const std::string antes = programa_->Ver().txtRuta.text;
    bool bien = false;
    int veces = 0;
    bomba_.al_correr = [&] {
      if (++veces == 2400) bien = ventana_->grab().save(archivo);
    };
    programa_->Archivo().txtRuta_Change("marcas_noviembre.txt");
    programa_->Lineas().CargarDatos();
    bomba_.al_correr = nullptr;
    programa_->Archivo().txtRuta_Change(antes);
    programa_->Lineas().CargarDatos();
    return bien;
  }
  template <typename T>
  T* Hallar(const char* nombre) {
    return ventana_->findChild<T*>(QLatin1String(nombre));
  }
  Respuestas& Cajas() { return cajas_; }

 private:
  static void Esperar() {
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
  }

  ports::RelojFijo reloj_{base::FechaDe(2026, 11, 20)};
  BombaConFoto bomba_;
  Respuestas cajas_;
  app::CarpetaDemo demo_;
  app::Conexion otro_;
  std::unique_ptr<app::Programa> programa_;
  std::unique_ptr<gui::FrmPrincipal2> ventana_;
};

bool FotosClaras(const QString& destino) {
  bool bien = Escena(QStringLiteral("vacia"), gui::Tema::Claro(), false).Foto(destino + "/ventana-vacia.png");
  bien = Escena(QStringLiteral("ajena"), gui::Tema::Claro(), true, true).Foto(destino + "/aviso.png") && bien;
  Escena e(QStringLiteral("demo"), gui::Tema::Claro(), true);
  bien = e.Foto(destino + "/ventana-cargada.png") && bien;
  bien = e.FotoCargando(destino + "/cargando.png") && bien;
  e.Pulsar("cbConfigurar_0");
  bien = e.Foto(destino + "/panel-formato.png") && bien;
  e.Pulsar("cbConfigurar_1");
  e.Hallar<QComboBox>("cmbConceptos")->setCurrentIndex(6);
  e.Hallar<QLineEdit>("txtTipo")->setText(QStringLiteral("HX,99"));
  e.Hallar<QTableView>("GridRelaciones")->selectRow(2);
  bien = e.Foto(destino + "/panel-relaciones.png") && bien;
  e.Pulsar("cbConfigurar_1");
  e.Cajas().Fotografiar(destino + "/confirmacion.png");
  e.Pulsar("cbImportar");
  return e.Foto(destino + "/ventana-importada.png") && bien;
}

bool FotosOscuras(const QString& destino) {
  bool bien = Escena(QStringLiteral("ajena_oscura"), gui::Tema::Oscuro(), true, true)
                  .Foto(destino + "/aviso-oscuro.png");
  Escena e(QStringLiteral("oscura"), gui::Tema::Oscuro(), true);
  e.Pulsar("cbImportar");
  bien = e.Foto(destino + "/ventana-oscura.png") && bien;
  e.Pulsar("cbConfigurar_0");
  bien = e.Foto(destino + "/panel-formato-oscuro.png") && bien;
  e.Pulsar("cbConfigurar_1");
  return e.Foto(destino + "/panel-relaciones-oscuro.png") && bien;
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  gui::Aplicacion aplicacion(argc, argv);
  const QStringList args = QApplication::arguments();
  const bool una = args.value(1) == QLatin1String("--una");
  const QString destino = QDir::current().absoluteFilePath(args.value(una ? 2 : 1));
  if (args.size() != (una ? 3 : 2)) {
    QTextStream(stderr) << "usage: capturas FOLDER | capturas --una FILE\n";
    return 64;
  }
  // A letter that is the same on every machine that has it.
  for (const char* letra : {"Open Sans", "Noto Sans", "DejaVu Sans"})
    if (QFontDatabase::hasFamily(QLatin1String(letra))) {
      QApplication::setFont(QFont(QLatin1String(letra), 9));
      break;
    }
  QTemporaryDir temporal;
  if (!temporal.isValid() || !QDir::setCurrent(temporal.path())) return 74;
  if (una) return Escena(QStringLiteral("demo"), gui::Tema::Claro(), true).Foto(destino) ? 0 : 74;
  if (!QDir().mkpath(destino)) return 74;
  return FotosClaras(destino) && FotosOscuras(destino) ? 0 : 74;
}
