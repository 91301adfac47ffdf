#include "base/text.h"
#include "db/connection.h"
#include "refdata/concepts_catalogue.h"
#include "relations/relation_line_internal.h"

namespace relations {
namespace {

constexpr std::string_view kBlanco = "16777215", kAnclaColor = "*16777215*,", kAnclaConcepto = ",*";

// The whole number in front of the first star, or "".
std::string_view NumeroHastaEstrella(std::string_view texto) {
  const std::size_t estrella = texto.find('*');
  if (estrella == std::string_view::npos) return {};
  std::string_view numero = texto.substr(0, estrella), cifras = numero;
  if (base::StartsWith(cifras, "-")) cifras.remove_prefix(1);
  const bool es = !cifras.empty() && cifras.find_first_not_of("0123456789") == std::string_view::npos;
  return es ? numero : std::string_view();
}

// Every way to cut the row.
std::vector<Relacion> Cortes(std::string_view fila) {
  std::vector<Relacion> cortes;
  for (std::size_t color = fila.find(kAnclaColor); color != std::string_view::npos;
       color = fila.find(kAnclaColor, color + 1)) {
    const std::size_t codigos = color + kAnclaColor.size();
    for (std::size_t fin = fila.find(kAnclaConcepto, codigos); fin != std::string_view::npos;
         fin = fila.find(kAnclaConcepto, fin + 1)) {
      const std::string_view resto = fila.substr(fin + kAnclaConcepto.size());
      const std::string_view id = NumeroHastaEstrella(resto);
      if (id.empty()) continue;
      std::string lista(",");
      lista.append(fila.substr(codigos, fin - codigos)).append(",");
      cortes.push_back({std::string(fila.substr(0, color)), std::string(kBlanco), std::move(lista),
                        std::string(id), std::string(resto.substr(id.size() + 1)), std::string()});
    }
  }
  return cortes;
}

bool TieneLoSuyo(const Relacion& corte, Lista lista) {
  const std::string_view codigos = corte[kExternos], codigo = codigos.substr(1, codigos.size() - 2);
  if (lista == Lista::Codigo && codigo == corte[kCodigo]) return true;
  return codigo == corte[kConcepto] &&
         (lista == Lista::Numero || IdentificadorDe(codigo).value_or(0) > refdata::kBaseTablas);
}

}  // namespace

Relacion RelacionDeFila(std::string_view fila, Lista lista) {
  std::vector<Relacion> cortes = Cortes(fila);
  if (lista != Lista::Guardada && cortes.size() > 1)
    std::erase_if(cortes, [&](const Relacion& corte) { return !TieneLoSuyo(corte, lista); });
  if (cortes.empty()) return RelacionDeLinea(fila);
  if (cortes.size() > 1)
    throw db::Error("No se puede saber qué códigos y qué concepto tiene la relación '" + std::string(fila) +
                    "'");
  return std::move(cortes.front());
}

}  // namespace relations
