// The text that comes with an extension: its parts, the kind characters and their flags, object
// names, and type-library reference texts.
#include "automation/ExtensionPrefix.h"

#include <gtest/gtest.h>

using namespace brannoc::automation;

TEST(ExtensionPrefixTest, PartsAreSplitOffInOrder)
{
    ExtensionPrefix prefix = SplitPrefix("{WithEvents}<Proj>Mod|App.");
    EXPECT_TRUE(prefix.withEvents);
    EXPECT_EQ("Proj", prefix.project);
    EXPECT_TRUE(prefix.hasModule);
    EXPECT_EQ("Mod", prefix.module);
    EXPECT_EQ("App.", prefix.rest);

    prefix = SplitPrefix("$-KZB.");
    EXPECT_FALSE(prefix.hasModule);
    EXPECT_EQ(static_cast<unsigned>(kExtensionSystem), prefix.flags);
    EXPECT_EQ("-KZB.", prefix.rest);

    // "$" marks a system extension only without a module part.
    prefix = SplitPrefix("Mod|$x");
    EXPECT_EQ(0u, prefix.flags);
    EXPECT_EQ("$x", prefix.rest);

    prefix = SplitPrefix("'#Reference   {00020430-0000-0000-C000-000000000046}#2.0#0#a|b");
    EXPECT_TRUE(prefix.referenceLine);
    EXPECT_FALSE(prefix.hasModule);
    EXPECT_EQ(static_cast<unsigned>(kExtensionFromReferenceLine), prefix.flags);
    EXPECT_EQ("{00020430-0000-0000-C000-000000000046}#2.0#0#a|b", prefix.rest);
}

TEST(ExtensionPrefixTest, KindCharactersGiveTheirFlags)
{
    const struct {
        const char* text;
        unsigned flags;
        const char* rest;
    } cases[] = {{"App", 0x3D, "App"}, {"", 0x3D, ""},     {"*T", 0x2E, "T"},  {"+T", 0x3A, "T"}, {"-T", 0x10, "T"},
                 {".T", 0x18, "T"},    {"=T", 0x39, "T"},  {"~", 0x08, ""},    {"!v", 0x00, "v"},
                 {"{}", 0x62, "{}"}};
    for (const auto& c : cases) {
        ExtensionPrefix prefix = SplitPrefix(c.text);
        ReadKind(prefix);
        EXPECT_EQ(c.flags, prefix.flags) << c.text;
        EXPECT_EQ(c.rest, prefix.rest) << c.text;
        EXPECT_EQ(c.text[0] == '!', prefix.variable) << c.text;
    }
}

TEST(ExtensionPrefixTest, ObjectNames)
{
    ObjectName name = ReadObjectName("App.");
    EXPECT_EQ("App", name.name);
    EXPECT_TRUE(name.onlyThroughName);
    name = ReadObjectName("App");
    EXPECT_EQ("App", name.name);
    EXPECT_FALSE(name.onlyThroughName);
    name = ReadObjectName("Host:Main.");
    EXPECT_EQ("Host", name.name);
    EXPECT_TRUE(name.onlyThroughName);
    name = ReadObjectName(":");
    EXPECT_EQ("", name.name);
}

TEST(ExtensionPrefixTest, LibraryReferenceTexts)
{
    LibraryReference reference;
    ASSERT_TRUE(ParseLibraryReference("{00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation", reference));
    EXPECT_EQ(0x00020430ul, reference.guid.Data1);
    EXPECT_EQ(2, reference.major);
    EXPECT_EQ(0, reference.minor);
    EXPECT_EQ(0ul, reference.locale);
    ASSERT_TRUE(ParseLibraryReference("{00020430-0000-0000-C000-000000000046}#a.1F#409", reference));
    EXPECT_EQ(10, reference.major);
    EXPECT_EQ(0x1F, reference.minor);
    EXPECT_EQ(0x409ul, reference.locale);

    EXPECT_FALSE(ParseLibraryReference("{00020430-0000-0000-C000-000000000046}#2.0#0 stdole2.tlb", reference));
    EXPECT_FALSE(ParseLibraryReference("{00020430-0000-0000-C000-000000000046}#2#0", reference));
    EXPECT_FALSE(ParseLibraryReference("{00020430-0000-0000-C000-000000000046}", reference));
    EXPECT_FALSE(ParseLibraryReference("{nonsense}#1.0#0", reference));
    EXPECT_FALSE(ParseLibraryReference("00020430-0000-0000-C000-000000000046#1.0#0", reference));
}
