#include "tests/dialogs/settings/CalibrationTabs.h"
#include "tests/hostile/CalibrationCases.h"

#include "simulator/KvaSim.h"

#include <QFileInfo>
#include <QtTest>

#include <array>
#include <cstdio>

/** Hostile files of calibration values: what the readers make of them, the calibration tabs, and
    the instrument. */
class TestHostileCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindHasARow_data();
    void everyKindHasARow();
    void reader_data();
    void reader();
    void chosen_data();
    void chosen();
    void written_data();
    void written();
    void folderTypedIntoTheDialog_data();
    void folderTypedIntoTheDialog();
};

namespace {

void addRows() {
    QTest::addColumn<CalibrationCase>("c");
    for (const CalibrationCase& c : calibrationCases())
        QTest::newRow(c.row.constData()) << c;
}

/** As printf does it, but for a zero's sign, which Qt's log leaves out. */
QString sixDecimals(float value) {
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%f", value == 0.0F ? 0.0 : static_cast<double>(value));
    return QString::fromLatin1(text.data());
}

/** What checking the file logs: nothing where the reader fails, else number and values; those that
    the file does not have are 0. */
QStringList checkLines(const CalibrationCase& c) {
    if (!c.isRead)
        return {};
    QStringList lines(QStringLiteral("SerialNo: %1 \n").arg(c.serialNumber));
    for (int k = 0; k < calRefReader(c.adapter).valueCount; ++k)
        lines.append(QStringLiteral("rfWhite.spcData[%1]: %2 \n")
                         .arg(QString::number(k), sixDecimals(c.values.value(k))));
    return lines;
}

/** The serial number of an accepted file as the window shows it. */
QString shownNumber(const CalibrationCase& c) {
    return QStringLiteral("%1").arg(c.serialNumber, 8, 10, QLatin1Char('0'));
}

/** The record with what the file has in its place. */
QByteArray registeredIn(const QByteArray& record, const CalibrationCase& c) {
    const CalRefReader reader = calRefReader(c.adapter);
    return overlaid(overlaid(record, reader.serialNoOffset, c.serialNo), reader.valuesOffset,
                    bytesOfFloats(c.values));
}

/** The calibration record of the connected instrument. */
QByteArray heldRecord() {
    KVA_JIG_CALREFDATA record = {};
    KVA_JIG_GetFactoryCalib_CALREFDATA(&record);
    return bytesOf(record);
}

/** The three texts of the tab: instrument's serial number, file name, file's serial number. */
QStringList textsOf(SettingsFixture& f, const CalibrationTab& tab) {
    return f.calibrationTexts().mid(tab.firstText, 3);
}

const QString getCall = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA");

QStringList callsOfWriting(bool isRegistered) {
    if (!isRegistered)
        return {getCall};
    return {getCall, QStringLiteral("KVA_JIG_SetFactoryCalib_CALREFDATA"),
            QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector"), getCall, getCall};
}

} // namespace

void TestHostileCalibration::everyKindHasARow_data() {
    addCalibrationTabs();
}

void TestHostileCalibration::everyKindHasARow() {
    QFETCH(bool, adapter);
    QStringList rows;
    for (const CalibrationCase& c : calibrationCases()) {
        if (c.adapter == adapter)
            rows.append(QString::fromLatin1(c.row).section(QStringLiteral(", "), 0, -2));
    }
    QCOMPARE(strayKinds(rows), QStringList());
}

void TestHostileCalibration::reader_data() {
    addRows();
}

void TestHostileCalibration::reader() {
    QFETCH(CalibrationCase, c);
    const WorkingFolder folder(c.place.folder);
    QVERIFY(folder.isReady());
    HostileFile file(c.place.name, c.trick, c.content);
    QVERIFY(file.place());
    const Expense expense;
    const bool struck = file.strike();
    const CalRefRead read(calRefReader(c.adapter), file.path().constData());
    file.release();

    QVERIFY(struck);
    QCOMPARE(read.result, c.isRead);
    QCOMPARE(read.printed, c.printed);
    QCOMPARE(read.logged, QStringList());
    const QByteArray before = bytesOf(patternedRecord<KVA_JIG_CALREFDATA>());
    QCOMPARE(read.bytes.toHex(), registeredIn(before, c).toHex());
    QVERIFY(expense.isBearable());
}

void TestHostileCalibration::chosen_data() {
    addRows();
}

void TestHostileCalibration::chosen() {
    QFETCH(CalibrationCase, c);
    const CalibrationTab& tab = calibrationTab(c.adapter);
    const WorkingFolder folder(c.place.folder);
    QVERIFY(folder.isReady());
    HostileFile file(c.place.name, c.trick, c.content);
    QVERIFY(file.place());
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QString held = textsOf(f, tab).constFirst();
    const QByteArray record = heldRecord();
    f.clearRecords();
    file.strikeBetween(f.answers);
    f.answers.willChoose(c.place.name);
    const Expense expense;
    const QByteArray printed = printedDuring([&] { f.click(tab.chooseButton); });

    QVERIFY(file.hasStruck());
    QCOMPARE(f.boxes(),
             QStringList(c.isAccepted ? QStringLiteral("information: Successful read file data.")
                                      : QStringLiteral("error: Failed to read file data.")));
    QCOMPARE(f.lines(), checkLines(c));
    QCOMPARE(printed, c.printed);
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(textsOf(f, tab), (QStringList{held, QFileInfo(c.place.name).baseName(),
                                           c.isAccepted ? shownNumber(c) : QString()}));
    QCOMPARE(f.disabled().contains(tab.writeButton), !c.isAccepted);
    QCOMPARE(heldRecord().toHex(), record.toHex());
    QVERIFY(expense.isBearable());
}

void TestHostileCalibration::written_data() {
    addRows();
}

/** A good file was chosen; when it is to be written, this one is in its place. */
void TestHostileCalibration::written() {
    QFETCH(CalibrationCase, c);
    const CalibrationTab& tab = calibrationTab(c.adapter);
    const WorkingFolder folder(c.place.folder);
    QVERIFY(folder.isReady());
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    f.answers.willChoose(writeFile(c.place.name, valueFile(tab.lowestSerialLine, tab.valueCount)));
    f.click(tab.chooseButton);
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful read file data.")));
    QStringList texts = textsOf(f, tab);
    const QByteArray record = heldRecord();
    f.clearRecords();

    HostileFile file(c.place.name, c.trick, c.content);
    f.answers.onBox = [&file](QMessageBox&) { file.release(); };
    QVERIFY(file.place());
    const Expense expense;
    QVERIFY(file.strike());
    const QByteArray printed = printedDuring([&] { f.click(tab.writeButton); });

    QCOMPARE(f.boxes(), QStringList(c.isRegistered()
                                        ? QStringLiteral("information: Successful device writing.")
                                        : tab.failureBox));
    QCOMPARE(f.lines(), c.isRead
                            ? QStringList()
                            : QStringList(QStringLiteral("file.GetCalRefDataFromFile() failed.")));
    QCOMPARE(printed, c.printed);
    QCOMPARE(f.calls(), callsOfWriting(c.isRegistered()));
    if (c.isRegistered() && !c.serialNo.isEmpty())
        texts[0] = shownNumber(c);
    QCOMPARE(textsOf(f, tab), texts);
    QVERIFY(!f.disabled().contains(tab.writeButton) && !f.disabled().contains(tab.chooseButton));
    QCOMPARE(heldRecord().toHex(), (c.isRegistered() ? registeredIn(record, c) : record).toHex());
    QVERIFY(expense.isBearable());
}

void TestHostileCalibration::folderTypedIntoTheDialog_data() {
    addCalibrationTabs();
}

/** It is opened in the file dialog, which stays until it is cancelled. */
void TestHostileCalibration::folderTypedIntoTheDialog() {
    QFETCH(bool, adapter);
    const CalibrationTab& tab = calibrationTab(adapter);
    const WorkingFolder folder(QStringLiteral("files"));
    QVERIFY(folder.isReady());
    QVERIFY(QDir().mkdir(QStringLiteral("folder.csv")));
    SettingsFixture f;
    QVERIFY(f.connectFirst(tab.page));
    const QStringList before = f.everything();
    f.answers.willChoose(QStringLiteral("folder.csv"));
    f.click(tab.chooseButton);

    QCOMPARE(f.answers.fileDialogs.size(), 2); // the same one, looked at again
    QCOMPARE(f.answers.fileDialogs[1].directory,
             QDir::current().filePath(QStringLiteral("folder.csv")));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.everything(), before);
}

QTEST_MAIN(TestHostileCalibration)
#include "tst_hostile_calibration.moc"
