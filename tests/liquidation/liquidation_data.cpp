// Imports small files into a small payroll base and prints what came of it. With --mdb the base is an Access
// file, which is closed and opened again after each import.
//
//   world [agrup] [constr]      a fresh base of the demo's tables with the rows of kMundo
//   exec                        statements, one a line
//   import mes=2026-10 [liq=0] [cc=0] [rollback] [bar]
//                               lines "@CLAVE=VALOR" are settings, "=relation" relations, "!N beginning"
//                               makes the N-th statement that starts so fail ("!!N" as a fault of the
//                               storage), the others are the file; prints line|key|quantity|result, totals,
//                               the bulk updates that failed, then boxes and passed-over errors, and with
//                               "bar" the steps of the progress bar ("!" without refresh); "stop=N": the
//                               operator stops it after N lines
//   changes                     of the last "import watch": the quantities before and after, then each row
//   that it
//                               inserted (+), changed (~) or deleted (-), with the columns that differ
//   query [rowsort]             a statement; rows joined with |
//   warn                        as import: what is told before, one a line; nothing is written
//   plausible                   the same of what may not be meant although nothing is wrong with it
//   summary                     as import: what stands under the question; nothing is written
//   confirm mes=… liq=… cc=…    the question before the import, with settings as in import
#include <algorithm>
#include <memory>
#include <sstream>

#include "base/number.h"
#include "base/text.h"
#include "corridas/testigo_de_cambios.h"
#include "demo/demo_base.h"
#include "engine_mdb/mdb_connection.h"
#include "engine_sqlite/sqlite_connection.h"
#include "liquidation/avisos.h"
#include "liquidation/cajas.h"
#include "liquidation/conexion_con_fallas.h"
#include "liquidation/importar.h"
#include "liquidation/resumen.h"
#include "liquidation/verosimilitud.h"
#include "refdata/liquidation_types.h"
#include "settings/config_file.h"
#include "support/data_test.h"
#include "support/temp_folder.h"

namespace {

// Contracts: 10 (monthly, card 210), 11 (hourly, no card), 12 (hourly, card 212, October finished), 13 (of
// the other company). Keys of one contract all differ. Types: 1 and 2 salary, 3 not salary, 4 per employee, 5
// inactive.
constexpr const char* kMundo[] = {
    "Insert into Empresa (idEmpresa,Nombre,TipoConstruccion,LiqAgrup) Values(1,'Uno',False,False)",
    "Insert into Monedas (id_Moneda,Nombre,principal) Values(1,'Pesos',True)",
    "Insert into Monedas (id_Moneda,Nombre,principal) Values(2,'Unidades',False)",
    "Insert into valores (idEmpresa,codigo,Valor) Values(1,'PARFECHA','')",
    "Insert into Personas (idEmpresa,id_Persona,Nombre_1,Apellido_1,Numero,NumeroSinGuion) "
    "Values(1,110,'Ana','Alba','1.234.510','1234510')",
    "Insert into Personas (idEmpresa,id_Persona,Nombre_1,Apellido_1,Numero,NumeroSinGuion) "
    "Values(1,111,'Beto','Borda','1234511','1234511')",
    "Insert into Personas (idEmpresa,id_Persona,Nombre_1,Apellido_1,Numero,NumeroSinGuion) "
    "Values(1,112,'Carla','Cruz','1234512','1234512')",
    "Insert into Contrato "
    "(idEmpresa,id_Contrato,id_Persona,Numero_Alternativo,Tarjeta,id_TipoRem,idCC,CantDiasXMes,"
    "Horas,Sueldo,ValorHora,FECINI,Vigente) Values(1,10,110,'A10',210,1,7,30,8,30000,125,#01/01/2020#,True)",
    "Insert into Contrato "
    "(idEmpresa,id_Contrato,id_Persona,Numero_Alternativo,Tarjeta,id_TipoRem,idCC,CantDiasXMes,"
    "Horas,Sueldo,ValorHora,FECINI,Vigente) Values(1,11,111,'A11',Null,2,8,25,6,0,100,#01/01/2020#,True)",
    "Insert into Contrato "
    "(idEmpresa,id_Contrato,id_Persona,Numero_Alternativo,Tarjeta,id_TipoRem,idCC,CantDiasXMes,"
    "Horas,Sueldo,ValorHora,FECINI,Vigente) Values(1,12,112,'A12',212,2,9,25,8,0,90,#01/01/2020#,True)",
    "Insert into DatExtDatos (idEmpresa,idTDE,idLoc,idDE) Values(1,1,10,'EXT10')",
    "Insert into Conceptos "
    "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto,"
    "VerDetalle,id_Moneda,ValorDe,Factor) Values(1,1,'SUE','Sueldo',3,'S',0,False,True,1,3,1)",
    "Insert into Conceptos "
    "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto,"
    "VerDetalle,id_Moneda,ValorDe,Factor) Values(1,7,'HC','Horas Comunes',3,'S',0,False,True,1,1,1)",
    "Insert into Conceptos "
    "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto,"
    "VerDetalle,id_Moneda,ValorDe,Factor) Values(1,20,'PRI','Prima',2,'S',0,False,True,2,0,1)",
    "Insert into Conceptos "
    "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto,"
    "VerDetalle,id_Moneda,ValorDe,Factor) Values(1,21,'DES','Destajo',5,'S',0,False,True,1,0,1)",
    "Insert into Conceptos "
    "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto,"
    "VerDetalle,id_Moneda,ValorDe,Factor) Values(1,22,'CUO','Cuota',2,'R',1,False,True,1,0,1)",
    "Insert into Tablas (id,idEmpresa,Nombre,NombreCampo,Tipo,TipoDato) Values(0,1,'CERO','Cero',3,1)",
    "Insert into Tablas (id,idEmpresa,Nombre,NombreCampo,Tipo,TipoDato) Values(5,1,'VIA','Viaticos',3,1)",
    "Insert into TiposLiquidacion (idEmpresa,id_TipoLiq,Nombre,Salarial,ParaEmp,Activa) "
    "Values(1,1,'Mensual',True,False,True)",
    "Insert into TiposLiquidacion (idEmpresa,id_TipoLiq,Nombre,Salarial,ParaEmp,Activa,Cond) "
    "Values(1,2,'Quincenal',True,False,True,'C.id_TipoRem=3')",
    "Insert into TiposLiquidacion (idEmpresa,id_TipoLiq,Nombre,Salarial,ParaEmp,Activa) "
    "Values(1,3,'Aguinaldo',False,False,True)",
    "Insert into TiposLiquidacion (idEmpresa,id_TipoLiq,Nombre,Salarial,ParaEmp,Activa) "
    "Values(1,4,'Egreso',False,True,True)",
    "Insert into Encabezados "
    "(idEmpresa,id_Encabezado,MesDeLiq,id_Contrato,id_TipoLiq,Terminado,Impreso,id_Usuario) "
    "Values(1,40,#10/01/2026#,12,1,True,False,0)",
};

using prueba::Cajas;

class Bar final : public ports::Progress {
 public:
  void ActuBarra(float paso, bool sin_refresco) override {
    lines += paso == -1.0F ? 1 : 0;
    steps += " " + base::SqlSingle(paso) + (sin_refresco ? "!" : "");
  }
  void DoEvents() override { steps += " ev"; }
  bool IsCancelled() const override { return stop >= 0 && lines >= stop; }
  std::string steps;
  int lines = 0, stop = -1;
};

class Mesa {
 public:
  explicit Mesa(bool mdb) : mdb_(mdb) { sesion_.reloj = &reloj_; }

  std::string Mundo(const support::Block& b) {
    Conectar(NuevaBase());
    sesion_.idEmpresa = 1;
    sesion_.id_Usuario = 3;
    sesion_.LiqAgrup = b.Has("agrup");
    sesion_.TipoConstruccion = b.Has("constr");
    demo::CrearEsquema(*sesion_.conexion);
    for (const char* sql : kMundo) sesion_.conexion->Execute(sql);
    return {};
  }

  std::string Exec(const support::Block& b) {
    std::istringstream lineas(b.entry);
    for (std::string linea; std::getline(lineas, linea);) sesion_.conexion->Execute(linea);
    return {};
  }

  std::string Query(const support::Block& b) {
    const db::Recordset rs = sesion_.conexion->Execute(b.entry);
    std::vector<std::string> filas;
    for (std::size_t f = 0; f < rs.Count(); ++f) {
      std::string fila;
      for (std::size_t i = 0; i < rs.Fields().size(); ++i) {
        const base::Value& v = rs.At(i, f);
        const std::string texto = v.IsNull() ? "NULL" : v.CsvText();
        fila += (i > 0 ? "|" : "") + (texto.empty() ? "(empty)" : texto);
      }
      filas.push_back(fila);
    }
    if (b.Has("rowsort")) std::sort(filas.begin(), filas.end());
    return base::Join(filas, "\n");
  }

  std::string Importar(const support::Block& b) {
    Preparar(b);
    bar_ = {};
    importfile::Carga carga = Cargar();
    for (const Falla& f : fallas_) conexion_->Fallar(f.comienzo, f.vez, f.clase);
    bar_ = {};
    bar_.stop = std::stoi(b.Option("stop", "-1"));
    liquidation::EntradaImportacion entrada = Entrada(b);
    corridas::TestigoDeCambios testigo(sesion_, mes_);
    if (b.Has("watch")) entrada.testigo = &testigo;
    const liquidation::Importacion r = liquidation::Importar(entrada, carga.filas);
    cantidades_ = testigo.Cantidades();
    cambios_ = testigo.Cambios();
    Reabrir();
    std::sort(carga.filas.begin(), carga.filas.end(),
              [](const auto& x, const auto& y) { return x.linea < y.linea; });
    std::string salida;
    for (const auto& fila : carga.filas)
      salida += std::to_string(fila.linea) + "|" + fila.campo[importfile::kClave] + "|" +
                fila.campo[importfile::kCantidad] + "|" + fila.resultado + "\n";
    for (const auto& t : r.totales)
      salida += "TOTAL " + std::to_string(t.concepto) + " " + t.nombre + " " + std::to_string(t.lineas) +
                " " + base::SqlNumber(t.cantidad) + "\n";
    if (r.fallo_de_almacenamiento) salida += "FAULT\n";
    if (r.cancelada) salida += "CANCELLED\n";
    for (const auto& texto : r.actualizaciones_fallidas) salida += "UPDATE " + texto + "\n";
    for (const auto& texto : cajas_.textos)
      salida += "BOX " + base::Replace(texto, base::kCrLf, " / ") + "\n";
    for (const auto& error : r.errores) salida += "ERR " + error.where + ": " + error.description + "\n";
    if (b.Has("bar")) salida += "BAR" + bar_.steps + "\n";
    if (!salida.empty()) salida.pop_back();
    return salida;
  }

  std::string Changes(const support::Block&) const {
    std::string salida;
    for (const auto& c : cantidades_) {
      const auto lado = [](const std::optional<double>& v) {
        return v ? base::SqlNumber(*v) : std::string("none");
      };
      salida += "QUANTITY " + std::to_string(c.id_Contrato) + " " + c.nombre + " " + c.apellido + "|" +
                std::to_string(c.concepto) + " " + c.nombre_concepto + "|cc " + std::to_string(c.idAgrupa) +
                "|header " + std::to_string(c.id_Encabezado) + " type " + std::to_string(c.id_TipoLiq) + "|" +
                lado(c.antes) + " -> " + lado(c.despues) + "\n";
    }
    for (const auto& t : cambios_.tablas)
      for (const auto& f : t.filas) salida += TextoDeCambio(t, f) + "\n";
    if (!salida.empty()) salida.pop_back();
    return salida;
  }

  std::string Avisos(const support::Block& b) {
    Preparar(b);
    const importfile::Carga carga = Cargar();
    liquidation::EntradaImportacion e = Entrada(b);
    return base::Join(liquidation::AvisosDeImportacion(e, carga.filas), "\n");
  }

  std::string Plausible(const support::Block& b) {
    Preparar(b);
    const importfile::Carga carga = Cargar();
    for (const Falla& f : fallas_) conexion_->Fallar(f.comienzo, f.vez, f.clase);
    try {
      return base::Join(liquidation::Verosimilitud(Entrada(b), carga.filas, carga.aparte), "\n");
    } catch (const base::Error& e) {
      return "FAULT " + e.Description();
    }
  }

  std::string Resumen(const support::Block& b) {
    Preparar(b);
    const importfile::Carga carga = Cargar();
    liquidation::ResumenDeImportacion r = liquidation::Resumir(Entrada(b), carga.filas);
    r.archivo = "horas.txt";
    // A blank line would end the block.
    return base::Replace(base::Replace(liquidation::TextoDeResumen(r), base::kCrLf, "\n"), "\n\n", "\n\\n\n");
  }

  std::string Confirmar(const support::Block& b) {
    Preparar(b);
    liquidation::DatosConfirmacion d;
    d.mes = mes_;
    d.cmbLiquidaciones = tipos_.cmbLiquidaciones.Elegido() ? tipos_.cmbLiquidaciones.Elegido()->texto : "";
    d.cmbAgrupa = &tipos_.cmbAgrupa;
    d.LiqAgrup = sesion_.LiqAgrup;
    d.TipoConstruccion = sesion_.TipoConstruccion;
    d.CCDefEnArch = opciones_.CCDefEnArch;
    return base::Replace(liquidation::TextoConfirmacion(d), base::kCrLf, "\n");
  }

 private:
  static std::string TextoDeCambio(const corridas::CambiosDeTabla& t, const corridas::CambioDeFila& f) {
    std::string texto = !f.antes ? "+ " : !f.despues ? "- " : "~ ";
    texto += t.tabla;
    for (const std::size_t i : t.clave) texto += " " + f.Cualquiera()[i].CsvText();
    const auto valor = [](const base::Value& v) { return v.IsNull() ? std::string("NULL") : v.CsvText(); };
    for (std::size_t i = 0; i < t.columnas.size(); ++i) {
      if (f.antes && f.despues && (*f.antes)[i] != (*f.despues)[i])
        texto += " " + t.columnas[i] + ":" + valor((*f.antes)[i]) + ">" + valor((*f.despues)[i]);
      else if (!f.antes && t.columnas[i] == "Cantidad")
        texto += " " + t.columnas[i] + ":" + valor((*f.despues)[i]);
    }
    return texto;
  }

  std::unique_ptr<db::Connection> NuevaBase() {
    if (mdb_) {
      engine_mdb::Options opciones;
      opciones.clock = &reloj_;
      return engine_mdb::Create(carpeta_.Path(std::to_string(++bases_) + ".mdb"), opciones);
    }
    engine_sqlite::Options opciones;
    opciones.clock = &reloj_;
    return engine_sqlite::Open(":memory:", opciones);
  }
  void Conectar(std::unique_ptr<db::Connection> motor) {
    auto propia = std::make_unique<prueba::ConexionConFallas>(std::move(motor));
    conexion_ = propia.get();
    sesion_.conexion = std::move(propia);
  }
  // What is asked afterwards stands in the file.
  void Reabrir() {
    if (!mdb_) return;
    sesion_.conexion.reset();
    engine_mdb::Options opciones;
    opciones.clock = &reloj_;
    Conectar(engine_mdb::Open(carpeta_.Path(std::to_string(bases_) + ".mdb"), opciones));
  }

  // Settings, relations and the file of a block, and the reference data of its month.
  void Preparar(const support::Block& b) {
    opciones_ = settings::LeerSettings("");
    opciones_.Separador = ";";
    archivo_.clear();
    fallas_.clear();
    std::string relaciones;
    std::istringstream lineas(b.entry);
    for (std::string linea; std::getline(lineas, linea);) {
      if (!linea.empty() && linea[0] == '@') {
        const std::size_t igual = linea.find('=');
        settings::AplicarValor(opciones_, linea.substr(1, igual - 1), linea.substr(igual + 1));
      } else if (!linea.empty() && linea[0] == '!') {
        const std::size_t cifra = linea.find_first_not_of('!'), blanco = linea.find(' ');
        fallas_.push_back({linea.substr(blanco + 1), std::stoi(linea.substr(cifra, blanco - cifra)),
                           cifra == 2 ? base::ErrorKind::Storage : base::ErrorKind::Statement});
      } else if (!linea.empty() && linea[0] == '=') {
        relaciones += linea.substr(1) + "\r\n";
      } else {
        archivo_ += (archivo_.empty() ? "" : "\r\n") + linea;
      }
    }
    const std::string mes = b.Option("mes", "2026-10");
    mes_ = base::MakeDate(std::stoi(mes.substr(0, 4)), std::stoi(mes.substr(5, 2)), 1);
    cajas_.textos.clear();
    evaluador_ = {};
    evaluador_.sesion = &sesion_;
    evaluador_.prompts = &cajas_;
    evaluador_.reloj = &reloj_;
    refdata::CargarVecDePersonas(sesion_, mes_, personas_, cajas_);
    refdata::ActuLSTdeConceptos(sesion_, opciones_, conceptos_);
    refdata::CargarTiposLiquidacion(sesion_, opciones_, tipos_);
    tablas_.CargarTablasUsuario(sesion_, -1);
    relaciones_.Reemplazar(relaciones);
    Elegir(tipos_.cmbLiquidaciones, b.Option("liq"));
    Elegir(tipos_.cmbAgrupa, b.Option("cc"));
  }

  liquidation::EntradaImportacion Entrada(const support::Block& b) {
    liquidation::EntradaImportacion e{sesion_, opciones_, personas_, relaciones_, conceptos_, evaluador_,
                                      tablas_, cajas_,    bar_,      mes_,        {},         {}};
    e.condiciones = {liquidation::TypeFilterDe(tipos_.cmbLiquidaciones), tipos_.TypeCondition,
                     tipos_.CalendarCondition};
    e.texto_liquidacion = tipos_.cmbLiquidaciones.Elegido() ? tipos_.cmbLiquidaciones.Elegido()->texto : "";
    e.centro_costo = std::stoll(b.Option("cc", "0"));
    e.deshacer = b.Has("rollback");
    return e;
  }

  static void Elegir(formula::ListControl& combo, const std::string& valor) {
    if (valor.empty()) return;
    combo.ListIndex = -1;
    for (std::size_t i = 0; i < combo.items.size(); ++i)
      if (std::to_string(combo.items[i].dato) == valor) combo.ListIndex = static_cast<int>(i);
  }

  importfile::Carga Cargar() {
    importfile::EntradaCarga e;
    e.txtRuta = carpeta_.Write("horas.txt", archivo_);
    e.opciones = &opciones_;
    e.filtro = importfile::FiltroPor::Texto;  // with no text: every line stays
    e.personas = &personas_;
    e.conceptos = &conceptos_;
    e.relaciones = &relaciones_;
    e.evaluador = &evaluador_;
    e.prompts = &cajas_;
    e.progreso = &bar_;
    return importfile::CargarDatos(e);
  }

  struct Falla {
    std::string comienzo;
    int vez;
    base::ErrorKind clase;
  };

  const bool mdb_;
  const support::TempFolder carpeta_;
  int bases_ = 0;
  ports::FixedClock reloj_{base::MakeDate(2026, 10, 20)};
  sesion::DbSession sesion_;
  prueba::ConexionConFallas* conexion_ = nullptr;  // the session's
  std::vector<Falla> fallas_;
  settings::Settings opciones_;
  refdata::PersonsIndex personas_;
  refdata::ConceptsCatalogue conceptos_;
  refdata::LiquidationTypes tipos_;
  relations::CodeRelations relaciones_;
  formula::TablasUsuario tablas_;
  formula::Evaluador evaluador_;
  Bar bar_;
  Cajas cajas_;
  base::Date mes_;
  std::string archivo_;
  std::vector<corridas::CambioDeCantidad> cantidades_;  // of the last import
  corridas::Cambios cambios_;
};

}  // namespace

int main(int argc, char** argv) {
  const bool mdb = argc > 1 && std::string_view(argv[1]) == "--mdb";
  const int primero = mdb ? 1 : 0;
  return support::RunFiles(argc - primero, argv + primero, [mdb] {
    auto mesa = std::make_shared<Mesa>(mdb);
    return support::Verbs{
        {"world", [mesa](const support::Block& b) { return mesa->Mundo(b); }},
        {"exec", [mesa](const support::Block& b) { return mesa->Exec(b); }},
        {"query", [mesa](const support::Block& b) { return mesa->Query(b); }},
        {"import", [mesa](const support::Block& b) { return mesa->Importar(b); }},
        {"changes", [mesa](const support::Block& b) { return mesa->Changes(b); }},
        {"summary", [mesa](const support::Block& b) { return mesa->Resumen(b); }},
        {"warn", [mesa](const support::Block& b) { return mesa->Avisos(b); }},
        {"plausible", [mesa](const support::Block& b) { return mesa->Plausible(b); }},
        {"confirm", [mesa](const support::Block& b) { return mesa->Confirmar(b); }},
    };
  });
}
