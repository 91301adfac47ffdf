#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

// Calls, not nested functions: one of those takes four or five of them, and about 1.6 KB of stack. The
// smallest stack we run on has one megabyte, of which the caller may have used half.
constexpr int kProfundidadMaxima = 1000;
// Bytes of text gone over. An ordinary formula takes some thousands; this much takes a second at most.
constexpr std::size_t kEsfuerzoMaximo = std::size_t{1} << 26;
constexpr std::size_t kTrabajoDeLlamada = 64;

constexpr const char* kDemasiadoLarga = "La fórmula es demasiado larga o compleja";
constexpr const char* kDemasiadosNiveles = "La fórmula tiene demasiados niveles";

}  // namespace

void Abandonar(Evaluador& ev, const char* motivo) {
  ev.agotado = motivo;
  throw base::Error(motivo);
}

void Gastar(Evaluador& ev, std::size_t trabajo) {
  ev.esfuerzo += trabajo;
  if (ev.agotado == nullptr && ev.esfuerzo > kEsfuerzoMaximo) ev.agotado = kDemasiadoLarga;
  if (ev.agotado != nullptr) throw base::Error(ev.agotado);
}

Nivel::Nivel(Evaluador& ev, std::size_t largo) : ev_(ev) {
  if (ev.profundidad == 0) {
    ev.esfuerzo = 0;
    ev.consultas = {};
    ev.agotado = nullptr;
    ev.agotado_avisado = ev.sin_valor = false;
  }
  Gastar(ev, kTrabajoDeLlamada + largo);
  if (ev.profundidad >= kProfundidadMaxima) Abandonar(ev, kDemasiadosNiveles);
  ++ev.profundidad;
}

std::string ReemplazarAcotado(std::string_view texto, std::string_view de, std::string_view por,
                              bool sin_caso) {
  const auto modo = sin_caso ? base::Compare::IgnoringCase : base::Compare::Exact;
  if (por.size() > de.size() && !de.empty()) {
    std::size_t largo = texto.size();
    for (std::size_t p = base::Find(texto, de, 0, modo); p != std::string_view::npos;
         p = base::Find(texto, de, p + de.size(), modo)) {
      largo += por.size() - de.size();
      if (largo > kTextoMaximo) throw base::Error(kDemasiadoLarga);
    }
  }
  return base::Replace(texto, de, por, modo);
}

void Avisar(Evaluador& ev, const std::string& texto, ports::Icon icono) {
  if (ev.agotado != nullptr) {
    // Every call still open fails in its turn; the operator hears of it once.
    if (ev.agotado_avisado) return;
    ev.agotado_avisado = true;
  }
  if (ev.prompts == nullptr || ev.avisos_callados) return;
  ports::Notice aviso;
  aviso.text = texto;
  aviso.icon = icono;
  aviso.offers_silence = ev.avisos_mostrados > 0;
  ++ev.avisos_mostrados;
  if (ev.prompts->Show(aviso)) ev.avisos_callados = true;
}

}  // namespace formula
