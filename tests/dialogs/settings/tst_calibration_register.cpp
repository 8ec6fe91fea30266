#include "tests/dialogs/settings/CalibrationTabs.h"

#include "simulator/KvaSim.h"

#include <QTemporaryDir>
#include <QtTest>

/** The calibration tabs' buttons "Write To Body". */
class TestCalibrationRegister : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void withoutAFile_data();
    void withoutAFile();
    void registers_data();
    void registers();
    void refreshesItsOwnNumberOnly_data();
    void refreshesItsOwnNumberOnly();
    void showsNoNumberThatCannotBeRead_data();
    void showsNoNumberThatCannotBeRead();
    void failingCall_data();
    void failingCall();
    void readsTheFileAgain_data();
    void readsTheFileAgain();
    void triesARefusedFileAgain_data();
    void triesARefusedFileAgain();
    void registersTwice_data();
    void registersTwice();

private:
    /** Connects and chooses a good file. False unless it was accepted. */
    bool choose(SettingsFixture& f, const CalibrationTab& tab);

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

namespace {

const QString getCall = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA");
const QString setCall = QStringLiteral("KVA_JIG_SetFactoryCalib_CALREFDATA");
const QString commitCall = QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector");
const QString success = QStringLiteral("information: Successful device writing.");

QJsonObject calibration(const char* which) {
    return SettingsFixture::state()[QStringLiteral("calibration")]
        .toObject()[QLatin1String(which)]
        .toObject();
}

/** The part of the record that a file of `valueFile` fills, as the bench writes it. */
QJsonObject registeredPart(const QByteArray& serialLine, int count) {
    QJsonArray values;
    for (int i = 0; i < count; ++i)
        values.append(static_cast<double>(fileValue(i)));
    return {{QStringLiteral("serialNumber"), QString::fromLatin1(serialLine)},
            {QStringLiteral("values"), values}};
}

/** The two buttons of the tab that are disabled. */
QStringList disabledButtons(SettingsFixture& f, const CalibrationTab& tab) {
    QStringList names;
    for (const QString& name : {tab.chooseButton, tab.writeButton}) {
        if (f.disabled().contains(name))
            names.append(name);
    }
    return names;
}

} // namespace

void TestCalibrationRegister::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_path = m_folder->filePath(QString::fromUtf8("値.csv"));
}

bool TestCalibrationRegister::choose(SettingsFixture& f, const CalibrationTab& tab) {
    if (!f.connectFirst(tab.page))
        return false;
    f.answers.willChoose(writeFile(m_path, valueFile(tab.serialLine, tab.valueCount)));
    f.click(tab.chooseButton);
    const bool accepted =
        f.boxes() == QStringList(QStringLiteral("information: Successful read file data."));
    f.clearRecords();
    return accepted;
}

void TestCalibrationRegister::withoutAFile_data() {
    addCalibrationTabs();
}

void TestCalibrationRegister::withoutAFile() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QStringList texts = f.calibrationTexts();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = disabledButtons(f, tab); };
    f.invoke(tab.writeSlot);

    QCOMPARE(f.boxes(), QStringList(tab.noFileBox));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(duringBox.size(), 2);
    QCOMPARE(disabledButtons(f, tab), QStringList());
    QCOMPARE(f.calibrationTexts(), texts);
}

void TestCalibrationRegister::registers_data() {
    addCalibrationTabs();
}

void TestCalibrationRegister::registers() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(choose(f, tab));
    QJsonObject expected = calibration("committed");
    expected[tab.ownPart] = registeredPart(tab.serialLine, tab.valueCount);
    QStringList texts = f.calibrationTexts();
    QStringList duringBox;
    QStringList callsDuringBox;
    QStringList textsDuringBox;
    f.answers.onBox = [&](QMessageBox&) {
        duringBox = disabledButtons(f, tab);
        callsDuringBox = f.calls();
        textsDuringBox = f.calibrationTexts();
    };
    f.click(tab.writeButton);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(callsDuringBox, (QStringList{getCall, setCall, commitCall, getCall}));
    QCOMPARE(f.calls(), (QStringList{getCall, setCall, commitCall, getCall, getCall}));
    QCOMPARE(calibration("committed"), expected);
    QCOMPARE(calibration("staged"), QJsonObject());
    QCOMPARE(duringBox.size(), 2);
    QCOMPARE(disabledButtons(f, tab), QStringList());
    QCOMPARE(textsDuringBox, texts); // refreshed when the box is gone
    texts[tab.firstText] = QString::fromLatin1(tab.serialLine);
    QCOMPARE(f.calibrationTexts(), texts);
}

void TestCalibrationRegister::refreshesItsOwnNumberOnly_data() {
    addCalibrationTabs();
}

void TestCalibrationRegister::refreshesItsOwnNumberOnly() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    const CalibrationTab& other = calibrationTab(!adapter);
    SettingsFixture f;
    QVERIFY(choose(f, tab));
    QStringList texts = f.calibrationTexts();
    const QByteArray patch = "{\"calibration\": {\"committed\": {\"" + other.ownPart.toLatin1() +
                             "\": {\"serialNumber\": \"11112222\"}}}}";
    QVERIFY(f.set(patch.constData()));
    f.click(tab.writeButton);

    QCOMPARE(f.boxes(), QStringList(success));
    texts[tab.firstText] = QString::fromLatin1(tab.serialLine);
    QCOMPARE(f.calibrationTexts(), texts);
    QCOMPARE(calibration("committed")[tab.otherPart]
                 .toObject()[QStringLiteral("serialNumber")]
                 .toString(),
             QStringLiteral("11112222"));
}

void TestCalibrationRegister::showsNoNumberThatCannotBeRead_data() {
    addCalibrationTabs();
}

void TestCalibrationRegister::showsNoNumberThatCannotBeRead() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(choose(f, tab));
    QVERIFY(f.answer(getCall, KVA_ERROR, 3));
    QStringList texts = f.calibrationTexts();
    f.click(tab.writeButton);

    QCOMPARE(f.boxes(), QStringList(success));
    texts[tab.firstText].clear();
    QCOMPARE(f.calibrationTexts(), texts);
    QCOMPARE(disabledButtons(f, tab), QStringList());
}

void TestCalibrationRegister::failingCall_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("call");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("staged");
    QTest::addColumn<bool>("committed");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "plate";
        const QString getLine = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n");
        QTest::addRow("%s, fetch", kind)
            << adapter << getCall << 1 << QStringList{getCall} << getLine << false << false;
        QTest::addRow("%s, set", kind)
            << adapter << setCall << 1 << QStringList{getCall, setCall}
            << QStringLiteral("file.KVA_JIG_SetFactoryCalib_CALREFDATA() failed.\n") << false
            << false;
        QTest::addRow("%s, commit", kind)
            << adapter << commitCall << 1 << QStringList{getCall, setCall, commitCall}
            << QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector() failed.\n") << true << false;
        QTest::addRow("%s, read back", kind)
            << adapter << getCall << 2 << QStringList{getCall, setCall, commitCall, getCall}
            << getLine << false << true;
    }
}

void TestCalibrationRegister::failingCall() {
    QFETCH(bool, adapter);
    QFETCH(QString, function);
    QFETCH(int, call);
    QFETCH(QString, line);
    QFETCH(bool, staged);
    QFETCH(bool, committed);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(choose(f, tab));
    QVERIFY(f.answer(function, KVA_ERROR_NAK, call));
    const QJsonObject before = calibration("committed");
    QJsonObject registered = before;
    registered[tab.ownPart] = registeredPart(tab.serialLine, tab.valueCount);
    const QStringList texts = f.calibrationTexts();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = disabledButtons(f, tab); };
    f.click(tab.writeButton);

    QCOMPARE(f.boxes(), QStringList(tab.failureBox));
    QTEST(f.calls(), "calls");
    QCOMPARE(f.lines(), QStringList(line));
    QCOMPARE(duringBox.size(), 2);
    QCOMPARE(disabledButtons(f, tab), QStringList());
    QCOMPARE(f.calibrationTexts(), texts);
    QCOMPARE(calibration("committed"), committed ? registered : before);
    QCOMPARE(calibration("staged"), staged ? registered : QJsonObject());
}

void TestCalibrationRegister::readsTheFileAgain_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("content"); // "": no file any more
    QTest::addColumn<QStringList>("lines");
    const QStringList unreadable(QStringLiteral("file.GetCalRefDataFromFile() failed."));
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "plate";
        const CalibrationTab& tab = calibrationTab(adapter);
        QTest::addRow("%s, gone", kind) << adapter << QByteArray() << unreadable;
        QTest::addRow("%s, damaged", kind) << adapter << valueFile(tab.serialLine, 3) << unreadable;
        QTest::addRow("%s, invalid number", kind)
            << adapter << valueFile(tab.tooLowSerialLine, tab.valueCount) << QStringList();
    }
}

void TestCalibrationRegister::readsTheFileAgain() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, content);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(choose(f, tab));
    const QJsonObject before = SettingsFixture::state();
    if (content.isEmpty())
        QVERIFY(QFile::remove(m_path));
    else
        QCOMPARE(writeFile(m_path, content), m_path);
    f.click(tab.writeButton);

    QCOMPARE(f.boxes(), QStringList(tab.failureBox));
    QCOMPARE(f.calls(), QStringList(getCall));
    QTEST(f.lines(), "lines");
    QCOMPARE(SettingsFixture::state(), before);
    QCOMPARE(disabledButtons(f, tab), QStringList());
}

void TestCalibrationRegister::triesARefusedFileAgain_data() {
    addCalibrationTabs();
}

// The path of a refused file is kept; nobody can press the button then, but the slot would try.
void TestCalibrationRegister::triesARefusedFileAgain() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.answers.willChoose(writeFile(m_path, valueFile(tab.tooLowSerialLine, tab.valueCount)));
    f.click(tab.chooseButton);
    f.clearRecords();
    f.invoke(tab.writeSlot);
    QCOMPARE(f.boxes(), QStringList(tab.failureBox));
    QCOMPARE(f.calls(), QStringList(getCall));
    QCOMPARE(disabledButtons(f, tab), QStringList());

    // The button is enabled now, as after every registration.
    QCOMPARE(writeFile(m_path, valueFile(tab.serialLine, tab.valueCount)), m_path);
    f.clearRecords();
    f.click(tab.writeButton);
    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(calibration("committed")[tab.ownPart].toObject(),
             registeredPart(tab.serialLine, tab.valueCount));
}

void TestCalibrationRegister::registersTwice_data() {
    addCalibrationTabs();
}

// One after the other, from both tabs: neither disturbs what the other has written.
void TestCalibrationRegister::registersTwice() {
    QFETCH(bool, adapter);
    const CalibrationTab& first = calibrationTab(adapter);
    const CalibrationTab& second = calibrationTab(!adapter);
    SettingsFixture f;
    QVERIFY(choose(f, first));
    QJsonObject expected = calibration("committed");
    f.click(first.writeButton);
    f.openPage(second.page);
    f.answers.willChoose(writeFile(m_folder->filePath(QStringLiteral("second.csv")),
                                   valueFile(second.serialLine, second.valueCount)));
    f.click(second.chooseButton);
    f.click(second.writeButton);

    expected[first.ownPart] = registeredPart(first.serialLine, first.valueCount);
    expected[second.ownPart] = registeredPart(second.serialLine, second.valueCount);
    QCOMPARE(calibration("committed"), expected);
    QVERIFY(KvaSim_PowerCycle(SettingsFixture::serialNumber));
    QCOMPARE(calibration("committed"), expected);
}

QTEST_MAIN(TestCalibrationRegister)
#include "tst_calibration_register.moc"
