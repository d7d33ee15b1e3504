/* shell/platform.h - what the operating system does for the session.
 * Owns:    nothing.
 * Callers: main and the console hooks.
 * Never:   prints. One file for each platform stands behind this header. */
#pragma once

#include <cstddef>
#include <string>

// The directory of TOKEN.FIL and its companions, ending in a separator: the program's own, or the one where
// they are installed. word is word 0 of the command line.
std::string programdirectory(const char* word);
size_t stackbytes();                     // of the machine stack, less a reserve for the rest of the program
unsigned long freememory();              // bytes of physical memory not in use
void largepages(void* p, size_t bytes);  // advises the system to back this new memory by large pages
bool coneditor(const std::string& path); // the user's text editor on a file; returns when it is done
bool conprint(const std::string& path);  // a file, unchanged, to the default printer
