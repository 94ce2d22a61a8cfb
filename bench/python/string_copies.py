# String copies: a string from a list and from a record field into a variable and into another
# record, each then compared or measured.


class Person:
    __slots__ = ("name", "city", "age")

    def __init__(self, name, city, age):
        self.name, self.city, self.age = name, city, age


def main():
    names = ["alpha", "beta", "gamma", "delta", "epsilon"]
    cities = ["Oslo", "Lima", "Quito", "Bern", "Accra"]
    people = [Person(names[i], cities[i], 20 + i) for i in range(5)]
    total = 0
    for i in range(1, 1000001):
        k = i % 5
        s = names[k]
        t = people[k].city
        people[(k + 1) % 5].name = s
        if s == "beta":
            total += people[k].age
        total += len(t) + len(people[k].name)
    print("checksum %d" % total)


main()
