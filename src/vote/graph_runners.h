#pragma once
// The runners of an ordinary multiple-choice vote: open it, wait for its end, turn the
// votes into a chart.

namespace tallix {

struct RunContext;

void DoCountUpGraphVote(RunContext& ctx);
void DoCountDownGraphVote(RunContext& ctx);
void doCountUpDynamic(RunContext& ctx);
void EndNormalVote(RunContext& ctx);

// Shared by the runners of every vote kind.
// How long a wait loop may block for the next event: short, so the loop notices its end
// promptly, but never a spin.
constexpr int kVoteLoopWaitMs = 10;
// A base other than the keyboard: the vote is opened at the controller.
bool OnKeypadBase(const RunContext& ctx);
bool StartVoteAtBase(RunContext& ctx);
// The counter says the keyboard is the base.
void ShowKeyboardCaption(RunContext& ctx);
// A vote the base would not open: the operator retries it or ends the run.
void OfferStartRetry(RunContext& ctx);
// The keyboard's count-up: the caption, then pumping until the vote ends or is cancelled.
void WaitOnKeyboard(RunContext& ctx);

} // namespace tallix
