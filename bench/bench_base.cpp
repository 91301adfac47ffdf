#include "bench_base.h"

#include <array>

#include "demo/demo_base.h"

namespace bench {
namespace {

constexpr std::size_t kPrimerContrato = 1001;
constexpr std::size_t kPrimeraPersona = 100001;
constexpr std::size_t kPrimeraTarjeta = 500001;
constexpr std::size_t kPrimerEncabezado = 1001;
constexpr std::size_t kPrimerDato = 1001;

std::string N(std::size_t n) { return std::to_string(n); }

bool Mensual(std::size_t i) { return i % 8 == 3; }

void InsertarContrato(db::Connection& conexion, std::size_t i) {
  static constexpr std::array<const char*, 8> kNombres = {"Ana",   "Bruno",  "Carla", "Damián",
                                                          "Elena", "Fabián", "Irene", "Úrsula"};
  const std::string documento = N(20000000 + i * 7);
  conexion.Ejecutar(
      "INSERT INTO Personas (idEmpresa, id_Persona, Nombre_1, Apellido_1, Numero, NumeroSinGuion) "
      "VALUES (1, " +
      N(kPrimeraPersona + i) + ", '" + kNombres[i % kNombres.size()] + "', 'Apellido " + N(i) + "', '" +
      documento + "', '" + documento + "')");
  conexion.Ejecutar(
      "INSERT INTO Contrato (idEmpresa, id_Contrato, id_Persona, Numero_Alternativo, Tarjeta, id_TipoRem, "
      "idCC, "
      "CantDiasXMes, Horas, Sueldo, ValorHora, FECINI, Vigente) VALUES (1, " +
      N(kPrimerContrato + i) + ", " + N(kPrimeraPersona + i) + ", 'A" + N(i) + "', " +
      N(kPrimeraTarjeta + i) + ", " + (Mensual(i) ? "1" : "2") + ", " + N(1 + i % 5) +
      ", 25, 8, 50000, 250.5, #03/15/2015#, True)");
}

}  // namespace

void LlenarBase(db::Connection& conexion, base::Fecha mes, std::size_t contratos) {
  demo::LlenarBase(conexion, mes);
  const std::string primero = std::string(1, '#').append(base::FechaMMddyyyy(mes)).append(1, '#');
  conexion.BeginTrans();
  for (std::size_t i = 0; i < contratos; ++i) {
    InsertarContrato(conexion, i);
    if (i % 2 == 0)
      conexion.Ejecutar(
          "INSERT INTO Encabezados (idEmpresa, id_Encabezado, MesDeLiq, id_Contrato, id_TipoLiq, Terminado, "
          "Impreso, id_Usuario) VALUES (1, " +
          N(kPrimerEncabezado + i) + ", " + primero + ", " + N(kPrimerContrato + i) + ", " +
          (Mensual(i) ? "1" : "2") + ", False, False, 1)");
    if (i % 10 == 0)
      conexion.Ejecutar(
          "INSERT INTO Datos_Liquidacion (id_Dato, idEmpresa, id_Encabezado, id_Concepto, idAgrupa, "
          "Cantidad, "
          "Coeficiente, RedoEnLiq, Relacion) VALUES (" +
          N(kPrimerDato + i) + ", 1, " + N(kPrimerEncabezado + i) + ", 2, " + N(1 + i % 5) +
          ", 3.5, 0, 2, 1)");
  }
  conexion.CommitTrans();
}

std::string ArchivoDeHoras(std::size_t contratos) {
  std::string texto;
  texto.reserve(contratos * kLineasPorContrato * 20);
  // A step that shares no factor with the count visits each contract once.
  std::size_t paso = contratos / 3 + 1;
  const auto comun = [](std::size_t a, std::size_t b) {
    while (b != 0) {
      const std::size_t resto = a % b;
      a = b;
      b = resto;
    }
    return a;
  };
  while (comun(paso, contratos) != 1) ++paso;
  for (std::size_t k = 0, i = 0; k < contratos; ++k, i = (i + paso) % contratos) {
    const std::string clave = std::string("00").append(N(kPrimeraTarjeta + i)).append(";");
    const auto linea = [&](const char* codigo, std::size_t medias) {
      texto += clave + codigo + ";" + N(medias / 2) + (medias % 2 == 1 ? ",5" : "") + "\r\n";
    };
    linea("HC", 160 + i % 40);
    linea("HE", 1 + i % 17);
    linea("HN", 2 + i % 23);
    linea("HF", 8 + i % 9);
    linea("VI", 2 * (1 + i % 22));
  }
  return texto;
}

}  // namespace bench
