// Dividing a module's text into the hidden header, the hidden reference lines and the code shown.
#include "ide/ModuleText.h"

#include <gtest/gtest.h>

namespace brannoc::ide {
namespace {

TEST(ModuleText, ACodeModuleHidesItsUsesAndNameLinesAndTheReferencesAfterThem)
{
    ModuleTextParts parts = SplitModuleText("'#Uses \"util\"\r\n"
                                            "Attribute VB_Name = \"Ledger\"\r\n"
                                            "'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE\r\n"
                                            "'#reference {00000000-0000-0000-0000-000000000001}#1.0#0#x.tlb#X\r\n"
                                            "Sub Main\r\nEnd Sub\r\n");
    EXPECT_EQ(parts.header, "'#Uses \"util\"\r\nAttribute VB_Name = \"Ledger\"\r\n");
    EXPECT_EQ(parts.headerLines, 2);
    EXPECT_EQ(parts.referenceLines, 2) << "compared without regard to case";
    EXPECT_EQ(parts.references.find("'#Reference {0002"), 0u);
    EXPECT_EQ(parts.code, "Sub Main\r\nEnd Sub\r\n");
}

TEST(ModuleText, AClassOrObjectModuleHidesTheVersionBlockObjectAndAttributeLines)
{
    const char header[] = "VERSION 1.0 CLASS\r\n"
                          "BEGIN\r\n"
                          "  MultiUse = -1 'True\r\n"
                          "  Begin Inner\r\n"
                          "    Attribute x = 1\r\n"
                          "  End\r\n"
                          "END\r\n"
                          "Object = \"{1}#1.0#0\"; \"x.ocx\"\r\n"
                          "Attribute VB_Name = \"Account\"\r\n"
                          "Attribute VB_Exposed = False\r\n";
    ModuleTextParts parts = SplitModuleText(std::string(header) + "Option Explicit\r\nDim Balance\r\n");
    EXPECT_EQ(parts.header, header);
    EXPECT_EQ(parts.headerLines, 10);
    EXPECT_EQ(parts.referenceLines, 0);
    EXPECT_EQ(parts.code, "Option Explicit\r\nDim Balance\r\n");

    // A lone CR ends a line while the header is read.
    parts = SplitModuleText("VERSION 1.0 FORM\rAttribute VB_Name = \"F\"\rSub Main\rEnd Sub");
    EXPECT_EQ(parts.headerLines, 2);
    EXPECT_EQ(parts.code, "Sub Main\rEnd Sub");
}

TEST(ModuleText, AMacroHasNoHeaderAndKeepsItsUsesLinesInTheCode)
{
    ModuleTextParts parts = SplitModuleText("'#Uses \"util\"\r\nSub Main\r\nEnd Sub\r\n");
    EXPECT_EQ(parts.header, "");
    EXPECT_EQ(parts.headerLines, 0);
    EXPECT_EQ(parts.code, "'#Uses \"util\"\r\nSub Main\r\nEnd Sub\r\n");

    parts = SplitModuleText("'#Reference {1}#1.0#0#a.tlb#A\r\nSub Main\r\nEnd Sub");
    EXPECT_EQ(parts.referenceLines, 1) << "leading reference lines of a macro are hidden too";
    EXPECT_EQ(parts.code, "Sub Main\r\nEnd Sub");

    parts = SplitModuleText("");
    EXPECT_EQ(parts.code, "");
    EXPECT_EQ(parts.headerLines + parts.referenceLines, 0);
    // "Attributes" is not the word Attribute: a macro.
    EXPECT_EQ(SplitModuleText("Attributes = 1\r\n").headerLines, 0);
}

} // namespace
} // namespace brannoc::ide
