// kvasim: the hands at the bench of simulated instruments.

#include "simulator/BenchFile.h"
#include "simulator/kvasim/Client.h"
#include "simulator/kvasim/Patch.h"
#include "simulator/kvasim/Show.h"
#include "simulator/kvasim/StartingBench.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

using kvasim::Client;
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

void list(const Options& options) {
    const Json instruments =
        Client::find(options.bench).request({{"command", "list"}})["instruments"];
    if (options.json)
        return print(kvasim::formatJson(instruments));
    if (!options.serialNumbersOnly)
        return print(kvasim::listAsText(instruments));
    for (const Json& instrument : instruments)
        print(instrument["serialNumber"].dump() + '\n');
}

void show(const Options& options) {
    const Json instrument = Client::find(options.bench)
                                .request({{"command", "show"},
                                          {"serialNumber", options.serialNumber},
                                          {"reveal", options.reveal}})["instrument"];
    print(options.json ? kvasim::formatJson(instrument) : kvasim::instrumentAsText(instrument));
}

void simple(const Options& options, const char* command) {
    Client::find(options.bench)
        .request({{"command", command}, {"serialNumber", options.serialNumber}});
}

void set(const Options& options) {
    Client client = Client::find(options.bench);
    const Json instrument = client.request({{"command", "show"},
                                            {"serialNumber", options.serialNumber},
                                            {"reveal", true}})["instrument"];
    Json patch = Json::object();
    for (const std::string& assignment : options.assignments)
        kvasim::addAssignment(assignment, instrument, patch);
    client.request({{"command", "set"}, {"serialNumber", options.serialNumber}, {"patch", patch}});
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

/** The rule as the options say it; whether it is one is for the program to say. */
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

void printCall(const Json& call, const Options& options) {
    print(options.json ? call.dump() + '\n' : kvasim::callAsText(call));
}

/** The log page by page, then the calls as they come where that is asked for. */
void log(const Options& options) {
    Client client = Client::find(options.bench);
    std::uint64_t last = 0;
    for (;;) {
        const Json calls = client.request({{"command", "log"}, {"after", last}})["calls"];
        for (const Json& call : calls) {
            last = call["seq"].get<std::uint64_t>();
            printCall(call, options);
        }
        if (calls.empty())
            break;
    }
    if (!options.follow)
        return;
    client.request({{"command", "follow"}, {"after", last}});
    while (const auto line = client.nextLine()) {
        if (line->contains("call"))
            printCall((*line)["call"], options);
        else if (line->contains("missed"))
            std::fprintf(stderr, "kvasim: %s calls were not seen\n",
                         (*line)["missed"].dump().c_str());
    }
}

void check(const Options& options) {
    const kvasim::Bench bench = kvasim::loadBenchFile(options.file).bench;
    print(options.file + ": good, " + std::to_string(bench.instruments.size()) + " instruments, " +
          std::to_string(bench.faults.size()) + " rules\n");
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
        simple(options, "plug");
    });
    addSerialCommand(app, "unplug", "Detach an instrument", options)->callback([&] {
        simple(options, "unplug");
    });
    addSerialCommand(app, "power-cycle", "Switch an instrument off and on", options)->callback([&] {
        simple(options, "powerCycle");
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
    add->callback([&options, &given, add] {
        Client::find(options.bench)
            .request({{"command", "addFault"}, {"fault", ruleOf(*add, given)}});
    });
    CLI::App* rules = fault->add_subcommand("list", "List the rules in force");
    rules->add_flag("--json", options.json, "as JSON");
    rules->callback([&] {
        const Json faults = Client::find(options.bench).request({{"command", "faults"}})["faults"];
        print(options.json ? kvasim::formatJson(faults) : kvasim::faultsAsText(faults));
    });
    fault->add_subcommand("clear", "Remove all rules")->callback([&] {
        Client::find(options.bench).request({{"command", "clearFaults"}});
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
    init->callback([&] { kvasim::writeStartingBench(options.file); });
}

int run(int argumentCount, char** arguments) {
    Options options;
    FaultOptions faultOptions;
    CLI::App app("Handles the simulated instruments of a running tool.", "kvasim");
    app.add_option("--bench", options.bench, "bench file of the program, where several run");
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
