// A program that is killed in the middle of an import leaves the month untouched.
#include <gtest/gtest.h>

#include "cli/codigos.h"
#include "mesa.h"

#ifndef _WIN32
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32
TEST(Kill, InTheMiddleOfAnImport) { GTEST_SKIP() << "needs fork and kill"; }
#else

// Starts the program with its error output in a pipe; the reading end comes back.
pid_t Lanzar(const std::vector<std::string>& argumentos, int& lectura) {
  int tubo[2];
  if (pipe(tubo) != 0) throw std::runtime_error("no pipe");
  std::vector<std::string> copia = {IDM_CLI};
  copia.insert(copia.end(), argumentos.begin(), argumentos.end());
  std::vector<char*> punteros;
  for (std::string& a : copia) punteros.push_back(a.data());
  punteros.push_back(nullptr);
  const pid_t hijo = fork();
  if (hijo < 0) throw std::runtime_error("no fork");
  if (hijo == 0) {
    const int nada = open("/dev/null", O_WRONLY);
    dup2(nada, STDOUT_FILENO);
    dup2(tubo[1], STDERR_FILENO);
    close(tubo[0]);
    execv(IDM_CLI, punteros.data());
    _exit(127);
  }
  close(tubo[1]);
  lectura = tubo[0];
  return hijo;
}

// Reads that many whole lines; false at the end of the pipe.
bool LeerLineas(int lectura, int lineas) {
  char c = 0;
  while (lineas > 0) {
    const ssize_t n = read(lectura, &c, 1);
    if (n <= 0) return false;
    if (c == '\n') --lineas;
  }
  return true;
}

// The name of an instalment is worked out for each line while it is imported, and this one's extra datum
// shows a box each time. The pipe is read for a while and then no more: it fills long before the last line,
// so that the program stands still in the middle of its run when it is killed.
class Kill : public ::testing::TestWithParam<std::tuple<const char*, int>> {};

TEST_P(Kill, InTheMiddleOfAnImport) {
  constexpr int kLineas = 20'000, kLeidas = 3'000;
  const auto [motor, senal] = GetParam();
  const prueba::Mesa mesa(motor);
  ASSERT_EQ(mesa.Demo().codigo, cli::kTodo);
  std::string texto;
  for (int i = 0; i < kLineas; ++i) texto += (i > 0 ? "\r\n" : "") + std::string("007005;AD;10;(roto");
  mesa.Escribir("muchas.txt", texto);
  const std::string antes = mesa.Filas();
  const std::vector<std::string> argumentos = {
      "importar", "--base",    mesa.Ruta("ConfBase.cfg"),      "--archivo", mesa.Ruta("muchas.txt"), "--mes",
      "2026-10",  "--ajustes", mesa.Ruta("ImportDeMarcas.ini")};

  int lectura = -1;
  const pid_t hijo = Lanzar(argumentos, lectura);
  ASSERT_TRUE(LeerLineas(lectura, kLeidas));
  ASSERT_EQ(kill(hijo, senal), 0);
  int estado = 0;
  ASSERT_EQ(waitpid(hijo, &estado, 0), hijo);
  close(lectura);
  ASSERT_TRUE(WIFSIGNALED(estado)) << "it ended by itself";
  EXPECT_EQ(WTERMSIG(estado), senal);
  EXPECT_EQ(mesa.Filas(), antes);

  // And nothing stands in the way of the next run.
  const prueba::Salida s = mesa.Correr({"importar", "--base", mesa.Ruta("ConfBase.cfg"), "--archivo",
                                        mesa.Ruta("horas.txt"), "--mes", "2026-10"});
  EXPECT_EQ(s.codigo, cli::kAlgunaNo) << s.err;
  EXPECT_NE(s.out.find("importadas: 48 "), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Motores, Kill,
                         ::testing::Combine(::testing::Values("mdb", "sqlite"),
                                            ::testing::Values(SIGKILL, SIGTERM, SIGHUP)),
                         [](const auto& caso) {
                           return std::string(std::get<0>(caso.param)) + "_" +
                                  std::to_string(std::get<1>(caso.param));
                         });

#endif

}  // namespace
