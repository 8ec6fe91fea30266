#include "simulator/FaultRules.h"

#include "instrument/ResultNames.h"
#include "simulator/BenchStore.h"
#include "simulator/Records.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kvasim {

namespace {

bool isAny(std::string_view /*function*/) {
    return true;
}

/** Whether the function changes something. */
bool isWriting(std::string_view function) {
    return function == "KVA_Connect" || function == "KVA_Disconnect" ||
           function.find("_Set") != std::string_view::npos;
}

/** Whether the function's answer changes after a write, or after plugging. */
bool isRereading(std::string_view function) {
    return function == "KVA_GetDevicePortList" || function == "KVA_GetNetworkInfo" ||
           function == "KVA_GetShutdownTime" || function == "KVA_JIG_GetFactoryCalib_CALREFDATA";
}

bool isListing(std::string_view function) {
    return function == "KVA_GetDevicePortList";
}

// The readers check the value of a field and return it in normal form.

template <typename Number, std::int64_t lowest = std::numeric_limits<Number>::min(),
          std::int64_t highest = std::numeric_limits<Number>::max()>
Json readNumber(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    return static_cast<Number>(readInteger(value, path, lowest, highest));
}

Json readProbability(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const double probability = value.is_number() ? value.get<double>() : 0;
    require(probability > 0 && probability <= 1, path, "must be a number above 0, to 1");
    return value;
}

/** The result of a name, or of the names of several warnings joined by a slash. */
std::optional<KVA_RESULT> resultFromName(const std::string& name) {
    const auto slash = name.find('/');
    const auto first = resultOfName(name.substr(0, slash));
    if (!first || slash == std::string::npos)
        return first;
    const auto others = resultFromName(name.substr(slash + 1));
    if (!others || *first <= 0 || *others <= 0)
        return std::nullopt; // only warnings can be joined
    return *first | *others;
}

Json readResult(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const auto given = value.is_number() ? kvasim::readNumber<std::int32_t>(value, path)
                                         : resultFromName(readString(value, path));
    if (!given)
        refuse(path, "is not the name of a result code");
    const std::string name = resultName(*given);
    // A name has only known bits; a value with other bits stays a number.
    return resultFromName(name) == given ? Json(name) : Json(*given);
}

Json readTrue(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    require(readBool(value, path), path, "must be true");
    return true;
}

Json readMoment(const Json& value, const std::string& path, const FaultRule& /*rule*/) {
    const std::string moment = readString(value, path);
    require(moment == "before" || moment == "during" || moment == "after", path,
            "must be \"before\", \"during\" or \"after\"");
    return moment;
}

/** The corrupted bytes of a function's answer; nothing when its answer has no such bytes. */
std::optional<ByteRange> corruptedRange(std::string_view function, const Json& corruption) {
    const Record* const record = answerRecord(function);
    if (record == nullptr)
        return std::nullopt;
    if (corruption.contains("field"))
        return rangeOf(*record, corruption["field"].get<std::string>());
    const auto offset = corruption["offset"].get<std::size_t>();
    return offset < record->size ? std::optional(ByteRange{offset, 1}) : std::nullopt;
}

Json readCorrupted(const Json& json, const std::string& path, const FaultRule& rule) {
    requireFields(json, path, {"field", "offset", "value", "xor"});
    require(json.contains("field") != json.contains("offset"), path,
            "must have either a field or an offset");
    require(!json.contains("value") || !json.contains("xor"), path,
            "must not have both a value and an xor");
    const char* const place = json.contains("field") ? "field" : "offset";
    const std::string placePath = joined(path, place);
    Json usual;
    if (json.contains("field"))
        usual[place] = readString(json[place], placePath);
    else
        usual[place] = kvasim::readNumber<std::uint32_t>(json[place], placePath);
    const auto hasBytes = [&](std::string_view function) {
        return rule.isFor(function) && corruptedRange(function, usual);
    };
    require(std::any_of(functionNames.begin(), functionNames.end(), hasBytes), placePath,
            "is not in the answer of the function");
    if (json.contains("value"))
        usual["value"] = kvasim::readNumber<std::uint8_t>(json["value"], joined(path, "value"));
    else
        usual["xor"] = readInteger(json.value("xor", Json(255)), joined(path, "xor"), 1, 255);
    return usual;
}

/** A field of a rule, besides its function and its calls. */
struct FaultField {
    const char* key;
    const char* needs; /**< another field, without which it is refused; null: none */
    Json (*read)(const Json& value, const std::string& path, const FaultRule& rule);

    /** For a kind of fault: whether a function can have it. Null for any other field. */
    bool (*isFor)(std::string_view function) = nullptr;
};

constexpr FaultField fields[] = {
    {"serialNumber", nullptr, readNumber<std::int32_t>},
    {"times", nullptr, readNumber<std::uint32_t, 1>},
    {"probability", nullptr, readProbability},
    {"seed", "probability", readNumber<std::uint32_t>},
    {"instrument", "unplug", readNumber<std::int32_t>},
    {"id", nullptr, readNumber<std::uint32_t>},
    {"result", nullptr, readResult, isAny},
    {"delayMs", nullptr, readNumber<std::uint32_t, 0, 600000>, isAny},
    {"dropped", nullptr, readTrue, isWriting},
    {"stale", nullptr, readTrue, isRereading},
    {"corrupted", nullptr, readCorrupted, isAny},
    {"shortList", nullptr, readNumber<std::uint32_t>, isListing},
    {"unplug", nullptr, readMoment, isAny},
};

/** A call number in decimal; 0 for any other text. */
std::uint32_t callNumber(std::string_view text) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end && number != UINT32_MAX ? number : 0;
}

/** Reads which calls the rule matches. @return them in normal form */
Json readCall(const Json& value, const std::string& path, FaultRule& rule) {
    if (value == "every")
        return value;
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    const auto dash = text.find('-');
    rule.firstCall = callNumber(text.substr(0, dash));
    rule.lastCall = dash == std::string::npos ? rule.firstCall : callNumber(text.substr(dash + 1));
    require(rule.firstCall > 0 && rule.firstCall <= rule.lastCall, path,
            "must be a call number from 1, a range such as \"2-5\" or \"every\"");
    return rule.firstCall == rule.lastCall ? Json(rule.firstCall) : Json(text);
}

/** Whether two rules are the same, apart from the uses that are left. */
bool isSame(const FaultRule& left, const FaultRule& right) {
    Json uses = left.json;
    if (right.has("times"))
        uses["times"] = right.json["times"];
    return uses == right.json;
}

/** Whether the rule has a probability and is not applied to this call. */
bool isSpared(const FaultRule& rule, std::mt19937& chance) {
    return rule.has("probability") &&
           static_cast<double>(chance()) >= rule.json["probability"].get<double>() * 4294967296.0;
}

} // namespace

FaultRule makeFaultRule(const Json& json, const std::string& path) {
    FaultRule rule;
    const std::string name = readString(fieldOf(json, path, "function"), joined(path, "function"));
    rule.json["function"] = name;
    require(std::any_of(functionNames.begin(), functionNames.end(),
                        [&](std::string_view function) { return rule.isFor(function); }),
            joined(path, "function"), "is not the name of a function");
    const Json call = json.value("call", Json("every"));
    rule.json["call"] = readCall(call, joined(path, "call"), rule);
    std::vector<std::string> known = {"function", "call"};
    const char* kind = nullptr;
    for (const FaultField& field : fields) {
        known.emplace_back(field.key);
        if (!json.contains(field.key))
            continue;
        const std::string place = joined(path, field.key);
        if (field.isFor != nullptr && kind != nullptr)
            refuse(place, std::string("cannot be given together with ") + kind);
        if (field.needs != nullptr && !json.contains(field.needs))
            refuse(place, std::string("needs the field ") + field.needs);
        rule.json[field.key] = field.read(json[field.key], place, rule);
        if (field.isFor == nullptr)
            continue;
        kind = field.key;
        require(name == "*" || field.isFor(name), place, "is not for " + name);
    }
    require(kind != nullptr, joined(path, "result"), "is missing, and so is every other fault");
    requireFields(json, path, known);
    return rule;
}

void apply(const FaultRule& rule, CallEffects& effects) {
    const Json& json = rule.json;
    if (rule.has("result") && !effects.result)
        effects.result = json["result"].is_string()
                             ? resultFromName(json["result"].get<std::string>())
                             : json["result"].get<KVA_RESULT>();
    effects.delay += std::chrono::milliseconds(json.value("delayMs", 0));
    effects.dropped = effects.dropped || rule.has("dropped");
    effects.stale = effects.stale || rule.has("stale");
    if (rule.has("corrupted"))
        effects.corruptions.push_back(json["corrupted"]);
    effects.longestList = std::min(effects.longestList, json.value("shortList", UINT32_MAX));
    if (rule.has("unplug") && effects.unplug.empty()) {
        effects.unplug = json["unplug"];
        if (rule.has("instrument"))
            effects.unplugged = json["instrument"].get<std::int32_t>();
    }
}

void corrupt(const CallEffects& effects, std::string_view function, void* record) {
    auto* const bytes = static_cast<std::uint8_t*>(record);
    for (const Json& corruption : effects.corruptions) {
        const auto [offset, size] = corruptedRange(function, corruption).value_or(ByteRange{0, 0});
        for (std::size_t index = offset; index < offset + size; ++index)
            bytes[index] = corruption.contains("value")
                               ? corruption["value"].get<std::uint8_t>()
                               : bytes[index] ^ corruption["xor"].get<std::uint8_t>();
    }
}

void addFault(std::vector<FaultRule>& rules, FaultRule rule) {
    std::random_device random;
    rule.json["id"] = random();
    if (rule.has("probability") && !rule.has("seed"))
        rule.json["seed"] = random();
    rules.push_back(std::move(rule));
}

bool useUp(std::vector<FaultRule>& rules, const FaultRule& used) {
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const FaultRule& rule) { return isSame(rule, used); });
    if (found == rules.end())
        return false;
    found->json["times"] = found->json["times"].get<std::uint32_t>() - 1;
    if (found->json["times"] == 0)
        rules.erase(found);
    return true;
}

void FaultCounters::assign(const std::vector<FaultRule>& rules) {
    std::vector<Counted> before = std::exchange(m_rules, {});
    for (const FaultRule& rule : rules) {
        const auto known = std::find_if(before.begin(), before.end(), [&](const Counted& counted) {
            return isSame(counted.rule, rule);
        });
        if (known != before.end()) {
            m_rules.push_back({rule, std::move(known->calls), known->chance});
            before.erase(known);
            continue;
        }
        const std::uint32_t seed = rule.json.value("seed", std::random_device()());
        m_rules.push_back({rule, {}, std::mt19937(seed)});
        if (rule.has("probability"))
            complain("a rule for " + (rule.function() == "*" ? "every function" : rule.function()) +
                     " goes by chance, with seed " + std::to_string(seed));
    }
}

std::vector<FaultRule> FaultCounters::meet(std::string_view function,
                                           std::optional<std::int32_t> serialNumber) {
    std::vector<FaultRule> met;
    for (Counted& counted : m_rules) {
        const FaultRule& rule = counted.rule;
        const bool isForInstrument = !rule.has("serialNumber") ||
                                     rule.json["serialNumber"].get<std::int32_t>() == serialNumber;
        if (!rule.isFor(function) || !isForInstrument)
            continue;
        const std::uint64_t call = ++counted.calls[function];
        const bool isPast = rule.lastCall != UINT32_MAX && call > rule.lastCall;
        if (call >= rule.firstCall && !isPast && !isSpared(rule, counted.chance))
            met.push_back(rule);
    }
    return met;
}

} // namespace kvasim
