#include "tests/startup/ProgramRun.h"
#include "tests/support/MadeLocale.h"
#include "tests/support/QtInUse.h"

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace Steps;

namespace {

const QString eucJapan = "ja_JP.EUC-JP";

/** A text, and its bytes in the local encoding: in EUC-JP where Qt takes that of the locale. */
struct Japanese {
    Japanese(const char* utf8, const char* eucHex)
        : text(utf8),
          bytes(QtInUse::isAlwaysUtf8 ? QByteArray(utf8) : QByteArray::fromHex(eucHex)) {}
    QString text;
    QByteArray bytes;
};

const Japanese folderName("測定", "c2acc4ea");
const Japanese fileName("設定", "c0dfc4ea");
const Japanese ssid("計測室", "b7d7c2acbcbc");
const Japanese key("光の鍵", "b8f7a4ceb8b0");

QStringList inJapanese(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts)
        list.append(translated(japanese, "InitSettingDialog", text));
    return list;
}

/** An accessory's tab and its file. */
struct ValueFileRow {
    const char* name;
    int page;
    int valueCount;
    QByteArray serialNumber;
    QString chooseButton;
    QString writeButton;
    QString nameLabel;
    QString serialLabel;
};

const ValueFileRow valueFiles[] = {
    {"white plate", 2, 38, "87654321", "selWCPFilePushBtn", "setWCPValPushBtn",
     "selWCPFileNamelabel", "curWCalibPlateSerialNolabel"},
    {"adapter", 3, 75, "00054321", "selAmbLightAdpFilePushBtn", "setAmbAdpBodyPushBtn",
     "selAmbAdpFnamelabel", "curAmbAdpSerialNolabel"},
};

} // namespace

/** A session whose characters take several bytes and are not UTF-8. */
class TestStartupLocale : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        const QByteArray problem = makeLocale(m_folder.path(), eucJapan);
        QVERIFY2(problem.isEmpty(), problem);
        std::filesystem::create_directory(m_file.parent_path());
    }

    /** Not by Qt: under UTF-8 it does not find such names. */
    void cleanupTestCase() { std::filesystem::remove_all(m_folder.path().toStdString()); }

    void networkSettings() {
        const auto button = [](const QString& name) { return click(settingsDialog, name); };
        const QJsonObject texts = {{"SSIDlineEdit", ssid.text}, {"passwdlineEdit", key.text}};
        ProgramRun run({confirmLanguage, step(settingsDialog, "fill", texts),
                        button("writeBodyPushBtn"), dismissBox, button("writeFilePushBtn"),
                        chooseFile, dismissBox, button("readToFilePushBtn"), chooseFile, dismissBox,
                        closeWindow(settingsDialog)},
                       benchOf(1));
        useLocale(run);

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.boxTexts(),
                 inJapanese({"Write successful. To reflect, after [Disconnect], turn the power "
                             "supply of the measuring instrument OFF -> ON.",
                             "Successful file writing.", "Successful read file data."}));
        std::ostringstream file;
        file << std::ifstream(m_file).rdbuf();
        const QByteArray content = QByteArray::fromStdString(file.str());
        QVERIFY2(content.contains("\nSSID=" + ssid.bytes + "\nEncryptKey=" + key.bytes + '\n'),
                 content);
        const QJsonArray written = run.argumentsOf("KVA_SetNetworkInfo", "network");
        QCOMPARE(written.size(), 1);
        // The trace has bytes that are not UTF-8 as hexadecimal: all of the field.
        const QString field(ssid.bytes.leftJustified(33, '\0').toHex());
        const QJsonValue expected =
            QtInUse::isAlwaysUtf8 ? QJsonValue(ssid.text) : QJsonObject{{"hex", field}};
        QCOMPARE(written[0]["SSID"], expected);
    }

    void valueFile_data() { addRows(valueFiles); }
    void valueFile() {
        const auto row = rowOf<ValueFileRow>();
        const QByteArray values = QByteArray("0.25,").repeated(row.valueCount);
        QVERIFY(std::ofstream(m_file) << "\n\n"
                                      << row.serialNumber.data() << '\n'
                                      << values.data() << std::endl);
        ProgramRun run({confirmLanguage, step(settingsDialog, "page", row.page),
                        click(settingsDialog, row.chooseButton), chooseFile, dismissBox,
                        click(settingsDialog, row.writeButton), dismissBox,
                        closeWindow(settingsDialog)},
                       benchOf(1));
        useLocale(run);

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.boxTexts(),
                 inJapanese({"Successful read file data.", "Successful device writing."}));
        const QJsonObject shown = run.states(settingsDialog).last();
        QCOMPARE(textIn(shown, row.nameLabel), fileName.text);
        QCOMPARE(textIn(shown, row.serialLabel), QString(row.serialNumber));
    }

private:
    void useLocale(ProgramRun& run) const {
        run.locale = eucJapan;
        run.environment.insert("LOCPATH", m_folder.path());
        run.environment.insert("STARTUP_PROBE_ENCODING", "locale");
        run.environment.insert("XDG_CONFIG_HOME", m_folder.path()); // of file dialogs
    }

    TestFolder m_folder;
    /** A file in a folder, both with names in EUC-JP. */
    const std::filesystem::path m_file = m_folder.path().toStdString() + '/' +
                                         (folderName.bytes + '/' + fileName.bytes + ".csv").data();
    /** What a user does who is in such a session. */
    const QJsonObject chooseFile = step(
        "QFileDialog", "choose", m_folder.path(folderName.text + '/' + fileName.text + ".csv"));
};

TEST_CLASS(TestStartupLocale)
#include "tst_startup_locale.moc"
