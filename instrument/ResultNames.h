#ifndef INSTRUMENT_RESULTNAMES_H
#define INSTRUMENT_RESULTNAMES_H

#include "instrument/KvaSdk.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** The names of the warning bits that are set in a positive result, the lowest bit first; none for
    another result and for bits without a name. Any thread. */
std::vector<const char*> warningNames(KVA_RESULT code);

/** The name of a result code; of a positive one the names of its warning bits joined by "/". Empty
    for a value without a name. Any thread. */
std::string resultName(KVA_RESULT code);

/** The result code or warning bit with this name; nothing for an unknown name. Any thread. */
std::optional<KVA_RESULT> resultOfName(std::string_view name);

#endif
