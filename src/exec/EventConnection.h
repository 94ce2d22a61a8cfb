#pragma once
// The link between a WithEvents variable of a module instance and the object it holds. The engine makes
// one per variable at its first assignment; the instance owns it and closes it when the instance ends.
// A class instance of the macro that raises an event reaches the links listening to it the same way.
#include <oaidl.h>

#include <string>

namespace brannoc {

class ModuleInstance;
class Variant;

class EventConnection {
public:
    // The link as a reference-counted object (not a new reference).
    virtual IUnknown* Object() = 0;
    // The variable now holds object (null: Nothing): events of the previous object stop, those of
    // object arrive from now on.
    virtual void Assign(IUnknown* object) = 0;
    // The receiving instance ends: no more events, and the instance's hold on the link goes.
    virtual void Close() = 0;
    // An event raised (RaiseEvent) by the class instance this link listens to, with its arguments
    // first to last (references stay references, so the procedure may change them). False when the
    // procedure failed: its error is left in the interpreter's error object for the raiser.
    [[nodiscard]] virtual bool Hear(const std::string& event, Variant* arguments, int count) = 0;
    // The raising instance goes before the link let go of it.
    virtual void SourceEnded(ModuleInstance& source) = 0;

protected:
    ~EventConnection() = default;
};

} // namespace brannoc
