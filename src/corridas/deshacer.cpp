#include "corridas/deshacer.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>

#include "base/text.h"
#include "corridas/restaurar_sql.h"
#include "db/connection.h"
#include "liquidation/sql.h"

namespace corridas {
namespace {

constexpr const char* kCambiada = "alguien la cambió después";
constexpr const char* kFalta = "ya no está: alguien la borró o la movió después";
constexpr const char* kOcupada = "hay otra en su lugar desde entonces";
constexpr const char* kTerminada = "la liquidación está terminada";
constexpr const char* kDeLoMismo = "pertenece a lo mismo que otra que se conserva";
constexpr const char* kConDatos = "el encabezado tiene otros datos";

std::int64_t Entero(const base::Value& v) { return static_cast<std::int64_t>(v.NumberOrZero()); }

// What stays or goes together: a datum's place with its instalments, or a series of a user table.
using Grupo = std::tuple<int, std::int64_t, std::int64_t, std::string>;
enum : int { kGrupoDato, kGrupoPago, kGrupoSerie, kGrupoEncabezado };

struct Pieza {
  Tabla tabla = kEncabezados;
  const CambioDeFila* cambio = nullptr;
  Grupo grupo;
  std::optional<Fila> ahora;  // none: not there
  std::string motivo;         // why it stays by itself
  bool hecha = false;         // nothing to do: it is as before the run already, or worked out again
};

class Anulador {
 public:
  Anulador(const sesion::DbSession& sesion, const Corrida& corrida)
      : sesion_(sesion), corrida_(corrida), ahora_(Foto::Tomar(sesion, corrida.resumen.mes)) {}

  Anulada Deshacer() {
    intacto_ = ahora_.Huella() == corrida_.resumen.despues;
    VerColumnas();
    Agrupar();
    if (!intacto_) Juzgar();
    Escribir();
    BorrarEncabezados();
    Recalcular();
    Comprobar();
    std::sort(r_.conservadas.begin(), r_.conservadas.end(), [](const auto& a, const auto& b) {
      return std::tie(a.tabla, a.clave) < std::tie(b.tabla, b.clave);
    });
    return std::move(r_);
  }

 private:
  const CambiosDeTabla& De(Tabla tabla) const { return corrida_.cambios.tablas.at(tabla); }
  const base::Value& Celda(Tabla tabla, const Fila& fila, const char* columna) const {
    const int i = De(tabla).Columna(columna);
    if (i < 0) throw db::Error("La tabla " + De(tabla).tabla + " no tiene la columna " + columna);
    return fila[static_cast<std::size_t>(i)];
  }

  void VerColumnas() const {
    for (std::size_t i = 0; i < kCuantasTablas; ++i)
      if (!De(static_cast<Tabla>(i)).filas.empty() &&
          De(static_cast<Tabla>(i)).columnas != ahora_.Columnas(static_cast<Tabla>(i)))
        throw base::Error("La tabla " + De(static_cast<Tabla>(i)).tabla +
                          " tiene otras columnas que cuando se importó: no se puede deshacer la corrida");
  }

  void Agrupar() {
    std::unordered_map<std::int64_t, Grupo> de_dato, de_pago;
    for (const CambioDeFila& c : De(kDatos).filas) {
      const Fila& f = c.Cualquiera();
      Grupo g{kGrupoDato, Entero(Celda(kDatos, f, "id_Encabezado")), Entero(Celda(kDatos, f, "id_Concepto")),
              std::to_string(Entero(Celda(kDatos, f, "idAgrupa")))};
      de_dato.emplace(Entero(Celda(kDatos, f, "id_Dato")), g);
      piezas_.push_back({kDatos, &c, std::move(g), {}, {}, false});
    }
    for (const CambioDeFila& c : De(kPagosDeta).filas) {
      const std::int64_t pago = Entero(Celda(kPagosDeta, c.Cualquiera(), "Id_Pago"));
      const auto dato = de_dato.find(Entero(Celda(kPagosDeta, c.Cualquiera(), "id_DatosLiq")));
      Grupo g = dato != de_dato.end() ? dato->second : Grupo{kGrupoPago, pago, 0, {}};
      de_pago.emplace(pago, g);
      piezas_.push_back({kPagosDeta, &c, std::move(g), {}, {}, false});
    }
    for (const CambioDeFila& c : De(kPagos).filas) {
      const std::int64_t pago = Entero(Celda(kPagos, c.Cualquiera(), "Id_Pago"));
      const auto deta = de_pago.find(pago);
      piezas_.push_back(
          {kPagos, &c, deta != de_pago.end() ? deta->second : Grupo{kGrupoPago, pago, 0, {}}, {}, {}, false});
    }
    for (const CambioDeFila& c : De(kTablasUsuario).filas)
      piezas_.push_back({kTablasUsuario,
                         &c,
                         {kGrupoSerie, Entero(Celda(kTablasUsuario, c.Cualquiera(), "Id_Tabla")), 0,
                          Celda(kTablasUsuario, c.Cualquiera(), "Codigo").Text()},
                         {},
                         {},
                         false});
    for (Pieza& p : piezas_) Buscar(p);
  }

  void Buscar(Pieza& p) {
    const std::vector<Fila> halladas = ahora_.ConClaveDe(p.tabla, p.cambio->Cualquiera());
    if (halladas.size() > 1) p.motivo = "hay más de una fila con esa clave";
    if (halladas.empty()) return;
    p.ahora = halladas.front();
    for (const Fila& f : halladas)
      if (p.cambio->despues && f == *p.cambio->despues) p.ahora = f;
  }

  // Whether the row holds what the run left there. What the updates of the month work out tells nothing of a
  // person.
  bool ComoLaDejo(const Pieza& p) const {
    if (p.ahora.has_value() != p.cambio->despues.has_value()) return false;
    if (!p.ahora) return true;
    for (std::size_t i = 0; i < p.ahora->size(); ++i) {
      if ((*p.ahora)[i] == (*p.cambio->despues)[i]) continue;
      if (p.tabla != kDatos || !EsCalculada(De(kDatos).columnas[i])) return false;
    }
    return true;
  }

  // Touched by the updates of the month alone, which run again: nothing of the run stands in it.
  bool SoloCalculada(const Pieza& p) const {
    if (p.tabla != kDatos || !p.cambio->antes || !p.cambio->despues) return false;
    for (std::size_t i = 0; i < p.cambio->antes->size(); ++i)
      if ((*p.cambio->antes)[i] != (*p.cambio->despues)[i] && !EsCalculada(De(kDatos).columnas[i]))
        return false;
    return true;
  }

  static bool EsCalculada(std::string_view columna) {
    for (const char* calculada : {"DTE", "DTP", "Monto", "DetLiq"})
      if (base::EqualIgnoringCase(columna, calculada)) return true;
    return false;
  }

  // Which pieces stay, since somebody has been at the month.
  void Juzgar() {
    LeerEncabezados();
    std::set<Grupo> ocupados = LugaresOcupados();
    for (Pieza& p : piezas_) {
      if (p.ahora == p.cambio->antes || SoloCalculada(p)) p.hecha = true;
      if (p.hecha || !p.motivo.empty()) continue;
      if (!ComoLaDejo(p))
        p.motivo = p.ahora ? kCambiada : kFalta;
      else if (p.tabla == kDatos)
        p.motivo = MotivoDelEncabezado(p);
      if (p.motivo.empty() && !p.cambio->despues && ocupados.contains(p.grupo)) p.motivo = kOcupada;
    }
    std::set<Grupo> conservados;
    for (const Pieza& p : piezas_)
      if (!p.motivo.empty()) conservados.insert(p.grupo);
    for (Pieza& p : piezas_)
      if (p.motivo.empty() && !p.hecha && conservados.contains(p.grupo)) p.motivo = kDeLoMismo;
  }

  void LeerEncabezados() {
    const db::Recordset rs =
        sesion_.conexion->Query("Select id_Encabezado,Terminado From Encabezados Where MesDeLiq=" +
                                liquidation::sql::Literal(corrida_.resumen.mes));
    for (std::size_t i = 0; i < rs.Count(); ++i)
      terminado_.emplace(Entero(rs.At(0, i)), !rs.At(1, i).IsNull() && rs.At(1, i).Boolean());
  }

  std::string MotivoDelEncabezado(const Pieza& p) const {
    for (const auto* fila : {&p.cambio->antes, &p.cambio->despues}) {
      if (!*fila) continue;
      const auto it = terminado_.find(Entero(Celda(kDatos, **fila, "id_Encabezado")));
      if (it == terminado_.end()) return "su encabezado ya no está";
      if (it->second) return kTerminada;
    }
    return {};
  }

  // Places of deleted data and series where something stands that is not of this run: putting back what was
  // there would count twice.
  std::set<Grupo> LugaresOcupados() const {
    std::set<Grupo> borrados, ocupados;
    std::map<Tabla, std::set<std::int64_t>> propias;
    for (const Pieza& p : piezas_) {
      if (!p.cambio->despues) borrados.insert(p.grupo);
      if (p.tabla == kDatos) propias[kDatos].insert(Entero(Celda(kDatos, p.cambio->Cualquiera(), "id_Dato")));
    }
    if (borrados.empty()) return ocupados;
    ahora_.ParaCada(kDatos, [&](const Fila& f) {
      if (propias[kDatos].contains(Entero(Celda(kDatos, f, "id_Dato")))) return;
      const Grupo g{kGrupoDato, Entero(Celda(kDatos, f, "id_Encabezado")),
                    Entero(Celda(kDatos, f, "id_Concepto")),
                    std::to_string(Entero(Celda(kDatos, f, "idAgrupa")))};
      if (borrados.contains(g)) ocupados.insert(g);
    });
    return ocupados;
  }

  // What hangs on a datum goes before it and comes after it.
  void Escribir() {
    for (const Tabla tabla : {kPagosDeta, kPagos, kDatos, kTablasUsuario}) CadaUna(tabla, true);
    for (const Tabla tabla : {kDatos, kPagos, kPagosDeta, kTablasUsuario}) CadaUna(tabla, false);
    for (const Pieza& p : piezas_)
      if (!p.motivo.empty()) Conservar(p);
  }

  void CadaUna(Tabla tabla, bool borrar) {
    for (const Pieza& p : piezas_) {
      if (p.tabla != tabla || !p.motivo.empty() || p.hecha || borrar != !p.cambio->antes) continue;
      const CambiosDeTabla& t = De(tabla);
      if (borrar)
        Ejecutar(sql::Borrar(t, *p.cambio->despues));
      else if (!p.ahora)
        Ejecutar(sql::Insertar(t, *p.cambio->antes));
      else
        Ejecutar(sql::Actualizar(t, *p.ahora, *p.cambio->antes));
      ++r_.deshechas;
    }
  }

  void Ejecutar(const std::string& sql) { sesion_.conexion->Execute(sql); }

  void Conservar(const Pieza& p) {
    const Fila& f = p.cambio->Cualquiera();
    FilaConservada c{De(p.tabla).tabla, {}, 0, 0, p.motivo};
    for (const std::size_t i : De(p.tabla).clave) {
      if (base::EqualIgnoringCase(De(p.tabla).columnas[i], "idEmpresa")) continue;
      c.clave += (c.clave.empty() ? "" : ", ") + De(p.tabla).columnas[i] + " " + f[i].CsvText();
    }
    if (p.tabla == kDatos) {
      c.concepto = Entero(Celda(kDatos, f, "id_Concepto"));
      c.id_Contrato = ContratoDe(Entero(Celda(kDatos, f, "id_Encabezado")));
    } else if (p.tabla == kEncabezados) {
      c.id_Contrato = Entero(Celda(kEncabezados, f, "id_Contrato"));
    } else if (p.tabla == kPagos) {
      c.id_Contrato = Entero(Celda(kPagos, f, "id_Contrato"));
      c.concepto = Entero(Celda(kPagos, f, "id_Concepto"));
    } else if (p.tabla == kTablasUsuario) {
      c.concepto = Entero(Celda(kTablasUsuario, f, "Id_Tabla")) + 1000;
      c.id_Contrato = Entero(Celda(kTablasUsuario, f, "Codigo"));
    }
    r_.conservadas.push_back(std::move(c));
  }

  std::int64_t ContratoDe(std::int64_t encabezado) {
    if (contratos_.empty()) {
      const int id = De(kEncabezados).Columna("id_Encabezado"),
                contrato = De(kEncabezados).Columna("id_Contrato");
      ahora_.ParaCada(kEncabezados, [&](const Fila& f) {
        contratos_[Entero(f.at(static_cast<std::size_t>(id)))] =
            Entero(f.at(static_cast<std::size_t>(contrato)));
      });
    }
    const auto it = contratos_.find(encabezado);
    return it == contratos_.end() ? 0 : it->second;
  }

  // A header goes when nothing stands in it. Headers that the run did not make it never changed.
  void BorrarEncabezados() {
    if (De(kEncabezados).filas.empty()) return;
    std::set<std::int64_t> con_datos;
    const db::Recordset rs = sesion_.conexion->Query(
        "Select Distinct D.id_Encabezado From Datos_Liquidacion as D inner join Encabezados as E on "
        "E.id_Encabezado=D.id_Encabezado Where E.MesDeLiq=" +
        liquidation::sql::Literal(corrida_.resumen.mes));
    for (std::size_t i = 0; i < rs.Count(); ++i) con_datos.insert(Entero(rs.At(0, i)));
    for (const CambioDeFila& c : De(kEncabezados).filas) {
      Pieza p{kEncabezados, &c, {kGrupoEncabezado, 0, 0, {}}, {}, {}, false};
      Buscar(p);
      if (p.ahora == c.antes) continue;
      if (con_datos.contains(Entero(Celda(kEncabezados, c.Cualquiera(), "id_Encabezado"))))
        p.motivo = kConDatos;
      if (p.ahora != c.despues) p.motivo = p.ahora ? kCambiada : kFalta;
      if (p.motivo.empty()) {
        Ejecutar(sql::Borrar(De(kEncabezados), c.Cualquiera()));
        ++r_.deshechas;
      } else {
        Conservar(p);
      }
      encabezados_.push_back(std::move(p));
    }
  }

  void Recalcular() {
    if (intacto_ || r_.deshechas == 0) return;
    r_.recalculada = true;
    const auto correr = [&](const char* falla, const std::string& sql) {
      base::ErrorSink errores;
      if (!base::PassOverError("Deshacer", &errores, [&] { Ejecutar(sql); }))
        r_.actualizaciones_fallidas.push_back(std::string(falla) + ": " + errores.back().description);
    };
    const base::Date mes = corrida_.resumen.mes;
    correr("No se actualizaron los días trabajados",
           liquidation::sql::ActualizarDias(sesion_.idEmpresa, mes));
    correr("No se actualizaron los montos", liquidation::sql::ActualizarMontos(sesion_.idEmpresa, mes));
    correr("No se actualizó el detalle", liquidation::sql::ActualizarDetalle(mes));
  }

  // A row that came out other than it was would be somebody's wage.
  void Comprobar() const {
    const Foto ahora = Foto::Tomar(sesion_, corrida_.resumen.mes);
    if (intacto_ && r_.conservadas.empty()) {
      if (ahora.Huella() == corrida_.resumen.antes) return;
    } else {
      bool bien = true;
      for (const Pieza& p : piezas_) bien = bien && (!p.motivo.empty() || p.hecha || ComoAntes(ahora, p));
      if (bien) return;
    }
    throw base::Error("No se deshizo nada: alguna fila no quedó como estaba antes de la corrida");
  }

  bool ComoAntes(const Foto& ahora, const Pieza& p) const {
    const std::vector<Fila> halladas = ahora.ConClaveDe(p.tabla, p.cambio->Cualquiera());
    if (!p.cambio->antes) return halladas.empty();
    for (const Fila& f : halladas) {
      bool igual = true;
      for (std::size_t i = 0; i < f.size(); ++i)
        igual = igual && (f[i] == (*p.cambio->antes)[i] || (p.tabla == kDatos && RecalculaColumna(i)));
      if (igual) return true;
    }
    return false;
  }

  // The updates work out amounts, quantities and coefficients too.
  bool RecalculaColumna(std::size_t i) const {
    const std::string& columna = De(kDatos).columnas[i];
    return EsCalculada(columna) || base::EqualIgnoringCase(columna, "Cantidad") ||
           base::EqualIgnoringCase(columna, "Coeficiente");
  }

  const sesion::DbSession& sesion_;
  const Corrida& corrida_;
  const Foto ahora_;
  bool intacto_ = false;
  std::vector<Pieza> piezas_, encabezados_;
  std::unordered_map<std::int64_t, bool> terminado_;
  std::unordered_map<std::int64_t, std::int64_t> contratos_;
  Anulada r_;
};

}  // namespace

Anulada DeshacerFilas(const sesion::DbSession& sesion, const Corrida& corrida) {
  return Anulador(sesion, corrida).Deshacer();
}

}  // namespace corridas
