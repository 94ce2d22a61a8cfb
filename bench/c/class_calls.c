/* Method calls on an object in a loop: a struct and functions taking it. */
#include <stdio.h>

typedef struct {
    long total;
    long count;
} Accumulator;

static void AccumulatorAdd(Accumulator* self, long value)
{
    self->total = (self->total + value) % 1000003;
    self->count += 1;
}

static long AccumulatorTotal(const Accumulator* self) { return self->total; }
static long AccumulatorCount(const Accumulator* self) { return self->count; }

int main(void)
{
    Accumulator acc = {0, 0};
    for (long i = 1; i <= 1500000; ++i)
        AccumulatorAdd(&acc, i);
    printf("checksum %ld\n", AccumulatorTotal(&acc) + AccumulatorCount(&acc));
    return 0;
}
