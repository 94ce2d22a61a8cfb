#include "ide/Sheet.h"

namespace brannoc::ide {

void Sheet::Load(std::string_view wholeText, bool plain)
{
    ModuleLayout layout = ReadModuleLayout(wholeText);
    kind = layout.kind;
    objectType = layout.objectType;
    header = layout.parts.header;
    headerLines = layout.parts.headerLines;
    references = layout.parts.references;
    referenceLines = layout.parts.referenceLines;
    versionOffset = layout.versionOffset;
    multiUseLine = layout.multiUseLine;
    firstAttributeLine = layout.firstAttributeLine;
    if (plain) {
        document.reset();
        plainText = layout.parts.code;
        plainModified = false;
        return;
    }
    if (!document)
        document = std::make_unique<TextDocument>();
    document->LoadModule(wholeText);
}

std::string UntitledName(SheetKind kind, int counter)
{
    return std::string("?") + static_cast<char>('A' + static_cast<int>(kind)) + std::to_string(counter);
}

} // namespace brannoc::ide
