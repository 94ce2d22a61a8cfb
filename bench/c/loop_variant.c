/* Untyped loops: C has no untyped variables; the same typed program. */
#include <math.h>
#include <stdio.h>

int main(void)
{
    long s = 0, t = 0;
    double d = 0, e = 0;
    for (long i = 1; i <= 3000000; ++i) {
        s = (s + i * 7) % 1000003;
        t = t + (i & 255) - 100;
        d = d + (i % 7) * 0.5;
        e = e * 0.5 + i;
    }
    printf("checksum %ld\n", s + t + (long)floor(d) + (long)floor(e) % 1000);
    return 0;
}
