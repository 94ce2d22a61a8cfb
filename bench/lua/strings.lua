-- String building and searching.
local letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
local total = 0
for r = 1, 4000 do
    local line = ""
    for i = 1, 60 do
        local k = 1 + (r * 7 + i * i) % 26
        line = line .. string.sub(letters, k, k)
    end
    total = total + #line
    for i = 1, #line - 1 do
        if string.sub(line, i, i + 1) == "HO" then total = total + 7 end
    end
    local position = string.find(line, "VC", 1, true)
    while position do
        total = total + position
        position = string.find(line, "VC", position + 1, true)
    end
end
print(string.format("checksum %d", total))
