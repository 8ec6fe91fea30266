// kvasim and the programs that it handles: bench files, none running, several running, one killed.

#include "KvasimTest.h"

using namespace kvasimtest;

class TestKvasimPrograms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void benchCheck();
    void benchInit();
    void nobodyRuns();
    void severalRun();
    void entryOfKilledProgram();

private:
    std::unique_ptr<Bench> m_bench;
};

void TestKvasimPrograms::init() {
    m_bench = std::make_unique<Bench>();
    m_bench->use();
}

void TestKvasimPrograms::cleanup() {
    KVA_RegisterDeviceEventHandler(nullptr);
    m_bench.reset();
}

void TestKvasimPrograms::benchCheck() {
    const QString path = m_bench->folder.filePath(QStringLiteral("other.json"));
    Bench::write(path, benchText());
    const Outcome good = kvasim({QStringLiteral("bench"), QStringLiteral("check"), path});
    QCOMPARE(good.status, 0);
    QVERIFY(good.output.endsWith("other.json: good, 2 instruments, 0 rules\n"));
    const QByteArray damaged = "{\"version\": 1,\n \"instruments\": [,]}\n";
    Bench::write(path, damaged);
    const Outcome bad = kvasim({QStringLiteral("bench"), QStringLiteral("check"), path});
    QCOMPARE(bad.status, 1);
    QVERIFY2(bad.errors.contains("line 2, column 18"), bad.errors.constData());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), damaged);
}

void TestKvasimPrograms::benchInit() {
    const QString path = m_bench->folder.filePath(QStringLiteral("new.json"));
    const QStringList init = {QStringLiteral("bench"), QStringLiteral("init"), path};
    QCOMPARE(kvasim(init).status, 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY(text.startsWith("//"));
    QCOMPARE(kvasim({QStringLiteral("bench"), QStringLiteral("check"), path}).status, 0);
    QCOMPARE(kvasim(init).status, 1);
    QVERIFY2(KvaSim_LoadJson(text.constData()), KvaSim_LastError());
    QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "measuring-room");
}

void TestKvasimPrograms::nobodyRuns() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    Outcome outcome = kvasim("list");
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.contains("no running program"));
    outcome = kvasim({QStringLiteral("list"), QStringLiteral("--bench"), m_bench->path()});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.contains("no running program"));
}

void TestKvasimPrograms::severalRun() {
    const QString other = m_bench->folder.filePath(QStringLiteral("other.json"));
    Bench::write(other, R"({"version": 1, "instruments": [{"serialNumber": 77}]})");
    QProcess holder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KVASIM_BENCH"), other);
    holder.setProcessEnvironment(environment);
    holder.start(QStringLiteral(BENCH_HOLDER), QStringList());
    QTRY_VERIFY(QFile::exists(other + QStringLiteral(".control/socket")));
    QTRY_COMPARE(kvasim("list").status, 1);
    const Outcome outcome = kvasim("list");
    QVERIFY2(outcome.errors.contains("--bench") && outcome.errors.contains("other.json") &&
                 outcome.errors.contains("bench.json"),
             outcome.errors.constData());
    const QStringList ofOther = {QStringLiteral("list"), QStringLiteral("--serials"),
                                 QStringLiteral("--bench"), other};
    QCOMPARE(kvasim(ofOther).output, QByteArray("77\n"));
    holder.closeWriteChannel();
    QVERIFY(holder.waitForFinished());
    QVERIFY(!QFile::exists(other + QStringLiteral(".control/socket")));
    QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
}

void TestKvasimPrograms::entryOfKilledProgram() {
    const QString other = m_bench->folder.filePath(QStringLiteral("other.json"));
    const QString socket = other + QStringLiteral(".control/socket");
    Bench::write(other, R"({"version": 1, "instruments": [{"serialNumber": 77}]})");
    for (int round = 0; round < 2; ++round) {
        QProcess holder;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KVASIM_BENCH"), other);
        holder.setProcessEnvironment(environment);
        holder.start(QStringLiteral(BENCH_HOLDER), QStringList());
        const QStringList ofOther = {QStringLiteral("list"), QStringLiteral("--serials"),
                                     QStringLiteral("--bench"), other};
        QTRY_COMPARE(kvasim(ofOther).output, QByteArray("77\n"));
        holder.kill();
        QVERIFY(holder.waitForFinished());
        QVERIFY(QFile::exists(socket));
        QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
    }
}

QTEST_GUILESS_MAIN(TestKvasimPrograms)
#include "tst_kvasim_programs.moc"
