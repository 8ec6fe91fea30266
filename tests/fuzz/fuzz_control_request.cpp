// Any request: an answer comes back, and the bench is still one that can be taken whole.
#include "simulator/KvaSim.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

constexpr const char* bench =
    R"({"version": 1, "instruments": [{"serialNumber": 1, "plugged": true}, {"serialNumber": 2}]})";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    require(KvaSim_LoadJson(bench));
    const std::string request(reinterpret_cast<const char*>(data), size);
    char* answer = KvaSim_Request(request.c_str());
    require(answer != nullptr && answer[0] == '{');
    KvaSim_Free(answer);
    char* state = KvaSim_State();
    require(state != nullptr && KvaSim_LoadJson(state));
    KvaSim_Free(state);
    return 0;
}
