#include "simulator/FaultKinds.h"

#include "simulator/Instrument.h"
#include "simulator/JsonFields.h"

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
        if (corruption.field.empty() ? corruption.offset < answerSize(function)
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

void answer(const FaultRule& rule, CallEffects& effects) {
    if (effects.result)
        return;
    effects.result = rule.value.is_string() ? resultFromName(rule.value.get<std::string>())
                                            : rule.value.get<KVA_RESULT>();
}

void delay(const FaultRule& rule, CallEffects& effects) {
    effects.delay += std::chrono::milliseconds(rule.value.get<std::int64_t>());
}

void drop(const FaultRule& /*rule*/, CallEffects& effects) {
    effects.dropped = true;
}

void makeStale(const FaultRule& /*rule*/, CallEffects& effects) {
    effects.stale = true;
}

void corruptAnswer(const FaultRule& rule, CallEffects& effects) {
    JsonFields fields(rule.value, "");
    effects.corruptions.push_back(corruptionOf(fields, ""));
}

void shorten(const FaultRule& rule, CallEffects& effects) {
    effects.longestList =
        std::min(rule.value.get<std::uint32_t>(), effects.longestList.value_or(UINT32_MAX));
}

void unplug(const FaultRule& rule, CallEffects& effects) {
    const auto moment = std::find(moments.begin(), moments.end(), rule.value.get<std::string>());
    if (!effects.unplug)
        effects.unplug = {static_cast<Moment>(moment - moments.begin()), rule.instrument};
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

void readKind(const FaultKind& kind, const Json& value, const std::string& path, FaultRule& rule) {
    rule.kind = &kind;
    rule.value = kind.read(value, path, rule);
    if (rule.function && (kind.functions & bit(*rule.function)) == 0)
        refuse(path, std::string("is not for ") + functionName(*rule.function));
}

void apply(const FaultRule& rule, CallEffects& effects) {
    rule.kind->apply(rule, effects);
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
