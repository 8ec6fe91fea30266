// What the library does to a process: its symbols, its name, its lines on standard error, and the
// end of the process and of the library.

#include "SimulatorTest.h"
#include "tests/support/LibrarySymbols.h"

using namespace simtest;

namespace {

#ifdef Q_OS_MACOS
constexpr const char* libraryName = "libKVASDK.dylib";
const QStringList exportsOption = {"-gU"};
constexpr int prefixLength = 1; // of the linker's names
#else
constexpr const char* libraryName = "libKVASDK.so";
const QStringList exportsOption = {"-D", "--defined-only"};
constexpr int prefixLength = 0;
#endif

struct ProbeRow {
    const char* name;
    const char* action; ///< of the program that uses the library
    int status;
    QByteArray output;
    QByteArray error = {}; ///< in the only line on standard error; empty: there is none
    void (*prepare)() = [] {};
};

void unsetHome() {
    qunsetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
}

const ProbeRow probeRows[] = {
    {"used from C", "call-all", 0, "0 0 0 0 0 0 0 0 0 0\n"},
    {"one line for a refused bench", "count-twice", 0, "-9999 -9999 -1\n",
     "broken.json: line 2, column 18: ", [] { qputenv("KVASIM_BENCH", "broken.json"); }},
    {"one line for no home", "count-twice", 0, "0 0 2\n", "no home folder", unsetHome},
    {"quiet otherwise", "count-twice", 0, "0 0 2\n"},
    {"exit-with-handler", "exit-with-handler", 5, ""},
    {"exit-in-handler", "exit-in-handler", 7, ""},
    {"remove-at-exit", "remove-at-exit", 0, "0\n"},
};

} // namespace

class TestSimulatorProcess : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { startClean(m_folder); }

    void exportedSymbols() {
        const Outcome outcome = run(NM, exportsOption + QStringList(LIBRARY));
        QCOMPARE(outcome.status, 0);
        QStringList contract;
        for (const QByteArray& line : outcome.output.trimmed().split('\n')) {
            const QByteArray name = line.mid(line.lastIndexOf(' ') + 1 + prefixLength);
            if (!name.startsWith("KvaSim_"))
                contract.append(name);
        }
        contract.sort();
        QCOMPARE(contract, librarySymbols());
    }

    void nameOfLibrary() {
        const QFileInfo library(LIBRARY);
        QCOMPARE(library.fileName(), libraryName);
#ifndef Q_OS_MACOS
        QVERIFY(!library.isSymLink());
        QFile file(library.filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains(QByteArray("\0libKVASDK.so\0", 14)));
#endif
    }

    void probes_data() {
        addRows(probeRows);
    }
    void probes() {
        const auto row = rowOf<ProbeRow>();
        m_folder.write("broken.json", "{\"version\": 1,\n \"instruments\": [,]}\n");
        row.prepare();
        for (int round = 0; round < 20; ++round) {
            const Outcome outcome = run(PROBE, {row.action});
            QVERIFY2(outcome.errors.contains(row.error), outcome.errors);
            QCOMPARE(outcome.errors.count('\n'), row.error.isEmpty() ? 0 : 1);
            QCOMPARE(outcome.output, row.output);
            QCOMPARE(outcome.status, row.status);
        }
    }

    void unloading() {
        const Outcome outcome = run(UNLOAD_PROBE, {LIBRARY});
        QVERIFY2(outcome.errors.isEmpty(), outcome.errors.constData());
        QCOMPARE(outcome.output, "");
        QCOMPARE(outcome.status, 0);
    }
};

TEST_CLASS(TestSimulatorProcess)
#include "tst_simulator_process.moc"
