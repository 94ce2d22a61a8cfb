# Array sort: recursive quicksort of pseudo-random integers.
import sys

data = []


def quicksort(low, high):
    i, j = low, high
    pivot = data[(low + high) // 2]
    while i <= j:
        while data[i] < pivot:
            i += 1
        while data[j] > pivot:
            j -= 1
        if i <= j:
            data[i], data[j] = data[j], data[i]
            i += 1
            j -= 1
    if low < j:
        quicksort(low, j)
    if i < high:
        quicksort(i, high)


def main():
    n = 200000
    x = 42
    for _ in range(n):
        x = (x * 1366 + 150889) % 714025
        data.append(x)
    quicksort(0, n - 1)
    s = 0
    for value in data:
        s = (s * 31 + value) % 1000003
    print("checksum %d" % s)


sys.setrecursionlimit(10000)
main()
