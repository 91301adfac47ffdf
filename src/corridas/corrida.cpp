#include "corridas/corrida.h"

#include <bit>

#include "base/error.h"

namespace corridas {
namespace {

constexpr std::uint64_t kVersion = 1;

void Doble(double d, std::string& b) { CodificarEntero(std::bit_cast<std::uint64_t>(d), 8, b); }
double Doble(Lector& l) { return std::bit_cast<double>(l.Entero(8)); }

void CodificarFila(const std::optional<Fila>& fila, std::string& b) {
  CodificarEntero(fila ? 1 : 0, 1, b);
  if (!fila) return;
  for (const base::Value& v : *fila) Codificar(v, b);
}

std::optional<Fila> DecodificarFila(Lector& l, std::size_t columnas) {
  if (l.Entero(1) == 0) return std::nullopt;
  return l.Valores(columnas);
}

// A count is believed only as far as the bytes reach: each piece takes one at least.
std::size_t Cuantos(Lector& l) {
  const std::uint64_t n = l.Entero(8);
  if (n > l.Quedan()) throw base::Error("El registro está cortado");
  return static_cast<std::size_t>(n);
}

// The fields of a summary in their order; `paso` writes them or reads them.
template <typename R, typename Paso>
void CadaCampo(R& r, Paso&& paso) {
  paso.Enteros(r.anula, r.id_Usuario, r.idEmpresa, r.leidas, r.importadas, r.rechazadas, r.filtradas,
               r.mal_formadas, r.insertadas, r.cambiadas, r.borradas, r.conservadas, r.antes.suma,
               r.antes.filas, r.despues.suma, r.despues.filas);
  paso.Dobles(r.mes.serial, r.horas);
  paso.Textos(r.momento, r.usuario_sistema, r.liquidacion, r.archivo, r.huella_archivo, r.ajustes);
}

struct Escribe {
  std::string& b;
  template <typename... T>
  void Enteros(const T&... n) {
    (CodificarEntero(static_cast<std::uint64_t>(n), 8, b), ...);
  }
  void Dobles(double x, double y) { Doble(x, b), Doble(y, b); }
  template <typename... T>
  void Textos(const T&... t) {
    (CodificarTexto(t, b), ...);
  }
};

struct Lee {
  Lector& l;
  template <typename... T>
  void Enteros(T&... n) {
    ((n = static_cast<T>(l.Entero(8))), ...);
  }
  void Dobles(double& x, double& y) { x = Doble(l), y = Doble(l); }
  template <typename... T>
  void Textos(T&... t) {
    ((t = std::string(l.Texto())), ...);
  }
};

}  // namespace

void Contar(const Cambios& cambios, Resumen& r) {
  for (const CambiosDeTabla& t : cambios.tablas)
    for (const CambioDeFila& f : t.filas) ++(!f.antes ? r.insertadas : !f.despues ? r.borradas : r.cambiadas);
}

std::string MomentoParaLeer(std::string_view momento) {
  if (momento.size() < 16) return std::string(momento);
  const auto parte = [&](std::size_t desde, std::size_t cuantas) {
    return std::string(momento.substr(desde, cuantas));
  };
  return parte(8, 2) + "/" + parte(5, 2) + "/" + parte(0, 4) + " " + parte(11, 5);
}

std::uint64_t HuellaDeTexto(std::string_view texto) { return Picada(texto, 0); }

std::string CodificarResumen(const Resumen& r) {
  std::string b;
  CodificarEntero(kVersion, 1, b);
  CodificarEntero(static_cast<std::uint64_t>(r.clase), 1, b);
  CadaCampo(r, Escribe{b});
  CodificarEntero(r.totales.size(), 8, b);
  for (const TotalDeCorrida& t : r.totales) {
    CodificarEntero(static_cast<std::uint64_t>(t.concepto), 8, b);
    CodificarTexto(t.nombre, b);
    CodificarEntero(t.lineas, 8, b);
    Doble(t.cantidad, b);
  }
  return b;
}

Resumen DecodificarResumen(std::string_view bytes) {
  Lector l(bytes);
  Resumen r;
  if (l.Entero(1) != kVersion) throw base::Error("El registro es de una versión posterior del programa");
  r.clase = static_cast<Clase>(l.Entero(1));
  CadaCampo(r, Lee{l});
  r.totales.resize(Cuantos(l));
  for (TotalDeCorrida& t : r.totales) {
    t.concepto = static_cast<std::int64_t>(l.Entero(8));
    t.nombre = std::string(l.Texto());
    t.lineas = l.Entero(8);
    t.cantidad = Doble(l);
  }
  return r;
}

std::string CodificarCuerpo(const Corrida& c) {
  std::string b;
  CodificarEntero(c.lineas.size(), 8, b);
  for (const LineaImportada& linea : c.lineas) {
    CodificarEntero(linea.huella, 8, b);
    Doble(linea.horas, b);
  }
  CodificarEntero(c.cambios.tablas.size(), 8, b);
  for (const CambiosDeTabla& t : c.cambios.tablas) {
    CodificarTexto(t.tabla, b);
    CodificarEntero(t.columnas.size(), 8, b);
    for (const std::string& columna : t.columnas) CodificarTexto(columna, b);
    CodificarEntero(t.clave.size(), 8, b);
    for (const std::size_t i : t.clave) CodificarEntero(i, 8, b);
    CodificarEntero(t.filas.size(), 8, b);
    for (const CambioDeFila& f : t.filas) {
      CodificarFila(f.antes, b);
      CodificarFila(f.despues, b);
    }
  }
  return b;
}

void DecodificarCuerpo(std::string_view bytes, Corrida& c) {
  Lector l(bytes);
  c.lineas.resize(Cuantos(l));
  for (LineaImportada& linea : c.lineas) {
    linea.huella = l.Entero(8);
    linea.horas = Doble(l);
  }
  c.cambios.tablas.resize(Cuantos(l));
  for (CambiosDeTabla& t : c.cambios.tablas) {
    t.tabla = std::string(l.Texto());
    t.columnas.resize(Cuantos(l));
    for (std::string& columna : t.columnas) columna = std::string(l.Texto());
    t.clave.resize(Cuantos(l));
    for (std::size_t& i : t.clave) {
      i = static_cast<std::size_t>(l.Entero(8));
      if (i >= t.columnas.size()) throw base::Error("El registro nombra una columna que no tiene");
    }
    t.filas.resize(Cuantos(l));
    for (CambioDeFila& f : t.filas) {
      f.antes = DecodificarFila(l, t.columnas.size());
      f.despues = DecodificarFila(l, t.columnas.size());
      if (!f.antes && !f.despues) throw base::Error("El registro tiene una fila vacía");
    }
  }
}

}  // namespace corridas
