x = 1:40000;
a = reshape(sin(x .* x .* x), 200, 200)';
for i = 1:10
  [u, w, v] = svd(a);
end
