// Loads the library that the first argument names, uses its event thread and unloads it. Ends with
// 0 when the library is gone and the program still runs.

#include <cstdint>
#include <cstdio>

#include <dlfcn.h>

namespace {

int g_events = 0;

void countEvent(std::uint32_t, std::uint32_t, std::int32_t) {
    ++g_events;
}

template <typename Function>
Function symbol(void* library, const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2)
        return 64;
    for (int round = 0; round < 20; ++round) {
        void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            std::puts(dlerror());
            return 1;
        }
        const auto registerHandler =
            symbol<std::int32_t (*)(void (*)(std::uint32_t, std::uint32_t, std::int32_t))>(
                library, "KVA_RegisterDeviceEventHandler");
        const auto emitEvent = symbol<void (*)(std::uint32_t, std::uint32_t, std::int32_t)>(
            library, "KvaSim_EmitEvent");
        const auto waitForEvents = symbol<void (*)()>(library, "KvaSim_WaitForEvents");
        if (registerHandler(countEvent) != 0)
            return 2;
        emitEvent(1, 0, 0);
        waitForEvents();
        if (g_events != round + 1)
            return 3;
        if (dlclose(library) != 0 || dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != nullptr)
            return 4;
    }
    return 0;
}
