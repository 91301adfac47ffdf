#include "mdb/schema/new_file.h"

#include <algorithm>
#include <array>
#include <bit>

#include "base/sort_order.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// Who owns and may do what is told by SIDs of two bytes, stored XORed with a stream that each file derives
// from its header, in a way that we do not know. So every new file carries one header date and seal, and the
// first bytes of the stream that go with them; the objects carry the real date.
constexpr auto kFechaDeCabecera = std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E});  // 42329.9448…
constexpr std::uint32_t kSello = 0x261C;
constexpr std::array<std::uint8_t, 2> kCorriente{0x67, 0x8A};

Bytes Sid(std::uint8_t a, std::uint8_t b) {
  return {static_cast<std::uint8_t>(a ^ kCorriente[0]), static_cast<std::uint8_t>(b ^ kCorriente[1])};
}
Bytes SidMotor() { return Sid(0x02, 0x03); }
Bytes SidAdministrador() { return Sid(0x03, 0x01); }
Bytes SidUsuarios() { return Sid(0x02, 0x01); }
Bytes SidCreador() { return Sid(0x02, 0x04); }

constexpr NumPagina kMapaGlobal = 1, kMapas = 6;
constexpr std::size_t kLargoDeMapa = 69;  // one byte of kind, the start page, 512 pages
constexpr NumPagina kPaginasDeMapa = 512;

// A page of `cantidad` empty maps.
void EscribirPaginaDeMapas(Paginas& paginas, NumPagina numero, NumPagina duena, std::size_t cantidad) {
  Bytes& p = paginas.Modificar(numero);
  Poner16(p, 0, 0x0101);
  Poner16(p, 2, static_cast<std::uint16_t>(p.size() - 14 - cantidad * (2 + kLargoDeMapa)));
  Poner32(p, 4, duena);
  Poner16(p, 12, static_cast<std::uint16_t>(cantidad));
  for (std::size_t i = 0; i < cantidad; ++i)
    Poner16(p, 14 + 2 * i, static_cast<std::uint16_t>(p.size() - (i + 1) * kLargoDeMapa));
}

// Page 1: the map of free pages, which names those beyond the end too, and a second one, empty.
void EscribirMapaGlobal(Paginas& paginas) {
  EscribirPaginaDeMapas(paginas, kMapaGlobal, kMapaGlobal, 2);
  Bytes& p = paginas.Modificar(kMapaGlobal);
  const std::size_t bitmap = p.size() - kLargoDeMapa + 5;
  for (NumPagina libre = paginas.Cantidad(); libre < kPaginasDeMapa; ++libre)
    p[bitmap + libre / 8] = static_cast<std::uint8_t>(p[bitmap + libre / 8] | 1U << (libre % 8));
}

// Gives each table its maps, row after row of the page of maps.
void RepartirMapas(std::span<Definicion> tablas, std::uint8_t& cantidad) {
  const auto mapa = [&] { return Puntero{kMapas, cantidad++}; };
  for (auto& d : tablas) {
    d.propias = mapa();
    d.libres = mapa();
    std::vector<Columna*> largas;
    for (auto& c : d.columnas)
      if (c.EsLarga()) largas.push_back(&c);
    std::sort(largas.begin(), largas.end(), [](auto* a, auto* b) { return a->numero < b->numero; });
    for (auto* c : largas) {
      c->lv_propias = mapa();
      c->lv_libres = mapa();
    }
    for (auto& r : d.reales) r.mapa = mapa();
  }
}

Cambios ObjetosDe(const Definicion& tabla, base::Fecha ahora) {
  struct Objeto {
    std::int32_t id, padre;
    const char* nombre;
    std::int64_t tipo;
  };
  constexpr std::int64_t kContenedor = 3, kBase = 2, kTabla = 1;
  const Objeto objetos[] = {{kContenedorTablas, kRaizDeObjetos, "Tables", kContenedor},
                            {kContenedorBases, kRaizDeObjetos, "Databases", kContenedor},
                            {kContenedorRelaciones, kRaizDeObjetos, "Relationships", kContenedor},
                            {kObjetoBase, kContenedorBases, "MSysDb", kBase},
                            {2, kContenedorTablas, "MSysObjects", kTabla},
                            {3, kContenedorTablas, "MSysACEs", kTabla},
                            {4, kContenedorTablas, "MSysQueries", kTabla},
                            {5, kContenedorTablas, "MSysRelationships", kTabla}};
  Cambios cambios;
  for (const auto& o : objetos)
    cambios.nuevas.push_back(internal::FilaPorNombre(tabla)
                                 .Poner("Id", std::int64_t{o.id})
                                 .Poner("ParentId", std::int64_t{o.padre})
                                 .Poner("Name", std::string(o.nombre))
                                 .Poner("Type", o.tipo)
                                 .Poner("DateCreate", ahora)
                                 .Poner("DateUpdate", ahora)
                                 .Poner("Owner", o.id == kObjetoBase ? SidAdministrador() : SidMotor())
                                 .Poner("Flags", std::int64_t{static_cast<std::int32_t>(kBanderaDeSistema)})
                                 .Tomar());
  return cambios;
}

Cambios PermisosDe(const Definicion& tabla) {
  Cambios cambios;
  const auto permiso = [&](std::int32_t objeto, Bytes sid, std::int64_t mascara, bool heredable = false) {
    cambios.nuevas.push_back(internal::FilaPorNombre(tabla)
                                 .Poner("ObjectId", std::int64_t{objeto})
                                 .Poner("SID", std::move(sid))
                                 .Poner("ACM", mascara)
                                 .Poner("FInheritable", heredable)
                                 .Tomar());
  };
  for (const std::int32_t sistema : {2, 3, 4}) permiso(sistema, SidAdministrador(), 0x60000);
  permiso(5, SidAdministrador(), 0xE0000);
  for (const std::int32_t contenedor : {kContenedorTablas, kContenedorRelaciones}) {
    permiso(contenedor, SidCreador(), 0xF00FE, true);
    permiso(contenedor, SidAdministrador(), 0x60001);
  }
  permiso(kContenedorBases, SidAdministrador(), 0x60000);
  permiso(kObjetoBase, SidAdministrador(), 0x6000E);
  permiso(kObjetoBase, SidUsuarios(), 0x0E);
  for (const std::int32_t sistema : {4, 5, 2}) permiso(sistema, SidUsuarios(), 0x14);
  permiso(kContenedorTablas, SidUsuarios(), 0xFFEFF, true);
  permiso(kContenedorRelaciones, SidUsuarios(), 0xFFFFF, true);
  return cambios;
}

}  // namespace

Bytes NuevaBase(std::uint16_t orden, base::Fecha ahora) {
  if (!base::OrderOfLanguage(orden))
    throw base::Error("No se crean bases con el orden de texto " + std::to_string(orden));
  Cabecera cabecera;
  cabecera.orden = orden;
  cabecera.creada = kFechaDeCabecera;
  cabecera.sello = kSello;
  PaginasEnMemoria paginas(cabecera, NuevaCabecera(cabecera));
  while (paginas.Cantidad() <= kMapas) paginas.Agregar();
  EscribirMapaGlobal(paginas);

  std::array<Definicion, 4> tablas{TablaMSysObjects(orden), TablaMSysACEs(orden), TablaMSysQueries(orden),
                                   TablaMSysRelationships(orden)};
  const std::array<NumPagina, 4> donde{cabecera.objetos, cabecera.permisos, cabecera.consultas,
                                       cabecera.relaciones};
  std::uint8_t mapas = 0;
  RepartirMapas(tablas, mapas);
  EscribirPaginaDeMapas(paginas, kMapas, 0, mapas);
  for (std::size_t i = 0; i < tablas.size(); ++i) {
    tablas[i].paginas = {donde[i]};
    for (auto& r : tablas[i].reales) r.raiz = NuevaRaiz(paginas, donde[i], r.mapa);
    EscribirDefinicion(paginas, tablas[i]);
  }
  Aplicar(paginas, tablas[0], ObjetosDe(tablas[0], ahora));
  Aplicar(paginas, tablas[1], PermisosDe(tablas[1]));
  paginas.Confirmar();
  return paginas.Guardado();
}

}  // namespace mdb
