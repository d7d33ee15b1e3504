/* interp/startup.h - the steps of a start, one routine each.
 * Owns:    the entries that the system makes itself: device names, directories, shared constants.
 * Callers: sessionstart, in the order of this file.
 * Never:   runs a statement of the user. */
#pragma once

#include <string>

struct sessionoptions;

std::string currentdirectory(); // error when there is none
bool startvocabulary();         // TOKEN.FIL; false: told on the console
void startentries();            // shared constants and the entries that are made by name
bool startlog();                // false: told on the console
void askdebugging();            // start word `bwi`
// Reads a save file of the program directory. False when FILEDIR is not defined then.
bool startobjects(const char* file);
void startsystem(); // what the system itself makes of the objects read: constants, directory, device, colours
void startbanner();
void setdisplay(const std::string& device);       // from the command line
void startdofiles(const sessionoptions& options); // queues what is to run before the first prompt
