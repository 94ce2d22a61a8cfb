#pragma once
// A PostScript printer installed in the Wine prefix for the length of a test, without any print
// system of the machine: the prefix's PostScript driver with a small PPD file, a port whose jobs the
// spooler copies into a file, and the printer made the default. Removed again when destroyed.
#include <string>

namespace brannoc::test {

class TestPrinter final {
public:
    TestPrinter();
    ~TestPrinter();
    TestPrinter(const TestPrinter&) = delete;
    TestPrinter& operator=(const TestPrinter&) = delete;

    bool Installed() const { return m_installed; }
    // What failed when the printer could not be installed.
    const std::string& Problem() const { return m_problem; }
    const std::string& Name() const { return m_name; }
    // The output of the jobs printed so far (PostScript), empty when none arrived.
    std::string Output() const;

    // Whether the prefix has a default printer at all (PrintDlg's default lookup succeeds).
    static bool DefaultPrinterExists();

private:
    bool Install();
    void Remove();

    std::string m_name = "Brannoc Test Printer";
    std::string m_port = "BRANNOCTEST:";
    std::string m_outputPath; // Windows path of the file the port writes
    std::string m_ppdPath;
    std::string m_problem;
    bool m_installed = false;
};

} // namespace brannoc::test
