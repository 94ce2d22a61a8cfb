/* Array sort: recursive quicksort of pseudo-random integers. */
#include <stdio.h>
#include <stdlib.h>

static long* data;

static void quicksort(long low, long high)
{
    long i = low, j = high, pivot = data[(low + high) / 2];
    while (i <= j) {
        while (data[i] < pivot)
            ++i;
        while (data[j] > pivot)
            --j;
        if (i <= j) {
            long t = data[i];
            data[i] = data[j];
            data[j] = t;
            ++i;
            --j;
        }
    }
    if (low < j)
        quicksort(low, j);
    if (i < high)
        quicksort(i, high);
}

int main(void)
{
    const long n = 200000;
    data = malloc(sizeof(long) * (size_t)n);
    long x = 42;
    for (long i = 0; i < n; ++i) {
        x = (x * 1366 + 150889) % 714025;
        data[i] = x;
    }
    quicksort(0, n - 1);
    long s = 0;
    for (long i = 0; i < n; ++i)
        s = (s * 31 + data[i]) % 1000003;
    printf("checksum %ld\n", s);
    free(data);
    return 0;
}
