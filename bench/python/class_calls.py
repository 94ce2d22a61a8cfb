# Method calls on an object in a loop.


class Accumulator:
    def __init__(self):
        self.total = 0
        self.count = 0

    def add(self, value):
        self.total = (self.total + value) % 1000003
        self.count += 1

    def get_total(self):
        return self.total

    def get_count(self):
        return self.count


def main():
    acc = Accumulator()
    for i in range(1, 1500001):
        acc.add(i)
    print("checksum %d" % (acc.get_total() + acc.get_count()))


main()
