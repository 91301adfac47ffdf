#include "corridas/cambios.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "corridas/sql.h"
#include "db/connection.h"

namespace corridas {
namespace {

struct Descripcion {
  const char* nombre;
  std::vector<const char*> clave;
};

const Descripcion& DescripcionDe(std::size_t tabla) {
  static const std::array<Descripcion, kCuantasTablas> kTablas{
      {{"Encabezados", {"idEmpresa", "id_Encabezado"}},
       {"Datos_Liquidacion", {"idEmpresa", "id_Dato"}},
       {"PagosEnSueldo", {"idEmpresa", "Id_Pago"}},
       {"PagosEnSueldoDeta", {"idEmpresa", "Id_Pago", "Numero"}},
       {"DatosUsuTablas", {"idEmpresa", "Id"}}}};
  return kTablas[tabla];
}

std::string ConsultaDe(Tabla tabla, std::int32_t idEmpresa, base::Date mes) {
  switch (tabla) {
    case kEncabezados:
      return sql::Encabezados(idEmpresa, mes);
    case kDatos:
      return sql::Datos(mes);
    case kPagos:
      return sql::Pagos(mes);
    case kPagosDeta:
      return sql::PagosDeta(mes);
    default:
      return sql::TablasUsuario(idEmpresa);
  }
}

// By the key's values; rows of one key by what else they hold, so that the order never depends on the base.
bool MenorPorClave(const CambiosDeTabla& t, const CambioDeFila& a, const CambioDeFila& b) {
  for (const std::size_t i : t.clave) {
    const double x = a.Cualquiera()[i].NumberOrZero(), y = b.Cualquiera()[i].NumberOrZero();
    if (x != y) return x < y;
  }
  std::string texto_a, texto_b;
  for (const base::Value& v : a.Cualquiera()) Codificar(v, texto_a);
  for (const base::Value& v : b.Cualquiera()) Codificar(v, texto_b);
  return texto_a < texto_b;
}

}  // namespace

int CambiosDeTabla::Columna(std::string_view nombre) const {
  for (std::size_t i = 0; i < columnas.size(); ++i)
    if (base::EqualIgnoringCase(columnas[i], nombre)) return static_cast<int>(i);
  return -1;
}

std::size_t Cambios::Cantidad() const {
  std::size_t n = 0;
  for (const CambiosDeTabla& t : tablas) n += t.filas.size();
  return n;
}

std::string_view Foto::TablaGuardada::Clave(const FilaGuardada& f) const {
  return std::string_view(bytes).substr(f.comienzo, f.fin_clave - f.comienzo);
}

std::string_view Foto::TablaGuardada::Valores(const FilaGuardada& f) const {
  return std::string_view(bytes).substr(f.fin_clave, f.fin - f.fin_clave);
}

Fila Foto::TablaGuardada::Decodificada(const FilaGuardada& f) const {
  return Lector(Valores(f)).Valores(columnas.size());
}

Foto::TablaGuardada Foto::Leer(const sesion::DbSession& sesion, Tabla tabla, base::Date mes) {
  const db::Recordset rs = sesion.conexion->Query(ConsultaDe(tabla, sesion.idEmpresa, mes));
  const Descripcion& d = DescripcionDe(tabla);
  TablaGuardada t;
  for (const db::Column& c : rs.Fields()) t.columnas.push_back(c.name);
  for (const char* nombre : d.clave) {
    const int i = rs.PositionOf(nombre);
    if (i < 0) throw db::Error("La tabla " + std::string(d.nombre) + " no tiene la columna " + nombre);
    t.clave.push_back(static_cast<std::size_t>(i));
  }
  t.filas.reserve(rs.Count());
  for (std::size_t fila = 0; fila < rs.Count(); ++fila) {
    FilaGuardada f{t.bytes.size(), 0, 0};
    for (const std::size_t i : t.clave) Codificar(rs.At(i, fila), t.bytes);
    f.fin_clave = t.bytes.size();
    for (std::size_t i = 0; i < t.columnas.size(); ++i) Codificar(rs.At(i, fila), t.bytes);
    f.fin = t.bytes.size();
    t.filas.push_back(f);
  }
  return t;
}

Foto Foto::Tomar(const sesion::DbSession& sesion, base::Date mes) {
  Foto foto;
  for (std::size_t i = 0; i < kCuantasTablas; ++i) {
    foto.tablas_.push_back(Leer(sesion, static_cast<Tabla>(i), mes));
    const TablaGuardada& t = foto.tablas_.back();
    for (const FilaGuardada& f : t.filas) foto.huella_.suma += Picada(t.Valores(f), i);
    foto.huella_.filas += t.filas.size();
  }
  return foto;
}

void Foto::ParaCada(Tabla tabla, const std::function<void(const Fila&)>& paso) const {
  const TablaGuardada& t = tablas_.at(tabla);
  for (const FilaGuardada& f : t.filas) paso(t.Decodificada(f));
}

std::vector<Fila> Foto::ConClaveDe(Tabla tabla, const Fila& fila) const {
  const TablaGuardada& t = tablas_.at(tabla);
  if (t.indice.empty())
    for (std::size_t i = 0; i < t.filas.size(); ++i) t.indice.emplace(t.Clave(t.filas[i]), i);
  std::string clave;
  for (const std::size_t i : t.clave) Codificar(fila.at(i), clave);
  std::vector<Fila> halladas;
  const auto [primero, fin] = t.indice.equal_range(clave);
  for (auto it = primero; it != fin; ++it) halladas.push_back(t.Decodificada(t.filas[it->second]));
  return halladas;
}

// A row of `en` with the key of `fila`, and with `igual` of the same values too; it is taken out of the
// index.
std::optional<std::size_t> Foto::Pareja(const TablaGuardada& de, Indice& indice, const TablaGuardada& en,
                                        const FilaGuardada& fila, bool igual) {
  const auto [primero, fin] = indice.equal_range(de.Clave(fila));
  for (auto it = primero; it != fin; ++it) {
    const std::size_t i = it->second;
    if (igual && en.Valores(en.filas[i]) != de.Valores(fila)) continue;
    indice.erase(it);
    return i;
  }
  return std::nullopt;
}

CambiosDeTabla Foto::DiferenciaDe(const TablaGuardada& antes, const TablaGuardada& despues) {
  CambiosDeTabla cambios;
  cambios.columnas = despues.columnas;
  cambios.clave = despues.clave;
  Indice indice;
  indice.reserve(antes.filas.size());
  for (std::size_t i = 0; i < antes.filas.size(); ++i) indice.emplace(antes.Clave(antes.filas[i]), i);
  std::vector<std::size_t> distintas;
  for (std::size_t i = 0; i < despues.filas.size(); ++i)
    if (!Pareja(despues, indice, antes, despues.filas[i], true)) distintas.push_back(i);
  for (const std::size_t i : distintas) {
    CambioDeFila c;
    c.despues = despues.Decodificada(despues.filas[i]);
    if (const auto pareja = Pareja(despues, indice, antes, despues.filas[i], false))
      c.antes = antes.Decodificada(antes.filas[*pareja]);
    cambios.filas.push_back(std::move(c));
  }
  for (const auto& [clave, i] : indice)
    cambios.filas.push_back({antes.Decodificada(antes.filas[i]), std::nullopt});
  std::sort(cambios.filas.begin(), cambios.filas.end(),
            [&](const CambioDeFila& a, const CambioDeFila& b) { return MenorPorClave(cambios, a, b); });
  return cambios;
}

Cambios Diferencia(const Foto& antes, const Foto& despues) {
  Cambios cambios;
  for (std::size_t i = 0; i < kCuantasTablas; ++i) {
    if (antes.tablas_.at(i).columnas != despues.tablas_.at(i).columnas)
      throw base::Error("La tabla " + std::string(DescripcionDe(i).nombre) +
                        " cambió de columnas durante la corrida");
    cambios.tablas.push_back(Foto::DiferenciaDe(antes.tablas_[i], despues.tablas_[i]));
    cambios.tablas.back().tabla = DescripcionDe(i).nombre;
  }
  return cambios;
}

}  // namespace corridas
