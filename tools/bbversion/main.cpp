// Prints the engine library's version string and where it was loaded from.
#include <windows.h>
#include <cstdio>

int main(int argc, char** argv)
{
    const char* path = argc > 1 ? argv[1] : "brannoc.dll";
    HMODULE library = LoadLibraryA(path);
    if (!library) {
        std::fprintf(stderr, "bbversion: cannot load %s (error %lu)\n", path, GetLastError());
        return 1;
    }
    char version[64] = "0.0.00";
    LoadStringA(library, 0, version, sizeof version);
    char file[MAX_PATH] = "";
    GetModuleFileNameA(library, file, sizeof file);
    std::printf("Brannoc Basic %s (%s)\n", version, file);
    FreeLibrary(library);
    return 0;
}
