// What holds between tables: relationships and saved queries.
#include <algorithm>
#include <optional>
#include <unordered_set>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/indexes/index_key.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

using Columnas = std::vector<std::size_t>;
constexpr std::size_t kPorRelacion = 5;  // rows without a parent that are named

const Definicion* TablaDe(const Tablas& tablas, const std::string& nombre) {
  for (const auto& [pagina, d] : tablas)
    if (base::IgualSinCaso(d.nombre, nombre)) return &d;
  return nullptr;
}

bool EsVinculada(const std::vector<ObjetoVisto>& objetos, const std::string& nombre) {
  return std::any_of(objetos.begin(), objetos.end(), [&](const ObjetoVisto& o) {
    return (o.tipo == Objeto::Vinculada || o.tipo == Objeto::VinculadaOdbc) &&
           base::IgualSinCaso(o.nombre, nombre);
  });
}

class RevisionDeRelacion {
 public:
  RevisionDeRelacion(Revision& r, const Tablas& tablas, const std::vector<ObjetoVisto>& objetos,
                     const RelacionDeTablas& relacion)
      : r_(r),
        tablas_(tablas),
        objetos_(objetos),
        relacion_(relacion),
        donde_("relación " + Entre(relacion.nombre)) {}

  void Hacer() {
    const Definicion* hija = Tabla(relacion_.tabla);
    const Definicion* madre = Tabla(relacion_.tabla_referida);
    if (hija == nullptr || madre == nullptr) return;
    const auto de_hija = Posiciones(*hija, relacion_.columnas);
    const auto de_madre = Posiciones(*madre, relacion_.columnas_referidas);
    if (!de_hija || !de_madre || !relacion_.Exigida()) return;
    if (!Comparables(*hija, *de_hija, *madre, *de_madre))
      return r_.Nota(0, donde_, "sus columnas no son del mismo tipo y no se comprobó");
    try {
      Filas(*hija, *de_hija, *madre, *de_madre);
    } catch (const Danio&) {  // a table with damage has its own findings
    } catch (const base::Error& e) {
      r_.Nota(0, donde_, "no se pudo comprobar: " + e.Descripcion());
    }
  }

 private:
  const Definicion* Tabla(const std::string& nombre) {
    const Definicion* d = TablaDe(tablas_, nombre);
    if (d == nullptr && !EsVinculada(objetos_, nombre))
      r_.Error(0, donde_, "nombra la tabla " + Entre(nombre) + ", que no existe");
    return d;
  }

  std::optional<Columnas> Posiciones(const Definicion& d, const std::vector<std::string>& nombres) {
    Columnas posiciones;
    for (const std::string& nombre : nombres) {
      const auto i = d.PorNombre(nombre);
      if (!i) {
        r_.Error(
            0, donde_,
            "nombra la columna " + Entre(nombre) + " de la tabla " + Entre(d.nombre) + ", que no existe");
        return {};
      }
      posiciones.push_back(*i);
    }
    return posiciones;
  }

  static bool Comparables(const Definicion& a, const Columnas& de_a, const Definicion& b,
                          const Columnas& de_b) {
    return std::equal(de_a.begin(), de_a.end(), de_b.begin(), de_b.end(), [&](std::size_t i, std::size_t k) {
      return a.columnas[i].tipo == b.columnas[k].tipo && a.columnas[i].escala == b.columnas[k].escala;
    });
  }

  // The values as a text that is equal for values that Access takes for equal; none with a Null among them.
  std::optional<std::string> Clave(const Definicion& d, const Columnas& columnas, const Fila& fila) {
    clave_.clear();
    for (const std::size_t i : columnas) {
      if (EsNulo(fila[i])) return {};
      AgregarClave(r_.paginas.Cab(), d.columnas[i], false, fila[i], clave_);
    }
    return std::string(clave_.begin(), clave_.end());
  }

  void Filas(const Definicion& hija, const Columnas& de_hija, const Definicion& madre,
             const Columnas& de_madre) {
    std::unordered_set<std::string> hay;
    RecorrerFilas(
        r_.paginas, madre,
        [&](IdFila, const Fila& fila) {
          if (auto clave = Clave(madre, de_madre, fila)) hay.insert(std::move(*clave));
          return true;
        },
        de_madre);
    std::size_t solas = 0;
    RecorrerFilas(
        r_.paginas, hija,
        [&](IdFila id, const Fila& fila) {
          const auto clave = Clave(hija, de_hija, fila);
          if (clave && !hay.contains(*clave) && ++solas <= kPorRelacion)
            r_.Error(id.pagina, donde_,
                     DeFila(id) + " de la tabla " + Entre(hija.nombre) + " no tiene la suya en la tabla " +
                         Entre(madre.nombre));
          return true;
        },
        de_hija);
    if (solas > kPorRelacion)
      r_.Error(0, donde_, "en total son " + std::to_string(solas) + " las filas sin la suya");
  }

  Revision& r_;
  const Tablas& tablas_;
  const std::vector<ObjetoVisto>& objetos_;
  const RelacionDeTablas& relacion_;
  std::string donde_;
  Bytes clave_;
};

// The two indexes of an enforced relationship name each other.
void RevisarParejas(Revision& r, const Tablas& tablas) {
  for (const auto& [pagina, d] : tablas)
    for (const IndiceLogico& l : d.logicos) {
      if (l.lado == IndiceLogico::Ninguno) continue;
      const std::string donde = "tabla " + Entre(d.nombre) + ", índice " + Entre(l.nombre);
      const auto otra = tablas.find(l.otra_tabla);
      if (otra == tablas.end()) {
        r.Error(pagina, donde,
                "es de una relación con la tabla de la página " + std::to_string(l.otra_tabla) +
                    ", que no existe");
        continue;
      }
      const auto& logicos = otra->second.logicos;
      const NumPagina esta = pagina;
      if (std::none_of(logicos.begin(), logicos.end(), [&](const IndiceLogico& o) {
            return static_cast<std::int64_t>(o.numero) == l.otro_indice && o.otra_tabla == esta &&
                   o.otro_indice == static_cast<std::int64_t>(l.numero);
          }))
        r.Error(pagina, donde,
                "es de una relación con la tabla " + Entre(otra->second.nombre) +
                    ", que no tiene el índice que va con él");
    }
}

// Some files of Access 97 have these tables on other pages than their header says; the catalog tells.
NumPagina SystemTablePage(const std::vector<ObjetoVisto>& objects, std::string_view name,
                          NumPagina of_the_header) {
  for (const ObjetoVisto& o : objects)
    if (o.tipo == Objeto::Tabla && o.nombre == name) return static_cast<NumPagina>(o.id);
  return of_the_header;
}

}  // namespace

void RevisarRelaciones(Revision& r, const Tablas& tablas, const std::vector<ObjetoVisto>& objetos) {
  RevisarParejas(r, tablas);
  std::vector<RelacionDeTablas> relaciones;
  const NumPagina page = SystemTablePage(objetos, "MSysRelationships", r.paginas.Cab().relaciones);
  r.Probar(page, "tabla «MSysRelationships»", [&] { relaciones = LeerRelaciones(r.paginas, page); });
  for (const RelacionDeTablas& relacion : relaciones)
    RevisionDeRelacion(r, tablas, objetos, relacion).Hacer();
}

void RevisarConsultas(Revision& r, const std::vector<ObjetoVisto>& objetos) {
  constexpr std::uint8_t kComienzo = 0, kFin = 255;
  const NumPagina page = SystemTablePage(objetos, "MSysQueries", r.paginas.Cab().consultas);
  r.Probar(page, "tabla «MSysQueries»", [&] {
    auto filas = LeerFilasDeConsultas(r.paginas, page);
    for (const ObjetoVisto& o : objetos) {
      if (o.tipo != Objeto::Consulta) continue;
      const auto suyas = filas.extract(static_cast<std::int32_t>(o.id));
      const auto cuantas = [&](std::uint8_t atributo) {
        if (suyas.empty()) return std::ptrdiff_t{0};
        return std::count_if(suyas.mapped().begin(), suyas.mapped().end(),
                             [&](const FilaDeConsulta& f) { return f.atributo == atributo; });
      };
      if (cuantas(kComienzo) != 1 || cuantas(kFin) != 1)
        r.Error(o.fila.pagina, "consulta " + Entre(o.nombre),
                suyas.empty() ? "el catálogo la tiene, y no están sus filas"
                              : "no tiene una fila de comienzo y una de fin");
    }
    if (!filas.empty())
      r.Nota(
          0, "tabla «MSysQueries»",
          "hay filas de " + Cuantas(filas.size(), "una consulta que no existe", "consultas que no existen"));
  });
}

}  // namespace mdb::internal
