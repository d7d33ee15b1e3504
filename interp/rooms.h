/* interp/rooms.h - the start of every room below.
 * Owns:    the one list of them, lowest first.
 * Callers: the session's start.
 * Never:   prints or reads a file. */
#pragma once

void roomsstart();    // state anew, tables and hooks filled
void toclausestart(); // toclause.cpp: TO, which several rooms share
