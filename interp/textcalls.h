/* interp/textcalls.h - builtins between objects and statement text.
 * Owns:    TYPESTR, the listing of an object as a string; SRUN, a string run as statements.
 * Callers: the call path, by the rows; the session's start.
 * Never:   lists or parses: TYPE and the parser do. */
#pragma once

void textcallsstart(); // adds the rows; behind the rows of TYPE
