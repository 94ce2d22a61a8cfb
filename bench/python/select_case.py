# Branch-heavy loop: an if/elif chain in place of a case statement.


def main():
    a = b = c = d = 0
    for i in range(1, 2000001):
        k = i % 10
        if k == 0:
            a += 1
        elif k == 1 or k == 2:
            b += k
        elif 3 <= k <= 5:
            c += 2
        else:
            d += 1
        if i % 3 == 0:
            a += 2
        elif i % 3 == 1:
            b -= 1
        else:
            c += 1
    print("checksum %d" % (a + 3 * b + 5 * c + 7 * d))


main()
