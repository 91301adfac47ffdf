// bench_mdb [ROWS]: what rows of an Access file cost to insert, update, read and delete, and whether that
// grows in step with their number. See bench/README.md.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>

#include "base/standard_streams.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"

namespace {

namespace fs = std::filesystem;
using mdb::TipoColumna;

// Seconds of the processor: other programs on the machine do not change them.
double Ahora() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

mdb::NuevaColumna Columna(const char* nombre, TipoColumna tipo, std::uint16_t largo = 0) {
  mdb::NuevaColumna c;
  c.nombre = nombre;
  c.tipo = tipo;
  c.largo = largo;
  return c;
}

// Of the shape of the data of a liquidation: three indexes, some 60 bytes a row.
mdb::NuevaTabla Datos() {
  mdb::NuevaTabla t{"Datos", {}, {}};
  t.columnas = {Columna("Id", TipoColumna::Largo),          Columna("Encabezado", TipoColumna::Largo),
                Columna("Codigo", TipoColumna::Texto, 20),  Columna("Cantidad", TipoColumna::Doble),
                Columna("Importe", TipoColumna::Moneda),    Columna("Fecha", TipoColumna::Fecha),
                Columna("Detalle", TipoColumna::Texto, 100)};
  t.indices.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  t.indices.push_back({"PorEncabezado", {{"Encabezado", false}}, false, false, false, false});
  t.indices.push_back({"PorCodigo", {{"Codigo", false}, {"Encabezado", true}}, false, false, false, false});
  return t;
}
// One row a page, for a big file.
mdb::NuevaTabla Relleno() {
  mdb::NuevaTabla t{"Relleno", {}, {}};
  t.columnas = {Columna("Id", TipoColumna::Largo), Columna("Nota", TipoColumna::Ole)};
  t.indices.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  return t;
}

mdb::Fila UnaFila(std::mt19937& azar, std::int64_t id) {
  return {id,
          static_cast<std::int64_t>(azar() % 5000),
          "HC" + std::to_string(azar() % 300),
          static_cast<double>(azar() % 1000) / 8,
          base::Moneda{static_cast<std::int64_t>(azar() % 10000000)},
          base::Fecha{46000.0 + static_cast<double>(azar() % 400)},
          "8,5 x " + std::to_string(azar() % 100000)};
}

struct Paso {
  const char* nombre;
  double segundos = 0;
  std::size_t filas = 0;
};

class Banco {
 public:
  explicit Banco(std::string ruta) : ruta_(std::move(ruta)), azar_(20261121) {}

  std::vector<Paso> Correr(std::size_t filas, std::size_t paginas_de_relleno) {
    fs::remove(ruta_);
    auto base = mdb::Base::Crear(ruta_, 3082, base::Fecha{46347});
    base->CrearTabla(Datos(), base::Fecha{46347});
    Rellenar(*base, paginas_de_relleno);
    base->Confirmar();
    std::vector<Paso> pasos;
    ids_.clear();
    pasos.push_back(Medir("insert, one batch", filas, [&] { Insertar(*base, 0, filas, filas); }));
    pasos.push_back(Medir("insert, a row a batch", filas, [&] { Insertar(*base, filas, 2 * filas, 1); }));
    pasos.push_back(Medir("update, one batch", 2 * filas, [&] { Cambiar(*base, ids_.size()); }));
    pasos.push_back(Medir("update, a row a batch", filas, [&] {
      ids_.resize(filas);
      Cambiar(*base, 1);
    }));
    base.reset();
    pasos.push_back(Medir("open and read", 2 * filas, [&] { Leer(); }));
    base = mdb::Base::Abrir(ruta_);
    pasos.push_back(Medir("delete, one batch", filas, [&] {
      mdb::Cambios c;
      c.borradas = ids_;
      base->Aplicar("Datos", c);
      base->Confirmar();
    }));
    return pasos;
  }

 private:
  std::string ruta_;
  std::mt19937 azar_;
  std::vector<mdb::IdFila> ids_;

  template <typename Hecho>
  static Paso Medir(const char* nombre, std::size_t filas, Hecho&& hecho) {
    const double antes = Ahora();
    hecho();
    return {nombre, Ahora() - antes, filas};
  }

  static void Rellenar(mdb::Base& base, std::size_t paginas) {
    base.CrearTabla(Relleno(), base::Fecha{46347});
    for (std::size_t i = 0; i < paginas; i += 500) {
      mdb::Cambios c;
      for (std::size_t k = i; k < std::min(paginas, i + 500); ++k)
        c.nuevas.push_back({static_cast<std::int64_t>(k), mdb::Bytes(4000, 1)});
      base.Aplicar("Relleno", c);
      base.Confirmar();
    }
  }

  void Insertar(mdb::Base& base, std::size_t desde, std::size_t hasta, std::size_t lote) {
    mdb::Definicion d = *base.Indice().Tabla("Datos");
    d = mdb::LeerDefinicion(base.Hojas(), d.Pagina());
    for (std::size_t i = desde; i < hasta; i += lote) {
      mdb::Cambios c;
      for (std::size_t k = i; k < i + lote; ++k)
        c.nuevas.push_back(UnaFila(azar_, static_cast<std::int64_t>(k)));
      for (const auto id : mdb::Aplicar(base.Hojas(), d, c)) ids_.push_back(id);
    }
    base.Confirmar();
  }

  // The amounts change, and each fourth row's header: one index of three.
  void Cambiar(mdb::Base& base, std::size_t lote) {
    mdb::Definicion d = *base.Indice().Tabla("Datos");
    d = mdb::LeerDefinicion(base.Hojas(), d.Pagina());
    for (std::size_t i = 0; i < ids_.size(); i += lote) {
      mdb::Cambios c;
      for (std::size_t k = i; k < i + lote; ++k) {
        mdb::CambioDeFila cambio{ids_[k], {{3, static_cast<double>(azar_() % 1000)}}};
        if (azar_() % 4 == 0) cambio.valores.push_back({1, static_cast<std::int64_t>(azar_() % 5000)});
        c.cambiadas.push_back(std::move(cambio));
      }
      mdb::Aplicar(base.Hojas(), d, c);
    }
    base.Confirmar();
  }

  void Leer() const {
    const auto base = mdb::Base::Abrir(ruta_, {true, {}});
    std::size_t filas = 0;
    mdb::RecorrerFilas(base->Hojas(), *base->Indice().Tabla("Datos"), [&](mdb::IdFila, const mdb::Fila& f) {
      filas += f.size() / 7;
      return true;
    });
    if (filas == 0) throw base::Error("nothing was read");
  }
};

void Imprimir(const char* titulo, const std::vector<Paso>& pocas, const std::vector<Paso>& muchas) {
  std::printf("\n%s\n%-24s %10s %12s %12s %8s\n", titulo, "", "rows", "s", "rows/s", "growth");
  for (std::size_t i = 0; i < muchas.size(); ++i) {
    const auto& m = muchas[i];
    std::printf("%-24s %10zu %12.3f %12.0f", m.nombre, m.filas, m.segundos,
                static_cast<double>(m.filas) / m.segundos);
    if (i < pocas.size()) std::printf(" %8.1f", m.segundos / pocas[i].segundos);
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  const std::size_t filas = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20000;
  if (filas < 10) {
    std::fprintf(stderr, "usage: bench_mdb [ROWS]\n");
    return 2;
  }
  const fs::path carpeta =
      fs::temp_directory_path() / ("bench_mdb_" + std::to_string(std::random_device{}()));
  fs::create_directories(carpeta);
  try {
    Banco banco((carpeta / "banco.mdb").string());
    const auto pocas = banco.Correr(filas / 10, 0), muchas = banco.Correr(filas, 0);
    Imprimir("A file of its own; growth: times what a tenth of the rows take", pocas, muchas);
    const auto grande = banco.Correr(filas, 25000);
    Imprimir("Beside a table of 100 MB; growth: times the above", muchas, grande);
  } catch (const base::Error& e) {
    std::fprintf(stderr, "%s\n", e.what());
    fs::remove_all(carpeta);
    return 1;
  }
  fs::remove_all(carpeta);
  return 0;
}
