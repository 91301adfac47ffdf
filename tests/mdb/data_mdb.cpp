#include <optional>

#include "base/text.h"
#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/pages/text.h"
#include "mdb/rows/table.h"
#include "support/data_test.h"
#include "support/escapes.h"

namespace {

using support::Bloque;

std::vector<std::string> Lineas(const Bloque& b) { return base::Split(b.entrada, "\n"); }

mdb::Bytes DeHexadecimal(std::string_view texto) {
  mdb::Bytes bytes;
  int alto = -1;
  for (const char c : texto) {
    const int n = support::CifraHexa(c);
    if (n < 0) continue;
    if (alto < 0) {
      alto = n;
    } else {
      bytes.push_back(static_cast<std::uint8_t>(alto * 16 + n));
      alto = -1;
    }
  }
  return bytes;
}

std::string Hexadecimal(mdb::Vista bytes) {
  std::string texto;
  for (const auto b : bytes) {
    texto += "0123456789ABCDEF"[b >> 4];
    texto += "0123456789ABCDEF"[b & 15];
  }
  return texto;
}

mdb::Cabecera Cabecera(const Bloque& b) {
  mdb::Cabecera c;
  if (b.Tiene("jet3")) {
    c.version = mdb::Version::Jet3;
    c.tamano_pagina = 2048;
  }
  c.pagina_de_codigos = static_cast<std::uint16_t>(std::stoi(b.Opcion("codigos", "1252")));
  return c;
}

// What the step gives, or its error.
template <typename Paso>
std::string ConError(Paso&& paso) {
  try {
    return paso();
  } catch (const base::Error& e) {
    return "error: " + e.Descripcion();
  }
}
template <typename Paso>
std::string CadaLinea(const Bloque& b, Paso&& paso) {
  std::string salida;
  for (const auto& linea : Lineas(b)) salida += ConError([&] { return paso(linea); }) + "\n";
  salida.pop_back();
  return salida;
}

// "attribute|order|name1|name2|expression|flag|extra"; "-" is Null, and so is what is missing at the end.
mdb::FilaDeConsulta Fila(const std::string& linea) {
  const auto piezas = base::Split(linea, "|");
  const auto texto = [&](std::size_t i) -> std::optional<std::string> {
    if (i >= piezas.size() || piezas[i] == "-") return {};
    return support::Desescapar(piezas[i]);
  };
  mdb::FilaDeConsulta f;
  f.atributo = static_cast<std::uint8_t>(std::stoi(piezas[0]));
  f.orden = static_cast<std::uint32_t>(std::stoul(piezas[1]));
  f.nombre1 = texto(2);
  f.nombre2 = texto(3);
  f.expresion = texto(4);
  if (const auto n = texto(5)) f.bandera = static_cast<std::int16_t>(std::stoi(*n));
  if (const auto n = texto(6)) f.extra = std::stoi(*n);
  return f;
}

mdb::ConsultaGuardada Consulta(const Bloque& b) {
  mdb::ConsultaGuardada c;
  c.nombre = "Q";
  c.banderas = static_cast<std::uint32_t>(std::stoul(b.Opcion("banderas", "0"), nullptr, 0));
  for (const auto& linea : Lineas(b))
    if (!linea.empty()) c.filas.push_back(Fila(linea));
  return c;
}

std::string TextoDeClase(const Bloque& b) {
  return ConError([&] {
    const auto clase = mdb::ClaseDe(Consulta(b));
    return std::string(engine_mdb::KindName(clase)) + (engine_mdb::GivesRows(clase) ? ", gives rows" : "");
  });
}

std::string TextoDeDecimal(const mdb::Decimal& d) {
  std::string magnitud;
  for (const auto palabra : d.magnitud) {
    mdb::Bytes bytes;
    mdb::Agregar32(bytes, palabra);
    magnitud += Hexadecimal(mdb::Bytes(bytes.rbegin(), bytes.rend()));
  }
  magnitud.erase(0, std::min(magnitud.find_first_not_of('0'), magnitud.size() - 1));
  return d.Texto() + " " + (d.negativo ? "-" : "+") + magnitud;
}

struct MostrarDato {
  std::string operator()(base::Nulo) const { return "NULL"; }
  std::string operator()(bool v) const { return v ? "True" : "False"; }
  std::string operator()(std::int64_t v) const { return std::to_string(v); }
  std::string operator()(float v) const { return base::Valor(v).TextoCsv() + "f"; }
  std::string operator()(double v) const { return base::Valor(v).TextoCsv(); }
  std::string operator()(base::Moneda v) const { return base::Valor(v).TextoCsv() + "$"; }
  std::string operator()(base::Fecha v) const { return base::FechaIso(v); }
  std::string operator()(const std::string& v) const { return v.empty() ? "(empty)" : support::Escapado(v); }
  std::string operator()(const mdb::Bytes& v) const { return "0x" + Hexadecimal(v); }
  std::string operator()(const mdb::Guid& v) const { return v.Texto(); }
  std::string operator()(const mdb::Decimal& v) const { return v.Texto(); }
};

// Lines "name type number fixed offset length" or "name type number variable place length", then "--", then
// rows in hexadecimal. One line a row.
std::string Filas(const Bloque& b) {
  const auto cabecera = Cabecera(b);
  mdb::PaginasEnMemoria paginas(cabecera, {});
  mdb::Definicion d;
  bool columnas = true;
  std::string salida;
  for (const auto& linea : Lineas(b)) {
    if (linea == "--") {
      columnas = false;
    } else if (columnas) {
      const auto p = base::Split(linea, " ");
      mdb::Columna c;
      c.nombre = p.at(0);
      c.tipo = static_cast<mdb::TipoColumna>(std::stoi(p.at(1)));
      c.numero = static_cast<std::uint16_t>(std::stoi(p.at(2)));
      const auto lugar = static_cast<std::uint16_t>(std::stoi(p.at(4)));
      if (p.at(3) == "fixed") {
        c.banderas |= mdb::Columna::kFija;
        c.desplazamiento = lugar;
      } else {
        c.variable = lugar;
        d.variables = std::max<std::uint16_t>(d.variables, static_cast<std::uint16_t>(lugar + 1));
      }
      if (p.size() > 5) c.largo = static_cast<std::uint16_t>(std::stoi(p.at(5)));
      if (p.size() > 6) c.banderas_ext = static_cast<std::uint8_t>(std::stoi(p.at(6)));
      d.columnas.push_back(c);
      d.max_columnas = std::max<std::uint16_t>(d.max_columnas, static_cast<std::uint16_t>(c.numero + 1));
    } else {
      const auto bytes = DeHexadecimal(linea);
      salida += ConError([&] {
        std::vector<std::string> celdas;
        const auto crudos = mdb::PartirFila(cabecera, d, bytes);
        for (std::size_t i = 0; i < crudos.size(); ++i)
          celdas.push_back(
              crudos[i] ? std::visit(MostrarDato{}, mdb::Decodificar(paginas, d.columnas[i], *crudos[i]))
                        : "NULL");
        return base::Join(celdas, "|");
      });
      salida += "\n";
    }
  }
  if (!salida.empty()) salida.pop_back();
  return salida;
}

std::string Propiedades(const Bloque& b) {
  return ConError([&] {
    const auto bytes = DeHexadecimal(b.entrada);
    const auto propiedades = mdb::LeerPropiedades(Cabecera(b), bytes);
    std::string salida;
    for (const auto& [dueno, lista] : propiedades)
      for (const auto& p : lista)
        salida += (dueno.empty() ? "(table)" : dueno) + "." + p.nombre + " " + std::to_string(p.tipo) +
                  (p.ddl ? " ddl " : " ") + std::visit(MostrarDato{}, p.valor) + "\n";
    if (b.Tiene("igual"))
      salida += mdb::SerializarPropiedades(propiedades) == bytes ? "the same when written\n"
                                                                 : "written otherwise\n";
    if (!salida.empty()) salida.pop_back();
    return salida.empty() ? std::string("(none)") : salida;
  });
}

support::Verbos Preparar() {
  support::Verbos v;
  v["query"] = [](const Bloque& b) {
    return ConError([&] { return support::Escapado(engine_mdb::QueryText(Consulta(b))); });
  };
  v["kind"] = TextoDeClase;
  v["decimal"] = [](const Bloque& b) {
    const auto escala = static_cast<std::uint8_t>(std::stoi(b.Opcion("escala", "0")));
    return CadaLinea(b, [&](const std::string& linea) {
      const auto d = mdb::DecimalDeTexto(linea, escala);
      return TextoDeDecimal(d);
    });
  };
  v["guid"] = [](const Bloque& b) {
    return CadaLinea(b, [](const std::string& linea) { return mdb::GuidDeTexto(linea).Texto(); });
  };
  v["text"] = [](const Bloque& b) {
    return CadaLinea(b, [&](const std::string& linea) {
      const auto texto = mdb::DecodificarTexto(Cabecera(b), DeHexadecimal(linea));
      return texto.empty() ? std::string("(empty)") : support::Escapado(texto);
    });
  };
  v["rows"] = Filas;
  v["properties"] = Propiedades;
  return v;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
