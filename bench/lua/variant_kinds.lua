-- Dynamically typed arithmetic (integers and floats) with //, %, * and /.
local total = 0
local n = 1
for i = 1, 2000000 do
    if i % 50000 == 1 then n = 1 end
    n = n + 3
    local q = n // 7
    local r = n % 11
    local big = n * 100000
    local half = n / 4
    total = total + q - r + big / 100000 + half
end
print(string.format("checksum %d", math.floor(total)))
