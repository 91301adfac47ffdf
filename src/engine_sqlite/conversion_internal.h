// The conversions that the dialect's functions and the writer's helpers share. Null gives Null.
#pragma once

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {

void ASimple(Llamada& llamada);     // the nearest single, as its shortest decimal
void ComoSimple(Llamada& llamada);  // the same, but what is too large for one stays as it is
void AMoneda(Llamada& llamada);     // four decimals
void ANumero(Llamada& llamada);     // a double
void AFecha(Llamada& llamada);      // a day serial
void ABooleano(Llamada& llamada);   // -1 or 0; "True", "Verdadero" and their opposites are read

}  // namespace engine_sqlite
