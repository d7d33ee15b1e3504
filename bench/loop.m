s = 0;
for j = 1:10
  for i = 1:200000
    s = s + i * i;
  end
end
