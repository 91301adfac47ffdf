// conformance [--motor NAME[,NAME…]]… TABLE…
//
// Runs the tables of facts (*.tsv, *.jsonl) through the engines named (sqlite when none is). Prints a line
// for each row that does not hold and last "N passed, N failed, N skipped". Exit: 0 all hold, 1 some do not,
// 2 nothing could be run.
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/standard_streams.h"
#include "base/text.h"
#include "conformance/correr.h"

namespace {

using conformance::Cuenta;
using conformance::Resultado;
using conformance::Tabla;

constexpr int kFallan = 1, kNoSeCorrio = 2;

struct Pedido {
  std::vector<std::string> motores;
  std::vector<Tabla> tablas;
};

Pedido Leer(const std::vector<std::string>& args) {
  Pedido p;
  constexpr std::string_view kMotor = "--motor";
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string valor;
    if (args[i] == kMotor) {
      if (++i == args.size()) throw std::invalid_argument("--motor needs a name");
      valor = args[i];
    } else if (base::EmpiezaCon(args[i], "--motor=")) {
      valor = args[i].substr(kMotor.size() + 1);
    } else if (base::EmpiezaCon(args[i], "--")) {
      throw std::invalid_argument("no option is called " + args[i]);
    } else if (conformance::EsTabla(args[i])) {
      p.tablas.push_back(conformance::LeerTabla(args[i]));
      continue;
    } else {
      std::cerr << args[i] << ": not a table, passed over\n";
      continue;
    }
    for (const auto& nombre : base::Split(valor, ",")) p.motores.push_back(base::Trim(nombre));
  }
  if (p.tablas.empty()) throw std::invalid_argument("no table (*.tsv, *.jsonl) was named");
  if (p.motores.empty()) p.motores.emplace_back("sqlite");
  return p;
}

std::string UnaLinea(const std::string& texto) {
  return base::Reemplazar(base::Reemplazar(base::Reemplazar(texto, "\r", "\\r"), "\n", "\\n"), "\t", "\\t");
}

void Anotar(const std::string& antes, const std::string& id, const Resultado& r, Cuenta& cuenta) {
  cuenta.Sumar(r);
  if (r.que == Resultado::Que::Falla)
    std::cout << UnaLinea(antes + id + ": got " + r.dio + ", expected " + r.espera) << "\n";
}

Cuenta CorrerEn(const std::string& motor, const Pedido& p) {
  const auto maquina = conformance::MotorPorNombre(motor);
  conformance::Corredor corredor(*maquina);
  const std::string antes = p.motores.size() > 1 ? motor + " " : "";
  Cuenta cuenta;
  for (const Tabla& t : p.tablas) {
    for (const auto& fila : t.filas) Anotar(antes, fila.id, corredor.Correr(fila), cuenta);
    for (const auto& s : t.sentencias) Anotar(antes, s.id, corredor.Correr(s), cuenta);
  }
  for (const auto& [regla, cuantas] : cuenta.saltan)
    std::cout << antes << "skipped " << cuantas << ": " << regla << "\n";
  if (!antes.empty()) std::cout << antes << cuenta.Texto() << "\n";
  return cuenta;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    base::OpenStandardStreams();
    const Pedido p = Leer({argv + 1, argv + argc});
    Cuenta total;
    for (const auto& motor : p.motores) total.Sumar(CorrerEn(motor, p));
    if (total.pasan + total.fallan == 0) throw std::runtime_error("the tables have no rows that are run");
    std::cout << total.Texto() << "\n";
    return total.fallan > 0 ? kFallan : 0;
  } catch (const std::exception& e) {
    std::cerr << "conformance: " << e.what() << "\n";
    return kNoSeCorrio;
  }
}
