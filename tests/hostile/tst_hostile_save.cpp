#include "tests/dialogs/settings/CalibrationTabs.h"
#include "tests/hostile/HostileFile.h"
#include "tests/unit/files/NetworkFixture.h"

#include <sys/stat.h>

namespace {

const char* const name = "hostile.ini";
const QStringList success = {"information: Successful file writing."};
const QStringList failure = {"error: Failed to write Network Infomation file data."};

/** The debug lines of checking the addresses of the fixture's instrument. */
QStringList addressLines() {
    return SettingsFixture::digitLines(
        QString("192.168.0.10.255.255.255.0.192.168.0.1.8.8.4.0").split('.'));
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
}

/** Puts it there; a null one is left out. */
void place(const QByteArray& content) {
    QFile file(name);
    if (!content.isNull() && (!file.open(QIODevice::WriteOnly) || file.write(content) < 0))
        giveUp("no file of before");
}

QStringList filesHere() {
    return QDir().entryList(QDir::Files | QDir::Hidden);
}

/** Reads what was saved, and shows the same again. */
bool readsAgain(const QString& file) {
    SettingsFixture f;
    f.connectFirst();
    const QStringList before = f.everything();
    f.answers.willChoose(file);
    f.click("readToFilePushBtn");
    return f.boxes() == QStringList("information: Successful read file data.") &&
           f.everything() == before;
}

/** One press of the button on a fresh connection. What comes of it apart from the file: the boxes,
    then the debug lines, then the calls; and complaints when the window or the instrument is not as
    it was.
    @param afterTheChoice  what goes wrong between the file dialog and the message box
    @param atTheBox        what ends it */
QStringList save(
    const QString& path, const std::function<void()>& afterTheChoice = [] {},
    const std::function<void()>& atTheBox = [] {}) {
    SettingsFixture f;
    if (!f.connectFirst())
        return {"no connection"};
    const QStringList before = f.everything();
    const QJsonObject state = TestBench::state();
    f.answers.onFileDialog = [&](QFileDialog& dialog) {
        // Qt's own question, whether a file is to be replaced, is answered with yes.
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
        QObject::connect(&dialog, &QFileDialog::fileSelected, afterTheChoice);
    };
    f.answers.onBox = [&](QMessageBox&) { atTheBox(); };
    f.answers.willChoose(path);
    f.click("writeFilePushBtn");
    QStringList result = f.boxes() + f.lines() + TestBench::calls();
    if (f.everything() != before)
        result.append("the window has changed");
    if (TestBench::state() != state)
        result.append("the instrument has changed");
    return result;
}

struct ObstacleRow {
    const char* name;
    void (*afterTheChoice)();
    QByteArray there = {}; ///< already; null: nothing
    QString path = ::name;
    bool isForbidden = false;
};

struct FullRow {
    const char* name;
    int room;
    QByteArray there = {}; ///< already; null: nothing
};

struct FolderRow {
    const char* name;
    SettingsFixture::Page page;
    QString button;
    QString folder = "folder.csv";
};

void doNothing() {}

} // namespace

/** Network settings saved where there is no room, no right and no such place, and where the place
    is odd; and folders chosen in place of a file. */
class TestHostileSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opens_data() {
        QVector<HostileCase> cases = oddPlaces(".ini");
        cases += {
            {"no extension", {}, HostileCase::None, "files", "saved"},
            {"hidden", {}, HostileCase::None, "files", ".ini"},
            {"name of 255 bytes", {}, HostileCase::None, "files", QString(255, 'n')},
        };
        addRows(cases);
    }
    /** Written there, and read again from there. */
    void opens() {
        const auto row = rowOf<HostileCase>();
        const HostileFolder folder(row.folder);
        QCOMPARE(save(row.file), success + addressLines());
        QCOMPARE(contentOf(row.file), benchNetworkIni());
        QCOMPARE(filesHere(), QStringList(row.file));
        QVERIFY(readsAgain(row.file));
    }

    void doesNotOpen_data() {
        addRows(QVector<ObstacleRow>{
            {"directory", [] { QVERIFY(QDir().mkdir(name)); }},
            {"unwritable folder", [] { QCOMPARE(::chmod(".", 0555), 0); }, {}, name, true},
            {"unwritable file", [] { QCOMPARE(::chmod(name, 0444), 0); }, "old", name, true},
            {"link to itself", [] { QCOMPARE(::symlink(name, name), 0); }},
            {"link to a folder", [] { QCOMPARE(::symlink(".", name), 0); }},
            {"link to a device", [] { QCOMPARE(::symlink("/dev/null", name), 0); }},
            {"pipe", [] { QCOMPARE(::mkfifo(name, 0600), 0); }},
            {"folder that is not there", doNothing, {}, QString("gone/") + name},
            {"behind a file", doNothing, "old", QString(name) + "/saved.ini"},
            // 100 characters, as Qt's file dialog counts, but 300 bytes.
            {"name too long", doNothing, {}, QString("測").repeated(100)},
        });
    }
    void doesNotOpen() {
        const auto row = rowOf<ObstacleRow>();
        const HostileFolder folder;
        place(row.there);
        std::optional<WithoutPrivileges> guard;
        const auto afterTheChoice = [&] {
            row.afterTheChoice();
            if (row.isForbidden)
                guard.emplace();
        };
        const QStringList result = save(row.path, afterTheChoice, [&guard] { guard.reset(); });
        QCOMPARE(::chmod(".", 0755), 0);
        QCOMPARE(result, (failure + addressLines()) << "Failed to write network setting file. \n");
        if (!row.there.isNull())
            QCOMPARE(contentOf(name), row.there);
        // Nothing was made elsewhere, nor left over.
        for (const QString& entry : filesHere())
            QCOMPARE(entry, QString(name));
    }

    void full_data() {
        addRows(QVector<FullRow>{
            {"no room", 0},
            {"room for half a line", 5},
            {"room for some lines", 100},
            {"room for all but the last byte", benchNetworkIni().size() - 1},
            {"just enough", benchNetworkIni().size()},
            {"no room for another", 0, "old settings"},
            {"some room for another", 100, QByteArray(1000, 'o')},
        });
    }
    /** The file opens, which decides: what does not fit is missing, and nobody is told. */
    void full() {
        const auto row = rowOf<FullRow>();
        const HostileFolder folder;
        place(row.there);
        std::optional<FileSizeLimit> limit;
        const QStringList result = save(
            name, [&] { limit.emplace(static_cast<rlim_t>(row.room)); },
            [&limit] { limit.reset(); });
        QCOMPARE(result, success + addressLines());
        QCOMPARE(contentOf(name), benchNetworkIni().left(row.room));
    }

    void folderTypedIntoTheDialog_data() {
        addRows(QVector<FolderRow>{
            {"read settings", SettingsFixture::Network, "readToFilePushBtn", "folder.ini"},
            {"save settings", SettingsFixture::Network, "writeFilePushBtn", "folder.ini"},
            {"white plate", SettingsFixture::WhitePlate, "selWCPFilePushBtn"},
            {"adapter", SettingsFixture::AmbientAdapter, "selAmbLightAdpFilePushBtn"},
        });
    }
    /** It is opened in the file dialog, which stays until it is cancelled. */
    void folderTypedIntoTheDialog() {
        const auto row = rowOf<FolderRow>();
        const HostileFolder folder;
        QVERIFY(QDir().mkdir(row.folder));
        SettingsFixture f;
        QVERIFY(f.connectFirst(row.page));
        const QStringList before = f.everything();
        const QJsonObject state = TestBench::state();
        f.answers.willChoose(row.folder);
        f.click(row.button);

        QCOMPARE(f.answers.fileDialogs.size(), 2); // the same one, looked at again
        QCOMPARE(f.answers.fileDialogs[1].directory, QDir::current().filePath(row.folder));
        QCOMPARE(f.boxes() + f.lines(), QStringList());
        QCOMPARE(f.everything(), before);
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(filesHere() + QDir(row.folder).entryList(QDir::Files | QDir::Hidden),
                 QStringList());
    }
};

TEST_CLASS(TestHostileSave)

#include "tst_hostile_save.moc"
