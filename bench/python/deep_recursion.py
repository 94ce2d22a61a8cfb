# Deep recursion: a function that calls itself 5000 levels deep, 400 times over.
import sys

sys.setrecursionlimit(20000)


def depth(n):
    if n == 0:
        return 0
    return depth(n - 1) + n % 3


def main():
    total = 0
    for r in range(1, 401):
        total += depth(5000 - r)
    print("checksum %d" % total)


main()
