-- Typed loops: integer and floating-point arithmetic on locals.
local s, t, d, e = 0, 0, 0.0, 0.0
for i = 1, 3000000 do
    s = (s + i * 7) % 1000003
    t = t + (i & 255) - 100
    d = d + (i % 7) * 0.5
    e = e * 0.5 + i
end
print(string.format("checksum %d", s + t + math.floor(d) + math.floor(e) % 1000))
