/* shell/hooks.h - the console of this program, handed to the rooms below.
 * Owns:    the answers to consolehooks: what a question, a colour or an error text becomes here.
 * Callers: main.
 * Never:   decides what is printed. */
#pragma once

void consolehooksset();
