/* A library that macros call through Declare in the tests: its file name ends in ".DLL" after a name
   with a dot, so it is found only on the second try; one entry is exported by ordinal alone, one has
   an ANSI and a wide form, one only a wide form. */
#include <windows.h>

typedef struct {
    LONG first;
    SHORT second;
    double third;
} Triple;

LONG __stdcall AddNumbers(LONG a, LONG b) { return a + b; }

LONG __stdcall Seven(void) { return 7; }

double __stdcall Half(double value) { return value / 2; }

float __stdcall Third(float value) { return value / 3; }

/* Counts characters: the ANSI form answers the count, the wide form the count plus 1000, so that a
   test sees which one was bound. */
LONG __stdcall MeasureA(const char* text) { return lstrlenA(text); }
LONG __stdcall MeasureW(const WCHAR* text) { return 1000 + lstrlenW(text); }

LONG __stdcall WideOnly(const WCHAR* text) { return lstrlenW(text); }

void __stdcall FillTriple(Triple* triple)
{
    triple->first = 123456;
    triple->second = -5;
    triple->third = 2.5;
}

void __stdcall Twice(LONG* value, double* real)
{
    *value *= 2;
    *real *= 2;
}

/* Writes "done" into the text it is given (at least five bytes). */
void __stdcall WriteDone(char* text) { lstrcpyA(text, "done"); }

/* Upper-cases the text a by-reference String parameter points at. */
void __stdcall Shout(char** text)
{
    for (char* c = *text; c && *c; ++c) {
        if (*c >= 'a' && *c <= 'z')
            *c = (char)(*c - 'a' + 'A');
    }
}

/* A Currency of 12345.6789: its 64-bit count of ten-thousandths. */
LONGLONG __stdcall Money(void) { return 123456789; }
