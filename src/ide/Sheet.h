#pragma once
// One open macro or module of the editor frame: its name and kind, its hidden header and reference
// lines, and the document the text area edits (or, in plain editing, the text the EDIT control held).
#include "ide/ModuleLayout.h"
#include "ide/TextDocument.h"

#include <memory>
#include <string>

namespace brannoc::ide {

struct Sheet {
    std::string name;          // file path, macro name, or untitled "?" + kind letter + counter
    SheetKind kind = SheetKind::Macro;
    std::string objectType;    // object modules: the type word
    std::string header;
    int headerLines = 0;
    std::string references;
    int referenceLines = 0;
    int versionOffset = -1, multiUseLine = -1, firstAttributeLine = -1;
    std::unique_ptr<TextDocument> document; // null in plain editing
    std::string plainText;     // plain editing: the code while the sheet is not shown
    bool plainModified = false;
    bool running = false;      // started from this sheet and not yet ended
    bool loaded = false;       // taken into the engine, with the break points sent

    bool IsUntitled() const { return name.size() >= 3 && name[0] == '?'; }
    // Takes a whole module text apart into header, references and code.
    void Load(std::string_view wholeText, bool plain);
    // The code as the document (or `plainText`) holds it.
    std::string Code() const { return document ? document->Buffer().Text() : plainText; }
    std::string WholeText() const { return header + references + Code(); }
    int HiddenLines() const { return headerLines + referenceLines; }
};

// The untitled name of the `counter`th new sheet of a kind: "?A1", "?B3".
std::string UntitledName(SheetKind kind, int counter);


} // namespace brannoc::ide
