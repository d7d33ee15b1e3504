/* interp/help.h - the statement HELP (and ?), and TYPE of a builtin.
 * Owns:    its row of the process table.
 * Callers: the statement table at start; the listing of a builtin.
 * Never:   knows how help is shown: the console does. */
#pragma once

void helprows();
void helpshow(const char* topic); // error "cannot open help file"
