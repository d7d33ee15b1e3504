#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "funcs/stringops.h"

void funcsstart() {
    builtinreset();
    elementaryrows();
    specialrows();
    matrixbasicrows();
    callrows();
    ranrows();
    stringopsstart();
}
