#include <algorithm>

#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kColumnasDeIndice = 10;

std::vector<std::size_t> PosicionesDe(const Definicion& d, const IndiceReal& indice) {
  std::vector<std::size_t> posiciones;
  for (const auto& parte : indice.partes) posiciones.push_back(d.PorNumero(parte.columna).value());
  return posiciones;
}

// The entries of all rows, sorted. Throws ErrorDeClave for what the index refuses.
std::vector<Entrada> EntradasDe(Paginas& paginas, const Definicion& d, IndiceReal& indice,
                                const std::string& nombre) {
  std::vector<Entrada> entradas;
  RecorrerFilas(
      paginas, d,
      [&](IdFila id, const Fila& fila) {
        if (indice.Requerido() && AlgunNulo(d, indice, fila))
          throw ErrorDeClave("El índice \"" + nombre + "\" de la tabla \"" + d.nombre +
                                 "\" no admite nulos, y la tabla los tiene",
                             3058, nombre);
        if (indice.IgnoraNulos() && TodosNulos(d, indice, fila)) return true;
        Entrada e;
        e.fila = id;
        ClaveDeFila(paginas.Cab(), d, indice, fila, e.clave);
        entradas.push_back(std::move(e));
        return true;
      },
      PosicionesDe(d, indice));
  std::sort(entradas.begin(), entradas.end());
  return entradas;
}

// The key of a row that is Null in all columns of the index: the one key that may repeat in a unique one.
Bytes ClaveDeNulos(const Cabecera& cabecera, const Definicion& d, const IndiceReal& indice) {
  Bytes clave;
  const Fila nulos(d.columnas.size());
  if (TodosNulos(d, indice, nulos)) ClaveDeFila(cabecera, d, indice, nulos, clave);
  return clave;
}

void Contar(const Cabecera& cabecera, const Definicion& d, IndiceReal& indice,
            const std::vector<Entrada>& entradas, const std::string& nombre) {
  const Bytes nulos = ClaveDeNulos(cabecera, d, indice);
  indice.entradas = indice.distintas = 0;
  for (std::size_t i = 0; i < entradas.size(); ++i) {
    if (i == 0 || entradas[i].clave != entradas[i - 1].clave) {
      ++indice.distintas;
    } else if (indice.Unico() && entradas[i].clave != nulos) {
      throw ErrorDeClave("El índice \"" + nombre + "\" de la tabla \"" + d.nombre +
                             "\" no admite repetidos, y la tabla los tiene",
                         3022, nombre);
    }
  }
}

}  // namespace

std::uint32_t AgregarReal(Paginas& paginas, Definicion& d, IndiceReal indice, const std::string& nombre) {
  if (const std::string motivo = MotivoSinClaves(paginas.Cab(), d, indice); !motivo.empty())
    throw base::Error(motivo);
  const auto entradas = EntradasDe(paginas, d, indice, nombre);
  Contar(paginas.Cab(), d, indice, entradas, nombre);
  indice.mapa = NuevoMapa(paginas);
  indice.raiz = NuevaRaiz(paginas, d.Pagina(), indice.mapa);
  if (!entradas.empty()) ArbolDeIndice(paginas, d.Pagina(), indice).Construir(entradas);
  d.reales.push_back(std::move(indice));
  return static_cast<std::uint32_t>(d.reales.size() - 1);
}

void QuitarReal(Paginas& paginas, Definicion& d, std::uint32_t real) {
  const IndiceReal& indice = d.reales.at(real);
  ArbolDeIndice(paginas, d.Pagina(), indice).Vaciar();
  LiberarPagina(paginas, indice.raiz);
  if (indice.mapa.pagina != 0) BorrarMapa(paginas, indice.mapa);
  d.reales.erase(d.reales.begin() + real);
  for (auto& l : d.logicos)
    if (l.real > real) --l.real;
}

void AgregarIndice(Paginas& paginas, Definicion& d, const NuevoIndice& nuevo) {
  ComprobarNombre(nuevo.nombre, "un índice");
  if (LogicoDe(d, nuevo.nombre) != d.logicos.end())
    throw base::Error("La tabla \"" + d.nombre + "\" ya tiene un índice \"" + nuevo.nombre + "\"");
  if (nuevo.primario && d.ClavePrimaria() != nullptr)
    throw base::Error("La tabla \"" + d.nombre + "\" ya tiene una clave principal");
  if (nuevo.partes.empty() || nuevo.partes.size() > kColumnasDeIndice)
    throw base::Error("El índice \"" + nuevo.nombre + "\" debe tener de 1 a 10 columnas");
  if (d.logicos.size() >= Definicion::kIndices)
    throw base::Error("La tabla \"" + d.nombre + "\" ya tiene 32 índices, los que puede tener");
  IndiceReal real;
  for (const auto& parte : nuevo.partes) {
    const Columna& columna = d.columnas[ColumnaDe(d, parte.columna)];
    for (const auto& otra : real.partes)
      if (otra.columna == columna.numero)
        throw base::Error("El índice \"" + nuevo.nombre + "\" tiene dos veces la columna \"" +
                          columna.nombre + "\"");
    if (columna.tipo == TipoColumna::Ole)
      throw base::Error("La columna \"" + columna.nombre + "\" no puede estar en un índice");
    real.partes.push_back({columna.numero, parte.descendente});
  }
  if (nuevo.unico || nuevo.primario) real.banderas |= IndiceReal::kUnico;
  if (nuevo.requerido || nuevo.primario) real.banderas |= IndiceReal::kRequerido;
  if (nuevo.ignora_nulos && !nuevo.primario) real.banderas |= IndiceReal::kIgnoraNulos;
  IndiceLogico logico;
  logico.nombre = nuevo.nombre;
  logico.numero = NumeroLibre(d);
  logico.clase = nuevo.primario ? IndiceLogico::Primario : IndiceLogico::Normal;
  logico.real = AgregarReal(paginas, d, std::move(real), nuevo.nombre);
  InsertarLogico(d, std::move(logico));
}

}  // namespace mdb::internal
