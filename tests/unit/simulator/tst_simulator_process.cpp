// What the library does to a process: its symbols, its name, its lines on standard error, and the
// end of the process and of the library.

#include "SimulatorTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace simtest;

namespace {

struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Outcome run(const QString& program, const QStringList& arguments,
            const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

struct EndOfProcessRow {
    const char* name;
    int status;
    QByteArray output;
};

const EndOfProcessRow endOfProcessRows[] = {
    {"exit-with-handler", 5, ""},
    {"exit-in-handler", 7, ""},
    {"remove-at-exit", 0, "0\n"},
};

} // namespace

class TestSimulatorProcess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert("HOME", m_folder.path());
        m_environment.insert("XDG_DATA_HOME", m_folder.path());
        m_environment.remove("KVASIM_BENCH");
        m_environment.remove("KVASIM_TRACE");
    }

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
        QCOMPARE(outcome.output, QByteArray("0 0 0 0 0 0 0 0 0 0\n"));
    }

    void oneLineForRefusedBench() {
        const QString path = m_folder.filePath("broken.json");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\"version\": 1,\n \"instruments\": [,]}\n");
        file.close();
        m_environment.insert("KVASIM_BENCH", path);
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, QByteArray("-9999 -9999 -1\n"));
        QCOMPARE(outcome.errors.count('\n'), 1);
        QVERIFY2(outcome.errors.contains("broken.json: line 2, column 18: "),
                 outcome.errors.constData());
    }

    void oneLineForNoHome() {
        m_environment.remove("HOME");
        m_environment.remove("XDG_DATA_HOME");
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, QByteArray("0 0 2\n"));
        QCOMPARE(outcome.errors.count('\n'), 1);
        QVERIFY2(outcome.errors.contains("no home folder"), outcome.errors.constData());
    }

    void quietOtherwise() {
        const Outcome outcome = probe("count-twice");
        QCOMPARE(outcome.output, QByteArray("0 0 2\n"));
        QCOMPARE(outcome.errors, QByteArray());
    }

    void endOfProcess_data() {
        addRows(endOfProcessRows);
    }

    void endOfProcess() {
        const EndOfProcessRow& given = rowOf(endOfProcessRows);
        for (int round = 0; round < 20; ++round) {
            const Outcome outcome = probe(QString::fromLatin1(QTest::currentDataTag()));
            QVERIFY2(outcome.errors.isEmpty(), outcome.errors.constData());
            QCOMPARE(outcome.status, given.status);
            QCOMPARE(outcome.output, given.output);
        }
    }

    void unloading() {
        const Outcome outcome = run(UNLOAD_PROBE, {LIBRARY}, m_environment);
        QVERIFY2(outcome.errors.isEmpty(), outcome.errors.constData());
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.status, 0);
    }

private:
    Outcome probe(const QString& action) const {
        return run(PROBE, {action}, m_environment);
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

static const bool isAdded = simtest::addTest<TestSimulatorProcess>();
#include "tst_simulator_process.moc"
