#include <algorithm>

#include "base/text.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kLetrasDeNombre = 64;

}  // namespace

void ComprobarNombre(std::string_view nombre, const char* que) {
  const auto rechazar = [&](const std::string& motivo) {
    throw base::Error("\"" + std::string(nombre) + "\" no sirve de nombre para " + que + ": " + motivo);
  };
  if (nombre.empty()) throw base::Error("Falta el nombre de " + std::string(que));
  if (base::Longitud(nombre) > kLetrasDeNombre) rechazar("tiene más de 64 letras");
  if (nombre.front() == ' ') rechazar("empieza con un espacio");
  for (const char c : nombre) {
    if (std::string_view(".!`[]").find(c) != std::string_view::npos)
      rechazar("lleva el signo " + std::string(1, c));
    if (static_cast<unsigned char>(c) < 0x20) rechazar("lleva un carácter de control");
  }
}

void ComprobarNombreLibre(const Catalogo& catalogo, std::string_view nombre) {
  if (const Objeto* otro = catalogo.Buscar(nombre); otro != nullptr)
    throw base::Error("La base ya tiene " +
                      std::string(otro->tipo == Objeto::Consulta ? "una consulta" : "una tabla") +
                      " con el nombre \"" + otro->nombre + "\"");
}

Definicion TablaParaCambiar(Paginas& paginas, const Catalogo& catalogo, std::string_view nombre) {
  const Objeto* objeto = catalogo.Buscar(nombre);
  if (objeto == nullptr) throw base::Error("La base no tiene una tabla \"" + std::string(nombre) + "\"");
  const std::string cual = "\"" + objeto->nombre + "\"";
  if (objeto->tipo == Objeto::Consulta) throw base::Error(cual + " es una consulta, no una tabla");
  if (objeto->tipo != Objeto::Tabla)
    throw base::Error("La tabla " + cual + " está vinculada: se cambia en la base en la que está");
  if (objeto->DeSistema()) throw base::Error("La tabla " + cual + " es del sistema y no se cambia");
  Definicion d = LeerDefinicion(paginas, static_cast<NumPagina>(objeto->id));
  d.nombre = objeto->nombre;
  return d;
}

std::size_t ColumnaDe(const Definicion& definicion, std::string_view columna) {
  const auto posicion = definicion.PorNombre(columna);
  if (!posicion)
    throw base::Error("La tabla \"" + definicion.nombre + "\" no tiene una columna \"" +
                      std::string(columna) + "\"");
  return *posicion;
}

std::vector<IndiceLogico>::iterator LogicoDe(Definicion& definicion, std::string_view nombre) {
  return std::find_if(definicion.logicos.begin(), definicion.logicos.end(),
                      [&](const IndiceLogico& l) { return base::IgualSinCaso(l.nombre, nombre); });
}

void InsertarLogico(Definicion& definicion, IndiceLogico logico) {
  if (definicion.logicos.size() >= Definicion::kIndices)
    throw base::Error("La tabla \"" + definicion.nombre + "\" ya tiene 32 índices, los que puede tener");
  const std::string nombre = base::Minusculas(logico.nombre);
  const auto lugar =
      std::find_if(definicion.logicos.begin(), definicion.logicos.end(),
                   [&](const IndiceLogico& otro) { return base::Minusculas(otro.nombre) > nombre; });
  definicion.logicos.insert(lugar, std::move(logico));
}

std::uint32_t NumeroLibre(const Definicion& definicion) {
  std::uint32_t n = 0;
  const auto tomado = [&] {
    return std::any_of(definicion.logicos.begin(), definicion.logicos.end(),
                       [&](const IndiceLogico& l) { return l.numero == n; });
  };
  while (tomado()) ++n;
  return n;
}

}  // namespace mdb::internal
