# Deep recursion: a function that calls itself 2500 levels deep, 800 times over.
import sys

sys.setrecursionlimit(20000)


def depth(n):
    if n == 0:
        return 0
    return depth(n - 1) + n % 3


def main():
    total = 0
    for r in range(1, 801):
        total += depth(2500 - r)
    print("checksum %d" % total)


main()
