// What is imported, filtered and refused is the file, byte by byte, whatever its line ends and its encoding.
#include "informe/rechazadas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "base/encoding.h"
#include "base/text.h"
#include "support/temp_folder.h"

namespace {

using importfile::ArchivoLeido;

enum class Codigo { Cp1252, Utf8, Utf8ConMarca, Utf16Chico, Utf16Grande };

std::string Codificar(const std::string& utf8, Codigo codigo) {
  if (codigo == Codigo::Cp1252) return base::ToCp1252(utf8);
  if (codigo == Codigo::Utf8) return utf8;
  if (codigo == Codigo::Utf8ConMarca) return "\xEF\xBB\xBF" + utf8;
  std::string bytes;
  for (const char16_t u : base::ToUtf16("\xEF\xBB\xBF" + utf8)) {
    const char alto = static_cast<char>(u >> 8), bajo = static_cast<char>(u & 0xFF);
    bytes += codigo == Codigo::Utf16Grande ? alto : bajo;
    bytes += codigo == Codigo::Utf16Grande ? bajo : alto;
  }
  return bytes;
}

class Azar {
 public:
  explicit Azar(unsigned semilla) : azar_(semilla) {}
  std::size_t De(std::size_t n) { return azar_() % n; }
  template <typename T, std::size_t N>
  T Uno(const T (&de)[N]) {
    return de[De(N)];
  }
  // Lines that end imported, filtered, refused and malformed, with any line end; the last may have none.
  std::string Archivo() {
    std::string texto;
    for (std::size_t n = De(30); n > 0; --n) {
      texto +=
          Uno({"1;1;8,5", "2;1;4;año", "999;1;8", "1;9;8", "1;1;abc", "José;1", "", "1;1;8;Ω\xE2\x82\xAC"});
      texto += Uno({"\r\n", "\n", "\r", "\r\n", "\n\r", "\r\r\n"});
    }
    if (De(2) == 0) texto += Uno({"1;1;7", "999;1;7", "corta", " "});
    return texto;
  }
  std::string Bytes(std::size_t cuantos) {
    std::string bytes = Uno({"", "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB", "\xFF"});
    while (cuantos-- > 0) bytes += Uno({'\r', '\n', '\0', 'a', ';', '\xFF', '\xC3', '\xB1', '\xFE', '1'});
    return bytes;
  }

 private:
  std::mt19937 azar_;
};

TEST(ArchivoLeido, IsItsMarkAndItsLinesToTheByte) {
  Azar azar(7);
  std::size_t marcados = 0;
  for (int vez = 0; vez < 4000; ++vez) {
    const std::string bytes = azar.Bytes(azar.De(40));
    const ArchivoLeido archivo(bytes);
    const std::string texto = base::DecodeFile(bytes);
    const auto lineas = base::SplitLines(std::string_view(texto));
    ASSERT_EQ(archivo.Lineas(), lineas.size() - (lineas.back().empty() ? 1 : 0)) << vez;
    std::string junto(archivo.Marca());
    marcados += archivo.Marca().empty() ? 0 : 1;
    for (std::size_t n = 1; n <= archivo.Lineas(); ++n) junto += archivo.Linea(n);
    // A byte too many of UTF-16 belongs to the last line; where there is none, to nobody.
    if (archivo.Lineas() == 0 && bytes.size() > junto.size())
      ASSERT_EQ(bytes.size(), junto.size() + 1) << vez;
    else
      ASSERT_EQ(junto, bytes) << vez;
  }
  EXPECT_GT(marcados, 1500U);
}

TEST(ArchivoLeido, GivesEachLineAsItWasDecoded) {
  Azar azar(11);
  for (int vez = 0; vez < 600; ++vez) {
    const auto codigo = static_cast<Codigo>(vez % 5);
    const std::string bytes = Codificar(azar.Archivo(), codigo);
    const ArchivoLeido archivo(bytes);
    const std::string texto = base::DecodeFile(bytes);
    const auto lineas = base::SplitLines(std::string_view(texto));
    for (std::size_t n = 1; n <= archivo.Lineas(); ++n) {
      std::string linea(archivo.Linea(n));
      // By itself it has the whole file's encoding only behind a mark.
      if (!archivo.Marca().empty())
        linea = base::DecodeFile(std::string(archivo.Marca()) + linea);
      else if (!base::IsValidUtf8(bytes))
        linea = base::FromCp1252(linea);
      ASSERT_EQ(base::SplitLines(std::string_view(linea)).front(), lineas[n - 1]) << vez << ", line " << n;
    }
  }
}

// Two persons, one relation, a filter by relation: rows of every kind.
struct Tablas {
  refdata::PersonsIndex personas;
  relations::CodeRelations relaciones;
  refdata::ConceptsCatalogue conceptos;
  settings::Settings opciones;
  support::TempFolder carpeta;

  Tablas() {
    std::vector<refdata::PersonsIndex::Fila> filas;
    for (const char* n : {"1", "2"}) filas.push_back({n, n, n, n, n, n, "Ana", "Abero", "180", "2", "1"});
    personas.Reemplazar(std::move(filas));
    relaciones.Reemplazar("HC*65535*,1,*7*Horas Comunes*0");
    opciones.Separador = ";";
  }
  importfile::Carga Cargar(const std::string& bytes) {
    importfile::EntradaCarga entrada;
    entrada.txtRuta = carpeta.Write("marcas.txt", bytes);
    entrada.opciones = &opciones;
    entrada.personas = &personas;
    entrada.conceptos = &conceptos;
    entrada.relaciones = &relaciones;
    return importfile::CargarDatos(entrada);
  }
};

std::string SinCeros(std::string_view linea) {
  std::string texto(linea);
  std::erase(texto, '\0');
  return texto;
}
bool TerminaEnCr(std::string_view linea) { return base::EndsWith(SinCeros(linea), "\r"); }
bool EsLf(std::string_view linea) { return SinCeros(linea) == "\n"; }

TEST(ReunirRechazadas, WithImportedAndFilteredItIsTheFile) {
  Tablas tablas;
  Azar azar(2026);
  std::size_t rechazadas = 0, completas = 0;
  for (int vez = 0; vez < 600; ++vez) {
    const std::string bytes = Codificar(azar.Archivo(), static_cast<Codigo>(vez % 5));
    importfile::Carga carga = tablas.Cargar(bytes);
    if (carga.fin != importfile::FinDeCarga::Completa) continue;
    ++completas;
    for (auto& fila : carga.filas)
      fila.resultado = fila.campo[importfile::kNombre].empty() ? "No existe"
                       : azar.De(3) == 0                       ? "Error"
                                                               : "OK";
    const auto lineas = informe::LineasDe(carga.filas, carga.aparte);
    const informe::Rechazadas r = informe::ReunirRechazadas(carga.archivo, lineas);
    // The file is put together again: each refused line is taken from the refused ones, in turn.
    std::string_view quedan = r.bytes;
    ASSERT_EQ(quedan.substr(0, carga.archivo.Marca().size()), carga.archivo.Marca());
    quedan.remove_prefix(carga.archivo.Marca().size());
    std::string junto(carga.archivo.Marca());
    std::size_t sin_importar = 0, vacias = 0;
    std::string_view anterior;
    for (const informe::Linea& linea : lineas) {
      const std::string_view suya = carga.archivo.Linea(linea.numero);
      if (linea.SinImportar()) {
        ASSERT_EQ(quedan.substr(0, suya.size()), suya) << vez << ", line " << linea.numero;
        junto += quedan.substr(0, suya.size());
        quedan.remove_prefix(suya.size());
        ++sin_importar;
        if (TerminaEnCr(anterior) && EsLf(suya)) ++vacias;
        anterior = suya;
      } else {
        junto += suya;
      }
    }
    ASSERT_EQ(quedan, "") << vez;
    ASSERT_EQ(junto, bytes) << vez;
    ASSERT_EQ(r.cuantas, sin_importar);
    ASSERT_EQ(static_cast<std::size_t>(std::count(r.motivos.begin(), r.motivos.end(), '\n')), sin_importar);
    // Each of them is a line of the new file; only an empty one that ends in LF becomes one with a line
    // before it that ends in CR alone.
    ASSERT_EQ(ArchivoLeido(r.bytes).Lineas() + vacias, sin_importar) << vez;
    rechazadas += sin_importar;
  }
  EXPECT_GT(completas, 400U);
  EXPECT_GT(rechazadas, 3000U);
}

TEST(ReunirRechazadas, SaysWhenTheLinesAloneWouldBeReadOtherwise) {
  // "Ã±" in CP1252 is the "ñ" of UTF-8; the other line is what keeps the file from being UTF-8.
  const ArchivoLeido archivo("1;1;A\xC3\xB1o\r\n2;1;a\xF1o\r\n");
  importfile::LineaAparte primera{1, true, {}}, segunda{2, true, {}};
  EXPECT_FALSE(informe::ReunirRechazadas(archivo, informe::LineasDe({}, {primera})).se_leen_igual);
  EXPECT_TRUE(informe::ReunirRechazadas(archivo, informe::LineasDe({}, {segunda})).se_leen_igual);
  EXPECT_TRUE(informe::ReunirRechazadas(archivo, informe::LineasDe({}, {primera, segunda})).se_leen_igual);
  EXPECT_TRUE(informe::ReunirRechazadas(archivo, {}).se_leen_igual);
  const ArchivoLeido utf8("1;1;A\xC3\xB1o\r\n2;1;x\r\n");
  EXPECT_TRUE(informe::ReunirRechazadas(utf8, informe::LineasDe({}, {primera})).se_leen_igual);
  EXPECT_TRUE(informe::ReunirRechazadas(utf8, informe::LineasDe({}, {segunda})).se_leen_igual);
}

// A reason of several lines stays one, so that the reasons go with the lines.
TEST(ReunirRechazadas, GivesOneReasonALine) {
  const ArchivoLeido archivo("1;1;1\n2;1;2");
  importfile::ImportRow fila;
  fila.linea = 2;
  fila.resultado = "El disco\r\nestá\tlleno";
  const auto r = informe::ReunirRechazadas(archivo, informe::LineasDe({fila}, {{1, true, {}}}));
  EXPECT_EQ(r.motivos, "1: Formato incorrecto en la linea 1\r\n2: El disco  está lleno\r\n");
  EXPECT_EQ(r.bytes, "1;1;1\n2;1;2");
}

}  // namespace
