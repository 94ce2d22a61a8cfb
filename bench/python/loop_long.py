# Typed loops: integer and floating-point arithmetic on locals.
import math


def main():
    s = t = 0
    d = e = 0.0
    for i in range(1, 3000001):
        s = (s + i * 7) % 1000003
        t = t + (i & 255) - 100
        d = d + (i % 7) * 0.5
        e = e * 0.5 + i
    print("checksum %d" % (s + t + math.floor(d) + math.floor(e) % 1000))


main()
