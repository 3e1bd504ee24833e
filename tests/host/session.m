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
% Variables by name; commands.
clear all
A = 1; B = 'two'; C = [3 4];
save work A B
save -v4 old.mat C*
save text.txt C -ascii
clear A* B
load work
A, B
load text.txt
text
load old
load work B
save work nothing
save work -what
s = load('work');
s.B
exist work.mat
clear B C 9
clear B C
who
cd ..;
exist work.mat
cd -
here = pwd; cd /
pwd
cd(here);
whos nothing
for k = 1:3
  if k, delete work.mat, end
  disp(k(end))
end
disp after;
% Functions without a value.
3 + 4;
disp 'two  words', format long
format
ans
x = disp(3)
[1 format]
y = eval('');
fprintf('%d\n', 5);
[1 2; 3 4]^2
now -1
rand )
exit
disp('not reached')
