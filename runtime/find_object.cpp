// Finds the loaded object at an address, for the unwinder of g++ 12: linked statically, it asks for
// a function that the C library has from 2.35 on. This one has its name and does without.
//
//   (1) the object that has the address in one of its segments  (2) its table of stack frames
#include <dlfcn.h>
#include <link.h>

#include <cstdint>

namespace {

struct search_t {
  std::uintptr_t address;
  dl_find_object* result;
};

void* pointerTo(std::uintptr_t address) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader gives addresses as numbers
  return reinterpret_cast<void*>(address);
}

// 1 ends the walk over the objects.
int lookInto(dl_phdr_info* object, std::size_t, void* context) {
  auto& search = *static_cast<search_t*>(context);
  void* frames = nullptr;
  bool is_inside = false;
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = object->dlpi_phdr[i];
    const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && search.address - start < segment.p_memsz) {
      is_inside = true;
      search.result->dlfo_map_start = pointerTo(start);
      search.result->dlfo_map_end = pointerTo(start + segment.p_memsz);
    }
    if (segment.p_type == PT_GNU_EH_FRAME) frames = pointerTo(start);
  }
  if (!is_inside) return 0;
  search.result->dlfo_eh_frame = frames;
  return 1;
}

} // namespace

// [any thread] Returns 0, or -1 when no object with a table has the address. `result` then means
// nothing. The unwinder reads no more of it than is set here.
int _dl_find_object(void* address, dl_find_object* result) noexcept {
  search_t search{reinterpret_cast<std::uintptr_t>(address), result};
  const bool is_found = dl_iterate_phdr(lookInto, &search) == 1;
  return is_found && result->dlfo_eh_frame != nullptr ? 0 : -1;
}
