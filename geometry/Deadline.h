// The geometry kernel's time limit: a progress indicator whose user-break test
// answers true once the steady clock has passed a fixed instant, so OpenCASCADE
// stops a runaway boolean from inside its own loops.
#pragma once

#include <Message_ProgressIndicator.hxx>

#include <chrono>
#include <cstdint>

namespace cad::geometry {

// How long one attempt of a kernel operation may run.
inline constexpr std::chrono::nanoseconds kKernelAttemptLimit = std::chrono::seconds(30);

class Deadline : public Message_ProgressIndicator {
public:
    explicit Deadline(std::chrono::nanoseconds duration = kKernelAttemptLimit);

    // True once the instant has passed (strictly later).
    Standard_Boolean UserBreak() override;
    void Show(const Message_ProgressScope&, const Standard_Boolean) override {}
    void Reset() override {}

    bool expired() const;

    DEFINE_STANDARD_RTTI_INLINE(Deadline, Message_ProgressIndicator)

private:
    std::int64_t instant_; // steady-clock nanoseconds
};

} // namespace cad::geometry
