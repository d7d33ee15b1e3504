x = 1:40000;
a = reshape(sin(x .* x .* x), 200, 200)';
for i = 1:100
  b = inv(a);
end
