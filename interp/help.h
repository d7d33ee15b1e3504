/* interp/help.h - the statement HELP (and ?).
 * Owns:    its row of the process table.
 * Callers: the statement table at start.
 * Never:   knows how help is shown: the console does. */
#pragma once

void helprows();
