#ifndef ZELK_TESTS_SUPPORT_THREADS_HPP
#define ZELK_TESTS_SUPPORT_THREADS_HPP

#include <thread>
#include <vector>

constexpr int kThreads = 8;
constexpr int kRounds = 25;

/// Runs `work(thread, round)`, in rounds, in all threads at once.
template <typename Work>
void run_in_threads(const Work& work) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&work, thread] {
      for (int round = 0; round < kRounds; ++round) work(thread, round);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

#endif
