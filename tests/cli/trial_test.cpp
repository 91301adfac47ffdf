// A trial says of each line what the import would say, and the base is the same to the byte, also when it may
// only be read: because another program writes in it, or because the file and its folder forbid it.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/text.h"
#include "cli/codigos.h"
#include "mesa.h"

namespace {

namespace fs = std::filesystem;

class Trial : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { ASSERT_EQ(mesa_.Demo().codigo, cli::kTodo); }
  static prueba::Salida Correr(const prueba::Mesa& mesa, const std::string& verbo) {
    return mesa.Correr({verbo, "--base", mesa.Ruta("ConfBase.cfg"), "--archivo", mesa.Ruta("horas.txt"),
                        "--mes", "2026-10", "--hoy", "2026-10-20"});
  }
  // What the import itself says, on a base of its own.
  static prueba::Salida Importada() {
    const prueba::Mesa otra(GetParam());
    EXPECT_EQ(otra.Demo().codigo, cli::kTodo);
    return Correr(otra, "importar");
  }
  std::string Bytes() const { return *base::ReadWholeFile(mesa_.Base()); }
  void Comparar(const prueba::Salida& prueba_) const {
    const prueba::Salida real = Importada();
    EXPECT_EQ(prueba_.out, real.out);
    EXPECT_EQ(prueba_.codigo, real.codigo) << prueba_.err;
    EXPECT_FALSE(base::FileExists(mesa_.Base() + ".corridas"));
  }

  const prueba::Mesa mesa_{GetParam()};
};

TEST_P(Trial, OnABaseThatMayBeWritten) {
  const std::string antes = Bytes();
  const prueba::Salida s = Correr(mesa_, "revisar");
  Comparar(s);
  EXPECT_FALSE(base::Contains(s.err, "copia en memoria"));
  EXPECT_EQ(Bytes(), antes);
}

TEST_P(Trial, OnABaseThatAnotherProgramWrites) {
  const auto otro = mesa_.Abrir();
  otro->BeginTrans();
  otro->Execute("Update valores Set Valor='9' Where codigo='SMN'");
  const std::string antes = Bytes();
  const prueba::Salida s = Correr(mesa_, "revisar");
  Comparar(s);
  EXPECT_TRUE(base::Contains(s.err, "Se revisa sobre una copia en memoria: nada se escribe en la base."))
      << s.err;
  EXPECT_EQ(Bytes(), antes);
  // Importing is another matter.
  EXPECT_EQ(Correr(mesa_, "importar").codigo, cli::kSinBase);
  EXPECT_EQ(Bytes(), antes);
  otro->RollbackTrans();
}

// Who may write in spite of permissions tries the base itself; the outcome is the same.
TEST_P(Trial, OnAFileAndAFolderThatMayOnlyBeRead) {
  const std::string antes = Bytes();
  constexpr auto kEscribir = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(mesa_.Base(), kEscribir, fs::perm_options::remove);
  fs::permissions(mesa_.Carpeta(), kEscribir, fs::perm_options::remove);
  const prueba::Salida s = Correr(mesa_, "revisar");
  fs::permissions(mesa_.Carpeta(), fs::perms::owner_write, fs::perm_options::add);
  Comparar(s);
  EXPECT_EQ(Bytes(), antes);
}

INSTANTIATE_TEST_SUITE_P(Motores, Trial, ::testing::Values("mdb", "sqlite"),
                         [](const auto& caso) { return std::string(caso.param); });

}  // namespace
