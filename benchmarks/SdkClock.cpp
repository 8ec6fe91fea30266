#include "benchmarks/SdkClock.h"

#include "instrument/KvaSdk.h"

#include <cstdlib>
#include <dlfcn.h>

namespace {

using Clock = std::chrono::steady_clock;

std::chrono::nanoseconds s_total{0};
int s_calls = 0;

template <class Function, class... Argument>
KVA_RESULT timedCall(Function* /*sameType*/, void* address, Argument... argument) {
    if (!address)
        std::abort();
    const auto function = reinterpret_cast<Function*>(address);
    const Clock::time_point start = Clock::now();
    const KVA_RESULT result = function(argument...);
    s_total += Clock::now() - start;
    ++s_calls;
    return result;
}

} // namespace

std::chrono::nanoseconds SdkClock::total() {
    return s_total;
}

int SdkClock::calls() {
    return s_calls;
}

// The addresses are looked up once, outside of what is measured but for the first call.
KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    static void* const real = ::dlsym(RTLD_NEXT, "KVA_Connect");
    return timedCall(KVA_Connect, real, port, wait);
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    static void* const real = ::dlsym(RTLD_NEXT, "KVA_GetDeviceInfo");
    return timedCall(KVA_GetDeviceInfo, real, info);
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    static void* const real = ::dlsym(RTLD_NEXT, "KVA_GetNetworkInfo");
    return timedCall(KVA_GetNetworkInfo, real, info);
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    static void* const real = ::dlsym(RTLD_NEXT, "KVA_GetShutdownTime");
    return timedCall(KVA_GetShutdownTime, real, mode);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    static void* const real =
        ::dlsym(RTLD_NEXT, "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA");
    return timedCall(KVA_JIG_GetFactoryCalib_CALREFDATA, real, data);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    static void* const real =
        ::dlsym(RTLD_NEXT,
                "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA");
    return timedCall(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA, real, data);
}
