/* Numbers from data files and from the lines that follow. */
A = READ(RUNS,10,3)
A
TYPE READ("seven.dat",3,3)
TYPE READ("seven.dat",2,3)
TYPE NROWS(READ("seven.dat"))
TYPE READON("seven.dat",1,3), READON("seven.dat",1,3), READON("seven.dat",1,3), READON("seven.dat",1,3)
TYPE READON("seven.dat",-1)
B = READ("bad.dat")
B = READ("none.dat")
B = READ(RUNS,0)
/* the keyboard */
N = KREAD()
2.5
N
K = KREAD(2,2)
1 2 3
four
4
K
P = KREAD("dose? ")
50
P
S = KREADS("name? ")
Ann \
Smith
S
/* delimited tables */
C = READCSV(TRIAL)
TYPE C = MAXPOS
TYPE READCSV(TRIAL,1:2)(2,2)
TYPE CSVNAMES(TRIAL)
TYPE CSVTEXT("species.csv")
D = READCSV("species.csv")
TYPE READCSV("species.csv",1)
TYPE READCSV("species.csv",CSVNAMES(TRIAL))
TYPE READCSV("species.csv",",")
TYPE READCSV("species.csv","length")
D = READCSV("comma.csv")
D = READCSV("ragged.csv")
D = READCSV("none.csv")
/* strings */
TYPE "AB"^3, "A"+1+"B", "A"<"B", "B"<="A"
TYPE SUBSTR("reading",LIST(1,4,4)), STRREV("abc"), LTRIM("  x")+"|", ASCII(65), NULLSTR()+"|"
TYPE SUBSTR("abc",4)
TYPE "A"*2
W = TYPESTR(1:2)
W
TYPE SRUN("X = 3; X*14")
TYPE ASCII(256)
