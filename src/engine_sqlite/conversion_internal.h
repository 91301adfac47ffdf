// The conversions that the dialect's functions and the writer's helpers share. Null gives Null.
#pragma once

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {

void ToSingle(Call& call);    // the nearest single, as its shortest decimal
void AsSingle(Call& call);    // the same, but what is too large for one stays as it is
void ToCurrency(Call& call);  // four decimals
void ToNumber(Call& call);    // a double
void ToDate(Call& call);      // a day serial
void ToBoolean(Call& call);   // -1 or 0; "True", "Verdadero" and their opposites are read

}  // namespace engine_sqlite
