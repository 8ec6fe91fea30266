#include "simulator/Instrument.h"
#include "simulator/JsonFields.h"
#include "simulator/Records.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace kvasim {

namespace {

std::string placeOf(const Part& part, const Field& field) {
    return joined(part.place, field.place);
}

/** "device.firmware[1]" as /device/firmware/1. */
Json::json_pointer pointerTo(const std::string& place) {
    std::string pointer = place.empty() ? "" : "/";
    for (const char character : place) {
        if (character == '.' || character == '[')
            pointer += '/';
        else if (character == '~')
            pointer += "~0";
        else if (character == '/')
            pointer += "~1";
        else if (character != ']')
            pointer += character;
    }
    return Json::json_pointer(pointer);
}

/** The values of an instrument's JSON by their places. Refuses what has no place. */
class Values {
public:
    Values(const Json& json, std::string path) : m_path(std::move(path)) {
        for (const Part& part : parts) {
            for (const Field& field : *part.record) {
                if (field.place != nullptr)
                    m_values[placeOf(part, field)] = nullptr;
            }
            if (part.optional != nullptr)
                m_values[part.place] = nullptr;
        }
        collect(json, "");
    }

    /** Null where it is left out. */
    const Json* find(const std::string& place) const { return m_values.at(place); }
    std::string pathOf(const std::string& place) const {
        return place.empty() ? m_path : joined(m_path, place);
    }

private:
    void collect(const Json& json, const std::string& place) {
        if (!json.is_object())
            refuse(pathOf(place), "must be an object");
        for (const auto& item : json.items())
            take(item.value(), joined(place, item.key()));
    }

    void take(const Json& value, const std::string& place) {
        const auto known = m_values.find(place);
        if (known != m_values.end()) {
            known->second = &value;
            if (!hasPlaces(place + '.') || value.is_null())
                return;
        } else if (hasPlaces(place + '[')) {
            return takeElements(value, place);
        } else if (!hasPlaces(place + '.')) {
            refuse(pathOf(place), "is not a known field");
        }
        collect(value, place);
    }

    void takeElements(const Json& array, const std::string& place) {
        std::size_t count = 0;
        for (; hasPlaces(elementOf(place, count)); ++count) {
            if (array.is_array() && count < array.size())
                m_values[elementOf(place, count)] = &array[count];
        }
        if (!array.is_array() || array.size() != count)
            refuse(pathOf(place), "must be an array of " + std::to_string(count) + " numbers");
    }

    static std::string elementOf(const std::string& place, std::size_t index) {
        return place + '[' + std::to_string(index) + ']';
    }

    bool hasPlaces(const std::string& start) const {
        const auto next = m_values.lower_bound(start);
        return next != m_values.end() && next->first.compare(0, start.size(), start) == 0;
    }

    std::string m_path;
    std::map<std::string, const Json*> m_values;
};

/** Whether the part is there; where it need not be, it starts with the values of the other one. */
bool prepare(const Part& part, const Values& values, std::uint8_t* instrument) {
    if (part.optional == nullptr)
        return true;
    const Json* const given = values.find(part.place);
    const bool isThere = given != nullptr && !given->is_null();
    std::memcpy(instrument + part.optional->isThere, &isThere, sizeof isThere);
    std::memcpy(instrument + part.offset, instrument + part.optional->otherwise, part.record->size);
    return isThere;
}

bool isBytes(const Json& json) {
    return json.contains("hex") || json.contains("fill") || json.contains("seed");
}

/** As a JSON merge patch, but that bytes are replaced as a whole. */
void mergeInto(Json& target, const Json& patch) {
    if (!patch.is_object() || isBytes(patch) || isBytes(target)) {
        target = patch;
        return;
    }
    if (!target.is_object())
        target = Json::object();
    for (const auto& item : patch.items()) {
        if (item.value().is_null())
            target.erase(item.key());
        else
            mergeInto(target[item.key()], item.value());
    }
}

/** Whether the place is that of a field that is written as a string. */
bool isString(const std::string& place) {
    for (const Part& part : parts) {
        for (const Field& field : *part.record) {
            if (field.place != nullptr && placeOf(part, field) == place)
                return field.isString();
        }
    }
    return false;
}

Json valueOf(const std::string& text, const std::string& place) {
    const bool isStructured = !text.empty() && (text.front() == '{' || text.front() == '"');
    if (isString(place) && !isStructured && text != "null")
        return text;
    try {
        return parseJson(text);
    } catch (const InputError&) {
        return text; // the reader says whether a text is right
    }
}

/** Takes the instrument's JSON as it should be. */
void take(Instrument& instrument, const Json& json) {
    Instrument next = instrumentFromJson(json, "");
    if (next.plugged != instrument.plugged)
        setPlugged(next, next.plugged);
    instrument = next;
}

void setAt(Instrument& instrument, const std::string& place, const Json::json_pointer& pointer,
           Json value) {
    Json json = instrumentToJson(instrument);
    for (const Part& part : parts) {
        // Settings that are not pending, and data that are not staged, start from the others.
        const std::string start = part.place + std::string(".");
        if (part.optional != nullptr && place.compare(0, start.size(), start) == 0 &&
            json[pointerTo(part.place)].is_null())
            json[pointerTo(part.place)] = json[pointerTo(part.optional->otherwisePlace)];
    }
    const Json::json_pointer parent = pointer.parent_pointer();
    const bool isThere = json.contains(pointer);
    if (!isThere && json.contains(parent) && json[parent].is_array())
        throw InputError(place + ": has no element " + pointer.back());
    if (isThere && value.is_null() && json[parent].is_object())
        json[parent].erase(pointer.back());
    else
        json[pointer] = std::move(value);
    take(instrument, json);
}

} // namespace

Instrument instrumentFromJson(const Json& json, const std::string& path) {
    const Values values(json, path);
    const Json* const serialNumber = values.find("serialNumber");
    if (serialNumber == nullptr)
        refuse(values.pathOf("serialNumber"), "is missing");
    Instrument instrument = makeInstrument(readInt32(*serialNumber, values.pathOf("serialNumber")));
    auto* const bytes = reinterpret_cast<std::uint8_t*>(&instrument);
    for (const Part& part : parts) {
        if (!prepare(part, values, bytes))
            continue;
        for (const Field& field : *part.record) {
            const std::string place = field.place == nullptr ? "" : placeOf(part, field);
            const Json* const value = place.empty() ? nullptr : values.find(place);
            if (value != nullptr)
                field.read(*value, values.pathOf(place), bytes + part.offset);
        }
    }
    return instrument;
}

Json recordToJson(const Record& record, const void* bytes, Keys keys) {
    Json json = Json::object();
    for (const Field& field : record) {
        if (field.place != nullptr)
            json[pointerTo(field.place)] =
                field.write(static_cast<const std::uint8_t*>(bytes), keys);
    }
    return json;
}

Json instrumentToJson(const Instrument& instrument, Keys keys) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&instrument);
    Json json = Json::object();
    for (const Part& part : parts) {
        bool isThere = true;
        if (part.optional != nullptr)
            std::memcpy(&isThere, bytes + part.optional->isThere, sizeof isThere);
        Json record = isThere ? recordToJson(*part.record, bytes + part.offset, keys) : Json();
        if (*part.place == '\0')
            json.update(record);
        else
            json[pointerTo(part.place)] = std::move(record);
    }
    return json;
}

Json portToJson(const KVA_PORTINFO& port) {
    return recordToJson(portRecord, &port, Keys::Shown);
}

Json networkToJson(const KVA_NETWORKINFO& network, Keys keys) {
    return recordToJson(networkRecord, &network, keys);
}

void patch(Instrument& instrument, const Json& patch) {
    if (!patch.is_object())
        refuse("", "must be an object");
    Json merged = instrumentToJson(instrument);
    mergeInto(merged, patch);
    take(instrument, merged);
}

void assign(Instrument& instrument, const std::string& assignment) {
    const auto equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw InputError(assignment + ": is not FIELD=VALUE");
    const std::string place = assignment.substr(0, equals);
    Json::json_pointer pointer = pointerTo(place);
    for (Json::json_pointer step = pointer; !step.empty(); step.pop_back()) {
        if (step.back().empty())
            throw InputError(place + ": is not the path of a field");
    }
    try {
        setAt(instrument, place, pointer, valueOf(assignment.substr(equals + 1), place));
    } catch (const Json::exception&) {
        refuse(place, "is not a known field");
    }
}

} // namespace kvasim
