#include "liquidation/verosimilitud.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "liquidation/casos_internal.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

constexpr int kMesesAntes = 3;
constexpr std::size_t kMesesParaComparar = 2;
constexpr double kVeces = 2;
constexpr double kHorasDelDia = 24;
constexpr std::int32_t kPrimeraTabla = 1000;

struct Clave {
  std::int32_t contrato = 0, concepto = 0;
  auto operator<=>(const Clave&) const = default;
};

// What the file brings to a contract and concept.
struct Traido {
  double cantidad = 0;
  std::size_t persona = 0;  // row of the index
  std::size_t linea = 0;    // the first
};

// Whether the quantity of a datum stands in its coefficient.
bool EnCoeficiente(const ImportRow& fila) {
  const int tipo = TipoDatoDe(fila);
  return tipo != kTipoCantidad && (TipoCuotaDe(fila) != 0 || tipo != kTipoCantidadYValor);
}

// The engines give a date for a column of dates; a driver may give its text.
base::Date FechaDe(const base::Value& valor, base::Date hoy) {
  if (const base::Date* fecha = valor.GetIf<base::Date>()) return *fecha;
  const auto leida = base::DateFromText(valor.Text(), hoy);
  if (!leida) throw base::Error(base::ErrorDescription(13), 13);
  return *leida;
}

class Comparador {
 public:
  Comparador(const EntradaImportacion& entrada) : e_(entrada) {}

  void Ver(const ImportRow& fila) {
    VerPersona(fila.campo);
    const FilaRevisada revisada = RevisarFila(e_, fila);
    if (!revisada.linea || revisada.linea->concepto >= kPrimeraTabla) return;
    const LineaAImportar& linea = *revisada.linea;
    Clave clave{.concepto = linea.concepto};
    try {
      clave.contrato = Identificador32(e_.personas.Texto(refdata::kContrato, linea.persona));
    } catch (const base::Error&) {
      return;  // the line will be refused
    }
    VerHoras(fila, linea);
    en_coeficiente_[linea.concepto] = EnCoeficiente(fila);
    const auto [it, nuevo] = traido_.try_emplace(clave, Traido{0, linea.persona, fila.linea});
    const bool se_suma = e_.opciones.TotalizarConc || TipoDatoDe(fila) == kTipoCantidadYValor;
    const double cantidad = base::DoubleOfSingle(linea.cantidad);
    it->second.cantidad = se_suma ? it->second.cantidad + cantidad : cantidad;
  }

  // A line that the filter dropped says all the same that the file knows the person.
  void VerPersona(const formula::CamposDeLinea& campo) {
    const int fila = e_.personas.Buscar(campo[importfile::kClave], e_.opciones.Configura);
    if (fila >= 0) en_archivo_.insert(e_.personas.Texto(refdata::kPersona, static_cast<std::size_t>(fila)));
  }

  std::vector<std::string> Textos() {
    if (!traido_.empty()) {
      Leer("las fechas de los contratos", [&] { LeerFines(); });
      Leer("los meses anteriores", [&] { LeerHistoria(); });
    }
    std::vector<std::string> textos;
    const auto agregar = [&](const std::string& que, const std::string& casos) {
      if (!casos.empty()) textos.push_back(que + casos + ".");
    };
    agregar("Hay personas con más horas que las " + base::NumberText(HorasDelMes()) + " que tiene el mes: ",
            TextoDeHoras());
    agregar("Hay contratos que terminan dentro del mes: ", TextoDeFines());
    agregar("Hay cantidades lejos de las de los tres meses anteriores: ", TextoDeLejanas());
    agregar("Hay personas que el mes anterior tuvieron datos de estos conceptos y no están en el archivo: ",
            TextoDeFaltantes());
    for (const std::string& motivo : sin_leer_) textos.push_back(motivo);
    return textos;
  }

 private:
  template <typename Paso>
  void Leer(const char* que, Paso&& paso) {
    try {
      paso();
    } catch (const base::Error& error) {
      if (error.IsStorageFault()) throw;
      sin_leer_.push_back(std::string("No se pudo comparar con ") + que + ": " + error.Description());
    }
  }

  void VerHoras(const ImportRow& fila, const LineaAImportar& linea) {
    if (linea.mes_entero || TipoDatoDe(fila) != kTipoCantidad || TipoCuotaDe(fila) != 0) return;
    const std::string& persona = e_.personas.Texto(refdata::kPersona, linea.persona);
    const auto [it, nuevo] = lugar_de_horas_.try_emplace(persona, horas_.size());
    if (nuevo) horas_.push_back({Nombre(linea.persona), 0, {}});
    Horas& horas = horas_[it->second];
    horas.suma += base::DoubleOfSingle(linea.cantidad);
    horas.lineas.Sumar(fila.linea);
  }

  void LeerFines() {
    const auto rs =
        e_.sesion.conexion->Query(sql::ContratosQueTerminan(e_.sesion.idEmpresa, e_.mes, UltimoDia()));
    for (std::size_t i = 0; i < rs.Count(); ++i)
      fines_[rs.At(0, i).Integer()] = base::FormatDate(FechaDe(rs.At(1, i), e_.mes), "dd/MM/yyyy");
  }

  void LeerHistoria() {
    std::set<std::int32_t> conceptos;
    for (const auto& [clave, traido] : traido_) conceptos.insert(clave.concepto);
    std::vector<std::string> lista;
    for (const std::int32_t concepto : conceptos) lista.push_back(std::to_string(concepto));
    const base::Date desde = base::DateAdd("m", -kMesesAntes, e_.mes);
    const auto rs = e_.sesion.conexion->Query(
        sql::CantidadesDeMeses(e_.sesion.idEmpresa, desde, e_.mes, base::Join(lista, ",")));
    for (std::size_t i = 0; i < rs.Count(); ++i) {
      const Clave clave{rs.At(0, i).Integer(), rs.At(1, i).Integer()};
      const auto meses = static_cast<int>(base::DateDiff("m", FechaDe(rs.At(2, i), e_.mes), e_.mes));
      if (meses <= 1) (meses == 0 ? ya_estan_ : del_mes_anterior_).insert(std::to_string(clave.contrato));
      const double cantidad = rs.At(en_coeficiente_[clave.concepto] ? 4 : 3, i).NumberOrZero();
      if (meses == 0 && e_.opciones.SumarAyaIng) ya_ingresado_[clave] = cantidad;
      if (meses > 0 && cantidad != 0) historia_[clave].emplace_back(meses, cantidad);
    }
  }

  std::string TextoDeHoras() const {
    std::vector<std::string> primeros;
    std::size_t cuantos = 0;
    for (const Horas& h : horas_) {
      if (h.suma <= HorasDelMes()) continue;
      if (++cuantos <= kALaVista)
        primeros.push_back(h.nombre + ", " + base::NumberText(base::Round(h.suma, 6)) + " (" +
                           h.lineas.Lineas() + ")");
    }
    return Enumerar(primeros, cuantos, "; ");
  }

  std::string TextoDeFines() const {
    std::map<std::int32_t, std::size_t> con_lineas;
    for (const auto& [clave, traido] : traido_)
      if (fines_.contains(clave.contrato)) con_lineas.try_emplace(clave.contrato, traido.persona);
    std::vector<std::string> primeros;
    for (const auto& [contrato, persona] : con_lineas)
      if (primeros.size() < kALaVista)
        primeros.push_back(Contrato(contrato, persona) + ", el " + fines_.at(contrato));
    return Enumerar(primeros, con_lineas.size(), "; ");
  }

  std::string TextoDeLejanas() const {
    std::vector<std::string> primeros;
    std::size_t cuantos = 0;
    for (const auto& [clave, traido] : traido_) {
      const auto it = historia_.find(clave);
      if (it == historia_.end()) continue;
      const auto ya = ya_ingresado_.find(clave);
      const double cantidad = traido.cantidad + (ya == ya_ingresado_.end() ? 0 : ya->second);
      if (!EstaLejos(cantidad, it->second)) continue;
      if (++cuantos <= kALaVista)
        primeros.push_back(Contrato(clave.contrato, traido.persona) + ", " +
                           NombreDeConcepto(clave.concepto) + ": " +
                           base::NumberText(base::Round(cantidad, 6)) + " (antes " + Antes(it->second) + ")");
    }
    return Enumerar(primeros, cuantos, "; ");
  }

  using Meses = std::vector<std::pair<int, double>>;  // months before, quantity; the earliest first

  static bool EstaLejos(double cantidad, const Meses& meses) {
    if (meses.size() < kMesesParaComparar) return false;
    const auto menor_que = [](const auto& a, const auto& b) { return a.second < b.second; };
    const double menor = std::min_element(meses.begin(), meses.end(), menor_que)->second;
    const double mayor = std::max_element(meses.begin(), meses.end(), menor_que)->second;
    if (menor <= 0) return false;  // a correction is no habit
    if (cantidad > kVeces * mayor) return cantidad - mayor >= kDiferenciaMinima;
    return cantidad < menor / kVeces && menor - cantidad >= kDiferenciaMinima;
  }

  std::string Antes(const Meses& meses) const {
    std::vector<std::string> textos;
    for (const auto& [hace, cantidad] : meses)
      textos.push_back(base::FormatDate(base::DateAdd("m", -hace, e_.mes), "MM/yyyy") + ": " +
                       base::NumberText(base::Round(cantidad, 6)));
    return base::Join(textos, ", ");
  }

  std::string TextoDeFaltantes() const {
    std::vector<std::pair<std::size_t, std::string>> antes;  // who had something: row of the index and person
    std::unordered_set<std::string> vistas, con_mes;
    for (std::size_t i = 0; i < e_.personas.Cantidad(); ++i) {
      const std::string& persona = e_.personas.Texto(refdata::kPersona, i);
      const std::string& contrato = e_.personas.Texto(refdata::kContrato, i);
      if (ya_estan_.contains(contrato)) con_mes.insert(persona);
      if (del_mes_anterior_.contains(contrato) && vistas.insert(persona).second)
        antes.emplace_back(i, persona);
    }
    std::vector<std::string> primeros;
    std::size_t faltan = 0, del_archivo = 0;
    for (const auto& [fila, persona] : antes) {
      if (en_archivo_.contains(persona)) {
        ++del_archivo;
      } else if (!con_mes.contains(persona) && ++faltan <= kALaVista) {
        primeros.push_back(Nombre(fila));
      }
    }
    return faltan > del_archivo ? std::string() : Enumerar(primeros, faltan, ", ");
  }

  base::Date UltimoDia() const { return base::DateAdd("d", -1, base::DateAdd("m", 1, e_.mes)); }
  double HorasDelMes() const { return kHorasDelDia * base::PartsOf(UltimoDia()).day; }
  std::string Nombre(std::size_t persona) const {
    return base::Trim(e_.personas.Texto(refdata::kNombre, persona) + " " +
                      e_.personas.Texto(refdata::kApellido, persona));
  }
  std::string Contrato(std::int32_t contrato, std::size_t persona) const {
    return "contrato " + std::to_string(contrato) + ", " + Nombre(persona);
  }

  struct Horas {
    std::string nombre;
    double suma = 0;
    Caso lineas;
  };

  const EntradaImportacion& e_;
  std::map<Clave, Traido> traido_;
  std::unordered_map<std::int32_t, bool> en_coeficiente_;  // by concept
  std::unordered_set<std::string> en_archivo_;             // persons
  std::vector<Horas> horas_;
  std::unordered_map<std::string, std::size_t> lugar_de_horas_;
  std::unordered_map<std::int32_t, std::string> fines_;  // by contract
  std::map<Clave, Meses> historia_;
  std::map<Clave, double> ya_ingresado_;  // in the month, when the lines are added to it
  std::unordered_set<std::string> ya_estan_, del_mes_anterior_;  // contracts
  std::vector<std::string> sin_leer_;
};

}  // namespace

std::vector<std::string> Verosimilitud(const EntradaImportacion& entrada, const std::vector<ImportRow>& filas,
                                       const std::vector<importfile::LineaAparte>& aparte) {
  Comparador comparador(entrada);
  for (const ImportRow& fila : filas) comparador.Ver(fila);
  for (const importfile::LineaAparte& linea : aparte)
    if (!linea.mal_formada) comparador.VerPersona(linea.campo);
  return comparador.Textos();
}

}  // namespace liquidation
