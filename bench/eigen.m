x = 1:40000;
a = reshape(sin(x .* x .* x), 200, 200)';
for i = 1:10
  [v, w] = eig(a);
end
