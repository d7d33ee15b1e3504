/* solvers/start.h - the room's start: statements, builtins, kinds of values.
 * Owns:    nothing. Callers: the start of the session. Never: more than fill tables. */
#pragma once

void solversstart();
