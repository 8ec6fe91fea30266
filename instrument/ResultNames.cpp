#include "instrument/ResultNames.h"

#include <algorithm>
#include <iterator>

namespace {

struct NamedCode {
    KVA_RESULT code;
    const char* name;
};

#define NAMED(code)                                                                                \
    { code, #code }

/** The warning bits come last. */
constexpr NamedCode resultNames[] = {
    NAMED(KVA_SUCCESS),
    NAMED(KVA_ERROR),
    NAMED(KVA_ERROR_CONNECT),
    NAMED(KVA_ERROR_DISCONNECT),
    NAMED(KVA_ERROR_CONNECT_TIMEOUT),
    NAMED(KVA_ERROR_CONNECT_ALREADY),
    NAMED(KVA_ERROR_INSTRUMENT_UNAVAILABLE),
    NAMED(KVA_ERROR_INSTRUMENT_INFORMATION),
    NAMED(KVA_ERROR_ARGUMENT),
    NAMED(KVA_ERROR_COMMUNICATION_SEND),
    NAMED(KVA_ERROR_COMMUNICATION_RECEIVE),
    NAMED(KVA_ERROR_COMMUNICATION_CHECKSUM),
    NAMED(KVA_ERROR_COMMUNICATION_PARAM),
    NAMED(KVA_ERROR_COMMUNICATION_TIMEOUT),
    NAMED(KVA_ERROR_CANT_USED),
    NAMED(KVA_ERROR_NO_DATA),
    NAMED(KVA_ERROR_NAK),
    NAMED(KVA_ERROR_NAV),
    NAMED(KVA_ERROR_NSP),
    NAMED(KVA_ERROR_CNF),
    NAMED(KVA_ERROR_NDT),
    NAMED(KVA_ERROR_NEQ),
    NAMED(KVA_WARNING_WCALIB_TEMP),
    NAMED(KVA_WARNING_BATTERY_EMPTY),
    NAMED(KVA_WARNING_INITIALDATE_SETTING),
};

#undef NAMED

} // namespace

std::vector<const char*> warningNames(KVA_RESULT code) {
    std::vector<const char*> names;
    for (const NamedCode& named : resultNames) {
        if (code > 0 && named.code > 0 && (code & named.code) != 0)
            names.push_back(named.name);
    }
    return names;
}

std::string resultName(KVA_RESULT code) {
    if (code <= 0) {
        const auto* found = std::find_if(std::begin(resultNames), std::end(resultNames),
                                         [code](const NamedCode& n) { return n.code == code; });
        return found == std::end(resultNames) ? std::string() : found->name;
    }
    std::string text;
    for (const char* name : warningNames(code)) {
        if (!text.empty())
            text += '/';
        text += name;
    }
    return text;
}

std::optional<KVA_RESULT> resultOfName(std::string_view name) {
    const auto* found = std::find_if(std::begin(resultNames), std::end(resultNames),
                                     [name](const NamedCode& n) { return n.name == name; });
    return found == std::end(resultNames) ? std::nullopt : std::optional(found->code);
}
