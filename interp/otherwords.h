/* interp/otherwords.h - what other systems call things, and how they are written here.
 * Owns:    the table of such words. Callers: whoever has met a name that means nothing.
 * Never:   prints, or takes a word for its meaning. */
#pragma once

#include <string>

// How the thing is written here that other systems call name, in any case of letters; empty if none is known.
std::string otherword(const std::string& name);
