#include "mdb/schema/system_definitions_internal.h"

#include <algorithm>
#include <initializer_list>

#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

struct ColumnaDeSistema {
  const char* nombre;
  TipoColumna tipo;
  bool sid = false;
};

std::uint16_t LargoDe(TipoColumna tipo) {
  switch (tipo) {
    case TipoColumna::Booleano:
      return 1;
    case TipoColumna::Texto:
    case TipoColumna::Binario:
      return 510;
    default:
      return internal::AnchoDeTipo(tipo);
  }
}

// Columns in the order of their numbers; stored by name, as Access stores those of its own tables.
Definicion Tabla(const char* nombre, std::uint16_t orden, std::initializer_list<ColumnaDeSistema> columnas) {
  constexpr std::uint8_t kSid = 0x20;
  Definicion d;
  d.nombre = nombre;
  d.clase = Definicion::kDeSistema;
  std::uint16_t desplazamiento = 0;
  for (const auto& de : columnas) {
    Columna c;
    c.nombre = de.nombre;
    c.tipo = de.tipo;
    c.numero = d.max_columnas++;
    c.variable = d.variables;
    c.lcid = orden;
    c.largo = LargoDe(de.tipo);
    c.banderas = Columna::kActualizable | Columna::kDeSistema;
    if (de.sid) c.banderas |= kSid;
    if (internal::EsDeLargoVariable(de.tipo)) {
      ++d.variables;
    } else {
      c.banderas |= Columna::kFija;
      if (de.tipo != TipoColumna::Booleano) {
        c.desplazamiento = desplazamiento;
        desplazamiento = static_cast<std::uint16_t>(desplazamiento + c.largo);
      }
    }
    d.columnas.push_back(std::move(c));
  }
  std::sort(d.columnas.begin(), d.columnas.end(),
            [](const Columna& a, const Columna& b) { return a.nombre < b.nombre; });
  return d;
}

void AgregarIndice(Definicion& d, const char* nombre, std::initializer_list<std::uint16_t> columnas,
                   std::uint8_t banderas, IndiceLogico::Clase clase = IndiceLogico::Normal) {
  IndiceReal r;
  for (const auto c : columnas) r.partes.push_back({c, false});
  r.banderas = IndiceReal::kSiempre | banderas;
  IndiceLogico l;
  l.nombre = nombre;
  l.numero = l.real = static_cast<std::uint32_t>(d.reales.size());
  l.clase = clase;
  d.reales.push_back(std::move(r));
  const auto lugar = std::find_if(d.logicos.begin(), d.logicos.end(),
                                  [&](const IndiceLogico& otro) { return otro.nombre > l.nombre; });
  d.logicos.insert(lugar, std::move(l));
}

}  // namespace

Definicion TablaMSysObjects(std::uint16_t orden) {
  using enum TipoColumna;
  Definicion d = Tabla("MSysObjects", orden,
                       {{"Id", Largo},
                        {"ParentId", Largo},
                        {"Name", Texto},
                        {"Type", Entero},
                        {"DateCreate", Fecha},
                        {"DateUpdate", Fecha},
                        {"Owner", Binario, true},
                        {"Flags", Largo},
                        {"Database", Memo},
                        {"Connect", Memo},
                        {"ForeignName", Texto},
                        {"RmtInfoShort", Binario},
                        {"RmtInfoLong", Ole},
                        {"Lv", Ole},
                        {"LvProp", Ole},
                        {"LvModule", Ole},
                        {"LvExtra", Ole}});
  AgregarIndice(d, "ParentIdName", {1, 2}, IndiceReal::kUnico);
  AgregarIndice(d, "Id", {0}, IndiceReal::kUnico, IndiceLogico::Primario);
  return d;
}

Definicion TablaMSysACEs(std::uint16_t orden) {
  using enum TipoColumna;
  Definicion d =
      Tabla("MSysACEs", orden,
            {{"ObjectId", Largo}, {"SID", Binario, true}, {"ACM", Largo}, {"FInheritable", Booleano}});
  AgregarIndice(d, "ObjectId", {0}, IndiceReal::kRequerido);
  return d;
}

Definicion TablaMSysQueries(std::uint16_t orden) {
  using enum TipoColumna;
  Definicion d = Tabla("MSysQueries", orden,
                       {{"ObjectId", Largo},
                        {"Attribute", Byte},
                        {"Order", Binario},
                        {"Name1", Texto},
                        {"Name2", Texto},
                        {"Expression", Memo},
                        {"Flag", Entero},
                        {"LvExtra", Largo}});
  AgregarIndice(d, "ObjectIdAttribute", {0, 1, 2}, IndiceReal::kUnico, IndiceLogico::Primario);
  return d;
}

Definicion TablaMSysRelationships(std::uint16_t orden) {
  using enum TipoColumna;
  Definicion d = Tabla("MSysRelationships", orden,
                       {{"szRelationship", Texto},
                        {"grbit", Largo},
                        {"ccolumn", Largo},
                        {"icolumn", Largo},
                        {"szObject", Texto},
                        {"szColumn", Texto},
                        {"szReferencedObject", Texto},
                        {"szReferencedColumn", Texto}});
  AgregarIndice(d, "szRelationship", {0}, IndiceReal::kIgnoraNulos);
  AgregarIndice(d, "szObject", {4}, IndiceReal::kIgnoraNulos);
  AgregarIndice(d, "szReferencedObject", {6}, IndiceReal::kIgnoraNulos);
  return d;
}

}  // namespace mdb
