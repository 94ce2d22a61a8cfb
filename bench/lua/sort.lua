-- Array sort: recursive quicksort of pseudo-random integers.
local data = {}
local function quicksort(low, high)
    local i, j = low, high
    local pivot = data[(low + high) // 2]
    while i <= j do
        while data[i] < pivot do i = i + 1 end
        while data[j] > pivot do j = j - 1 end
        if i <= j then
            data[i], data[j] = data[j], data[i]
            i = i + 1
            j = j - 1
        end
    end
    if low < j then quicksort(low, j) end
    if i < high then quicksort(i, high) end
end
local n = 200000
local x = 42
for i = 0, n - 1 do
    x = (x * 1366 + 150889) % 714025
    data[i] = x
end
quicksort(0, n - 1)
local s = 0
for i = 0, n - 1 do s = (s * 31 + data[i]) % 1000003 end
print(string.format("checksum %d", s))
