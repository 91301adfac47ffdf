// Definition statements: CREATE, DROP, ALTER, SELECT INTO.
#pragma once

#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace jetsql {

void Definir(const CrearTabla& s, const Catalogo& catalogo, Traduccion& t);
void Definir(const CrearIndice& s, const Catalogo& catalogo, Traduccion& t);
void Definir(CrearVista& s, const Catalogo& catalogo, Traduccion& t);
void Definir(const Quitar& s, const Catalogo& catalogo, Traduccion& t);
void Definir(const AlterarTabla& s, const Catalogo& catalogo, Traduccion& t);
// SELECT … INTO: `c` is resolved.
void DefinirDeConsulta(const Consulta& c, const Catalogo& catalogo, const OpcionesTraduccion& opciones,
                       Traduccion& t);

}  // namespace jetsql
