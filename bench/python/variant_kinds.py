# Dynamically typed arithmetic (integers and floats) with //, %, * and /.
import math


def main():
    total = 0
    n = 1
    for i in range(1, 2000001):
        if i % 50000 == 1:
            n = 1
        n = n + 3
        q = n // 7
        r = n % 11
        big = n * 100000
        half = n / 4
        total = total + q - r + big / 100000 + half
    print("checksum %d" % math.floor(total))


main()
