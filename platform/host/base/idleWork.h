#pragma once

namespace VeskLib::Host {

// Work that a request will need anyway, and that need not wait until it does: it is done while the
// back-end works on an answer.
using IdleWork = void (*)();

// Keeps `work` for the next wait, in place of what was kept before.
void planIdleWork(IdleWork work);

// Does the work that was planned, once. Its failures end here: what needs it does it again, and
// then tells.
void doIdleWork() noexcept;

}  // namespace VeskLib::Host
