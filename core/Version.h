// The application's version, one definition for the window, the headless agent
// server and the files they write.
#pragma once

namespace cad {

// "0.9.5": the project version the build was configured with.
inline constexpr const char* kApplicationVersion = KORVEL_VERSION;

} // namespace cad
