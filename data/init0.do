/* Predefined objects that are no system variables: a user may change them. The program runs this file in a
   session of its own and saves what it defines as INIT0.FIL. */

YES = 1
NO = 0

/* The colour of what is not drawn */
CLEAR = -2

/* The middle, beside TOP, LEFT, RIGHT and BOTTOM */
CENTER = 0

/* Codes of ADJUST: how a limit of a window follows the data */
WFIX = 0
WSHRINK = 1
WEXPAND = 2
WFLOAT = 3
WNICE = 11
WMATCH = 15

SAVEOVER YES, NO, CLEAR, CENTER, WFIX, WSHRINK, WEXPAND, WFLOAT, WNICE, WMATCH IN "INIT0.FIL"
