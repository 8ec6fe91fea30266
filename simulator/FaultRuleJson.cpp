#include "simulator/FaultRules.h"

#include "simulator/AnswerFields.h"
#include "simulator/JsonFields.h"

#include <array>
#include <string_view>

namespace kvasim {

namespace {

constexpr std::uint32_t unlimited = UINT32_MAX;
constexpr std::int64_t maxDelayMs = 600000;

/** A call number in decimal, from 1; nothing for any other text. */
std::optional<std::uint32_t> callNumber(std::string_view text) {
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const char digit : text)
        number = number * 10 + static_cast<std::uint32_t>(digit - '0');
    return number > 0 ? std::optional(number) : std::nullopt;
}

void readCall(const Json& value, const std::string& path, FaultRule& rule) {
    if (value.is_number()) {
        rule.firstCall = static_cast<std::uint32_t>(readInteger(value, path, 1, unlimited - 1));
        rule.lastCall = rule.firstCall;
        return;
    }
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    if (text == "every")
        return;
    const auto dash = text.find('-');
    const auto first = callNumber(std::string_view(text).substr(0, dash));
    const auto last =
        dash == std::string::npos ? first : callNumber(std::string_view(text).substr(dash + 1));
    if (!first || !last || *first > *last)
        refuse(path, "must be a call number from 1, a range such as \"2-5\" or \"every\"");
    rule.firstCall = *first;
    rule.lastCall = *last;
}

KVA_RESULT readResult(const Json& value, const std::string& path) {
    if (value.is_number())
        return readInt32(value, path);
    const auto result = resultFromName(readString(value, path));
    if (!result)
        refuse(path, "is not the name of a result code");
    return *result;
}

double readProbability(const Json& value, const std::string& path) {
    const double probability = value.is_number() ? value.get<double>() : 0;
    if (!(probability > 0 && probability <= 1))
        refuse(path, "must be a number above 0, to 1");
    return probability;
}

void readTrue(const Json& value, const std::string& path) {
    if (!readBool(value, path))
        refuse(path, "must be true");
}

constexpr std::array<Function, 6> accepting = {Function::Connect,        Function::Disconnect,
                                               Function::SetNetworkInfo, Function::SetShutdownTime,
                                               Function::SetCalibration, Function::WriteSector};
constexpr std::array<Function, 4> rereading = {Function::GetDevicePortList,
                                               Function::GetNetworkInfo, Function::GetShutdownTime,
                                               Function::GetCalibration};

/** Refuses a fault that the rule's function cannot have. */
template <std::size_t Count>
void requireOneOf(const std::array<Function, Count>& functions, const FaultRule& rule,
                  const std::string& path) {
    if (!rule.function)
        return;
    for (const Function function : functions) {
        if (function == *rule.function)
            return;
    }
    refuse(path, std::string("is not for ") + functionName(*rule.function));
}

bool hasBytes(Function function, const CorruptedFault& fault) {
    return fault.field.empty() ? fault.offset < answerSize(function)
                               : answerField(function, fault.field).has_value();
}

CorruptedFault readCorrupted(const Json& json, const std::string& path, const FaultRule& rule) {
    CorruptedFault fault;
    JsonFields fields(json, path);
    const Json* field = fields.find("field");
    const Json* offset = fields.find("offset");
    if ((field == nullptr) == (offset == nullptr))
        refuse(path, "must have either a field or an offset");
    const char* const place = field != nullptr ? "field" : "offset";
    if (field != nullptr)
        fault.field = readString(*field, fields.pathOf("field"));
    else
        fault.offset = readUint32(*offset, fields.pathOf("offset"));
    bool found = false;
    for (std::size_t index = 0; index < functionCount; ++index) {
        const auto function = static_cast<Function>(index);
        if (!rule.function || rule.function == function)
            found = found || hasBytes(function, fault);
    }
    if (!found || (field != nullptr && fault.field.empty()))
        refuse(fields.pathOf(place), "is not in the answer of the function");
    const Json* value = fields.find("value");
    const Json* flipped = fields.find("xor");
    if (value != nullptr && flipped != nullptr)
        refuse(path, "must not have both a value and an xor");
    if (value != nullptr)
        fault.value = readUint8(*value, fields.pathOf("value"));
    if (flipped != nullptr)
        fault.flipped =
            static_cast<std::uint8_t>(readInteger(*flipped, fields.pathOf("xor"), 1, 255));
    fields.finish();
    return fault;
}

UnplugFault readUnplug(const Json& value, const std::string& path, JsonFields& fields) {
    UnplugFault fault{};
    const std::string moment = readString(value, path);
    if (moment == "before")
        fault.moment = Moment::Before;
    else if (moment == "during")
        fault.moment = Moment::During;
    else if (moment == "after")
        fault.moment = Moment::After;
    else
        refuse(path, "must be \"before\", \"during\" or \"after\"");
    if (const Json* instrument = fields.find("instrument"))
        fault.instrument = readInt32(*instrument, fields.pathOf("instrument"));
    return fault;
}

FaultAction readAction(const std::string& kind, const Json& value, JsonFields& fields,
                       const FaultRule& rule) {
    const std::string path = fields.pathOf(kind.c_str());
    if (kind == "result")
        return ResultFault{readResult(value, path)};
    if (kind == "delayMs")
        return DelayFault{static_cast<std::uint32_t>(readInteger(value, path, 0, maxDelayMs))};
    if (kind == "dropped") {
        readTrue(value, path);
        requireOneOf(accepting, rule, path);
        return DroppedFault{};
    }
    if (kind == "stale") {
        readTrue(value, path);
        requireOneOf(rereading, rule, path);
        return StaleFault{};
    }
    if (kind == "corrupted")
        return readCorrupted(value, path, rule);
    if (kind == "shortList") {
        requireOneOf(std::array<Function, 1>{Function::GetDevicePortList}, rule, path);
        return ShortListFault{readUint32(value, path)};
    }
    return readUnplug(value, path, fields);
}

void readActionOfRule(JsonFields& fields, FaultRule& rule) {
    const char* found = nullptr;
    for (const char* kind :
         {"result", "delayMs", "dropped", "stale", "corrupted", "shortList", "unplug"}) {
        const Json* value = fields.find(kind);
        if (value == nullptr)
            continue;
        if (found != nullptr)
            refuse(fields.pathOf(kind), std::string("cannot be given together with ") + found);
        found = kind;
        rule.action = readAction(kind, *value, fields, rule);
    }
    if (found == nullptr)
        refuse(fields.pathOf("result"), "is missing, and so is every other fault");
}

struct ActionToJson {
    Json& json;

    void operator()(const ResultFault& fault) const {
        const std::string name = resultName(fault.result);
        // A name stands for known bits only; a value with others would come back without them.
        if (!name.empty() && resultFromName(name) == fault.result)
            json["result"] = name;
        else
            json["result"] = fault.result;
    }
    void operator()(const DelayFault& fault) const { json["delayMs"] = fault.milliseconds; }
    void operator()(const DroppedFault& /*fault*/) const { json["dropped"] = true; }
    void operator()(const StaleFault& /*fault*/) const { json["stale"] = true; }
    void operator()(const CorruptedFault& fault) const {
        Json& corrupted = json["corrupted"];
        if (fault.field.empty())
            corrupted["offset"] = fault.offset;
        else
            corrupted["field"] = fault.field;
        if (fault.value)
            corrupted["value"] = *fault.value;
        else
            corrupted["xor"] = fault.flipped;
    }
    void operator()(const ShortListFault& fault) const { json["shortList"] = fault.entries; }
    void operator()(const UnplugFault& fault) const {
        constexpr std::array<const char*, 3> names = {"before", "during", "after"};
        json["unplug"] = names.at(static_cast<std::size_t>(fault.moment));
        if (fault.instrument)
            json["instrument"] = *fault.instrument;
    }
};

} // namespace

FaultRule faultRuleFromJson(const Json& json, const std::string& path) {
    FaultRule rule;
    JsonFields fields(json, path);
    const std::string name = readString(fields.get("function"), fields.pathOf("function"));
    if (name != "*") {
        rule.function = functionFromName(name);
        if (!rule.function)
            refuse(fields.pathOf("function"), "is not the name of a function");
    }
    if (const Json* call = fields.find("call"))
        readCall(*call, fields.pathOf("call"), rule);
    if (const Json* serialNumber = fields.find("serialNumber"))
        rule.serialNumber = readInt32(*serialNumber, fields.pathOf("serialNumber"));
    if (const Json* times = fields.find("times"))
        rule.times =
            static_cast<std::uint32_t>(readInteger(*times, fields.pathOf("times"), 1, UINT32_MAX));
    if (const Json* probability = fields.find("probability"))
        rule.probability = readProbability(*probability, fields.pathOf("probability"));
    if (const Json* seed = fields.find("seed"))
        rule.seed = readUint32(*seed, fields.pathOf("seed"));
    if (rule.seed && !rule.probability)
        refuse(fields.pathOf("seed"), "needs a probability");
    readActionOfRule(fields, rule);
    fields.finish();
    return rule;
}

Json faultRuleToJson(const FaultRule& rule) {
    Json json;
    json["function"] = rule.function ? functionName(*rule.function) : "*";
    if (rule.lastCall == unlimited && rule.firstCall == 1)
        json["call"] = "every";
    else if (rule.firstCall == rule.lastCall)
        json["call"] = rule.firstCall;
    else
        json["call"] = std::to_string(rule.firstCall) + '-' + std::to_string(rule.lastCall);
    if (rule.serialNumber)
        json["serialNumber"] = *rule.serialNumber;
    if (rule.times)
        json["times"] = *rule.times;
    if (rule.probability)
        json["probability"] = *rule.probability;
    if (rule.seed)
        json["seed"] = *rule.seed;
    std::visit(ActionToJson{json}, rule.action);
    return json;
}

} // namespace kvasim
