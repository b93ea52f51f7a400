#pragma once
// Gives the placing logic the primary screen and the mouse pointer.

namespace tallix {

void InstallDesktopServices();

} // namespace tallix
