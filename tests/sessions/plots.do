/* words: --quiet --vanilla */
"Names of plot files, what is asked, what is refused"
PLOT
DRAW C1 = 1:4
PLOTDEV = "psl"
PLOT
PLOT
TYPE PLOTDEV
TYPE DIR
PLOT IN FIG
PLOT W IN "figure.eps"
PLOT W IN "figure.eps"
PLOTOVER = 1
PLOT W IN "figure.eps"
PLOT C1
VIEW C1
PLOTDEV = "LASER"
PLOT
PLOTDEV = "LJ2P"
PLOT IN "laser"
PLOTDEV = 3
PLOTDEV = "PSCP"
PLOT IN "no/such/folder"
PLOT IN 3
PLOT IN "  "
PLOT IN ".."
"Without a screen"
VIEW
VIEW
VIEW 3
CLOSEVIEW
CLOSEVIEW 3
WREAD(5)
VIEWSIZE 0, 5
VIEWSIZE 8
VIEWSIZE 6, 6
TYPE GETFRAME(W, 2)
DISPLAY = "VGAC"
DISPLAY = "MSWDEV"
"A fault leaves no file and the objects as they were"
FLATNESS = -1
DRAW C1 LINETYPE 11
PLOT IN "broken"
TYPE FILE "broken.ps"
FLATNESS = 0
DRAW C1 LINETYPE 1 POINTTYPE -2
PLOT IN "broken"
DRAW C1 POINTTYPE 1000
PLOT IN "broken"
BLANK W
PLOT IN "empty"
DELETEALL
PLOT IN "nothing"
PSLINEW = -1
PLOT IN "thin"
PSLINEW = 0.5
VIEWSIZE 500, 5
PLOTDEV = "PDF"
PLOT IN "wide"
VIEWSIZE 6, 4
PLOTDEV = "PSL"
PLOT IN "figure.PNG"
PLOT IN "figure2.eps"
PLOT IN "figure.v2"
