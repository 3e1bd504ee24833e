part = 1;
part = part + ...
 1;
nothing(part)
