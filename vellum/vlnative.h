/* vellum/vlnative.h - the size and direction of native text, the same on every page device.
 * Owns:    nothing. Callers: the devices. Never:   draws. */
#pragma once

#include "vellum/vldevice.h"

// The length of the text's direction vector; 0 when it has none to be drawn in.
double vlnativelength(const vlnativetext& text);
double vlnativepoints(const vlnativetext& text); // at least 1
double vlnativeangle(const vlnativetext& text);  // degrees
// As the base fonts of PostScript have it on a page of the open device, normal lengths.
double vlnativewidth(const vlnativetext& text);
double vlnativeheight(const vlnativetext& text); // of a capital
