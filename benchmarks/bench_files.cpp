/**
 * The file formats against their peers. The working directory gets some thousand small files, so it
 * should be one to be thrown away.
 */
#include "benchmarks/FilePeers.h"
#include "benchmarks/SampleFiles.h"
#include "files/CFileIO.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int filesToRead = 1000;
constexpr int filesToWrite = 200;
const char* const folder = ".";

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "wrong result: %s\n", what);
    std::exit(1);
}

/** What the peer must read from a file that holds `SampleFiles::networkInfo()`. */
FilePeers::NetworkSettings sampleSettings() {
    const KVA_NETWORKINFO info = SampleFiles::networkInfo();
    return {static_cast<int>(info.APConnectUse), static_cast<int>(info.DHCPUse),
            QStringLiteral("192.168.0.10"),      QStringLiteral("255.255.255.0"),
            QStringLiteral("192.168.0.1"),       QStringLiteral("192.168.0.2"),
            QString::fromLatin1(info.SSID),      QString::fromLatin1(info.EncryptKey)};
}

// QSettings keeps what it read of a file, so each file is read but once, by the tool's code as
// well.
std::vector<QString> unreadFiles(const std::string& name) {
    std::vector<QString> paths;
    for (const std::string& path : SampleFiles::makeNetworkFiles(folder, name, filesToRead))
        paths.push_back(QString::fromLocal8Bit(path.c_str()));
    return paths;
}

void readIni(benchmark::State& state) {
    const std::vector<std::string> paths =
        SampleFiles::makeNetworkFiles(folder, "read-", filesToRead);
    const KVA_NETWORKINFO expected = SampleFiles::networkInfo();
    auto path = paths.begin();
    KVA_NETWORKINFO info = {};
    for (auto _ : state) {
        info = {};
        if (!CFileIO().ReadNetworkIni((path++)->c_str(), &info))
            fail("ReadNetworkIni");
    }
    if (std::memcmp(&info, &expected, sizeof info) != 0)
        fail("the settings read");
}

void readIniQSettings(benchmark::State& state) {
    const std::vector<QString> paths = unreadFiles("read-q-");
    const FilePeers::NetworkSettings expected = sampleSettings();
    auto path = paths.begin();
    for (auto _ : state) {
        const FilePeers::NetworkSettings read = FilePeers::readWithQSettings(*path++);
        if (read.dns != expected.dns || read.apConnectUse != expected.apConnectUse)
            fail("QSettings read");
    }
}

void writeIni(benchmark::State& state) {
    const std::vector<std::string> paths = SampleFiles::newPaths(folder, "write-", filesToWrite);
    const KVA_NETWORKINFO info = SampleFiles::networkInfo();
    auto path = paths.begin();
    for (auto _ : state) {
        if (!CFileIO().WriteNetworkIni((path++)->c_str(), &info))
            fail("WriteNetworkIni");
    }
}

void writeIniQSettings(benchmark::State& state) {
    std::vector<QString> paths;
    for (const std::string& path : SampleFiles::newPaths(folder, "write-q-", filesToWrite))
        paths.push_back(QString::fromLocal8Bit(path.c_str()));
    const FilePeers::NetworkSettings settings = sampleSettings();
    auto path = paths.begin();
    for (auto _ : state) {
        if (!FilePeers::writeWithQSettings(*path++, settings))
            fail("QSettings written");
    }
}

std::string calibrationFile(int count) {
    return SampleFiles::makeCalibrationFile(folder, "values-" + std::to_string(count), count);
}

void checkValues(const float* values, int count) {
    if (values[0] != 0.912345F || values[count - 1] <= values[0])
        fail("the values read");
}

void readWhitePlate(benchmark::State& state) {
    const std::string path = calibrationFile(KVA_WHITE_PLATE_VALUES);
    KVA_JIG_CALREFDATA record = {};
    for (auto _ : state) {
        if (!CFileIO().GetCalRefDataFromFile(path.c_str(), &record))
            fail("GetCalRefDataFromFile");
    }
    checkValues(record.rfWhite.spcData, KVA_WHITE_PLATE_VALUES);
}

void readAdapter(benchmark::State& state) {
    const std::string path = calibrationFile(KVA_AMBIENT_ADAPTER_VALUES);
    KVA_JIG_CALREFDATA record = {};
    for (auto _ : state) {
        if (!CFileIO().GetAmbAdpCalRefDataFromFile(path.c_str(), &record))
            fail("GetAmbAdpCalRefDataFromFile");
    }
    checkValues(record.ambAdp.spcData, KVA_AMBIENT_ADAPTER_VALUES);
}

void readCsvQTextStream(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const QString path = QString::fromLocal8Bit(calibrationFile(count).c_str());
    float values[KVA_AMBIENT_ADAPTER_VALUES] = {};
    for (auto _ : state) {
        if (FilePeers::readWithQTextStream(path, values, count) != count)
            fail("QTextStream read");
    }
    checkValues(values, count);
}

void readCsvStrtof(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const std::string path = calibrationFile(count);
    float values[KVA_AMBIENT_ADAPTER_VALUES] = {};
    for (auto _ : state) {
        if (FilePeers::readWithStrtof(path, values, count) != count)
            fail("strtof read");
    }
    checkValues(values, count);
}

/** The tool's own measurement and its peers directly after one another. */
void registerAll() {
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("ini read", readIni)->Iterations(filesToRead)->UseRealTime();
    RegisterBenchmark("ini read QSettings", readIniQSettings)
        ->Iterations(filesToRead)
        ->UseRealTime();
    RegisterBenchmark("ini write", writeIni)->Iterations(filesToWrite)->UseRealTime();
    RegisterBenchmark("ini write QSettings", writeIniQSettings)
        ->Iterations(filesToWrite)
        ->UseRealTime();
    RegisterBenchmark("white plate", readWhitePlate)->UseRealTime();
    RegisterBenchmark("white plate QTextStream", readCsvQTextStream)
        ->Arg(KVA_WHITE_PLATE_VALUES)
        ->UseRealTime();
    RegisterBenchmark("white plate strtof", readCsvStrtof)
        ->Arg(KVA_WHITE_PLATE_VALUES)
        ->UseRealTime();
    RegisterBenchmark("adapter", readAdapter)->UseRealTime();
    RegisterBenchmark("adapter QTextStream", readCsvQTextStream)
        ->Arg(KVA_AMBIENT_ADAPTER_VALUES)
        ->UseRealTime();
    RegisterBenchmark("adapter strtof", readCsvStrtof)
        ->Arg(KVA_AMBIENT_ADAPTER_VALUES)
        ->UseRealTime();
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
