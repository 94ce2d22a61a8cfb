#include "support/TestPrinter.h"

#include <windows.h>
#include <commdlg.h>
#include <winspool.h>

namespace brannoc::test {

namespace {

// Wine's spooler copies the jobs of a port to the Unix path this key gives for the port's name.
constexpr char kPortMappingKey[] = "Software\\Wine\\Printing\\Spooler";
constexpr char kDriverName[] = "Brannoc Test PostScript";

constexpr char kPpdText[] =
    "*PPD-Adobe: \"4.3\"\n"
    "*FormatVersion: \"4.3\"\n"
    "*FileVersion: \"1.0\"\n"
    "*LanguageVersion: English\n"
    "*LanguageEncoding: ISOLatin1\n"
    "*PCFileName: \"BRANNOC.PPD\"\n"
    "*Manufacturer: \"Brannoc\"\n"
    "*Product: \"(Brannoc Test Printer)\"\n"
    "*ModelName: \"Brannoc Test Printer\"\n"
    "*NickName: \"Brannoc Test Printer\"\n"
    "*PSVersion: \"(3010.000) 0\"\n"
    "*LanguageLevel: \"3\"\n"
    "*ColorDevice: False\n"
    "*DefaultColorSpace: Gray\n"
    "*TTRasterizer: Type42\n"
    "*DefaultResolution: 300dpi\n"
    "*OpenUI *PageSize: PickOne\n"
    "*DefaultPageSize: Letter\n"
    "*PageSize Letter/US Letter: \"<</PageSize[612 792]>>setpagedevice\"\n"
    "*CloseUI: *PageSize\n"
    "*OpenUI *PageRegion: PickOne\n"
    "*DefaultPageRegion: Letter\n"
    "*PageRegion Letter/US Letter: \"<</PageSize[612 792]>>setpagedevice\"\n"
    "*CloseUI: *PageRegion\n"
    "*DefaultImageableArea: Letter\n"
    "*ImageableArea Letter/US Letter: \"18 36 594 756\"\n"
    "*DefaultPaperDimension: Letter\n"
    "*PaperDimension Letter/US Letter: \"612 792\"\n"
    "*DefaultFont: Courier\n"
    "*Font Courier: Standard \"(002.004S)\" Standard ROM\n";

std::string TempFolder()
{
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    return folder;
}

bool WriteText(const std::string& path, const std::string& text)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    BOOL ok = WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
    return ok && written == text.size();
}

// The Unix path of a Windows path, through Wine's own conversion.
std::string UnixPath(const std::string& path)
{
    using Convert = char*(CDECL*)(const WCHAR*);
    // GetProcAddress answers a generic function pointer; the void* step states the conversion.
    void* address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name"));
    auto convert = reinterpret_cast<Convert>(address);
    if (!convert)
        return {};
    std::wstring wide(path.begin(), path.end());
    char* unixPath = convert(wide.c_str());
    if (!unixPath)
        return {};
    std::string result = unixPath;
    HeapFree(GetProcessHeap(), 0, unixPath);
    return result;
}

std::string ErrorText(const char* what)
{
    return std::string(what) + " failed with error " + std::to_string(GetLastError());
}

} // namespace

TestPrinter::TestPrinter()
{
    Remove(); // a printer left over by an interrupted run
    m_installed = Install();
    if (!m_installed)
        Remove();
}

TestPrinter::~TestPrinter()
{
    Remove();
}

bool TestPrinter::Install()
{
    std::string folder = TempFolder();
    m_ppdPath = folder + "brannoc-test-printer.ppd";
    m_outputPath = folder + "brannoc-test-printer-" + std::to_string(GetCurrentProcessId()) + ".ps";
    DeleteFileA(m_outputPath.c_str());
    if (!WriteText(m_ppdPath, kPpdText))
        return m_problem = ErrorText("writing the PPD file"), false;

    std::string unixOutput = UnixPath(m_outputPath);
    if (unixOutput.empty())
        return m_problem = "no Unix path for the output file", false;
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kPortMappingKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return m_problem = "the port mapping key cannot be created", false;
    RegSetValueExA(key, m_port.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(unixOutput.c_str()),
                   static_cast<DWORD>(unixOutput.size() + 1));
    RegCloseKey(key);

    char system[MAX_PATH] = {};
    GetSystemDirectoryA(system, MAX_PATH);
    std::string driverFile = std::string(system) + "\\wineps.drv"; // copied from there into the driver folder
    DRIVER_INFO_3A driver{};
    driver.cVersion = 3;
    driver.pName = const_cast<char*>(kDriverName);
    driver.pEnvironment = const_cast<char*>("Windows NT x86");
    driver.pDriverPath = driverFile.data();
    driver.pDataFile = m_ppdPath.data();
    driver.pConfigFile = driverFile.data();
    driver.pDefaultDataType = const_cast<char*>("RAW");
    if (!AddPrinterDriverExA(nullptr, 3, reinterpret_cast<BYTE*>(&driver), APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) &&
        GetLastError() != ERROR_PRINTER_DRIVER_ALREADY_INSTALLED)
        return m_problem = ErrorText("AddPrinterDriverEx"), false;

    PRINTER_INFO_2A info{};
    info.pPrinterName = m_name.data();
    info.pPortName = m_port.data();
    info.pDriverName = const_cast<char*>(kDriverName);
    info.pPrintProcessor = const_cast<char*>("WinPrint");
    info.pDatatype = const_cast<char*>("RAW");
    info.Attributes = PRINTER_ATTRIBUTE_LOCAL;
    HANDLE printer = AddPrinterA(nullptr, 2, reinterpret_cast<BYTE*>(&info));
    if (!printer)
        return m_problem = ErrorText("AddPrinter"), false;
    ClosePrinter(printer);
    if (!SetDefaultPrinterA(m_name.c_str()))
        return m_problem = ErrorText("SetDefaultPrinter"), false;
    return true;
}

void TestPrinter::Remove()
{
    HANDLE printer = nullptr;
    PRINTER_DEFAULTSA access{nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (OpenPrinterA(m_name.data(), &printer, &access)) {
        DeletePrinter(printer);
        ClosePrinter(printer);
    }
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kPortMappingKey, 0, KEY_SET_VALUE, &key) == ERROR_SUCCESS) {
        RegDeleteValueA(key, m_port.c_str());
        RegCloseKey(key);
    }
    if (!m_outputPath.empty())
        DeleteFileA(m_outputPath.c_str());
}

std::string TestPrinter::Output() const
{
    HANDLE file = CreateFileA(m_outputPath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    bytes.resize(read);
    return bytes;
}

bool TestPrinter::DefaultPrinterExists()
{
    PRINTDLGA probe{};
    probe.lStructSize = sizeof(probe);
    probe.Flags = PD_RETURNDEFAULT;
    if (!PrintDlgA(&probe))
        return false;
    GlobalFree(probe.hDevMode);
    GlobalFree(probe.hDevNames);
    return true;
}

} // namespace brannoc::test
