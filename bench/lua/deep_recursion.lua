-- Deep recursion: a function that calls itself 2500 levels deep, 800 times over.
local function depth(n)
    if n == 0 then
        return 0
    end
    return depth(n - 1) + n % 3
end

local total = 0
for r = 1, 800 do
    total = total + depth(2500 - r)
end
print(string.format("checksum %d", total))
