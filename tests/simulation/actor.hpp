// Threads that take turns, so that a life repeats exactly: a call of an actor lasts until its thread
// has done the work or parks in the middle of it. Only one thread of them all runs at a time.
#ifndef VLT_TESTS_SIMULATION_ACTOR_HPP
#define VLT_TESTS_SIMULATION_ACTOR_HPP

#include <functional>
#include <semaphore>
#include <thread>
#include <utility>

namespace com::velanto::connectivity::simulation {

class Actor {
 public:
  Actor() : thread_([this] { takeTurns(); }) {}
  Actor(const Actor&) = delete;
  Actor& operator=(const Actor&) = delete;
  // Not while it is parked.
  ~Actor() {
    turn_.release();
    thread_.join();
  }

  // Not while it is parked. `work` must not throw.
  void run(std::function<void()> work) {
    work_ = std::move(work);
    resume();
  }
  void resume() {
    turn_.release();
    back_.acquire();
  }
  [[nodiscard]] bool isParked() const { return work_ != nullptr; }

  // Gives the turn back until somebody resumes this thread. False: it is no actor's.
  static bool park() {
    if (of_this_thread_ == nullptr) return false;
    Actor& self = *of_this_thread_;
    self.back_.release();
    self.turn_.acquire();
    return true;
  }

 private:
  void takeTurns() {
    of_this_thread_ = this;
    for (turn_.acquire(); work_ != nullptr; turn_.acquire()) {
      work_();
      work_ = nullptr;
      back_.release();
    }
  }

  static inline thread_local Actor* of_this_thread_ = nullptr;

  std::function<void()> work_; // null: idle
  std::binary_semaphore turn_{0};
  std::binary_semaphore back_{0};
  std::thread thread_; // last: it uses the others
};

} // namespace com::velanto::connectivity::simulation

#endif
