#pragma once
// The macro being run, kept in a file that the system writes back even when the process dies without a
// word (a native stack overflow leaves no stack for the crash handler; a macro could end the process).
// The file is a mapping of a fixed size: recording a macro is a copy into memory, not a file write, so
// it costs nothing a run of a million macros would notice. A run that ends normally removes the file;
// one found afterwards holds the macro that was running when the process died.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace brannoc {

class Journal final {
public:
    Journal() = default;
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal() { Close(false); }

    // Opens (creating or truncating) the journal file at path; false when it cannot be mapped.
    bool Open(const std::string& path)
    {
        m_path = path;
        m_file = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_file == INVALID_HANDLE_VALUE)
            return false;
        m_mapping = CreateFileMappingA(m_file, nullptr, PAGE_READWRITE, 0, kSize, nullptr);
        m_view = m_mapping ? static_cast<char*>(MapViewOfFile(m_mapping, FILE_MAP_WRITE, 0, 0, kSize)) : nullptr;
        return m_view != nullptr;
    }

    // Records the macro about to run: a comment line with its number, then its text (cut to the file's
    // size), blanks over what the previous macro left.
    void Record(long long number, const std::string& text)
    {
        if (!m_view)
            return;
        char header[96];
        const int headerLength = std::snprintf(header, sizeof header,
                                               "' bbfuzz: macro number %lld was running when the process died\r\n",
                                               number);
        std::size_t used = static_cast<std::size_t>(headerLength);
        std::memcpy(m_view, header, used);
        const std::size_t room = kSize - used;
        const std::size_t length = text.size() < room ? text.size() : room;
        std::memcpy(m_view + used, text.data(), length);
        used += length;
        if (used < m_used)
            std::memset(m_view + used, ' ', m_used - used);
        m_used = used;
    }

    // Closes the journal; with remove, the file goes too (the run ended normally).
    void Close(bool remove)
    {
        if (m_view)
            UnmapViewOfFile(m_view);
        if (m_mapping)
            CloseHandle(m_mapping);
        if (m_file != INVALID_HANDLE_VALUE)
            CloseHandle(m_file);
        m_view = nullptr;
        m_mapping = nullptr;
        m_file = INVALID_HANDLE_VALUE;
        if (remove && !m_path.empty())
            DeleteFileA(m_path.c_str());
    }

private:
    static constexpr DWORD kSize = 1 << 20;
    std::string m_path;
    HANDLE m_file = INVALID_HANDLE_VALUE;
    HANDLE m_mapping = nullptr;
    char* m_view = nullptr;
    std::size_t m_used = 0;
};

} // namespace brannoc
