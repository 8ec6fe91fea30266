// Any text as a bench: refused with a reason, or taken whole, in which case what is written of it
// is taken again and is the same.
#include "simulator/KvaSim.h"
#include "tests/fuzz/FuzzFile.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!KvaSim_LoadJson(textOf(data, size).c_str())) {
        require(std::strlen(KvaSim_LastError()) > 0);
        return 0;
    }
    char* first = KvaSim_State();
    require(first != nullptr && KvaSim_LoadJson(first));
    char* second = KvaSim_State();
    require(second != nullptr && std::strcmp(first, second) == 0);
    KvaSim_Free(first);
    KvaSim_Free(second);
    return 0;
}
