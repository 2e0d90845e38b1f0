// The kernel time limit, measured on the steady clock so that changing the
// system time neither shortens nor stretches it.
#include "geometry/Deadline.h"

namespace cad::geometry {

namespace {

std::int64_t nowNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

Deadline::Deadline(std::chrono::nanoseconds duration)
    : instant_(nowNanoseconds() + duration.count()) {}

Standard_Boolean Deadline::UserBreak() { return expired(); }

bool Deadline::expired() const { return nowNanoseconds() > instant_; }

} // namespace cad::geometry
