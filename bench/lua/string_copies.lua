-- String copies: a string from an array and from a record field into a variable and into another
-- record, each then compared or measured.
local names = {[0] = "alpha", "beta", "gamma", "delta", "epsilon"}
local cities = {[0] = "Oslo", "Lima", "Quito", "Bern", "Accra"}
local people = {}
for i = 0, 4 do
    people[i] = {name = names[i], city = cities[i], age = 20 + i}
end
local total = 0
for i = 1, 1000000 do
    local k = i % 5
    local s = names[k]
    local t = people[k].city
    people[(k + 1) % 5].name = s
    if s == "beta" then total = total + people[k].age end
    total = total + #t + #people[k].name
end
print(string.format("checksum %d", total))
