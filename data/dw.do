/* The standard window W: what the first plot statement of a session finds. The program runs this file in a session
   of its own and saves the window as DW.SAV. A user may save a W of his own under that name in the directory he works in. */

/* The limits go out and in to round numbers around the data */
WINDOW 0 TO 10, 0 TO 10 ADJUST WNICE

/* Eleven marks divide each axis: limits of one or two digits give marks of no more than three. They point outward, so
   that they touch no data; each has its label. Points in WORLD units go with the window, and labels with them. */
XAXIS (0:10) &' 0*(0:10) POINTTYPE 22 PTSIZE 0.02 FFRACT LABEL 0:10 LABELSIZE 0.018 FFRACT PLACE (CENTER, TOP) \
OFFSET (0, -0.016) FFRACT
YAXIS 0*(0:10) &' (0:10) POINTTYPE 21 PTSIZE 0.02 FFRACT LABEL 0:10 LABELSIZE 0.018 FFRACT PLACE (RIGHT, CENTER) \
OFFSET (-0.016, 0) FFRACT

SAVEOVER W IN "DW.SAV"
