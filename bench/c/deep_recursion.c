/* Deep recursion: a function that calls itself 2500 levels deep, 800 times over. */
#include <stdio.h>

static long depth(volatile long n)
{
    if (n == 0)
        return 0;
    return depth(n - 1) + n % 3;
}

int main(void)
{
    long total = 0;
    for (long r = 1; r <= 800; ++r)
        total += depth(2500 - r);
    printf("checksum %ld\n", total);
    return 0;
}
