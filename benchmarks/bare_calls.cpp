/**
 * bare_calls COUNT: the calls to the library that write, for the instruments 1 to COUNT, with the
 * least around them: what the library itself needs for a plan over as many.
 */
#include "instrument/InstrumentAccess.h"

#include <cstdio>
#include <cstdlib>

namespace {

class Indifferent : public CallObserver {
public:
    void callBegins(const char* /*function*/) override {}
    void callEnded(const CallResult& /*result*/) override {}
};

bool writeAll(InstrumentAccess& access, std::int32_t serialNumber) {
    KVA_NETWORKINFO network = {};
    KVA_JIG_CALREFDATA record = {};
    if (access.open(serialNumber).state != InstrumentAccess::Opening::Open ||
        access.read(network).failed() || access.read(record).failed())
        return false;
    network.SSID[0] = 'N';
    auto* const bytes = reinterpret_cast<unsigned char*>(&record);
    bytes[0] = static_cast<unsigned char>(bytes[0] + 1);
    const bool isStaged = !access.stage(record).failed() && !access.commit().failed();
    access.commit(); // answers that nothing is staged
    return isStaged && !access.writePowerOffMode(eShutdownTime_30Minutes).failed() &&
           !access.write(network).failed() && !access.disconnect().failed();
}

} // namespace

int main(int argc, char** argv) {
    const long count = argc == 2 ? std::strtol(argv[1], nullptr, 10) : 0;
    Indifferent observer;
    for (int i = 1; i <= count; ++i) {
        InstrumentAccess access(observer);
        if (!writeAll(access, i)) {
            std::fprintf(stderr, "instrument %d cannot be written\n", i);
            return 1;
        }
    }
    return 0;
}
