// Build tool: writes the engine's type library file, which the resource compiler then embeds.
#include "EngineTypes.h"
#include "../../include/brannoc.h"
#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: mktypelib OUTPUT.tlb\n");
        return 2;
    }
    // Under Wine the Linux path arrives as is: ask Wine for its Windows form.
    std::wstring path(argv[1], argv[1] + std::char_traits<char>::length(argv[1]));
    if (!path.empty() && path[0] == L'/')
        path = L"Z:" + path;
    for (wchar_t& c : path)
        if (c == L'/')
            c = L'\\';
    CoInitialize(nullptr);
    int status = 0;
    {
        mktypelib::TypeLibraryWriter writer;
        bool ok = writer.Create(path.c_str(), LIBID_BrannocBasicCodeUnitLib, L"BrannocBasicCodeUnitLib",
                                L"Brannoc Basic CodeUnit", 1, 1, 0x409) &&
                  mktypelib::WriteEngineTypes(writer) && writer.Save();
        if (!ok) {
            std::fprintf(stderr, "mktypelib: %ls\n", writer.LastError().c_str());
            status = 1;
        }
    }
    CoUninitialize();
    return status;
}
