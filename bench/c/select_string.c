/* Select Case and If chains over a string taken from an array. */
#include <stdio.h>
#include <string.h>

int main(void)
{
    const char* names[5] = {"alpha", "beta", "gamma", "delta", "epsilon"};
    long a = 0, b = 0, c = 0, d = 0;
    for (long i = 1; i <= 1000000; ++i) {
        const char* s = names[i % 5];
        if (strcmp(s, "alpha") == 0)
            a += 1;
        else if (strcmp(s, "beta") == 0 || strcmp(s, "gamma") == 0)
            b += i % 7;
        else
            c += 1;
        if (strcmp(s, "delta") == 0)
            d += 3;
        else if (strcmp(s, "c") < 0)
            d += 1;
    }
    printf("checksum %ld\n", a + 3 * b + 5 * c + 7 * d);
    return 0;
}
