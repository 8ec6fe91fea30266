#include "tests/unit/instrument/ControllerFixture.h"

namespace {

const QString getCall = "KVA_JIG_GetFactoryCalib_CALREFDATA";
const QString setCall = "KVA_JIG_SetFactoryCalib_CALREFDATA";
const QString commitCall = "KVA_JIG_SetFactoryCalib_WriteSector";
const QStringList allCalls{getCall, setCall, commitCall, getCall};

const QString getFailed = "KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n";
const QString fileFailed = "file.GetCalRefDataFromFile() failed.";
const QString setFailed = "file.KVA_JIG_SetFactoryCalib_CALREFDATA() failed.\n";
const QString commitFailed = "KVA_JIG_SetFactoryCalib_WriteSector() failed.\n";

/** What of the file the instrument holds after the power was off. */
enum Held { Nothing, SerialNo, SerialNoAndValues };

/** A registration and what comes of it. */
struct RegistrationRow {
    QByteArray name;
    Accessory accessory;
    QByteArray content; ///< of the file; null: there is none
    QByteArray serialNo;
    Held held;
    QStringList calls;
    QStringList lines = {};
    QString function = {}; ///< that answers something else than 0
    int call = 0;          ///< and when: the nth time; 0: each time
    int answer = 0;

    bool succeeds() const { return held != Nothing && lines.isEmpty(); }
};

void addOutcomes(QVector<RegistrationRow>& rows, const Accessory& a) {
    const auto succeeds = [&](const char* how, const QByteArray& content, Held held) {
        rows.append({a.name + QByteArray(how), a, content, a.serialNo, held, allCalls});
    };
    const auto failsAt = [&](const char* step, const QString& function, int call,
                             const QString& line, int calls, Held held) {
        rows.append({a.name + QByteArray(step), a, a.file(), a.serialNo, held,
                     allCalls.mid(0, calls), QStringList(line), function, call, -9989});
    };
    const auto refuses = [&](const char* file, const QByteArray& content) {
        // The warning of the fetch stays, since no later call takes its place.
        rows.append({a.name + QByteArray(file), a, content, a.serialNo, Nothing,
                     QStringList(getCall), QStringList(fileFailed), getCall, 0, 2});
    };
    const QByteArray serialNo = a.serialNo;
    succeeds("", a.file(), SerialNoAndValues);
    succeeds(", no values", "heading\nheading\n" + serialNo + '\n', SerialNo);
    failsAt(", get", getCall, 1, getFailed, 1, Nothing);
    failsAt(", set", setCall, 1, setFailed, 2, Nothing);
    failsAt(", commit", commitCall, 1, commitFailed, 3, Nothing);
    failsAt(", read-back get", getCall, 2, getFailed, 4, SerialNoAndValues);
    refuses(", no file", {});
    refuses(", one value short", TestBench::valueFile(serialNo, a.valueCount - 1));
    refuses(", one value too many", TestBench::valueFile(serialNo, a.valueCount + 1));
}

void addSerialNumber(QVector<RegistrationRow>& rows, const Accessory& a, const char* serialNo,
                     bool isValid) {
    rows.append({a.name + QByteArray(", ") + serialNo, a,
                 TestBench::valueFile(serialNo, a.valueCount), serialNo,
                 isValid ? SerialNoAndValues : Nothing, isValid ? allCalls : QStringList(getCall)});
}

QVector<RegistrationRow> registrations() {
    QVector<RegistrationRow> rows;
    addOutcomes(rows, whitePlate);
    addOutcomes(rows, adapter);
    for (const char* serialNo : {"00000000", "1", "10000000"})
        addSerialNumber(rows, whitePlate, serialNo, false);
    for (const char* serialNo : {"10000001", "99999999"})
        addSerialNumber(rows, whitePlate, serialNo, true);
    for (const char* serialNo : {"00000000", "00010000", "00100000", "99999999"})
        addSerialNumber(rows, adapter, serialNo, false);
    for (const char* serialNo : {"00010001", "00099999"})
        addSerialNumber(rows, adapter, serialNo, true);
    return rows;
}

} // namespace

class TestControllerRegistration : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }
    void registers_data() { addRows(registrations()); }
    void registers() {
        const auto row = rowOf<RegistrationRow>();
        ConnectedController controller;
        const QByteArray before = calibrationRecord();
        QCOMPARE(before.size(), 2508);
        QByteArray expected = before;
        if (row.held != Nothing)
            expected = row.accessory.numberedIn(expected, row.serialNo);
        if (row.held == SerialNoAndValues)
            expected = row.accessory.valuesIn(expected);
        TestBench::clearCalls();
        if (!row.function.isEmpty())
            TestBench::answer(row.function, row.answer, row.call);
        QCOMPARE(write(controller, row.accessory, row.content), row.succeeds());
        QCOMPARE(controller.m_lastResult, row.answer);
        QCOMPARE(controller.log.lines(), row.lines);
        QCOMPARE(TestBench::calls(), row.calls);
        // The texts are those of other operations.
        QCOMPARE(serialNumbers(controller), QStringList({"", "", "", ""}));
        KvaSim_ClearFaults();
        // A set or commit that failed may have changed the instrument's working copy.
        if (row.succeeds() || !row.calls.contains(setCall))
            QCOMPARE(calibrationRecord(), expected);
        // Nothing is taken back: what was handed over without a commit goes with the power.
        controller.powerCycle();
        QCOMPARE(calibrationRecord(), expected);
    }

    void registersOneAfterTheOther() {
        ConnectedController controller;
        const QByteArray before = calibrationRecord();
        QVERIFY(write(controller, whitePlate, whitePlate.file()));
        QVERIFY(write(controller, adapter, adapter.file()));
        QCOMPARE(calibrationRecord(), adapter.registeredIn(whitePlate.registeredIn(before)));
        QVERIFY(controller.GetCalRefSerialNo());
        QCOMPARE(controller.m_curWCPSerialNo, "23456789");
        QCOMPARE(controller.m_curAmbAdpSerialNo, "00054321");
    }

    void readsTheFileAgain_data() { addRows(accessories); }
    void readsTheFileAgain() {
        const auto row = rowOf<Accessory>();
        ConnectedController controller;
        const QByteArray before = calibrationRecord();
        const QByteArray other = row.valueCount == 38 ? "87654321" : "00098765";
        const QByteArray otherFile = TestBench::valueFile(other, row.valueCount);
        QVERIFY((controller.*row.read)(localFile(m_folder, otherFile)));
        QVERIFY(write(controller, row, row.file()));
        QCOMPARE(calibrationRecord(), row.registeredIn(before));
        QCOMPARE(controller.*row.fileSerialNo, QString(other));
    }

    /** The reader skips such a serial line. The values are registered under the number held. */
    void keepsTheInstrumentsSerialNumber() {
        ConnectedController controller;
        const QByteArray before = calibrationRecord();
        StandardOutput output;
        QVERIFY(write(controller, whitePlate, TestBench::valueFile("", 38)));
        QVERIFY(write(controller, adapter, TestBench::valueFile("1234", 75)));
        QCOMPARE(output.take(), "incorrect data. 1234\n");
        QCOMPARE(calibrationRecord(), adapter.valuesIn(whitePlate.valuesIn(before)));
        QCOMPARE(before.left(4).toHex() + before.mid(156, 4).toHex(), "1234567800012345");
    }

    void carriesValuesThatAreNoNumbers() {
        const QByteArray odd = R"("0x7fc00001", "0xffa00002", "0x80000000", "0x00000001")";
        ConnectedController controller;
        TestBench::set(R"({"calibration": {"committed": {"ambientAdapter": {"values": [)" + odd +
                       QByteArray(", 1").repeated(71) + "]}}}}");
        const QByteArray before = calibrationRecord();
        QCOMPARE(before.mid(160, 16).toHex(), "0100c07f0200a0ff0000008001000000");
        QVERIFY(write(controller, whitePlate, whitePlate.file()));
        QCOMPARE(calibrationRecord(), whitePlate.registeredIn(before));
    }

    void commitsWhatAFailedCommitLeft_data() { addRows(accessories); }

    /** The record of the failed registration stays in the instrument's working copy. The next
        registration fetches, completes and commits it. The row "commit" has a power cycle instead,
        which drops it. */
    void commitsWhatAFailedCommitLeft() {
        const auto row = rowOf<Accessory>();
        const Accessory& next = row.valueCount == 38 ? adapter : whitePlate;
        ConnectedController controller;
        const QByteArray before = calibrationRecord();
        TestBench::answer(commitCall, -9989, 1);
        QVERIFY(!write(controller, row, row.file()));
        TestBench::clearCalls();
        QVERIFY(write(controller, next, next.file()));
        QCOMPARE(controller.m_lastResult, 0);
        QCOMPARE(controller.log.lines(), QStringList(commitFailed));
        QCOMPARE(TestBench::calls(), allCalls);
        controller.powerCycle();
        QCOMPARE(calibrationRecord(), next.registeredIn(row.registeredIn(before)));
    }

    /** The file leaves the number as it is. So it is the instrument's that is checked. */
    void refusesTheInstrumentsInvalidSerialNumber() {
        ConnectedController controller;
        TestBench::set(R"({"calibration": {"committed": {
        "white": {"serialNumber": "10000000"}, "ambientAdapter": {"serialNumber": "00100000"}}}})");
        StandardOutput output;
        QVERIFY(!write(controller, whitePlate, TestBench::valueFile("", 38)));
        QVERIFY(!write(controller, adapter, TestBench::valueFile("1234", 75)));
        QCOMPARE(output.take(), "incorrect data. 1234\n");
        QCOMPARE(controller.log.lines(), QStringList());
        QCOMPARE(TestBench::calls(), QStringList({getCall, getCall}));
    }

private:
    bool write(CKvaSdk_Ctrl& controller, const Accessory& accessory,
               const QByteArray& content) const {
        return (controller.*accessory.write)(localFile(m_folder, content));
    }

    TestFolder m_folder;
};

TEST_CLASS(TestControllerRegistration)
#include "tst_controller_registration.moc"
