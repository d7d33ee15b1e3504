/* shell/helpview.h - browsing the help on the console.
 * Owns:    the pages and the way back while a user reads.
 * Callers: the HELP statement and TYPE of a builtin, through the console hooks.
 * Never:   writes to the log. Without a screen it writes the topic and ends. */
#pragma once

// Shows a topic and lets the user go on from there; false when the help file cannot be opened.
bool helpbrowse(const char* topic);
