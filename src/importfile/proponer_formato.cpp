#include "importfile/proponer_formato.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "base/encoding.h"
#include "base/number.h"
#include "base/text.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

constexpr std::size_t kLineas = 200, kALaVista = 4, kCamposMaximos = 12;
constexpr double kCasiTodas = 0.9;

using Piezas = std::vector<std::string_view>;

// The first lines that are not blank. The last piece of a beginning may be half a line: it is one of many.
std::vector<std::string_view> Muestra(std::string_view texto) {
  std::vector<std::string_view> lineas;
  for (const std::string_view linea : base::SplitLines(texto)) {
    if (!base::IsBlank(linea)) lineas.push_back(linea);
    if (lineas.size() == kLineas) break;
  }
  return lineas;
}

bool EsCantidad(std::string_view texto) { return !base::IsBlank(texto) && base::IsNumber(texto); }

std::vector<Piezas> Cortar(const std::vector<std::string_view>& lineas, const settings::Settings& o) {
  std::vector<Piezas> cortadas;
  for (const std::string_view linea : lineas) {
    Piezas& piezas = cortadas.emplace_back();
    if (!o.AnchoFijo) {
      base::SplitViews(linea, o.Separador, piezas);
    } else if (SePuedeCortar(o.ConfDeAF)) {
      const CorteAF corte = CortarAF(linea, o.ConfDeAF);
      piezas.assign(corte.campos.begin(), corte.campos.end());
    }
  }
  return cortadas;
}

bool EsDatos(const Piezas& p) {
  return p.size() >= kCamposNecesarios && !base::IsBlank(p[0]) && !base::IsBlank(p[1]) && EsCantidad(p[2]);
}

double ParteDeDatos(const std::vector<Piezas>& cortadas) {
  if (cortadas.empty()) return 0;
  const auto buenas = std::count_if(cortadas.begin(), cortadas.end(), EsDatos);
  return static_cast<double>(buenas) / static_cast<double>(cortadas.size());
}

// A heading is no datum, and is no reason to refuse the file either.
bool EmpiezaConTitulo(const std::vector<Piezas>& cortadas) {
  return cortadas.size() > 1 && cortadas[0].size() >= kCamposNecesarios && !EsDatos(cortadas[0]) &&
         EsDatos(cortadas[1]);
}

// The number of fields that nearly all lines have, or 0.
std::size_t CamposIguales(const std::vector<Piezas>& cortadas) {
  std::vector<std::size_t> veces(kCamposMaximos + 1);
  for (const Piezas& p : cortadas)
    if (p.size() <= kCamposMaximos) ++veces[p.size()];
  const auto mayor = std::max_element(veces.begin(), veces.end());
  const bool bastan = static_cast<double>(*mayor) >= kCasiTodas * static_cast<double>(cortadas.size());
  return bastan ? static_cast<std::size_t>(mayor - veces.begin()) : 0;
}

// Runs of columns that some line uses, as layout columns. Lines of hours have the same length, or nearly.
settings::FixedWidthLayout ColumnasPorBlancos(const std::vector<std::string_view>& lineas) {
  std::vector<bool> usada;
  for (const std::string_view linea : lineas) {
    std::size_t i = 0;
    for (const char c : linea) {
      if ((static_cast<unsigned char>(c) & 0xC0U) == 0x80U) continue;  // characters, not bytes
      if (i == usada.size()) usada.push_back(false);
      if (c != ' ') usada[i] = true;
      ++i;
    }
  }
  settings::FixedWidthLayout columnas;
  for (std::size_t i = 0; i < usada.size();) {
    if (!usada[i]) {
      ++i;
      continue;
    }
    const std::size_t inicio = i;
    while (i < usada.size() && usada[i]) ++i;
    if (i > 32000) return {};
    columnas.push_back({0, static_cast<std::int16_t>(inicio + 1), static_cast<std::int16_t>(i - inicio)});
  }
  return columnas;
}

class Proponente {
 public:
  Proponente(std::string_view texto, const EntradaCarga& actual) : e_(actual), lineas_(Muestra(texto)) {
    p_.opciones = *actual.opciones;
  }

  PropuestaDeFormato Proponer() {
    if (lineas_.empty()) return Sin("El archivo está vacío");
    if (!ElegirCorte()) return Sin(PorQueNo());
    p_.hay = true;
    p_.primera_es_titulo = EmpiezaConTitulo(corte_);
    if (p_.primera_es_titulo) {
      p_.razones.push_back("La primera línea parece un título: no se importa");
    }
    for (const Piezas& piezas : corte_)
      if (EsDatos(piezas)) datos_.push_back(&piezas);
    ElegirClave();
    ElegirCodigos();
    ElegirCentro();
    for (std::size_t i = 0; i < std::min(corte_.size(), kALaVista); ++i) {
      auto& fila = p_.cortadas.emplace_back();
      for (std::size_t j = 0; j < std::min(corte_[i].size(), kCamposDeLinea); ++j)
        fila.emplace_back(corte_[i][j]);
    }
    return std::move(p_);
  }

 private:
  PropuestaDeFormato Sin(std::string motivo) {
    p_.motivo = std::move(motivo);
    return std::move(p_);
  }

  bool Probar(settings::Settings opciones, std::string razon) {
    std::vector<Piezas> corte = Cortar(lineas_, opciones);
    std::vector<Piezas> cuerpo = corte;
    if (EmpiezaConTitulo(cuerpo)) cuerpo.erase(cuerpo.begin());
    if (cuerpo.empty() || ParteDeDatos(cuerpo) < kCasiTodas) return false;
    p_.opciones = std::move(opciones);
    corte_ = std::move(corte);
    p_.razones.push_back(std::move(razon));
    return true;
  }

  // Signs that a text of hours does not hold by itself come first; the comma may be a decimal sign, and a
  // blank may stand in columns.
  bool ElegirCorte() {
    for (const auto& [separador, nombre] :
         {std::pair{";", "\";\""}, {"\t", "el tabulador"}, {"|", "\"|\""}, {",", "\",\""}}) {
      settings::Settings o = *e_.opciones;
      o.AnchoFijo = false;
      o.Separador = separador;
      if (Probar(o, std::string("Delimitado: los datos están separados por ") + nombre)) return true;
    }
    return ProbarAncho() || ProbarBlanco();
  }

  bool ProbarBlanco() {
    settings::Settings o = *e_.opciones;
    o.AnchoFijo = false;
    o.Separador = " ";
    return Probar(o, "Delimitado: los datos están separados por un espacio");
  }

  bool ProbarAncho() {
    const std::size_t largo = base::TrimView(lineas_.back()).size();
    const auto parecidas = std::count_if(lineas_.begin(), lineas_.end(), [&](std::string_view l) {
      return l.size() + 3 >= largo && l.size() <= largo + 16;
    });
    if (lineas_.size() < 2 ||
        static_cast<double>(parecidas) < kCasiTodas * static_cast<double>(lineas_.size()))
      return false;
    settings::Settings o = *e_.opciones;
    o.AnchoFijo = true;
    if (SePuedeCortar(o.ConfDeAF) && Probar(o, "De ancho fijo, con las columnas que están puestas"))
      return true;
    settings::FixedWidthLayout columnas = ColumnasPorBlancos(lineas_);
    if (columnas.size() < kCamposNecesarios || columnas.size() > kCamposDeLinea) return false;
    Repartir(columnas);
    columnas.resize(kCamposDeLinea, {0, -1, 0});
    NumerarSinUso(columnas);
    o.ConfDeAF = columnas;
    std::string donde;
    for (const settings::ColumnaAF& c : columnas)
      if (c.inicio >= 1)
        donde += (donde.empty() ? "" : ", ") + std::to_string(c.inicio) + " a " +
                 std::to_string(c.inicio + c.largo - 1);
    return Probar(o, "De ancho fijo: los datos están en las columnas " + donde);
  }

  // Which piece is which: the key is the one that names most contracts, the code the one with letters or with
  // fewest different texts, the quantity the first number that is left.
  void Repartir(settings::FixedWidthLayout& columnas) const {
    std::vector<Piezas> por_columna(columnas.size());
    for (std::size_t j = 0; j < columnas.size(); ++j) {
      settings::FixedWidthLayout una{columnas[j]};
      una[0].campo = 1;
      for (const std::string_view linea : lineas_)
        por_columna[j].push_back(base::TrimView(CortarAF(linea, una).campos[0]));
    }
    const std::size_t clave = ColumnaDeClave(por_columna);
    const std::size_t codigo = ColumnaDeCodigo(por_columna, clave);
    std::int16_t siguiente = 4;
    bool con_cantidad = false;
    for (std::size_t j = 0; j < columnas.size(); ++j) {
      if (j == clave)
        columnas[j].campo = 1;
      else if (j == codigo)
        columnas[j].campo = 2;
      else if (!con_cantidad && std::all_of(por_columna[j].begin() + 1, por_columna[j].end(), EsCantidad)) {
        columnas[j].campo = 3;
        con_cantidad = true;
      } else {
        columnas[j].campo = siguiente <= 5 ? siguiente++ : std::int16_t{0};
      }
    }
  }

  std::size_t ColumnaDeClave(const std::vector<Piezas>& por_columna) const {
    std::size_t mejor = 0, mas = 0;
    for (std::size_t j = 0; j < por_columna.size(); ++j) {
      const ConteoDeClaves conteo = Contar(por_columna[j]);
      const int tipo = conteo.Mejor(e_.opciones->Configura);
      const std::size_t n = tipo < 0 ? 0 : conteo.halladas[static_cast<std::size_t>(tipo)];
      if (n > mas) {
        mas = n;
        mejor = j;
      }
    }
    return mejor;
  }

  static std::size_t ColumnaDeCodigo(const std::vector<Piezas>& por_columna, std::size_t clave) {
    std::optional<std::size_t> mejor;
    std::size_t menos = 0;
    for (std::size_t j = 0; j < por_columna.size(); ++j) {
      if (j == clave) continue;
      const std::set<std::string_view> distintos(por_columna[j].begin(), por_columna[j].end());
      const bool letras = std::none_of(distintos.begin(), distintos.end(), EsCantidad);
      if (letras) return j;
      if (!mejor || distintos.size() < menos) {
        mejor = j;
        menos = distintos.size();
      }
    }
    return mejor.value_or(0);
  }

  // Unused columns get the field numbers that nobody has, so that a settings file with them reads back whole.
  static void NumerarSinUso(settings::FixedWidthLayout& columnas) {
    for (settings::ColumnaAF& c : columnas) {
      if (c.campo != 0) continue;
      for (std::int16_t n = 1; n <= 5 && c.campo == 0; ++n)
        if (std::none_of(columnas.begin(), columnas.end(), [n](const auto& x) { return x.campo == n; }))
          c.campo = n;
    }
  }

  ConteoDeClaves Contar(const Piezas& piezas) const {
    std::vector<std::string> normales;
    for (const std::string_view pieza : piezas) normales.push_back(NormalizarClave(pieza));
    const std::vector<std::string_view> vistas(normales.begin(), normales.end());
    return ContarClaves(vistas, *e_.personas);
  }

  void ElegirClave() {
    Piezas claves;
    for (const Piezas* linea : datos_) claves.push_back((*linea)[0]);
    const ConteoDeClaves conteo = Contar(claves);
    const int mejor = conteo.Mejor(e_.opciones->Configura);
    if (mejor < 0) {
      p_.razones.push_back("Ninguna de las " + std::to_string(conteo.claves) +
                           " claves vistas es de un contrato del mes: revise el mes y la clave");
      return;
    }
    p_.opciones.Configura = mejor;
    p_.razones.push_back("La clave es " + std::string(NombreDeTipoDeClave(mejor)) + ": " +
                         std::to_string(conteo.halladas[static_cast<std::size_t>(mejor)]) + " de " +
                         std::to_string(conteo.claves) + " claves coinciden con un contrato del mes");
  }

  void ElegirCodigos() {
    std::set<std::string> codigos;
    for (const Piezas* linea : datos_) codigos.emplace(base::TrimView((*linea)[1]));
    const bool numericos =
        std::all_of(codigos.begin(), codigos.end(), [](const auto& c) { return base::IsNumber(c); });
    p_.opciones.CodTipoNumerico = numericos;
    if (numericos != e_.opciones->CodTipoNumerico)
      p_.razones.push_back(numericos ? "Los códigos son números"
                                     : "Los códigos no son números: \"Codigo de Dato Numérico\" se quita");
    ElegirRelaciones(codigos, numericos);
  }

  // The concepts' own codes, or their numbers, as the automatic relations use them.
  void ElegirRelaciones(const std::set<std::string>& codigos, bool numericos) {
    std::set<std::string, std::less<>> de_conceptos;
    const auto& catalogo = *e_.conceptos;
    for (std::size_t i = 0; i < catalogo.tabla.Cantidad(); ++i) {
      if (numericos)
        de_conceptos.insert(catalogo.tabla.Campo(0, i));
      else if (i < catalogo.cmbConceptos.items.size())
        de_conceptos.insert(
            catalogo.cmbConceptos.items[i].texto.substr(0, catalogo.cmbConceptos.items[i].texto.find(" - ")));
    }
    std::size_t por_relacion = 0, por_codigo = 0;
    for (const std::string& codigo : codigos) {
      const std::string normal = NormalizarTipo(codigo, numericos);
      por_relacion += e_.relaciones->PosEnVecConc(normal) >= 0 ? 1 : 0;
      por_codigo += de_conceptos.contains(normal) ? 1 : 0;
    }
    const std::string todos = std::to_string(codigos.size());
    if (!p_.opciones.MismoCodigoDeOrsa && por_relacion == 0 && por_codigo > 0) {
      p_.opciones.MismoCodigoDeOrsa = true;
      p_.razones.push_back(std::to_string(por_codigo) + " de " + todos +
                           " códigos son los de los conceptos: se relacionan solos");
    } else if (por_relacion < codigos.size()) {
      p_.razones.push_back(std::to_string(codigos.size() - por_relacion) + " de " + todos +
                           " códigos no están en ninguna relación: hay que relacionarlos");
    }
  }

  // Only where it says something: every line has one, and they are centres that contracts of the month have.
  void ElegirCentro() {
    std::set<std::string> centros;
    for (std::size_t i = 0; i < e_.personas->Cantidad(); ++i)
      centros.insert(e_.personas->Texto(refdata::kCC, i));
    centros.erase("0");
    centros.erase("");
    if (centros.size() < 2 || datos_.empty()) return;
    const bool todos = std::all_of(datos_.begin(), datos_.end(), [&](const Piezas* linea) {
      return linea->size() > 3 && base::IsNumber((*linea)[3]) &&
             centros.contains(TextoDelValor(base::TrimView((*linea)[3])));
    });
    if (!todos || p_.opciones.CCEnDE) return;
    p_.razones.push_back(
        "El cuarto dato parece el centro de costo: si lo es, marque \"Centro de Costo definido en dato "
        "extra\"");
  }

  std::string PorQueNo() const {
    for (const char* separador : {";", "\t", "|"}) {
      settings::Settings o = *e_.opciones;
      o.AnchoFijo = false;
      o.Separador = separador;
      const std::vector<Piezas> corte = Cortar(lineas_, o);
      if (CamposIguales(corte) < kCamposNecesarios) continue;
      if (corte.back().size() >= kCamposNecesarios && corte.back()[2].starts_with('"'))
        return "Los datos están entre comillas, que aquí son parte del dato: hay que pedir el archivo sin "
               "ellas";
      return "Las líneas se cortan bien en sus datos, pero no están en el orden clave, código, cantidad (con "
             "la "
             "cantidad, un número, en tercer lugar)";
    }
    return "Las líneas no parecen de horas: no se ve en ellas una clave, un código y una cantidad";
  }

  const EntradaCarga& e_;
  std::vector<std::string_view> lineas_;
  std::vector<Piezas> corte_;
  std::vector<const Piezas*> datos_;
  PropuestaDeFormato p_;
};

}  // namespace

PropuestaDeFormato ProponerFormato(std::string_view bytes, const EntradaCarga& actual) {
  const std::string texto = base::DecodeFile(bytes);
  return Proponente(texto, actual).Proponer();
}

bool ElFormatoSirve(std::string_view bytes, const EntradaCarga& actual) {
  const std::string texto = base::DecodeFile(bytes);
  const std::vector<std::string_view> lineas = Muestra(texto);
  const settings::Settings& o = *actual.opciones;
  std::size_t datos = 0;
  bool con_contrato = actual.personas->Cantidad() == 0, queda = actual.filtro == FiltroPor::Texto;
  for (const Piezas& piezas : Cortar(lineas, o)) {
    if (!EsDatos(piezas)) continue;
    ++datos;
    con_contrato = con_contrato || actual.personas->Buscar(NormalizarClave(piezas[0]), o.Configura) >= 0;
    queda = queda || actual.relaciones->PosEnVecConc(NormalizarTipo(piezas[1], o.CodTipoNumerico)) >= 0;
  }
  return datos * 2 >= lineas.size() && con_contrato && queda;
}

}  // namespace importfile
