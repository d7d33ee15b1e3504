/* Numbers in the formats of NFORMAT, and formats that are refused. */
TYPE NFORMAT
1/3
-0.5
1E10
123456.789
X = 1E-10/7
TYPE X, PI, MACHEPS
NFORMAT = "-1 8 0 0 2 0"
TYPE X, 123456789012
NFORMAT = "-2 8 0 0 2 0"
TYPE X, 123456789012
NFORMAT = "-4 8 0 0 2 1"
TYPE X, 123456789012, 0, 7
NFORMAT = "6 2 0 3 2 0"
TYPE 0, 7, -7.125, 0.5, 0.004, 1234567.8
NFORMAT = "%8.3f"
TYPE 2, 2.5, -1/3, 1E20
NFORMAT = "about %.2le units"
TYPE 1234.5
"A format must be six integers or hold one floating conversion; the older one stays"
NFORMAT = "1 2 3"
NFORMAT = "%s"
NFORMAT = "%n%f"
NFORMAT = "%*f"
NFORMAT = "%99999f"
TYPE 1234.5
TYPE NFORMAT
NFORMAT = "0 0 0 0 0 0"
TYPE 7
NFORMAT = ""
TYPE 7
NAMESW = 0
TYPE X, "text", NFORMAT
