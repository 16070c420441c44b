// Prepares the unwinders before anything is thrown. A tool that is linked statically has an unwinder of
// its own, and a plug-in the shared one. Either may throw into the other's code, where an unwinder that
// has never walked a stack ends the process.
#include <execinfo.h>
#include <unwind.h>

namespace {

[[gnu::constructor]] void prepareUnwinders() {
  void* here = nullptr;
  backtrace(&here, 1); // the C library calls the shared one, if there is one
  _Unwind_Backtrace([](_Unwind_Context*, void*) { return _URC_END_OF_STACK; }, nullptr);
}

} // namespace
