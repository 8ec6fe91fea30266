#include "tests/dialogs/settings/CalibrationTabs.h"

#include <QTemporaryDir>
#include <QtTest>

/** The calibration tabs' buttons "Read From File...". */
class TestCalibrationChoose : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void asksForAFile_data();
    void asksForAFile();
    void cancelledFileDialog_data();
    void cancelledFileDialog();
    void cancelledFileDialogKeepsTheChoice_data();
    void cancelledFileDialogKeepsTheChoice();
    void acceptsAFile_data();
    void acceptsAFile();
    void refusesAFile_data();
    void refusesAFile();
    void refusesAVanishedFile_data();
    void refusesAVanishedFile();
    void refusalTakesBackAnEarlierChoice_data();
    void refusalTakesBackAnEarlierChoice();
    void leavesTheOtherTabAlone_data();
    void leavesTheOtherTabAlone();

private:
    QString m_start;
    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QString success = QStringLiteral("information: Successful read file data.");
const QString failure = QStringLiteral("error: Failed to read file data.");

/** The three texts of the tab: instrument's serial number, file name, file's serial number. */
QStringList textsOf(SettingsFixture& f, const CalibrationTab& tab) {
    return f.calibrationTexts().mid(tab.firstText, 3);
}

QStringList without(QStringList names, const QString& name) {
    names.removeOne(name);
    return names;
}

} // namespace

void TestCalibrationChoose::initTestCase() {
    m_start = QDir::currentPath();
}

void TestCalibrationChoose::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void TestCalibrationChoose::cleanup() {
    QVERIFY(QDir::setCurrent(m_start));
}

void TestCalibrationChoose::asksForAFile_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::asksForAFile() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.click(tab.chooseButton);

    QCOMPARE(f.answers.fileDialogs.size(), 1);
    const ModalAnswerer::FileDialog& shown = f.answers.fileDialogs[0];
    QCOMPARE(shown.caption, QStringLiteral("Open"));
    QCOMPARE(shown.directory, QDir::currentPath());
    QCOMPARE(shown.nameFilters, QStringList(QStringLiteral("csv(*.csv)")));
    QCOMPARE(shown.selectedNameFilter, QStringLiteral("csv(*.csv)"));
    QCOMPARE(shown.acceptMode, QFileDialog::AcceptOpen);
    QCOMPARE(shown.options, QFileDialog::Options(QFileDialog::DontUseCustomDirectoryIcons));
    QCOMPARE(shown.parent, &f.dialog);
}

void TestCalibrationChoose::cancelledFileDialog_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::cancelledFileDialog() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QStringList before = f.everything();
    f.answers.willCancel();
    f.click(tab.chooseButton);

    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.everything(), before);
}

void TestCalibrationChoose::cancelledFileDialogKeepsTheChoice_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::cancelledFileDialogKeepsTheChoice() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("first.csv")),
                                   valueFile(tab.serialLine, tab.valueCount)));
    f.click(tab.chooseButton);
    f.clearRecords();
    const QStringList before = f.everything();
    f.answers.willCancel();
    f.click(tab.chooseButton);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.everything(), before);

    f.click(tab.writeButton);
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful device writing.")));
}

void TestCalibrationChoose::acceptsAFile_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shownName");
    QTest::addColumn<QByteArray>("serialLine");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "plate";
        const CalibrationTab& tab = calibrationTab(adapter);
        QTest::addRow("%s", kind) << adapter << QStringLiteral("values.csv")
                                  << QStringLiteral("values") << tab.serialLine;
        QTest::addRow("%s, several dots", kind) << adapter << QStringLiteral("calib.2024.csv")
                                                << QStringLiteral("calib") << tab.serialLine;
        QTest::addRow("%s, no dot", kind)
            << adapter << QStringLiteral("calib") << QStringLiteral("calib") << tab.serialLine;
        QTest::addRow("%s, Japanese name", kind) << adapter << QString::fromUtf8("校正 値.csv")
                                                 << QString::fromUtf8("校正 値") << tab.serialLine;
        QTest::addRow("%s, lowest number", kind)
            << adapter << QStringLiteral("values.csv") << QStringLiteral("values")
            << tab.lowestSerialLine;
    }
    QTest::newRow("adapter, highest number") << true << QStringLiteral("values.csv")
                                             << QStringLiteral("values") << QByteArray("00099999");
}

void TestCalibrationChoose::acceptsAFile() {
    QFETCH(bool, adapter);
    QFETCH(QString, name);
    QFETCH(QString, shownName);
    QFETCH(QByteArray, serialLine);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QString held = textsOf(f, tab).constFirst();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = f.everything(); };
    f.answers.willChoose(
        writeFile(m_folder->filePath(name), valueFile(serialLine, tab.valueCount)));
    f.click(tab.chooseButton);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.lines(), checkLines(serialLine, tab.valueCount));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(textsOf(f, tab), (QStringList{held, shownName, QString::fromLatin1(serialLine)}));
    QCOMPARE(f.disabled(), without(SettingsFixture::disabledWhenConnected(), tab.writeButton));
    QCOMPARE(f.fileToolTips()[adapter ? 1 : 0], m_folder->filePath(name));
    QCOMPARE(f.fileToolTips()[adapter ? 0 : 1], QString());
    QCOMPARE(f.everything(), duringBox);

    f.click(QStringLiteral("disConnectPushBtn"));
    QCOMPARE(f.fileToolTips().join(QString()), QString());
}

void TestCalibrationChoose::refusesAFile_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("lines");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "plate";
        const CalibrationTab& tab = calibrationTab(adapter);
        const int count = tab.valueCount;
        QTest::addRow("%s, number too low", kind)
            << adapter << valueFile(tab.tooLowSerialLine, count)
            << checkLines(tab.tooLowSerialLine, count);
        QTest::addRow("%s, number 0", kind)
            << adapter << valueFile("00000000", count) << checkLines("00000000", count);
        QTest::addRow("%s, a value missing", kind)
            << adapter << valueFile(tab.serialLine, count - 1) << QStringList();
        QTest::addRow("%s, a value too many", kind)
            << adapter << valueFile(tab.serialLine, count + 1) << QStringList();
        QTest::addRow("%s, of the other kind", kind)
            << adapter
            << valueFile(calibrationTab(!adapter).serialLine, calibrationTab(!adapter).valueCount)
            << QStringList();
    }
    QTest::newRow("adapter, number too high")
        << true << valueFile("00100000", 75) << checkLines("00100000", 75);
}

void TestCalibrationChoose::refusesAFile() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, content);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QString held = textsOf(f, tab).constFirst();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = f.everything(); };
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("refused.2.csv")), content));
    f.click(tab.chooseButton);

    QCOMPARE(f.boxes(), QStringList(failure));
    QTEST(f.lines(), "lines");
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(textsOf(f, tab), (QStringList{held, QStringLiteral("refused"), QString()}));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QCOMPARE(f.fileToolTips()[adapter ? 1 : 0],
             m_folder->filePath(QStringLiteral("refused.2.csv")));
    QCOMPARE(f.everything(), duringBox);
}

void TestCalibrationChoose::refusesAVanishedFile_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::refusesAVanishedFile() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.answers.onFileDialog = [](QFileDialog& dialog) {
        connect(&dialog, &QFileDialog::fileSelected,
                [](const QString& path) { QVERIFY(QFile::remove(path)); });
    };
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("gone.csv")),
                                   valueFile(tab.serialLine, tab.valueCount)));
    f.click(tab.chooseButton);

    QCOMPARE(f.boxes(), QStringList(failure));
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(textsOf(f, tab).mid(1), (QList<QString>{QStringLiteral("gone"), QString()}));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestCalibrationChoose::refusalTakesBackAnEarlierChoice_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::refusalTakesBackAnEarlierChoice() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("good.csv")),
                                   valueFile(tab.serialLine, tab.valueCount)));
    f.click(tab.chooseButton);
    f.answers.willChoose(
        writeFile(m_folder->filePath(QStringLiteral("bad.csv")), valueFile(tab.serialLine, 3)));
    f.click(tab.chooseButton);

    QCOMPARE(f.boxes(), (QStringList{success, failure}));
    QCOMPARE(textsOf(f, tab).mid(1), (QList<QString>{QStringLiteral("bad"), QString()}));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestCalibrationChoose::leavesTheOtherTabAlone_data() {
    addCalibrationTabs();
}

void TestCalibrationChoose::leavesTheOtherTabAlone() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    const CalibrationTab& other = calibrationTab(!adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(other.page));
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("other.csv")),
                                   valueFile(other.serialLine, other.valueCount)));
    f.click(other.chooseButton);
    const QStringList texts = textsOf(f, other);
    f.openPage(tab.page);
    f.answers.willChoose(
        writeFile(m_folder->filePath(QStringLiteral("bad.csv")), valueFile(tab.serialLine, 3)));
    f.click(tab.chooseButton);

    QCOMPARE(textsOf(f, other), texts);
    QCOMPARE(f.disabled(), without(SettingsFixture::disabledWhenConnected(), other.writeButton));
}

QTEST_MAIN(TestCalibrationChoose)
#include "tst_calibration_choose.moc"
