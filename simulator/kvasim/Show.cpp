#include "simulator/kvasim/Show.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <thread>
#include <vector>

namespace kvasim {

namespace {

using Row = std::vector<std::string>;

constexpr std::chrono::milliseconds pause{50};
constexpr std::size_t widest = 60; // cell

/** Columns of the width of their widest cell, two blanks apart. */
std::string table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size() + 2);
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += row[column] + std::string(widths[column] - row[column].size(), ' ');
        text += line.erase(line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

std::string cell(const Json& value) {
    if (value.is_null())
        return "-";
    if (value.is_string())
        return printable(value.get<std::string>());
    if (value.is_object() && value.contains("length"))
        return "(" + value["length"].dump() + " bytes, hidden)";
    std::string text = printable(value.dump());
    return text.size() > widest ? text.substr(0, widest - 3) + "..." : text;
}

/** The fields of two records side by side; empty cells for a missing record. */
std::string compared(const Row& head, const Json& one, const Json& other) {
    std::vector<Row> rows = {head};
    const auto add = [&](const std::string& title, const Json::json_pointer& place) {
        rows.push_back(
            {"  " + title, cell(one[place]), cell(other.is_null() ? other : other[place])});
    };
    for (const auto& [key, value] : one.items()) {
        const Json::json_pointer place = Json::json_pointer() / key;
        if (!value.contains("values")) {
            add(key, place);
            continue;
        }
        const std::string reference = key == "white" ? key : "adapter";
        add(reference + " serial number", place / "serialNumber");
        for (std::size_t index = 0; index < value["values"].size(); ++index)
            add(reference + " value " + std::to_string(index), place / "values" / index);
    }
    return table(rows);
}

std::string stateOf(const Json& entry) {
    if (!isPlugged(entry))
        return "unplugged";
    if (entry["starting"].get<bool>())
        return "starting";
    return entry["connected"].get<bool>() ? "connected" : "plugged";
}

std::string portAsText(const Json& port) {
    return port["type"] == 1 ? "USB" : "network " + cell(port["name"]);
}

/** Passes on the complete lines added since the last call. */
void readLines(std::ifstream& file, const std::function<void(const Json&)>& take) {
    std::string line;
    while (std::getline(file, line)) {
        const Json call = Json::parse(line, nullptr, false);
        if (call.is_object() && call.size() == 6) // the user's file may have other lines
            take(call);
    }
    file.clear(); // clears the end-of-file state: the file may grow
}

} // namespace

Json listOf(const BenchStore& store) {
    Json list = Json::array();
    for (const Json& instrument : store.bench().instruments) {
        const std::int32_t serialNumber = serialNumberOf(instrument);
        list.push_back({{"serialNumber", serialNumber},
                        {"plugged", instrument["plugged"]},
                        {"starting", isPlugged(instrument) && !isReady(instrument)},
                        {"connected", store.lock().isHeld(serialNumber)},
                        {"port", instrument["port"]}});
    }
    return list;
}

std::string listAsText(const Json& instruments) {
    std::vector<Row> rows = {{"SERIAL", "STATE", "PORT"}};
    for (const Json& entry : instruments)
        rows.push_back({cell(entry["serialNumber"]), stateOf(entry), portAsText(entry["port"])});
    return table(rows);
}

std::string instrumentAsText(const Json& instrument) {
    std::vector<Row> rows = {{"INSTRUMENT", cell(instrument["serialNumber"])},
                             {"  plugged", cell(instrument["plugged"])},
                             {"  port", portAsText(instrument["port"])}};
    for (const auto& item : instrument["device"].items())
        rows.push_back({"  device " + item.key(), cell(item.value())});
    for (const char* key :
         {"wirelessModule", "factoryOptionsReserved", "powerOffMode", "startUpMs"})
        rows.push_back({std::string("  ") + key, cell(instrument[key])});
    const Json& network = instrument["network"];
    const Json& calibration = instrument["calibration"];
    return table(rows) + '\n' +
           compared({"NETWORK", "ACTIVE", "PENDING"}, network["active"], network["pending"]) +
           '\n' +
           compared({"CALIBRATION", "COMMITTED", "STAGED"}, calibration["committed"],
                    calibration["staged"]);
}

std::string faultsAsText(const Json& faults) {
    std::string text;
    for (const Json& fault : faults)
        text += printable(fault.dump()) + '\n';
    return text;
}

std::string callAsText(const Json& call) {
    const std::string name = cell(call["resultName"]);
    return call["seq"].dump() + "  " + cell(call["function"]) + ' ' +
           printable(call["arguments"].dump()) + "  " +
           (name.empty() ? call["result"].dump() : name) + "  " + call["durationUs"].dump() +
           " us\n";
}

void followLog(const std::string& path, const std::function<void(const Json&)>& take,
               const std::function<bool()>& goOn) {
    std::ifstream file;
    std::int64_t opened = 0;
    for (bool more = true; more;) {
        more = goOn(); // before reading: a program logs its last call before it ends
        if (file.is_open())
            readLines(file, take);
        const std::int64_t present = stampOf(path).inode;
        if (present != opened && present != 0) {
            file.close();
            file.open(path, std::ios::binary);
            opened = present;
            readLines(file, take);
        }
        if (more)
            std::this_thread::sleep_for(pause);
    }
}

} // namespace kvasim
