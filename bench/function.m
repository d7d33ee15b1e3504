a = 1.5; b = 2; c = 0.3; d = 4;
f = @(x) (a * x + b) ./ (1 + x .* x) + sin(x) .* exp(-c * x) - x / d;
x = linspace(0, 10, 1000000)';
p = [x, f(x)];
