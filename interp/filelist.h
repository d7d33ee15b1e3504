/* interp/filelist.h - TYPE FILE and TYPE DIR.
 * Owns:    the listing of text files and of directories.
 * Callers: listing.
 * Never:   writes a file or takes away one. */
#pragma once

#include <string>

// The lines of a file. name is looked for in lower case, since names typed without quotes come in capitals;
// one that was typed as a string first as it stands.
void typefile(const std::string& name, bool asgiven);
// The files whose names match a name with * and ?; with none, all files in the directory of that name.
void typedirectory(const std::string& name, bool asgiven);
