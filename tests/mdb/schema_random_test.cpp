// Random changes of the schema and of rows, with fixed seeds, and a model of what the base must then hold.
#include <algorithm>
#include <map>

#include "base/text.h"
#include "mdb/random_rows.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

constexpr TipoColumna kTipos[] = {TipoColumna::Booleano, TipoColumna::Byte,    TipoColumna::Entero,
                                  TipoColumna::Largo,    TipoColumna::Moneda,  TipoColumna::Simple,
                                  TipoColumna::Doble,    TipoColumna::Fecha,   TipoColumna::Texto,
                                  TipoColumna::Texto,    TipoColumna::Memo,    TipoColumna::Binario,
                                  TipoColumna::Ole,      TipoColumna::Decimal, TipoColumna::Guid};
const char* const kNombres[] = {"Años",  "Niñez",      "árbol", "Año nuevo",   "CO-OP", "coop",
                                "Ñandú", "Vacaciones", "x",     "El 'quinto'", "_1",    "Legajo de personal"};

// What a table must hold: values by column name, rows by their identity.
struct TablaModelo {
  std::vector<std::string> columnas;
  std::map<mdb::IdFila, std::map<std::string, mdb::Dato>> filas;
  std::vector<std::string> indices;
};
struct Modelo {
  std::map<std::string, TablaModelo> tablas;
  std::map<std::string, std::size_t> consultas;  // how many rows each
  std::map<std::string, std::pair<std::string, std::string>> relaciones;
};

class Recorrido {
 public:
  Recorrido(unsigned semilla, std::uint16_t orden) : azar_(semilla), b_(orden) {}

  void Correr(int pasos) {
    for (int i = 0; i < pasos && !::testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE("paso " + std::to_string(i));
      Paso();
      if (i % 10 == 9) ConfirmarODeshacer();
      if (i % 100 == 99) Comparar(true);
    }
    Comparar(true);
  }
  int hechos = 0, rechazados = 0;

 private:
  void Paso() {
    try {
      Hacer(azar_.Hasta(20));
      ++hechos;
    } catch (const base::Error&) {
      ++rechazados;
      Comparar(false);  // a refused step leaves nothing behind
    }
  }

  void Hacer(unsigned cual) {
    if (m_.tablas.empty() || cual == 0) return CrearTabla();
    switch (cual) {
      case 1:
        return azar_.Uno(2) ? BorrarTabla() : CrearTabla();
      case 2:
      case 3:
        return AgregarColumna();
      case 4:
        return QuitarColumna();
      case 5:
      case 6:
        return CrearIndice();
      case 7:
        return BorrarIndice();
      case 8:
        return CrearConsulta();
      case 9:
        return azar_.Uno(2) ? BorrarConsulta() : CrearConsulta();
      case 10:
        return CrearRelacion();
      case 11:
        return azar_.Uno(2) ? BorrarRelacion() : CrearRelacion();
      default:
        return CambiarFilas();
    }
  }

  std::string Nombre() {
    const std::string nombre = kNombres[azar_.Hasta(static_cast<unsigned>(std::size(kNombres)))];
    return azar_.Uno(2) ? nombre : nombre + " " + std::to_string(azar_.Hasta(20));
  }
  mdb::NuevaColumna Columna() {
    auto c = Col(Nombre(), kTipos[azar_.Hasta(static_cast<unsigned>(std::size(kTipos)))]);
    if (c.tipo == TipoColumna::Texto) c.largo = static_cast<std::uint16_t>(1 + azar_.Hasta(255));
    c.requerida = azar_.Uno(10);
    if (azar_.Uno(5)) c.defecto = "Date()";
    c.precision = 28;
    c.escala = static_cast<std::uint8_t>(azar_.Hasta(5));
    return c;
  }
  auto Tabla() {
    auto it = m_.tablas.begin();
    std::advance(it, azar_.Hasta(static_cast<unsigned>(m_.tablas.size())));
    return it;
  }
  std::string ColumnaDe(const TablaModelo& t) {
    return t.columnas[azar_.Hasta(static_cast<unsigned>(t.columnas.size()))];
  }
  mdb::NuevoIndice Indice(const std::vector<std::string>& columnas) {
    auto i = Ind(Nombre(), {});
    for (unsigned n = 1 + azar_.Hasta(3); n > 0; --n)
      i.partes.push_back({columnas[azar_.Hasta(static_cast<unsigned>(columnas.size()))], azar_.Uno(2)});
    i.unico = azar_.Uno(4);
    i.ignora_nulos = azar_.Uno(3);
    i.requerido = azar_.Uno(8);
    i.primario = azar_.Uno(6);
    return i;
  }

  void CrearTabla() {
    if (m_.tablas.size() > 8) return BorrarTabla();
    mdb::NuevaTabla t{Nombre(), {}, {}};
    TablaModelo modelo;
    for (unsigned n = 1 + azar_.Hasta(azar_.Uno(6) ? 60 : 8); n > 0; --n) {
      auto c = Columna();
      if (azar_.Uno(2)) c.nombre += "_" + std::to_string(n);
      t.columnas.push_back(c);
      modelo.columnas.push_back(c.nombre);
    }
    for (unsigned n = azar_.Hasta(3); n > 0; --n) t.indices.push_back(Indice(modelo.columnas));
    for (const auto& i : t.indices) modelo.indices.push_back(i.nombre);
    b_->CrearTabla(t, Hoy());
    m_.tablas[t.nombre] = modelo;
  }
  void BorrarTabla() {
    const auto it = Tabla();
    b_->BorrarTabla(base::Mayusculas(it->first));
    m_.tablas.erase(it);
  }
  void AgregarColumna() {
    const auto it = Tabla();
    const auto c = Columna();
    b_->AgregarColumna(it->first, c);
    it->second.columnas.push_back(c.nombre);
    for (auto& [id, fila] : it->second.filas)
      fila[c.nombre] = c.tipo == TipoColumna::Booleano ? mdb::Dato(false) : Nada();
  }
  void QuitarColumna() {
    const auto it = Tabla();
    const std::string c = ColumnaDe(it->second);
    b_->QuitarColumna(it->first, c);
    std::erase(it->second.columnas, c);
    for (auto& [id, fila] : it->second.filas) fila.erase(c);
  }
  void CrearIndice() {
    const auto it = Tabla();
    const auto i = Indice(it->second.columnas);
    b_->CrearIndice(it->first, i);
    it->second.indices.push_back(i.nombre);
  }
  void BorrarIndice() {
    const auto it = Tabla();
    if (it->second.indices.empty()) return;
    const std::string i = it->second.indices[azar_.Hasta(static_cast<unsigned>(it->second.indices.size()))];
    b_->BorrarIndice(it->first, i);
    std::erase(it->second.indices, i);
  }
  void CrearConsulta() {
    mdb::ConsultaGuardada c;
    c.nombre = Nombre();
    for (unsigned n = 1 + azar_.Hasta(30); n > 0; --n) {
      mdb::FilaDeConsulta f;
      f.atributo = azar_.Uno(3) ? 5 : 6;
      if (azar_.Uno(2)) f.nombre1 = Nombre();
      f.expresion = std::string(azar_.Uno(10) ? azar_.Hasta(9000) : azar_.Hasta(40), 'e');
      c.filas.push_back(f);
    }
    b_->CrearConsulta(c, Hoy());
    m_.consultas[c.nombre] = c.filas.size() + 2;
  }
  void BorrarConsulta() {
    if (m_.consultas.empty()) return;
    const auto it = m_.consultas.begin();
    b_->BorrarConsulta(it->first);
    m_.consultas.erase(it);
  }
  void CrearRelacion() {
    const auto padre = Tabla(), hijo = Tabla();
    mdb::RelacionDeTablas r{Nombre(),
                            hijo->first,
                            {ColumnaDe(hijo->second)},
                            padre->first,
                            {ColumnaDe(padre->second)},
                            azar_.Uno(2) ? 0U : mdb::RelacionDeTablas::kNoExigida};
    b_->CrearRelacion(r, Hoy());
    m_.relaciones[r.nombre] = {hijo->first, padre->first};
  }
  void BorrarRelacion() {
    if (m_.relaciones.empty()) return;
    const auto it = m_.relaciones.begin();
    b_->BorrarRelacion(it->first);
    m_.relaciones.erase(it);
  }

  // Relationships are for the caller of Aplicar to keep; tables that stand in an enforced one stay as they
  // are.
  bool EnRelacion(const std::string& tabla) {
    return std::any_of(
        b_->Indice().Relaciones().begin(), b_->Indice().Relaciones().end(),
        [&](const auto& r) { return r.Exigida() && (r.tabla == tabla || r.tabla_referida == tabla); });
  }

  void CambiarFilas() {
    const auto it = Tabla();
    if (EnRelacion(it->first)) return;
    const auto d = b_.Def(it->first);
    TablaModelo despues = it->second;
    mdb::Cambios cambios;
    for (const auto& [id, fila] : it->second.filas) {
      if (azar_.Uno(6)) {
        cambios.borradas.push_back(id);
        despues.filas.erase(id);
      } else if (azar_.Uno(6)) {
        mdb::CambioDeFila cambio;
        cambio.fila = id;
        const std::size_t c = azar_.Hasta(static_cast<unsigned>(d.columnas.size()));
        cambio.valores.emplace_back(c, DatoAlAzar(azar_, d.columnas[c], true));
        despues.filas[id][d.columnas[c].nombre] = cambio.valores[0].second;
        cambios.cambiadas.push_back(std::move(cambio));
      }
    }
    std::vector<std::map<std::string, mdb::Dato>> nuevas;
    for (unsigned n = azar_.Hasta(it->second.filas.size() > 60 ? 5 : 25); n > 0; --n) {
      mdb::Fila fila;
      auto& modelo = nuevas.emplace_back();
      for (const auto& c : d.columnas) {
        fila.push_back(DatoAlAzar(azar_, c, true));
        modelo[c.nombre] = fila.back();
      }
      cambios.nuevas.push_back(std::move(fila));
    }
    const auto ids = b_->Aplicar(it->first, cambios);
    for (std::size_t i = 0; i < ids.size(); ++i) despues.filas[ids[i]] = nuevas[i];
    it->second = std::move(despues);
  }

  void ConfirmarODeshacer() {
    if (azar_.Uno(4)) {
      b_->Deshacer();
      m_ = confirmado_;
    } else {
      b_->Confirmar();
      confirmado_ = m_;
    }
  }

  void Comparar(bool afuera) {
    std::map<std::string, TablaModelo> tablas;
    for (const auto& o : b_->Indice().Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla || o.DeSistema()) continue;
      const auto d = b_.Def(o.nombre);
      TablaModelo& t = tablas[o.nombre];
      for (const std::size_t c : d.EnOrden()) t.columnas.push_back(d.columnas[c].nombre);
      mdb::RecorrerFilas(b_->Hojas(), d, [&](mdb::IdFila id, const mdb::Fila& fila) {
        auto& valores = t.filas[id];
        for (std::size_t c = 0; c < fila.size(); ++c) valores[d.columnas[c].nombre] = fila[c];
        return true;
      });
      std::vector<std::string> indices;
      for (const auto& l : d.logicos)
        if (l.clase != mdb::IndiceLogico::Foraneo) indices.push_back(l.nombre);
      const auto modelo = m_.tablas.find(o.nombre);
      ASSERT_TRUE(modelo != m_.tablas.end()) << o.nombre;
      auto esperados = modelo->second.indices;
      std::sort(indices.begin(), indices.end());
      std::sort(esperados.begin(), esperados.end());
      EXPECT_EQ(indices, esperados) << o.nombre;
      EXPECT_EQ(t.columnas, modelo->second.columnas) << o.nombre;
      EXPECT_TRUE(t.filas == modelo->second.filas) << o.nombre;
    }
    EXPECT_EQ(tablas.size(), m_.tablas.size());
    CompararLoDemas();
    if (afuera) {
      b_.Sana();
      confirmado_ = m_;
    }
  }
  void CompararLoDemas() {
    for (const auto& [nombre, filas] : m_.consultas)
      EXPECT_EQ(b_->Indice().ConsultaDe(nombre).filas.size(), filas) << nombre;
    // A table that goes takes along the relationships that are not enforced.
    std::erase_if(m_.relaciones, [&](const auto& r) {
      return !m_.tablas.contains(r.second.first) || !m_.tablas.contains(r.second.second);
    });
    std::vector<std::string> hay, esperadas;
    for (const auto& r : b_->Indice().Relaciones()) hay.push_back(r.nombre);
    for (const auto& [nombre, r] : m_.relaciones) esperadas.push_back(nombre);
    std::sort(hay.begin(), hay.end());
    EXPECT_EQ(hay, esperadas);
  }

  Azar azar_;
  BaseDePrueba b_;
  Modelo m_, confirmado_;
};

TEST(EsquemaAlAzar, HoldsWhatItsModelHolds) {
  int hechos = 0, rechazados = 0;
  for (unsigned semilla = 1; semilla <= 6 && !HasFailure(); ++semilla) {
    SCOPED_TRACE("semilla " + std::to_string(semilla));
    Recorrido r(semilla, semilla % 3 == 0 ? 1033 : semilla % 3 == 1 ? 3082 : 1034);
    r.Correr(300);
    hechos += r.hechos;
    rechazados += r.rechazados;
  }
  EXPECT_GT(hechos, 1000);
  EXPECT_GT(rechazados, 100);
}

}  // namespace
