/* Logarithmic axes: the radiation of black bodies by Planck's law, from the sun's surface to a living room. The curves are
   drawn over decimal logarithms; ticks of point types 19 and 20 stand at 1, 2, ... 9 of each decade.
   To be seen: the dashed line through the maxima is straight (Wien's law). */
H = 6.62607015E-34; C = 299792458; KB = 1.380649E-23; WIEN = 2.897771955E-3
FUNCTION RADIANCE(L, T) = 2*H*C^2/(L^5*(EXP(H*C/(L*KB*T))-1))
FUNCTION LOGRADIANCE(X) = LOG10(RADIANCE(10^(X-6), TEMP)*1E-9)
WINDOW -1 TO 2, -4 TO 6
IMAGE 0.13 TO 0.89, 0.16 TO 0.88
LX = -1:2:0.02
PEAKS = 0 &' 0
FOR TEMP = LIST(5772, 3000, 1500, 700, 300) {
  DRAW LX &' (LOGRADIANCE ON LX) COLOR BLUE
  PEAK = LOG10(WIEN/TEMP*1E6)
  PEAKS = PEAKS & (PEAK &' LOGRADIANCE(PEAK))
}
DRAW DISPLACEMENT = (PEAKS ROW (2:6)) LINETYPE 2 POINTTYPE -13 PTSIZE 0.012
TITLE "5772 K" AT (-0.3, 4.75) WORLD PLACE (CENTER, BOTTOM) SIZE 0.022
TITLE "3000 K" AT (-0.16, 3) WORLD PLACE (RIGHT, BOTTOM) SIZE 0.022
TITLE "1500 K" AT (0.14, 1.5) WORLD PLACE (RIGHT, BOTTOM) SIZE 0.022
TITLE "700 K" AT (0.47, -0.15) WORLD PLACE (RIGHT, BOTTOM) SIZE 0.022
TITLE "300 K" AT (0.84, -2) WORLD PLACE (RIGHT, BOTTOM) SIZE 0.022
XAXIS (-1:2) &' (-4) LABEL (0.1&1&10&100) POINTTYPE 19 PTSIZE 0.03 LABELSIZE 0.022
YAXIS (-1) &' (-4:6) LABEL ((-4:6:2) &' (1:11:2)) POINTTYPE 20 PTSIZE 0.03 LABELSIZE 0.022
TITLE TOP, "Radiation of black bodies" SIZE 0.034
TITLE BOTTOM, "wavelength (micrometres)" SIZE 0.026
TITLE LEFT, "log'.3D'.7S10'R radiance (W m'.5U'.7S-2'R sr'.5U'.7S-1'R nm'.5U'.7S-1'R)" SIZE 0.026
PLOTDEV = "PNG"; PLOTOVER = 1; PSLINEW = 1
PLOT IN "planck"
