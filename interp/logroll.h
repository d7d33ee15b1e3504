/* interp/logroll.h - the log file and its older copies.
 * Owns:    the names tarn.log and tarn0.log to tarn2.log, in one directory at a time.
 * Callers: the session at its start and end.
 * Never:   writes a line of the log. */
#pragma once

#include <string>

std::string logname(const std::string& directory); // directory empty: the current one

// tarn.log becomes tarn0.log, the copies before it move on by one, the oldest is deleted. Does nothing
// without a tarn.log in that directory.
void logroll(const std::string& directory);

// At the end of a session: the log goes to directory, after the logs that are there have been rolled. False
// if it had to stay.
bool logmove(const std::string& directory);
