a = reshape(repmat(1:1000, 1, 1000), 1000, 1000);
b = reshape(repmat(1:999, 1, 1002)(1:1000000), 1000, 1000);
for i = 1:10
  c = a + b;
  d = c .* a;
  e = d ./ b - 2 * a;
  f = (e > a) .* e + 1;
end
