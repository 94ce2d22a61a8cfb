// Built-ins of the file system: Dir, CurDir, FileLen, FileDateTime, GetAttr and the instructions Kill,
// MkDir, RmDir, ChDir, ChDrive, FileCopy and SetAttr.
#include "library/BuiltinGroups.h"

#include "exec/Activation.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "frontend/Module.h"
#include "host/AnsiText.h"
#include "library/BuiltinArguments.h"
#include "library/DirectorySearch.h"
#include "library/StreamTable.h"
#include "values/ValueError.h"

#include <windows.h>

#include <string>

namespace brannoc {

namespace {

constexpr DWORD kVolumeAttribute = 8;

bool TextArgument(BuiltinArguments& arguments, int index, std::wstring& text)
{
    std::wstring_view view;
    if (!arguments.String(index, view))
        return false;
    text.assign(view);
    return true;
}

// The one directory search of the running engine; a host that keeps none gets one per thread.
DirectorySearch& Search()
{
    Interpreter* interpreter = Interpreter::Current();
    if (DirectorySearch* search = interpreter ? interpreter->Host().DirectoryListing() : nullptr)
        return *search;
    thread_local DirectorySearch search;
    return search;
}

bool Listed(const WIN32_FIND_DATAW& entry, DWORD mask)
{
    const DWORD kinds = entry.dwFileAttributes & 0x1F;
    return kinds == 0 || (kinds & mask) != 0;
}

bool Dir(BuiltinArguments& arguments, BuiltinResult& result)
{
    DirectorySearch& search = Search();
    WIN32_FIND_DATAW entry;
    if (arguments.IsGiven(0)) {
        std::wstring pattern;
        SHORT mask = 0;
        if (!TextArgument(arguments, 0, pattern) || (arguments.IsGiven(1) && !arguments.Integer(1, mask)))
            return false;
        search.Close();
        search.mask = static_cast<DWORD>(mask) & 0xFFFF;
        if (search.mask & kVolumeAttribute) {
            std::wstring root = pattern.size() >= 2 && pattern[1] == L':' ? pattern.substr(0, 2) + L"\\" : L"";
            wchar_t label[MAX_PATH + 1] = L"";
            if (!GetVolumeInformationW(root.empty() ? nullptr : root.c_str(), label, MAX_PATH + 1, nullptr, nullptr,
                                       nullptr, nullptr, 0))
                label[0] = L'\0';
            return result.SetString(label);
        }
        if (!pattern.empty() && pattern.back() == L'\\')
            pattern += L"*.*";
        search.handle = FindFirstFileW(pattern.c_str(), &entry);
        if (search.handle == INVALID_HANDLE_VALUE)
            return result.SetString(L"");
    } else {
        if (search.handle == INVALID_HANDLE_VALUE)
            return result.SetString(L"");
        if (!FindNextFileW(search.handle, &entry)) {
            search.Close();
            return result.SetString(L"");
        }
    }
    while (!Listed(entry, search.mask)) {
        if (!FindNextFileW(search.handle, &entry)) {
            search.Close();
            return result.SetString(L"");
        }
    }
    return result.SetString(entry.cFileName);
}

bool CurDir(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring drive;
    if (arguments.IsGiven(0) && !TextArgument(arguments, 0, drive))
        return false;
    wchar_t path[MAX_PATH + 1];
    DWORD length = 0;
    if (drive.empty()) {
        length = GetCurrentDirectoryW(MAX_PATH + 1, path);
    } else {
        wchar_t letter = drive[0];
        if (letter >= L'a' && letter <= L'z')
            letter = static_cast<wchar_t>(letter - L'a' + L'A');
        // The path lookup answers for any letter: a drive the system does not have is no drive.
        if (letter < L'A' || letter > L'Z' || (GetLogicalDrives() & (1u << (letter - L'A'))) == 0)
            return RaiseValueError(kErrorDriveNotFound);
        const wchar_t relative[] = {letter, L':', L'\0'};
        length = GetFullPathNameW(relative, MAX_PATH + 1, path, nullptr);
    }
    if (length == 0 || length > MAX_PATH)
        return RaiseValueError(kErrorDriveNotFound);
    // A folder below the root is given without its closing backslash.
    if (length > 3 && path[length - 1] == L'\\')
        --length;
    return result.SetString(std::wstring_view(path, length));
}

bool Kill(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    return (!name.empty() && DeleteFileW(name.c_str())) || RaiseValueError(kErrorFileNotKilled);
}

bool MkDir(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    return CreateDirectoryW(name.c_str(), nullptr) || RaiseValueError(kErrorDirectoryNotCreated);
}

bool RmDir(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    return RemoveDirectoryW(name.c_str()) || RaiseValueError(kErrorDirectoryNotRemoved);
}

bool ChDir(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    return (!name.empty() && SetCurrentDirectoryW(name.c_str())) || RaiseValueError(kErrorDirectoryNotFound);
}

bool ChDrive(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring drive;
    if (!TextArgument(arguments, 0, drive))
        return false;
    if (drive.empty())
        return true;
    wchar_t letter = drive[0];
    if (letter >= L'a' && letter <= L'z')
        letter = static_cast<wchar_t>(letter - L'a' + L'A');
    if (letter < L'A' || letter > L'Z')
        return RaiseValueError(kErrorDirectoryNotFound);
    const wchar_t root[] = {letter, L':', L'\0'};
    return SetCurrentDirectoryW(root) || RaiseValueError(kErrorDirectoryNotFound);
}

bool FileCopy(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring from;
    std::wstring to;
    if (!TextArgument(arguments, 0, from) || !TextArgument(arguments, 1, to))
        return false;
    HANDLE source = CreateFileW(from.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (source == INVALID_HANDLE_VALUE)
        return RaiseValueError(kErrorSourceNotOpened);
    CloseHandle(source);
    return CopyFileW(from.c_str(), to.c_str(), FALSE) || RaiseValueError(kErrorDestinationNotCreated);
}

bool FindFile(const std::wstring& name, WIN32_FILE_ATTRIBUTE_DATA& data)
{
    return !name.empty() && GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data);
}

bool FileLen(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!FindFile(name, data) || (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return RaiseValueError(kErrorCouldNotOpenFile);
    result.SetLong(static_cast<LONG>(data.nFileSizeLow));
    return true;
}

bool FileDateTime(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    WIN32_FIND_DATAW entry;
    HANDLE found = FindFirstFileW(name.c_str(), &entry);
    if (found == INVALID_HANDLE_VALUE)
        return RaiseValueError(kErrorCouldNotOpenFile);
    FindClose(found);
    FILETIME local;
    SYSTEMTIME time;
    DATE date = 0;
    if (!FileTimeToLocalFileTime(&entry.ftLastWriteTime, &local) || !FileTimeToSystemTime(&local, &time) ||
        !SystemTimeToVariantTime(&time, &date))
        return RaiseValueError(kErrorCouldNotOpenFile);
    result.Target().SetDate(date);
    return true;
}

bool GetAttr(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring name;
    if (!TextArgument(arguments, 0, name))
        return false;
    const DWORD attributes = name.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return RaiseValueError(kErrorCouldNotOpenFile);
    result.SetInteger(static_cast<SHORT>(attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL) & 0x7FFF));
    return true;
}

bool SetAttr(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring name;
    SHORT attributes = 0;
    if (!TextArgument(arguments, 0, name) || !arguments.Integer(1, attributes))
        return false;
    const DWORD current = name.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(name.c_str());
    if (current == INVALID_FILE_ATTRIBUTES)
        return RaiseValueError(kErrorCouldNotOpenFile);
    const DWORD next = (current & ~0xFFu) | (static_cast<DWORD>(attributes) & 0xFFu);
    return SetFileAttributesW(name.c_str(), next ? next : FILE_ATTRIBUTE_NORMAL) ||
           RaiseValueError(kErrorCouldNotOpenFile);
}

// The folder of the running macro's file: the host maps the name "x" relative to the innermost running
// module that has a name, and the result is cut after its last backslash (kept only after a colon).
bool MacroDir(BuiltinArguments&, BuiltinResult& result)
{
    Interpreter* interpreter = Interpreter::Current();
    std::wstring module;
    for (Activation* frame = interpreter ? interpreter->CurrentActivation() : nullptr; frame && module.empty();
         frame = frame->Caller()) {
        if (ModuleInstance* instance = frame->Instance())
            module = WideFromAnsi(instance->OwnModule().Name());
    }
    std::wstring mapped;
    if (module.empty() || !interpreter->Host().MapMacroName(L"x", module, mapped))
        return RaiseValueError(kErrorDirectoryNotFound);
    const std::size_t slash = mapped.rfind(L'\\');
    if (slash == std::wstring::npos)
        return RaiseValueError(kErrorDirectoryNotFound);
    const bool root = slash > 0 && mapped[slash - 1] == L':';
    return result.SetString(std::wstring_view(mapped).substr(0, root ? slash + 1 : slash));
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::MacroDir, ResultKind::kString, "", "", 0, 0, &MacroDir),
    Function(Token::Dir, ResultKind::kString, "$%", "Pattern AttribMask", 0, 0b11, &Dir),
    Function(Token::CurDir, ResultKind::kString, "$", "Drive", 0, 0b1, &CurDir),
    Function(Token::FileLen, ResultKind::kLong, "$", "Name", 0, 0, &FileLen),
    Function(Token::FileDateTime, ResultKind::kDate, "$", "Name", 0, 0, &FileDateTime),
    Function(Token::GetAttr, ResultKind::kInteger, "$", "Name", 0, 0, &GetAttr),
    Instruction(Token::Kill, "$", "Name", 0, &Kill),
    Instruction(Token::MkDir, "$", "Name", 0, &MkDir),
    Instruction(Token::RmDir, "$", "Name", 0, &RmDir),
    Instruction(Token::ChDir, "$", "Dir", 0, &ChDir),
    Instruction(Token::ChDrive, "$", "Drive", 0, &ChDrive),
    Instruction(Token::FileCopy, "$$", "FromName ToName", 0, &FileCopy),
    Instruction(Token::SetAttr, "$%", "Name Attrib", 0, &SetAttr),
};

} // namespace

BuiltinGroup FileSystemFunctions() { return kRecords; }

} // namespace brannoc
