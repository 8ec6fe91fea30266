#include "simulator/FaultRules.h"
#include "simulator/Records.h"

#include <algorithm>

namespace kvasim {

namespace {

constexpr std::int64_t maxDelayMs = 600000;
constexpr std::array<const char*, 3> moments = {"before", "during", "after"};

constexpr unsigned int bit(Function function) {
    return 1U << static_cast<unsigned int>(function);
}

constexpr unsigned int anyFunction = ~0U;
constexpr unsigned int accepting = bit(Function::Connect) | bit(Function::Disconnect) |
                                   bit(Function::SetNetworkInfo) | bit(Function::SetShutdownTime) |
                                   bit(Function::SetCalibration) | bit(Function::WriteSector);
constexpr unsigned int rereading = bit(Function::GetDevicePortList) |
                                   bit(Function::GetNetworkInfo) | bit(Function::GetShutdownTime) |
                                   bit(Function::GetCalibration);

Json readResult(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const auto given =
        value.is_number() ? readInt32(value, path) : resultFromName(readString(value, path));
    if (!given)
        refuse(path, "is not the name of a result code");
    const std::string name = resultName(*given);
    // A name stands for known bits only; a value with others would come back without them.
    return resultFromName(name) == given ? Json(name) : Json(*given);
}

Json readDelay(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    return readInteger(value, path, 0, maxDelayMs);
}

Json readTrue(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    if (!readBool(value, path))
        refuse(path, "must be true");
    return true;
}

Json readShortList(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    return readUint32(value, path);
}

Json readUnplug(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const std::string moment = readString(value, path);
    if (std::find(moments.begin(), moments.end(), moment) == moments.end())
        refuse(path, "must be \"before\", \"during\" or \"after\"");
    return moment;
}

/** Whether an answer to a call that the rule is for has the bytes. */
bool isInAnswer(const FaultRule& rule, const Corruption& corruption) {
    for (std::size_t index = 0; index < functionCount; ++index) {
        const auto function = static_cast<Function>(index);
        if (rule.function && rule.function != function)
            continue;
        const Record* const record = answerRecord(function);
        if (corruption.field.empty() ? record != nullptr && corruption.offset < record->size
                                     : answerField(function, corruption.field).has_value())
            return true;
    }
    return false;
}

Corruption corruptionOf(JsonFields& fields, const std::string& path) {
    Corruption corruption;
    const Json* const field = fields.find("field");
    const Json* const offset = fields.find("offset");
    if ((field == nullptr) == (offset == nullptr))
        refuse(path, "must have either a field or an offset");
    if (field != nullptr)
        corruption.field = readString(*field, fields.pathOf("field"));
    else
        corruption.offset = readUint32(*offset, fields.pathOf("offset"));
    const Json* const value = fields.find("value");
    const Json* const flipped = fields.find("xor");
    if (value != nullptr && flipped != nullptr)
        refuse(path, "must not have both a value and an xor");
    if (value != nullptr)
        corruption.value = readUint8(*value, fields.pathOf("value"));
    if (flipped != nullptr)
        corruption.flipped =
            static_cast<std::uint8_t>(readInteger(*flipped, fields.pathOf("xor"), 1, 255));
    fields.finish();
    return corruption;
}

Json readCorrupted(const Json& json, const std::string& path, const FaultRule& rule) {
    JsonFields fields(json, path);
    const Corruption corruption = corruptionOf(fields, path);
    const char* const place = json.contains("field") ? "field" : "offset";
    const bool isNamed = json.contains("field") && corruption.field.empty();
    if (isNamed || !isInAnswer(rule, corruption))
        refuse(fields.pathOf(place), "is not in the answer of the function");
    Json usual = {{place, json[place]}};
    if (corruption.value)
        usual["value"] = *corruption.value;
    else
        usual["xor"] = corruption.flipped;
    return usual;
}

void answer(const Json& value, const FaultRule& /*rule*/, CallEffects& effects) {
    if (!effects.result)
        effects.result =
            value.is_string() ? resultFromName(value.get<std::string>()) : value.get<KVA_RESULT>();
}

void delay(const Json& value, const FaultRule& /*rule*/, CallEffects& effects) {
    effects.delay += std::chrono::milliseconds(value.get<std::int64_t>());
}

void drop(const Json& /*value*/, const FaultRule& /*rule*/, CallEffects& effects) {
    effects.dropped = true;
}

void makeStale(const Json& /*value*/, const FaultRule& /*rule*/, CallEffects& effects) {
    effects.stale = true;
}

void corruptAnswer(const Json& value, const FaultRule& /*rule*/, CallEffects& effects) {
    JsonFields fields(value, "");
    effects.corruptions.push_back(corruptionOf(fields, ""));
}

void shorten(const Json& value, const FaultRule& /*rule*/, CallEffects& effects) {
    effects.longestList =
        std::min(value.get<std::uint32_t>(), effects.longestList.value_or(UINT32_MAX));
}

void unplug(const Json& value, const FaultRule& rule, CallEffects& effects) {
    if (effects.unplug)
        return;
    const auto moment = std::find(moments.begin(), moments.end(), value.get<std::string>());
    effects.unplug = {static_cast<Moment>(moment - moments.begin()), std::nullopt};
    if (rule.has("instrument"))
        effects.unplug->instrument = rule.get<std::int32_t>("instrument");
}

} // namespace

const std::array<FaultKind, 7>& faultKinds() {
    static constexpr std::array<FaultKind, 7> kinds = {{
        {"result", anyFunction, readResult, answer},
        {"delayMs", anyFunction, readDelay, delay},
        {"dropped", accepting, readTrue, drop},
        {"stale", rereading, readTrue, makeStale},
        {"corrupted", anyFunction, readCorrupted, corruptAnswer},
        {"shortList", bit(Function::GetDevicePortList), readShortList, shorten},
        {"unplug", anyFunction, readUnplug, unplug},
    }};
    return kinds;
}

void corrupt(const CallEffects& effects, Function function, void* record, std::size_t size) {
    auto* bytes = static_cast<std::uint8_t*>(record);
    for (const Corruption& corruption : effects.corruptions) {
        const auto range =
            corruption.field.empty()
                ? ByteRange{corruption.offset, 1}
                : answerField(function, corruption.field).value_or(ByteRange{size, 0});
        const std::size_t end = std::min(size, range.offset + range.size);
        for (std::size_t index = range.offset; index < end; ++index)
            bytes[index] = corruption.value.value_or(
                static_cast<std::uint8_t>(bytes[index] ^ corruption.flipped));
    }
}

} // namespace kvasim
