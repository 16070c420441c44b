// What checks have to know of the build of this program itself.
#ifndef VLT_TOOLS_CHECK_COUNTED_HEAP_HPP
#define VLT_TOOLS_CHECK_COUNTED_HEAP_HPP

namespace com::velanto::connectivity::tools::check {

// Under AddressSanitizer the C library's heap is replaced by one that reports nothing in use.
[[nodiscard]] constexpr bool countsHeap() noexcept {
#if defined(__SANITIZE_ADDRESS__)
  return false;
#else
  return true;
#endif
}

} // namespace com::velanto::connectivity::tools::check

#endif
