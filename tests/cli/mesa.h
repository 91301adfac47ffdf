// A demo folder of its own, with blanks and an "ñ" in its name, and the command line run over it.
#pragma once

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/conector.h"
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
  // `motor`: of the demo base.
  explicit Mesa(std::string motor = "mdb")
      : motor_(std::move(motor)), carpeta_(base::JoinPath(temporal_.Folder(), "una demo ñandú")) {
    base::CreateFolder(carpeta_);
  }

  // Of the demo bases that are made from here on.
  void PonerMotor(std::string motor) { motor_ = std::move(motor); }
  const std::string& Carpeta() const { return carpeta_; }
  std::string Ruta(const std::string& nombre) const { return base::JoinPath(carpeta_, nombre); }
  void Escribir(const std::string& nombre, const std::string& bytes) const {
    if (!base::WriteWholeFile(Ruta(nombre), bytes)) throw std::runtime_error("cannot write " + nombre);
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

  Salida Demo() const {
    return Correr({"demo", carpeta_, "--mes", "2026-10", "--hoy", "2026-10-20", "--motor", motor_});
  }
  std::string Base() const { return Ruta("Personal." + motor_); }

  // The demo base, for as long as the answer is needed.
  std::unique_ptr<db::Connection> Abrir() const {
    const ports::FixedClock reloj(base::MakeDate(2026, 10, 20));
    app::Conexion c = app::AbrirReferencia(Base(), reloj);
    if (c.conexion == nullptr) throw std::runtime_error(c.motivo);
    return std::move(c.conexion);
  }

  // Every row of every table of the demo, as the file holds them now.
  std::string Filas() const {
    const auto conexion = Abrir();
    std::string texto;
    for (const char* tabla : kTablas) {
      const db::Recordset filas = conexion->Query("SELECT * FROM [" + std::string(tabla) + "]");
      texto += std::string(tabla) + "\n";
      for (std::size_t f = 0; f < filas.Count(); ++f) {
        texto += "  ";
        for (std::size_t i = 0; i < filas.Fields().size(); ++i) {
          const base::Value& v = filas.At(i, f);
          texto += v.IsNull()                     ? "NULL|"
                   : v.type() == base::Type::Text ? "'" + v.CsvText() + "'|"
                                                  : v.CsvText() + "|";
        }
        texto += "\n";
      }
    }
    return texto;
  }

 private:
  static constexpr const char* kTablas[] = {"Empresa",
                                            "Usuarios",
                                            "valores",
                                            "Monedas",
                                            "CentroCosto",
                                            "Cargos",
                                            "TiposRemuneracion",
                                            "Personas",
                                            "Contrato",
                                            "TiposDatExt",
                                            "DatExtDatos",
                                            "Conceptos",
                                            "TiposLiquidacion",
                                            "Calendario_Liq",
                                            "Encabezados",
                                            "Datos_Liquidacion",
                                            "PagosEnSueldo",
                                            "PagosEnSueldoDeta",
                                            "Tablas",
                                            "DatosUsuTablas"};

  std::string motor_;
  support::TempFolder temporal_;
  std::string carpeta_;
};

}  // namespace prueba
