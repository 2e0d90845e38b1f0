// Process plumbing for the agent server program, one implementation per platform
// (ProcessSupport_posix.cpp here).
#pragma once

#include <cstdio>

namespace cad::mcp {

// Keeps standard output for protocol messages alone: returns a stream on the
// original standard output and sends anything else written there (a library's
// stray print) to standard error instead.
std::FILE* claimStdoutForProtocol();

// Makes SIGINT, SIGTERM and SIGHUP quit the running QCoreApplication cleanly, so
// that the socket is removed on the way out.
void quitOnTerminationSignals();

// A reader that went away shows as a failed write, not as a fatal SIGPIPE.
void ignoreBrokenPipes();

} // namespace cad::mcp
