// The failures of a driver in the operator's words.
#include <array>

#include "base/text.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kFuente = "ODBC";
constexpr std::string_view kFuentePerdida = "ODBC 08";

struct Frase {
  std::string_view estado;  // how the state begins
  std::string_view texto;
  int numero = 0;  // of the dialect's runtime error
};

// The first that fits. The states of ODBC 2 (S0002) are still what some drivers give.
constexpr std::array kFrases = {
    Frase{"07002", "La sentencia nombra un campo que no existe, o le faltan valores"},
    Frase{"08001", "No se pudo conectar con la base"},
    Frase{"08004", "La base rechazó la conexión"},
    Frase{"08", "Se perdió la conexión con la base"},
    Frase{"22001", "Un texto es demasiado largo para su campo"},
    Frase{"22003", "Un número no cabe en su campo", 6},
    Frase{"22007", "Un valor no es una fecha que la base entienda"},
    Frase{"22008", "Un valor no es una fecha que la base entienda"},
    Frase{"22012", "División por cero", 11},
    Frase{"22018", "El tipo de un valor no es el de su campo", 13},
    Frase{"22005", "El tipo de un valor no es el de su campo", 13},
    Frase{"07006", "El tipo de un valor no es el de su campo", 13},
    Frase{"22", "Un valor no es válido para la sentencia"},
    Frase{"23",
          "El cambio no cumple una condición de la tabla (un valor repetido, obligatorio o relacionado)"},
    Frase{"25006", "La base es de solo lectura: no se puede modificar"},
    Frase{"28", "La base no acepta el usuario o la contraseña"},
    Frase{"40", "Otro programa está usando los mismos datos y la transacción no pudo seguir"},
    Frase{"42S01", "Ya existe una tabla o consulta con ese nombre"},
    Frase{"S0001", "Ya existe una tabla o consulta con ese nombre"},
    Frase{"42S02", "No existe la tabla o consulta que la sentencia nombra"},
    Frase{"S0002", "No existe la tabla o consulta que la sentencia nombra"},
    Frase{"42S11", "Ya existe un índice con ese nombre"},
    Frase{"S0011", "Ya existe un índice con ese nombre"},
    Frase{"42S12", "No existe el índice que la sentencia nombra"},
    Frase{"S0012", "No existe el índice que la sentencia nombra"},
    Frase{"42S21", "La tabla ya tiene un campo con ese nombre"},
    Frase{"S0021", "La tabla ya tiene un campo con ese nombre"},
    Frase{"42S22", "No existe un campo que la sentencia nombra"},
    Frase{"S0022", "No existe un campo que la sentencia nombra"},
    Frase{"42", "La base no entiende la sentencia, o no la permite"},
    Frase{"37", "La base no entiende la sentencia, o no la permite"},
    Frase{"HYT", "La base no respondió a tiempo"},
    Frase{"S1T00", "La base no respondió a tiempo"},
    Frase{"HYC00", "El driver ODBC no admite lo que se le pide"},
    Frase{"S1C00", "El driver ODBC no admite lo que se le pide"},
    Frase{"HY001", "No hay memoria suficiente"},
    Frase{"S1001", "No hay memoria suficiente"},
    Frase{"IM001", "El driver ODBC no admite lo que se le pide"},
    Frase{"IM002", "No existe ese origen de datos ODBC, o no dice qué driver usar"},
    Frase{"IM003", "No se pudo cargar el driver ODBC"},
    Frase{"01000", "No se pudo cargar el driver ODBC"},  // unixODBC, when the library does not open
};

}  // namespace

db::Error ErrorDe(const std::vector<Diagnostico>& diagnosticos, std::string_view si_nada) {
  std::string texto(si_nada);
  int numero = 0;
  if (!diagnosticos.empty()) {
    for (const Frase& f : kFrases) {
      if (!base::EmpiezaCon(diagnosticos[0].estado, f.estado)) continue;
      texto = f.texto;
      numero = f.numero;
      break;
    }
  }
  bool primero = true;
  for (const Diagnostico& d : diagnosticos) {
    if (d.texto.empty()) continue;
    texto += primero ? ": " : " / ";
    texto += d.texto;
    primero = false;
  }
  if (primero) texto += '.';
  std::string fuente(kFuente);
  if (!diagnosticos.empty()) fuente += " " + diagnosticos[0].estado;
  return db::Error(texto, numero, fuente);
}

bool EsDePerdida(const db::Error& error) { return base::EmpiezaCon(error.Fuente(), kFuentePerdida); }

}  // namespace engine_odbc
