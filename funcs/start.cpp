#include "funcs/builtin.h"
#include "funcs/pending.h"
#include "funcs/rows.h"
#include "funcs/stringops.h"

void funcsstart() {
    builtinreset();
    pendingreset();
    elementaryrows();
    specialrows();
    specialmatrixrows();
    complexfunctionrows();
    matrixbasicrows();
    callrows();
    linearrows();
    matrixarrangerows();
    columnstatsrows();
    matrixseriesrows();
    interpolaterows();
    complexrows();
    ranrows();
    stringopsstart();
}
