"Two million passes of one statement"
S = 0
FOR J = 1:10 { FOR I = 1:200000 { S = S + I*I } }
