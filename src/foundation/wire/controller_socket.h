#pragma once
// Where the controller listens, and the per-user folder that holds its socket and the
// vote processes' own sockets.

#include <QString>

namespace tallix {

class Environment;

// $XDG_RUNTIME_DIR/tallix, else /tmp/tallix-<uid>.
QString RuntimeFolder(const Environment& env);

// $TALLIX_CONTROLLER_SOCKET, else controller.sock in RuntimeFolder().
QString ControllerSocketPath(const Environment& env);

// Creates the folder (and missing parents) if needed and leaves it with mode 0700.
// An existing folder must be a real directory owned by this user; a symlink or a
// stranger's folder under /tmp is refused. Returns an empty string on success, else
// a one-line reason.
QString EnsurePrivateFolder(const QString& path);

// The controller stand-in shipped beside the program.
QString ControllerStandInPath(const QString& programFolder);

// Starts the stand-in detached: it is not the caller's child, outlives the vote process
// and serves later votes. It inherits the environment, so it listens where the caller
// looks. Returns an empty string on success, else a one-line reason.
QString StartControllerStandIn(const QString& programFolder);

} // namespace tallix
