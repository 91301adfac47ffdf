#include "bench_base.h"

#include <array>

#include "demo/demo_base.h"

namespace bench {
namespace {

constexpr std::size_t kFirstContract = 1001;
constexpr std::size_t kFirstPerson = 100001;
constexpr std::size_t kFirstCard = 500001;
constexpr std::size_t kFirstHeader = 1001;
constexpr std::size_t kFirstDatum = 1001;

std::string N(std::size_t n) { return std::to_string(n); }

bool IsMonthly(std::size_t i) { return i % 8 == 3; }

void InsertContract(db::Connection& connection, std::size_t i) {
  static constexpr std::array<const char*, 8> kNames = {"Ana",   "Bruno",  "Carla", "Damián",
                                                        "Elena", "Fabián", "Irene", "Úrsula"};
  const std::string document = N(20000000 + i * 7);
  connection.Execute(
      "INSERT INTO Personas (idEmpresa, id_Persona, Nombre_1, Apellido_1, Numero, NumeroSinGuion) "
      "VALUES (1, " +
      N(kFirstPerson + i) + ", '" + kNames[i % kNames.size()] + "', 'Apellido " + N(i) + "', '" + document +
      "', '" + document + "')");
  connection.Execute(
      "INSERT INTO Contrato (idEmpresa, id_Contrato, id_Persona, Numero_Alternativo, Tarjeta, id_TipoRem, "
      "idCC, "
      "CantDiasXMes, Horas, Sueldo, ValorHora, FECINI, Vigente) VALUES (1, " +
      N(kFirstContract + i) + ", " + N(kFirstPerson + i) + ", 'A" + N(i) + "', " + N(kFirstCard + i) + ", " +
      (IsMonthly(i) ? "1" : "2") + ", " + N(1 + i % 5) + ", 25, 8, 50000, 250.5, #03/15/2015#, True)");
}

}  // namespace

void FillDatabase(db::Connection& connection, base::Date month, std::size_t contracts) {
  demo::LlenarBase(connection, month);
  const std::string first = std::string(1, '#').append(base::DateMMddyyyy(month)).append(1, '#');
  connection.BeginTrans();
  for (std::size_t i = 0; i < contracts; ++i) {
    InsertContract(connection, i);
    if (i % 2 == 0)
      connection.Execute(
          "INSERT INTO Encabezados (idEmpresa, id_Encabezado, MesDeLiq, id_Contrato, id_TipoLiq, Terminado, "
          "Impreso, id_Usuario) VALUES (1, " +
          N(kFirstHeader + i) + ", " + first + ", " + N(kFirstContract + i) + ", " +
          (IsMonthly(i) ? "1" : "2") + ", False, False, 1)");
    if (i % 10 == 0)
      connection.Execute(
          "INSERT INTO Datos_Liquidacion (id_Dato, idEmpresa, id_Encabezado, id_Concepto, idAgrupa, "
          "Cantidad, "
          "Coeficiente, RedoEnLiq, Relacion) VALUES (" +
          N(kFirstDatum + i) + ", 1, " + N(kFirstHeader + i) + ", 2, " + N(1 + i % 5) + ", 3.5, 0, 2, 1)");
  }
  connection.CommitTrans();
}

std::string HoursFile(std::size_t contracts) {
  std::string text;
  text.reserve(contracts * kLinesPerContract * 20);
  // A step that shares no factor with the count visits each contract once.
  std::size_t step = contracts / 3 + 1;
  const auto common = [](std::size_t a, std::size_t b) {
    while (b != 0) {
      const std::size_t rest = a % b;
      a = b;
      b = rest;
    }
    return a;
  };
  while (common(step, contracts) != 1) ++step;
  for (std::size_t k = 0, i = 0; k < contracts; ++k, i = (i + step) % contracts) {
    const std::string key = std::string("00").append(N(kFirstCard + i)).append(";");
    const auto line = [&](const char* code, std::size_t halves) {
      text += key + code + ";" + N(halves / 2) + (halves % 2 == 1 ? ",5" : "") + "\r\n";
    };
    line("HC", 160 + i % 40);
    line("HE", 1 + i % 17);
    line("HN", 2 + i % 23);
    line("HF", 8 + i % 9);
    line("VI", 2 * (1 + i % 22));
  }
  return text;
}

}  // namespace bench
