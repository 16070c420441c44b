// Facts about the build of this program itself.
#ifndef VLT_TOOLS_CHECK_COUNTED_HEAP_HPP
#define VLT_TOOLS_CHECK_COUNTED_HEAP_HPP

namespace com::velanto::connectivity::tools::check {

// AddressSanitizer replaces the C library's heap by one that reports nothing in use.
[[nodiscard]] constexpr bool countsHeap() noexcept {
#ifdef VLT_SANITIZED
  return false;
#else
  return true;
#endif
}

} // namespace com::velanto::connectivity::tools::check

#endif
