-- Many small calls; by-reference arguments become returned values.
local function bump(x, d)
    x = x + d
    if x >= 1000000 then x = x - 1000000 end
    return x
end
local function swap(a, b)
    return b, a
end
local a, b = 1, 2
for i = 1, 1000000 do
    a = bump(a, i)
    a, b = swap(a, b)
end
print(string.format("checksum %d", a * 3 + b))
