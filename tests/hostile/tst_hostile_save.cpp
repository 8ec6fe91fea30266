#include "tests/dialogs/settings/SettingsFixture.h"
#include "tests/hostile/HostileFile.h"
#include "tests/unit/files/NetworkFixture.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

/** Network settings saved where there is no room, no right and no such place, and where the place
    is odd. */
class TestHostileSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opens_data();
    void opens();
    void doesNotOpen_data();
    void doesNotOpen();
    void full_data();
    void full();
    void folderTypedIntoTheDialog();
};

namespace {

const QString button = QStringLiteral("writeFilePushBtn");
const QString name = QStringLiteral("hostile.ini");
const QString success = QStringLiteral("information: Successful file writing.");
const QString failure = QStringLiteral("error: Failed to write Network Infomation file data.");

/** The settings of the fixture's instrument as a file. */
QByteArray settingsFile() {
    return "[Network]\n; 0:eDHCP_OFF, 1:eDHCP_ON\nDHCPUse=0\nIPAddress=192.168.0.10\n"
           "SubnetMask=255.255.255.0\nDefaultGateway=192.168.0.1\nSSID=press-hall\n"
           "EncryptKey=spectral-key\nDNS=8.8.4.0\n; 0:eAPConnect_OFF, 1:eAPConnect_ON\n"
           "APConnectUse=1\n";
}

/** The debug lines of checking the addresses of the fixture's instrument. */
QStringList addressLines() {
    return SettingsFixture::digitLines(
        QStringLiteral("192.168.0.10.255.255.255.0.192.168.0.1.8.8.4.0").split(QLatin1Char('.')));
}

/** Null when it cannot be read. */
QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return content.isNull() ? QByteArray("") : content;
}

bool write(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/** Lets files have no more than so many bytes while it exists. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit limit = m_limit;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_limit = {};
};

/** One press of the button on a fresh connection, with what goes wrong between the file dialog and
    the message box. */
struct Save {
    QString path = name;
    std::function<void()> afterTheChoice = [] {};
    std::function<void()> atTheBox = [] {};

    QStringList boxes;
    QStringList lines;
    QStringList calls;
    bool leavesWindow = false;     ///< as it was
    bool leavesInstrument = false; ///< as it was

    /** False when there is no connection to begin with. */
    bool run();
};

bool Save::run() {
    SettingsFixture f;
    if (!f.connectFirst())
        return false;
    const QStringList before = f.everything();
    const QJsonObject state = SettingsFixture::state();
    f.answers.onFileDialog = [this](QFileDialog& dialog) {
        // Qt's own question, whether a file is to be replaced, is answered with yes.
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
        QObject::connect(&dialog, &QFileDialog::fileSelected, [this] { afterTheChoice(); });
    };
    f.answers.onBox = [this](QMessageBox&) { atTheBox(); };
    f.answers.willChoose(path);
    f.click(button);
    boxes = f.boxes();
    lines = f.lines();
    calls = f.calls();
    leavesWindow = f.everything() == before;
    leavesInstrument = SettingsFixture::state() == state;
    return true;
}

} // namespace

void TestHostileSave::opens_data() {
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("file");
    for (const auto& odd : oddPlaces(QStringLiteral(".ini")))
        QTest::newRow(odd.first.constData()) << odd.second.folder << odd.second.name;
    QTest::newRow("no extension") << QStringLiteral("files") << QStringLiteral("saved");
    QTest::newRow("hidden") << QStringLiteral("files") << QStringLiteral(".ini");
    QTest::newRow("name of 255 bytes") << QStringLiteral("files") << QString(255, QLatin1Char('n'));
}

/** Written there, and read again from there. */
void TestHostileSave::opens() {
    QFETCH(QString, folder);
    QFETCH(QString, file);
    const WorkingFolder working(folder);
    QVERIFY(working.isReady());
    Save save;
    save.path = file;
    QVERIFY(save.run());

    QCOMPARE(save.boxes, QStringList(success));
    QCOMPARE(save.lines, addressLines());
    QCOMPARE(save.calls, QStringList());
    QVERIFY(save.leavesWindow && save.leavesInstrument);
    QCOMPARE(contentOf(file), settingsFile());
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden), QStringList(file));

    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.answers.willChoose(file);
    f.click(QStringLiteral("readToFilePushBtn"));
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful read file data.")));
    QCOMPARE(f.everything(), before);
}

using Action = std::function<void()>;
Q_DECLARE_METATYPE(Action)

void TestHostileSave::doesNotOpen_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("there"); // already; null: nothing
    QTest::addColumn<Action>("afterTheChoice");
    QTest::addColumn<bool>("forWantOfRights");
    const auto row = [](const char* title, const QByteArray& there, const Action& afterTheChoice,
                        bool forWantOfRights = false) {
        QTest::newRow(title) << name << there << afterTheChoice << forWantOfRights;
    };
    row("directory", {}, [] { QVERIFY(QDir().mkdir(name)); });
    row(
        "unwritable folder", {}, [] { QCOMPARE(::chmod(".", 0555), 0); }, true);
    row(
        "unwritable file", "old", [] { QCOMPARE(::chmod("hostile.ini", 0444), 0); }, true);
    row("link to itself", {}, [] { QCOMPARE(::symlink("hostile.ini", "hostile.ini"), 0); });
    row("link to a folder", {}, [] { QCOMPARE(::symlink(".", "hostile.ini"), 0); });
    row("link to a device", {}, [] { QCOMPARE(::symlink("/dev/null", "hostile.ini"), 0); });
    row("pipe", {}, [] { QCOMPARE(::mkfifo("hostile.ini", 0600), 0); });

    const auto pathRow = [](const char* title, const QByteArray& there, const QString& path) {
        QTest::newRow(title) << path << there << Action([] {}) << false;
    };
    pathRow("folder that is not there", {}, QStringLiteral("gone/") + name);
    pathRow("behind a file", "old", name + QStringLiteral("/saved.ini"));
    // 100 characters, as Qt's file dialog counts, but 300 bytes.
    pathRow("name too long", {}, QString::fromUtf8("測").repeated(100));
}

void TestHostileSave::doesNotOpen() {
    QFETCH(QString, path);
    QFETCH(QByteArray, there);
    QFETCH(Action, afterTheChoice);
    QFETCH(bool, forWantOfRights);
    const WorkingFolder working(QStringLiteral("files"));
    QVERIFY(working.isReady());
    QVERIFY(there.isNull() || write(name, there));
    std::optional<WithoutPrivileges> guard;
    Save save;
    save.path = path;
    save.afterTheChoice = [&] {
        afterTheChoice();
        if (forWantOfRights)
            guard.emplace();
    };
    save.atTheBox = [&] { guard.reset(); };
    QVERIFY(save.run());
    QCOMPARE(::chmod(".", 0755), 0);

    QCOMPARE(save.boxes, QStringList(failure));
    QCOMPARE(save.lines, addressLines()
                             << QStringLiteral("Failed to write network setting file. \n"));
    QCOMPARE(save.calls, QStringList());
    QVERIFY(save.leavesWindow && save.leavesInstrument);
    if (!there.isNull())
        QCOMPARE(contentOf(name), there);
    // Nothing was made elsewhere, nor left over.
    for (const QString& entry : QDir().entryList(QDir::Files | QDir::Hidden))
        QCOMPARE(entry, name);
}

void TestHostileSave::full_data() {
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("there"); // already; null: nothing
    QTest::newRow("no room") << 0 << QByteArray();
    QTest::newRow("room for half a line") << 5 << QByteArray();
    QTest::newRow("room for some lines") << 100 << QByteArray();
    QTest::newRow("room for all but the last byte") << settingsFile().size() - 1 << QByteArray();
    QTest::newRow("just enough") << settingsFile().size() << QByteArray();
    QTest::newRow("no room for another") << 0 << QByteArray("old settings");
    QTest::newRow("some room for another") << 100 << QByteArray(1000, 'o');
}

/** The file opens, which decides: what does not fit is missing, and nobody is told. */
void TestHostileSave::full() {
    QFETCH(int, room);
    QFETCH(QByteArray, there);
    const WorkingFolder working(QStringLiteral("files"));
    QVERIFY(working.isReady());
    QVERIFY(there.isNull() || write(name, there));
    std::optional<FileSizeLimit> limit;
    Save save;
    save.afterTheChoice = [&] { limit.emplace(static_cast<rlim_t>(room)); };
    save.atTheBox = [&] { limit.reset(); };
    QVERIFY(save.run());

    QCOMPARE(save.boxes, QStringList(success));
    QCOMPARE(save.lines, addressLines());
    QCOMPARE(save.calls, QStringList());
    QVERIFY(save.leavesWindow && save.leavesInstrument);
    QCOMPARE(contentOf(name), settingsFile().left(room));
}

/** It is opened in the file dialog, which stays until it is cancelled. */
void TestHostileSave::folderTypedIntoTheDialog() {
    const WorkingFolder working(QStringLiteral("files"));
    QVERIFY(working.isReady());
    QVERIFY(QDir().mkdir(name));
    Save save;
    QVERIFY(save.run());

    QCOMPARE(save.boxes, QStringList());
    QCOMPARE(save.lines, QStringList());
    QVERIFY(save.leavesWindow && save.leavesInstrument);
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden), QStringList());
    QCOMPARE(QDir(name).entryList(QDir::Files | QDir::Hidden), QStringList());
}

QTEST_MAIN(TestHostileSave)
#include "tst_hostile_save.moc"
