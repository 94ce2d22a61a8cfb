-- Array sieve.
local n = 600000
local total = 0
for pass = 1, 2 do
    local composite = {}
    for i = 0, n do composite[i] = false end
    local count = 0
    for i = 2, n do
        if not composite[i] then
            count = count + 1
            for j = i + i, n, i do composite[j] = true end
        end
    end
    total = total + count
end
print(string.format("checksum %d", total))
