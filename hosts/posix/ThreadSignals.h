#pragma once

#include <functional>
#include <string>

namespace brevanta {

// Blocks every signal that can be put off for the calling thread: pthread_sigmask(3). Meant for queue threads, so that
// signals are handled on the main thread alone and no blocking call on a queue ends with EINTR. Signals that the thread
// raises by its own fault (SIGSEGV and its like) stay as they are, since blocking those is undefined.
void blockAllSignals();

// What a queue's thread does first: blocks all signals and takes the name, by which debuggers show it:
// pthread_setname_np(3). Linux keeps the last 15 bytes of it.
[[nodiscard]] std::function<void()> queueThread(std::string name);

// From now on, writing to a pipe or socket without a reader fails with EPIPE instead of ending the process. Processes
// that are started later have SIGPIPE as it was by default.
void ignoreBrokenPipeSignal();

}
