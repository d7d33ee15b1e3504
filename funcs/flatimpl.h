/* funcs/flatimpl.h - what the evaluator asks of compiled code.
 * Owns:    nothing.
 * Callers: funcs/flat*.cpp and value.cpp alone.
 * Never:   included elsewhere: users see funcs/flatcode.h. */
#pragma once

enum flatoutcome { FLATNOCODE, FLATVALUE, FLATREPEAT }; // walk this body; done; walk the body and all that it calls
inline flatoutcome flatvalue(int, int, int, double&) { return FLATNOCODE; }
