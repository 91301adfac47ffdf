// A demo folder of its own, with blanks and an "ñ" in its name, and the command line run over it.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/file.h"
#include "cli/lineas_de_comandos.h"
#include "support/temp_folder.h"

namespace prueba {

struct Salida {
  int codigo = -1;
  std::string out, err;
};

class Mesa {
 public:
  Mesa() : carpeta_(base::UnirRuta(temporal_.Carpeta(), "una demo ñandú")) { base::CrearCarpeta(carpeta_); }

  const std::string& Carpeta() const { return carpeta_; }
  std::string Ruta(const std::string& nombre) const { return base::UnirRuta(carpeta_, nombre); }
  void Escribir(const std::string& nombre, const std::string& bytes) const {
    if (!base::EscribirArchivo(Ruta(nombre), bytes)) throw std::runtime_error("cannot write " + nombre);
  }

  // The settings folder is the demo's own, so that a run without --ajustes finds its file.
  Salida Correr(const std::vector<std::string>& argumentos, const std::string& entrada = {}) const {
    std::istringstream in(entrada);
    std::ostringstream out, err;
    Salida s;
    s.codigo = cli::Ejecutar(argumentos, "importdemarcas-cli", carpeta_, {in, out, err});
    s.out = out.str();
    s.err = err.str();
    return s;
  }

  Salida Demo() const { return Correr({"demo", carpeta_, "--mes", "2026-10", "--hoy", "2026-10-20"}); }

  // Every row of every table, as the file holds them now.
  std::string Filas() const {
    sqlite3* cruda = nullptr;
    const int rc = sqlite3_open_v2(Ruta("Personal.sqlite").c_str(), &cruda, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> base(cruda, sqlite3_close);
    if (rc != SQLITE_OK) throw std::runtime_error("cannot open the base");
    std::string texto;
    for (const auto& [tabla] :
         Leer(base.get(), "select name from sqlite_master where type='table' order by 1")) {
      texto += tabla + "\n";
      for (const auto& [fila] : Leer(base.get(), Renglon(base.get(), tabla))) texto += "  " + fila + "\n";
    }
    return texto;
  }

 private:
  struct Uno {
    std::string texto;
  };
  static std::vector<Uno> Leer(sqlite3* base, const std::string& sql) {
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v2(base, sql.c_str(), -1, &s, nullptr) != SQLITE_OK)
      throw std::runtime_error(sql + ": " + sqlite3_errmsg(base));
    std::vector<Uno> filas;
    while (sqlite3_step(s) == SQLITE_ROW) {
      const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
      filas.push_back({t == nullptr ? "" : t});
    }
    sqlite3_finalize(s);
    return filas;
  }
  // The statement that gives each row of a table as one text.
  static std::string Renglon(sqlite3* base, const std::string& tabla) {
    std::string suma = "''";
    for (const auto& [columna] : Leer(base, "select name from pragma_table_info('" + tabla + "')"))
      suma += " || quote(\"" + columna + "\") || '|'";
    return "select " + suma + " from \"" + tabla + "\" order by rowid";
  }

  support::CarpetaTemporal temporal_;
  std::string carpeta_;
};

}  // namespace prueba
