-- Branch-heavy loop (Lua has no case statement: an if chain).
local a, b, c, d = 0, 0, 0, 0
for i = 1, 2000000 do
    local k = i % 10
    if k == 0 then
        a = a + 1
    elseif k == 1 or k == 2 then
        b = b + k
    elseif k >= 3 and k <= 5 then
        c = c + 2
    else
        d = d + 1
    end
    if i % 3 == 0 then
        a = a + 2
    elseif i % 3 == 1 then
        b = b - 1
    else
        c = c + 1
    end
end
print(string.format("checksum %d", a + 3 * b + 5 * c + 7 * d))
