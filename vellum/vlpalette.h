/* vellum/vlpalette.h - the palette in saved files.
 * Owns:    nothing. Callers: vlpicfile.cpp, vlpatchfile.cpp. Never:   takes a palette into the device
 * unasked. */
#pragma once

#include "vellum/vlsave.h"

/* 2 bytes, zero where the device has no palette: with pictures the top index, with patches the number of
 * entries. Then with a palette the number of index entries the same way, and the tables: a word of r, g, b (8
 * bits each) an entry, 2 bytes an index. With pictures each table stands behind its number. */
void vlwritepalette(vlsavefile& file, bool pictures);
// mode is of vlreadmode; a palette is taken over when it is of the open device.
void vlreadpalette(vlsavefile& file, bool pictures, int device, int mode, vltables* tables);
