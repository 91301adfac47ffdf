#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

#include "base/date.h"
#include "formula/vectores/vector_utils.h"
#include "refdata/ejecutar_internal.h"
#include "refdata/liquidation_types.h"
#include "refdata/sql.h"

namespace refdata {
namespace {

constexpr std::string_view kPorDefecto = "[Por Defecto]";
constexpr std::string_view kEnObra = "Imp. en Obra";

std::size_t Columna(const db::Recordset& filas, std::string_view nombre) {
  const int posicion = filas.PositionOf(nombre);
  if (posicion < 0) throw db::Error("Falta la columna " + std::string(nombre));
  return static_cast<std::size_t>(posicion);
}

void AgregarAlternativa(std::string& condicion, std::string_view alternativa) {
  if (!condicion.empty()) condicion += " or ";
  condicion += alternativa;
}

std::string CondicionDeTipos(const db::Recordset& tipos) {
  std::string condicion;
  const auto id = Columna(tipos, "id_TipoLiq");
  const auto cond = Columna(tipos, "Cond");
  for (std::size_t fila = 0; fila < tipos.Count(); ++fila) {
    std::string alternativa = "([Consulta].id_TipoLiq=" + tipos.At(id, fila).CsvText();
    const std::string propia = tipos.At(cond, fila).CsvText();
    // as it stands, without brackets of its own: an "or" in it reaches over the type
    if (!propia.empty()) alternativa += " and " + propia;
    AgregarAlternativa(condicion, alternativa + ")");
  }
  return condicion;
}

// Consecutive calendar records of one type and one condition.
struct GrupoCalendario {
  std::string tipo, condicion, fechas;

  void Cerrar(std::string& salida) const {
    if (fechas.empty()) return;
    std::string alternativa = "([Consulta].id_TipoLiq=" + tipo + " and [Consulta].Fecha in (" + fechas + ") ";
    if (!condicion.empty()) alternativa += " and (" + condicion + ")";
    AgregarAlternativa(salida, alternativa + ")");
  }
};

base::Date FechaDeCelda(const base::Value& valor) {
  const auto* fecha = valor.GetIf<base::Date>();
  return fecha != nullptr ? *fecha : base::Date{valor.Number()};
}

std::string CondicionDeCalendario(const db::Recordset& calendario) {
  std::string condicion;
  const auto tipo = Columna(calendario, "id_TipoLiq");
  const auto fecha = Columna(calendario, "Fecha");
  const auto cond = Columna(calendario, "CondCalLiq");
  GrupoCalendario grupo;
  for (std::size_t fila = 0; fila < calendario.Count(); ++fila) {
    std::string su_tipo = calendario.At(tipo, fila).CsvText();
    std::string su_condicion = calendario.At(cond, fila).CsvText();  // Null counts as empty
    if (fila == 0 || su_tipo != grupo.tipo || su_condicion != grupo.condicion) {
      grupo.Cerrar(condicion);
      grupo = {std::move(su_tipo), std::move(su_condicion), {}};
    }
    if (!grupo.fechas.empty()) grupo.fechas += ",";
    grupo.fechas.append("#").append(base::DateMMddyyyy(FechaDeCelda(calendario.At(fecha, fila)))).append("#");
  }
  grupo.Cerrar(condicion);
  return condicion;
}

std::int64_t Dato(const base::Value& valor) {
  constexpr double kMaximo = 9e15;
  const double numero = valor.NumberOrZero();
  if (std::abs(numero) > kMaximo)
    throw db::Error("El identificador " + valor.CsvText() + " es demasiado grande");
  return static_cast<std::int64_t>(numero);
}

std::vector<formula::ItemLista> Items(const db::Recordset& filas, std::size_t dato, std::size_t texto) {
  // A driver of another program may answer with less than it was asked for.
  if (filas.Fields().size() <= std::max(dato, texto))
    throw db::Error("La consulta no devolvió todas sus columnas.");
  std::vector<formula::ItemLista> items;
  for (std::size_t fila = 0; fila < filas.Count(); ++fila)
    items.push_back({.texto = filas.At(texto, fila).CsvText(), .dato = Dato(filas.At(dato, fila))});
  return items;
}

void ElegirPrimero(formula::ListControl& combo) { combo.ListIndex = combo.items.empty() ? -1 : 0; }

void DejarPorDefecto(formula::ListControl& combo) {
  combo.items.assign(1, {.texto = std::string(kPorDefecto), .dato = 0});
}

void MostrarAgrupacion(LiquidationTypes& tipos, bool visible) {
  tipos.cmbAgrupa.visible = visible;
  tipos.lblAgrupa_visible = visible;
  tipos.cmbAgrupaDef.visible = visible;
  tipos.lblAgrupaDef_visible = visible;
}

void CargarCentrosDeCosto(const sesion::DbSession& sesion, const settings::Settings& opciones,
                          LiquidationTypes& tipos, base::ErrorSink* errores) {
  DejarPorDefecto(tipos.cmbAgrupa);
  DejarPorDefecto(tipos.cmbAgrupaDef);
  base::PassOverError("CargarTiposLiquidacion: cmbAgrupa", errores, [&] {
    auto centros = Items(Ejecutar(sesion, sql::CentrosDeCosto()), 0, 1);
    auto& items = tipos.cmbAgrupa.items;
    items.insert(items.end(), std::make_move_iterator(centros.begin()),
                 std::make_move_iterator(centros.end()));
  });
  base::ErrorSink motivos;
  formula::LlenarLista(tipos.cmbAgrupaDef, "CentroCosto", "++idCC,NombreCC", "", " - ", nullptr, sesion,
                       &motivos);
  AnotarLista("CargarTiposLiquidacion: cmbAgrupaDef", motivos, errores);
  if (sesion.TipoConstruccion) tipos.lblAgrupa = kEnObra;
  // for every grouped company, construction or not: wanted
  tipos.lblAgrupaDef = kEnObra;
  tipos.CC_visible = opciones.CCDefEnArch;
  ElegirPrimero(tipos.cmbAgrupaDef);
  ElegirPrimero(tipos.cmbAgrupa);
}

}  // namespace

bool CargarTiposLiquidacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                            LiquidationTypes& tipos, base::ErrorSink* errores) {
  tipos.TypeCondition.clear();
  tipos.CalendarCondition.clear();
  tipos.motivo_fallo.clear();
  Cargar("CargarTiposLiquidacion: TypeCondition", errores, tipos.motivo_fallo, [&] {
    tipos.TypeCondition = CondicionDeTipos(Ejecutar(sesion, sql::TiposActivos(sesion.idEmpresa)));
  });
  Cargar("CargarTiposLiquidacion: CalendarCondition", errores, tipos.motivo_fallo, [&] {
    tipos.CalendarCondition = CondicionDeCalendario(Ejecutar(sesion, sql::Calendario(sesion.idEmpresa)));
  });
  Cargar("CargarTiposLiquidacion: cmbLiquidaciones", errores, tipos.motivo_fallo, [&] {
    tipos.cmbLiquidaciones.items = Items(Ejecutar(sesion, sql::GruposDeTipos(sesion.idEmpresa)), 0, 2);
    ElegirPrimero(tipos.cmbLiquidaciones);
  });
  MostrarAgrupacion(tipos, sesion.LiqAgrup);
  if (sesion.LiqAgrup)
    CargarCentrosDeCosto(sesion, opciones, tipos, errores);
  else
    tipos.CC_visible = false;
  return sesion.LiqAgrup;
}

}  // namespace refdata
