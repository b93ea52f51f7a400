#pragma once
// The failure that procedures raise and the reporting helper turns into an error report.
// It carries what the original runtime's error object carried: a number and a text.

#include <QString>
#include <stdexcept>

namespace tallix {

// Error numbers the system's own code raises, in the runtime's numbering.
namespace ErrNo {
constexpr long InvalidProcedureCall = 5;
constexpr long Overflow = 6;
constexpr long SubscriptOutOfRange = 9;
constexpr long TypeMismatch = 13;
constexpr long FileNotFound = 53;
constexpr long PermissionDenied = 70;
constexpr long PathNotFound = 76;
constexpr long ObjectRequired = 424;
constexpr long ObjectVariableNotSet = 91;
constexpr long ItemNotFound = -2147024809;   // 0x80070057, "The item ... was not found"
constexpr long HostUnexpected = -2147418113; // 0x8000FFFF, failure inside the presentation host
} // namespace ErrNo

class VbError : public std::runtime_error {
public:
    VbError(long number, const QString& description, long line = 0);

    long number() const { return number_; }
    const QString& description() const { return description_; }
    long line() const { return line_; }

private:
    long number_;
    QString description_;
    long line_;
};

// The end of the process, as the program's last step makes it. Tests install a
// terminator that throws this so a whole vote can run inside one test; it is not a
// failure, and the reporting helper lets it pass.
struct ProcessExit {
    int code = 0;
};

[[noreturn]] void Raise(long number, const QString& description, long line = 0);

// Runs `f`, ignoring any failure of it: for steps that are skipped on purpose when they
// fail (optional tags, the current slide). The end of the process still passes.
template <class F>
void IgnoringErrors(F&& f)
{
    try {
        f();
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
    }
}

} // namespace tallix
