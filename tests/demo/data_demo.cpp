// Runs the files of tests/data/demo. Verbs (month as mes=AAAA-MM, June 2024 when not given):
//   query        a statement over a demo base of the month: rows, cells joined with "|"
//   twice        fills a base that is already filled: what the failure leaves
//   expand       a text with placeholders; ERROR + description when refused
//   statements   a text of statements: one "- " + statement each
//   file         a file of the demo folder by its name: options bytes, lines=from-to, setting=key
//   settings     the options that the settings file of the demo reads as
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "base/encoding.h"
#include "base/error.h"
#include "base/text.h"
#include "demo/demo_base.h"
#include "demo/template.h"
#include "engine_sqlite/sqlite_connection.h"
#include "ports/clock.h"
#include "settings/config_file.h"
#include "support/data_test.h"

namespace {

base::Date MesDe(const support::Block& bloque) {
  const std::string texto = bloque.Option("mes", "2024-06");
  return base::MakeDate(std::atoi(texto.substr(0, 4).c_str()), std::atoi(texto.substr(5).c_str()), 1);
}

std::string Celda(const base::Value& valor) {
  if (valor.IsNull()) return "NULL";
  std::string texto = valor.CsvText();
  return texto.empty() ? "(empty)" : texto;
}

std::string Filas(const db::Recordset& rs, bool ordenar) {
  std::vector<std::string> filas;
  for (std::size_t f = 0; f < rs.Count(); ++f) {
    std::string fila;
    for (std::size_t c = 0; c < rs.Fields().size(); ++c) {
      if (c > 0) fila += '|';
      fila += Celda(rs.At(c, f));
    }
    filas.push_back(std::move(fila));
  }
  if (ordenar) std::sort(filas.begin(), filas.end());
  return base::Join(filas, "\n");
}

class BasesDeDemo {
 public:
  db::Connection& Del(base::Date mes) {
    auto& conexion = bases_[mes.serial];
    if (conexion == nullptr) {
      engine_sqlite::Options opciones;
      opciones.clock = &reloj_;
      conexion = engine_sqlite::Open(":memory:", opciones);
      demo::LlenarBase(*conexion, mes);
    }
    return *conexion;
  }

 private:
  ports::FixedClock reloj_{base::MakeDate(2024, 6, 18)};
  std::map<double, std::unique_ptr<db::Connection>> bases_;
};

std::string Archivo(const support::Block& bloque) {
  for (const demo::ArchivoDemo& archivo : demo::ArchivosDemo(MesDe(bloque))) {
    if (archivo.nombre != bloque.entry) continue;
    const auto lineas = base::Split(base::FromCp1252(archivo.bytes), base::kCrLf);
    if (const std::string clave = bloque.Option("setting"); !clave.empty())
      return base::Replace(settings::ValorDeTexto(base::FromCp1252(archivo.bytes), clave), "\r\n", "\n");
    if (const std::string tramo = bloque.Option("lines"); !tramo.empty()) {
      const auto desde = static_cast<std::size_t>(std::atoi(tramo.c_str()));
      const auto hasta = static_cast<std::size_t>(std::atoi(tramo.substr(tramo.find('-') + 1).c_str()));
      std::vector<std::string> elegidas;
      for (std::size_t i = desde; i <= hasta && i <= lineas.size(); ++i) elegidas.push_back(lineas[i - 1]);
      return base::Join(elegidas, "\n");
    }
    const auto cuenta = [&](char c) { return std::count(archivo.bytes.begin(), archivo.bytes.end(), c); };
    return "lines " + std::to_string(lineas.size()) + ", CR " + std::to_string(cuenta('\r')) + ", LF " +
           std::to_string(cuenta('\n')) + ", n with tilde as F1 " + std::to_string(cuenta('\xF1')) +
           ", utf-8 " + (base::IsValidUtf8(archivo.bytes) ? "yes" : "no");
  }
  return "no such file";
}

std::string Ajustes(const support::Block& bloque) {
  const std::string bytes = demo::AjustesDemo(MesDe(bloque), bloque.Has("fixed"));
  const settings::Settings s = settings::LeerSettings(base::FromCp1252(bytes));
  const auto si = [](bool v) { return v ? "1" : "0"; };
  std::string texto = std::string("AnchoFijo ") + si(s.AnchoFijo) + ", Separador " + s.Separador +
                      ", Configura " + std::to_string(s.Configura) + ", SoloDatosDeRel " +
                      si(s.SoloDatosDeRel) + ", CodTipoNumerico " + si(s.CodTipoNumerico) +
                      ", TotalizarConc " + si(s.TotalizarConc) + ", SumarAyaIng " + si(s.SumarAyaIng) +
                      ", ImportarCuotas " + si(s.ImportarCuotas) + ", CCDefEnArch " + si(s.CCDefEnArch) +
                      ", CCEnDE " + si(s.CCEnDE) + ", NoImpCantEn0 " + si(s.NoImpCantEn0) + "\nConfDeAF";
  for (const settings::ColumnaAF& c : s.ConfDeAF)
    texto.append(" ")
        .append(std::to_string(c.campo))
        .append("*")
        .append(std::to_string(c.inicio))
        .append("*")
        .append(std::to_string(c.largo));
  return texto;
}

support::Verbs Preparar() {
  const auto bases = std::make_shared<BasesDeDemo>();
  support::Verbs verbos;
  verbos["query"] = [bases](const support::Block& b) {
    return Filas(bases->Del(MesDe(b)).Query(b.entry), b.Has("rowsort"));
  };
  verbos["twice"] = [bases](const support::Block& b) -> std::string {
    db::Connection& conexion = bases->Del(MesDe(b));
    try {
      demo::LlenarBase(conexion, MesDe(b));
    } catch (const db::Error&) {
      return std::string("db::Error, transaction ") + (conexion.InTransaction() ? "open" : "closed") +
             ", contracts " + Filas(conexion.Query("Select count(*) from Contrato"), false);
    }
    return "filled twice";
  };
  verbos["expand"] = [](const support::Block& b) -> std::string {
    try {
      return demo::ExpandirPlantilla(b.entry, MesDe(b));
    } catch (const base::Error& e) {
      return "ERROR " + e.Description();
    }
  };
  verbos["statements"] = [](const support::Block& b) -> std::string {
    try {
      std::vector<std::string> lineas;
      for (const std::string& s : demo::SepararSentencias(b.entry))
        lineas.push_back(std::string("- ").append(s));
      return base::Join(lineas, "\n");
    } catch (const base::Error& e) {
      return "ERROR " + e.Description();
    }
  };
  verbos["file"] = Archivo;
  verbos["settings"] = Ajustes;
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Preparar); }
