// The bench file: read, kept, saved at once after each change, and never touched when it is
// refused.

#include "SimulatorTest.h"

#include <optional>
#include <sys/stat.h>

using namespace simtest;

namespace {

constexpr const char* benchFile = "bench/bench.json"; // in the test's folder, the current one

struct stat statusOf(const QString& path) {
    struct stat status {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status;
}

int modeOf(const QString& path) {
    return static_cast<int>(statusOf(path).st_mode & 0777U);
}

// Contents, and how the reason for which they are refused begins.
const TextCase refusedRows[] = {
    {"empty", "", "line 1, column 1"},
    {"no JSON", "hello\n", "line 1, column 1"},
    {"cut", "{\"version\": 1,\n\"instr", "line 2, column"},
    {"newer", "{\"version\": 3}", "version: is 3, newer"},
    {"damaged", R"({"version": 1, "instruments": [{"serialNumber": 1, "powerOffMode": 300}]})",
     "instruments[0].powerOffMode: must be"},
    {"zeros", QByteArray(4096, '\0'), "line 1, column 1"},
};

/** Makes a change. False when it is refused. */
using Change = NamedValue<bool (*)()>;

const Change changeRows[] = {
    {"power-off", [] { return send(KVA_SetShutdownTime, 3) != KVA_ERROR; }},
    {"network", [] { return send(KVA_SetNetworkInfo) != KVA_ERROR; }},
    {"stage",
     [] {
         KVA_JIG_CALREFDATA other{};
         other.reserved[0] = 1;
         return send(KVA_JIG_SetFactoryCalib_CALREFDATA, other) != KVA_ERROR;
     }},
    {"commit", [] { return KVA_JIG_SetFactoryCalib_WriteSector() != KVA_ERROR; }},
    {"plug", [] { return KvaSim_Plug(networkSerial); }},
    {"unplug", [] { return KvaSim_Unplug(usbSerial); }},
    {"cycle", [] { return KvaSim_PowerCycle(usbSerial); }},
    {"set", [] { return KvaSim_Set(usbSerial, R"({"plugged": false})"); }},
};

// Folders for data.
const NamedText dataFolderRows[] = {{"XDG_DATA_HOME", "not yet/there"}, {"HOME", ".local/share"}};
const NamedText noHomeRows[] = {
    {"not set", ""}, {"not there", "/nonexistent"}, {"relative", "home"}};

} // namespace

class TestSimulatorFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder.emplace();
        startClean(*m_folder);
        QVERIFY(QDir().mkdir("bench"));
        qputenv("KVASIM_BENCH", m_folder->localPath(benchFile));
    }

    void cleanup() { KvaSim_Reset(); }

    void fileIsReplacedWhole() {
        write(benchOf({usbSerial}));
        const QByteArray old = m_folder->read(benchFile);
        QFile reader(benchFile);
        QVERIFY(reader.open(QIODevice::ReadOnly));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QCOMPARE(reader.readAll(), old);
        QVERIFY(m_folder->read(benchFile) != old);
        QCOMPARE(QDir("bench").entryList(QDir::Files | QDir::Hidden),
                 QStringList({"bench.json", "bench.json.lock"}));
    }

    void modeOfFileIsKept() {
        write(benchOf({usbSerial}));
        for (const mode_t mode : {0600U, 0640U}) {
            QCOMPARE(::chmod(benchFile, mode), 0);
            QVERIFY(KvaSim_PowerCycle(usbSerial));
            QCOMPARE(modeOf(benchFile), static_cast<int>(mode));
        }
    }

    void symbolicLinkStays() {
        write(benchOf({usbSerial}));
        QVERIFY(QFile::link(benchFile, "link.json"));
        qputenv("KVASIM_BENCH", m_folder->localPath("link.json"));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QVERIFY(QFileInfo("link.json").isSymLink());
        QVERIFY(saved()["instruments"][0]["plugged"] == false);
    }

    void workingDirectoryMayChange() {
        write(benchOf({usbSerial}));
        qputenv("KVASIM_BENCH", benchFile);
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(QDir::setCurrent("/"));
        QVERIFY2(KvaSim_Unplug(usbSerial), KvaSim_LastError());
        QVERIFY(saved()["instruments"][0]["plugged"] == false);
    }

    void faultsAreThoseOfFile() {
        json bench = benchOf({usbSerial});
        const json rule = {{"function", "KVA_Connect"}, {"call", 1}, {"result", "KVA_ERROR_NAK"}};
        bench["faults"].push_back(rule);
        write(bench);
        QVERIFY(addFaultOf("KVA_Disconnect", {{"result", 1}, {"times", 1}}));
        QVERIFY(saved()["faults"].size() == 2);
        QCOMPARE(connectTo(usbSerial), KVA_ERROR_NAK);
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{1});
        QVERIFY(saved()["faults"] == json::array({rule}));
        KvaSim_ClearFaults();
        QVERIFY(saved()["faults"] == json::array());
    }

    void refusedFileIsLeftAlone_data() { addRows(refusedRows); }
    void refusedFileIsLeftAlone() {
        const auto row = rowOf<TextCase>();
        m_folder->write(benchFile, row.given);
        const auto before = statusOf(benchFile).st_ino;
        std::int32_t count = -7;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_ERROR);
        QCOMPARE(count, -7);
        const KVA_PORTINFO port{};
        QCOMPARE(KVA_Connect(&port, 10), KVA_ERROR);
        for (const Call& call : connectionCalls())
            QCOMPARE(call.call(), KVA_ERROR);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY(!KvaSim_PowerCycle(usbSerial));
        QVERIFY(!set(usbSerial, {{"plugged", false}}));
        QVERIFY(!addFaultOf("*", {{"result", 0}}));
        QVERIFY(KvaSim_State() == nullptr);
        QVERIFY2(lastError().startsWith(m_folder->localPath(benchFile) + ": " + row.expected),
                 KvaSim_LastError());

        QCOMPARE(statusOf(benchFile).st_ino, before);
        QCOMPARE(m_folder->read(benchFile), row.given);
        QCOMPARE(QDir("bench").entryList(QDir::Files).size(), 1);
    }

    void missingFileIsNotMade() {
        QCOMPARE(portCount(), KVA_ERROR);
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("cannot be opened: No such file"), KvaSim_LastError());
        QVERIFY(!QFile::exists(benchFile));
    }

    void noRegularFile() {
        qputenv("KVASIM_BENCH", m_folder->path().toLocal8Bit());
        QVERIFY(ports().empty());
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("is not a regular file"), KvaSim_LastError());
        QCOMPARE(::mkfifo("pipe", 0600), 0);
        QVERIFY(!KvaSim_LoadFile("pipe"));
        QVERIFY2(lastError().contains("is not a regular file"), KvaSim_LastError());
    }

    void refusedFileAfterReset() {
        m_folder->write(benchFile, "{");
        QVERIFY(!KvaSim_Unplug(usbSerial));
        write(benchOf({usbSerial}));
        QVERIFY(!KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QVERIFY(KvaSim_Unplug(usbSerial));
    }

    void loadFileRefusedKeepsBench() {
        QVERIFY(loadJson(benchOf({5})));
        QCOMPARE(connectTo(5), KVA_SUCCESS);
        m_folder->write(benchFile, "{");
        QVERIFY(!KvaSim_LoadFile(benchFile));
        QCOMPARE(send(KVA_SetShutdownTime, 1), KVA_SUCCESS);
        QCOMPARE(m_folder->read(benchFile), "{");
        write(benchOf({6}));
        QVERIFY(KvaSim_LoadFile(benchFile));
        QCOMPARE(send(KVA_SetShutdownTime, 1), KVA_ERROR_CONNECT);
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(!KvaSim_LoadFile(nullptr));
    }

    void changeIsSavedOrUndone_data() { addRows(changeRows); }
    void changeIsSavedOrUndone() {
        write(benchOf({usbSerial, networkSerial}));
        QVERIFY(KvaSim_Unplug(networkSerial));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA), KVA_SUCCESS);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
        const std::string before = stateText();
        QVERIFY(QDir().rename("bench", "away"));
        QVERIFY(!rowOf<Change>().value());
        QVERIFY(stateText() == before);
        QCOMPARE(deliveredCodes(), "");

        QVERIFY(QDir().rename("away", "bench"));
        QVERIFY(saved() == state());
        QVERIFY(rowOf<Change>().value());
        QVERIFY(saved() == state());
        QVERIFY(stateText() != before);
    }

    void builtInBenchIsKept_data() { addRows(dataFolderRows); }
    void builtInBenchIsKept() {
        const auto row = rowOf<NamedText>();
        qunsetenv("KVASIM_BENCH");
        qunsetenv("XDG_DATA_HOME");
#ifdef Q_OS_MACOS
        const QString data = m_folder->path("Library/Application Support");
#else
        const QString data = m_folder->path(row.value);
        if (QByteArray(row.name) != "HOME")
            qputenv(row.name, QFile::encodeName(data));
#endif
        QCOMPARE(ports().size(), std::size_t{2});
        const QString folder = data + "/vq-tl4-simulator";
        QCOMPARE(modeOf(folder), 0700);
        QCOMPARE(modeOf(folder + "/bench.json"), 0600);
        QVERIFY(parsed(folder + "/bench.json") == state());
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void noHome_data() {
        addRows(noHomeRows);
    }
    void noHome() {
        const auto row = rowOf<NamedText>();
        qunsetenv("KVASIM_BENCH");
        qunsetenv("XDG_DATA_HOME");
        if (row.value.isEmpty())
            qunsetenv("HOME");
        else
            qputenv("HOME", row.value);
        QCOMPARE(ports().size(), std::size_t{2});
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void dataFolderCannotBeMade() {
        m_folder->write(benchFile, "a file where a folder should be");
        qunsetenv("KVASIM_BENCH");
        qputenv("XDG_DATA_HOME", m_folder->localPath(benchFile));
#ifdef Q_OS_MACOS
        QVERIFY(QFile::copy(benchFile, "Library"));
#endif
        QCOMPARE(portCount(), KVA_ERROR);
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("cannot be made"), KvaSim_LastError());
    }

private:
    void write(const json& bench) const {
        m_folder->write(benchFile, QByteArray::fromStdString(bench.dump(1)));
    }

    static json parsed(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly)
                   ? json::parse(file.readAll().toStdString(), nullptr, false)
                   : json();
    }
    json saved() const {
        return parsed(m_folder->path(benchFile));
    }

    std::optional<TestFolder> m_folder;
};

TEST_CLASS(TestSimulatorFile)
#include "tst_simulator_file.moc"
