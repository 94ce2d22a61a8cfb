/* Array sieve. */
#include <stdio.h>
#include <stdlib.h>

int main(void)
{
    const long n = 600000;
    long total = 0;
    for (int pass = 0; pass < 2; ++pass) {
        char* composite = calloc((size_t)n + 1, 1);
        long count = 0;
        for (long i = 2; i <= n; ++i) {
            if (!composite[i]) {
                ++count;
                for (long j = i + i; j <= n; j += i)
                    composite[j] = 1;
            }
        }
        free(composite);
        total += count;
    }
    printf("checksum %ld\n", total);
    return 0;
}
