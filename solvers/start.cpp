#include "solvers/start.h"

#include "solvers/conset.h"
#include "solvers/fit.h"
#include "solvers/linprog.h"
#include "solvers/minimize.h"
#include "solvers/odesetup.h"

void solversstart() {
    consetstart();
    odestart();
    fitstart();
    simplexstart();
    minimizestart();
}
