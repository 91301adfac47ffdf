#include "mdb/damage.h"

#include <algorithm>

#include "mdb/catalog/catalog.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

Obra::Obra(const std::string& archivo) : paginas(LoadSample(archivo)) {}

mdb::Definicion Obra::Def(const std::string& tabla) {
  const auto d = mdb::Catalogo(*paginas).Tabla(tabla);
  if (d == nullptr) throw base::Error("no table " + tabla);
  return *d;
}

NumPagina Obra::Datos(const std::string& tabla, std::size_t k) {
  return mdb::LeerMapa(*paginas, Def(tabla).propias).at(k);
}

std::vector<IdFila> Obra::Filas(const std::string& tabla) {
  std::vector<IdFila> ids;
  mdb::RecorrerFilas(*paginas, Def(tabla), [&](IdFila id, const mdb::Fila&) {
    ids.push_back(id);
    return true;
  });
  return ids;
}

mdb::ArbolDeIndice Obra::Arbol(const std::string& tabla, std::size_t indice) {
  const auto d = Def(tabla);
  return {*paginas, d.Pagina(), d.reales.at(indice)};
}

std::vector<mdb::Entrada> Obra::Entradas(const std::string& tabla, std::size_t indice) {
  std::vector<mdb::Entrada> v;
  Arbol(tabla, indice).Recorrer([&](const mdb::Entrada& e) {
    v.push_back(e);
    return true;
  });
  return v;
}

// Where the bytes of a row, or of one of its columns, stand.
Obra::Lugar Obra::Fila(const std::string& tabla, IdFila id) {
  const auto f = mdb::BuscarFila(*paginas, Def(tabla), id).value();
  return {f.lugar.pagina, static_cast<std::size_t>(f.bytes.data() - f.imagen->data()), f.bytes.size()};
}

Obra::Lugar Obra::Celda(const std::string& tabla, IdFila id, const std::string& columna) {
  const auto d = Def(tabla);
  const auto f = mdb::BuscarFila(*paginas, d, id).value();
  const auto celda = mdb::PartirFila(paginas->Cab(), d, f.bytes).at(d.PorNombre(columna).value()).value();
  return {f.lugar.pagina, static_cast<std::size_t>(celda.data() - f.imagen->data()), celda.size()};
}

// The first row whose column is this.
IdFila Obra::Donde(const std::string& tabla, const std::string& columna, const mdb::Dato& valor) {
  const auto d = Def(tabla);
  const auto i = d.PorNombre(columna).value();
  IdFila hallada;
  mdb::RecorrerFilas(*paginas, d, [&](IdFila id, const mdb::Fila& fila) {
    if (fila[i] == valor) hallada = id;
    return hallada.pagina == 0;
  });
  EXPECT_NE(hallada.pagina, 0U);
  return hallada;
}

// In the first page of a definition: its columns, and its real and logical indexes.
std::size_t Obra::PosColumna(const std::string& tabla, std::size_t k) {
  return 63 + 12 * Def(tabla).reales.size() + 25 * k;
}

std::size_t Obra::PosReal(const std::string& tabla, std::size_t k) {
  const auto d = Def(tabla);
  const auto imagen = paginas->Leer(d.Pagina());
  std::size_t pos = PosColumna(tabla, d.columnas.size());
  for (std::size_t i = 0; i < d.columnas.size(); ++i) pos += 2 + mdb::U16(*imagen, pos);
  return pos + 52 * k;
}

std::size_t Obra::PosLogico(const std::string& tabla, std::size_t k) {
  return PosReal(tabla, Def(tabla).reales.size()) + 28 * k;
}

// The row of a map.
Obra::Lugar Obra::Mapa(mdb::Puntero mapa) {
  const auto r = mdb::LeerRanura(mapa.pagina, *paginas->Leer(mapa.pagina), mapa.fila);
  return {mapa.pagina, r.desde, r.largo};
}
namespace {
std::string Todo(const mdb::Informe& informe) {
  std::string t;
  for (const auto& h : informe.hallazgos)
    t += (h.grado == mdb::Hallazgo::Grado::Error ? "\n  error: " : "\n  note: ") + h.texto;
  return t;
}

}  // namespace

void Plantar(const std::vector<Dano>& danos) {
  for (const Dano& dano : danos) {
    SCOPED_TRACE(dano.nombre);
    Obra obra(dano.archivo);
    EXPECT_TRUE(mdb::Verificar(*obra.paginas).Sano());
    const NumPagina pagina = dano.plantar(obra);
    const mdb::Informe informe = mdb::Verificar(*obra.paginas);
    EXPECT_FALSE(informe.Sano());
    const std::string numero = "Página " + std::to_string(pagina);
    EXPECT_TRUE(std::any_of(
        informe.hallazgos.begin(), informe.hallazgos.end(),
        [&](const mdb::Hallazgo& h) {
          return h.grado == mdb::Hallazgo::Grado::Error && h.texto.find(dano.hallazgo) != std::string::npos &&
                 (pagina == 0 || (h.pagina == pagina && h.texto.compare(0, numero.size(), numero) == 0));
        }))
        << dano.hallazgo << " on page " << pagina << Todo(informe);
  }
}

}  // namespace mdb_test
