/* The standard window W: what the first plot statement of a session finds. The program runs this file in a session
   of its own and saves the window as DW.SAV. A user may save a W of his own under that name in the directory he works in. */

/* The limits go out and in to round numbers around the data */
WINDOW 0 TO 10, 0 TO 10 ADJUST WNICE

/* Axes that choose their marks. These point outward, so that they touch no data; labels are small enough to leave room
   for a title of usual size in the margins at the left and below. */
XAXIS POINTTYPE 22 PTSIZE 0.014 FFRACT LABELSIZE 0.016 FFRACT PLACE (CENTER, TOP) OFFSET (0, -0.012) FFRACT WCLIP 2
YAXIS POINTTYPE 21 PTSIZE 0.014 FFRACT LABELSIZE 0.016 FFRACT PLACE (RIGHT, CENTER) OFFSET (-0.012, 0) FFRACT WCLIP 2

SAVEOVER W IN "DW.SAV"
