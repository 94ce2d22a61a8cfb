/* String copies: a string from an array and from a record field into a variable and into another
   record, each copied into its own buffer and then compared or measured. */
#include <stdio.h>
#include <string.h>

struct Person {
    char name[16];
    char city[16];
    long age;
};

int main(void)
{
    const char* names[5] = {"alpha", "beta", "gamma", "delta", "epsilon"};
    const char* cities[5] = {"Oslo", "Lima", "Quito", "Bern", "Accra"};
    struct Person people[5];
    char s[16], t[16];
    long total = 0;
    for (int i = 0; i < 5; ++i) {
        strcpy(people[i].name, names[i]);
        strcpy(people[i].city, cities[i]);
        people[i].age = 20 + i;
    }
    for (long i = 1; i <= 1000000; ++i) {
        long k = i % 5;
        strcpy(s, names[k]);
        strcpy(t, people[k].city);
        strcpy(people[(k + 1) % 5].name, s);
        if (strcmp(s, "beta") == 0)
            total += people[k].age;
        total += (long)strlen(t) + (long)strlen(people[k].name);
    }
    printf("checksum %ld\n", total);
    return 0;
}
