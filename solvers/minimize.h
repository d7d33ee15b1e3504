/* solvers/minimize.h - the builtins MINIMIZE and MAXIMIZE.
 * Owns:    the binding of a function's variables to the iteration, the final report, KEEPHESS.
 * Callers: the builtin table.
 * Never:   iterates itself (solvers/minsolve.h). */
#pragma once

void minimizestart();
