#pragma once
// Other vote processes of this user: a vote still closing when the next one starts.

namespace tallix {

class VoteInstances {
public:
    virtual ~VoteInstances() = default;
    // Another vote process answers, and has not recorded its end.
    virtual bool PrevInstance() = 0;
    // Asks every other vote process to close, as closing its main window would.
    virtual void CloseOthers() = 0;
    // From now on this process answers the others, and a later vote may close it.
    virtual void StartAnswering() {}
};

} // namespace tallix
