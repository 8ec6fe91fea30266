#include "simulator/FaultRules.h"
#include "simulator/Records.h"

#include <algorithm>

namespace kvasim {

namespace {

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
    const auto given = value.is_number() ? readNumber<std::int32_t>(value, path)
                                         : resultFromName(readString(value, path));
    if (!given)
        refuse(path, "is not the name of a result code");
    const std::string name = resultName(*given);
    // A name stands for known bits only; a value with others would come back without them.
    return resultFromName(name) == given ? Json(name) : Json(*given);
}

Json readTrue(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    if (!readBool(value, path))
        refuse(path, "must be true");
    return true;
}

Json readMoment(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const std::string moment = readString(value, path);
    if (std::find(moments.begin(), moments.end(), moment) == moments.end())
        refuse(path, "must be \"before\", \"during\" or \"after\"");
    return moment;
}

/** The bytes of an answer that are corrupted; nothing where it has none of them. */
std::optional<ByteRange> rangeOf(Function function, const Json& corruption) {
    const Record* const record = answerRecord(function);
    if (record == nullptr)
        return std::nullopt;
    if (corruption.contains("field"))
        return answerField(function, corruption["field"].get<std::string>());
    const auto offset = corruption["offset"].get<std::size_t>();
    return offset < record->size ? std::optional(ByteRange{offset, 1}) : std::nullopt;
}

/** Whether an answer to a call that the rule is for has the bytes. */
bool isInAnswer(const FaultRule& rule, const Json& corruption) {
    for (std::size_t index = 0; index < functionCount; ++index) {
        const auto function = static_cast<Function>(index);
        if (rule.function.value_or(function) == function && rangeOf(function, corruption))
            return true;
    }
    return false;
}

Json readCorrupted(const Json& json, const std::string& path, const FaultRule& rule) {
    JsonFields fields(json, path);
    const Json* const field = fields.find("field");
    const Json* const offset = fields.find("offset");
    const Json* const value = fields.find("value");
    const Json* const flipped = fields.find("xor");
    if ((field == nullptr) == (offset == nullptr))
        refuse(path, "must have either a field or an offset");
    if (value != nullptr && flipped != nullptr)
        refuse(path, "must not have both a value and an xor");
    fields.finish();
    Json usual;
    if (field != nullptr)
        usual["field"] = readString(*field, fields.pathOf("field"));
    else
        usual["offset"] = readNumber<std::uint32_t>(*offset, fields.pathOf("offset"));
    if (!isInAnswer(rule, usual))
        refuse(fields.pathOf(field != nullptr ? "field" : "offset"),
               "is not in the answer of the function");
    if (value != nullptr)
        usual["value"] = readNumber<std::uint8_t>(*value, fields.pathOf("value"));
    else
        usual["xor"] =
            flipped == nullptr ? 255 : readInteger(*flipped, fields.pathOf("xor"), 1, 255);
    return usual;
}

void answer(const Json& value, const FaultRule& /*rule*/, CallEffects& effects) {
    if (!effects.result)
        effects.result =
            value.is_string() ? resultFromName(value.get<std::string>()) : value.get<KVA_RESULT>();
}

void unplug(const Json& value, const FaultRule& rule, CallEffects& effects) {
    if (effects.unplug)
        return;
    const auto moment = std::find(moments.begin(), moments.end(), value.get<std::string>());
    effects.unplug = {static_cast<Moment>(moment - moments.begin()), std::nullopt};
    if (rule.has("instrument"))
        effects.unplug->instrument = rule.get<std::int32_t>("instrument");
}

using Effects = CallEffects;
constexpr std::array<FaultKind, 7> kinds = {{
    {"result", anyFunction, readResult, answer},
    {"delayMs", anyFunction,
     [](const Json& value, const std::string& path, const FaultRule&) -> Json {
         return readInteger(value, path, 0, 600000);
     },
     [](const Json& value, const FaultRule&, Effects& effects) {
         effects.delay += std::chrono::milliseconds(value.get<std::int64_t>());
     }},
    {"dropped", accepting, readTrue,
     [](const Json&, const FaultRule&, Effects& effects) { effects.dropped = true; }},
    {"stale", rereading, readTrue,
     [](const Json&, const FaultRule&, Effects& effects) { effects.stale = true; }},
    {"corrupted", anyFunction, readCorrupted,
     [](const Json& value, const FaultRule&, Effects& effects) {
         effects.corruptions.push_back(value);
     }},
    {"shortList", bit(Function::GetDevicePortList),
     [](const Json& value, const std::string& path, const FaultRule&) -> Json {
         return readNumber<std::uint32_t>(value, path);
     },
     [](const Json& value, const FaultRule&, Effects& effects) {
         effects.longestList =
             std::min(value.get<std::uint32_t>(), effects.longestList.value_or(UINT32_MAX));
     }},
    {"unplug", anyFunction, readMoment, unplug},
}};

} // namespace

const std::array<FaultKind, 7>& faultKinds() {
    return kinds;
}

void corrupt(const CallEffects& effects, Function function, void* record) {
    auto* const bytes = static_cast<std::uint8_t*>(record);
    for (const Json& corruption : effects.corruptions) {
        const auto [offset, size] = rangeOf(function, corruption).value_or(ByteRange{0, 0});
        for (std::size_t index = offset; index < offset + size; ++index)
            bytes[index] = corruption.contains("value")
                               ? corruption["value"].get<std::uint8_t>()
                               : bytes[index] ^ corruption["xor"].get<std::uint8_t>();
    }
}

} // namespace kvasim
