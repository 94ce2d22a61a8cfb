#pragma once
// A loaded source module, its compile state between the phases and what a successful compile leaves.
#include "exec/Breakpoint.h"
#include "frontend/Symbols.h"
#include "frontend/TypeCode.h"

#include <array>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace brannoc {

class ModuleSource;

enum class ModuleKind : std::uint8_t { Plain = 0, Class = 1, Object = 2, Form = 3 };

enum class SymbolKind : std::uint8_t { Variable, Constant, UserType, Enum, EnumMember, Procedure };

struct SymbolRef {
    SymbolKind kind;
    std::size_t index;
    std::size_t member = 0;   // enum members: the member index
};

// The per-module compile state kept between the phases.
struct ParseState {
    std::vector<std::unique_ptr<Variable>> variables;
    std::vector<std::unique_ptr<Constant>> constants;
    std::vector<std::unique_ptr<UserType>> userTypes;
    std::vector<std::unique_ptr<EnumType>> enums;
    std::vector<std::unique_ptr<Procedure>> procedures;
    std::vector<std::string> events;
    std::vector<std::string> implements;
    // Upper-cased module-level names.
    std::unordered_map<std::string, SymbolRef> names;
    // The second pass over type names and the record layout have run (they may run early, when a module
    // that uses this one compiles its definitions first).
    bool typesPrepared = false;
    int resumeLine = 1;
    Procedure* entry = nullptr;
    Procedure* terminate = nullptr;
    bool hasDefaultMember = false;
};

// What a successful compile leaves in the module.
struct CompiledModule {
    Procedure* entry = nullptr;
    Procedure* terminate = nullptr;
    std::vector<std::unique_ptr<Variable>> variables;
    std::vector<std::unique_ptr<Constant>> constants;
    std::vector<std::unique_ptr<UserType>> userTypes;
    std::vector<std::unique_ptr<EnumType>> enums;
    std::vector<std::unique_ptr<Procedure>> procedures;
    std::vector<std::string> events;
    std::vector<std::string> implements;
    // Upper-cased module-level names, kept for code compiled later in the module's scope.
    std::unordered_map<std::string, SymbolRef> names;
    // Bytes of module-level storage; laid out only when the compile had no error.
    std::uint32_t storageSize = 0;
    // The break points set in the procedures, in the order set. Declared last: they go first and put
    // their statements back while the procedures still exist.
    std::vector<std::unique_ptr<Breakpoint>> breakpoints;
};

class Module final {
public:
    static constexpr std::uint32_t kInitialized = 0x4000;

    Module(std::string name, std::string text, int mode);

    const std::string& Name() const { return m_name; }
    const std::string& Text() const { return m_text; }
    int Mode() const { return m_mode; }
    bool IsMacro() const { return m_mode == 0; }
    bool IsCodeModule() const { return m_mode != 0; }

    bool IsObjectModuleFile() const { return m_objectModuleFile; }
    void SetObjectModuleFile(bool value) { m_objectModuleFile = value; }
    // Where the module came from: the compiler asks it about names that extensions give.
    ModuleSource* Source() const { return m_source; }
    void SetSource(ModuleSource* source) { m_source = source; }
    ModuleKind Kind() const { return m_kind; }
    void SetKind(ModuleKind kind) { m_kind = kind; }
    // A form whose header the host accepted: each new instance gets the host's object for it.
    bool IsHostForm() const { return m_hostForm; }
    void SetHostForm(bool value) { m_hostForm = value; }
    // The name from the header's VB_Name attribute (empty for plain modules).
    const std::string& RecordName() const { return m_recordName; }
    void SetRecordName(std::string name) { m_recordName = std::move(name); }
    // The word after the version number on the header's VERSION line ("CLASS", or "Form").
    const std::string& HeaderWord() const { return m_headerWord; }
    void SetHeaderWord(std::string word) { m_headerWord = std::move(word); }

    int UseCount() const { return m_useCount; }
    void AddUse() { ++m_useCount; }
    int ReleaseUse() { return --m_useCount; }

    // Default types of undeclared names, per letter.
    TypeCode DefaultTypeFor(std::string_view name) const;
    TypeCode DefaultTypeOfLetter(int letter) const { return m_defaultTypes[static_cast<std::size_t>(letter)]; }
    bool IsDefaultTypeSet(int letter) const { return m_defaultSet[static_cast<std::size_t>(letter)]; }
    void SetDefaultType(int letter, TypeCode type);

    int OptionBase() const { return m_optionBase; }
    void SetOptionBase(int base) { m_optionBase = base; }
    bool OptionExplicit() const { return m_optionExplicit; }
    void SetOptionExplicit() { m_optionExplicit = true; }
    // A macro is private from the start; a code module until Option Private Module is public.
    bool IsPrivateModule() const { return m_privateModule || IsMacro(); }
    void SetPrivateModule() { m_privateModule = true; }

    std::vector<Module*>& UsedModules() { return m_used; }
    const std::vector<Module*>& UsedModules() const { return m_used; }
    // The public modules of its project and of the projects it references that were loaded when it
    // was compiled (besides those it names in '#Uses), in load order.
    std::vector<Module*>& ProjectModules() { return m_projectModules; }
    const std::vector<Module*>& ProjectModules() const { return m_projectModules; }

    ParseState* State() { return m_state.get(); }
    const ParseState* State() const { return m_state.get(); }
    // The procedures and module-level variables, from the parse state while it exists, else from the
    // compiled module.
    const std::vector<std::unique_ptr<Procedure>>& Procedures() const
    {
        return m_state ? m_state->procedures : m_compiled->procedures;
    }
    const std::vector<std::unique_ptr<Variable>>& Variables() const
    {
        return m_state ? m_state->variables : m_compiled->variables;
    }
    const std::vector<std::unique_ptr<Constant>>& Constants() const
    {
        return m_state ? m_state->constants : m_compiled->constants;
    }
    const std::vector<std::unique_ptr<UserType>>& UserTypes() const
    {
        return m_state ? m_state->userTypes : m_compiled->userTypes;
    }
    const std::vector<std::unique_ptr<EnumType>>& Enums() const
    {
        return m_state ? m_state->enums : m_compiled->enums;
    }
    void FreeState() { m_state.reset(); }
    // Lends the compiled items back to a parse state, so that code compiled later (an evaluation) sees
    // the module's names as its procedures did; ReturnState takes them back. False, nothing lent, when
    // the module has a parse state already or has not compiled.
    [[nodiscard]] bool LendState();
    void ReturnState();
    const CompiledModule* Compiled() const { return m_compiled.get(); }
    void SetCompiled(std::unique_ptr<CompiledModule> compiled) { m_compiled = std::move(compiled); }

    std::uint32_t Flags() const { return m_flags; }
    void SetFlags(std::uint32_t flags) { m_flags = flags; }

private:
    std::string m_name;
    std::string m_text;
    std::unique_ptr<ParseState> m_state = std::make_unique<ParseState>();
    std::string m_recordName;
    std::string m_headerWord;
    ModuleKind m_kind = ModuleKind::Plain;
    bool m_hostForm = false;
    bool m_objectModuleFile = false;
    ModuleSource* m_source = nullptr;
    int m_useCount = 1;
    int m_mode = 0;
    std::array<TypeCode, 26> m_defaultTypes;
    std::array<bool, 26> m_defaultSet{};
    int m_optionBase = 0;
    bool m_optionExplicit = false;
    bool m_privateModule = false;
    std::vector<Module*> m_used;
    std::vector<Module*> m_projectModules;
    std::unique_ptr<CompiledModule> m_compiled;
    std::uint32_t m_flags = 0;
};

} // namespace brannoc
