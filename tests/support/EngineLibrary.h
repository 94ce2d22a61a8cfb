#pragma once
// Loads the engine DLL from the build's bin folder and reads its export and import tables.
#include <windows.h>
#include <string>
#include <vector>

namespace brannoc::test {

class EngineLibrary final {
public:
    EngineLibrary();
    ~EngineLibrary();
    EngineLibrary(const EngineLibrary&) = delete;
    EngineLibrary& operator=(const EngineLibrary&) = delete;

    bool Loaded() const { return m_module != nullptr; }
    HMODULE Module() const { return m_module; }
    const std::wstring& Path() const { return m_path; }
    FARPROC Proc(const char* name) const;

    std::vector<std::string> ExportNames() const;
    // Upper-case names of the libraries the DLL imports.
    std::vector<std::string> ImportedLibraries() const;

    template <typename Function>
    Function As(const char* name) const { return reinterpret_cast<Function>(Proc(name)); }

private:
    HMODULE m_module = nullptr;
    std::wstring m_path;
};

} // namespace brannoc::test
