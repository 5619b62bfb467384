#pragma once

namespace VeskLib::Host {

// Work that the request needs later, done early, while the process waits for the back-end.
using IdleWork = void (*)();

// Plans `work` for the next wait, in place of any work planned before.
void planIdleWork(IdleWork work);

// Does the planned work, once. Ignores its failures: the code that needs the result tries again and
// reports them.
void doIdleWork() noexcept;

}  // namespace VeskLib::Host
