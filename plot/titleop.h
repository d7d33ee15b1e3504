/* plot/titleop.h - TITLE, and how EDIT shows a title.
 * Owns:    which title a statement means and where a title with a position stands.
 * Callers: process, EDIT.
 * Never:   draws. */
#pragma once

#include <string>

/* Performs TITLE on the operands of polstack, which it releases: a name, a text or a title to copy, a
 * position (1 to 4: TOP, LEFT, RIGHT, BOTTOM), each at most once. A fault is told before anything is changed.
 */
void titleop();
std::string titletoedit(int idx); // the statement that makes the title
