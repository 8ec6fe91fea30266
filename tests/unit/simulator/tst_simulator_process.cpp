// What the library does to a process: its symbols, its name, its lines on standard error, and the
// end of the process and of the library.

#include "SimulatorTest.h"

#include <QFileInfo>

using namespace simtest;

namespace {

struct EndRow {
    const char* name;
    int status;
    QByteArray output;
};

const EndRow ends[] = {
    {"exit-with-handler", 5, ""},
    {"exit-in-handler", 7, ""},
    {"remove-at-exit", 0, "0\n"},
};

} // namespace

class TestSimulatorProcess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { startClean(m_folder); }

    void exportedSymbols() {
#ifdef Q_OS_MACOS
        const Outcome outcome = run(NM, {"-gU", LIBRARY});
#else
        const Outcome outcome = run(NM, {"-D", "--defined-only", LIBRARY});
#endif
        QCOMPARE(outcome.status, 0);
        QList<QByteArray> contract;
        for (const QByteArray& line : outcome.output.trimmed().split('\n')) {
            QByteArray name = line.mid(line.lastIndexOf(' ') + 1);
#ifdef Q_OS_MACOS
            name.remove(0, 1);
#endif
            if (!name.startsWith("KvaSim_"))
                contract.append(name);
        }
        std::sort(contract.begin(), contract.end());
        const QList<QByteArray> expected = {
            "KVA_Connect",
            "KVA_Disconnect",
            "KVA_GetDeviceInfo",
            "KVA_GetDevicePortList",
            "KVA_GetNetworkInfo",
            "KVA_GetShutdownTime",
            "KVA_RegisterDeviceEventHandler",
            "KVA_SetNetworkInfo",
            "KVA_SetShutdownTime",
            "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA",
            "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA",
            "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv",
            "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA"};
        QCOMPARE(contract, expected);
    }

    void nameOfLibrary() {
        const QFileInfo library(LIBRARY);
#ifdef Q_OS_MACOS
        QCOMPARE(library.fileName(), "libKVASDK.dylib");
#else
        QCOMPARE(library.fileName(), "libKVASDK.so");
        QVERIFY(!library.isSymLink());
        QFile file(library.filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains(QByteArray("\0libKVASDK.so\0", 14)));
#endif
    }

    void usedFromC() {
        const Outcome outcome = probe("call-all");
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.output, "0 0 0 0 0 0 0 0 0 0\n");
    }

    void oneLineForRefusedBench() {
        m_folder.write("broken.json", "{\"version\": 1,\n \"instruments\": [,]}\n");
        qputenv("KVASIM_BENCH", m_folder.localPath("broken.json"));
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, "-9999 -9999 -1\n");
        QCOMPARE(outcome.errors.count('\n'), 1);
        QVERIFY2(outcome.errors.contains("broken.json: line 2, column 18: "),
                 outcome.errors.constData());
    }

    void oneLineForNoHome() {
        qunsetenv("HOME");
        qunsetenv("XDG_DATA_HOME");
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, "0 0 2\n");
        QCOMPARE(outcome.errors.count('\n'), 1);
        QVERIFY2(outcome.errors.contains("no home folder"), outcome.errors.constData());
    }

    void quietOtherwise() {
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, "0 0 2\n");
        QCOMPARE(outcome.errors, "");
    }

    void endOfProcess_data() {
        addRows(ends);
    }
    void endOfProcess() {
        const auto row = rowOf<EndRow>();
        for (int round = 0; round < 20; ++round) {
            const Outcome outcome = probe(row.name);
            QVERIFY2(outcome.errors.isEmpty(), outcome.errors.constData());
            QCOMPARE(outcome.status, row.status);
            QCOMPARE(outcome.output, row.output);
        }
    }

    void unloading() {
        const Outcome outcome = run(UNLOAD_PROBE, {LIBRARY});
        QVERIFY2(outcome.errors.isEmpty(), outcome.errors.constData());
        QCOMPARE(outcome.output, "");
        QCOMPARE(outcome.status, 0);
    }

private:
    static Outcome probe(const QString& action) {
        return run(PROBE, {action});
    }

    TestFolder m_folder;
};

TEST_CLASS(TestSimulatorProcess)
#include "tst_simulator_process.moc"
