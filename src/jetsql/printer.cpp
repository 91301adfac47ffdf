#include <array>
#include <charconv>
#include <cstdio>

#include "jetsql/parser_internal.h"
#include "jetsql/printer_internal.h"

namespace jetsql {
namespace {

struct OpTexto {
  std::string_view texto;
  int fuerza;
};

OpTexto DeOp(Op op) {
  switch (op) {
    case Op::Imp:
      return {"IMP", 1};
    case Op::Eqv:
      return {"EQV", 2};
    case Op::Xor:
      return {"XOR", 3};
    case Op::Or:
      return {"OR", 4};
    case Op::And:
      return {"AND", 5};
    case Op::No:
      return {"NOT", 6};
    case Op::Igual:
      return {"=", 7};
    case Op::Distinto:
      return {"<>", 7};
    case Op::Menor:
      return {"<", 7};
    case Op::Mayor:
      return {">", 7};
    case Op::MenorIgual:
      return {"<=", 7};
    case Op::MayorIgual:
      return {">=", 7};
    case Op::Concat:
      return {"&", 8};
    case Op::Suma:
      return {"+", 9};
    case Op::Resta:
      return {"-", 9};
    case Op::Mod:
      return {"MOD", 10};
    case Op::DivEntera:
      return {"\\", 11};
    case Op::Por:
      return {"*", 12};
    case Op::Div:
      return {"/", 12};
    case Op::Menos:
      return {"-", 13};
    case Op::Mas:
      return {"+", 13};
    case Op::Potencia:
      return {"^", 14};
  }
  return {"", 0};
}

int Fuerza(const Expr& e) {
  switch (e.nodo) {
    case Nodo::Unario:
      return e.op == Op::Menos && e.hijos[0]->nodo == Nodo::Literal ? 99 : DeOp(e.op).fuerza;
    case Nodo::Binario:
      return DeOp(e.op).fuerza;
    case Nodo::Entre:
    case Nodo::EnLista:
    case Nodo::EnConsulta:
    case Nodo::Cuantificada:
    case Nodo::EsNulo:
    case Nodo::Como:
      return 7;
    default:
      return 99;
  }
}

bool NombreSimple(std::string_view n) {
  for (std::size_t i = 0; i < n.size(); ++i) {
    const auto c = static_cast<unsigned char>(n[i]);
    const bool letra = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c >= 0x80 || c == '_';
    if (!letra && !(i > 0 && c >= '0' && c <= '9')) return false;
  }
  return !n.empty() && !PalabraReservada(n);
}

}  // namespace

void Impresor::Nombre(std::string_view nombre) {
  if (NombreSimple(nombre))
    t_ += nombre;
  else
    t_.append("[").append(nombre).append("]");
}

void Impresor::Nombres(const std::vector<std::string>& nombres) {
  t_ += '(';
  for (std::size_t i = 0; i < nombres.size(); ++i) {
    if (i > 0) t_ += ", ";
    Nombre(nombres[i]);
  }
  t_ += ')';
}

void Impresor::Literal(const base::Valor& v) {
  if (const auto* n = v.Si<std::int64_t>()) {
    t_ += std::to_string(*n);
  } else if (const auto* d = v.Si<double>()) {
    std::array<char, 40> b{};
    const auto r = std::to_chars(b.data(), b.data() + b.size(), *d);
    const std::string_view s(b.data(), static_cast<std::size_t>(r.ptr - b.data()));
    t_ += s;
    if (s.find_first_of(".e") == std::string_view::npos) t_ += ".0";
  } else if (const auto* f = v.Si<base::Fecha>()) {
    const base::PartesFecha p = base::Partes(*f);
    std::array<char, 48> b{};
    std::snprintf(b.data(), b.size(), "#%02d/%02d/%04d", p.mes, p.dia, p.anio);
    t_ += b.data();
    if (p.hora != 0 || p.minuto != 0 || p.segundo != 0) {
      std::snprintf(b.data(), b.size(), " %02d:%02d:%02d", p.hora, p.minuto, p.segundo);
      t_ += b.data();
    }
    t_ += '#';
  } else if (const auto* s = v.Si<std::string>()) {
    t_ += '\'';
    for (const char c : *s) {
      if (c == '\'') t_ += c;
      t_ += c;
    }
    t_ += '\'';
  }
}

void Impresor::Lista(const Expr& e, std::size_t desde) {
  for (std::size_t i = desde; i < e.hijos.size(); ++i) {
    if (i > desde) t_ += ", ";
    Escribir(*e.hijos[i]);
  }
}

void Impresor::Binario(const Expr& e, int fuerza) {
  const bool cadena = e.op == Op::And || e.op == Op::Or || e.op == Op::Concat;
  for (std::size_t i = 0; i < e.hijos.size(); ++i) {
    if (i > 0) t_.append(" ").append(DeOp(e.op).texto).append(" ");
    Escribir(*e.hijos[i], i == 0 && !cadena ? fuerza : fuerza + 1);
  }
}

// IS NULL, IN, BETWEEN, LIKE and the comparison with ANY or ALL: what stands after their first operand.
void Impresor::Predicado(const Expr& e) {
  Escribir(*e.hijos[0], 7);
  if (e.nodo == Nodo::EsNulo) {
    t_ += e.negado ? " IS NOT NULL" : " IS NULL";
    return;
  }
  t_ += e.negado ? " NOT " : " ";
  switch (e.nodo) {
    case Nodo::Entre:
      t_ += "BETWEEN ";
      Escribir(*e.hijos[1], 8);
      t_ += " AND ";
      Escribir(*e.hijos[2], 8);
      return;
    case Nodo::Como:
      t_ += "LIKE ";
      Escribir(*e.hijos[1], 8);
      return;
    case Nodo::EnLista:
      t_ += "IN (";
      Lista(e, 1);
      break;
    case Nodo::EnConsulta:
      t_ += "IN (";
      Escribir(*e.consulta);
      break;
    default:
      t_.append(DeOp(e.op).texto).append(e.todos ? " ALL (" : " ANY (");
      Escribir(*e.consulta);
  }
  t_ += ')';
}

void Impresor::Unario(const Expr& e) {
  t_ += DeOp(e.op).texto;
  if (e.op == Op::No) t_ += ' ';
  // "-10 ^ 2" would be the power of -10.
  const bool potencia = e.op != Op::No && e.hijos[0]->nodo == Nodo::Binario && e.hijos[0]->op == Op::Potencia;
  Escribir(*e.hijos[0], potencia ? 99 : DeOp(e.op).fuerza);
}

void Impresor::Escribir(const Expr& e, int minimo) {
  const int fuerza = Fuerza(e);
  const bool parentesis = fuerza < minimo;
  if (parentesis) t_ += '(';
  switch (e.nodo) {
    case Nodo::Literal:
      Literal(e.literal);
      break;
    case Nodo::Verdadero:
      t_ += "TRUE";
      break;
    case Nodo::Falso:
      t_ += "FALSE";
      break;
    case Nodo::Nulo:
      t_ += "NULL";
      break;
    case Nodo::Estrella:
      t_ += '*';
      break;
    case Nodo::Columna:
      if (!e.calificador.empty()) {
        Nombre(e.calificador);
        t_ += '.';
      }
      Nombre(e.nombre);
      break;
    case Nodo::Unario:
      Unario(e);
      break;
    case Nodo::Binario:
      Binario(e, fuerza);
      break;
    case Nodo::Llamada:
      t_.append(e.nombre).append(e.distinto ? "(DISTINCT " : "(");
      Lista(e, 0);
      t_ += ')';
      break;
    case Nodo::Existe:
    case Nodo::Subconsulta:
      t_ += e.nodo == Nodo::Existe ? "EXISTS (" : "(";
      Escribir(*e.consulta);
      t_ += ')';
      break;
    default:
      Predicado(e);
  }
  if (parentesis) t_ += ')';
}

void Impresor::Item(const ItemLista& i) {
  if (!i.expr) {
    if (!i.calificador.empty()) {
      Nombre(i.calificador);
      t_ += '.';
    }
    t_ += '*';
    return;
  }
  Escribir(*i.expr);
  if (i.alias.empty()) return;
  t_ += " AS ";
  Nombre(i.alias);
}

void Impresor::Seleccionar(const Seleccion& s) {
  t_ += "SELECT ";
  if (s.distincion == Distincion::Distinct) t_ += "DISTINCT ";
  if (s.distincion == Distincion::DistinctRow) t_ += "DISTINCTROW ";
  if (s.tope) {
    t_ += "TOP ";
    Escribir(*s.tope);
    t_ += s.tope_por_ciento ? " PERCENT " : " ";
  }
  for (std::size_t i = 0; i < s.lista.size(); ++i) {
    if (i > 0) t_ += ", ";
    Item(s.lista[i]);
  }
  if (!s.destino.empty()) {
    t_ += " INTO ";
    Nombre(s.destino);
  }
  if (!s.de.empty()) {
    t_ += " FROM ";
    De(s.de);
  }
  if (s.donde) {
    t_ += " WHERE ";
    Escribir(*s.donde);
  }
  for (std::size_t i = 0; i < s.grupo.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    Escribir(*s.grupo[i]);
  }
  if (s.teniendo) {
    t_ += " HAVING ";
    Escribir(*s.teniendo);
  }
}

void Impresor::De(const std::vector<RamaPtr>& de) {
  for (std::size_t i = 0; i < de.size(); ++i) {
    if (i > 0) t_ += ", ";
    Rama(*de[i]);
  }
}

void Impresor::Rama(const jetsql::Rama& r) {
  if (r.hoja) {
    if (r.hoja->nombre.empty()) {
      t_ += '(';
      Escribir(*r.hoja->consulta);
      t_ += ')';
    } else {
      Nombre(r.hoja->nombre);
    }
    if (!r.hoja->alias.empty()) {
      t_ += " AS ";
      Nombre(r.hoja->alias);
    }
    return;
  }
  const auto lado = [&](const jetsql::Rama& x) {
    if (!x.hoja) t_ += '(';
    Rama(x);
    if (!x.hoja) t_ += ')';
  };
  lado(*r.izquierda);
  t_ += r.tipo == TipoUnion::Interna     ? " INNER JOIN "
        : r.tipo == TipoUnion::Izquierda ? " LEFT JOIN "
                                         : " RIGHT JOIN ";
  lado(*r.derecha);
  t_ += " ON ";
  Escribir(*r.condicion);
}

std::string Imprimir(const Sentencia& sentencia) {
  Impresor i;
  std::visit(
      [&](const auto& s) {
        if constexpr (std::is_same_v<std::decay_t<decltype(s)>, ConsultaPtr>)
          i.Escribir(*s);
        else
          i.Escribir(s);
      },
      sentencia);
  return std::move(i).Texto();
}

std::string Imprimir(const Consulta& consulta) {
  Impresor i;
  i.Escribir(consulta);
  return std::move(i).Texto();
}

std::string Imprimir(const Seleccion& seleccion) {
  Impresor i;
  i.Seleccionar(seleccion);
  return std::move(i).Texto();
}

std::string Imprimir(const Expr& expr) {
  Impresor i;
  i.Escribir(expr);
  return std::move(i).Texto();
}

}  // namespace jetsql
