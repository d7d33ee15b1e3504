/* The faces of the letters, fonts 1 to 15. A text of any of them may hold Greek letters, accents and signs. */
NAMES = "1 plain"&"2 plain italic"&"3 plain fixed"&"4 plain Greek"&"5 text"&"6 bold"&"7 italic"&"8 bold italic"
NAMES = NAMES&"9 fixed"&"10 fixed bold"&"11 Greek"&"12 Greek bold"&"13 light"&"14 narrow"&"15 Greek light"
WINDOW 0 TO 1, 0 TO 1
IMAGE 0.02 TO 0.98, 0.02 TO 0.98
BLANK W.XAXIS, W.YAXIS
FOR F = 1:15 {
  LEVEL = 1-0.0625*F
  TITLE NAMES(F) AT (0.02, LEVEL) WORLD PLACE (LEFT, CENTER) SIZE 0.018
  TITLE "Half-life 2.75 h, dose 5 µg, α ≤ β, x'.4U'.7S2'R" AT (0.2, LEVEL) WORLD PLACE (LEFT, CENTER) FONT F SIZE 0.023
}
PLOTDEV = "PNG"; PLOTOVER = 1
PLOT IN "faces"
