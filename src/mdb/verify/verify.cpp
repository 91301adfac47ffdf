#include "mdb/verify/verify.h"

#include <algorithm>
#include <map>

#include "base/text.h"
#include "mdb/verify/verify_internal.h"

namespace mdb {

using internal::Entre;
using internal::ObjetoVisto;
using internal::Revision;

bool Informe::Sano() const {
  return std::none_of(hallazgos.begin(), hallazgos.end(),
                      [](const Hallazgo& h) { return h.grado == Hallazgo::Grado::Error; });
}

namespace {

constexpr Puntero kMapaGlobal{1, 0};

class RevisionDeArchivo {
 public:
  RevisionDeArchivo(Paginas& paginas, std::size_t tope) : r_(paginas, tope) {}

  Informe Hacer() {
    const Cabecera& cabecera = r_.paginas.Cab();
    r_.informe.paginas = r_.paginas.Cantidad();
    if (cabecera.cifrado_ajeno) {
      r_.Nota(0, "", "el archivo está cifrado y no se puede revisar");
      return std::move(r_.informe);
    }
    if (r_.paginas.Cantidad() < 3) {
      r_.Error(0, "", "el archivo tiene menos páginas que las que hacen falta para su catálogo");
      return std::move(r_.informe);
    }
    r_.Tomar(0, Revision::kSistema, "");
    libres_ = r_.Mapa(kMapaGlobal, Revision::kMapas, "mapa de páginas libres");
    if (LeerCatalogo()) {
      RevisarTablas();
      RevisarRelaciones(r_, tablas_, objetos_);
      RevisarConsultas(r_, objetos_);
    }
    r_.PaginasDeMapas();
    RevisarPropiedad();
    return std::move(r_.informe);
  }

 private:
  static std::string DeTabla(const std::string& nombre) { return "tabla " + Entre(nombre); }

  bool LeerCatalogo() {
    const NumPagina pagina = r_.paginas.Cab().objetos;
    return r_.Probar(pagina, DeTabla("MSysObjects"), [&] {
      Definicion d = LeerDefinicion(r_.paginas, pagina);
      d.nombre = "MSysObjects";
      std::vector<std::size_t> columnas;
      for (const char* nombre : {"Id", "ParentId", "Name", "Type"}) {
        const auto i = d.PorNombre(nombre);
        if (!i) DanioEnPagina(pagina, "el catálogo no tiene la columna " + Entre(nombre));
        columnas.push_back(*i);
      }
      tablas_[pagina] = d;
      RevisarTabla(r_, d, columnas, [&](IdFila id, const Fila& fila) {
        const auto entero = [&](std::size_t k) {
          const auto* n = std::get_if<std::int64_t>(&fila[columnas[k]]);
          return n == nullptr ? 0 : *n;
        };
        const auto* nombre = std::get_if<std::string>(&fila[columnas[2]]);
        objetos_.push_back({entero(0), entero(1), entero(3), nombre == nullptr ? "" : *nombre, id});
      });
      RevisarObjetos();
    });
  }

  void RevisarObjetos() {
    std::map<std::int64_t, const ObjetoVisto*> por_id;
    std::map<std::pair<std::int64_t, std::string>, const ObjetoVisto*> por_nombre;
    for (const ObjetoVisto& o : objetos_) {
      if (!por_id.emplace(o.id, &o).second)
        r_.Error(o.fila.pagina, "catálogo",
                 "los objetos " + Entre(o.nombre) + " y " + Entre(por_id[o.id]->nombre) +
                     " tienen el mismo identificador");
      if (!por_nombre.emplace(std::pair(o.padre, base::Minusculas(o.nombre)), &o).second)
        r_.Error(o.fila.pagina, "catálogo", "hay dos objetos con el nombre " + Entre(o.nombre));
    }
  }

  void RevisarTablas() {
    const NumPagina catalogo = r_.paginas.Cab().objetos;
    for (const ObjetoVisto& o : objetos_) {
      if (o.tipo != 1 || o.id == catalogo) continue;
      if (o.id <= 1 || o.id >= static_cast<std::int64_t>(r_.paginas.Cantidad())) {
        r_.Error(o.fila.pagina, "catálogo",
                 "la tabla " + Entre(o.nombre) + " dice tener su definición en la página " +
                     std::to_string(o.id) + ", que no hay");
        continue;
      }
      const auto pagina = static_cast<NumPagina>(o.id);
      if (tablas_.contains(pagina)) continue;  // told with the catalog
      r_.Probar(pagina, DeTabla(o.nombre), [&] {
        Definicion d = LeerDefinicion(r_.paginas, pagina);
        d.nombre = o.nombre;
        tablas_[pagina] = d;
        RevisarTabla(r_, d);
      });
    }
    for (const NumPagina pagina :
         {catalogo, r_.paginas.Cab().permisos, r_.paginas.Cab().consultas, r_.paginas.Cab().relaciones})
      if (std::none_of(objetos_.begin(), objetos_.end(),
                       [&](const ObjetoVisto& o) { return o.tipo == 1 && o.id == pagina; }))
        r_.Error(pagina, "catálogo", "la tabla de sistema de esta página no está en el catálogo");
  }

  // Every page is free or belongs to one thing.
  void RevisarPropiedad() {
    if (!libres_.legible) return;
    std::vector<bool> libre(r_.paginas.Cantidad(), false);
    for (const NumPagina p : libres_.paginas) libre[p] = true;
    r_.informe.libres = libres_.paginas.size();
    std::size_t perdidas = 0;
    std::string primeras;
    for (NumPagina p = 0; p < libre.size(); ++p) {
      const bool tomada = r_.Tomada(p);
      if (libre[p] && tomada)
        r_.Error(p, "mapa de páginas libres", "figura como libre, y la usa " + r_.NombreDe(p));
      // What the map cannot name counts as free.
      if (libre[p] || tomada || p < libres_.inicio || p >= libres_.fin) continue;
      if (++perdidas <= 5) primeras += (perdidas == 1 ? "" : ", ") + std::to_string(p);
    }
    if (perdidas != 0)
      r_.Nota(0, "",
              internal::Cuantas(perdidas, "una página no está libre ni la usa nadie",
                                "páginas no están libres ni las usa nadie") +
                  " (" + primeras + (perdidas > 5 ? ", …" : "") + "); compactar la base recupera su lugar");
  }

  Revision r_;
  internal::MapaVisto libres_;
  std::vector<ObjetoVisto> objetos_;
  internal::Tablas tablas_;
};

}  // namespace

Informe Verificar(Paginas& paginas, std::size_t tope) { return RevisionDeArchivo(paginas, tope).Hacer(); }

}  // namespace mdb
