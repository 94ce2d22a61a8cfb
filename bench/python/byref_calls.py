# Many small calls; by-reference arguments become returned values.


def bump(x, d):
    x = x + d
    if x >= 1000000:
        x = x - 1000000
    return x


def swap(a, b):
    return b, a


def main():
    a, b = 1, 2
    for i in range(1, 1000001):
        a = bump(a, i)
        a, b = swap(a, b)
    print("checksum %d" % (a * 3 + b))


main()
