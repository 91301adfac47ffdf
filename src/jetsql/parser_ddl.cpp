#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

struct NombreTipo {
  std::string_view texto;
  ClaseColumna clase;
};

constexpr NombreTipo kTipos[] = {
    {"YESNO", ClaseColumna::SiNo},
    {"BIT", ClaseColumna::SiNo},
    {"LOGICAL", ClaseColumna::SiNo},
    {"LOGICAL1", ClaseColumna::SiNo},
    {"BOOLEAN", ClaseColumna::SiNo},
    {"BYTE", ClaseColumna::Byte},
    {"TINYINT", ClaseColumna::Byte},
    {"INTEGER1", ClaseColumna::Byte},
    {"SHORT", ClaseColumna::Corto},
    {"SMALLINT", ClaseColumna::Corto},
    {"INTEGER2", ClaseColumna::Corto},
    {"LONG", ClaseColumna::Largo},
    {"INTEGER", ClaseColumna::Largo},
    {"INT", ClaseColumna::Largo},
    {"INTEGER4", ClaseColumna::Largo},
    {"COUNTER", ClaseColumna::Contador},
    {"IDENTITY", ClaseColumna::Contador},
    {"AUTOINCREMENT", ClaseColumna::Contador},
    {"SINGLE", ClaseColumna::Simple},
    {"REAL", ClaseColumna::Simple},
    {"FLOAT4", ClaseColumna::Simple},
    {"IEEESINGLE", ClaseColumna::Simple},
    {"DOUBLE", ClaseColumna::Doble},
    {"FLOAT", ClaseColumna::Doble},
    {"NUMBER", ClaseColumna::Doble},
    {"FLOAT8", ClaseColumna::Doble},
    {"IEEEDOUBLE", ClaseColumna::Doble},
    {"CURRENCY", ClaseColumna::Moneda},
    {"MONEY", ClaseColumna::Moneda},
    {"DECIMAL", ClaseColumna::Decimal},
    {"NUMERIC", ClaseColumna::Decimal},
    {"DEC", ClaseColumna::Decimal},
    {"DATETIME", ClaseColumna::Fecha},
    {"DATE", ClaseColumna::Fecha},
    {"TIME", ClaseColumna::Fecha},
    {"TIMESTAMP", ClaseColumna::Fecha},
    {"TEXT", ClaseColumna::Texto},
    {"CHAR", ClaseColumna::Texto},
    {"VARCHAR", ClaseColumna::Texto},
    {"CHARACTER", ClaseColumna::Texto},
    {"STRING", ClaseColumna::Texto},
    {"ALPHANUMERIC", ClaseColumna::Texto},
    {"NCHAR", ClaseColumna::Texto},
    {"NVARCHAR", ClaseColumna::Texto},
    {"MEMO", ClaseColumna::Memo},
    {"LONGTEXT", ClaseColumna::Memo},
    {"LONGCHAR", ClaseColumna::Memo},
    {"NOTE", ClaseColumna::Memo},
    {"NTEXT", ClaseColumna::Memo},
    {"BINARY", ClaseColumna::Binario},
    {"VARBINARY", ClaseColumna::Binario},
    {"IMAGE", ClaseColumna::Ole},
    {"LONGBINARY", ClaseColumna::Ole},
    {"OLEOBJECT", ClaseColumna::Ole},
    {"GENERAL", ClaseColumna::Ole},
    {"GUID", ClaseColumna::Guid},
    {"UNIQUEIDENTIFIER", ClaseColumna::Guid},
};

}  // namespace

void Parser::LeerTipo(DefColumna& c) {
  const NombreTipo* hallado = nullptr;
  for (const auto& t : kTipos)
    if (Es(t.texto)) hallado = &t;
  if (hallado == nullptr) Falla("un tipo de columna");
  ++i_;
  c.clase = hallado->clase;
  if (c.clase == ClaseColumna::Doble) Come("PRECISION");
  if (c.clase == ClaseColumna::Texto) Come("VARYING");
  if (!Come("(")) return;
  const int primero = LeerEnteroChico("un número entero");
  const bool dos = Come(",");
  const int segundo = dos ? LeerEnteroChico("un número entero") : 0;
  Espera(")");
  if (c.clase == ClaseColumna::Contador) {
    c.semilla = primero;
    if (dos) c.incremento = segundo;
    if (c.incremento != 1) NoSeAdmite("Un contador con un incremento que no es 1");
  } else if (c.clase == ClaseColumna::Texto || c.clase == ClaseColumna::Binario) {
    c.largo = primero;
  } else if (c.clase == ClaseColumna::Decimal) {
    c.precision = primero;
    c.escala = segundo;
  }
}

Referencia Parser::LeerReferencia() {
  Referencia r;
  r.tabla = LeerNombre("el nombre de una tabla");
  if (Es("(")) r.columnas = LeerListaDeNombres();
  while (Come("ON")) {
    const bool borra = Es("DELETE");
    if (!Come("DELETE")) Espera("UPDATE");
    if (Come("CASCADE"))
      (borra ? r.borra_en_cascada : r.actualiza_en_cascada) = true;
    else if (Come("NO"))
      Espera("ACTION");
    else
      Falla("CASCADE");
  }
  return r;
}

void Parser::LeerRestriccionesDeColumna(DefColumna& c) {
  for (;;) {
    if (Come("CONSTRAINT")) c.nombre_restriccion = LeerNombre("el nombre de la restricción");
    if (Come("NOT")) {
      Espera("NULL");
      c.no_nulo = true;
    } else if (Come("NULL")) {
    } else if (Come("PRIMARY")) {
      Espera("KEY");
      c.clave = true;
    } else if (Come("UNIQUE")) {
      c.unica = true;
    } else if (Come("DEFAULT")) {
      c.defecto = LeerExpr(8);  // "8": no AND or NOT, so that NOT NULL may follow
    } else if (Come("REFERENCES")) {
      c.referencia = std::make_unique<Referencia>(LeerReferencia());
    } else if (Come("WITH")) {
      if (!Come("COMPRESSION")) Espera("COMP");
    } else {
      return;
    }
  }
}

DefColumna Parser::LeerColumna() {
  DefColumna c;
  c.nombre = LeerNombre("el nombre de una columna");
  LeerTipo(c);
  LeerRestriccionesDeColumna(c);
  return c;
}

Restriccion Parser::LeerRestriccion() {
  Restriccion r;
  if (Come("CONSTRAINT")) r.nombre = LeerNombre("el nombre de la restricción");
  if (Come("PRIMARY")) {
    Espera("KEY");
    r.que = Restriccion::Que::Clave;
  } else if (Come("UNIQUE")) {
    r.que = Restriccion::Que::Unica;
  } else if (Come("NOT")) {
    Espera("NULL");
    r.que = Restriccion::Que::NoNulo;
  } else if (Come("FOREIGN")) {
    Espera("KEY");
    if (Come("NO")) Espera("INDEX");
    r.que = Restriccion::Que::Foranea;
  } else {
    Falla("PRIMARY KEY, UNIQUE, NOT NULL o FOREIGN KEY");
  }
  r.columnas = LeerListaDeNombres();
  if (r.que == Restriccion::Que::Foranea) {
    Espera("REFERENCES");
    r.referencia = LeerReferencia();
  }
  return r;
}

CrearTabla Parser::LeerCrearTabla() {
  CrearTabla s;
  s.nombre = LeerNombre("el nombre de la tabla");
  Espera("(");
  do {
    const bool restriccion = Es("CONSTRAINT") || (Es("PRIMARY") && Es("KEY", 1)) ||
                             (Es("UNIQUE") && Es("(", 1)) || (Es("FOREIGN") && Es("KEY", 1));
    if (restriccion)
      s.restricciones.push_back(LeerRestriccion());
    else
      s.columnas.push_back(LeerColumna());
    Count(s.columnas.size() + s.restricciones.size(), kMaxColumns, "Una tabla");
  } while (Come(","));
  Espera(")");
  return s;
}

CrearIndice Parser::LeerCrearIndice(bool unico) {
  CrearIndice s;
  s.unico = unico;
  s.nombre = LeerNombre("el nombre del índice");
  Espera("ON");
  s.tabla = LeerNombre("el nombre de la tabla");
  Espera("(");
  do {
    CrearIndice::Columna c;
    c.nombre = LeerNombre("el nombre de una columna");
    if (Come("DESC"))
      c.descendente = true;
    else
      Come("ASC");
    s.columnas.push_back(std::move(c));
    Count(s.columnas.size(), kMaxColumns, "Un índice");
  } while (Come(","));
  Espera(")");
  if (!Come("WITH")) return s;
  do {
    if (Come("PRIMARY")) {
      s.primario = true;
    } else if (Come("DISALLOW")) {
      Espera("NULL");
      s.sin_nulos = true;
    } else if (Come("IGNORE")) {
      Espera("NULL");
      s.ignora_nulos = true;
    } else {
      Falla("PRIMARY, DISALLOW NULL o IGNORE NULL");
    }
  } while (Come(",") || Es("PRIMARY") || Es("DISALLOW") || Es("IGNORE"));
  return s;
}

CrearVista Parser::LeerCrearVista() {
  CrearVista s;
  s.nombre = LeerNombre("el nombre de la consulta");
  if (Es("(")) s.columnas = LeerListaDeNombres();
  Espera("AS");
  if (!EmpiezaConsulta()) Falla("SELECT");
  const std::size_t inicio = i_;
  s.consulta = LeerConsulta();
  s.texto = TextoDesde(inicio);
  return s;
}

Sentencia Parser::LeerCrear() {
  if (Come("TABLE")) return LeerCrearTabla();
  if (Come("INDEX")) return LeerCrearIndice(false);
  if (Come("UNIQUE")) {
    Espera("INDEX");
    return LeerCrearIndice(true);
  }
  if (Come("VIEW")) return LeerCrearVista();
  if (Actual().clase == ClaseToken::Nombre) NoSeAdmite("CREATE " + std::string(Actual().texto));
  Falla("TABLE, INDEX, UNIQUE INDEX o VIEW");
}

// A database keeps its definitions with their literals.
Sentencia Parser::LeerDefinicion() {
  modo_ = Literales::EnTexto;
  if (Come("CREATE")) return LeerCrear();
  if (Come("DROP")) return LeerQuitar();
  Espera("ALTER");
  return LeerAlterar();
}

Quitar Parser::LeerQuitar() {
  Quitar s;
  if (Come("INDEX")) {
    s.que = Quitar::Que::Indice;
    s.nombre = LeerNombre("el nombre del índice");
    Espera("ON");
    s.tabla = LeerNombre("el nombre de la tabla");
    return s;
  }
  s.que = Es("VIEW") ? Quitar::Que::Vista : Quitar::Que::Tabla;
  if (!Come("VIEW") && !Come("TABLE")) {
    if (Actual().clase == ClaseToken::Nombre) NoSeAdmite("DROP " + std::string(Actual().texto));
    Falla("TABLE, INDEX o VIEW");
  }
  s.nombre = LeerNombre("un nombre");
  return s;
}

AlterarTabla Parser::LeerAlterar() {
  AlterarTabla s;
  if (!Come("TABLE")) {
    if (Actual().clase == ClaseToken::Nombre) NoSeAdmite("ALTER " + std::string(Actual().texto));
    Falla("TABLE");
  }
  s.tabla = LeerNombre("el nombre de la tabla");
  if (Come("ADD")) {
    if (Es("CONSTRAINT") || (Es("PRIMARY") && Es("KEY", 1)) || (Es("FOREIGN") && Es("KEY", 1))) {
      s.que = AlterarTabla::Que::AgregarRestriccion;
      s.restriccion = LeerRestriccion();
      return s;
    }
    Come("COLUMN");
    s.columna = LeerColumna();
    return s;
  }
  if (Es("ALTER")) NoSeAdmite("Cambiar el tipo de una columna (ALTER COLUMN)");
  Espera("DROP");
  s.que = Come("CONSTRAINT") ? AlterarTabla::Que::QuitarRestriccion : AlterarTabla::Que::Quitar;
  if (s.que == AlterarTabla::Que::Quitar) Come("COLUMN");
  s.nombre = LeerNombre("un nombre");
  return s;
}

}  // namespace jetsql
