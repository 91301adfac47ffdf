#include "informe/informe.h"

#include "base/csv.h"
#include "base/number.h"
#include "base/text.h"

namespace informe {
namespace {

constexpr char kEntre = ';';
constexpr std::string_view kMarca = "\xEF\xBB\xBF";
constexpr int kDecimales = 6;

class Tabla {
 public:
  explicit Tabla(std::string& texto) : texto_(texto) {}
  // From outside: numbers stay numbers, and nothing becomes a formula.
  Tabla& Texto(std::string_view valor) {
    return Poner(base::IsNumber(valor) ? std::string(valor) : base::SpreadsheetText(EnUnaLinea(valor)));
  }
  Tabla& Entero(std::int64_t valor, bool cero_es_nada = true) {
    return Poner(valor == 0 && cero_es_nada ? std::string() : std::to_string(valor));
  }
  Tabla& Numero(std::optional<double> valor) { return Poner(valor ? TextoDeNumero(*valor) : std::string()); }
  void Fin() {
    texto_ += base::kCrLf;
    primera_ = true;
  }
  void Titulos(std::initializer_list<std::string_view> titulos) {
    for (const std::string_view titulo : titulos) Poner(std::string(titulo));
    Fin();
  }

 private:
  Tabla& Poner(const std::string& celda) {
    if (!primera_) texto_ += kEntre;
    primera_ = false;
    texto_ += base::CsvCell(celda, kEntre);
    return *this;
  }
  std::string& texto_;
  bool primera_ = true;
};

std::int64_t Posicion(EstadoDeLinea estado) { return static_cast<std::int64_t>(estado); }

}  // namespace

std::string TextoDeNumero(double numero) { return base::PlainNumber(base::Round(numero, kDecimales), ","); }

std::string CantidadDe(const std::string& texto) {
  const auto numero = base::NumberFromText(texto);
  return numero ? base::PlainNumber(*numero, ",") : texto;
}

std::string NombreDeConcepto(const DatosInforme& datos, std::int32_t concepto) {
  const auto it = datos.nombres.find(concepto);
  return it == datos.nombres.end() ? std::string() : it->second;
}

std::vector<FilaDeTotales> TotalesDe(const DatosInforme& datos) {
  std::map<std::int32_t, FilaDeTotales> conceptos;
  std::vector<FilaDeTotales> filas, aparte(4);
  aparte[static_cast<std::size_t>(Posicion(EstadoDeLinea::Rechazada))].nombre = "Rechazadas";
  aparte[static_cast<std::size_t>(Posicion(EstadoDeLinea::Filtrada))].nombre = "Filtradas";
  aparte[static_cast<std::size_t>(Posicion(EstadoDeLinea::MalFormada))].nombre = "Mal formadas";
  for (const Linea& linea : datos.lineas) {
    const bool importada = linea.estado == EstadoDeLinea::Importada && linea.fila != nullptr;
    FilaDeTotales& fila = importada ? conceptos[linea.fila->destino.concepto]
                                    : aparte[static_cast<std::size_t>(Posicion(linea.estado))];
    ++fila.lineas;
    fila.del_archivo += base::NumberFromText((*linea.campo)[importfile::kCantidad]).value_or(0);
  }
  for (auto& [concepto, fila] : conceptos) {
    fila.concepto = concepto;
    fila.nombre = NombreDeConcepto(datos, concepto);
    fila.importada = 0;
    for (const auto& total : datos.totales)
      if (total.concepto == concepto) fila.importada = total.cantidad;
    filas.push_back(fila);
  }
  for (const EstadoDeLinea estado :
       {EstadoDeLinea::Rechazada, EstadoDeLinea::Filtrada, EstadoDeLinea::MalFormada})
    filas.push_back(aparte[static_cast<std::size_t>(Posicion(estado))]);
  return filas;
}

CambiosPorLinea::CambiosPorLinea(const std::vector<corridas::CambioDeCantidad>& cambios) {
  for (const auto& c : cambios) por_clave_[{{c.id_Contrato, c.concepto}, {c.idAgrupa, c.id_Encabezado}}] = &c;
}

const corridas::CambioDeCantidad* CambiosPorLinea::De(const Linea& linea) const {
  if (linea.estado != EstadoDeLinea::Importada || linea.fila == nullptr) return nullptr;
  const importfile::DestinoDeLinea& d = linea.fila->destino;
  const auto it = por_clave_.find({{d.contrato, d.concepto}, {d.agrupa, d.encabezado}});
  return it == por_clave_.end() ? nullptr : it->second;
}

std::string InformeCsv(const DatosInforme& datos) {
  std::string texto(kMarca);
  Tabla tabla(texto);
  tabla.Titulos({"linea", "estado", "resultado", "contrato", "id", "nombre", "apellido", "tipo", "concepto",
                 "nombre_concepto", "encabezado", "encabezado_nuevo", "cc", "cantidad", "valor", "antes",
                 "despues"});
  const CambiosPorLinea cambios(datos.cambios);
  for (const Linea& l : datos.lineas) {
    const importfile::DestinoDeLinea d = l.fila != nullptr ? l.fila->destino : importfile::DestinoDeLinea{};
    const corridas::CambioDeCantidad* cambio = cambios.De(l);
    const auto campo = [&](int i) -> const std::string& { return (*l.campo)[static_cast<std::size_t>(i)]; };
    tabla.Entero(static_cast<std::int64_t>(l.numero)).Texto(TextoDe(l.estado)).Texto(l.resultado);
    tabla.Entero(d.contrato).Texto(campo(importfile::kClave)).Texto(campo(importfile::kNombre));
    tabla.Texto(campo(importfile::kApellido)).Texto(campo(importfile::kTipo)).Entero(d.concepto);
    tabla.Texto(NombreDeConcepto(datos, d.concepto))
        .Entero(d.encabezado)
        .Texto(d.encabezado_nuevo ? "SI" : "");
    tabla.Entero(d.agrupa).Texto(CantidadDe(campo(importfile::kCantidad)));
    tabla.Texto(CantidadDe(campo(importfile::kValor)));
    tabla.Numero(cambio != nullptr ? cambio->antes : std::nullopt);
    tabla.Numero(cambio != nullptr ? cambio->despues : std::nullopt).Fin();
  }
  tabla.Fin();
  tabla.Titulos({"concepto", "nombre", "lineas", "cantidad_del_archivo", "cantidad_importada"});
  std::size_t lineas = 0;
  double del_archivo = 0;
  for (const FilaDeTotales& t : TotalesDe(datos)) {
    tabla.Entero(t.concepto).Texto(t.nombre).Entero(static_cast<std::int64_t>(t.lineas), false);
    tabla.Numero(t.del_archivo).Numero(t.importada).Fin();
    lineas += t.lineas;
    del_archivo += t.del_archivo;
  }
  tabla.Texto("").Texto("Total del archivo").Entero(static_cast<std::int64_t>(lineas), false);
  tabla.Numero(del_archivo).Numero(std::nullopt).Fin();
  tabla.Fin();
  tabla.Titulos({"contrato", "nombre", "apellido", "concepto", "nombre_concepto", "cc", "encabezado", "antes",
                 "despues", "diferencia"});
  for (const auto& c : datos.cambios) {
    tabla.Entero(c.id_Contrato).Texto(c.nombre).Texto(c.apellido).Entero(c.concepto).Texto(c.nombre_concepto);
    tabla.Entero(c.idAgrupa).Entero(c.id_Encabezado).Numero(c.antes).Numero(c.despues);
    tabla.Numero(c.Diferencia()).Fin();
  }
  return texto;
}

}  // namespace informe
