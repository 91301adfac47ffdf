#include "mdb/new_file.h"

#include <algorithm>
#include <array>
#include <bit>

#include "mdb/definition_internal.h"
#include "mdb/new_file_internal.h"
#include "mdb/system_definitions_internal.h"

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

constexpr NumPagina kMapaGlobal = 1, kMapas = 6, kPrimeraRaiz = 7, kDatosObjetos = 14, kDatosPermisos = 15;
constexpr std::size_t kLargoDeMapa = 69;  // one byte of kind, the start page, 512 pages

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

// Gives the table its maps, row after row of the page of maps, and its roots, page after page.
class Reparto {
 public:
  explicit Reparto(Paginas& paginas) : paginas_(paginas) {}

  void Dar(Definicion& d) {
    d.propias = Mapa();
    d.libres = Mapa();
    std::vector<Columna*> largas;
    for (auto& c : d.columnas)
      if (c.EsLarga()) largas.push_back(&c);
    std::sort(largas.begin(), largas.end(), [](auto* a, auto* b) { return a->numero < b->numero; });
    for (auto* c : largas) {
      c->lv_propias = Mapa();
      c->lv_libres = Mapa();
    }
    for (auto& r : d.reales) {
      r.mapa = Mapa();
      r.raiz = raiz_++;
    }
  }
  std::size_t Mapas() const { return mapa_; }
  void EscribirRaices(const Definicion& d) {
    for (const auto& r : d.reales) {
      Bytes& p = paginas_.Modificar(r.raiz);
      Poner16(p, 0, 0x0104);
      Poner16(p, 2, static_cast<std::uint16_t>(p.size() - 480));
      Poner32(p, 4, d.Pagina());
      MarcarEnMapa(paginas_, r.mapa, r.raiz);
    }
  }

 private:
  Puntero Mapa() { return {kMapas, mapa_++}; }
  Paginas& paginas_;
  std::uint8_t mapa_ = 0;
  NumPagina raiz_ = kPrimeraRaiz;
};

void EscribirUnaPagina(Paginas& paginas, const Definicion& d) {
  const Bytes bytes = SerializarDefinicion(d);
  Bytes& p = paginas.Modificar(d.Pagina());
  PonerBytes(p, 0, bytes);
  PonerCabeceraDeDefinicion(p, bytes.size(), 0);
}

std::vector<std::vector<Dato>> FilasDeObjetos(base::Fecha ahora) {
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
  std::vector<std::vector<Dato>> filas;
  for (const auto& o : objetos) {
    auto& fila = filas.emplace_back();
    fila.emplace_back(std::int64_t{o.id});
    fila.emplace_back(std::int64_t{o.padre});
    fila.emplace_back(std::string(o.nombre));
    fila.emplace_back(o.tipo);
    fila.emplace_back(ahora);
    fila.emplace_back(ahora);
    fila.emplace_back(o.id == kObjetoBase ? SidAdministrador() : SidMotor());
    fila.emplace_back(std::int64_t{static_cast<std::int32_t>(kBanderaDeSistema)});
  }
  return filas;
}

std::vector<std::vector<Dato>> FilasDePermisos() {
  std::vector<std::vector<Dato>> filas;
  const auto permiso = [&](std::int32_t objeto, Bytes sid, std::int64_t mascara, bool heredable = false) {
    auto& fila = filas.emplace_back();
    fila.emplace_back(std::int64_t{objeto});
    fila.emplace_back(std::move(sid));
    fila.emplace_back(mascara);
    fila.emplace_back(heredable);
  };
  for (const std::int32_t tabla : {2, 3, 4}) permiso(tabla, SidAdministrador(), 0x60000);
  permiso(5, SidAdministrador(), 0xE0000);
  for (const std::int32_t contenedor : {kContenedorTablas, kContenedorRelaciones}) {
    permiso(contenedor, SidCreador(), 0xF00FE, true);
    permiso(contenedor, SidAdministrador(), 0x60001);
  }
  permiso(kContenedorBases, SidAdministrador(), 0x60000);
  permiso(kObjetoBase, SidAdministrador(), 0x6000E);
  permiso(kObjetoBase, SidUsuarios(), 0x0E);
  for (const std::int32_t tabla : {4, 5, 2}) permiso(tabla, SidUsuarios(), 0x14);
  permiso(kContenedorTablas, SidUsuarios(), 0xFFEFF, true);
  permiso(kContenedorRelaciones, SidUsuarios(), 0xFFFFF, true);
  return filas;
}

}  // namespace

Bytes NuevaBase(std::uint16_t orden, base::Fecha ahora) {
  if (orden != 3082 && orden != 1034 && orden != 1033)
    throw base::Error("No se crean bases con el orden de texto " + std::to_string(orden));
  Cabecera cabecera;
  cabecera.orden = orden;
  cabecera.creada = kFechaDeCabecera;
  cabecera.sello = kSello;
  PaginasEnMemoria paginas(cabecera, NuevaCabecera(cabecera));
  while (paginas.Cantidad() <= kDatosPermisos) paginas.Agregar();

  std::array<Definicion, 4> tablas{TablaMSysObjects(orden), TablaMSysACEs(orden), TablaMSysQueries(orden),
                                   TablaMSysRelationships(orden)};
  const std::array<NumPagina, 4> donde{cabecera.objetos, cabecera.permisos, cabecera.consultas,
                                       cabecera.relaciones};
  Reparto reparto(paginas);
  for (std::size_t i = 0; i < tablas.size(); ++i) {
    tablas[i].paginas = {donde[i]};
    reparto.Dar(tablas[i]);
  }
  EscribirPaginaDeMapas(paginas, kMapaGlobal, kMapaGlobal, 2);
  for (NumPagina libre = paginas.Cantidad(); libre < 512; ++libre)
    MarcarEnMapa(paginas, {kMapaGlobal, 0}, libre);
  EscribirPaginaDeMapas(paginas, kMapas, 0, reparto.Mapas());
  for (auto& d : tablas) reparto.EscribirRaices(d);
  EscribirPrimerasFilas(paginas, tablas[0], kDatosObjetos, FilasDeObjetos(ahora));
  EscribirPrimerasFilas(paginas, tablas[1], kDatosPermisos, FilasDePermisos());
  for (const auto& d : tablas) EscribirUnaPagina(paginas, d);
  paginas.Confirmar();
  return paginas.Guardado();
}

}  // namespace mdb
