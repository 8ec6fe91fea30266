#include "simulator/kvasim/Patch.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kvasim {

namespace {

/** "a.b[3]" as "a", "b", "3". */
std::vector<std::string> stepsOf(const std::string& path) {
    std::vector<std::string> steps(1);
    for (const char character : path) {
        if (character == '.' || character == '[')
            steps.emplace_back();
        else if (character != ']')
            steps.back() += character;
    }
    if (std::any_of(steps.begin(), steps.end(), [](const auto& step) { return step.empty(); }))
        throw InputError(path + ": is not the path of a field");
    return steps;
}

bool isIndex(const std::string& step, std::size_t size) {
    return step.size() < 5 && step.find_first_not_of("0123456789") == std::string::npos &&
           std::stoul(step) < size;
}

/** What the field holds now; where it is not there yet, what the twin of its branch holds. Null
   when neither is there. */
const Json* present(const Json& instrument, const std::vector<std::string>& steps) {
    const Json* place = &instrument;
    const Json* twin = nullptr;
    for (const std::string& step : steps) {
        const Json* parent = place->is_null() && twin != nullptr ? twin : place;
        if (parent->is_array()) {
            if (!isIndex(step, parent->size()))
                return nullptr;
            place = &(*parent)[std::stoul(step)];
            continue;
        }
        if (!parent->is_object() || !parent->contains(step))
            return nullptr;
        twin = nullptr;
        // Settings that are not pending, and data that are not staged, start from the others.
        if (step == "pending" && parent->contains("active"))
            twin = &(*parent)["active"];
        if (step == "staged" && parent->contains("committed"))
            twin = &(*parent)["committed"];
        place = &(*parent)[step];
    }
    return place;
}

Json valueOf(const std::string& text, const Json* now) {
    const bool structured = !text.empty() && (text.front() == '{' || text.front() == '"');
    if (now != nullptr && now->is_string() && !structured && text != "null")
        return text;
    try {
        return parseJson(text);
    } catch (const InputError&) {
        return text; // the program says whether a text is right
    }
}

/** The value for the first steps of the path: arrays are replaced as a whole. */
Json wrapped(const Json& instrument, std::vector<std::string> steps, Json value) {
    while (steps.size() > 1) {
        const std::string step = steps.back();
        steps.pop_back();
        const Json* parent = present(instrument, steps);
        if (parent != nullptr && parent->is_array()) {
            if (!isIndex(step, parent->size()))
                throw InputError(steps.back() + ": has no element " + step);
            Json array = *parent;
            array[std::stoul(step)] = std::move(value);
            value = std::move(array);
        } else {
            value = Json{{step, std::move(value)}};
        }
    }
    return Json{{steps.front(), std::move(value)}};
}

/** As a merge patch of patches: nulls are kept. */
void mergePatches(Json& target, const Json& patch) {
    if (!patch.is_object() || !target.is_object()) {
        target = patch;
        return;
    }
    for (const auto& item : patch.items()) {
        if (target.contains(item.key()))
            mergePatches(target[item.key()], item.value());
        else
            target[item.key()] = item.value();
    }
}

/** The instrument as it will be, so that two elements of one array can be set at once. */
void applyPatch(Json& target, const Json& patch) {
    if (!patch.is_object() || !target.is_object()) {
        target = patch;
        return;
    }
    for (const auto& item : patch.items())
        applyPatch(target[item.key()], item.value());
}

} // namespace

void addAssignment(const std::string& assignment, const Json& instrument, Json& patch) {
    const auto equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw InputError(assignment + ": is not FIELD=VALUE");
    const auto steps = stepsOf(assignment.substr(0, equals));
    Json next = instrument;
    applyPatch(next, patch);
    const Json value = valueOf(assignment.substr(equals + 1), present(next, steps));
    mergePatches(patch, wrapped(next, steps, value));
}

} // namespace kvasim
