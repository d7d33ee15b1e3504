"A million numbers laid out in columns, on standard output and in the log"
A = SHAPE(100000, 10, (1:1000000) / 7)
TYPE A
