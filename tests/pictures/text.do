/* The text commands, each beside what it does; titles at all places, turned and shifted. */
PLOTDEV = "PSL"
FRAMEBOX
IMAGEBOX NO
IMAGE 0.05 TO 0.95, 0.08 TO 0.92
BLANK W.XAXIS, W.YAXIS
WINDOW 0 TO 4, 0 TO 12
TITLE "up ''U: x'.5Uup'.5Ddown" AT (0.1, 11) WORLD SIZE 0.018
TITLE "size ''S: a'1.5Sb'.5Sc'R end" AT (0.1, 10) WORLD SIZE 0.018
TITLE "font ''T: '2Ta'5Tb'3Tc'4Td'6Te'R end" AT (0.1, 9) WORLD SIZE 0.018
TITLE "high ''H: a'2Hb'.5Hc'R end" AT (0.1, 8) WORLD SIZE 0.018
TITLE "wide ''W: a'2Wb'.5Wc'R end" AT (0.1, 7) WORLD SIZE 0.018
TITLE "turned ''A: '45Aabc'0Adef" AT (0.1, 6) WORLD SIZE 0.018
TITLE "back ''B: o'B/ abc'3B___'Fd" AT (0.1, 5) WORLD SIZE 0.018
TITLE "again ''I: normal '5Ib'5Io'5Il'5Id" AT (0.1, 4) WORLD SIZE 0.018
TITLE "lines ''M: first'Msecond'Mthird" AT (0.1, 3) WORLD SIZE 0.018
TITLE "cell ''X: M'Xillimetre" AT (2.1, 11) WORLD SIZE 0.018
TITLE "bar ''Y: a'Ybc'Yd  line ''Z: a'Zbc'Zd" AT (2.1, 10) WORLD SIZE 0.018
TITLE "quote: '' end: '" AT (2.1, 9) WORLD SIZE 0.018
TITLE "CM CJ: one'CM'CJtwo'CJthree" AT (2.1, 8) WORLD SIZE 0.018
TITLE "(a)[b]{c}\d%e&f#g@h~i|j" AT (2.1, 6) WORLD SIZE 0.018
TITLE "ABCDEFGHIJKLMNOPQRSTUVWXYZ" AT (2.1, 5) WORLD SIZE 0.018
TITLE "abcdefghijklmnopqrstuvwxyz 0123456789" AT (2.1, 4.2) WORLD SIZE 0.018
TITLE "e'.5U'.7S-x'.5U'.7S2'R = 'E1 - x'.5U'.7S2'R + O(x'.5U'.7S4'R)" AT (2.1, 3.2) WORLD SIZE 0.03
TITLE "turned by 30" AT (3.3, 8) WORLD ANGLE 30 SIZE 0.018
TITLE "by 120" AT (3.6, 7) WORLD ANGLE 120 SIZE 0.018
TITLE "by 270" AT (3.8, 9) WORLD ANGLE 270 SIZE 0.018
DRAW PLACES = (2.5&3&3.5) &' 1 LINETYPE 0 POINTTYPE 2 PTSIZE 0.018
TITLE "left" AT (2.5, 1) WORLD PLACE (LEFT, BOTTOM)
TITLE "center" AT (3, 1) WORLD PLACE (CENTER, CENTER)
TITLE "right" AT (3.5, 1) WORLD PLACE (RIGHT, TOP)
TITLE TOP, "in the middle of the top"
TITLE LEFT, "left side"
TITLE RIGHT, "right side"
TITLE BOTTOM, "the bottom'.5U'.7S1'R"
TITLE "shift 1" AT (0, 0.5) SHIFT 1
PLOT IN "text"
