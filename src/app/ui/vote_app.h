#pragma once
// The tallix-vote program: one process runs one vote over a presentation deck.

namespace tallix {

int RunVoteProgram(int argc, char** argv);

} // namespace tallix
