# Select Case and If chains over a string taken from a list.


def main():
    names = ["alpha", "beta", "gamma", "delta", "epsilon"]
    a = b = c = d = 0
    for i in range(1, 1000001):
        s = names[i % 5]
        if s == "alpha":
            a += 1
        elif s == "beta" or s == "gamma":
            b += i % 7
        else:
            c += 1
        if s == "delta":
            d += 3
        elif s < "c":
            d += 1
    print("checksum %d" % (a + 3 * b + 5 * c + 7 * d))


main()
