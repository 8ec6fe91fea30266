// The bench file: read, kept, saved at once after each change, and never touched when it is
// refused.

#include "SimulatorTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace simtest;

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

int modeOf(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 0777U)
                                                                     : -1;
}

json parsed(const QByteArray& text) {
    return json::parse(text.toStdString(), nullptr, false);
}

struct RefusedFileIsLeftAloneRow {
    const char* name;
    QByteArray content;
    QByteArray reason;
};

const RefusedFileIsLeftAloneRow refusedFileIsLeftAloneRows[] = {
    {"empty", "", "line 1, column 1"},
    {"no JSON", "hello\n", "line 1, column 1"},
    {"cut", "{\"version\": 1,\n\"instr", "line 2, column"},
    {"newer", "{\"version\": 3}", "version: is 3, newer"},
    {"damaged",
     QByteArray("{\"version\": 1, \"instruments\": [{\"serialNumber\": 1,"
                " \"powerOffMode\": 300}]}"),
     "instruments[0].powerOffMode: must be"},
    {"zeros", QByteArray(4096, '\0'), "line 1, column 1"},
};

struct BuiltInBenchIsKeptRow {
    const char* name;
    bool xdg;
};

const BuiltInBenchIsKeptRow builtInBenchIsKeptRows[] = {
    {"XDG_DATA_HOME", true},
    {"HOME", false},
};

struct NoHomeRow {
    const char* name;
    QByteArray home;
};

const NoHomeRow noHomeRows[] = {
    {"not set", ""},
    {"not there", "/nonexistent"},
    {"relative", "home"},
};

} // namespace

class TestSimulatorFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder.reset(new QTemporaryDir);
        startClean(*m_folder);
        EventRecord::instance().clear();
        QVERIFY(QDir(m_folder->path()).mkdir("bench"));
        m_path = m_folder->filePath("bench/bench.json");
        qputenv("KVASIM_BENCH", QFile::encodeName(m_path));
    }

    void cleanup() {
        KVA_RegisterDeviceEventHandler(nullptr);
        KvaSim_Reset();
    }

    void everyChangeIsSaved() {
        writeBench(benchOf({usbSerial, networkSerial}));
        const auto savedIsState = [this] { return parsed(contentOf(m_path)) == state(); };
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        const std::uint8_t mode = 2;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(savedIsState());
        KVA_NETWORKINFO network{};
        std::strcpy(network.SSID, "saved");
        QCOMPARE(KVA_SetNetworkInfo(&network), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(savedIsState());
        KVA_JIG_CALREFDATA data{};
        std::memset(&data, 0x81, sizeof data);
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(savedIsState());
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(savedIsState());
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(savedIsState());
        QVERIFY(KvaSim_Unplug(networkSerial));
        QVERIFY(savedIsState());
        QVERIFY(set(usbSerial, {{"port", {{"name", "USB 2"}}}}));
        QVERIFY(savedIsState());
        const json saved = parsed(contentOf(m_path))["instruments"];
        QVERIFY(saved[0]["network"]["active"]["SSID"] == "saved");
        QVERIFY(saved[0]["powerOffMode"] == 2);
        QVERIFY(saved[1]["plugged"] == false);
    }

    void stateIsThereAfterRestart() {
        writeBench(benchOf({usbSerial}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA data{};
        auto* bytes = reinterpret_cast<unsigned char*>(&data);
        for (std::size_t index = 0; index < sizeof data; ++index)
            bytes[index] = static_cast<unsigned char>(index * 7 + index / 251);
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        KvaSim_Reset();
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA read{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, data));
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        KvaSim_Reset();
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, data));
    }

    void fileIsReplacedWhole() {
        writeBench(benchOf({usbSerial}));
        const QByteArray old = contentOf(m_path);
        QFile reader(m_path);
        QVERIFY(reader.open(QIODevice::ReadOnly));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QCOMPARE(reader.readAll(), old);
        QVERIFY(contentOf(m_path) != old);
        const QDir folder = QFileInfo(m_path).dir();
        QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden),
                 QStringList({"bench.json", "bench.json.lock"}));
    }

    void modeOfFileIsKept() {
        writeBench(benchOf({usbSerial}));
        for (const int mode : {0600, 0640}) {
            QCOMPARE(::chmod(QFile::encodeName(m_path).constData(), static_cast<mode_t>(mode)), 0);
            QVERIFY(KvaSim_PowerCycle(usbSerial));
            QCOMPARE(modeOf(m_path), mode);
        }
    }

    void symbolicLinkStays() {
        writeBench(benchOf({usbSerial}));
        const QString link = m_folder->filePath("link.json");
        QVERIFY(QFile::link(m_path, link));
        qputenv("KVASIM_BENCH", QFile::encodeName(link));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(parsed(contentOf(m_path))["instruments"][0]["plugged"] == false);
    }

    void workingDirectoryMayChange() {
        writeBench(benchOf({usbSerial}));
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_folder->path()));
        qputenv("KVASIM_BENCH", "bench/bench.json");
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(QDir::setCurrent(before));
        QVERIFY2(KvaSim_Unplug(usbSerial), KvaSim_LastError());
        QVERIFY(parsed(contentOf(m_path))["instruments"][0]["plugged"] == false);
    }

    void faultsAreThoseOfFile() {
        json bench = benchOf({usbSerial});
        const json rule = {{"function", "KVA_Connect"}, {"call", 1}, {"result", "KVA_ERROR_NAK"}};
        bench["faults"].push_back(rule);
        writeBench(bench);
        QVERIFY(addFault({{"function", "KVA_Disconnect"}, {"result", 1}, {"times", 1}}));
        QVERIFY(parsed(contentOf(m_path))["faults"].size() == 2);
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{1});
        QVERIFY(parsed(contentOf(m_path))["faults"] == json::array({rule}));
        KvaSim_ClearFaults();
        QVERIFY(parsed(contentOf(m_path))["faults"] == json::array());
    }

    void refusedFileIsLeftAlone_data() { addRows(refusedFileIsLeftAloneRows); }

    void refusedFileIsLeftAlone() {
        const RefusedFileIsLeftAloneRow& given = rowOf(refusedFileIsLeftAloneRows);
        writeBench(given.content);
        struct stat before {};
        QCOMPARE(::stat(QFile::encodeName(m_path).constData(), &before), 0);
        std::int32_t count = -7;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_ERROR});
        QCOMPARE(count, -7);
        const KVA_PORTINFO port{};
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_ERROR});
        for (const ConnectionCall& call : connectionCalls())
            QCOMPARE(call.call(), KVA_RESULT{KVA_ERROR});
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY(!KvaSim_PowerCycle(usbSerial));
        QVERIFY(!set(usbSerial, {{"plugged", false}}));
        QVERIFY(!addFault({{"function", "*"}, {"result", 0}}));
        QVERIFY(KvaSim_State() == nullptr);
        const QByteArray resolved = QFile::encodeName(m_path);
        QVERIFY2(lastError().startsWith(resolved + ": " + given.reason), KvaSim_LastError());

        struct stat after {};
        QCOMPARE(::stat(QFile::encodeName(m_path).constData(), &after), 0);
        QCOMPARE(after.st_ino, before.st_ino);
        QCOMPARE(contentOf(m_path), given.content);
        QCOMPARE(QFileInfo(m_path).dir().entryList(QDir::Files).size(), 1);
    }

    void missingFileIsNotMade() {
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_ERROR});
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("cannot be opened: No such file"), KvaSim_LastError());
        QVERIFY(!QFileInfo::exists(m_path));
    }

    void noRegularFile() {
        qputenv("KVASIM_BENCH", m_folder->path().toLocal8Bit());
        QVERIFY(ports().empty());
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("is not a regular file"), KvaSim_LastError());
        const QByteArray pipe = QFile::encodeName(m_folder->filePath("pipe"));
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        QVERIFY(!KvaSim_LoadFile(pipe.constData()));
        QVERIFY2(lastError().contains("is not a regular file"), KvaSim_LastError());
    }

    void refusedFileAfterReset() {
        writeBench(QByteArray("{"));
        QVERIFY(!KvaSim_Unplug(usbSerial));
        writeBench(benchOf({usbSerial}));
        QVERIFY(!KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QVERIFY(KvaSim_Unplug(usbSerial));
    }

    void loadFileRefusedKeepsBench() {
        QVERIFY(loadJson(benchOf({5})));
        QCOMPARE(connectTo(5), KVA_RESULT{KVA_SUCCESS});
        writeBench(QByteArray("{"));
        QVERIFY(!KvaSim_LoadFile(QFile::encodeName(m_path).constData()));
        std::uint8_t mode = 1;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(contentOf(m_path), QByteArray("{"));
        writeBench(benchOf({6}));
        QVERIFY(KvaSim_LoadFile(QFile::encodeName(m_path).constData()));
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_CONNECT});
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(!KvaSim_LoadFile(nullptr));
    }

    void unsavedChangeIsUndone_data() {
        QTest::addColumn<QByteArray>("change");
        for (const char* change :
             {"power-off", "network", "stage", "commit", "plug", "unplug", "cycle", "set"})
            QTest::newRow(change) << QByteArray(change);
    }

    void unsavedChangeIsUndone() {
        QFETCH(QByteArray, change);
        writeBench(benchOf({usbSerial, networkSerial}));
        QVERIFY(KvaSim_Unplug(networkSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        const KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        const std::string before = stateText();
        const QString folder = QFileInfo(m_path).path();
        QVERIFY(QDir().rename(folder, folder + ".away"));

        const std::uint8_t mode = 3;
        const KVA_NETWORKINFO network{};
        KVA_JIG_CALREFDATA otherData{};
        otherData.reserved[0] = 1;
        const KVA_RESULT failed = KVA_ERROR;
        if (change == "power-off")
            QCOMPARE(KVA_SetShutdownTime(&mode), failed);
        else if (change == "network")
            QCOMPARE(KVA_SetNetworkInfo(&network), failed);
        else if (change == "stage")
            QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&otherData), failed);
        else if (change == "commit")
            QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), failed);
        else if (change == "plug")
            QVERIFY(!KvaSim_Plug(networkSerial));
        else if (change == "unplug")
            QVERIFY(!KvaSim_Unplug(usbSerial));
        else if (change == "cycle")
            QVERIFY(!KvaSim_PowerCycle(usbSerial));
        else
            QVERIFY(!set(usbSerial, {{"plugged", false}}));
        QCOMPARE(QByteArray::fromStdString(stateText()), QByteArray::fromStdString(before));
        QCOMPARE(deliveredCodes(), QByteArray());

        QVERIFY(QDir().rename(folder + ".away", folder));
        QVERIFY(parsed(contentOf(m_path)) == state());
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
    }

    void builtInBenchIsKept_data() { addRows(builtInBenchIsKeptRows); }

    void builtInBenchIsKept() {
        const BuiltInBenchIsKeptRow& given = rowOf(builtInBenchIsKeptRows);
        qunsetenv("KVASIM_BENCH");
        qputenv("HOME", m_folder->path().toLocal8Bit());
        qunsetenv("XDG_DATA_HOME");
        QString data = m_folder->filePath(".local/share");
#ifdef Q_OS_MACOS
        data = m_folder->filePath("Library/Application Support");
#else
        if (given.xdg) {
            data = m_folder->filePath("not yet/there");
            qputenv("XDG_DATA_HOME", QFile::encodeName(data));
        }
#endif
        QCOMPARE(ports().size(), std::size_t{2});
        const QString folder = data + "/vq-tl4-simulator";
        const QString path = folder + "/bench.json";
        QCOMPARE(modeOf(folder), 0700);
        QCOMPARE(modeOf(path), 0600);
        QVERIFY(parsed(contentOf(path)) == state());
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void noHome_data() {
        addRows(noHomeRows);
    }

    void noHome() {
        const NoHomeRow& given = rowOf(noHomeRows);
        qunsetenv("KVASIM_BENCH");
        qunsetenv("XDG_DATA_HOME");
        if (given.home.isEmpty())
            qunsetenv("HOME");
        else
            qputenv("HOME", given.home);
        QCOMPARE(ports().size(), std::size_t{2});
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_Reset();
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void dataFolderCannotBeMade() {
        writeBench(QByteArray("a file where a folder should be"));
        qunsetenv("KVASIM_BENCH");
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_path));
#ifdef Q_OS_MACOS
        QVERIFY(QFile::copy(m_path, m_folder->filePath("Library")));
#endif
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_ERROR});
        QVERIFY(!KvaSim_Plug(usbSerial));
        QVERIFY2(lastError().contains("cannot be made"), KvaSim_LastError());
    }

private:
    void writeBench(const QByteArray& text) {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), qint64{text.size()});
    }

    void writeBench(const json& bench) {
        writeBench(QByteArray::fromStdString(bench.dump(1)));
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_path;
};

static const bool isAdded = simtest::addTest<TestSimulatorFile>();
#include "tst_simulator_file.moc"
