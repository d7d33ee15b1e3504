a <- matrix((1:1000000) / 7, 100000, 10, byrow = TRUE)
write.table(format(a, digits = 8), row.names = FALSE, col.names = FALSE, quote = FALSE)
