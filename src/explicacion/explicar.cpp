#include "explicacion/explicar.h"

#include <iterator>
#include <memory>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "liquidation/importar.h"
#include "refdata/persons_index.h"
#include "relations/code_relations.h"

namespace explicacion {
namespace {

class Callado final : public ports::Prompts {
 public:
  bool Show(const ports::Notice&) override { return false; }
  bool Confirm(const std::string&) override { return false; }
};

// Writes down what goes through the connection while the line is under way.
class TestigoDeLinea final : public liquidation::Testigo {
 public:
  TestigoDeLinea(ConexionQueAnota& conexion, std::size_t linea) : conexion_(conexion), linea_(linea) {}
  void AntesDeEscribir() override {}
  void AntesDeTerminar(const std::vector<importfile::ImportRow>&, const liquidation::Importacion&) override {}
  void Terminada(bool) noexcept override {}
  void AntesDeFila(const importfile::ImportRow& fila) override { conexion_.anota = fila.linea == linea_; }
  void DespuesDeFila(const importfile::ImportRow&) override { conexion_.anota = false; }

 private:
  ConexionQueAnota& conexion_;
  std::size_t linea_;
};

sesion::DbSession CopiaDe(const sesion::DbSession& sesion, std::unique_ptr<db::Connection> conexion) {
  sesion::DbSession copia;
  copia.conexion = std::move(conexion);
  copia.idEmpresa = sesion.idEmpresa;
  copia.TipoConstruccion = sesion.TipoConstruccion;
  copia.LiqAgrup = sesion.LiqAgrup;
  copia.id_Usuario = sesion.id_Usuario;
  copia.reloj = sesion.reloj;
  return copia;
}

void Ensayar(const liquidation::EntradaImportacion& e, std::vector<importfile::ImportRow> filas,
             std::size_t linea, Explicacion& x) {
  auto conexion = std::make_unique<ConexionQueAnota>(*e.sesion.conexion);
  ConexionQueAnota& anotada = *conexion;
  const sesion::DbSession sesion = CopiaDe(e.sesion, std::move(conexion));
  Callado callado;
  formula::Evaluador evaluador = e.evaluador;
  evaluador.prompts = &callado;
  evaluador.sesion = &sesion;
  ports::NoProgress sin_barra;
  TestigoDeLinea testigo(anotada, linea);
  liquidation::EntradaImportacion ensayo{
      sesion,  e.opciones, e.personas, e.relaciones,  e.conceptos,         evaluador,     e.tablas,
      callado, sin_barra,  e.mes,      e.condiciones, e.texto_liquidacion, e.centro_costo};
  ensayo.deshacer = true;
  ensayo.testigo = &testigo;
  x.error = liquidation::Importar(ensayo, filas).error;
  x.sentencias = std::move(anotada.sentencias);
  for (importfile::ImportRow& fila : filas)
    if (fila.linea == linea) x.fila = std::move(fila);
}

using Textos = std::vector<std::string>;

void Sumar(Textos& textos, const char* que, const formula::PasosDeFormula& pasos) {
  for (const auto& s : pasos.sustituciones)
    textos.push_back(std::string("  ") + s.comodin + " es '" + s.valor + "': " + s.texto);
  textos.push_back(std::string("  ") + que + ": " + pasos.expresion);
  textos.push_back(pasos.sin_valor ? "  Sin valor: la fórmula da error" : "  Resultado: " + pasos.valor);
}

void SumarCorte(Textos& textos, const importfile::PasosDeLinea& p) {
  static constexpr const char* kNombres[] = {"persona", "tipo", "cantidad", "dato extra", "valor"};
  textos.push_back("Corte:");
  for (std::size_t i = 0; i < p.piezas.size(); ++i) {
    const auto& pieza = p.piezas[i];
    std::string texto = "  " + std::to_string(i + 1) + " ";
    texto += i < std::size(kNombres) ? kNombres[i] : "(no se usa)";
    texto += ": '" + pieza.texto + "'";
    if (pieza.inicio > 0)
      texto +=
          " (desde " + std::to_string(pieza.inicio) + ", " + std::to_string(pieza.largo) + " caracteres)";
    else
      texto += " (no está en la línea)";
    textos.push_back(texto);
  }
}

void SumarContrato(Textos& textos, const importfile::PasosDeLinea& p,
                   const liquidation::EntradaImportacion& e) {
  static constexpr const char* kClaves[] = {"Id Interno",     "Nº Alternativo", "Nº Tarjeta",
                                            "Cod.Sist. Ext.", "Documento",      "Nº Persona"};
  const int clase = e.opciones.Configura;
  const std::string clave = p.campo[importfile::kClave];
  const int fila = e.personas.Buscar(clave, clase);
  std::string texto = "Contrato: la clave '" + clave + "' por ";
  texto += clase >= 0 && clase < 6 ? kClaves[clase] : "la clave elegida";
  if (fila < 0) {
    textos.push_back(texto + " no es de ningún contrato activo del mes");
    return;
  }
  const auto i = static_cast<std::size_t>(fila);
  textos.push_back(texto + " es el contrato " + e.personas.Texto(refdata::kContrato, i) + ", " +
                   e.personas.Texto(refdata::kNombre, i) + " " + e.personas.Texto(refdata::kApellido, i));
}

void SumarRelacion(Textos& textos, const importfile::PasosDeLinea& p,
                   const liquidation::EntradaImportacion& e) {
  const std::string& codigo = p.campo[importfile::kTipo];
  if (p.relacion < 0) {
    textos.push_back("Relación: el código '" + codigo + "' no está en ninguna");
    return;
  }
  const auto i = static_cast<std::size_t>(p.relacion);
  textos.push_back("Relación: el código '" + codigo + "' está en " +
                   e.relaciones.Campo(relations::kCodigo, i) + ", concepto " +
                   e.relaciones.Campo(relations::kConcepto, i) + " " +
                   e.relaciones.Campo(relations::kNombre, i));
}

std::string EncabezadoDe(const importfile::DestinoDeLinea& d) {
  if (d.encabezado == 0) return "Encabezado: ninguno, va a una tabla de usuario";
  const std::string texto = "Encabezado: " + std::to_string(d.encabezado);
  if (d.encabezado_nuevo)
    return texto + ", que se crea porque el contrato no tiene ninguno abierto de su tipo";
  if (d.por_clave) return texto + ", abierto, encontrado por la clave de la persona";
  return texto + ", abierto, encontrado por el contrato y el tipo porque la clave no lo mostró";
}

}  // namespace

Explicacion Explicar(importfile::EntradaCarga carga, const liquidation::EntradaImportacion& e,
                     std::size_t linea) {
  Explicacion x;
  Callado callado;
  formula::Evaluador evaluador = e.evaluador;
  evaluador.prompts = &callado;
  carga.evaluador = &evaluador;
  carga.prompts = nullptr;
  carga.progreso = nullptr;
  carga.solo_linea = linea;
  carga.al_cargar = [&](const importfile::PasosDeLinea& pasos) {
    x.hay_linea = true;
    x.pasos = pasos;
  };
  importfile::Carga cargada = importfile::CargarDatos(carga);
  for (const importfile::ImportRow& fila : cargada.filas) x.en_grilla = x.en_grilla || fila.linea == linea;
  if (x.en_grilla && e.sesion.Abierta()) Ensayar(e, std::move(cargada.filas), linea, x);
  return x;
}

std::vector<std::string> TextoDe(const Explicacion& x, const liquidation::EntradaImportacion& e) {
  Textos textos;
  const importfile::PasosDeLinea& p = x.pasos;
  SumarCorte(textos, p);
  if (p.mal_formada) {
    textos.push_back("Resultado: Formato incorrecto en la linea " + std::to_string(p.linea));
    return textos;
  }
  SumarContrato(textos, p, e);
  SumarRelacion(textos, p, e);
  if (p.con_formula) {
    textos.push_back("Fórmula: " + e.opciones.FactMultiplica);
    Sumar(textos, "Se evalúa", p.formula);
  }
  textos.push_back("Cantidad: " + p.cantidad);
  if (p.con_filtro) {
    textos.push_back("Filtro: " + e.opciones.TextoDeFiltro);
    Sumar(textos, "Se evalúa", p.filtro);
  }
  if (!p.pasa) {
    textos.push_back(p.con_filtro
                         ? "Resultado: Descartada por el filtro, cuya condición da 0"
                         : "Resultado: Descartada por el filtro, que deja solo los códigos relacionados");
    return textos;
  }
  if (x.fila.resultado == "OK") textos.push_back(EncabezadoDe(x.fila.destino));
  if (!x.sentencias.empty()) textos.push_back("Sentencias:");
  for (const std::string& sql : x.sentencias) textos.push_back("  " + base::Replace(sql, base::kCrLf, " "));
  if (!x.error.empty()) textos.push_back("No se pudo probar: " + x.error);
  textos.push_back("Resultado: " + x.fila.resultado);
  return textos;
}

}  // namespace explicacion
