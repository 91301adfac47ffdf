// Definition statements: CREATE, DROP, ALTER, SELECT INTO.
#pragma once

#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace jetsql {

void Definir(const CrearTabla& s, Catalogo& catalogo, Traduccion& t);
void Definir(const CrearIndice& s, Catalogo& catalogo, Traduccion& t);
void Definir(CrearVista& s, Catalogo& catalogo, Traduccion& t);
void Definir(const Quitar& s, Catalogo& catalogo, Traduccion& t);
void Definir(const AlterarTabla& s, Catalogo& catalogo, Traduccion& t);
// SELECT … INTO: `c` is resolved.
void DefinirDeConsulta(const Consulta& c, Catalogo& catalogo, const OpcionesTraduccion& opciones,
                       Traduccion& t);

}  // namespace jetsql
