#include "engine_mdb/query_text.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "base/error.h"
#include "engine_mdb/query_text_internal.h"

namespace engine_mdb {
namespace {

using internal::Citar;
using internal::SinCola;
using mdb::ClaseConsulta;
using mdb::ConsultaGuardada;
using mdb::FilaDeConsulta;

namespace codes = mdb::query_codes;

using Rango = std::span<const FilaDeConsulta>;

const char* TipoDeParametro(std::int16_t tipo) {
  static constexpr std::array<const char*, 16> kTipos = {
      "Value",    "Bit",    "Byte", "Short",      "Long",  "Currency", "IEEESingle", "IEEEDouble",
      "DateTime", "Binary", "Text", "LongBinary", nullptr, nullptr,    nullptr,      "Guid"};
  const char* nombre = tipo >= 0 && tipo < 16 ? kTipos[static_cast<std::size_t>(tipo)] : nullptr;
  if (nombre == nullptr) throw base::Error("La consulta tiene un parámetro de un tipo que no se conoce");
  return nombre;
}

std::string DeOtraBase(const std::optional<std::string>& ruta, const std::optional<std::string>& tipo) {
  std::string texto;
  if (ruta && !ruta->empty()) texto += " IN '" + *ruta + "'";
  if (tipo && !tipo->empty()) texto += (texto.empty() ? " IN '' [" : " [") + *tipo + "]";
  return texto;
}

class Redactor {
 public:
  explicit Redactor(const ConsultaGuardada& consulta) : filas_(consulta.filas) {
    std::stable_sort(filas_.begin(), filas_.end(), [](const FilaDeConsulta& a, const FilaDeConsulta& b) {
      return std::tie(a.atributo, a.orden) < std::tie(b.atributo, b.orden);
    });
    for (const auto& f : De(codes::kOptions)) {
      opciones_ |= f.bandera.value_or(0);
      if (f.nombre1) tope_ = *f.nombre1;
    }
  }

  std::string Texto(ClaseConsulta clase) const {
    switch (clase) {
      case ClaseConsulta::Definicion:
      case ClaseConsulta::Directa:
        return Expresion(codes::kKind, "La consulta no tiene texto");
      case ClaseConsulta::Union:
        return Parametros() + DeUnion() + Final();
      case ClaseConsulta::Cruzada:
        return Parametros() + Cruzada() + Final();
      case ClaseConsulta::Actualizar:
        return Parametros() + "UPDATE " + DistincionDeFilas() + Fuentes() + " SET " + Asignaciones() +
               Donde() + Final();
      case ClaseConsulta::Eliminar:
        return Parametros() + "DELETE " + DistincionDeFilas() + Columnas(De(codes::kColumn), true) +
               " FROM " + Fuentes() + Donde() + Final();
      case ClaseConsulta::Agregar:
        return Parametros() + Agregar() + Final();
      case ClaseConsulta::CrearTabla:
        return Parametros() + Seleccion(" INTO " + Destino()) + Final();
      case ClaseConsulta::Seleccion:
        break;
    }
    return Parametros() + Seleccion("") + Final();
  }

 private:
  Rango De(std::uint8_t atributo) const {
    const auto primera =
        std::find_if(filas_.begin(), filas_.end(), [=](const auto& f) { return f.atributo == atributo; });
    const auto fin =
        std::find_if(primera, filas_.end(), [=](const auto& f) { return f.atributo != atributo; });
    return Rango(primera, fin);
  }
  bool Con(int opcion) const { return (opciones_ & opcion) != 0; }

  // The expression of the only row of an attribute; with a reason, its absence is an error.
  std::string Expresion(std::uint8_t atributo, const char* motivo = nullptr) const {
    const Rango filas = De(atributo);
    std::string texto;
    if (!filas.empty()) texto = SinCola(filas.front().expresion.value_or(""));
    if (texto.empty() && motivo != nullptr) throw base::Error(motivo);
    return texto;
  }

  // "parte, parte, …" of the rows that `elige` takes.
  template <typename Parte>
  static std::string Lista(Rango filas, Parte&& parte) {
    std::string texto;
    for (const auto& f : filas) {
      const std::string una = parte(f);
      if (!una.empty()) texto += (texto.empty() ? "" : ", ") + una;
    }
    return texto;
  }

  static std::string TextoDeExpresion(const FilaDeConsulta& f) {
    std::string texto(SinCola(f.expresion.value_or("")));
    if (texto.empty()) throw base::Error("La consulta tiene una columna vacía");
    return texto;
  }
  static std::string Columna(const FilaDeConsulta& f) {
    std::string texto = TextoDeExpresion(f);
    if (f.nombre1 && !f.nombre1->empty()) texto += " AS " + Citar(*f.nombre1);
    return texto;
  }

  std::string Columnas(Rango filas, bool todas_si_no_hay = false) const {
    std::string texto = Lista(filas, Columna);
    if (Con(codes::kAll) || (texto.empty() && todas_si_no_hay)) texto += texto.empty() ? "*" : ", *";
    if (texto.empty()) throw base::Error("La consulta no tiene columnas");
    return texto;
  }

  std::string Parametros() const {
    const std::string lista = Lista(De(codes::kParameter), [](const FilaDeConsulta& f) {
      std::string uno = Citar(f.nombre1.value_or("")) + " " + TipoDeParametro(f.bandera.value_or(0));
      if (f.extra.value_or(0) > 0) uno += " (" + std::to_string(*f.extra) + ")";
      return uno;
    });
    return lista.empty() ? "" : "PARAMETERS " + lista + "; ";
  }

  std::string Fuentes() const {
    std::string texto = internal::TextoDeFuentes(De(codes::kSource), De(codes::kJoin));
    if (const Rango externa = De(codes::kOtherBase); !externa.empty())
      texto += DeOtraBase(externa.front().nombre1, externa.front().expresion);
    return texto;
  }

  std::string Clausula(const char* palabra, std::uint8_t atributo) const {
    const std::string expresion = Expresion(atributo);
    return expresion.empty() ? "" : palabra + expresion;
  }
  std::string Donde() const { return Clausula(" WHERE ", codes::kWhere); }

  std::string Grupo(bool cruzada) const {
    const std::string lista = Lista(De(codes::kGroup), [&](const FilaDeConsulta& f) {
      const bool fuera = cruzada && f.bandera.value_or(0) == codes::kPivot;
      return fuera ? std::string() : TextoDeExpresion(f);
    });
    return lista.empty() ? "" : " GROUP BY " + lista;
  }

  std::string Orden() const {
    const std::string lista = Lista(De(codes::kOrder), [](const FilaDeConsulta& f) {
      const bool descendente = f.nombre1 && (*f.nombre1 == "D" || *f.nombre1 == "d");
      return TextoDeExpresion(f) + (descendente ? " DESC" : "");
    });
    return lista.empty() ? "" : " ORDER BY " + lista;
  }

  std::string Final() const { return Con(codes::kOwnerAccess) ? " WITH OWNERACCESS OPTION" : ""; }
  std::string DistincionDeFilas() const { return Con(codes::kDistinctRows) ? "DISTINCTROW " : ""; }

  std::string Predicado() const {
    std::string texto;
    if (Con(codes::kDistinct)) texto += "DISTINCT ";
    texto += DistincionDeFilas();
    if (Con(codes::kTop)) {
      if (tope_.empty()) throw base::Error("La consulta no dice cuántas filas da");
      texto += "TOP " + tope_ + (Con(codes::kPercent) ? " PERCENT " : " ");
    }
    return texto;
  }

  std::string CuerpoDesde(bool cruzada) const {
    const std::string fuentes = Fuentes();
    return (fuentes.empty() ? "" : " FROM " + fuentes) + Donde() + Grupo(cruzada) +
           Clausula(" HAVING ", codes::kHaving) + Orden();
  }

  std::string Seleccion(const std::string& destino) const {
    return "SELECT " + Predicado() + Columnas(De(codes::kColumn)) + destino + CuerpoDesde(false);
  }

  std::string Destino() const {
    const Rango filas = De(codes::kKind);
    if (filas.empty() || filas.front().nombre1.value_or("").empty())
      throw base::Error("La consulta no dice en qué tabla escribe");
    const auto& f = filas.front();
    return Citar(*f.nombre1) + DeOtraBase(f.nombre2, f.expresion);
  }

  std::string Agregar() const {
    const Rango columnas = De(codes::kColumn);
    std::string texto = "INSERT INTO " + Destino();
    const std::string nombres = Lista(columnas, [](const FilaDeConsulta& f) {
      return f.nombre2 && !f.nombre2->empty() ? internal::CitarCompuesto(*f.nombre2) : std::string();
    });
    if (!nombres.empty()) texto += " (" + nombres + ")";
    const bool de_valores = !columnas.empty() && std::all_of(columnas.begin(), columnas.end(), [](auto& f) {
      return f.bandera.value_or(0) == codes::kOfValues;
    });
    if (de_valores) return texto + " VALUES (" + Lista(columnas, TextoDeExpresion) + ")";
    return texto + " " + Seleccion("");
  }

  std::string Asignaciones() const {
    const std::string lista = Lista(De(codes::kColumn), [](const FilaDeConsulta& f) {
      if (!f.nombre2 || f.nombre2->empty()) throw base::Error("La consulta no dice qué columna cambia");
      return internal::CitarCompuesto(*f.nombre2) + " = " + TextoDeExpresion(f);
    });
    if (lista.empty()) throw base::Error("La consulta no cambia ninguna columna");
    return lista;
  }

  std::string DeUnion() const {
    std::string texto;
    for (const auto& f : De(codes::kSource)) {
      if (!texto.empty()) texto += Con(codes::kDistinct) ? " UNION " : " UNION ALL ";
      texto += TextoDeExpresion(f);
    }
    if (texto.empty()) throw base::Error("La consulta de unión no tiene partes");
    return texto + Orden();
  }

  std::string Cruzada() const {
    std::string valor, pivote;
    std::vector<FilaDeConsulta> encabezados;
    for (const auto& f : De(codes::kColumn)) {
      switch (f.bandera.value_or(0)) {
        case codes::kRowHeading:
          encabezados.push_back(f);
          break;
        case codes::kPivot:
          pivote = Columna(f);
          break;
        default:
          valor = Columna(f);
      }
    }
    if (valor.empty() || pivote.empty())
      throw base::Error("La consulta de referencias cruzadas no está completa");
    return "TRANSFORM " + valor + " SELECT " + Predicado() + Columnas(encabezados) + CuerpoDesde(true) +
           " PIVOT " + pivote;
  }

  std::vector<FilaDeConsulta> filas_;
  int opciones_ = 0;
  std::string tope_;
};

}  // namespace

const char* KindName(ClaseConsulta clase) {
  switch (clase) {
    case ClaseConsulta::Seleccion:
      return "de selección";
    case ClaseConsulta::CrearTabla:
      return "de creación de tabla";
    case ClaseConsulta::Agregar:
      return "de datos anexados";
    case ClaseConsulta::Actualizar:
      return "de actualización";
    case ClaseConsulta::Eliminar:
      return "de eliminación";
    case ClaseConsulta::Cruzada:
      return "de referencias cruzadas";
    case ClaseConsulta::Definicion:
      return "de definición de datos";
    case ClaseConsulta::Directa:
      return "de paso a través";
    case ClaseConsulta::Union:
      return "de unión";
  }
  return "";
}

bool GivesRows(ClaseConsulta clase) {
  return clase == ClaseConsulta::Seleccion || clase == ClaseConsulta::Union;
}

std::string QueryText(const ConsultaGuardada& consulta) {
  return Redactor(consulta).Texto(mdb::ClaseDe(consulta));
}

}  // namespace engine_mdb
