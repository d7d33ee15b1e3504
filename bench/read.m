f = fopen("read.dat");
a = fscanf(f, "%f");
fclose(f);
