// Whoever starts the program may have closed its input, its output or its error output. What is opened next
// takes their place, and it must not be the base: what is printed would be written into it.
#include <gtest/gtest.h>

#include "app/verificar.h"
#include "cli/codigos.h"
#include "mesa.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32
TEST(Streams, ClosedByTheCaller) { GTEST_SKIP() << "needs fork"; }
#else

// Bits: 1 input, 2 output, 4 error output.
using Closed = int;

struct Ended {
  int code = -1;
  std::string out, err;  // of those that are open
};

class Streams : public ::testing::TestWithParam<std::tuple<const char*, Closed>> {
 protected:
  static Ended Start(const prueba::Mesa& desk, const std::vector<std::string>& args, Closed closed) {
    const std::string out = desk.Ruta("out.txt"), err = desk.Ruta("err.txt");
    std::vector<std::string> copy = {IDM_CLI};
    copy.insert(copy.end(), args.begin(), args.end());
    std::vector<char*> pointers;
    for (std::string& a : copy) pointers.push_back(a.data());
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no fork");
    if (child == 0) {
      dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
      dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666), STDOUT_FILENO);
      dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666), STDERR_FILENO);
      for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if ((closed >> stream & 1) != 0) close(stream);
      execv(IDM_CLI, pointers.data());
      _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    Ended run;
    if (WIFEXITED(status)) run.code = WEXITSTATUS(status);
    run.out = base::ReadWholeFile(out).value_or("");
    run.err = base::ReadWholeFile(err).value_or("");
    return run;
  }
  static std::vector<std::string> Import(const prueba::Mesa& desk, const char* verb) {
    return {verb,
            "--base",
            desk.Ruta("ConfBase.cfg"),
            "--archivo",
            desk.Ruta("horas.txt"),
            "--mes",
            "2026-10",
            "--ajustes",
            desk.Ruta("ImportDeMarcas.ini"),
            "--hoy",
            "2026-10-20"};
  }
  static void ExpectSound(const prueba::Mesa& desk, const std::string& first) {
    const std::string now = base::ReadBeginning(desk.Base(), first.size()).value_or("");
    EXPECT_EQ(now, first);
    if (desk.Base().ends_with(".mdb")) {
      const app::Verificacion v = app::VerificarArchivo(desk.Base());
      EXPECT_EQ(v.acceso, app::Acceso::Bien) << v.motivo;
      EXPECT_TRUE(v.informe.IsSound());
    }
  }
};

TEST_P(Streams, ClosedByTheCaller) {
  const auto [engine, closed] = GetParam();
  const prueba::Mesa model(engine);
  ASSERT_EQ(model.Demo().codigo, cli::kTodo);
  const std::string before = model.Filas();
  ASSERT_EQ(model.Correr(Import(model, "importar")).codigo, cli::kAlgunaNo);
  const std::string after = model.Filas();
  ASSERT_NE(before, after);

  const prueba::Mesa desk(engine);
  ASSERT_EQ(desk.Demo().codigo, cli::kTodo);
  // What an engine puts at the start of its file and no import changes.
  const std::string first = base::ReadBeginning(desk.Base(), 16).value_or("");
  const bool no_output = (closed & 2) != 0;

  Ended run = Start(desk, Import(desk, "revisar"), closed);
  EXPECT_EQ(run.code, no_output ? cli::kEntradaSalida : cli::kAlgunaNo) << run.err;
  EXPECT_EQ(desk.Filas(), before);
  ExpectSound(desk, first);

  run = Start(desk, Import(desk, "importar"), closed);
  EXPECT_EQ(run.code, no_output ? cli::kEntradaSalida : cli::kAlgunaNo) << run.err;
  EXPECT_EQ(desk.Filas(), after);
  ExpectSound(desk, first);
  if (!no_output) {
    EXPECT_NE(run.out.find("importadas: 48 "), std::string::npos) << run.out;
  } else if ((closed & 4) == 0) {  // the quantities stand: whoever reads the error must not import them again
    EXPECT_NE(run.err.find("No se pudo escribir el resultado. La importación está hecha: no la repita."),
              std::string::npos)
        << run.err;
  }
}

// A query prints what the base holds, and that is what would have been written over it.
TEST_P(Streams, AQueryPrintsNothingIntoTheBase) {
  const auto [engine, closed] = GetParam();
  const prueba::Mesa desk(engine);
  ASSERT_EQ(desk.Demo().codigo, cli::kTodo);
  const std::string bytes = base::ReadWholeFile(desk.Base()).value_or("");
  for (const char* sql : {"Select * From Personas", "esto no es una consulta"})
    Start(desk, {"consulta", "--base", desk.Base(), "--escribir", sql}, closed);
  EXPECT_TRUE(base::ReadWholeFile(desk.Base()) == bytes);
  const Ended run = Start(desk, {"consulta", "--base", desk.Base(), "Select * From Personas"}, closed);
  EXPECT_EQ(run.code, (closed & 2) != 0 ? cli::kEntradaSalida : cli::kTodo) << run.err;
  EXPECT_EQ(run.err, closed == 2 || closed == 3 ? "No se pudo escribir el resultado\n" : "");
}

std::string NameOf(const ::testing::TestParamInfo<std::tuple<const char*, Closed>>& info) {
  std::string name = std::get<0>(info.param);
  const char* const kStreams[] = {"_input", "_output", "_error"};
  for (int i = 0; i < 3; ++i)
    if ((std::get<1>(info.param) >> i & 1) != 0) name += kStreams[i];
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, Streams,
                         ::testing::Combine(::testing::Values("mdb", "sqlite"), ::testing::Range(0, 8)),
                         NameOf);

#endif

}  // namespace
