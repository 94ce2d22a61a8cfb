-- Method calls on an object in a loop.
local Accumulator = {}
Accumulator.__index = Accumulator
function Accumulator.new()
    return setmetatable({total = 0, count = 0}, Accumulator)
end
function Accumulator:add(value)
    self.total = (self.total + value) % 1000003
    self.count = self.count + 1
end
function Accumulator:getTotal() return self.total end
function Accumulator:getCount() return self.count end
local acc = Accumulator.new()
for i = 1, 1500000 do acc:add(i) end
print(string.format("checksum %d", acc:getTotal() + acc:getCount()))
