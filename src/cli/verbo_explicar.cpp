#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {

int Explicar(const OpcionesImportar& o, std::size_t linea, const std::string& carpeta,
             const ports::Clock& reloj, Flujos f) {
  return ConArchivoCargado(o, carpeta, reloj, f, [&](app::Programa& programa) {
    const std::vector<std::string> textos = programa.Importador().Explicar(linea);
    if (!programa.Ver().fallo_de_base.empty()) return static_cast<int>(kEntradaSalida);
    if (textos.empty()) {
      f.err << "El archivo no tiene la línea " << linea << "; tiene " << programa.Ver().lineas << '\n';
      return static_cast<int>(kUso);
    }
    f.out << "Línea " << linea << '\n';
    for (const std::string& texto : textos) f.out << informe::EnUnaLinea(texto) << '\n';
    return Terminar(f, kTodo);
  });
}

int Probar(const OpcionesImportar& o, const OpcionesProbar& prueba, const std::string& carpeta,
           const ports::Clock& reloj, Flujos f) {
  return ConArchivoCargado(o, carpeta, reloj, f, [&](app::Programa& programa) {
    const explicacion::Prueba p = programa.Lineas().Probar(prueba.formula, prueba.filtro, prueba.cuantas);
    if (!programa.Ver().fallo_de_base.empty()) return static_cast<int>(kEntradaSalida);
    std::vector<std::vector<std::string>> filas{{"Línea", "Antes", "Se evalúa", "Después", "Pasa"}};
    for (const auto& l : p.primeras)
      filas.push_back({std::to_string(l.linea), informe::EnUnaLinea(l.antes),
                       informe::EnUnaLinea(l.expresion), informe::EnUnaLinea(l.despues),
                       l.pasa ? "sí" : "no"});
    EscribirCuadro(f.out, filas, {0, 1, 3});
    f.out << "\nProbadas: " << p.probadas << " de " << p.lineas << " líneas; pasan el filtro: " << p.pasan
          << "; sin valor: " << p.sin_valor << '\n';
    for (const auto& error : p.errores) {
      f.out << "Error en " << error.lineas << (error.lineas == 1 ? " línea (" : " líneas (");
      for (std::size_t i = 0; i < error.primeras.size(); ++i)
        f.out << (i > 0 ? ", " : "") << error.primeras[i];
      f.out << (error.primeras.size() < error.lineas ? "…): " : "): ") << informe::EnUnaLinea(error.texto)
            << '\n';
    }
    return Terminar(f, p.errores.empty() ? kTodo : kAlgunaNo);
  });
}

}  // namespace cli
