#include "mdb/pages/page_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "base/file.h"
#include "mdb/corpus.h"
#include "mdb/muestra.h"
#include "mdb/samples.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "support/temp_folder.h"

namespace {

using mdb::PaginasDeArchivo;
using mdb_test::BaseDeMuestra;
using mdb_test::ComoTexto;
using support::CarpetaTemporal;

TEST(PaginasDeArchivo, ReadsEveryPageOfTheFile) {
  for (const auto& ruta : mdb_test::EveryFile()) {
    SCOPED_TRACE(ruta);
    const auto en_memoria = mdb_test::Cargar(ruta);
    const auto en_disco = PaginasDeArchivo::Abrir(ruta, true);
    ASSERT_EQ(en_disco->Cantidad(), en_memoria->Cantidad());
    for (mdb::NumPagina n = 0; n < en_disco->Cantidad(); ++n)
      ASSERT_EQ(*en_disco->Leer(n), *en_memoria->Leer(n)) << "page " << n;
  }
}

TEST(PaginasDeArchivo, ACommitIsInTheFileAndTheJournalGone) {
  const CarpetaTemporal c;
  const mdb::Bytes antes = BaseDeMuestra(5);
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(antes));
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    ASSERT_EQ(p->MotivoSoloLectura(), "");
    p->Modificar(3)[10] = 99;
    p->Modificar(p->Agregar())[4095] = 5;
    p->Confirmar();
    EXPECT_EQ((*p->Leer(3))[10], 99);
    EXPECT_EQ(p->Cantidad(), 6U);
  }
  mdb::Bytes esperado = antes;
  esperado[3 * 4096 + 10] = 99;
  esperado.resize(6 * 4096);
  esperado.back() = 5;
  EXPECT_EQ(c.Leer("a.mdb"), ComoTexto(esperado));
  EXPECT_FALSE(std::filesystem::exists(ruta + "-diario"));
}

TEST(PaginasDeArchivo, NothingWrittenLeavesBytesAndDate) {
  const CarpetaTemporal c;
  const mdb::Bytes antes = BaseDeMuestra(5);
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(antes));
  const auto ayer = std::filesystem::last_write_time(ruta) - std::chrono::hours(24);
  std::filesystem::last_write_time(ruta, ayer);
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    p->Confirmar();
    p->Modificar(2)[0] ^= 1;
    p->Agregar();
    p->Deshacer();
    p->Confirmar();
    // Changed and changed back.
    p->Modificar(2)[0] ^= 1;
    p->Modificar(2)[0] ^= 1;
    p->Confirmar();
  }
  EXPECT_EQ(std::filesystem::last_write_time(ruta), ayer);
  EXPECT_EQ(c.Leer("a.mdb"), ComoTexto(antes));
}

std::string ErrorAlAbrir(const std::string& ruta, const mdb::OpcionesBase& opciones = {}) {
  try {
    mdb::Base::Abrir(ruta, opciones);
  } catch (const base::Error& e) {
    return e.Descripcion();
  }
  return {};
}

std::string OfSample(const std::string& name) { return std::string(ComoTexto(mdb_test::SampleBytes(name))); }

// The header's mask is a XOR with a constant stream, and the key of these files is 0.
std::string Cifrado(std::string bytes, std::uint32_t clave) {
  mdb::Bytes b(bytes.begin(), bytes.end());
  const mdb::Cabecera antes = mdb::LeerCabecera(b);
  mdb::Poner32(b, 0x3E, mdb::U32(b, 0x3E) ^ clave);
  const mdb::Cabecera c = mdb::LeerCabecera(b);
  EXPECT_EQ(antes.clave, 0U);
  EXPECT_EQ(c.clave, clave);
  for (std::size_t n = 1; n * c.tamano_pagina < b.size(); ++n)
    mdb::CifrarPagina(c, static_cast<mdb::NumPagina>(n),
                      std::span(b).subspan(n * c.tamano_pagina, c.tamano_pagina));
  return std::string(ComoTexto(b));
}

TEST(PaginasDeArchivo, EncryptedFilesHaveTheSamePages) {
  const CarpetaTemporal c;
  for (const char* nombre : {"types.mdb", "queries97.mdb"}) {
    SCOPED_TRACE(nombre);
    const std::string original = OfSample(nombre);
    const std::string ruta = c.Escribir(nombre, Cifrado(original, 0x31415926));
    EXPECT_NE(c.Leer(nombre), original);
    const auto cifrado = PaginasDeArchivo::Abrir(ruta);
    const auto plano = mdb_test::LoadSample(nombre);
    ASSERT_EQ(cifrado->Cantidad(), plano->Cantidad());
    for (mdb::NumPagina n = 1; n < plano->Cantidad(); ++n) ASSERT_EQ(*cifrado->Leer(n), *plano->Leer(n));
  }
}

TEST(PaginasDeArchivo, WhatIsWrittenIntoAnEncryptedFileIsEncrypted) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(5, 0x31415926)));
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    p->Modificar(2)[0] = 0xAB;
    p->Agregar();
    p->Confirmar();
  }
  const auto p = PaginasDeArchivo::Abrir(ruta, true);
  EXPECT_EQ((*p->Leer(2))[0], 0xAB);
  EXPECT_EQ(*p->Leer(5), mdb::Bytes(4096));
  EXPECT_NE(c.Leer("a.mdb").substr(5 * 4096), std::string(4096, '\0'));
  // And nothing of it in the clear in what is written but not changed.
  EXPECT_EQ(c.Leer("a.mdb").substr(3 * 4096, 8192),
            std::string(ComoTexto(BaseDeMuestra(5, 0x31415926))).substr(3 * 4096, 8192));
}

TEST(PaginasDeArchivo, OldAndNewFormatsAreOnlyRead) {
  const CarpetaTemporal c;
  const auto motivo = [&](const char* nombre) {
    const auto p = PaginasDeArchivo::Abrir(c.Escribir(nombre, OfSample(nombre)));
    EXPECT_THROW(p->Modificar(1), base::Error);
    EXPECT_EQ((*p->Leer(1))[0], 1);
    EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Format);
    return p->MotivoSoloLectura();
  };
  EXPECT_EQ(motivo("queries97.mdb"), "Las bases de Access 97 solo se leen");
  EXPECT_EQ(motivo("queries.accdb"), "Las bases .accdb (Access 2007 y posteriores) solo se leen");
}

TEST(PaginasDeArchivo, AFileThatLostItsEndIsOnlyRead) {
  const CarpetaTemporal c;
  const std::string bytes(ComoTexto(BaseDeMuestra(4)));
  const auto p = PaginasDeArchivo::Abrir(c.Escribir("a.mdb", bytes.substr(0, 3 * 4096 + 100)));
  EXPECT_EQ(p->MotivoSoloLectura(), "El archivo termina a mitad de una página: le falta una parte");
  EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Incomplete);
  EXPECT_EQ(p->Cantidad(), 3U);
  EXPECT_EQ((*p->Leer(2))[0], 14);
  EXPECT_THROW(p->Leer(3), mdb::Danio);
}

TEST(Base, RefusesWhatIsNoBase) {
  const CarpetaTemporal c;
  EXPECT_EQ(ErrorAlAbrir(c.Ruta("falta.mdb")), "No se puede abrir falta.mdb: no existe");
  EXPECT_NE(ErrorAlAbrir(c.Carpeta()), "");
  EXPECT_EQ(ErrorAlAbrir(c.Escribir("vacia.mdb", "")), "El archivo está vacío: no es una base de Access");
  EXPECT_EQ(ErrorAlAbrir(c.Escribir("cien.mdb", std::string(100, 'x'))),
            "El archivo no es una base de Access");
  const std::string bytes(ComoTexto(BaseDeMuestra(4)));
  for (const std::size_t largo : {1U, 20U, 100U, 2047U, 2048U, 4095U})
    EXPECT_EQ(ErrorAlAbrir(c.Escribir("corta.mdb", bytes.substr(0, largo))),
              "El archivo es demasiado corto para ser una base de Access")
        << largo;
  EXPECT_EQ(ErrorAlAbrir(c.Escribir("una.mdb", bytes.substr(0, 4096))), "");
  // Nothing is left beside them.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(c.Carpeta()), {}), 4);
}

TEST(Base, AFileGreaterThanItsFormatIsRefused) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  std::filesystem::resize_file(ruta, (std::uintmax_t{1} << 31) + 4096);  // a hole: it takes no room
  EXPECT_EQ(ErrorAlAbrir(ruta), "El archivo es más grande de lo que admite su formato");
  std::filesystem::resize_file(ruta, std::uintmax_t{1} << 31);
  const auto p = PaginasDeArchivo::Abrir(ruta);
  EXPECT_EQ(p->Cantidad(), 524288U);
  EXPECT_EQ(*p->Leer(524287), mdb::Bytes(4096));
  EXPECT_THROW(p->Agregar(), base::Error);
  EXPECT_THROW(p->Leer(0xFFFFFFFF), mdb::Danio);
}

TEST(Base, APasswordIsAskedFor) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", OfSample("password.mdb"));
  EXPECT_EQ(ErrorAlAbrir(ruta), "La base tiene contraseña y no se dio ninguna");
  mdb::OpcionesBase opciones;
  opciones.contrasena = "Contraseña";  // another case is another password
  EXPECT_EQ(ErrorAlAbrir(ruta, opciones), "La contraseña de la base no es la que se dio");
  opciones.contrasena = "contraseña";
  EXPECT_EQ(ErrorAlAbrir(ruta, opciones), "");
  // One that is given for a file without any does no harm.
  EXPECT_EQ(ErrorAlAbrir(c.Escribir("b.mdb", OfSample("empty.mdb")), opciones), "");
}

TEST(Base, AnEncryptedAccdbIsRefused) {
  const CarpetaTemporal c;
  std::string bytes = OfSample("queries.accdb");
  bytes[0x3E] = static_cast<char>(bytes[0x3E] ^ 0x55);
  EXPECT_EQ(ErrorAlAbrir(c.Escribir("a.accdb", bytes)),
            "La base está cifrada con una contraseña de Access 2007 o posterior: no se puede leer");
}

TEST(Base, CreatesAFileOnlyWhereThereIsNone) {
  const CarpetaTemporal c;
  const std::string ruta = c.Ruta("nueva.mdb");
  const base::Fecha ahora{46347.5};
  {
    const auto nueva = mdb::Base::Crear(ruta, 3082, ahora);
    EXPECT_EQ(nueva->MotivoSoloLectura(), "");
    EXPECT_EQ(nueva->Cab().orden, 3082);
    EXPECT_NE(nueva->Indice().Buscar("MSysObjects"), nullptr);
  }
  const std::string bytes = c.Leer("nueva.mdb");
  EXPECT_EQ(bytes, ComoTexto(mdb::NuevaBase(3082, ahora)));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(c.Carpeta()), {}), 1);
  EXPECT_THROW(mdb::Base::Crear(ruta, 1033, ahora), base::Error);
  EXPECT_EQ(c.Leer("nueva.mdb"), bytes);
  EXPECT_THROW(mdb::Base::Crear(c.Ruta("no/hay.mdb"), 3082, ahora), base::Error);
  // The journal of a base that is gone would be taken for the new one's.
  c.Escribir("otra.mdb-diario", "x");
  EXPECT_THROW(mdb::Base::Crear(c.Ruta("otra.mdb"), 3082, ahora), base::Error);
  EXPECT_FALSE(std::filesystem::exists(c.Ruta("otra.mdb")));
}

TEST(PaginasDeArchivo, AJournalLiesBesideTheFileAndNotBesideALinkToIt) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  std::filesystem::create_directory(c.Ruta("otra"));
  std::filesystem::create_symlink(ruta, c.Ruta("otra/enlace.mdb"));
  c.Escribir("a.mdb-diario", "empezado");
  EXPECT_EQ(PaginasDeArchivo::Abrir(c.Ruta("otra/enlace.mdb"))->MotivoSoloLectura(), "");
  EXPECT_FALSE(std::filesystem::exists(ruta + "-diario"));
}

// Whatever stands in the header and wherever the file ends: an error or pages, nothing worse.
TEST(Base, NoHeaderLeadsAstray) {
  const CarpetaTemporal c;
  std::mt19937 azar(1);
  const std::string originals[] = {std::string(ComoTexto(mdb::NuevaBase(3082, base::Fecha{46347}))),
                                   OfSample("queries97.mdb")};
  int abiertas = 0, negadas = 0;
  for (int i = 0; i < 600; ++i) {
    std::string malo = originals[i % 2];
    for (std::size_t k = 0, n = 1 + azar() % 40; k < n; ++k) {
      // The name is left alone most times, so that what follows it is looked at.
      const std::size_t pos = azar() % 8 == 0 ? azar() % 0x20 : 0x14 + azar() % 0x90;
      malo[pos] = static_cast<char>(azar());
    }
    if (azar() % 4 == 0) malo.resize(azar() % malo.size());
    const std::string ruta = c.Escribir("a.mdb", malo);
    try {
      const auto p = PaginasDeArchivo::Abrir(ruta);
      for (int k = 0; k < 20; ++k) {
        const auto n = static_cast<mdb::NumPagina>(azar() % 4 == 0 ? azar() : azar() % (p->Cantidad() + 2));
        if (n < p->Cantidad())
          EXPECT_EQ(p->Leer(n)->size(), p->Tamano());
        else
          EXPECT_THROW(p->Leer(n), mdb::Danio);
      }
      ++abiertas;
    } catch (const base::Error&) {
      ++negadas;
    }
    ASSERT_EQ(c.Leer("a.mdb"), malo);
  }
  EXPECT_GT(abiertas, 100);
  EXPECT_GT(negadas, 50);
}

}  // namespace
