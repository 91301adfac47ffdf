#include <algorithm>
#include <initializer_list>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/rows/table.h"

namespace mdb::internal {
namespace {

// A system table, read by the names of its columns: files of other versions have others, and fewer.
class TablaDeSistema {
 public:
  TablaDeSistema(Paginas& paginas, NumPagina pagina, std::initializer_list<const char*> nombres)
      : paginas_(paginas), definicion_(LeerDefinicion(paginas, pagina)) {
    for (const char* nombre : nombres) {
      const auto i = definicion_.PorNombre(nombre);
      // Any column beyond the last stands for one that is missing.
      posiciones_.push_back(i.value_or(definicion_.columnas.size()));
      if (i) elegidas_.push_back(*i);
    }
    if (elegidas_.empty()) DanioEnPagina(pagina, "no es la tabla de sistema que debe");
  }

  // Calls `visita` with each row; Dato(k) is then the value of the k-th name.
  template <typename Visita>
  void Recorrer(Visita&& visita) {
    RecorrerFilas(
        paginas_, definicion_,
        [&](IdFila id, const Fila& fila) {
          fila_ = &fila;
          visita(id);
          return true;
        },
        elegidas_);
  }

  std::optional<std::int64_t> Entero(std::size_t k) const {
    const auto* n = Valor<std::int64_t>(k);
    return n == nullptr ? std::nullopt : std::optional(*n);
  }
  std::int32_t Largo(std::size_t k) const { return static_cast<std::int32_t>(Entero(k).value_or(0)); }
  std::optional<std::string> Texto(std::size_t k) const {
    const auto* t = Valor<std::string>(k);
    return t == nullptr ? std::nullopt : std::optional(*t);
  }
  Bytes Binario(std::size_t k) const {
    const auto* b = Valor<Bytes>(k);
    return b == nullptr ? Bytes() : *b;
  }

 private:
  template <typename T>
  const T* Valor(std::size_t k) const {
    return posiciones_[k] < fila_->size() ? std::get_if<T>(&(*fila_)[posiciones_[k]]) : nullptr;
  }

  Paginas& paginas_;
  Definicion definicion_;
  std::vector<std::size_t> posiciones_, elegidas_;
  const Fila* fila_ = nullptr;
};

// A counter of four bytes, highest first; Access writes nothing for the attributes that have one row.
std::uint32_t Contador(const Bytes& bytes) {
  std::uint32_t n = 0;
  for (const auto b : bytes) n = n << 8 | b;
  return n;
}

}  // namespace

std::vector<Objeto> LeerObjetos(Paginas& paginas) {
  TablaDeSistema tabla(
      paginas, paginas.Cab().objetos,
      {"Id", "ParentId", "Name", "Type", "Flags", "Database", "Connect", "ForeignName", "LvProp"});
  std::vector<Objeto> objetos;
  tabla.Recorrer([&](IdFila id) {
    Objeto o;
    o.id = tabla.Largo(0);
    o.padre = tabla.Largo(1);
    o.nombre = tabla.Texto(2).value_or("");
    o.tipo = static_cast<std::int16_t>(tabla.Largo(3));
    o.banderas = static_cast<std::uint32_t>(tabla.Largo(4));
    o.base = tabla.Texto(5).value_or("");
    o.conexion = tabla.Texto(6).value_or("");
    o.nombre_externo = tabla.Texto(7).value_or("");
    o.propiedades = tabla.Binario(8);
    o.fila = id;
    objetos.push_back(std::move(o));
  });
  return objetos;
}

std::vector<RelacionDeTablas> LeerRelaciones(Paginas& paginas, NumPagina pagina) {
  TablaDeSistema tabla(paginas, pagina,
                       {"szRelationship", "grbit", "icolumn", "szObject", "szColumn", "szReferencedObject",
                        "szReferencedColumn"});
  struct Par {
    std::int32_t lugar;
    std::string columna, referida;
  };
  std::vector<RelacionDeTablas> relaciones;
  std::vector<std::vector<Par>> pares;
  std::unordered_map<std::string, std::size_t> por_nombre;
  tabla.Recorrer([&](IdFila) {
    const std::string nombre = tabla.Texto(0).value_or("");
    const auto [it, nueva] = por_nombre.emplace(base::Minusculas(nombre), relaciones.size());
    if (nueva) {
      relaciones.push_back({nombre, tabla.Texto(3).value_or(""), {}, tabla.Texto(5).value_or(""), {}, 0});
      relaciones.back().banderas = static_cast<std::uint32_t>(tabla.Largo(1));
      pares.emplace_back();
    }
    pares[it->second].push_back({tabla.Largo(2), tabla.Texto(4).value_or(""), tabla.Texto(6).value_or("")});
  });
  for (std::size_t i = 0; i < relaciones.size(); ++i) {
    std::stable_sort(pares[i].begin(), pares[i].end(),
                     [](const Par& a, const Par& b) { return a.lugar < b.lugar; });
    for (auto& par : pares[i]) {
      relaciones[i].columnas.push_back(std::move(par.columna));
      relaciones[i].columnas_referidas.push_back(std::move(par.referida));
    }
  }
  return relaciones;
}

std::unordered_map<std::int32_t, std::vector<FilaDeConsulta>> LeerFilasDeConsultas(Paginas& paginas,
                                                                                   NumPagina pagina) {
  TablaDeSistema tabla(paginas, pagina,
                       {"ObjectId", "Attribute", "Order", "Name1", "Name2", "Expression", "Flag", "LvExtra"});
  std::unordered_map<std::int32_t, std::vector<FilaDeConsulta>> consultas;
  tabla.Recorrer([&](IdFila) {
    FilaDeConsulta f;
    f.atributo = static_cast<std::uint8_t>(tabla.Largo(1));
    f.orden = Contador(tabla.Binario(2));
    f.nombre1 = tabla.Texto(3);
    f.nombre2 = tabla.Texto(4);
    f.expresion = tabla.Texto(5);
    if (const auto n = tabla.Entero(6)) f.bandera = static_cast<std::int16_t>(*n);
    if (const auto n = tabla.Entero(7)) f.extra = static_cast<std::int32_t>(*n);
    consultas[tabla.Largo(0)].push_back(std::move(f));
  });
  return consultas;
}

}  // namespace mdb::internal
