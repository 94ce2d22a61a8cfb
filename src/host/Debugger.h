#pragma once
// What a host's debugger asks of an engine: break points by module and line, the text and line of each
// frame of the call stack, and moving the execution point of the current frame.
#include <string>

namespace brannoc {

class Interpreter;
class Module;
class ModuleManager;
class ProcedureCode;

class Debugger final {
public:
    Debugger(ModuleManager& modules, Interpreter& interpreter) : m_modules(modules), m_interpreter(interpreter) {}

    // Sets a break point on the executable statement of a line of a loaded module, or removes the one
    // that is there. Line 0 removes every break point of the module, or, for a name that is only a
    // project part ("<P>"), of every module of that project. False (nothing changed) when the module or
    // project does not exist or the line holds no executable statement.
    bool ToggleBreak(const std::string& moduleName, int line);
    // Removes every break point of every loaded module.
    void ClearAllBreaks();
    // Removes every break point of every loaded module of the project (the default one for an empty
    // name); false when there is no such project.
    bool ClearProjectBreaks(const std::string& project);
    // The line of the index-th break point of the module (in the order set); 0 past the end.
    int BreakLineNum(const std::string& moduleName, int index) const;

    // The frame at depth (0 the innermost, each further level one caller out) as
    // "[module|object.procedure#line] statement", the line right-aligned in three places; empty past the
    // outermost frame.
    std::wstring FrameLine(int depth) const;
    // The source line of the current frame's statement; 0 without a frame.
    int CurrentLineNumber() const;
    // True for the procedures of hidden modules (names that begin and end with "*").
    bool IsSteppingExcluded(const ProcedureCode& procedure) const;

private:
    ModuleManager& m_modules;
    Interpreter& m_interpreter;
};

// Whether a module name marks a hidden module.
bool IsHiddenModuleName(const std::string& name);

} // namespace brannoc
