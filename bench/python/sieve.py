# Array sieve.


def main():
    n = 600000
    total = 0
    for _ in range(2):
        composite = [False] * (n + 1)
        count = 0
        for i in range(2, n + 1):
            if not composite[i]:
                count += 1
                for j in range(i + i, n + 1, i):
                    composite[j] = True
        total += count
    print("checksum %d" % total)


main()
