/* Many small calls with by-reference (pointer) arguments. */
#include <stdio.h>

static void bump(long* x, long d)
{
    *x += d;
    if (*x >= 1000000)
        *x -= 1000000;
}

static void swap(long* a, long* b)
{
    long t = *a;
    *a = *b;
    *b = t;
}

int main(void)
{
    long a = 1, b = 2;
    for (long i = 1; i <= 1000000; ++i) {
        bump(&a, i);
        swap(&a, &b);
    }
    printf("checksum %ld\n", a * 3 + b);
    return 0;
}
