#include "refdata/base_de_prueba.h"

#include <stdexcept>
#include <utility>

#include "base/text.h"
#ifdef IDM_BASE_MDB
#include "engine_mdb/mdb_connection.h"
#else
#include "engine_sqlite/sqlite_connection.h"
#endif
#include "settings/config_file.h"

namespace support {
namespace {

using Tipo = base::ErrorKind;

constexpr const char* kTablas[] = {
    "CREATE TABLE valores (idEmpresa LONG, codigo TEXT(50), Valor TEXT(50))",
    "CREATE TABLE Con_Contrato (idEmpresa LONG, id_Contrato LONG, Numero_Alternativo LONG, Tarjeta TEXT(50), "
    "NumeroSinGuion TEXT(50), id_Persona LONG, Nombre_1 TEXT(50), Apellido_1 TEXT(50), CantDiasXMes DOUBLE, "
    "Horas DOUBLE, id_TipoRem LONG, idCC LONG, FECINI DATETIME, FECFIN DATETIME, Vigente YESNO)",
    "CREATE TABLE DatExtDatos (idEmpresa LONG, idTDE LONG, idLoc LONG, idDE TEXT(100))",
    "CREATE TABLE Conceptos (idEmpresa LONG, id_Concepto LONG, Codigo TEXT(20), Nombre TEXT(100), "
    "TipoDato LONG, TipoOperacion TEXT(5), TipoCuota LONG, TipoImpuesto YESNO)",
    "CREATE TABLE Tablas (idEmpresa LONG, id LONG, Nombre TEXT(50), NombreCampo TEXT(50), Tipo LONG, "
    "TipoDato LONG, DatoOp TEXT(50))",
    "CREATE TABLE TiposLiquidacion (idEmpresa LONG, id_TipoLiq LONG, Nombre TEXT(50), Salarial YESNO, "
    "ParaEmp YESNO, Activa YESNO, Cond TEXT(255))",
    "CREATE TABLE Calendario_Liq (idEmpresa LONG, id_TipoLiq LONG, Fecha DATETIME, CondCalLiq TEXT(255))",
    "CREATE TABLE CentroCosto (idCC LONG, NombreCC TEXT(50))",
};

std::vector<std::string> Lineas(const std::string& texto) {
  return texto.empty() ? std::vector<std::string>() : base::Split(texto, "\n");
}

std::string Filas(const db::Recordset& rs) {
  std::vector<std::string> filas;
  for (std::size_t fila = 0; fila < rs.Count(); ++fila) {
    std::vector<std::string> celdas;
    for (std::size_t campo = 0; campo < rs.Fields().size(); ++campo)
      celdas.push_back(rs.At(campo, fila).IsNull() ? "NULL" : Celda(rs.At(campo, fila).CsvText()));
    filas.push_back(base::Join(celdas, "|"));
  }
  return base::Join(filas, "\n");
}

std::string Sentencias(ConexionTestigo& conexion) {
  std::string salida = base::Join(conexion.sentencias, "\n");
  conexion.sentencias.clear();
  return salida;
}

std::unique_ptr<db::Connection> NuevaBase(const BaseDePrueba& base) {
#ifdef IDM_BASE_MDB
  engine_mdb::Options opciones;
  opciones.clock = &base.reloj;
  return engine_mdb::Create(base.carpeta.Path("base.mdb"), opciones);
#else
  return engine_sqlite::Open(":memory:", {.clock = &base.reloj});
#endif
}

bool EsSi(const std::string& texto) { return texto == "SI"; }

std::string AplicarOpciones(settings::Settings& opciones, const Block& b) {
  for (const auto& opcion : b.options) {
    const auto igual = opcion.find('=');
    if (igual == std::string::npos ||
        !settings::AplicarValor(opciones, opcion.substr(0, igual), opcion.substr(igual + 1)))
      throw std::runtime_error("unknown option " + opcion);
  }
  return {};
}

}  // namespace

void ConexionTestigo::Anotar(std::string_view sql) {
  sentencias.emplace_back(sql);
  for (const auto& texto : fallan)
    if (base::Contains(sql, texto)) throw db::Error("Falla pedida", 0, {}, falla);
}

bool PromptsAnotados::Show(const ports::Notice& aviso) {
  cajas.push_back((aviso.icon == ports::Icon::Exclamation ? "! " : "") + aviso.text);
  return false;
}

bool PromptsAnotados::Confirm(const std::string& texto) {
  throw std::runtime_error("unexpected question: " + texto);
}

BaseDePrueba::BaseDePrueba() {
  auto testigo = std::make_unique<ConexionTestigo>(NuevaBase(*this));
  conexion = testigo.get();
  sesion.conexion = std::move(testigo);
  sesion.idEmpresa = 1;
  sesion.reloj = &reloj;
  for (const char* tabla : kTablas) conexion->Execute(tabla);
  conexion->sentencias.clear();
}

std::vector<std::string> BaseDePrueba::Avisos() {
  std::vector<std::string> salida = prompts.cajas;
  for (const auto& error : errores) salida.push_back(base::Join({"noted", error.where}, " "));
  prompts.cajas.clear();
  errores.clear();
  return salida;
}

std::string Celda(const std::string& texto) { return texto.empty() ? "(empty)" : texto; }

base::Date FechaDeIso(const std::string& texto) {
  const auto piezas = base::Split(texto, "-");
  if (piezas.size() != 3) throw std::runtime_error("not a date: " + texto);
  return base::MakeDate(std::stoi(piezas[0]), std::stoi(piezas[1]), std::stoi(piezas[2]));
}

Verbs VerbosDeBase(const std::shared_ptr<BaseDePrueba>& base) {
  return {
      {"exec",
       [base](const Block& b) {
         for (const auto& sql : Lineas(b.entry)) base->conexion->Execute(sql);
         base->conexion->sentencias.clear();
         return std::string();
       }},
      {"query",
       [base](const Block& b) {
         const auto rs = base->conexion->Query(b.entry);
         base->conexion->sentencias.clear();
         return Filas(rs);
       }},
      {"sesion",
       [base](const Block& b) {
         base->sesion.idEmpresa = std::stoi(b.Option("empresa", "1"));
         base->sesion.LiqAgrup = EsSi(b.Option("agrupa"));
         base->sesion.TipoConstruccion = EsSi(b.Option("construccion"));
         return std::string();
       }},
      {"opciones", [base](const Block& b) { return AplicarOpciones(base->opciones, b); }},
      {"reloj",
       [base](const Block& b) {
         base->reloj.ahora = FechaDeIso(b.options.at(0));
         return std::string();
       }},
      {"falla",
       [base](const Block& b) {
         base->conexion->fallan = Lineas(b.entry);
         base->conexion->falla = b.Has("almacen") ? Tipo::Storage : Tipo::Statement;
         return std::string();
       }},
      {"transaccion",
       [base](const Block& b) {
         if (b.Has("begin")) base->conexion->BeginTrans();
         if (b.Has("commit")) base->conexion->CommitTrans();
         if (b.Has("rollback")) base->conexion->RollbackTrans();
         base->conexion->sentencias.clear();
         return std::string();
       }},
      {"cerrar",
       [base](const Block&) {
         base->conexion->Close();
         return std::string();
       }},
      {"sentencias", [base](const Block&) { return Sentencias(*base->conexion); }},
  };
}

}  // namespace support
