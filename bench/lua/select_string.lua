-- Select Case and If chains over a string taken from an array.
local names = {[0] = "alpha", "beta", "gamma", "delta", "epsilon"}
local a, b, c, d = 0, 0, 0, 0
for i = 1, 1000000 do
    local s = names[i % 5]
    if s == "alpha" then
        a = a + 1
    elseif s == "beta" or s == "gamma" then
        b = b + i % 7
    else
        c = c + 1
    end
    if s == "delta" then
        d = d + 3
    elseif s < "c" then
        d = d + 1
    end
end
print(string.format("checksum %d", a + 3 * b + 5 * c + 7 * d))
