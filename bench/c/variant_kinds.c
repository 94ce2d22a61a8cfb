/* The same arithmetic in fixed types: whole numbers in 64 bits, the divisions in double. */
#include <math.h>
#include <stdio.h>

int main(void)
{
    double total = 0;
    long long n = 1;
    for (long i = 1; i <= 2000000; ++i) {
        if (i % 50000 == 1)
            n = 1;
        n = n + 3;
        long long q = n / 7;
        long long r = n % 11;
        long long big = n * 100000;
        double half = (double)n / 4;
        total = total + (double)q - (double)r + (double)big / 100000 + half;
    }
    printf("checksum %.0f\n", floor(total));
    return 0;
}
