#include "mdb/random_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"

namespace mdb_test {
namespace {

using mdb::Dato;
using mdb::TipoColumna;

std::string TextoAlAzar(Azar& azar, std::size_t unidades, bool ordenable) {
  static const char* const kLetras[] = {"a", "e", "N", "o", "z", "B", "1", "9", " ",  "ñ", "Ñ", "á",
                                        "É", "ü", "ç", "c", "h", "l", "l", "-", "\'", ".", "_", "ª"};
  static const char* const kOtras[] = {"€", "Ж", "中", "\u00ad", "\u0100"};
  std::string texto;
  const unsigned raras = ordenable ? 0 : azar.Hasta(4) == 0 ? 3 : 0;
  for (std::size_t i = 0; i < unidades; ++i)
    texto += raras != 0 && azar.Uno(raras) ? kOtras[azar.Hasta(5)] : kLetras[azar.Hasta(24)];
  return texto;
}

// Mostly short, now and then as long as the column takes.
std::size_t LargoAlAzar(Azar& azar, std::size_t mas) {
  if (azar.Uno(12)) return mas;
  return azar.Hasta(static_cast<unsigned>(std::min<std::size_t>(mas, azar.Uno(3) ? 200 : 12) + 1));
}

std::int64_t EnteroAlAzar(Azar& azar, int bits) {
  if (azar.Uno(2)) return azar.Hasta(40);
  const auto n =
      static_cast<std::int64_t>(std::uint64_t{azar.Hasta(0xFFFFFFFF)} << 32 | azar.Hasta(0xFFFFFFFF));
  return n >> (64 - bits);
}

std::size_t LargoDeMemo(Azar& azar) {
  switch (azar.Hasta(6)) {
    case 0:
      return azar.Hasta(34);  // in the row
    case 1:
      return 30 + azar.Hasta(6) * 17;
    case 2:
      return azar.Hasta(300);
    case 3:
      return 2000 + azar.Hasta(100);  // about a whole page
    case 4:
      return azar.Hasta(20000);  // a chain
    default:
      return 0;
  }
}

mdb::Bytes BytesAlAzar(Azar& azar, std::size_t largo) {
  mdb::Bytes b(largo);
  for (auto& x : b) x = static_cast<std::uint8_t>(azar.Hasta(256));
  return b;
}

mdb::Decimal DecimalAlAzar(Azar& azar, const mdb::Columna& c) {
  std::string texto = azar.Uno(3) ? "-" : "";
  const unsigned cifras = 1 + azar.Hasta(c.precision);
  for (unsigned i = 0; i < cifras; ++i) texto += static_cast<char>('0' + azar.Hasta(10));
  return mdb::DecimalDeTexto(texto + "e-" + std::to_string(c.escala), c.escala);
}

}  // namespace

Dato DatoAlAzar(Azar& azar, const mdb::Columna& c, bool ordenable) {
  if (c.tipo != TipoColumna::Booleano && azar.Uno(7)) return base::Nulo{};
  switch (c.tipo) {
    case TipoColumna::Booleano:
      return azar.Uno(2);
    case TipoColumna::Byte:
      return std::int64_t{azar.Hasta(256)};
    case TipoColumna::Entero:
      return EnteroAlAzar(azar, 16);
    case TipoColumna::Largo:
      return EnteroAlAzar(azar, 32);
    case TipoColumna::Moneda:
      return base::Moneda{EnteroAlAzar(azar, 50)};
    case TipoColumna::Simple:
      return static_cast<float>(EnteroAlAzar(azar, 20)) / 8;
    case TipoColumna::Doble:
      return static_cast<double>(EnteroAlAzar(azar, 40)) / 16;
    case TipoColumna::Fecha:
      return base::Fecha{static_cast<double>(EnteroAlAzar(azar, 19)) + azar.Hasta(24) / 24.0};
    case TipoColumna::Texto:
      return TextoAlAzar(azar, LargoAlAzar(azar, c.largo / 2), ordenable);
    case TipoColumna::Memo:
      return TextoAlAzar(azar, LargoDeMemo(azar), ordenable);
    case TipoColumna::Ole:
      return BytesAlAzar(azar, LargoDeMemo(azar));
    case TipoColumna::Guid: {
      mdb::Guid g;
      for (auto& b : g.bytes) b = static_cast<std::uint8_t>(azar.Hasta(256));
      return g;
    }
    case TipoColumna::Decimal:
      return DecimalAlAzar(azar, c);
    default:
      return BytesAlAzar(azar, LargoAlAzar(azar, c.largo));
  }
}

namespace {

// The unique and required indexes of a table, over the rows put in so far.
class Reglas {
 public:
  Reglas(const mdb::Cabecera& cabecera, const mdb::Definicion& d) : cabecera_(cabecera), d_(d) {
    for (std::size_t i = 0; i < d.reales.size(); ++i) {
      const bool primario = std::any_of(d.logicos.begin(), d.logicos.end(), [&](const auto& l) {
        return l.real == i && l.clase == mdb::IndiceLogico::Primario;
      });
      indices_.push_back({i, d.reales[i].Unico() || primario, d.reales[i].Requerido() || primario, {}});
    }
  }
  // False, and the row left out, when an index does not take it.
  bool Poner(const mdb::Fila& fila) {
    for (auto& u : indices_) {
      if (u.requerido && mdb::AlgunNulo(d_, Real(u), fila)) return false;
      if (u.unico && !mdb::TodosNulos(d_, Real(u), fila) && u.claves.contains(Clave(u, fila))) return false;
    }
    for (auto& u : indices_)
      if (u.unico) u.claves.insert(Clave(u, fila));
    return true;
  }
  void Quitar(const mdb::Fila& fila) {
    for (auto& u : indices_)
      if (u.unico) u.claves.erase(u.claves.find(Clave(u, fila)));
  }

 private:
  struct Uno {
    std::size_t cual;
    bool unico, requerido;
    std::multiset<mdb::Bytes> claves;
  };
  const mdb::IndiceReal& Real(const Uno& u) const { return d_.reales[u.cual]; }
  mdb::Bytes Clave(const Uno& u, const mdb::Fila& fila) const {
    mdb::Bytes clave;
    mdb::ClaveDeFila(cabecera_, d_, Real(u), fila, clave);
    return clave;
  }
  const mdb::Cabecera& cabecera_;
  const mdb::Definicion& d_;
  std::vector<Uno> indices_;
};

}  // namespace

TablaConModelo::TablaConModelo(mdb::Paginas& paginas, mdb::NumPagina definicion, std::string nombre)
    : paginas_(paginas), definicion_(mdb::LeerDefinicion(paginas, definicion)) {
  definicion_.nombre = std::move(nombre);
  ordenable_.resize(definicion_.columnas.size());
  for (const auto& i : definicion_.reales)
    for (const auto& p : i.partes) ordenable_[*definicion_.PorNumero(p.columna)] = true;
  mdb::RecorrerFilas(paginas, definicion_, [&](mdb::IdFila id, const mdb::Fila& fila) {
    filas_.emplace(id, fila);
    return true;
  });
}

mdb::Fila TablaConModelo::FilaAlAzar(Azar& azar) {
  mdb::Fila fila;
  for (std::size_t i = 0; i < definicion_.columnas.size(); ++i)
    fila.push_back(DatoAlAzar(azar, definicion_.columnas[i], ordenable_[i]));
  return fila;
}

bool TablaConModelo::SeAdmite(const Contenido& filas, const std::vector<mdb::Fila>& nuevas) const {
  Reglas reglas(paginas_.Cab(), definicion_);
  for (const auto& [id, fila] : filas)
    if (!reglas.Poner(fila)) return false;
  for (const auto& fila : nuevas)
    if (!reglas.Poner(fila)) return false;
  return true;
}

void TablaConModelo::Aplicar(const mdb::Cambios& cambios, Contenido despues) {
  const bool se_admite = SeAdmite(despues, cambios.nuevas);
  const auto punto = paginas_.Guardar();
  const mdb::Definicion antes = definicion_;
  try {
    const auto ids = mdb::Aplicar(paginas_, definicion_, cambios);
    ASSERT_TRUE(se_admite) << "a batch that breaks an index was taken";
    ASSERT_EQ(ids.size(), cambios.nuevas.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
      ASSERT_TRUE(despues.emplace(ids[i], cambios.nuevas[i]).second) << "an identity was given twice";
    filas_ = std::move(despues);
    cuentas.nuevas += static_cast<unsigned>(ids.size());
    cuentas.cambiadas += static_cast<unsigned>(cambios.cambiadas.size());
    cuentas.borradas += static_cast<unsigned>(cambios.borradas.size());
  } catch (const mdb::ErrorDeClave& e) {
    ASSERT_FALSE(se_admite) << e.what();
    definicion_ = antes;
    paginas_.Volver(punto);
    ++cuentas.rechazadas;
  }
}

void TablaConModelo::Cambiar(Azar& azar, unsigned largo) {
  constexpr int kIntentos = 8;
  mdb::Cambios cambios;
  Contenido despues = filas_;
  const bool con_cuidado = !azar.Uno(8), lleno = filas_.size() > filas_de_mas;
  Reglas reglas(paginas_.Cab(), definicion_);
  for (const auto& [id, fila] : filas_) ASSERT_TRUE(reglas.Poner(fila));
  for (const auto& [id, fila] : filas_) {
    if (cambios.borradas.size() + cambios.cambiadas.size() >= largo) break;
    if (!azar.Uno(1 + static_cast<unsigned>(filas_.size()) / largo)) continue;
    reglas.Quitar(fila);
    if (azar.Uno(lleno ? 2 : 4)) {
      cambios.borradas.push_back(id);
      despues.erase(id);
      continue;
    }
    for (int intento = 0; intento < kIntentos; ++intento) {
      mdb::CambioDeFila cambio{id, {}};
      mdb::Fila nueva = fila;
      for (std::size_t c = 0; c < definicion_.columnas.size(); ++c) {
        if (!azar.Uno(3)) continue;
        cambio.valores.emplace_back(c, DatoAlAzar(azar, definicion_.columnas[c], ordenable_[c]));
        nueva[c] = cambio.valores.back().second;
      }
      const bool cabe = reglas.Poner(nueva);
      if (con_cuidado && !cabe) continue;
      despues[id] = std::move(nueva);
      cambios.cambiadas.push_back(std::move(cambio));
      break;
    }
    if (con_cuidado && despues[id] == fila &&
        (cambios.cambiadas.empty() || cambios.cambiadas.back().fila != id))
      reglas.Poner(fila);
  }
  for (unsigned i = azar.Hasta(lleno ? largo / 2 + 1 : largo + 1); i > 0; --i) {
    for (int intento = 0; intento < kIntentos; ++intento) {
      mdb::Fila fila = FilaAlAzar(azar);
      if (!reglas.Poner(fila) && con_cuidado) continue;
      cambios.nuevas.push_back(std::move(fila));
      break;
    }
  }
  Aplicar(cambios, std::move(despues));
}

// Every row takes the values that the next one had: what unique indexes allow only when all is done at once.
void TablaConModelo::Rotar() {
  mdb::Cambios cambios;
  Contenido despues;
  for (auto it = filas_.begin(); it != filas_.end(); ++it) {
    const auto siguiente = std::next(it) == filas_.end() ? filas_.begin() : std::next(it);
    mdb::CambioDeFila cambio{it->first, {}};
    for (std::size_t c = 0; c < definicion_.columnas.size(); ++c)
      cambio.valores.emplace_back(c, siguiente->second[c]);
    despues.emplace(it->first, siguiente->second);
    cambios.cambiadas.push_back(std::move(cambio));
  }
  Aplicar(cambios, std::move(despues));
}

void TablaConModelo::BorrarTodo() {
  mdb::Cambios cambios;
  for (const auto& [id, fila] : filas_) cambios.borradas.push_back(id);
  Aplicar(cambios, {});
}

void TablaConModelo::Comparar() {
  // What counts is what the pages say, not what the writer still has at hand.
  mdb::Definicion guardada = mdb::LeerDefinicion(paginas_, definicion_.Pagina());
  EXPECT_EQ(guardada.filas, definicion_.filas);
  EXPECT_EQ(guardada.ultimo_automatico, definicion_.ultimo_automatico);
  std::size_t vistas = 0, iguales = 0;
  mdb::RecorrerFilas(paginas_, guardada, [&](mdb::IdFila id, const mdb::Fila& fila) {
    ++vistas;
    const auto it = filas_.find(id);
    iguales += it != filas_.end() && it->second == fila ? 1 : 0;
    return true;
  });
  ASSERT_EQ(vistas, filas_.size());
  ASSERT_EQ(iguales, filas_.size());
  for (const auto& real : guardada.reales) {
    std::vector<mdb::Entrada> deben, hay;
    for (const auto& [id, fila] : filas_) {
      if (real.IgnoraNulos() && mdb::TodosNulos(guardada, real, fila)) continue;
      deben.push_back({{}, id});
      mdb::ClaveDeFila(paginas_.Cab(), guardada, real, fila, deben.back().clave);
    }
    std::sort(deben.begin(), deben.end());
    mdb::ArbolDeIndice(paginas_, guardada.Pagina(), real).Recorrer([&](const mdb::Entrada& e) {
      hay.push_back(e);
      return true;
    });
    ASSERT_EQ(hay == deben, true) << "index entries: " << hay.size() << " of " << deben.size();
  }
}

}  // namespace mdb_test
