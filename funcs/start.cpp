#include "funcs/builtin.h"
#include "funcs/rows.h"
#include "funcs/stringops.h"

void funcsstart() {
    builtinreset();
    elementaryrows();
    matrixbasicrows();
    callrows();
    ranrows();
    stringopsstart();
}
