#pragma once
// The windows that vote logic reaches. The logic draws nothing: the program fills
// these with real windows, tests with fakes. A form that is not loaded is a null
// pointer in the run context.

#include <QString>
#include <QtGlobal>

namespace tallix {

// The votes-cast window, as far as the controller link and decoder need it.
class VotesCastForm {
public:
    virtual ~VotesCastForm() = default;
    virtual void ShowBaseErrorMessage(short base, const QString& message) = 0;
    virtual int BaseIndicatorCount() const = 0;
    virtual qint32 BaseIndicatorColour(int index) const = 0;
    virtual void SetBaseIndicatorColour(int index, qint32 colour) = 0;
    virtual void ShowBaseIndicator(int index) = 0;
    virtual void LogBaseResponded(short base) = 0;
    // The counter label `Label1`: its caption and font size.
    virtual void SetCounterLabel(const QString& caption, int fontSize) = 0;
};

} // namespace tallix
