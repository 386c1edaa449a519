#ifndef ZELK_TESTS_SUPPORT_THREADS_HPP
#define ZELK_TESTS_SUPPORT_THREADS_HPP

#include <string>
#include <thread>
#include <vector>

constexpr int kThreads = 8;
constexpr int kRounds = 25;

/// The calling thread's number in `run_in_threads`; elsewhere -1.
inline thread_local int current_thread = -1;

/// What makes the name of a file the calling thread's own.
inline std::string suffix_of_thread() {
  return current_thread < 0 ? "" : "." + std::to_string(current_thread);
}

/// Runs `work(thread, round)`, in rounds, in all threads at once.
template <typename Work>
void run_in_threads(const Work& work, int rounds = kRounds) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&work, rounds, thread] {
      current_thread = thread;
      for (int round = 0; round < rounds; ++round) work(thread, round);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

#endif
