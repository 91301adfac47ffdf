// Definition statements: CREATE, DROP, ALTER, SELECT INTO.
#pragma once

#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace jetsql {

void Define(const CreateTable& s, Catalog& catalog, Translation& t);
void Define(const CreateIndex& s, Catalog& catalog, Translation& t);
void Define(CreateView& s, Catalog& catalog, Translation& t);
void Define(const Drop& s, Catalog& catalog, Translation& t);
void Define(const AlterTable& s, Catalog& catalog, Translation& t);
// SELECT … INTO: `c` is resolved.
void DefineFromQuery(const Query& c, Catalog& catalog, const TranslationOptions& options, Translation& t);

}  // namespace jetsql
