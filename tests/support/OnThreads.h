#pragma once

#include <atomic>
#include <thread>
#include <vector>

/// Runs work(0) to work(count - 1), each on a thread of its own, all from the same moment on. They wait in a loop: who
/// waits in std::latch, std::barrier or std::atomic of the Windows toolchain can miss being woken.
template <typename Work>
void OnThreads(int count, const Work& work)
{
    std::atomic<int> missing = count;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            --missing;
            while (missing > 0)
                std::this_thread::yield();
            work(i);
        });
    for (std::thread& thread : threads)
        thread.join();
}
