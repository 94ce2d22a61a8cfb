/* String building and searching. */
#include <stdio.h>
#include <string.h>

int main(void)
{
    const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    long total = 0;
    char line[128];
    for (long r = 1; r <= 4000; ++r) {
        size_t length = 0;
        line[0] = 0;
        for (long i = 1; i <= 60; ++i) {
            line[length++] = letters[(r * 7 + i * i) % 26];
            line[length] = 0;
        }
        total += (long)strlen(line);
        for (size_t i = 0; i + 1 < length; ++i)
            if (strncmp(line + i, "HO", 2) == 0)
                total += 7;
        const char* position = strstr(line, "VC");
        while (position) {
            total += (long)(position - line) + 1;
            position = strstr(position + 1, "VC");
        }
    }
    printf("checksum %ld\n", total);
    return 0;
}
