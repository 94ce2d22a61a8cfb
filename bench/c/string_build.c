/* String building: a list of numbers appended to a growing buffer, then read back and short pieces
   compared. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void)
{
    long total = 0;
    size_t capacity = 16;
    char* buf = malloc(capacity);
    for (long r = 1; r <= 300; ++r) {
        size_t length = 0;
        buf[0] = 0;
        for (long i = 1; i <= 400; ++i) {
            char piece[16];
            int n = snprintf(piece, sizeof piece, "%ld,", (i * r) % 97);
            if (length + (size_t)n + 1 > capacity) {
                capacity *= 2;
                buf = realloc(buf, capacity);
            }
            memcpy(buf + length, piece, (size_t)n + 1);
            length += (size_t)n;
        }
        total += (long)length;
        if (strcmp(buf + length - 3, "11,") == 0)
            total += 100;
        const char* found = strstr(buf, ",42,");
        total += found ? (long)(found - buf) + 1 : 0;
        for (size_t i = 0; i + 1 < length; i += 3)
            if (buf[i] == '7' && buf[i + 1] == ',')
                total += 1;
    }
    free(buf);
    printf("checksum %ld\n", total);
    return 0;
}
