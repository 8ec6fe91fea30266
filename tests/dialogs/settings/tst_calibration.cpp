#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

const QString goodFile = "値.csv";
const QString getCall = "KVA_JIG_GetFactoryCalib_CALREFDATA";
const QString setCall = "KVA_JIG_SetFactoryCalib_CALREFDATA";
const QString commitCall = "KVA_JIG_SetFactoryCalib_WriteSector";
const QString readSuccess = "information: Successful read file data.";
const QString readFailure = "error: Failed to read file data.";
const QString success = "information: Successful device writing.";

QStringList without(QStringList names, const QString& name) {
    names.removeOne(name);
    return names;
}

QJsonObject calibration(const char* which) {
    return TestBench::state()["calibration"].toObject()[which].toObject();
}

/** The part of the record that the tab's good file fills, as the bench writes it. */
QJsonObject registeredPart(const CalibrationTab& tab) {
    QJsonArray values;
    for (int i = 0; i < tab.valueCount; ++i)
        values.append(static_cast<double>(fileValue(i)));
    return {{"serialNumber", QString(tab.serialLine)}, {"values", values}};
}

struct AcceptedFile {
    const char* name;
    QString file;
    QString shownName;
    QByteArray CalibrationTab::*serialLine;
};

struct RefusedFile {
    const char* name;
    QByteArray (*content)(const CalibrationTab& tab);
    bool isRead; ///< and refused for its number
};

struct FailingCall {
    const char* name;
    QString function;
    int call;
    QStringList calls;
    QString line;
    bool isStaged;
    bool isCommitted;
};

} // namespace

/** The calibration tabs' buttons "Read From File..." and "Write To Body". Each test runs on both
    tabs. */
class TestCalibration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() {
        QTest::addColumn<bool>("adapter");
        QTest::newRow("white plate") << false;
        QTest::newRow("adapter") << true;
    }
    void init() {
        QFETCH_GLOBAL(bool, adapter);
        tab = &calibrationTab(adapter);
        other = &calibrationTab(!adapter);
        f = std::make_unique<ConnectedFixture>(tab->page);
    }
    void cleanup() { f.reset(); }
    void acceptsAFile_data() {
        const auto serialLine = &CalibrationTab::serialLine;
        addRows(QVector<AcceptedFile>{
            {"plain", "values.csv", "values", serialLine},
            {"several dots", "calib.2024.csv", "calib", serialLine},
            {"no dot", "calib", "calib", serialLine},
            {"Japanese name", "校正 値.csv", "校正 値", serialLine},
            {"lowest number", "values.csv", "values", &CalibrationTab::lowestSerialLine},
            {"highest number", "values.csv", "values", &CalibrationTab::highestSerialLine},
        });
    }

    void acceptsAFile() {
        const auto row = rowOf<AcceptedFile>();
        const QByteArray serialLine = tab->*row.serialLine;
        const QString held = texts().constFirst();
        const QString path = f->folder.write(row.file, valueFile(serialLine, tab->valueCount));
        f->choose(tab->chooseButton, path);

        QCOMPARE(f->records(), QStringList(readSuccess) + checkLines(serialLine, tab->valueCount));
        QCOMPARE(texts(), (QStringList{held, row.shownName, serialLine}));
        QCOMPARE(f->disabled(), without(SettingsFixture::disabledWhenConnected, tab->writeButton));
        QCOMPARE(f->fileToolTips()[tab->firstText / 3], path);
        QCOMPARE(f->fileToolTips()[other->firstText / 3], QString());
        QCOMPARE(f->everything(), f->atBox.everything);

        f->click("disConnectPushBtn");
        QCOMPARE(f->fileToolTips().join(""), QString());
    }

    void refusesAFile_data() {
        using Tab = const CalibrationTab&;
        addRows(QVector<RefusedFile>{
            {"number too low", [](Tab t) { return t.tooLowFile(); }, true},
            {"number 0", [](Tab t) { return valueFile("00000000", t.valueCount); }, true},
            // Too low on the one tab, too high on the other.
            {"number 100000", [](Tab t) { return valueFile("00100000", t.valueCount); }, true},
            {"a value missing", [](Tab t) { return valueFile(t.serialLine, t.valueCount - 1); },
             false},
            {"a value too many", [](Tab t) { return valueFile(t.serialLine, t.valueCount + 1); },
             false},
            {"of the other kind",
             [](Tab t) { return calibrationTab(&t == &calibrationTab(false)).file(); }, false},
        });
    }

    // What was chosen on the tab before is taken back; what was chosen on the other one stays.
    void refusesAFile() {
        const auto row = rowOf<RefusedFile>();
        const QByteArray content = row.content(*tab);
        f->openPage(other->page);
        f->choose(other->chooseButton, f->folder.write("other.csv", other->file()));
        f->openPage(tab->page);
        QVERIFY(chooseGoodFile());
        QStringList shown = f->calibrationTexts();
        shown[tab->firstText + 1] = "refused";
        shown[tab->firstText + 2] = "";
        const QString path = f->folder.write("refused.2.csv", content);
        f->choose(tab->chooseButton, path);

        const QByteArray serialLine = content.split('\n')[2];
        QCOMPARE(f->boxes(), QStringList(readFailure));
        QCOMPARE(f->lines(), row.isRead ? checkLines(serialLine, tab->valueCount) : QStringList());
        QCOMPARE(f->calls(), QStringList());
        QCOMPARE(f->calibrationTexts(), shown);
        QCOMPARE(f->disabled(),
                 without(SettingsFixture::disabledWhenConnected, other->writeButton));
        QCOMPARE(f->fileToolTips()[tab->firstText / 3], path);
        QCOMPARE(f->everything(), f->atBox.everything);
    }

    void withoutAFile() {
        const QStringList before = f->calibrationTexts();
        f->invoke(tab->writeSlot);

        QCOMPARE(f->records(), QStringList(tab->noFileBox));
        QCOMPARE(f->busyAtBox(), buttons());
        QCOMPARE(f->calibrationTexts(), before);
    }

    void registers() {
        QVERIFY(chooseGoodFile());
        const QStringList chosen = f->everything();
        f->click(tab->chooseButton);
        QCOMPARE(f->everything(), chosen); // a cancelled file dialog keeps the choice
        // Only the tab's own number is refreshed.
        TestBench::set(R"({"calibration": {"committed": {")" + other->ownPart.toLatin1() +
                       R"(": {"serialNumber": "11112222"}}}})");
        QJsonObject expected = calibration("committed");
        expected[tab->ownPart] = registeredPart(*tab);
        QStringList shown = f->calibrationTexts();
        const QStringList before = f->texts();
        f->click(tab->writeButton);

        const QStringList calls = {getCall, setCall, commitCall, getCall};
        QCOMPARE(f->records(), QStringList(success) + calls << getCall);
        QCOMPARE(f->atBox.calls, calls);
        QCOMPARE(calibration("committed"), expected);
        QCOMPARE(calibration("staged"), QJsonObject());
        QCOMPARE(f->busyAtBox(), buttons());
        QCOMPARE(f->atBox.texts, before); // refreshed when the box is gone
        shown[tab->firstText] = tab->serialLine;
        QCOMPARE(f->calibrationTexts(), shown);
    }

    void showsNoNumberThatCannotBeRead() {
        QVERIFY(chooseGoodFile());
        TestBench::answer(getCall, KVA_ERROR, 3);
        QStringList shown = f->calibrationTexts();
        f->click(tab->writeButton);

        QCOMPARE(f->boxes(), QStringList(success));
        shown[tab->firstText].clear();
        QCOMPARE(f->calibrationTexts(), shown);
        QCOMPARE(f->busyAtBox(), buttons());
    }

    void failingCall_data() {
        const QString getLine = "KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n";
        const QString setLine = "file.KVA_JIG_SetFactoryCalib_CALREFDATA() failed.\n";
        const QString commitLine = "KVA_JIG_SetFactoryCalib_WriteSector() failed.\n";
        const QStringList calls = {getCall, setCall, commitCall, getCall};
        addRows(QVector<FailingCall>{
            {"fetch", getCall, 1, calls.mid(0, 1), getLine, false, false},
            {"set", setCall, 1, calls.mid(0, 2), setLine, false, false},
            {"commit", commitCall, 1, calls.mid(0, 3), commitLine, true, false},
            {"read back", getCall, 2, calls, getLine, false, true},
        });
    }

    void failingCall() {
        const auto row = rowOf<FailingCall>();
        QVERIFY(chooseGoodFile());
        TestBench::answer(row.function, KVA_ERROR_NAK, row.call);
        const QJsonObject before = calibration("committed");
        QJsonObject registered = before;
        registered[tab->ownPart] = registeredPart(*tab);
        const QStringList shown = f->calibrationTexts();
        f->click(tab->writeButton);

        QCOMPARE(f->records(), QStringList(tab->failureBox) + row.calls << row.line);
        QCOMPARE(f->busyAtBox(), buttons());
        QCOMPARE(f->calibrationTexts(), shown);
        QCOMPARE(calibration("committed"), row.isCommitted ? registered : before);
        QCOMPARE(calibration("staged"), row.isStaged ? registered : QJsonObject());
    }

    // The path of a refused file is kept. The button is disabled then, but its slot would try.
    void triesARefusedFileAgain() {
        f->choose(tab->chooseButton, f->folder.write(goodFile, tab->tooLowFile()));
        f->clearRecords();
        f->invoke(tab->writeSlot);
        QCOMPARE(f->boxes(), QStringList(tab->failureBox));
        QCOMPARE(f->calls(), QStringList(getCall));
        QCOMPARE(f->busyAtBox(), buttons());

        // The button is enabled now, as after every registration.
        f->folder.write(goodFile, tab->file());
        f->clearRecords();
        f->click(tab->writeButton);
        QCOMPARE(f->boxes(), QStringList(success));
        QCOMPARE(calibration("committed")[tab->ownPart].toObject(), registeredPart(*tab));
    }

private:
    /** Chooses a good file and forgets the records. False unless it was accepted. */
    bool chooseGoodFile() {
        f->clearRecords();
        f->choose(tab->chooseButton, f->folder.write(goodFile, tab->file()));
        const bool isAccepted = f->boxes() == QStringList(readSuccess);
        f->clearRecords();
        return isAccepted;
    }

    /** The three texts of the tab: instrument's serial number, file name, file's serial number. */
    QStringList texts() { return f->calibrationTexts().mid(tab->firstText, 3); }
    QStringList buttons() const { return {tab->chooseButton, tab->writeButton}; }

    const CalibrationTab* tab = nullptr;
    const CalibrationTab* other = nullptr; ///< the tab that is not tested
    std::unique_ptr<ConnectedFixture> f;   ///< with the tab on top
};

TEST_CLASS(TestCalibration)
#include "tst_calibration.moc"
