#pragma once
// The error model: procedures that pass over their errors run each step through PassOver;
// procedures with an error exit let RuntimeError reach their edge, which ends the process.

#include <QString>

#include <exception>
#include <utility>

namespace orbline {

class RuntimeError : public std::exception {
  public:
    explicit RuntimeError(QString description) : description_(std::move(description)) {}
    const QString& description() const noexcept { return description_; }
    const char* what() const noexcept override { return "orbline::RuntimeError"; }

  private:
    QString description_;
};

// The descriptions the runtime gives for the faults this system can meet; they end up in
// AbendText and so in the main log.
namespace errors {
QString InvalidArgument();  // a position or length out of range
QString SubscriptOutOfRange();
QString Overflow();
QString TypeMismatch();  // a text that is no number where a number is wanted
QString FileNotFound();
QString PathNotFound();
QString BadFileNameOrNumber();  // a write to a file handle that is closed or was never opened
}  // namespace errors

// Runs one step; a RuntimeError inside it is swallowed so that the next step runs.
// Returns whether the step ran to its end.
template <typename Step>
bool PassOver(Step&& step) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

// How a procedure meets a run-time error in one of its steps.
enum class OnError {
    ErrorExit,  // the error reaches the procedure's edge, which ends the process
    PassOver,   // the step has no effect and the next one runs
};

template <typename Step>
void RunStep(OnError rule, Step&& step) {
    switch (rule) {
        case OnError::ErrorExit:
            std::forward<Step>(step)();
            return;
        case OnError::PassOver:
            PassOver(std::forward<Step>(step));
            return;
    }
}

}  // namespace orbline
