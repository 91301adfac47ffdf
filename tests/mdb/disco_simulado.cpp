#include "mdb/disco_simulado.h"

#include <algorithm>

namespace mdb_test {
namespace {

constexpr std::size_t kSector = 512;

void EscribirEn(mdb::Bytes& bytes, std::size_t pos, mdb::Vista nuevos) {
  if (bytes.size() < pos + nuevos.size()) bytes.resize(pos + nuevos.size());
  std::copy(nuevos.begin(), nuevos.end(), bytes.begin() + static_cast<std::ptrdiff_t>(pos));
}

}  // namespace

struct DiscoSimulado::Nodo {
  struct Pendiente {
    bool largo = false;  // a change of length to `pos`; else a write
    std::size_t pos = 0;
    mdb::Bytes bytes;
  };
  struct Bloqueo {
    const void* dueno;
    std::uint64_t desde, cantidad;
    bool exclusivo;
  };
  mdb::Bytes bytes, durables;
  std::vector<Pendiente> pendientes;
  std::vector<Bloqueo> bloqueos;
  std::int64_t fecha = 0;

  mdb::Bytes TrasElCorte(Perdida perdida, std::mt19937& azar) const {
    if (perdida == Perdida::Nada) return bytes;
    mdb::Bytes quedan = durables;
    if (perdida == Perdida::Todo) return quedan;
    for (const auto& p : pendientes) {
      if (azar() % 2 == 0) continue;
      if (p.largo)
        quedan.resize(p.pos);
      else
        EscribirEn(quedan, p.pos, p.bytes);
    }
    return quedan;
  }
};

class ArchivoSimulado final : public base::ArchivoAbierto {
 public:
  using Nodo = DiscoSimulado::Nodo;
  ArchivoSimulado(DiscoSimulado& disco, std::string ruta, std::shared_ptr<Nodo> nodo, bool escribe)
      : disco_(disco), ruta_(std::move(ruta)), nodo_(std::move(nodo)), escribe_(escribe) {}
  ~ArchivoSimulado() override {
    std::erase_if(nodo_->bloqueos, [this](const auto& b) { return b.dueno == this; });
  }
  ArchivoSimulado(const ArchivoSimulado&) = delete;
  ArchivoSimulado& operator=(const ArchivoSimulado&) = delete;

  std::size_t Leer(std::uint64_t pos, std::span<std::uint8_t> destino) override {
    disco_.Look("No se puede leer", ruta_);
    const mdb::Bytes& b = nodo_->bytes;
    if (pos >= b.size()) return 0;
    const std::size_t n = std::min<std::size_t>(destino.size(), b.size() - pos);
    std::copy_n(b.begin() + static_cast<std::ptrdiff_t>(pos), n, destino.begin());
    return n;
  }
  void Escribir(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    ExigirEscritura();
    const bool a_medias = disco_.Contar("escribir " + ruta_ + " " + std::to_string(pos));
    std::size_t hasta = bytes.size();
    bool lleno = false;
    if (a_medias) hasta = hasta / 2 / kSector * kSector;
    if (disco_.lugar_ && pos + hasta > nodo_->bytes.size()) {
      const std::uint64_t libres = *disco_.lugar_ - std::min(*disco_.lugar_, disco_.Ocupado());
      const std::uint64_t mayor = nodo_->bytes.size() + libres;
      lleno = mayor < pos + hasta;
      if (lleno) hasta = mayor > pos ? static_cast<std::size_t>(mayor - pos) : 0;
    }
    // Sector by sector of the file, as a disk may lose them.
    for (std::size_t i = 0; i < hasta;) {
      const std::size_t n = std::min(kSector - static_cast<std::size_t>(pos + i) % kSector, hasta - i);
      const auto trozo = bytes.subspan(i, n);
      EscribirEn(nodo_->bytes, static_cast<std::size_t>(pos) + i, trozo);
      nodo_->pendientes.push_back({false, static_cast<std::size_t>(pos) + i, {trozo.begin(), trozo.end()}});
      i += n;
    }
    nodo_->fecha = disco_.Ahora();
    if (a_medias) disco_.Romper(ruta_);
    if (lleno) throw base::ErrorDeDisco("No se puede escribir", ruta_, base::FallaDisco::DiscoLleno, {});
  }
  std::uint64_t Largo() override {
    disco_.Look("No se puede consultar", ruta_);
    return nodo_->bytes.size();
  }
  void CambiarLargo(std::uint64_t largo) override {
    ExigirEscritura();
    if (disco_.Contar("largo " + ruta_)) disco_.Romper(ruta_);
    nodo_->bytes.resize(largo);
    nodo_->pendientes.push_back({true, static_cast<std::size_t>(largo), {}});
    nodo_->fecha = disco_.Ahora();
  }
  void Sincronizar() override {
    if (disco_.Contar("sincronizar " + ruta_)) disco_.Romper(ruta_);
    nodo_->durables = nodo_->bytes;
    nodo_->pendientes.clear();
  }
  std::int64_t Fecha() override {
    disco_.Look("No se puede consultar", ruta_);
    return nodo_->fecha;
  }
  void PonerFecha(std::int64_t fecha) override {
    ExigirEscritura();
    if (disco_.Contar("fechar " + ruta_)) disco_.Romper(ruta_);
    nodo_->fecha = fecha;
  }
  bool SigueEnSuLugar() override {
    const auto it = disco_.nombres_.find(ruta_);
    return it != disco_.nombres_.end() && it->second == nodo_;
  }
  bool Bloquear(std::uint64_t desde, std::uint64_t cantidad, bool exclusivo) override {
    disco_.Look("No se puede bloquear", ruta_);
    ExigirBloqueos();
    if (exclusivo && !escribe_)
      throw base::ErrorDeDisco("No se puede bloquear", ruta_, base::FallaDisco::Otra, "se abrió para leer");
    for (const auto& b : nodo_->bloqueos)
      if (b.dueno != this && (b.exclusivo || exclusivo) && Toca(b, desde, cantidad)) return false;
    nodo_->bloqueos.push_back({this, desde, cantidad, exclusivo});
    return true;
  }
  void Desbloquear(std::uint64_t desde, std::uint64_t cantidad) override {
    std::erase_if(nodo_->bloqueos, [&](const auto& b) {
      return b.dueno == this && b.desde == desde && b.cantidad == cantidad;
    });
  }
  std::optional<std::uint64_t> PrimerBloqueado(std::uint64_t desde, std::uint64_t cantidad) override {
    ExigirBloqueos();
    std::optional<std::uint64_t> primero;
    for (const auto& b : nodo_->bloqueos)
      if (b.dueno != this && Toca(b, desde, cantidad))
        primero = std::min(primero.value_or(UINT64_MAX), std::max(desde, b.desde));
    return primero;
  }

 private:
  static bool Toca(const Nodo::Bloqueo& b, std::uint64_t desde, std::uint64_t cantidad) {
    return b.desde < desde + cantidad && desde < b.desde + b.cantidad;
  }
  void ExigirBloqueos() const {
    if (disco_.sin_bloqueos_)
      throw base::ErrorDeDisco("No se puede bloquear", ruta_, base::FallaDisco::NoAdmitido, {});
  }
  void ExigirEscritura() const {
    if (!escribe_)
      throw base::ErrorDeDisco("No se puede escribir", ruta_, base::FallaDisco::SinPermiso,
                               "se abrió para leer");
  }
  DiscoSimulado& disco_;
  std::string ruta_;
  std::shared_ptr<Nodo> nodo_;
  bool escribe_;
};

DiscoSimulado::DiscoSimulado() = default;
DiscoSimulado::~DiscoSimulado() = default;

bool DiscoSimulado::Contar(const std::string& que) {
  hechas_.push_back(que);
  ++llamadas_;
  return llamadas_ == cortar_en_ || llamadas_ == fallar_en_ ||
         (fallar_siempre_ && fallar_en_ != 0 && llamadas_ > fallar_en_);
}

void DiscoSimulado::Romper(const std::string& ruta) const {
  if (llamadas_ == cortar_en_) throw Corte{};
  throw base::ErrorDeDisco("No se puede escribir", ruta, base::FallaDisco::Otra, "error de prueba");
}

void DiscoSimulado::Look(const std::string& what, const std::string& path) {
  ++looks_;
  if (fail_look_at_ == 0 || (fail_looks_always_ ? looks_ < fail_look_at_ : looks_ != fail_look_at_)) return;
  ++failed_looks_;
  throw base::ErrorDeDisco(what, path, base::FallaDisco::Otra, "error de prueba");
}

void DiscoSimulado::Poner(const std::string& ruta, const mdb::Bytes& bytes) {
  auto nodo = std::make_shared<Nodo>();
  nodo->bytes = nodo->durables = bytes;
  nodo->fecha = ++reloj_;
  nombres_[ruta] = nombres_durables_[ruta] = nodo;
}

mdb::Bytes DiscoSimulado::Contenido(const std::string& ruta) const { return nombres_.at(ruta)->bytes; }

std::uint64_t DiscoSimulado::Ocupado() const {
  std::uint64_t suma = 0;
  for (const auto& [ruta, nodo] : nombres_) suma += nodo->bytes.size();
  return suma;
}

std::shared_ptr<DiscoSimulado> DiscoSimulado::Despues(Perdida perdida, std::mt19937& azar) const {
  auto otro = std::make_shared<DiscoSimulado>();
  otro->reloj_ = reloj_ + 1000;
  std::set<std::string> rutas;
  for (const auto& [ruta, nodo] : nombres_) rutas.insert(ruta);
  for (const auto& [ruta, nodo] : nombres_durables_) rutas.insert(ruta);
  for (const auto& ruta : rutas) {
    // Of a name changed since the last sync of the folder either state may be found.
    const bool actual = perdida == Perdida::Nada || (perdida == Perdida::AlAzar && azar() % 2 == 0);
    const Nombres& cuales = actual ? nombres_ : nombres_durables_;
    const auto it = cuales.find(ruta);
    if (it == cuales.end()) continue;
    otro->Poner(ruta, it->second->TrasElCorte(perdida, azar));
    otro->nombres_[ruta]->fecha = it->second->fecha;
  }
  return otro;
}

std::unique_ptr<base::ArchivoAbierto> DiscoSimulado::Abrir(std::string_view ruta, base::ModoArchivo modo) {
  const std::string nombre(ruta);
  const bool nuevo = modo == base::ModoArchivo::Nuevo, escribe = modo != base::ModoArchivo::Lectura;
  const auto it = nombres_.find(nombre);
  if (it == nombres_.end() && !nuevo)
    throw base::ErrorDeDisco("No se puede abrir", ruta, base::FallaDisco::NoExiste, {});
  if (escribe && solo_lectura_)
    throw base::ErrorDeDisco("No se puede abrir", ruta, base::FallaDisco::SoloLectura, {});
  if (!nuevo) return std::make_unique<ArchivoSimulado>(*this, nombre, it->second, escribe);
  if (it != nombres_.end())
    throw base::ErrorDeDisco("No se puede crear", ruta, base::FallaDisco::YaExiste, {});
  if (Contar("crear " + nombre)) Romper(nombre);
  const auto nodo = nombres_[nombre] = std::make_shared<Nodo>();
  nodo->fecha = Ahora();
  return std::make_unique<ArchivoSimulado>(*this, nombre, nodo, true);
}

bool DiscoSimulado::Existe(std::string_view ruta) { return nombres_.count(std::string(ruta)) != 0; }

void DiscoSimulado::Borrar(std::string_view ruta) {
  const std::string nombre(ruta);
  if (nombres_.count(nombre) == 0)
    throw base::ErrorDeDisco("No se puede borrar", ruta, base::FallaDisco::NoExiste, {});
  if (solo_lectura_) throw base::ErrorDeDisco("No se puede borrar", ruta, base::FallaDisco::SoloLectura, {});
  if (Contar("borrar " + nombre)) Romper(nombre);
  nombres_.erase(nombre);
}

void DiscoSimulado::Mover(std::string_view de, std::string_view a) {
  if (Existe(a)) throw base::ErrorDeDisco("No se puede crear", a, base::FallaDisco::YaExiste, {});
  if (Contar("mover " + std::string(de))) Romper(std::string(de));
  nombres_[std::string(a)] = nombres_.at(std::string(de));
  nombres_.erase(std::string(de));
}

void DiscoSimulado::SincronizarCarpetaDe(std::string_view ruta) {
  if (Contar("sincronizar carpeta de " + std::string(ruta))) Romper(std::string(ruta));
  nombres_durables_ = nombres_;
}

}  // namespace mdb_test
