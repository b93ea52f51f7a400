#pragma once
// What foundation code needs of the process: the clock, the event pump, the dialogs,
// the environment, who we are, the tlx.ini switches and the log timing. The run
// context of a vote extends this record, so every procedure can reach it.

#include "app_info.h"
#include "environment.h"
#include "logs.h"
#include "settings_file.h"

#include <functional>

namespace tallix {

class Clock;
class Dialogs;
class EventPump;

struct Services {
    Clock* clock = nullptr;
    EventPump* pump = nullptr;
    Dialogs* dialogs = nullptr;
    Environment env;
    AppInfo app;
    IniSwitches ini;
    LogTiming logTiming;
    // `ShowErrors`: set true as the first act of Main and never cleared.
    bool ShowErrors = false;
    // Ends the process. The program commits the deck and exits; tests throw ProcessExit.
    std::function<void(int code)> terminator;
};

} // namespace tallix
