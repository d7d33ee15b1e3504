/* plot/windowop.h - WINDOW, FRAME, IMAGE, their boxes, BLANK and UNBLANK.
 * Owns:    how a window's limits, frame and image are set, and how the image goes with the frame.
 * Callers: process.
 * Never:   draws. */
#pragma once

void windowop(int token); // TOKWINDOW, TOKFRAME or TOKIMAGE; nothing may stand on polstack
void boxop(int token);    // TOKFRAMEBOX or TOKIMAGEBOX; an operand on polstack turns the box off
// A window with all its members, a curve or a title; error "bad type in BLANK/UNBLANK".
void setblank(int idx, int value);
