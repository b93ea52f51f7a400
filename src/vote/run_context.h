#pragma once
// What every procedure of a vote reaches: the foundation's services and the run state,
// each value under its own name (ctx.votes, ctx.keypadUniverse, ctx.clock ...).

#include "foundation/services.h"
#include "vote/run_state.h"

namespace tallix {

class ChartProcedures;
class Comms;
class FormManager;
class ResultForm;
class VotesCastForm;
class VoteInstances;

struct RunContext : Services, RunState {
    // Forms: null while not loaded.
    Comms* comms = nullptr;
    VotesCastForm* vCast = nullptr;
    ResultForm* FrmTChart = nullptr;
    FormManager* forms = nullptr;
    ChartProcedures* chartProcedures = nullptr;
    VoteInstances* instances = nullptr;
    // Writes the presentation's pending changes to the deck (where the result must not
    // be lost); a host without a file has nothing to do.
    std::function<void()> CommitPresentation;
    // Takes in what another process committed since the deck was loaded, keeping this
    // process's pending changes.
    std::function<void()> ReloadPresentation;
};

// Makes `votes`, `votesBackup` and `voteTimes` new at 0..keypadUniverse, filled with
// "-1" and -1 up to keypadUniverse-1 (the last element stays empty), and clears
// `countDownExpired`.
void ResetVoteArrays(RunContext& ctx);

// Resizes, keeping contents, the per-keypad arrays to 0..keypadUniverse, and for a
// series vote also `seriesVotes`.
void AllocArrays(RunContext& ctx);

} // namespace tallix
