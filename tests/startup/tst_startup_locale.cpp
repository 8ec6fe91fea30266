#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"
#include "tests/support/MadeLocale.h"

#include <QtTest>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

using namespace Steps;

namespace {

const QString eucJapan = QStringLiteral("ja_JP.EUC-JP");

/** A text, and its bytes in EUC-JP. */
struct Japanese {
    QString text;
    QByteArray bytes;
};

const Japanese folderName = {QStringLiteral("測定"), QByteArray::fromHex("c2acc4ea")};
const Japanese fileName = {QStringLiteral("設定"), QByteArray::fromHex("c0dfc4ea")};
const Japanese ssid = {QStringLiteral("計測室"), QByteArray::fromHex("b7d7c2acbcbc")};
const Japanese key = {QStringLiteral("光の鍵"), QByteArray::fromHex("b8f7a4ceb8b0")};

/** A file in a folder, both with names in EUC-JP. The test itself runs in UTF-8, where Qt does not
    find such names. */
class EucFile {
public:
    explicit EucFile(const QString& suffix)
        : m_suffix(suffix), m_folder(std::filesystem::path(m_parent.path().toStdString()) /
                                     folderName.bytes.toStdString()),
          m_path(m_folder / (fileName.bytes + suffix.toLatin1()).toStdString()) {
        std::filesystem::create_directory(m_folder);
    }
    ~EucFile() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    EucFile(const EucFile&) = delete;
    EucFile& operator=(const EucFile&) = delete;

    /** What a user types who is in such a session. */
    QString typed() const {
        return m_parent.filePath(folderName.text + QLatin1Char('/') + fileName.text + m_suffix);
    }
    bool write(const QByteArray& content) const {
        std::ofstream file(m_path, std::ios::binary);
        return bool(file << content.constData() << std::flush);
    }
    QByteArray read() const {
        std::ifstream file(m_path, std::ios::binary);
        return QByteArray::fromStdString(
            std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
    }

private:
    QTemporaryDir m_parent;
    QString m_suffix;
    std::filesystem::path m_folder;
    std::filesystem::path m_path;
};

QStringList inJapanese(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts)
        list.append(translated(QStringLiteral("jp.qm"), "InitSettingDialog", text));
    return list;
}

/** A field of a record as the trace has bytes that are not UTF-8: all of the field. */
QJsonObject fieldOf(const QByteArray& bytes, int size) {
    const QByteArray field = bytes + QByteArray(size - bytes.size(), '\0');
    return {{QStringLiteral("hex"), QString::fromLatin1(field.toHex())}};
}

} // namespace

/** A session whose characters take several bytes and are not UTF-8. */
class TestStartupLocale : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void networkSettings();
    void valueFile_data();
    void valueFile();

private:
    void prepare(ProgramRun& run) const;

    QTemporaryDir m_folder;
};

void TestStartupLocale::initTestCase() {
    const QByteArray problem = makeLocale(m_folder.path(), eucJapan);
    QVERIFY2(problem.isEmpty(), problem.constData());
}

void TestStartupLocale::prepare(ProgramRun& run) const {
    run.locale = eucJapan;
    run.environment.insert(QStringLiteral("LOCPATH"), m_folder.path());
    run.environment.insert(QStringLiteral("STARTUP_PROBE_ENCODING"), QStringLiteral("locale"));
    run.environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_folder.path()); // of file dialogs
    run.bench = benchOf(1);
}

void TestStartupLocale::networkSettings() {
    const EucFile file(QStringLiteral(".ini"));
    ProgramRun run;
    prepare(run);
    const auto button = [](const char* name) {
        return click(settingsDialog, QString::fromLatin1(name));
    };
    run.steps = {confirmLanguage(),
                 fill({{QStringLiteral("SSIDlineEdit"), ssid.text},
                       {QStringLiteral("passwdlineEdit"), key.text}}),
                 button("writeBodyPushBtn"),
                 dismissBox(),
                 button("writeFilePushBtn"),
                 chooseFile(file.typed()),
                 dismissBox(),
                 button("readToFilePushBtn"),
                 chooseFile(file.typed()),
                 dismissBox(),
                 closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(),
             inJapanese({"Write successful. To reflect, after [Disconnect], turn the power supply "
                         "of the measuring instrument OFF -> ON.",
                         "Successful file writing.", "Successful read file data."}));
    const QByteArray content = file.read();
    QVERIFY2(content.contains("\nSSID=" + ssid.bytes + "\nEncryptKey=" + key.bytes + '\n'),
             content);
    const QVector<QJsonObject> calls = run.calls();
    const auto written = std::find_if(calls.begin(), calls.end(), [](const QJsonObject& call) {
        return call.value(QLatin1String("function")) == QLatin1String("KVA_SetNetworkInfo");
    });
    QVERIFY(written != calls.end());
    const QJsonObject network =
        (*written)[QLatin1String("arguments")].toObject()[QLatin1String("network")].toObject();
    QCOMPARE(network.value(QLatin1String("SSID")).toObject(), fieldOf(ssid.bytes, 33));
}

void TestStartupLocale::valueFile_data() {
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("valueCount");
    QTest::addColumn<QString>("choose");
    QTest::addColumn<QString>("write");
    QTest::addColumn<QByteArray>("nameLabel");
    QTest::addColumn<QByteArray>("serialLabel");
    QTest::addColumn<QByteArray>("serialNumber");
    QTest::newRow("white plate") << 2 << 38 << QStringLiteral("selWCPFilePushBtn")
                                 << QStringLiteral("setWCPValPushBtn")
                                 << QByteArray("selWCPFileNamelabel")
                                 << QByteArray("curWCalibPlateSerialNolabel")
                                 << QByteArray("87654321");
    QTest::newRow("adapter") << 3 << 75 << QStringLiteral("selAmbLightAdpFilePushBtn")
                             << QStringLiteral("setAmbAdpBodyPushBtn")
                             << QByteArray("selAmbAdpFnamelabel")
                             << QByteArray("curAmbAdpSerialNolabel") << QByteArray("00054321");
}

void TestStartupLocale::valueFile() {
    QFETCH(int, page);
    QFETCH(int, valueCount);
    QFETCH(QString, choose);
    QFETCH(QString, write);
    QFETCH(QByteArray, nameLabel);
    QFETCH(QByteArray, serialLabel);
    QFETCH(QByteArray, serialNumber);
    const EucFile file(QStringLiteral(".csv"));
    QVERIFY(
        file.write("\n\n" + serialNumber + '\n' + QByteArray("0.25,").repeated(valueCount) + '\n'));
    ProgramRun run;
    prepare(run);
    run.steps = {confirmLanguage(),
                 turnTo(page),
                 click(settingsDialog, choose),
                 chooseFile(file.typed()),
                 dismissBox(),
                 click(settingsDialog, write),
                 dismissBox(),
                 closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(),
             inJapanese({"Successful read file data.", "Successful device writing."}));
    const QJsonObject shown = run.states(settingsDialog).last();
    QCOMPARE(textIn(shown, nameLabel.constData()), fileName.text);
    QCOMPARE(textIn(shown, serialLabel.constData()), QString::fromLatin1(serialNumber));
}

QTEST_GUILESS_MAIN(TestStartupLocale)
#include "tst_startup_locale.moc"
