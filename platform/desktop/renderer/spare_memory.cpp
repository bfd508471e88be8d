#include "platform/desktop/renderer/spare_memory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string_view>

namespace {

/// Without a graphics card the driver compiles shaders with a compiler of 100 MB of code, which stays mapped
/// though it has done its work. Its pages are the file's own: what is needed again comes back by itself.
int GiveBackCompiler(dl_phdr_info *library, std::size_t, void *) {
  if (std::string_view(library->dlpi_name).find("libLLVM") == std::string_view::npos) return 0;
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const ElfW(Phdr) &segment = library->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X) || (segment.p_flags & PF_W)) continue;
    const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
    const ElfW(Addr) first = (library->dlpi_addr + segment.p_vaddr) / page * page;
    const ElfW(Addr) end = library->dlpi_addr + segment.p_vaddr + segment.p_memsz;
    madvise(reinterpret_cast<void *>(first), end - first, MADV_DONTNEED);
  }
  return 0;
}

} // namespace

void GiveBackSpareMemory() {
  malloc_trim(0);
  dl_iterate_phdr(GiveBackCompiler, nullptr);
}
