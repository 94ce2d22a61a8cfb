#pragma once
// What an On Error statement leaves in force in its activation: where its handler starts.
namespace brannoc {

class ErrorHandler {
public:
    // The target of On Error Resume Next: execution goes on with the statement after the failing one.
    static constexpr int kResumeNext = -1;

    // The statement index of the handler's label, or kResumeNext.
    virtual int HandlerTarget() const = 0;

protected:
    ~ErrorHandler() = default;
};

} // namespace brannoc
