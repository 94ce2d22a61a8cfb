/* Branch-heavy loop: switch and if/else chains. */
#include <stdio.h>

int main(void)
{
    long a = 0, b = 0, c = 0, d = 0;
    for (long i = 1; i <= 2000000; ++i) {
        long k = i % 10;
        switch (k) {
        case 0: a += 1; break;
        case 1: case 2: b += k; break;
        case 3: case 4: case 5: c += 2; break;
        default: d += 1; break;
        }
        if (i % 3 == 0)
            a += 2;
        else if (i % 3 == 1)
            b -= 1;
        else
            c += 1;
    }
    printf("checksum %ld\n", a + 3 * b + 5 * c + 7 * d);
    return 0;
}
