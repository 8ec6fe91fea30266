// kvasim: the hands at the bench of simulated instruments.

#include "simulator/BenchStore.h"
#include "simulator/CallLog.h"
#include "simulator/kvasim/Follow.h"
#include "simulator/kvasim/Show.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace {

using kvasim::Bench;
using kvasim::BenchStore;
using kvasim::InputError;
using kvasim::Json;

enum ExitStatus { Done = 0, Refused = 1, Usage = 2 };

/** What the options hold when the command line has been read. */
struct Options {
    std::string bench;
    std::int32_t serialNumber = 0;
    std::vector<std::string> assignments;
    std::string file;
    bool json = false;
    bool reveal = false;
    bool serialNumbersOnly = false;
    bool follow = false;
};

struct FaultOptions {
    std::string function = "*";
    std::string call;
    std::int32_t serialNumber = 0;
    std::uint32_t times = 0;
    double probability = 0;
    std::uint32_t seed = 0;
    std::string result;
    std::uint32_t delayMs = 0;
    bool dropped = false;
    bool stale = false;
    std::string corrupt;
    std::uint32_t value = 0;
    std::uint32_t flipped = 0;
    std::uint32_t shortList = 0;
    std::string unplug;
    std::int32_t instrument = 0;
};

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

std::unique_ptr<BenchStore> open(const Options& options) {
    return options.bench.empty() ? BenchStore::openOfEnvironment()
                                 : BenchStore::open(options.bench);
}

void change(const Options& options, const std::function<void(Bench&)>& make) {
    const auto makeAndSave = [&](Bench& next) {
        make(next);
        return true;
    };
    open(options)->change(makeAndSave, [](const Bench&) {});
}

void changeInstrument(const Options& options, const std::function<void(Json&)>& make) {
    change(options, [&](Bench& next) { make(kvasim::instrumentOf(next, options.serialNumber)); });
}

Json listOf(const BenchStore& store) {
    Json list = Json::array();
    for (const Json& instrument : store.bench().instruments) {
        const std::int32_t serialNumber = kvasim::serialNumberOf(instrument);
        const bool isStarting = kvasim::isPlugged(instrument) && !kvasim::isReady(instrument);
        const bool isConnected = store.lock() != nullptr && store.lock()->isHeld(serialNumber);
        list.push_back({{"serialNumber", serialNumber},
                        {"plugged", instrument["plugged"]},
                        {"starting", isStarting},
                        {"connected", isConnected},
                        {"port", instrument["port"]}});
    }
    return list;
}

void list(const Options& options) {
    const Json instruments = listOf(*open(options));
    if (options.json)
        return print(kvasim::formatJson(instruments));
    if (!options.serialNumbersOnly)
        return print(kvasim::listAsText(instruments));
    for (const Json& instrument : instruments)
        print(instrument["serialNumber"].dump() + '\n');
}

void show(const Options& options) {
    Bench bench = open(options)->bench();
    Json& instrument = kvasim::instrumentOf(bench, options.serialNumber);
    for (const char* settings : {"active", "pending"}) {
        if (!options.reveal)
            kvasim::hideKey(instrument["network"][settings]);
    }
    print(options.json ? kvasim::formatJson(instrument) : kvasim::instrumentAsText(instrument));
}

void plug(const Options& options, bool plugged) {
    changeInstrument(options, [&](Json& instrument) {
        if (kvasim::isPlugged(instrument) != plugged)
            kvasim::setPlugged(instrument, plugged);
    });
}

void powerCycle(const Options& options) {
    changeInstrument(
        options, [](Json& instrument) { kvasim::powerCycle(instrument, kvasim::StartUp::Timed); });
}

void set(const Options& options) {
    change(options, [&](Bench& next) {
        Json& instrument = kvasim::instrumentOf(next, options.serialNumber);
        for (const std::string& assignment : options.assignments)
            kvasim::assign(instrument, assignment);
        kvasim::requireDifferentSerialNumbers(next);
    });
}

bool isNumber(const std::string& text) {
    const auto digits = text.substr(!text.empty() && text.front() == '-' ? 1 : 0);
    return !digits.empty() && digits.size() < 12 &&
           digits.find_first_not_of("0123456789") == std::string::npos;
}

Json corruptionOf(const CLI::App& app, const FaultOptions& given) {
    Json corrupted = Json::object();
    if (isNumber(given.corrupt))
        corrupted["offset"] = std::stoll(given.corrupt);
    else
        corrupted["field"] = given.corrupt;
    if (app.count("--value") > 0)
        corrupted["value"] = given.value;
    if (app.count("--xor") > 0)
        corrupted["xor"] = given.flipped;
    return corrupted;
}

/** The rule as the options say it; whether it is one is for its reader to say. */
Json ruleOf(const CLI::App& app, const FaultOptions& given) {
    Json rule = {{"function", given.function}};
    const auto add = [&](const char* option, const char* key, const Json& value) {
        if (app.count(option) > 0)
            rule[key] = value;
    };
    add("--call", "call", given.call);
    add("--serial", "serialNumber", given.serialNumber);
    add("--times", "times", given.times);
    add("--probability", "probability", given.probability);
    add("--seed", "seed", given.seed);
    if (app.count("--result") > 0)
        rule["result"] =
            isNumber(given.result) ? Json(std::stoll(given.result)) : Json(given.result);
    add("--delay", "delayMs", given.delayMs);
    add("--dropped", "dropped", true);
    add("--stale", "stale", true);
    if (app.count("--corrupt") > 0)
        rule["corrupted"] = corruptionOf(app, given);
    add("--short-list", "shortList", given.shortList);
    add("--unplug", "unplug", given.unplug);
    add("--instrument", "instrument", given.instrument);
    return rule;
}

void addFault(const Options& options, const Json& rule) {
    change(options, [&](Bench& next) {
        kvasim::addFault(next.faults, kvasim::makeFaultRule(rule, "fault"));
    });
}

void listFaults(const Options& options) {
    Json faults = Json::array();
    const auto store = open(options);
    for (const kvasim::FaultRule& rule : store->bench().faults) {
        faults.push_back(rule.json);
        faults.back().erase("id");
    }
    print(options.json ? kvasim::formatJson(faults) : kvasim::faultsAsText(faults));
}

void log(const Options& options) {
    const auto store = open(options);
    const auto printCall = [&](const Json& call) {
        print(options.json ? call.dump() + '\n' : kvasim::callAsText(call));
    };
    const auto goOn = [&] { return options.follow && store->lock()->isUsed(); };
    kvasim::followLog(kvasim::callLogPath(store->path()), printCall, goOn);
}

void check(const Options& options) {
    const Bench bench = kvasim::readBenchFile(options.file);
    print(options.file + ": good, " + std::to_string(bench.instruments.size()) + " instruments, " +
          std::to_string(bench.faults.size()) + " rules\n");
}

/** Writes a bench with comments that explain its fields. */
void makeBench(const Options& options) {
    const std::string& path = options.file;
    std::FILE* const file = std::fopen(path.c_str(), "wxe"); // not where it is there already
    const bool isWritten = file != nullptr && std::fputs(kvasim::startingBenchText, file) >= 0;
    const bool isClosed = file == nullptr || std::fclose(file) == 0;
    if (isWritten && isClosed)
        return;
    const int error = errno;
    if (file != nullptr)
        std::remove(path.c_str());
    throw InputError(path + ": cannot be written: " + std::generic_category().message(error));
}

CLI::App* addSerialCommand(CLI::App& app, const char* name, const char* description,
                           Options& options) {
    CLI::App* command = app.add_subcommand(name, description);
    command->add_option("SERIAL", options.serialNumber, "serial number of the instrument")
        ->required();
    return command;
}

void addInstrumentCommands(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("list", "List the instruments");
    command->add_flag("--json", options.json, "as JSON");
    command->add_flag("--serials", options.serialNumbersOnly, "serial numbers only");
    command->callback([&] { list(options); });

    command = addSerialCommand(
        app, "show", "Show an instrument: settings active and pending, data committed and staged",
        options);
    command->add_flag("--json", options.json, "as JSON");
    command->add_flag("--reveal", options.reveal, "show security keys");
    command->callback([&] { show(options); });

    addSerialCommand(app, "plug", "Attach an instrument", options)->callback([&] {
        plug(options, true);
    });
    addSerialCommand(app, "unplug", "Detach an instrument", options)->callback([&] {
        plug(options, false);
    });
    addSerialCommand(app, "power-cycle", "Switch an instrument off and on", options)->callback([&] {
        powerCycle(options);
    });

    command = addSerialCommand(app, "set", "Set fields of an instrument", options);
    command
        ->add_option("ASSIGNMENT", options.assignments,
                     "FIELD=VALUE, the field as in show --json, for instance "
                     "network.active.SSID=lab or powerOffMode=2; null gives the default")
        ->required();
    command->callback([&] { set(options); });
}

void addFaultOptions(CLI::App& add, FaultOptions& given) {
    add.add_option("--function", given.function, "function by name, * for every one");
    add.add_option("--call", given.call, "the nth call, a range (2-5) or every");
    add.add_option("--serial", given.serialNumber, "calls for that instrument only");
    add.add_option("--times", given.times, "how often");
    add.add_option("--probability", given.probability, "chance of each call, above 0, to 1");
    add.add_option("--seed", given.seed, "seed of the chance");
    CLI::Option_group* kinds = add.add_option_group("Fault", "exactly one of");
    kinds->add_option("--result", given.result, "answer this code, by name or number");
    kinds->add_option("--delay", given.delayMs, "take so many milliseconds longer");
    kinds->add_flag("--dropped", given.dropped, "accept the call without effect");
    kinds->add_flag("--stale", given.stale, "answer as before the last write");
    kinds->add_option("--corrupt", given.corrupt, "answer with that field or byte offset changed");
    kinds->add_option("--short-list", given.shortList, "list no more ports than that");
    kinds->add_option("--unplug", given.unplug, "detach before, during or after the call");
    kinds->require_option(1);
    add.add_option("--value", given.value, "with --corrupt: the value of each byte");
    add.add_option("--xor", given.flipped, "with --corrupt: the bits that differ");
    add.add_option("--instrument", given.instrument, "with --unplug: which instrument");
}

void addFaultCommands(CLI::App& app, Options& options, FaultOptions& given) {
    CLI::App* fault = app.add_subcommand("fault", "Rules that make calls fail");
    fault->require_subcommand(1);
    CLI::App* add = fault->add_subcommand("add", "Add a rule");
    addFaultOptions(*add, given);
    add->callback([&options, &given, add] { addFault(options, ruleOf(*add, given)); });
    CLI::App* rules = fault->add_subcommand("list", "List the rules in force");
    rules->add_flag("--json", options.json, "as JSON");
    rules->callback([&] { listFaults(options); });
    fault->add_subcommand("clear", "Remove all rules")->callback([&] {
        change(options, [](Bench& next) { next.faults.clear(); });
    });
}

void addLogAndBenchCommands(CLI::App& app, Options& options) {
    CLI::App* calls = app.add_subcommand("log", "Print the calls of the library");
    calls->add_flag("-f,--follow", options.follow, "go on until the program ends");
    calls->add_flag("--json", options.json, "as JSON, a line each");
    calls->callback([&] { log(options); });

    CLI::App* bench = app.add_subcommand("bench", "Bench files");
    bench->require_subcommand(1);
    CLI::App* checking = bench->add_subcommand("check", "Say whether a bench file is good");
    checking->add_option("FILE", options.file, "bench file")->required();
    checking->callback([&] { check(options); });
    CLI::App* init = bench->add_subcommand("init", "Write a starting bench with comments");
    init->add_option("FILE", options.file, "file to make; it must not be there yet")->required();
    init->callback([&] { makeBench(options); });
}

int run(int argumentCount, char** arguments) {
    Options options;
    FaultOptions faultOptions;
    CLI::App app("Handles simulated instruments.", "kvasim");
    app.add_option("--bench", options.bench,
                   "bench file; left out: the one that the library takes");
    app.require_subcommand(1);
    app.fallthrough();
    addInstrumentCommands(app, options);
    addFaultCommands(app, options, faultOptions);
    addLogAndBenchCommands(app, options);
    try {
        app.parse(argumentCount, arguments);
        return Done;
    } catch (const CLI::Success& wanted) {
        return app.exit(wanted); // help
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return Usage;
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kvasim: %s\n", error.what());
        return Refused;
    }
}
