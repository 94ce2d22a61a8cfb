-- String building: a list of numbers built with .. and tostring in a loop, then read back with
-- string.sub and string.find and short pieces compared.
local total = 0
for r = 1, 300 do
    local buf = ""
    for i = 1, 400 do
        buf = buf .. tostring((i * r) % 97) .. ","
    end
    total = total + #buf
    local piece = string.sub(buf, -3)
    if piece == "11," then total = total + 100 end
    local position = string.find(buf, ",42,", 1, true) or 0
    total = total + position
    for i = 1, #buf - 1, 3 do
        if string.sub(buf, i, i + 1) == "7," then total = total + 1 end
    end
end
print(string.format("checksum %d", total))
