// Module properties in the hidden header: the instancing written for each choice and read back,
// VB_Name through the frame messages, and the Name field's identifier cleaning.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/ModuleAttributes.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

const std::string kClassHeader =
    "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_PredeclaredId = False\r\n"
    "Attribute VB_Creatable = True\r\nAttribute VB_Exposed = False\r\nAttribute VB_GlobalNameSpace = False\r\n"
    "Attribute VB_Name = \"Queue\"\r\n";

TEST(ModuleAttributes, EachInstancingWritesItsAttributesAndReadsBack)
{
    struct Row { int instancing; const char* multiUse; const char* creatable; const char* exposed; const char* global; };
    const Row rows[] = {
        {1, "-1 'True", "True", "False", "False"}, {2, "-1 'True", "False", "True", "False"},
        {3, "0 'False", "True", "True", "False"}, {4, "0 'False", "True", "True", "True"},
        {5, "-1 'True", "True", "True", "False"}, {6, "-1 'True", "True", "True", "True"},
    };
    for (const Row& row : rows) {
        std::string header = kClassHeader;
        EXPECT_EQ(0, WriteInstancing(header, row.instancing));
        std::string expected = std::string("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = ") + row.multiUse +
                               "\r\nEND\r\nAttribute VB_PredeclaredId = False\r\nAttribute VB_Creatable = " + row.creatable +
                               "\r\nAttribute VB_Exposed = " + row.exposed + "\r\nAttribute VB_GlobalNameSpace = " +
                               row.global + "\r\nAttribute VB_Name = \"Queue\"\r\n";
        EXPECT_EQ(expected, header) << "instancing " << row.instancing;
        EXPECT_EQ(row.instancing, ReadInstancing(header)) << "instancing " << row.instancing;
    }
    // Missing attributes: VB_Creatable counts as True, the others as False; writing appends them.
    std::string bare = "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = 0 'False\r\nEND\r\nAttribute VB_Name = \"Q\"\r\n";
    EXPECT_EQ(1, ReadInstancing(bare));
    EXPECT_EQ(3, WriteInstancing(bare, 6));
    EXPECT_EQ(6, ReadInstancing(bare));
    EXPECT_NE(std::string::npos, bare.find("Attribute VB_GlobalNameSpace = True\r\n"));
}

TEST(ModuleAttributes, AttributesWrittenInAnotherCaseAreRewrittenInPlace)
{
    std::string header = "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\n"
                         "attribute vb_creatable = False\r\nATTRIBUTE VB_EXPOSED=False\r\n"
                         "Attribute  VB_GlobalNameSpace = True\r\nAttribute VB_Name = \"Q\"\r\n";
    EXPECT_EQ(0, WriteInstancing(header, 3));
    EXPECT_EQ("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = 0 'False\r\nEND\r\n"
              "attribute vb_creatable = True\r\nATTRIBUTE VB_EXPOSED = True\r\n"
              "Attribute  VB_GlobalNameSpace = False\r\nAttribute VB_Name = \"Q\"\r\n",
              header);
    EXPECT_EQ(3, ReadInstancing(header));
}

TEST(ModuleAttributes, NameFieldKeepsOnlyIdentifierCharacters)
{
    int caret = 1;
    EXPECT_EQ("", CleanIdentifier("7", caret)) << "a digit as the first character is removed";
    EXPECT_EQ(0, caret);
    caret = 6;
    EXPECT_EQ("Ab_9c", CleanIdentifier("_Ab-_9c", caret));
    EXPECT_EQ(4, caret) << "the caret stays at the same place in the text";
}

class ModuleProperties : public EditorFrameFixture {};

TEST_F(ModuleProperties, VbNameIsReadAndWrittenThroughTheFrame)
{
    Create();
    Command(CMD_NEW_CLASS);
    EXPECT_EQ("Class1", Get(FM_GETVBNAME));
    EXPECT_EQ(0, SendText(FM_SETVBNAME, "Queue"));
    EXPECT_EQ("Queue", Get(FM_GETVBNAME));
    EXPECT_NE(std::string::npos, Get(FM_GETWHOLETEXT).find("Attribute VB_Name = \"Queue\"\r\n"));
    EXPECT_NE(std::string::npos, Caption().find(" * (class)")) << "the sheet is modified";
    Command(CMD_NEW);
    EXPECT_EQ(1, SendText(FM_SETVBNAME, "Macro")) << "a macro has no VB_Name";
}

} // namespace
