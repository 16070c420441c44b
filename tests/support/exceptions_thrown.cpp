// Takes the place of the C++ library's __cxa_throw, which every throw expression calls.
#include "tests/support/exceptions_thrown.hpp"

#include <dlfcn.h>

#include <atomic>
#include <typeinfo>

namespace com::velanto::connectivity::test {

namespace {

std::atomic<std::int64_t> thrown{0};

} // namespace

static void countThrown() noexcept { ++thrown; }

std::int64_t exceptionsThrown() noexcept { return thrown; }

} // namespace com::velanto::connectivity::test

using Throw = void (*)(void*, std::type_info*, void (*)(void*));

// Under a name of its own, since the compiler has a declaration of the other that is not for sources.
extern "C" [[noreturn]] void throwCounted(void* exception, std::type_info* type,
                                          void (*destroy)(void*)) __asm__("__cxa_throw");

void throwCounted(void* exception, std::type_info* type, void (*destroy)(void*)) {
  com::velanto::connectivity::test::countThrown();
  static const auto THROW_ON = reinterpret_cast<Throw>(dlsym(RTLD_NEXT, "__cxa_throw"));
  THROW_ON(exception, type, destroy);
  __builtin_unreachable();
}
