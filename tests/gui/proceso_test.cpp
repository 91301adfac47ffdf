// The program itself, for what only a process can show.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "app/carpeta_demo.h"
#include "app/verificar.h"
#include "base/file.h"
#include "support/temp_folder.h"

#ifdef __linux__
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Proceso : public ::testing::Test {
 protected:
  void SetUp() override {
    const ports::FixedClock reloj(base::MakeDate(2026, 10, 20));
    demo_ =
        app::CrearCarpetaDemo(base::JoinPath(carpeta_.Folder(), "demo"), base::MakeDate(2026, 10, 1), reloj);
  }
  std::string Ajustes() const {
    return base::ReadWholeFile(carpeta_.Path("ImportDeMarcas.ini")).value_or("");
  }

  // Starts the window in the temporary folder; `cerradas`, bits 1, 2, 4: the standard streams that it does
  // not get.
  pid_t Lanzar(const std::string& linea, int cerradas = 0) {
    const pid_t hijo = fork();
    if (hijo < 0) throw std::runtime_error("no fork");
    if (hijo == 0) {
      setenv("QT_QPA_PLATFORM", "offscreen", 1);
      setenv("IMPORTDEMARCAS_CARPETA", carpeta_.Folder().c_str(), 1);
      setenv("XDG_CONFIG_HOME", carpeta_.Folder().c_str(), 1);
      for (int i = 0; i < 3; ++i) {
        if ((cerradas >> i & 1) != 0)
          close(i);
        else
          dup2(open("/dev/null", O_RDWR | O_CLOEXEC), i);
      }
      execl(IDM_GUI_PROGRAM, IDM_GUI_PROGRAM, linea.c_str(), nullptr);
      _exit(127);
    }
    return hijo;
  }
  // The start has read its settings: it makes the file when there is none.
  void EsperarArranque() const {
    for (int i = 0; i < 600 && !base::FileExists(carpeta_.Path("ImportDeMarcas.ini")); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  // It holds the signals back: before that they would simply end it.
  static void EsperarSenales(pid_t hijo) {
    const std::string estado = "/proc/" + std::to_string(hijo) + "/status", clave = "SigBlk:\t";
    for (int i = 0; i < 600; ++i) {
      const std::string texto = base::ReadWholeFile(estado).value_or("");
      const std::size_t donde = texto.find(clave);
      if (donde != std::string::npos && std::stoull(texto.substr(donde + clave.size()), nullptr, 16) != 0)
        return;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
  static int Terminar(pid_t hijo, int senal) {
    kill(hijo, senal);
    int estado = 0;
    if (waitpid(hijo, &estado, 0) != hijo) return -1;
    return WIFEXITED(estado) ? WEXITSTATUS(estado) : 1000 + WTERMSIG(estado);
  }

  support::TempFolder carpeta_;
  app::CarpetaDemo demo_;
};

TEST_F(Proceso, TheSystemsRequestToEndSavesAsClosingDoes) {
  for (const int senal : {SIGTERM, SIGHUP}) {
    std::filesystem::remove(carpeta_.Path("ImportDeMarcas.ini"));
    const pid_t hijo = Lanzar(demo_.referencia);
    EsperarArranque();
    EXPECT_EQ(Terminar(hijo, senal), 0);
    EXPECT_NE(Ajustes().find("[MismoCodigoDeOrsa]\r\nNO\r\n"), std::string::npos) << Ajustes();
    EXPECT_NE(Ajustes().find("[Conceptos]\r\nHC*65535**7*Horas Comunes*0\r\n"), std::string::npos);
  }
}

// A box is open, with nobody before it.
TEST_F(Proceso, AlsoWithABoxOpen) {
  const pid_t hijo = Lanzar("nada*");
  EsperarArranque();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_EQ(Terminar(hijo, SIGTERM), 0);
  EXPECT_NE(Ajustes().find("[MismoCodigoDeOrsa]\r\nNO\r\n"), std::string::npos) << Ajustes();
}

// What a library prints must not go into the base.
TEST_F(Proceso, WithoutStandardStreamsTheBaseStaysWhole) {
  const std::string base = base::JoinPath(base::FolderOf(demo_.referencia), "Personal.mdb");
  const pid_t hijo = Lanzar(demo_.referencia, 7);
  EsperarArranque();
  EXPECT_EQ(Terminar(hijo, SIGTERM), 0);
  EXPECT_TRUE(app::VerificarArchivo(base).informe.IsSound());
}

TEST_F(Proceso, UnreadableSettingsEndItWithAnError) {
  std::filesystem::create_directories(carpeta_.Path("ImportDeMarcas.ini/dentro"));
  const pid_t hijo = Lanzar(demo_.referencia);
  EsperarSenales(hijo);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));  // its box is open
  EXPECT_EQ(Terminar(hijo, SIGTERM), 74);
  EXPECT_TRUE(std::filesystem::is_directory(carpeta_.Path("ImportDeMarcas.ini/dentro")));
}

}  // namespace

#endif
