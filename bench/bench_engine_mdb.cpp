// Makes an Access file with one table of some 100 MB in a temporary folder, and prints what the first
// statement over it takes beside the reading of its rows and nothing else, and what the next statements take.
//
//   bench_engine_mdb [ROWS]     400000 when not given
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>

#include "base/standard_streams.h"
#include "engine_mdb/mdb_connection.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"

namespace {

// Of the processor: another program on the machine changes those of the clock.
template <typename Paso>
double Medir(Paso&& paso) {
  const std::clock_t desde = std::clock();
  paso();
  return static_cast<double>(std::clock() - desde) / CLOCKS_PER_SEC;
}

void Llenar(const std::string& ruta, long filas) {
  const auto c = engine_mdb::Crear(ruta);
  c->Ejecutar(
      "CREATE TABLE grande (id LONG CONSTRAINT pk PRIMARY KEY, idEmpresa LONG, id_Encabezado LONG, Cantidad "
      "DOUBLE, "
      "Monto CURRENCY, Fecha DATETIME, Activo YESNO, Detalle TEXT(200), Nombre TEXT(50))");
  c->Ejecutar("CREATE INDEX por_encabezado ON grande (id_Encabezado)");
  c->Ejecutar("CREATE INDEX por_nombre ON grande (Nombre)");
  c->BeginTrans();
  c->Ejecutar(
      "INSERT INTO grande VALUES (0, 1, 0, 1.5, 100.25, #01/31/2024#, True, String(170, 'd'), 'Núñez')");
  for (long hay = 1; hay < filas; hay *= 2) {
    const std::string n = std::to_string(hay);
    c->Ejecutar("INSERT INTO grande SELECT id + " + n + " AS id, idEmpresa, (id + " + n +
                ") \\ 20 AS id_Encabezado, id / 7 AS Cantidad, Monto, Fecha, Activo, Detalle, 'Persona ' & "
                "(id Mod 1000) "
                "AS Nombre FROM grande WHERE id < " +
                std::to_string(filas - hay));
  }
  c->CommitTrans();
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  const long filas = argc > 1 ? std::atol(argv[1]) : 400000;
  const auto carpeta =
      std::filesystem::temp_directory_path() / ("bench_engine_mdb_" + std::to_string(std::random_device{}()));
  std::filesystem::create_directory(carpeta);
  const std::string ruta = (carpeta / "grande.mdb").string();
  try {
    std::printf("filled in %.2f s, ", Medir([&] { Llenar(ruta, filas); }));
    std::printf("%.1f MB\n", static_cast<double>(std::filesystem::file_size(ruta)) / 1e6);
    std::size_t leidas = 0;
    const double lectura = Medir([&] {
      const auto base = mdb::Base::Abrir(ruta, {true, {}});
      mdb::RecorrerFilas(base->Hojas(), *base->Indice().Tabla("grande"), [&](mdb::IdFila, const mdb::Fila&) {
        ++leidas;
        return true;
      });
    });
    std::printf("%-42s %8.3f s (%zu rows)\n", "rows read, and nothing else", lectura, leidas);
    std::unique_ptr<db::Connection> c;
    const auto fila = [](const char* que, double segundos) { std::printf("%-42s %8.3f s\n", que, segundos); };
    fila("opened", Medir([&] { c = engine_mdb::Abrir(ruta); }));
    const double primera =
        Medir([&] { c->Ejecutar("SELECT Count(*), Sum(Monto) FROM grande WHERE id_Encabezado < 50"); });
    fila("first statement", primera);
    std::printf("%-42s %8.3f s (goal: well under 1)\n", "  over the reading", primera - lectura);
    for (int i = 0; i < 5; ++i)
      fila("a look-up",
           Medir([&] { c->Ejecutar("SELECT Sum(Cantidad) FROM grande WHERE id_Encabezado = 77"); }));
    fila("one row changed and saved",
         Medir([&] { c->Ejecutar("UPDATE grande SET Monto = 1 WHERE id = 5"); }));
    fila("another one", Medir([&] { c->Ejecutar("UPDATE grande SET Monto = 1 WHERE id = 6"); }));
    fila("10,000 rows changed and saved",
         Medir([&] { c->Ejecutar("UPDATE grande SET Cantidad = Cantidad + 1 WHERE id < 10000"); }));
  } catch (const base::Error& e) {
    std::fprintf(stderr, "bench_engine_mdb: %s\n", e.what());
    return 2;
  }
  std::error_code ignorado;
  std::filesystem::remove_all(carpeta, ignorado);
  return 0;
}
