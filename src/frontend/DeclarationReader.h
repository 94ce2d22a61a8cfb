#pragma once
// The module-level declaration readers: variables, constants, user-defined types, enumerations,
// Def-type statements, Declare, procedure headers (with the scan to the procedure's End line), Option,
// Attribute, Event and Implements; and the layout of variable storage.
#include "frontend/CompileMessage.h"
#include "frontend/Module.h"
#include "frontend/Token.h"
#include "frontend/Symbols.h"

#include <string>
#include <vector>

namespace brannoc {

class Lexer;
class ModuleSource;

enum class ReadResult {
    NotMine,        // the line is not a declaration this reader knows
    Done,           // read; the lexer is still on the statement's last line
    DoneAtNextLine  // read; the lexer already stands at the first token of the next statement
};

// Where a type is written: what the As clause may name.
enum class TypeContext { Variable, Parameter, DeclareParameter, Result, Constant, Element };

inline constexpr std::uint32_t kMaxStorageSize = 16777216;

// Lays out variables in declaration order at 4-byte boundaries from `start`; reports "Variable storage
// space exceeded." (and returns false) when the total passes 16 777 216 bytes.
[[nodiscard]] bool LayoutVariables(std::vector<std::unique_ptr<Variable>>& variables, std::uint32_t start,
                                   std::uint32_t& total, Lexer& lexer);

// Storage bytes of one variable or element of this type (arrays are one descriptor reference).
std::uint32_t StorageSizeOf(const TypeSpec& type, bool isArray);

class DeclarationReader final {
public:
    // `isLoadedModuleName` tells whether a name is a loaded class or object module (a type name).
    DeclarationReader(Lexer& lexer, Module& module, ModuleSource* source,
                      bool (*isClassName)(void* context, std::string_view name), void* context);

    // Offers the current line (after its visibility word) to the readers.
    ReadResult ReadTopLevel(Visibility visibility, bool hasVisibilityWord);

    // Reads again the module-level constants that named a constant declared after them, until each is
    // known or none more can be; those left report their error.
    void ReadDeferredConstants();
    // Second pass over the declared items: resolves type names that refer to later declarations.
    void ResolveTypes();
    // Lays out the records of the module's user-defined types (RecordLayout.cpp): each type gets its
    // run-time record type, its size and its elements' offsets. A type that contains itself, or grows
    // beyond 16 777 216 bytes, reports "User-defined type is too big.".
    void LayoutTypes();

    // The type of an undeclared name used in a procedure, or false with an error reported.
    [[nodiscard]] bool ImplicitType(std::string_view name, char suffix, bool followedByParen, TypeCode& type);

private:
    ReadResult ReadVariables(Visibility visibility, bool isStatic);
    ReadResult ReadConst(Visibility visibility);
    // name [suffix] [As type] = constant {"," ...}: the rest of a Const line from a constant's name.
    void ReadConstants(Visibility visibility, bool mayDefer);
    void ExpectEndOfStatement();
    ReadResult ReadType(Visibility visibility);
    ReadResult ReadEnum(Visibility visibility);
    ReadResult ReadDef(Token word);
    ReadResult ReadDeclare(Visibility visibility);
    ReadResult ReadProcedure(Visibility visibility);
    ReadResult ReadOption(bool hasVisibilityWord);
    ReadResult ReadAttribute();
    ReadResult ReadEvent();
    ReadResult ReadNameList(std::vector<std::string>& names);

    [[nodiscard]] bool ReadName(CompileMessage missing, std::string& name);
    [[nodiscard]] bool AddName(const std::string& name, SymbolRef ref);
    [[nodiscard]] bool ReadTypeSuffix(TypeSpec& type);
    [[nodiscard]] bool ReadAsType(TypeContext context, TypeSpec& type, bool& createsNew);
    [[nodiscard]] bool ReadBounds(std::vector<Bounds>& bounds, bool& dynamic);
    [[nodiscard]] bool ReadParameters(Procedure& procedure, TypeContext context);
    [[nodiscard]] bool ReadParameter(Procedure& procedure, TypeContext context, bool& sawOptional);
    [[nodiscard]] bool CheckPropertyPartner(const Procedure& procedure);
    ReadResult ScanBody(Procedure& procedure, Token kindWord);
    void RefuseNonPublicRecord(const TypeSpec& type);
    bool IsPublicMemberOfObjectModule(Visibility visibility) const;
    [[nodiscard]] bool ResolveNamedType(TypeSpec& type);
    [[nodiscard]] bool LayoutType(UserType& type, std::vector<const UserType*>& open);

    Lexer& m_lexer;
    Module& m_module;
    ParseState& m_state;
    ModuleSource* m_source;
    bool (*m_isClassName)(void*, std::string_view);
    void* m_context;
    // Constants whose value named a constant not declared yet: where their name stands.
    struct DeferredConstant {
        int line;
        const char* position;
        Visibility visibility;
    };
    std::vector<DeferredConstant> m_deferredConstants;
};

} // namespace brannoc
