// What the system tells of threads, and what the standard library leaves open.
#pragma once

#include <functional>
#include <thread>

namespace platform {

// Cores that this process may use, which may be fewer than there are; at least 1.
unsigned UsableCores();

// Starts a thread that gets no signals that are meant for the process: an interrupt goes on ending
// the waits of the threads that were there before. Throws std::system_error when the system refuses
// one.
std::thread StartThread(std::function<void()> work);

}  // namespace platform
