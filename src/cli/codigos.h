// Exit codes of the command line.
#pragma once

namespace cli {

enum Codigo {
  kTodo = 0,            // all lines imported; filtered ones are fine
  kAlgunaNo = 1,        // some line refused or malformed
  kNada = 2,            // nothing imported
  kRepetido = 3,        // the file was imported into the month before, and nobody said to do it again
  kUso = 64,            // wrong arguments
  kArchivoMalo = 65,    // a file that cannot be used
  kSinArchivo = 66,     // no such file
  kSinBase = 69,        // the base cannot be opened
  kEntradaSalida = 74,  // reading or writing failed
};

}  // namespace cli
