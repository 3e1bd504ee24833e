% A session of the example host: what it answers stands in session.txt.
x = [1 2; 3 4]'; y = x * x, z = x .* x - 2^-1;
z
x(end, :) = []
x(:, end + 1) = 7
[m, at] = max([3 9 4])
m + at' >= 11 && ~isempty(x)
0 && undefined_function, -2^2, 1:2:6
[1 -2, x; ...
 5 - 6 2 3 4 5]              # one row on two lines
c = {1, 'it''s'
     [1 2 3], {}};
c{2, 1}(end), c{1, 2}
s.a.b(2) = 3; s.a.b
w = 3 + 2.5e1i; w'
a = b = 4;
a == b, pi, pi = 3; pi, clear pi
pi
disp hello
who
whos
clear
who
% Errors: the next line follows.
x = 1
x(3)
[1 2] + [1 2 3]
x = nothing(1)
[p, q, r] = max(x)
1 + * 2
(1 + 2
x = 'open
x($)
1 = 2
end
y(2).f = 5; y.f(, 1
run('no such file')
x, y
% Evaluation through the library, and the host's own function by name.
eval('x + 1')
eval('n = 5');
n
eval('n = ')
feval('max', [1 5 2])
feval('run', 'part.m')
part
name = input('name', 's')
somebody
number = input('number');
[1 2 3]
number
help sin
openvar n
openvar nothing
ls part*
which part
which n
version
exit
disp('not reached')
