// kvasim: controls the simulated instruments.

#include "simulator/BenchStore.h"
#include "simulator/CallLog.h"
#include "simulator/kvasim/Show.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using kvasim::Bench;
using kvasim::BenchStore;
using kvasim::Json;

enum ExitStatus { Done = 0, Refused = 1, Usage = 2 };

/** The parsed command line. */
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

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

std::unique_ptr<BenchStore> open(const Options& options) {
    auto store =
        options.bench.empty() ? BenchStore::openOfEnvironment() : BenchStore::open(options.bench);
    if (store->path().empty())
        throw kvasim::InputError("there is no bench file, name one with --bench");
    return store;
}

void change(const Options& options, const std::function<void(Bench&)>& make) {
    open(options)->change(make, [](const Bench&) {});
}

void list(const Options& options) {
    const Json instruments = kvasim::listOf(*open(options));
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
    const auto goOn = [&] { return options.follow && store->lock().isUsed(); };
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
    if (file == nullptr)
        kvasim::fail(path, "cannot be written", errno);
    const bool isWritten = std::fputs(kvasim::startingBenchText, file) >= 0;
    if (std::fclose(file) == 0 && isWritten)
        return;
    const int error = errno;
    std::remove(path.c_str());
    kvasim::fail(path, "cannot be written", error);
}

void addInstrumentCommands(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("list", "List the instruments");
    command->add_flag("--json", options.json, "as JSON");
    command->add_flag("--serials", options.serialNumbersOnly, "serial numbers only");
    command->callback([&] { list(options); });

    const auto addSerialCommand = [&](const char* name, const char* description) {
        command = app.add_subcommand(name, description);
        command->add_option("SERIAL", options.serialNumber, "serial number of the instrument")
            ->required();
        return command;
    };
    const auto addChange = [&](const char* name, const char* description,
                               const std::function<void(Json&)>& make) {
        addSerialCommand(name, description)->callback([&options, make] {
            change(options, [&](Bench& next) {
                kvasim::changeInstrument(next, options.serialNumber, make);
            });
        });
    };
    addSerialCommand("show",
                     "Show an instrument: settings active and pending, data committed and staged")
        ->callback([&] { show(options); });
    command->add_flag("--json", options.json, "as JSON");
    command->add_flag("--reveal", options.reveal, "show security keys");
    addChange("plug", "Attach an instrument",
              [](Json& instrument) { kvasim::setPlugged(instrument, true); });
    addChange("unplug", "Detach an instrument",
              [](Json& instrument) { kvasim::setPlugged(instrument, false); });
    addChange("power-cycle", "Switch an instrument off and on", kvasim::powerCycle);
    addChange("set", "Set fields of an instrument", [&options](Json& instrument) {
        for (const std::string& assignment : options.assignments)
            kvasim::assign(instrument, assignment);
    });
    command
        ->add_option("ASSIGNMENT", options.assignments,
                     "FIELD=VALUE, the field as in show --json, for instance "
                     "network.active.SSID=lab or powerOffMode=2; null gives the default")
        ->required();
}

/** An option of `fault add`, which sets a field of the rule. */
struct FaultOption {
    const char* name;
    const char* pointer; ///< to the field
    const char* help;
    CLI::Option* (*add)(CLI::App& app, const FaultOption& option, Json& rule);
};

template <typename Value>
CLI::Option* addValue(CLI::App& app, const FaultOption& option, Json& rule) {
    const auto take = [&](const Value& value) { rule[Json::json_pointer(option.pointer)] = value; };
    return app.add_option_function<Value>(option.name, take, option.help);
}

CLI::Option* addFlag(CLI::App& app, const FaultOption& option, Json& rule) {
    const auto take = [&](std::int64_t) { rule[Json::json_pointer(option.pointer)] = true; };
    return app.add_flag_function(option.name, take, option.help);
}

/** A number if the text is one; otherwise a field's or a result's name. */
CLI::Option* addNumberOrName(CLI::App& app, const FaultOption& option, Json& rule) {
    const auto take = [&](const std::string& text) {
        const Json number = Json::parse(text, nullptr, false);
        Json::json_pointer place(option.pointer);
        if (number.is_number_integer() && place.back() == "field")
            place = place.parent_pointer() / "offset";
        rule[place] = number.is_number_integer() ? number : Json(text);
    };
    return app.add_option_function<std::string>(option.name, take, option.help);
}

constexpr FaultOption limits[] = {
    {"--function", "/function", "function by name, * for every one", addValue<std::string>},
    {"--call", "/call", "the nth call, a range (2-5) or every", addValue<std::string>},
    {"--serial", "/serialNumber", "calls for that instrument only", addValue<std::int32_t>},
    {"--times", "/times", "how often", addValue<std::uint32_t>},
    {"--probability", "/probability", "chance of each call, above 0, to 1", addValue<double>},
    {"--seed", "/seed", "seed of the chance", addValue<std::uint32_t>},
    {"--value", "/corrupted/value", "with --corrupt: the value of each byte",
     addValue<std::uint32_t>},
    {"--xor", "/corrupted/xor", "with --corrupt: the bits that differ", addValue<std::uint32_t>},
    {"--instrument", "/instrument", "with --unplug: which instrument", addValue<std::int32_t>},
};
constexpr FaultOption kinds[] = {
    {"--result", "/result", "answer this code, by name or number", addNumberOrName},
    {"--delay", "/delayMs", "take so many milliseconds longer", addValue<std::uint32_t>},
    {"--dropped", "/dropped", "accept the call without effect", addFlag},
    {"--stale", "/stale", "answer as before the last write", addFlag},
    {"--corrupt", "/corrupted/field", "answer with that field or byte offset changed",
     addNumberOrName},
    {"--short-list", "/shortList", "list no more ports than that", addValue<std::uint32_t>},
    {"--unplug", "/unplug", "detach before, during or after the call", addValue<std::string>},
};

void addFaultCommands(CLI::App& app, Options& options, Json& rule) {
    CLI::App* fault = app.add_subcommand("fault", "Rules that make calls fail");
    fault->require_subcommand(1);
    CLI::App* add = fault->add_subcommand("add", "Add a rule");
    for (const FaultOption& option : limits)
        option.add(*add, option, rule);
    CLI::Option_group* kind = add->add_option_group("Fault", "exactly one of");
    for (const FaultOption& option : kinds)
        option.add(*kind, option, rule);
    kind->require_option(1);
    add->callback([&] {
        change(options, [&](Bench& next) {
            kvasim::addFault(next.faults, kvasim::makeFaultRule(rule, "fault"));
        });
    });
    fault->add_subcommand("list", "List the rules in force")
        ->callback([&] { listFaults(options); })
        ->add_flag("--json", options.json, "as JSON");
    fault->add_subcommand("clear", "Remove all rules")->callback([&] {
        change(options, [](Bench& next) { next.faults.clear(); });
    });
}

void addLogAndBenchCommands(CLI::App& app, Options& options) {
    CLI::App* calls = app.add_subcommand("log", "Print the calls of the library");
    calls->add_flag("-f,--follow", options.follow, "go on until the program ends");
    calls->add_flag("--json", options.json, "as JSON, a line each");
    calls->callback([&] { log(options); });

    CLI::App* bench = app.add_subcommand("bench", "Bench files")->require_subcommand(1);
    bench->add_subcommand("check", "Say whether a bench file is good")
        ->callback([&] { check(options); })
        ->add_option("FILE", options.file, "bench file")
        ->required();
    bench->add_subcommand("init", "Write a starting bench with comments")
        ->callback([&] { makeBench(options); })
        ->add_option("FILE", options.file, "file to make; it must not be there yet")
        ->required();
}

int run(int argumentCount, char** arguments) {
    Options options;
    Json rule = {{"function", "*"}};
    CLI::App app("Handles simulated instruments.", "kvasim");
    app.add_option("--bench", options.bench,
                   "bench file; left out: the one that the library takes");
    app.require_subcommand(1);
    app.fallthrough();
    addInstrumentCommands(app, options);
    addFaultCommands(app, options, rule);
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
