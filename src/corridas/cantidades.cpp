#include "corridas/cantidades.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "base/number.h"
#include "corridas/sql.h"
#include "db/connection.h"

namespace corridas {
namespace {

constexpr std::int64_t kTipoCantidad = 3, kTipoCantidadYValor = 5;

std::int64_t Entero(const base::Value& v) { return static_cast<std::int64_t>(v.NumberOrZero()); }

std::size_t Posicion(const CambiosDeTabla& t, const char* nombre) {
  const int i = t.Columna(nombre);
  if (i < 0) throw db::Error("La tabla " + t.tabla + " no tiene la columna " + nombre);
  return static_cast<std::size_t>(i);
}

struct Encabezado {
  std::int64_t id_Contrato = 0, id_TipoLiq = 0;
};
struct Persona {
  std::int64_t id_Persona = 0;
  std::string nombre, apellido;
};
struct Concepto {
  std::string nombre;
  bool en_cantidad = true;  // else its coefficient
};

// What the quantities are named by.
struct Nombres {
  std::unordered_map<std::int64_t, Encabezado> encabezados;
  std::unordered_map<std::int64_t, Persona> personas;  // by contract
  std::unordered_map<std::int64_t, Concepto> conceptos;
  std::unordered_map<std::int64_t, std::string> tablas;

  // `borrados` may hold headers that are no longer there.
  Nombres(const CambiosDeTabla& borrados, const sesion::DbSession& s, base::Date mes) {
    for (const CambioDeFila& f : borrados.filas) {
      const Fila& fila = f.Cualquiera();
      encabezados[Entero(fila[Posicion(borrados, "id_Encabezado")])] = {
          Entero(fila[Posicion(borrados, "id_Contrato")]), Entero(fila[Posicion(borrados, "id_TipoLiq")])};
    }
    const auto leer = [&](const std::string& sql, auto&& fila) {
      const db::Recordset rs = s.conexion->Query(sql);
      for (std::size_t i = 0; i < rs.Count(); ++i) fila(rs, i);
    };
    leer(sql::EncabezadosDelMes(s.idEmpresa, mes), [&](const db::Recordset& rs, std::size_t i) {
      encabezados[Entero(rs.At(0, i))] = {Entero(rs.At(1, i)), Entero(rs.At(2, i))};
    });
    leer(sql::Personas(s.idEmpresa), [&](const db::Recordset& rs, std::size_t i) {
      personas[Entero(rs.At(0, i))] = {Entero(rs.At(1, i)), rs.At(2, i).Text(), rs.At(3, i).Text()};
    });
    leer(sql::Conceptos(), [&](const db::Recordset& rs, std::size_t i) {
      const std::int64_t tipo = Entero(rs.At(2, i));
      const bool cantidad =
          tipo == kTipoCantidad || (tipo == kTipoCantidadYValor && Entero(rs.At(3, i)) == 0);
      conceptos[Entero(rs.At(0, i))] = {rs.At(1, i).Text(), cantidad};
    });
    leer(sql::Tablas(s.idEmpresa),
         [&](const db::Recordset& rs, std::size_t i) { tablas[Entero(rs.At(0, i))] = rs.At(1, i).Text(); });
  }
};

using Lugar =
    std::tuple<std::int64_t, std::int64_t, std::int64_t, std::int64_t>;  // contract, concept, cc, header
using Resultado = std::map<Lugar, CambioDeCantidad>;

struct Cantidad {
  Lugar lugar;
  double valor;
};
using CantidadQuizas = std::optional<Cantidad>;

void Sumar(Resultado& resultado, const CantidadQuizas& c, std::optional<double> CambioDeCantidad::*lado) {
  if (!c) return;
  const auto it = resultado.find(c->lugar);
  if (it == resultado.end()) return;
  it->second.*lado = (it->second.*lado).value_or(0) + c->valor;
}

void Anotar(Resultado& resultado, const CantidadQuizas& c, bool tabla_usuario) {
  if (!c) return;
  CambioDeCantidad& cambio = resultado[c->lugar];
  std::tie(cambio.id_Contrato, cambio.concepto, cambio.idAgrupa, cambio.id_Encabezado) = c->lugar;
  cambio.tabla_usuario = tabla_usuario;
}

class LectorDeDatos {
 public:
  LectorDeDatos(const CambiosDeTabla& t, const Nombres& nombres)
      : nombres_(nombres),
        dato_(Posicion(t, "id_Dato")),
        encabezado_(Posicion(t, "id_Encabezado")),
        concepto_(Posicion(t, "id_Concepto")),
        agrupa_(Posicion(t, "idAgrupa")),
        cantidad_(Posicion(t, "Cantidad")),
        coeficiente_(Posicion(t, "Coeficiente")) {}

  std::int64_t Dato(const Fila& fila) const { return Entero(fila[dato_]); }
  CantidadQuizas Leer(const Fila& fila) const {
    const auto e = nombres_.encabezados.find(Entero(fila[encabezado_]));
    if (e == nombres_.encabezados.end())
      return std::nullopt;  // another company's: only its details are written
    const std::int64_t id = Entero(fila[concepto_]);
    const auto k = nombres_.conceptos.find(id);
    const bool en_cantidad = k == nombres_.conceptos.end() || k->second.en_cantidad;
    const double cantidad = fila[cantidad_].NumberOrZero(), coeficiente = fila[coeficiente_].NumberOrZero();
    // An amount counts once. One that was written while the options left its concept out stands as a
    // quantity.
    const bool escrita_en_cantidad = en_cantidad || (coeficiente == 0 && cantidad != 0 && cantidad != 1);
    return Cantidad{{e->second.id_Contrato, id, Entero(fila[agrupa_]), e->first},
                    escrita_en_cantidad ? cantidad : coeficiente};
  }
  CantidadQuizas Leer(const std::optional<Fila>& fila) const { return fila ? Leer(*fila) : std::nullopt; }

 private:
  const Nombres& nombres_;
  std::size_t dato_, encabezado_, concepto_, agrupa_, cantidad_, coeficiente_;
};

void SumarDatos(const CambiosDeTabla& t, const Foto& despues, const Nombres& nombres, Resultado& resultado) {
  if (t.filas.empty()) return;
  const LectorDeDatos lector(t, nombres);
  for (const CambioDeFila& f : t.filas) {
    const CantidadQuizas a = lector.Leer(f.antes), d = lector.Leer(f.despues);
    if (a && d && a->lugar == d->lugar && a->valor == d->valor) continue;
    Anotar(resultado, a, false);
    Anotar(resultado, d, false);
  }
  if (resultado.empty()) return;
  std::unordered_set<std::int64_t> cambiados;
  for (const CambioDeFila& f : t.filas) {
    if (f.despues) cambiados.insert(lector.Dato(*f.despues));
    Sumar(resultado, lector.Leer(f.antes), &CambioDeCantidad::antes);
    Sumar(resultado, lector.Leer(f.despues), &CambioDeCantidad::despues);
  }
  // A datum that stayed counts on both sides of what changed beside it.
  despues.ParaCada(kDatos, [&](const Fila& fila) {
    if (cambiados.contains(lector.Dato(fila))) return;
    const CantidadQuizas c = lector.Leer(fila);
    Sumar(resultado, c, &CambioDeCantidad::antes);
    Sumar(resultado, c, &CambioDeCantidad::despues);
  });
}

void SumarTablas(const CambiosDeTabla& t, base::Date mes, Resultado& resultado) {
  if (t.filas.empty()) return;
  const std::size_t tabla = Posicion(t, "Id_Tabla"), codigo = Posicion(t, "Codigo"),
                    valor = Posicion(t, "Valor"), fecha = Posicion(t, "Fecha");
  const auto leer = [&](const std::optional<Fila>& fila) -> CantidadQuizas {
    if (!fila || (*fila)[fecha].IsNull() || (*fila)[fecha].NumberOrZero() != mes.serial) return std::nullopt;
    return Cantidad{{Entero((*fila)[codigo]), Entero((*fila)[tabla]) + 1000, 0, 0},
                    base::NumberFromText((*fila)[valor].Text()).value_or(0)};
  };
  for (const CambioDeFila& f : t.filas) {
    const CantidadQuizas a = leer(f.antes), d = leer(f.despues);
    Anotar(resultado, a, true);
    Anotar(resultado, d, true);
    Sumar(resultado, a, &CambioDeCantidad::antes);
    Sumar(resultado, d, &CambioDeCantidad::despues);
  }
}

void Nombrar(const Nombres& nombres, CambioDeCantidad& c) {
  if (const auto p = nombres.personas.find(c.id_Contrato); p != nombres.personas.end()) {
    c.id_Persona = p->second.id_Persona;
    c.nombre = p->second.nombre;
    c.apellido = p->second.apellido;
  }
  if (const auto e = nombres.encabezados.find(c.id_Encabezado); e != nombres.encabezados.end())
    c.id_TipoLiq = e->second.id_TipoLiq;
  if (c.tabla_usuario) {
    if (const auto t = nombres.tablas.find(c.concepto - 1000); t != nombres.tablas.end())
      c.nombre_concepto = t->second;
  } else if (const auto k = nombres.conceptos.find(c.concepto); k != nombres.conceptos.end()) {
    c.nombre_concepto = k->second.nombre;
  }
}

}  // namespace

std::vector<CambioDeCantidad> CambiosDeCantidad(const Cambios& cambios, const Foto& despues,
                                                const sesion::DbSession& sesion, base::Date mes) {
  if (cambios.Cantidad() == 0) return {};
  const Nombres nombres(cambios.tablas.at(kEncabezados), sesion, mes);
  Resultado resultado;
  SumarDatos(cambios.tablas.at(kDatos), despues, nombres, resultado);
  SumarTablas(cambios.tablas.at(kTablasUsuario), mes, resultado);
  std::vector<CambioDeCantidad> lista;
  lista.reserve(resultado.size());
  for (auto& [lugar, cambio] : resultado) {
    Nombrar(nombres, cambio);
    lista.push_back(std::move(cambio));
  }
  return lista;
}

}  // namespace corridas
