#include "demo/demo_base.h"

#include <string_view>

#include "base/encoding.h"
#include "base/error.h"
#include "base/text.h"
#include "demo/embedded_internal.h"
#include "demo/template.h"
#include "settings/config_file.h"

namespace demo {
namespace {

// Rolls back unless it was confirmed.
class Transaccion {
 public:
  explicit Transaccion(db::Connection& conexion) : conexion_(conexion) { conexion_.BeginTrans(); }
  Transaccion(const Transaccion&) = delete;
  Transaccion& operator=(const Transaccion&) = delete;
  ~Transaccion() {
    if (!confirmada_) base::PassOverError("demo: rollback", nullptr, [this] { conexion_.RollbackTrans(); });
  }
  void Confirmar() {
    conexion_.CommitTrans();
    confirmada_ = true;
  }

 private:
  db::Connection& conexion_;
  bool confirmada_ = false;
};

std::string TextoEmbebido(std::string_view nombre) {
  for (const EmbeddedFile& archivo : EmbeddedFiles()) {
    if (archivo.name != nombre) continue;
    std::string texto;
    for (const std::string_view linea : archivo.lines) texto += linea;
    return texto;
  }
  throw base::Error("El programa no lleva el archivo " + std::string(nombre));
}

void CrearTablas(db::Connection& conexion) {
  for (const std::string& sentencia : SepararSentencias(TextoEmbebido("esquema.sql")))
    conexion.Execute(sentencia);
}

std::string BytesDe(std::string_view nombre, base::Date mes) {
  std::string texto = ExpandirPlantilla(TextoEmbebido(nombre), mes);
  if (!texto.empty() && texto.back() == '\n') texto.pop_back();
  return base::ToCp1252(base::Replace(texto, "\n", base::kCrLf));
}

}  // namespace

void CrearEsquema(db::Connection& conexion) {
  Transaccion transaccion(conexion);
  CrearTablas(conexion);
  transaccion.Confirmar();
}

void LlenarBase(db::Connection& conexion, base::Date mes) {
  Transaccion transaccion(conexion);
  CrearTablas(conexion);
  // Statement by statement, so that the comments may speak of placeholders.
  for (const std::string& sentencia : SepararSentencias(TextoEmbebido("datos.sql")))
    conexion.Execute(ExpandirPlantilla(sentencia, mes));
  transaccion.Confirmar();
}

const char* NombreDeBase(Motor motor) { return motor == Motor::Mdb ? "Personal.mdb" : "Personal.sqlite"; }

std::vector<ArchivoDemo> ArchivosDemo(base::Date mes, Motor motor) {
  std::vector<ArchivoDemo> archivos;
  for (const char* nombre : {"ConfBase.cfg", "ImportDeMarcas.ini", "horas.txt", "horas_ancho_fijo.txt"})
    archivos.push_back({nombre, BytesDe(nombre, mes)});
  std::string& referencia = archivos.front().bytes;
  referencia = settings::TextoConValor(referencia, "Motor", motor == Motor::Mdb ? "mdb" : "sqlite");
  referencia = settings::TextoConValor(referencia, "Base", NombreDeBase(motor));
  return archivos;
}

std::string AjustesDemo(base::Date mes, bool ancho_fijo) {
  const std::string delimitado = base::FromCp1252(BytesDe("ImportDeMarcas.ini", mes));
  return base::ToCp1252(settings::TextoConValor(delimitado, "TipoArchivo", ancho_fijo ? "AF" : "1"));
}

}  // namespace demo
