x = 1:2000000;
a = reshape(sin(x .* x), 2, 1000000)';
for i = 1:20
  b = sortrows(a, 1);
end
