// Pictures of the window on the demo base, for the manual: screenshots FOLDER, or screenshots --one FILE for
// the loaded window alone, or screenshots --size WIDTHxHEIGHT[,dark] FOLDER to look at it in that size (with
// QT_SCALE_FACTOR, in that scale). The month and the day are fixed, so that the pictures change only when the
// window does.
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
class Answers final : public ports::Prompts, public ports::FilePicker {
 public:
  bool Show(const ports::Notice&) override { return true; }
  bool Confirm(const std::string& text) override {
    if (snapshot_.isEmpty()) return true;
    QTimer::singleShot(200, [this] {
      QWidget* box = QApplication::activeModalWidget();
      saved_ = box != nullptr && box->grab().save(snapshot_);
      if (auto* message = qobject_cast<QMessageBox*>(box)) message->button(QMessageBox::Yes)->click();
    });
    const bool yes = gui::Dialogos().Confirm(text);
    snapshot_.clear();
    return yes && saved_;
  }
  std::string PickFile(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::int32_t PickColor(std::int32_t initial) override { return initial; }
  void SnapshotNext(const QString& file) { snapshot_ = file; }

 private:
  QString snapshot_;
  bool saved_ = false;
};

// A picture in the middle of a load.
class SnapshotPump final : public ports::EventPump {
 public:
  void DoEvents() override {
    if (on_run) on_run();
  }
  std::function<void()> on_run;
};

// The window on a demo of its own, in a folder of that name under the current one.
class Scene {
 public:
  // `foreign`: another program has the base.
  Scene(const QString& folder, const gui::Tema& theme, bool with_file, bool foreign = false) {
    gui::Aplicacion::Vestir(theme);
    demo_ = app::CrearCarpetaDemo(gui::A(folder), base::MakeDate(2026, 11, 1), clock_);
    if (foreign) other_ = app::AbrirReferencia(demo_.referencia, clock_);
    app::Arranque startup;
    startup.carpeta = gui::A(folder);
    startup.version = IDM_VERSION;
    program_ = std::make_unique<app::Programa>(app::Puertos{boxes_, boxes_, clock_, &pump_}, startup);
    window_ = std::make_unique<gui::FrmPrincipal2>(*program_, theme, nullptr);
    window_->resize(1280, 720);
    window_->Iniciar(gui::De(demo_.referencia + (with_file ? "*" + demo_.archivo : "")));
    window_->show();
    window_->activateWindow();
    Wait();
  }

  void Resize(const QSize& size) {
    window_->resize(size);
    Wait();
  }
  bool Snapshot(const QString& file) {
    Wait();
    if (window_->grab().save(file)) return true;
    QTextStream(stderr) << "cannot write " << file << '\n';
    return false;
  }
  void Press(const char* name) {
    window_->findChild<QPushButton*>(QLatin1String(name))->click();
    Wait();
  }
  // Loads many lines and keeps a picture of the window at the middle.
  bool SnapshotLoading(const QString& file) {
    std::string lines;
    for (int i = 0; i < 2000; ++i) lines += "7001;HC;8\r\n";
    if (!base::WriteWholeFile("marcas_noviembre.txt", lines + "7001;HC;8")) return false;
    const std::string before = program_->Ver().txtRuta.text;
    bool ok = false;
    int times = 0;
    pump_.on_run = [&] {
      if (++times == 2400) ok = window_->grab().save(file);
    };
    program_->Archivo().txtRuta_Change("marcas_noviembre.txt");
    program_->Lineas().CargarDatos();
    pump_.on_run = nullptr;
    program_->Archivo().txtRuta_Change(before);
    program_->Lineas().CargarDatos();
    return ok;
  }
  template <typename T>
  T* Find(const char* name) {
    return window_->findChild<T*>(QLatin1String(name));
  }
  Answers& Boxes() { return boxes_; }

 private:
  static void Wait() {
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
  }

  ports::FixedClock clock_{base::MakeDate(2026, 11, 20)};
  SnapshotPump pump_;
  Answers boxes_;
  app::CarpetaDemo demo_;
  app::Conexion other_;
  std::unique_ptr<app::Programa> program_;
  std::unique_ptr<gui::FrmPrincipal2> window_;
};

bool LightSnapshots(const QString& target) {
  bool ok = Scene(QStringLiteral("vacia"), gui::Tema::Claro(), false).Snapshot(target + "/ventana-vacia.png");
  ok = Scene(QStringLiteral("ajena"), gui::Tema::Claro(), true, true).Snapshot(target + "/aviso.png") && ok;
  Scene e(QStringLiteral("demo"), gui::Tema::Claro(), true);
  ok = e.Snapshot(target + "/ventana-cargada.png") && ok;
  ok = e.SnapshotLoading(target + "/cargando.png") && ok;
  e.Press("cbConfigurar_0");
  ok = e.Snapshot(target + "/panel-formato.png") && ok;
  e.Press("cbConfigurar_1");
  e.Find<QComboBox>("cmbConceptos")->setCurrentIndex(6);
  e.Find<QLineEdit>("txtTipo")->setText(QStringLiteral("HX,99"));
  e.Find<QTableView>("GridRelaciones")->selectRow(2);
  ok = e.Snapshot(target + "/panel-relaciones.png") && ok;
  e.Press("cbConfigurar_1");
  e.Boxes().SnapshotNext(target + "/confirmacion.png");
  e.Press("cbImportar");
  return e.Snapshot(target + "/ventana-importada.png") && ok;
}

bool DarkSnapshots(const QString& target) {
  bool ok = Scene(QStringLiteral("ajena_oscura"), gui::Tema::Oscuro(), true, true)
                .Snapshot(target + "/aviso-oscuro.png");
  Scene e(QStringLiteral("oscura"), gui::Tema::Oscuro(), true);
  e.Press("cbImportar");
  ok = e.Snapshot(target + "/ventana-oscura.png") && ok;
  e.Press("cbConfigurar_0");
  ok = e.Snapshot(target + "/panel-formato-oscuro.png") && ok;
  e.Press("cbConfigurar_1");
  return e.Snapshot(target + "/panel-relaciones-oscuro.png") && ok;
}

// The window in one size: loaded, with each panel, imported.
bool SizeSnapshots(const QString& size, const QString& target) {
  const QStringList parts = size.section(QLatin1Char(','), 0, 0).split(QLatin1Char('x'));
  const bool dark = size.endsWith(QLatin1String(",dark"));
  Scene e(QStringLiteral("demo"), dark ? gui::Tema::Oscuro() : gui::Tema::Claro(), true);
  e.Resize({parts.value(0).toInt(), parts.value(1).toInt()});
  bool ok = e.Snapshot(target + "/cargada.png");
  e.Press("cbConfigurar_0");
  ok = e.Snapshot(target + "/formato.png") && ok;
  e.Press("cbConfigurar_1");
  ok = e.Snapshot(target + "/relaciones.png") && ok;
  e.Press("cbConfigurar_1");
  e.Press("cbImportar");
  return e.Snapshot(target + "/importada.png") && ok;
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  gui::Aplicacion application(argc, argv);
  const QStringList args = QApplication::arguments();
  const bool one = args.value(1) == QLatin1String("--one");
  const bool sized = args.value(1) == QLatin1String("--size");
  const QString target = QDir::current().absoluteFilePath(args.value(sized ? 3 : one ? 2 : 1));
  if (args.size() != (sized ? 4 : one ? 3 : 2)) {
    QTextStream(stderr) << "usage: screenshots FOLDER | screenshots --one FILE\n"
                           "     | screenshots --size WIDTHxHEIGHT[,dark] FOLDER\n";
    return 64;
  }
  // A letter that is the same on every machine that has it.
  for (const char* font : {"Open Sans", "Noto Sans", "DejaVu Sans"})
    if (QFontDatabase::hasFamily(QLatin1String(font))) {
      QApplication::setFont(QFont(QLatin1String(font), 9));
      break;
    }
  QTemporaryDir scratch;
  if (!scratch.isValid() || !QDir::setCurrent(scratch.path())) return 74;
  if (one) return Scene(QStringLiteral("demo"), gui::Tema::Claro(), true).Snapshot(target) ? 0 : 74;
  if (!QDir().mkpath(target)) return 74;
  if (sized) return SizeSnapshots(args.value(2), target) ? 0 : 74;
  return LightSnapshots(target) && DarkSnapshots(target) ? 0 : 74;
}
