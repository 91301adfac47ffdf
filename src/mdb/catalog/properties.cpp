#include <algorithm>
#include <bit>
#include <unordered_map>

#include "base/encoding.h"
#include "base/text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/pages/text.h"
#include "mdb/rows/table.h"

namespace mdb {
namespace {

constexpr std::string_view kJet4{"MR2\0", 4}, kJet3{"KKD\0", 4};
constexpr std::uint16_t kNombres = 0x80, kDeLaTabla = 0, kDeColumna = 1;

class Lector {
 public:
  Lector(const Cabecera& cabecera, Vista bytes) : cabecera_(cabecera), v_(bytes) {}

  Propiedades Leer() {
    Propiedades salida;
    if (v_.empty()) return salida;
    const std::string_view marca(reinterpret_cast<const char*>(Trozo(v_, 0, 4).data()), 4);
    if (marca != kJet4 && marca != kJet3) throw Danio("Las propiedades de una tabla son de otra clase");
    for (std::size_t p = 4; p + 6 <= v_.size();) {
      const std::size_t largo = U32(v_, p);
      if (largo < 6) throw Danio("Las propiedades de una tabla están dañadas");
      const Vista bloque = Trozo(v_, p, largo);
      const std::uint16_t clase = U16(bloque, 4);
      if (clase == kNombres) LeerNombres(bloque);
      if (clase == kDeLaTabla || clase == kDeColumna) LeerBloque(bloque, clase == kDeColumna, salida);
      p += largo;
    }
    return salida;
  }

 private:
  // A text behind its length of two bytes.
  std::string Nombre(Vista v, std::size_t& pos) const {
    const std::size_t largo = U16(v, pos);
    std::string nombre;
    internal::LeerNombre(cabecera_, Trozo(v, pos + 2, largo), nombre);
    pos += 2 + largo;
    return nombre;
  }

  void LeerNombres(Vista bloque) {
    nombres_.clear();
    for (std::size_t p = 6; p < bloque.size();) nombres_.push_back(Nombre(bloque, p));
  }

  void LeerBloque(Vista bloque, bool de_columna, Propiedades& salida) const {
    const std::size_t parte_de_nombre = U32(bloque, 6);
    Trozo(bloque, 6, parte_de_nombre);
    std::string dueno;
    if (std::size_t p = 10; de_columna && parte_de_nombre >= 6) dueno = Nombre(bloque, p);
    auto& lista = salida[dueno];
    for (std::size_t p = 6 + std::max<std::size_t>(parte_de_nombre, 4); p < bloque.size();) {
      const std::size_t largo = U16(bloque, p);
      if (largo < 8) throw Danio("Las propiedades de una tabla están dañadas");
      lista.push_back(LeerUna(Trozo(bloque, p, largo)));
      p += largo;
    }
  }

  Propiedad LeerUna(Vista registro) const {
    Propiedad propiedad;
    propiedad.ddl = U8(registro, 2) != 0;
    propiedad.tipo = U8(registro, 3);
    const std::size_t nombre = U16(registro, 4);
    if (nombre >= nombres_.size()) throw Danio("Una propiedad no tiene nombre");
    propiedad.nombre = nombres_[nombre];
    propiedad.valor = Valor(propiedad.tipo, Trozo(registro, 8, U16(registro, 6)));
    return propiedad;
  }

  // Here a Memo's and an OLE's bytes stand themselves, not a pointer to them.
  Dato Valor(std::uint8_t tipo, Vista bytes) const {
    switch (static_cast<TipoColumna>(tipo)) {
      case TipoColumna::Booleano:
        return !bytes.empty() && bytes[0] != 0;
      case TipoColumna::Texto:
      case TipoColumna::Memo:
        return DecodificarTexto(cabecera_, bytes);
      case TipoColumna::Byte:
        return std::int64_t{U8(bytes, 0)};
      case TipoColumna::Entero:
        return std::int64_t{I16(bytes, 0)};
      case TipoColumna::Largo:
        return std::int64_t{I32(bytes, 0)};
      case TipoColumna::Moneda:
        return base::Moneda{I64(bytes, 0)};
      case TipoColumna::Simple:
        return F32(bytes, 0);
      case TipoColumna::Doble:
        return F64(bytes, 0);
      case TipoColumna::Fecha:
        return base::Fecha{F64(bytes, 0)};
      default:
        return Bytes(bytes.begin(), bytes.end());
    }
  }

  const Cabecera& cabecera_;
  Vista v_;
  std::vector<std::string> nombres_;
};

void AgregarNombre(Bytes& b, const std::string& nombre) {
  const auto unidades = base::AUtf16(nombre);
  Agregar16(b, static_cast<std::uint16_t>(2 * unidades.size()));
  for (const char16_t u : unidades) Agregar16(b, static_cast<std::uint16_t>(u));
}

struct Escritor {
  std::uint8_t tipo;
  Bytes& b;
  void operator()(base::Nulo) const {}
  void operator()(bool v) const { Agregar8(b, v ? 1 : 0); }
  void operator()(std::int64_t v) const {
    const auto n = static_cast<std::uint64_t>(v);
    switch (static_cast<TipoColumna>(tipo)) {
      case TipoColumna::Byte:
        return Agregar8(b, static_cast<std::uint8_t>(n));
      case TipoColumna::Entero:
        return Agregar16(b, static_cast<std::uint16_t>(n));
      default:
        return Agregar32(b, static_cast<std::uint32_t>(n));
    }
  }
  void operator()(float v) const { Agregar32(b, std::bit_cast<std::uint32_t>(v)); }
  void operator()(double v) const { Agregar64(b, std::bit_cast<std::uint64_t>(v)); }
  void operator()(base::Moneda v) const { Agregar64(b, static_cast<std::uint64_t>(v.diezmilesimas)); }
  void operator()(base::Fecha v) const { (*this)(v.serie); }
  void operator()(const std::string& v) const {
    for (const char16_t u : base::AUtf16(v)) Agregar16(b, static_cast<std::uint16_t>(u));
  }
  void operator()(const Bytes& v) const { AgregarBytes(b, v); }
  void operator()(const Guid& v) const { AgregarBytes(b, Vista(v.bytes)); }
  void operator()(const Decimal& v) const { (*this)(v.Texto()); }
};

void AgregarBloque(Bytes& salida, std::uint16_t clase, const Bytes& contenido) {
  Agregar32(salida, static_cast<std::uint32_t>(contenido.size() + 6));
  Agregar16(salida, clase);
  AgregarBytes(salida, contenido);
}

Bytes Registro(const Propiedad& propiedad, std::uint16_t nombre) {
  Bytes dato;
  std::visit(Escritor{propiedad.tipo, dato}, propiedad.valor);
  if (dato.size() > 0xFFFF - 8) throw base::Error("La propiedad \"" + propiedad.nombre + "\" es muy larga");
  Bytes b;
  Agregar16(b, static_cast<std::uint16_t>(dato.size() + 8));
  Agregar8(b, propiedad.ddl ? 1 : 0);
  Agregar8(b, propiedad.tipo);
  Agregar16(b, nombre);
  Agregar16(b, static_cast<std::uint16_t>(dato.size()));
  AgregarBytes(b, dato);
  return b;
}

}  // namespace

Propiedades LeerPropiedades(const Cabecera& cabecera, Vista bytes) { return Lector(cabecera, bytes).Leer(); }

Bytes SerializarPropiedades(const Propiedades& propiedades) {
  std::unordered_map<std::string, std::uint16_t> numeros;
  Bytes nombres;
  for (const auto& [dueno, lista] : propiedades)
    for (const auto& p : lista)
      if (numeros.emplace(p.nombre, static_cast<std::uint16_t>(numeros.size())).second)
        AgregarNombre(nombres, p.nombre);
  Bytes salida(kJet4.begin(), kJet4.end());
  AgregarBloque(salida, kNombres, nombres);
  for (const auto& [dueno, lista] : propiedades) {
    Bytes nombre, contenido;
    AgregarNombre(nombre, dueno);
    Agregar32(contenido, static_cast<std::uint32_t>(nombre.size() + 4));
    AgregarBytes(contenido, nombre);
    for (const auto& p : lista) AgregarBytes(contenido, Registro(p, numeros.at(p.nombre)));
    AgregarBloque(salida, dueno.empty() ? kDeLaTabla : kDeColumna, contenido);
  }
  return salida;
}

const Dato* Buscar(const Propiedades& propiedades, std::string_view dueno, std::string_view nombre) {
  for (const auto& [quien, lista] : propiedades) {
    if (!base::IgualSinCaso(quien, dueno)) continue;
    for (const auto& p : lista)
      if (base::IgualSinCaso(p.nombre, nombre)) return &p.valor;
  }
  return nullptr;
}

}  // namespace mdb
