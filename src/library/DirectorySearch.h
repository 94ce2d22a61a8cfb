#pragma once
// The directory listing of Dir: the system's find handle of the open search and the attribute mask it
// was started with. An engine keeps one; a new Dir with a pattern closes the one before.
#include <windows.h>

namespace brannoc {

struct DirectorySearch {
    HANDLE handle = INVALID_HANDLE_VALUE;
    DWORD mask = 0;

    DirectorySearch() = default;
    DirectorySearch(const DirectorySearch&) = delete;
    DirectorySearch& operator=(const DirectorySearch&) = delete;
    ~DirectorySearch() { Close(); }

    void Close()
    {
        if (handle != INVALID_HANDLE_VALUE)
            FindClose(handle);
        handle = INVALID_HANDLE_VALUE;
    }
};

} // namespace brannoc
