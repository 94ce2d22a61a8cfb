// Every golden script that is one plain module runs twice more here, with the direct forms on and off:
// the output, the compile errors and the run-time errors must be the same. The golden files pin what
// the language does; this pins that the direct forms never change it, over every program they hold.
#include "code/FastExpression.h"

#include "ProgramRunner.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#ifndef BRANNOC_GOLDEN_DIR
#error "BRANNOC_GOLDEN_DIR must name the folder of the golden scripts"
#endif

namespace brannoc {
namespace {

using testing::ProgramResult;
using testing::RunProgram;

// Words whose scripts depend on more than their text: the clock, the start's command text, other modules,
// windows that wait for a user.
bool DependsOnTheOutside(const std::string& text)
{
    static const char* const kWords[] = {"now",     "timer",   "time",   "date",   "randomize", "command",
                                         "#uses",   "msgbox",  "inputbox", "version", "shell",   "environ"};
    std::string lower(text.size(), ' ');
    for (std::size_t i = 0; i < text.size(); ++i)
        lower[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    auto isWordCharacter = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    for (const char* word : kWords) {
        const std::string w(word);
        for (std::size_t at = lower.find(w); at != std::string::npos; at = lower.find(w, at + 1)) {
            const bool startsWord = at == 0 || !isWordCharacter(lower[at - 1]) || w[0] == '#';
            const bool endsWord = at + w.size() >= lower.size() || !isWordCharacter(lower[at + w.size()]);
            if (startsWord && endsWord)
                return true;
        }
    }
    return false;
}

// The file's text with its line ends as CR LF, as the command-line host reads it.
std::string ReadScript(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    std::string text;
    for (const char c : buffer.str()) {
        if (c == '\n' && (text.empty() || text.back() != '\r'))
            text += '\r';
        text += c;
    }
    return text;
}

ProgramResult RunWithDirectForms(const std::string& text, bool on)
{
    const bool previous = SetDirectFormsEnabled(on);
    ProgramResult result = RunProgram(text, {}, 50000000);
    SetDirectFormsEnabled(previous);
    return result;
}

TEST(DirectForms, GoldenScriptsRunTheSameWithoutThem)
{
    int compared = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(BRANNOC_GOLDEN_DIR)) {
        if (entry.path().extension() != ".bas")
            continue;
        const std::string text = ReadScript(entry.path());
        if (DependsOnTheOutside(text))
            continue;
        SCOPED_TRACE(entry.path().string());
        const ProgramResult direct = RunWithDirectForms(text, true);
        const ProgramResult general = RunWithDirectForms(text, false);
        EXPECT_EQ(direct.parse, general.parse);
        ASSERT_EQ(direct.compileErrors.size(), general.compileErrors.size());
        for (std::size_t i = 0; i < direct.compileErrors.size(); ++i)
            EXPECT_EQ(direct.compileErrors[i].number, general.compileErrors[i].number);
        EXPECT_EQ(direct.finished, general.finished);
        EXPECT_EQ(direct.output, general.output);
        ASSERT_EQ(direct.runErrors.size(), general.runErrors.size());
        for (std::size_t i = 0; i < direct.runErrors.size(); ++i) {
            EXPECT_EQ(direct.runErrors[i].number, general.runErrors[i].number);
            EXPECT_EQ(direct.runErrors[i].description, general.runErrors[i].description);
        }
        ++compared;
    }
    // Most golden scripts are plain modules: a folder that could not be read would compare none.
    EXPECT_GT(compared, 100);
}

} // namespace
} // namespace brannoc
