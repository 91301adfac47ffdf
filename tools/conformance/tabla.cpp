#include "conformance/tabla.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

std::vector<std::string> Lineas(const std::filesystem::path& ruta) {
  std::ifstream f(ruta, std::ios::binary);
  if (!f) throw std::runtime_error(ruta.string() + ": cannot be read");
  std::string todo(std::istreambuf_iterator<char>(f), {});
  if (base::EmpiezaCon(todo, "\xEF\xBB\xBF")) todo.erase(0, 3);
  std::vector<std::string> lineas = base::Split(todo, "\n");
  for (std::string& l : lineas)
    if (!l.empty() && l.back() == '\r') l.pop_back();
  return lineas;
}

std::size_t Columna(const std::vector<std::string>& cabecera, std::string_view nombre) {
  const auto it = std::find(cabecera.begin(), cabecera.end(), nombre);
  if (it == cabecera.end()) throw std::runtime_error("no column '" + std::string(nombre) + "'");
  return static_cast<std::size_t>(it - cabecera.begin());
}

Json UnSoloArgumento(Json j) {
  Json lista;
  lista.clase = Json::Clase::Lista;
  lista.lista.push_back(std::move(j));
  return lista;
}

void LeerFilas(const std::vector<std::string>& lineas, std::vector<Fila>& filas) {
  const auto cabecera = base::Split(lineas.at(0), "\t");
  const std::size_t id = Columna(cabecera, "id"), funcion = Columna(cabecera, "function"),
                    args = Columna(cabecera, "args"), locale = Columna(cabecera, "locale"),
                    espera = Columna(cabecera, "expected");
  for (std::size_t i = 1; i < lineas.size(); ++i) {
    if (lineas[i].empty()) continue;
    try {
      const auto c = base::Split(lineas[i], "\t");
      Json a = LeerJson(c.at(args));
      if (!a.EsLista()) a = UnSoloArgumento(std::move(a));
      filas.push_back({c.at(id), c.at(funcion), std::move(a.lista), c.at(locale), LeerJson(c.at(espera))});
    } catch (const std::exception& e) {
      throw std::runtime_error("line " + std::to_string(i + 1) + ": " + e.what());
    }
  }
}

const Json& Debe(const Json& j, std::string_view nombre) {
  const Json* m = j.Miembro(nombre);
  if (m == nullptr) throw std::runtime_error("no member '" + std::string(nombre) + "'");
  return *m;
}

Sentencia LeerSentencia(const Json& j) {
  Sentencia s;
  s.id = Debe(j, "id").texto;
  s.sql = Debe(j, "query").texto;
  if (const Json* antes = j.Miembro("setup"))
    for (const Json& sql : antes->lista) s.antes.push_back(sql.texto);
  if (const Json* l = j.Miembro("locale"); l != nullptr && l->EsTexto()) s.locale = l->texto;
  if (const Json* m = j.Miembro("mode")) s.comodines_dao = m->texto == "ansi89";
  if (const Json* m = j.Miembro("any_case")) s.sin_caso = m->booleano;
  if (const Json* m = j.Miembro("ordered")) s.ordenadas = m->booleano;
  if (const Json* m = j.Miembro("columns"))
    for (const Json& c : m->lista) s.columnas.push_back(c.texto);
  if (const Json* m = j.Miembro("expected_rows"))
    s.filas = *m;
  else
    s.efecto = Debe(j, "expected_effect");
  return s;
}

}  // namespace

bool EsTabla(const std::filesystem::path& ruta) {
  return ruta.extension() == ".tsv" || ruta.extension() == ".jsonl";
}

Tabla LeerTabla(const std::filesystem::path& ruta) {
  Tabla t;
  t.nombre = ruta.stem().string();
  const auto lineas = Lineas(ruta);
  try {
    if (ruta.extension() == ".tsv") {
      LeerFilas(lineas, t.filas);
    } else {
      for (const auto& linea : lineas)
        if (!linea.empty()) t.sentencias.push_back(LeerSentencia(LeerJson(linea)));
    }
  } catch (const std::exception& e) {
    throw std::runtime_error(ruta.string() + ": " + e.what());
  }
  return t;
}

base::Fecha Hoy() { return base::FechaDe(2026, 5, 20); }

double SerieDe(std::string texto) {
  texto = base::Reemplazar(texto, "{YEAR}", std::to_string(base::Partes(Hoy()).anio));
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  const int leidos = std::sscanf(texto.c_str(), "%d-%d-%d %d:%d:%d", &a, &m, &d, &h, &n, &s);
  if (leidos != 3 && leidos != 6) throw std::runtime_error("bad date " + texto);
  // A year below 100 is that year here.
  const double dia = base::FechaDe(a < 100 ? a + 400 : a, m, d).serie - (a < 100 ? 146097 : 0);
  const double hora = base::HoraDe(h, n, s).serie;
  return dia < 0 ? dia - hora : dia + hora;
}

}  // namespace conformance
