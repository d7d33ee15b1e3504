a = reshape(repmat(linspace(0, 1, 997), 1, 251)(1:250000), 500, 500);
b = reshape(repmat(linspace(1, 0, 991), 1, 253)(1:250000), 500, 500);
for i = 1:20
  c = a * b;
end
