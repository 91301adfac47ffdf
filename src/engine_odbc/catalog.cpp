#include "engine_odbc/catalog_internal.h"

#include "base/text.h"
#include "engine_odbc/rows_internal.h"

namespace engine_odbc {
namespace {

// Columns of the driver manager's catalog results, from 0.
constexpr std::size_t kNombreDeTabla = 2;
constexpr std::size_t kNombreDeColumna = 3;

void Comprobar(SQLRETURN rc, const Cursor& cursor) {
  if (!SQL_SUCCEEDED(rc))
    throw ErrorDe(Diagnosticos(SQL_HANDLE_STMT, cursor.Crudo()),
                  "La base no pudo dar la lista de sus tablas");
}

}  // namespace

const jetsql::TablaInfo* CatalogoOdbc::Tabla(std::string_view nombre) {
  if (!leido_) LeerTablas();
  const auto hallada = tablas_.find(base::Minusculas(nombre));
  if (hallada == tablas_.end()) return nullptr;
  if (hallada->second.columnas == nullptr) LeerColumnas(hallada->second);
  return hallada->second.columnas.get();
}

void CatalogoOdbc::Olvidar() {
  leido_ = false;
  tablas_.clear();
}

void CatalogoOdbc::LeerTablas() {
  const Cursor cursor = CrearCursor(enlace_);
  Comprobar(SQLTablesW(cursor.Crudo(), nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0), cursor);
  Lector lector(cursor.Crudo());
  const std::size_t ancho = lector.Columnas()->size();
  const std::vector<base::Valor> celdas = lector.Filas();
  if (ancho > kNombreDeTabla)
    for (std::size_t i = 0; i < celdas.size(); i += ancho) {
      std::string nombre = celdas[i + kNombreDeTabla].Texto();
      std::string clave = base::Minusculas(nombre);
      tablas_.try_emplace(std::move(clave), Entrada{std::move(nombre), nullptr});
    }
  leido_ = true;
}

void CatalogoOdbc::LeerColumnas(Entrada& entrada) {
  const Cursor cursor = CrearCursor(enlace_);
  TextoAncho nombre(entrada.nombre);
  // The name is a pattern, in which "_" stands for any character: other tables may come too.
  Comprobar(
      SQLColumnsW(cursor.Crudo(), nullptr, 0, nullptr, 0, nombre.Datos(), nombre.LargoCorto(), nullptr, 0),
      cursor);
  Lector lector(cursor.Crudo());
  const std::size_t ancho = lector.Columnas()->size();
  const std::vector<base::Valor> celdas = lector.Filas();
  auto tabla = std::make_unique<jetsql::TablaInfo>();
  tabla->nombre = entrada.nombre;
  if (ancho > kNombreDeColumna)
    for (std::size_t i = 0; i < celdas.size(); i += ancho)
      if (base::IgualSinCaso(celdas[i + kNombreDeTabla].Texto(), entrada.nombre))
        tabla->columnas.push_back({celdas[i + kNombreDeColumna].Texto(), base::Tipo::Nulo});
  entrada.columnas = std::move(tabla);
}

}  // namespace engine_odbc
