// The control socket and the lock: who gets in, and what a hostile client can do.

#include "KvasimTest.h"

#include <QElapsedTimer>

#include <algorithm>
#include <vector>

#include <sys/stat.h>

using namespace kvasimtest;

class TestKvasimSocket : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void requests();
    void onlyTheOwner();
    void openFolderIsNotUsed();
    void longPath();
    void staleSocket();
    void fileInPlaceOfSocket();
    void goneAfterUse();
    void noSocketInMemory();
    void rubbish_data();
    void rubbish();
    void lineWithoutEnd();
    void requestsWithoutEnd();
    void halfALine();
    void neverReads();
    void followerThatNeverReads();
    void tooManyClients();
    void closesInTheMiddle();
    void eventsInSpiteOfClients();
    void secondProgram();
    void sameProgramAgain();
    void lockOfEndedProgram();

private:
    /** The library and a well-behaved client still work, and at once. */
    void checkAlive();

    std::unique_ptr<Bench> m_bench;
};

void TestKvasimSocket::init() {
    m_bench = std::make_unique<Bench>();
    m_bench->use();
}

void TestKvasimSocket::cleanup() {
    KVA_RegisterDeviceEventHandler(nullptr);
    m_bench.reset();
}

void TestKvasimSocket::checkAlive() {
    QElapsedTimer timer;
    timer.start();
    std::int32_t count = 0;
    QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(count, 2);
    Connection client(m_bench->socketPath());
    QVERIFY(client.connected);
    QVERIFY(client.ask(R"({"command": "list"})")["ok"] == true);
    QVERIFY2(timer.elapsed() < 4000, "too slow");
}

void TestKvasimSocket::requests() {
    Connection client(m_bench->socketPath());
    const json hello = client.ask(R"({"command": "hello"})");
    QCOMPARE(QString::fromStdString(hello["bench"].get<std::string>()),
             QFileInfo(m_bench->path()).canonicalFilePath());
    QVERIFY(hello["protocol"] == 1);
    client.send("{\"command\": \"list\"}\n{\"command\": \"faults\"}\n");
    QVERIFY(client.line().contains("instruments"));
    QVERIFY(client.line().contains("faults"));
    QVERIFY(client.ask(R"({"command": "follow", "nonsense": 1})")["ok"] == false);
    QVERIFY(client.ask(R"({"command": "follow"})")["ok"] == true);
    KVA_Disconnect();
    QVERIFY(json::parse(client.line().toStdString())["call"]["function"] == "KVA_Disconnect");
}

void TestKvasimSocket::onlyTheOwner() {
    struct stat status {};
    const QByteArray folder = m_bench->path().toLocal8Bit() + ".control";
    QCOMPARE(::lstat(folder.constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0700U);
    QCOMPARE(::lstat(m_bench->socketPath().toLocal8Bit().constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0600U);
    QCOMPARE(
        ::lstat(m_bench->folder.filePath(QStringLiteral("run")).toLocal8Bit().constData(), &status),
        0);
    QCOMPARE(status.st_mode & 07777U, 0700U);
}

void TestKvasimSocket::openFolderIsNotUsed() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    const QByteArray folder = m_bench->path().toLocal8Bit() + ".control";
    QCOMPARE(::chmod(folder.constData(), 0755), 0);
    QVERIFY(!KvaSim_LoadFile(m_bench->path().toLocal8Bit().constData()));
    QVERIFY(QByteArray(KvaSim_LastError()).contains("may be entered by other users"));
    QCOMPARE(::chmod(folder.constData(), 0700), 0);
    QVERIFY2(KvaSim_LoadFile(m_bench->path().toLocal8Bit().constData()), KvaSim_LastError());
}

void TestKvasimSocket::longPath() {
    QString folder = m_bench->folder.path();
    for (int level = 0; level < 4; ++level)
        folder += QLatin1Char('/') + QString(60, QLatin1Char('x'));
    QVERIFY(QDir().mkpath(folder));
    const QString path = folder + QStringLiteral("/bench.json");
    Bench::write(path, R"({"version": 1, "instruments": [{"serialNumber": 77}]})");
    QVERIFY2(KvaSim_LoadFile(path.toLocal8Bit().constData()), KvaSim_LastError());
    QTRY_COMPARE(kvasim("list --serials").output, QByteArray("77\n"));
    const QStringList named = {QStringLiteral("list"), QStringLiteral("--serials"),
                               QStringLiteral("--bench"), path};
    QCOMPARE(kvasim(named).output, QByteArray("77\n"));
    const QDir run(m_bench->folder.filePath(QStringLiteral("run")));
    const auto sockets = [&] {
        return run.entryList({QStringLiteral("*.socket")}, QDir::AllEntries | QDir::System).size();
    };
    QCOMPARE(sockets(), 1);
    KvaSim_Reset();
    QTRY_COMPARE(sockets(), 0);
}

void TestKvasimSocket::staleSocket() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    const int left = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, m_bench->socketPath().toLocal8Bit().constData(),
             sizeof address.sun_path);
    QCOMPARE(::bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(left);
    QVERIFY(QFile::exists(m_bench->socketPath()));
    m_bench->use();
    QTRY_COMPARE(kvasim("list").status, 0);
}

void TestKvasimSocket::fileInPlaceOfSocket() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    Bench::write(m_bench->socketPath(), "a file of the user's");
    m_bench->use();
    QTRY_COMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
    QFile file(m_bench->socketPath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("a file of the user's"));
}

void TestKvasimSocket::goneAfterUse() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    QTRY_VERIFY(
        QDir(m_bench->folder.filePath(QStringLiteral("run"))).entryList(QDir::Files).isEmpty());
}

void TestKvasimSocket::noSocketInMemory() {
    QVERIFY(KvaSim_LoadJson(benchText().constData()));
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    QCOMPARE(kvasim("list").status, 1);
}

void TestKvasimSocket::rubbish_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty line") << QByteArray("\n");
    QTest::newRow("zeros") << QByteArray(1000, '\0') + '\n';
    QTest::newRow("no JSON") << QByteArray("GET / HTTP/1.1\r\n");
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\x80\n");
    QTest::newRow("deep") << QByteArray(100000, '[') + '\n';
    QTest::newRow("long text") << "{\"command\": \"" + QByteArray(900000, 'x') + "\"}\n";
    QTest::newRow("many keys") << [] {
        QByteArray text = "{";
        for (int key = 0; key < 20000; ++key)
            text += '"' + QByteArray::number(key) + "\":0,";
        return text + "\"command\":\"list\"}\n";
    }();
    QTest::newRow("large number") << QByteArray("{\"command\": 1e999}\n");
}

void TestKvasimSocket::rubbish() {
    QFETCH(QByteArray, bytes);
    Connection client(m_bench->socketPath());
    QCOMPARE(client.send(bytes), static_cast<qint64>(bytes.size()));
    QVERIFY(json::parse(client.line().toStdString())["ok"] == false);
    QVERIFY(client.ask(R"({"command": "list"})")["ok"] == true);
    checkAlive();
}

void TestKvasimSocket::lineWithoutEnd() {
    Connection client(m_bench->socketPath());
    const QByteArray block(1 << 16, 'x');
    qint64 taken = 0;
    for (int round = 0; round < 400; ++round) {
        const qint64 sent = client.send(block, 2000);
        if (sent < block.size())
            break;
        taken += sent;
        if (round % 10 == 0)
            checkAlive();
    }
    QVERIFY2(taken < 4 << 20, QByteArray::number(taken).constData());
    checkAlive();
}

void TestKvasimSocket::requestsWithoutEnd() {
    std::atomic<bool> goOn{true};
    std::vector<std::thread> clients;
    for (int count = 0; count < 4; ++count) {
        clients.emplace_back([&] {
            Connection client(m_bench->socketPath());
            QByteArray block;
            for (int round = 0; round < 1000; ++round)
                block += "{\"command\": \"list\"}\n";
            while (goOn && client.send(block, 100) >= 0) {
            }
        });
    }
    for (int round = 0; round < 5; ++round)
        checkAlive();
    goOn = false;
    for (std::thread& client : clients)
        client.join();
    checkAlive();
}

void TestKvasimSocket::halfALine() {
    Connection client(m_bench->socketPath());
    QVERIFY(client.send("{\"command\": ") > 0);
    checkAlive();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 9000 && client.send(" ") == 1)
        QTest::qWait(500);
    QVERIFY(client.isClosed(5000));
    checkAlive();
}

void TestKvasimSocket::neverReads() {
    Connection client(m_bench->socketPath());
    QByteArray block;
    for (int round = 0; round < 1000; ++round)
        block += "{\"command\": \"state\"}\n";
    qint64 taken = 0;
    for (int round = 0; round < 100; ++round)
        taken += std::max<qint64>(client.send(block, 20), 0);
    QVERIFY2(taken < block.size() * 99LL, QByteArray::number(taken).constData());
    checkAlive();
}

void TestKvasimSocket::followerThatNeverReads() {
    Connection client(m_bench->socketPath());
    QVERIFY(client.ask(R"({"command": "follow"})")["ok"] == true);
    for (int round = 0; round < 20000; ++round)
        KVA_GetDevicePortList(nullptr, nullptr, 0);
    checkAlive();
    int calls = 0;
    for (QByteArray line = client.line(); calls < 20000 && !line.isEmpty(); line = client.line()) {
        QVERIFY(json::parse(line.toStdString())["call"]["result"] == KVA_ERROR_ARGUMENT);
        ++calls;
    }
    QCOMPARE(calls, 20000);
}

void TestKvasimSocket::tooManyClients() {
    std::vector<std::unique_ptr<Connection>> clients;
    for (int count = 0; count < 40; ++count)
        clients.push_back(std::make_unique<Connection>(m_bench->socketPath()));
    int refused = 0;
    for (const auto& client : clients)
        refused += client->ask(R"({"command": "list"})").value("ok", false) ? 0 : 1;
    QVERIFY2(refused >= 24, QByteArray::number(refused).constData());
    std::int32_t count = 0;
    QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
    clients.clear();
    QTRY_COMPARE(kvasim("list").status, 0);
}

void TestKvasimSocket::closesInTheMiddle() {
    for (int round = 0; round < 50; ++round) {
        Connection client(m_bench->socketPath());
        client.send("{\"command\": \"state\"}\n{\"command\": \"st");
    }
    checkAlive();
}

void TestKvasimSocket::eventsInSpiteOfClients() {
    static std::atomic<int> events{0};
    events = 0;
    QCOMPARE(KVA_RegisterDeviceEventHandler(
                 [](std::uint32_t, std::uint32_t, std::int32_t) { ++events; }),
             KVA_RESULT{KVA_SUCCESS});
    std::atomic<bool> goOn{true};
    std::thread flood([&] {
        Connection client(m_bench->socketPath());
        while (goOn && client.send("{\"command\": \"list\"}\n", 50) >= 0)
            client.line(50);
    });
    for (int round = 0; round < 20; ++round) {
        QVERIFY(KvaSim_Unplug(networkSerial));
        QVERIFY(KvaSim_Plug(networkSerial));
    }
    KvaSim_WaitForEvents();
    goOn = false;
    flood.join();
    QCOMPARE(events.load(), 20);
}

void TestKvasimSocket::secondProgram() {
    const QByteArray before = QByteArray::fromStdString(stateText());
    QProcess second;
    second.start(QStringLiteral(BENCH_HOLDER), QStringList());
    second.closeWriteChannel();
    QVERIFY(second.waitForFinished());
    QCOMPARE(second.readAllStandardOutput(), QByteArray("-9999\n"));
    const QByteArray errors = second.readAllStandardError();
    QVERIFY2(errors.contains("another program uses this bench") && errors.count('\n') == 1,
             errors.constData());
    QCOMPARE(QByteArray::fromStdString(stateText()), before);
    checkAlive();
}

void TestKvasimSocket::sameProgramAgain() {
    for (int round = 0; round < 20; ++round) {
        QVERIFY2(KvaSim_LoadFile(m_bench->path().toLocal8Bit().constData()), KvaSim_LastError());
        if (round % 3 == 0)
            KvaSim_Reset();
        if (round % 4 == 0)
            QVERIFY(KvaSim_LoadJson(benchText().constData()));
    }
    m_bench->use();
    QTRY_COMPARE(kvasim("list").status, 0);
}

void TestKvasimSocket::lockOfEndedProgram() {
    KvaSim_Reset();
    QTRY_VERIFY(!QFile::exists(m_bench->socketPath()));
    QProcess holder;
    holder.start(QStringLiteral(BENCH_HOLDER), QStringList());
    QTRY_VERIFY(QFile::exists(m_bench->socketPath()));
    QVERIFY(!KvaSim_LoadFile(m_bench->path().toLocal8Bit().constData()));
    QVERIFY(QByteArray(KvaSim_LastError()).contains("another program uses this bench"));
    holder.kill();
    QVERIFY(holder.waitForFinished());
    QVERIFY2(KvaSim_LoadFile(m_bench->path().toLocal8Bit().constData()), KvaSim_LastError());
    m_bench->use();
}

QTEST_GUILESS_MAIN(TestKvasimSocket)
#include "tst_kvasim_socket.moc"
