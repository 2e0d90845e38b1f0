// Where the geometry kernel is known to lose memory it allocated (tables it builds
// once per process, approximations inside sewing and shape fixing of degenerate
// input), the leak checker of a sanitizer build is told to look away for the
// duration of the kernel call; its reports are then our own leaks only. The
// kernel is built without frame pointers, so these cannot be suppressed by name.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define KORVEL_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVEL_LEAK_CHECKED 1
#endif
#endif

#ifdef KORVEL_LEAK_CHECKED
#include <sanitizer/lsan_interface.h>
#endif

namespace cad::exchange {

class KernelLeaksIgnored {
public:
    // Written out, so that a build without the checker still sees the scope used.
    KernelLeaksIgnored() {}
    ~KernelLeaksIgnored() {}
    KernelLeaksIgnored(const KernelLeaksIgnored&) = delete;
    KernelLeaksIgnored& operator=(const KernelLeaksIgnored&) = delete;

private:
#ifdef KORVEL_LEAK_CHECKED
    __lsan::ScopedDisabler disabler_;
#endif
};

} // namespace cad::exchange
