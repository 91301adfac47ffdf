// The mirrors of a file: what the translator asks, what is read on first use, what has changed.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine_mdb/mdb_connection.h"
#include "engine_mdb/mirror_internal.h"

namespace engine_mdb {

// A file that linked tables name, opened once for reading.
class Vinculos {
 public:
  explicit Vinculos(std::string ruta) : ruta_(std::move(ruta)) {}
  // Throws base::Error, naming the link, when it leads to another kind of source or its file cannot be read.
  std::shared_ptr<mdb::Base> Abrir(const mdb::Objeto& objeto);
  void Olvidar() { abiertos_.clear(); }

 private:
  std::string ruta_;  // of our file
  std::map<std::string, std::shared_ptr<mdb::Base>> abiertos_;
};

// Why nothing can be written into a base, as a sentence; empty when it can.
std::string MotivoDeNoEscribir(const mdb::Base& base);

// A statement that would write into a base of which that is known since it was opened: nothing was lost, and
// the base may be tried again.
class BaseNotWritable : public db::Error {
 public:
  using db::Error::Error;
};

class FuenteMdb final : public engine_sqlite::FuenteDeTablas {
 public:
  FuenteMdb(mdb::Base& base, std::string_view ruta, Contadores& contadores)
      : base_(base), vinculos_(std::string(ruta)), contadores_(contadores) {}
  // The handle on which the mirrors live; registers what they call. `al_escribir` is called before a
  // statement that writes, when all is ready for it.
  void Unir(sqlite3* espejo, std::function<void()> al_escribir);
  // Drops every prepared statement, before the handle closes.
  void Soltar();

  const jetsql::TablaInfo* Tabla(std::string_view nombre) override;
  const std::string* Consulta(std::string_view nombre) override;
  void AntesDeCorrer(const jetsql::Traduccion& sentencia) override;

  // Definitions may run in the mirror, to be taken back; otherwise one that came so far is refused, because
  // the file would know nothing of it.
  void Ensayar(bool si) { ensaya_ = si; }
  // A statement begins: what another one asked for and did not use is forgotten.
  void Empezar() { pedidas_.clear(); }
  // The table's mirror, read if it was not; null when there is no such table.
  TablaEspejo* Mirar(std::string_view nombre);

  // Transactions, inside one of SQLite's.
  void GuardarEstado();
  void VolverAlEstado();
  bool HayCambios() const;
  // Throws a fault of the storage when a change could not be noted.
  void CheckNoted() const;

  // The mark inside a transaction. ReturnToMark is called when SQLite and the pages are back there. What had
  // been read, indexed or made ready since was undone with the rest: `renew` is run where the mark does not
  // stand, and makes it anew, so that a line that is refused again and again does not read a table each time.
  void SetMark();
  void ForgetMark() { tables_at_mark_.reset(); }
  // Before the first definition after the mark, which drops mirrors that an undo needs again.
  void KeepForMark();
  void ReturnToMark();
  bool AnythingToRenew() const { return !to_renew_.empty(); }
  void Renew();
  // Brings the file's pages to what the mirrors hold; the rows' new identities wait for Asentar, `definitivo`
  // when the transaction has ended.
  void EscribirCambios();
  void Asentar(bool definitivo);

  // After the file's definitions changed: the mirrors of these tables, or of all, and every text of a query
  // are made anew when they are next named. Their changes must have been written.
  void Descartar(const std::vector<std::string>& tablas);
  void DescartarTodo();

  // The functions that the mirrors call.
  std::int64_t SiguienteAutomatico(int tabla);
  void VerAutomatico(int tabla, std::int64_t valor);
  // Throws base::Error for a text that no index of the file can hold.
  void ProbarClave(int tabla, int columna, const std::string& texto) const;

 private:
  using Tablas = std::unordered_map<std::string, std::shared_ptr<TablaEspejo>>;

  void RegistrarFunciones();
  TablaEspejo* Buscar(std::string_view nombre) const;
  std::shared_ptr<TablaEspejo> Describir(const mdb::Objeto& objeto);
  void JudgeWriting(const mdb::Objeto& objeto, TablaEspejo& tabla) const;
  void Cargar(TablaEspejo& tabla);
  void Indexar(TablaEspejo& tabla);
  void AtenderPendientes();
  void Preparar(TablaEspejo& tabla, bool todo);
  void VigilarAutomatico(const TablaEspejo& tabla);
  void VigilarFormas(const TablaEspejo& tabla);
  void VigilarComoHija(const TablaEspejo& hija, const mdb::RelacionDeTablas& relacion);
  void VigilarComoPadre(const TablaEspejo& padre, const mdb::RelacionDeTablas& relacion);
  void Ejecutar(const std::string& sql);
  TablaEspejo& Local(const std::string& nombre);
  void EscribirTabla(TablaEspejo& tabla);
  void Quitar(Tablas::iterator it);
  void AfterUndo();

  static void AlCambiar(void* fuente, int que, const char* base, const char* tabla, sqlite3_int64 fila);
  static int Autorizar(void* fuente, int accion, const char* a, const char* b, const char* c, const char* d);

  struct Identidad {
    TablaEspejo* tabla;
    sqlite3_int64 fila;
    mdb::IdFila id;
  };

  mdb::Base& base_;
  Vinculos vinculos_;
  Contadores& contadores_;
  sqlite3* espejo_ = nullptr;
  std::function<void()> al_escribir_;

  // What the mirrors were at the mark, when a definition ran after it.
  struct AtMark {
    Tablas tables;
    std::vector<TablaEspejo*> by_number;
    std::vector<std::vector<sqlite3_int64>> touched;  // by number
  };

  Tablas tablas_;  // by name in lower case
  std::vector<TablaEspejo*> por_numero_;
  std::unordered_map<std::string, std::string> consultas_;
  std::vector<TablaEspejo*> pedidas_;      // by the statement that is being translated
  std::vector<TablaEspejo*> sin_indices_;  // large ones, read so far without
  int sentencias_ = 0;                     // run since the last of those was read
  std::vector<Identidad> por_asentar_;
  std::optional<AtMark> tables_at_mark_;
  // Names of tables that were read, and written, since the mark that was gone back to.
  struct ToRenew {
    std::string table;
    bool indexes = false, ready_to_insert = false, ready_for_all = false;
  };
  std::vector<ToRenew> to_renew_;
  bool unnoted_ = false;  // a change that there was no memory to note
  bool ensaya_ = false;
  bool propio_ = false;            // what runs is ours: not noted as a change
  TablaEspejo* ultima_ = nullptr;  // of the last change noted
};

}  // namespace engine_mdb
