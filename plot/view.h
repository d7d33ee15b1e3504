/* plot/view.h - the rows of VIEW, PLOT, VIEWSIZE, CLOSEVIEW and WREAD.
 * Owns:    nothing else. Callers: displaystart. Never: called for a drawing: display.h. */
#pragma once

void viewrows();
