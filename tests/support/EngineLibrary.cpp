#include "support/EngineLibrary.h"
#include <algorithm>
#include <cctype>

namespace brannoc::test {
namespace {

// The test programs run in the bin folder that also holds the DLL.
std::wstring LibraryPath()
{
    wchar_t buffer[MAX_PATH];
    DWORD length = GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    std::wstring path(buffer, length);
    size_t slash = path.find_last_of(L"\\/");
    return path.substr(0, slash + 1) + L"brannoc.dll";
}

template <typename T>
const T* At(HMODULE module, DWORD rva)
{
    return reinterpret_cast<const T*>(reinterpret_cast<const BYTE*>(module) + rva);
}

const IMAGE_DATA_DIRECTORY& Directory(HMODULE module, int index)
{
    auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(module);
    auto nt = At<IMAGE_NT_HEADERS32>(module, static_cast<DWORD>(dos->e_lfanew));
    return nt->OptionalHeader.DataDirectory[index];
}

} // namespace

EngineLibrary::EngineLibrary() : m_path(LibraryPath())
{
    m_module = LoadLibraryW(m_path.c_str());
}

EngineLibrary::~EngineLibrary()
{
    if (m_module)
        FreeLibrary(m_module);
}

FARPROC EngineLibrary::Proc(const char* name) const
{
    return m_module ? GetProcAddress(m_module, name) : nullptr;
}

std::vector<std::string> EngineLibrary::ExportNames() const
{
    std::vector<std::string> names;
    const IMAGE_DATA_DIRECTORY& entry = Directory(m_module, IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (!entry.VirtualAddress)
        return names;
    auto exports = At<IMAGE_EXPORT_DIRECTORY>(m_module, entry.VirtualAddress);
    auto nameTable = At<DWORD>(m_module, exports->AddressOfNames);
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        names.emplace_back(At<char>(m_module, nameTable[i]));
    return names;
}

std::vector<std::string> EngineLibrary::ImportedLibraries() const
{
    std::vector<std::string> names;
    const IMAGE_DATA_DIRECTORY& entry = Directory(m_module, IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (!entry.VirtualAddress)
        return names;
    for (auto import = At<IMAGE_IMPORT_DESCRIPTOR>(m_module, entry.VirtualAddress); import->Name; ++import) {
        std::string name = At<char>(m_module, import->Name);
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
        names.push_back(name);
    }
    return names;
}

} // namespace brannoc::test
