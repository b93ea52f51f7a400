#pragma once
// The tlxctrl program: command line, start-up checks, the event loop, and --quit.

namespace tallix {

int TlxctrlMain(int argc, char** argv);

} // namespace tallix
