#include "simulator/Control.h"

#include "simulator/JsonFields.h"

#include <array>

namespace kvasim {

namespace {

constexpr std::size_t callsAtOnce = 1000;

std::int32_t serialNumberOf(JsonFields& request) {
    return readInt32(request.get("serialNumber"), "serialNumber");
}

Keys keysOf(JsonFields& request) {
    const Json* reveal = request.find("reveal");
    return reveal != nullptr && readBool(*reveal, "reveal") ? Keys::Shown : Keys::Hidden;
}

void list(Simulator& simulator, JsonFields& request, Json& answer) {
    request.finish();
    answer["instruments"] = simulator.list();
}

void state(Simulator& simulator, JsonFields& request, Json& answer) {
    const Keys keys = keysOf(request);
    request.finish();
    answer["bench"] = simulator.state(keys);
}

void show(Simulator& simulator, JsonFields& request, Json& answer) {
    const std::int32_t serialNumber = serialNumberOf(request);
    const Keys keys = keysOf(request);
    request.finish();
    answer["instrument"] = simulator.instrument(serialNumber, keys);
}

void plug(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const std::int32_t serialNumber = serialNumberOf(request);
    request.finish();
    simulator.setPlugged(serialNumber, true);
}

void unplug(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const std::int32_t serialNumber = serialNumberOf(request);
    request.finish();
    simulator.setPlugged(serialNumber, false);
}

void powerCycle(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const std::int32_t serialNumber = serialNumberOf(request);
    request.finish();
    simulator.powerCycle(serialNumber, StartUp::Timed);
}

void set(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const std::int32_t serialNumber = serialNumberOf(request);
    const Json& patch = request.get("patch");
    request.finish();
    simulator.set(serialNumber, patch);
}

void addFault(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const FaultRule rule = faultRuleFromJson(request.get("fault"), "fault");
    request.finish();
    simulator.addFault(rule);
}

void faults(Simulator& simulator, JsonFields& request, Json& answer) {
    request.finish();
    answer["faults"] = simulator.faults();
}

void clearFaults(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    request.finish();
    simulator.clearFaults();
}

void log(Simulator& simulator, JsonFields& request, Json& answer) {
    const Json* after = request.find("after");
    const std::int64_t number = after == nullptr ? 0 : readInteger(*after, "after", 0, INT64_MAX);
    request.finish();
    Json& calls = answer["calls"] = Json::array();
    for (const std::string& line :
         simulator.log().page(static_cast<std::uint64_t>(number), callsAtOnce).lines)
        calls.push_back(parseJson(line));
}

void clearLog(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    request.finish();
    simulator.log().clear();
}

void event(Simulator& simulator, JsonFields& request, Json& /*answer*/) {
    const Json* rawDataCount = request.find("rawDataCount");
    const Json* error = request.find("error");
    const DeviceEvent event{readUint32(request.get("code"), "code"),
                            rawDataCount == nullptr ? 0 : readUint32(*rawDataCount, "rawDataCount"),
                            error == nullptr ? 0 : readInt32(*error, "error")};
    request.finish();
    simulator.events().post(event);
}

struct Command {
    const char* name;
    void (*perform)(Simulator&, JsonFields&, Json&);
};

constexpr std::array<Command, 13> commands = {{
    {"list", list},
    {"state", state},
    {"show", show},
    {"plug", plug},
    {"unplug", unplug},
    {"powerCycle", powerCycle},
    {"set", set},
    {"addFault", addFault},
    {"faults", faults},
    {"clearFaults", clearFaults},
    {"log", log},
    {"clearLog", clearLog},
    {"event", event},
}};

void answerInto(Simulator& simulator, std::string_view text, Json& answer) {
    const Json document = parseJson(text);
    JsonFields request(document, "");
    const std::string name = readString(request.get("command"), "command");
    for (const Command& command : commands) {
        if (name == command.name)
            return command.perform(simulator, request, answer);
    }
    refuse("command", "is not a known command");
}

} // namespace

std::string answerRequest(Simulator& simulator, std::string_view request) {
    Json answer = {{"ok", true}};
    try {
        answerInto(simulator, request, answer);
    } catch (const InputError& error) {
        answer = {{"ok", false}, {"error", error.what()}};
    }
    // A reason may name a file whose name is no UTF-8.
    return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace kvasim
