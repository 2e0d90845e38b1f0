// The last word of a process that has failed: on a fatal signal, a short report
// with the signal and a backtrace goes into the crash folder before the process dies.
#pragma once

#include <cstddef>
#include <ctime>

namespace cad::app {

// Creates the crash folder (a failure is ignored), remembers its path and installs
// the handler for SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT. The handler writes
// "korvel-YYYYMMDD-HHMMSS.txt", restores the default action and raises the signal
// again, so the system's own crash handling (core dump, exit status) still happens.
void installCrashHandler();

// A calendar date and time of day, from seconds since 1970 (no time zone applied).
struct CivilTime {
    int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
};
// Pure arithmetic on integers, safe inside a signal handler.
CivilTime civilTimeFromSeconds(long long seconds);

// Writes folder + "/korvel-YYYYMMDD-HHMMSS.txt" into out (with its terminating zero).
// Returns false, leaving out empty, when it does not fit. Safe inside a signal handler.
bool formatCrashReportPath(char* out, std::size_t size, const char* folder, const CivilTime& time);

} // namespace cad::app
