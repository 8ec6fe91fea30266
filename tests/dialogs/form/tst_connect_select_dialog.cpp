#include "dialogs/DialogSupport.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/dialogs/settings/SettingsFixture.h"

namespace {

const QStringList three = {"VARNE-1(USB,Serial#1000001)", "VARNE-1(192.168.0.20,Serial#1000002)",
                           "VARNE-1(192.168.0.21,Serial#1000003)"};
const QStringList two = {"VARNE-1(USB,Serial#1000007)", "VARNE-1(USB,Serial#1000008)"};

class Dialog : public ConnectSelectDialog {
public:
    /** Lists the devices, shows the window and clicks the row. @param row negative: none */
    void offer(const QStringList& devices, int row = -1) {
        setDeviceList(devices);
        show();
        if (row >= 0)
            choice.select(row);
    }

    const Choice choice{*this};
};

using ListedRow = NamedValue<QStringList>;

} // namespace

/** The instrument selection dialog. */
class TestConnectSelectDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void afterConstruction() {
        const Dialog dialog;
        QVERIFY(!dialog.isFinished);
        QCOMPARE(dialog.portNum, 0);
        QCOMPARE(dialog.choice.rows(), QStringList());
        QVERIFY(dialog.choice.ok.styleSheet().isEmpty());
    }

    void controllerIsShared() {
        TestBench::load({});
        const auto first = std::make_shared<CKvaSdk_Ctrl>();
        const auto second = std::make_shared<CKvaSdk_Ctrl>();
        TestBench::clearCalls();
        {
            Dialog dialog;
            dialog.setSdkCtrl(first);
            QCOMPARE(first.use_count(), 2L);
            dialog.setSdkCtrl(second);
            QCOMPARE(first.use_count(), 1L);
            QCOMPARE(second.use_count(), 2L);
            dialog.offer(three);
            dialog.choice.accept();
            QCOMPARE(second.use_count(), 2L);
        }
        QCOMPARE(second.use_count(), 1L);
        QCOMPARE(TestBench::calls(), QStringList());
    }

    void listed_data() {
        QStringList many;
        for (int i = 0; i < 150; ++i)
            many.append(QString("VARNE-1(USB,Serial#%1)").arg(i));
        addRows(QVector<ListedRow>{
            {"one", {three[0]}},
            {"three", three},
            {"150", many},
            {"same twice", {three[0], three[0]}},
            {"not sorted", {three[2], three[0], three[1]}},
            {"placeholders", {"VARNE-1(%1,Serial#%2)", "100%", "%s%n"}},
            {"markup", {"<b>VARNE-1</b>", "&a"}},
            {"empty text", {"", three[0]}},
            {"Japanese", {"測定器", three[0]}},
        });
    }

    void listed() {
        const auto row = rowOf<ListedRow>();
        Dialog dialog;
        const DebugLog log;
        dialog.setDeviceList(row.value);
        QCOMPARE(dialog.choice.rows(), row.value);
        QCOMPARE(dialog.choice.list.currentRow(), 0);
        QCOMPARE(dialog.choice.list.selectedItems(), {dialog.choice.list.item(0)});
        QCOMPARE(dialog.portNum, 0);
        QVERIFY(!dialog.isFinished);
        QCOMPARE(log.lines(), QStringList(Choice::selectedLine(0)));
    }

    void preparedWindow() {
        Dialog dialog;
        // The same each time.
        for (const QStringList& devices : {three, two}) {
            dialog.setDeviceList(devices);
            QCOMPARE(iconOf(dialog), programIcon());
            QCOMPARE(dialog.windowFlags(), titledFlags());
            QCOMPARE(dialog.choice.ok.styleSheet(),
                     QString("QPushButton:default{background-color:gainsboro;}"));
            QCOMPARE(dialog.minimumSize(), QSize(520, 213));
            QCOMPARE(dialog.maximumSize(), QSize(520, 213));
            QCOMPARE(dialog.size(), QSize(520, 213));
            QCOMPARE(dialog.windowTitle(), QString("Select Device"));
            QVERIFY(!dialog.isVisible());
        }
    }

    void titleIsTranslatedWhenPrepared() {
        Dialog dialog;
        const InstalledTranslation japanese("jp");
        QCOMPARE(dialog.windowTitle(), QString("Select Device"));
        dialog.setDeviceList(three);
        QCOMPARE(dialog.windowTitle(), QString("測定器の選択"));
        QCOMPARE(dialog.choice.rows(), three);
        const MarkingTranslator marking;
        dialog.setDeviceList(three);
        QCOMPARE(dialog.windowTitle(),
                 MarkingTranslator::marked("ConnectSelectDialog", "Select Device"));
        QCOMPARE(dialog.choice.rows(), three);
    }

    void selectionIsLogged() {
        Dialog dialog;
        dialog.offer(three);
        const DebugLog log;
        dialog.choice.select(2);
        QCOMPARE(dialog.portNum, 2);
        QVERIFY(!dialog.isFinished);
        dialog.choice.select(1);
        QTest::keyClick(&dialog.choice.list, Qt::Key_Up);
        QCOMPARE(log.lines(), QStringList({Choice::selectedLine(2), Choice::selectedLine(1),
                                           Choice::selectedLine(0)}));
        QCOMPARE(dialog.portNum, 0);
    }

    void returnPressesOk() {
        Dialog dialog;
        dialog.offer(three);
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QTest::keyClick(&dialog, Qt::Key_Return);
        QVERIFY(dialog.isFinished);
        QVERIFY(!dialog.isVisible());
    }

    void reused_data() { addRows(QVector<ListedRow>{{"with fewer", two}, {"empty", {}}}); }
    void reused() {
        const auto row = rowOf<ListedRow>();
        const bool isEmpty = row.value.isEmpty();
        Dialog dialog;
        dialog.offer(three, 2);
        dialog.choice.accept();
        QVERIFY(dialog.isFinished);
        QCOMPARE(dialog.portNum, 2);
        const DebugLog log;
        dialog.setDeviceList(row.value);
        QVERIFY(dialog.isFinished); // its owner clears it
        dialog.isFinished = false;
        const int portNum = isEmpty ? dialog.portNum : 0;
        QCOMPARE(dialog.choice.rows(), row.value);
        QCOMPARE(dialog.choice.list.currentRow(), isEmpty ? -1 : 0);
        QCOMPARE(dialog.choice.list.selectedItems().size(), isEmpty ? 0 : 1);
        QCOMPARE(dialog.portNum, portNum);
        QVERIFY(isEmpty || log.lines().endsWith(Choice::selectedLine(0)));
        dialog.show();
        dialog.choice.accept();
        QVERIFY(dialog.isFinished);
        QCOMPARE(dialog.portNum, portNum);
    }

    void emptyOnFirstUse() {
        Dialog dialog;
        const DebugLog log;
        dialog.offer({});
        QCOMPARE(dialog.choice.list.count(), 0);
        QCOMPARE(dialog.choice.list.currentRow(), -1);
        dialog.choice.accept();
        QVERIFY(dialog.isFinished);
        QCOMPARE(dialog.portNum, 0);
        QCOMPARE(log.lines(), QStringList());
    }

    /** The flag, of an earlier choice perhaps, is left to its owner. */
    void chooseIsAbandonedAtOnce() {
        for (const bool isFinished : {false, true}) {
            Dialog dialog;
            dialog.isFinished = isFinished;
            QVERIFY(!dialog.choose(three, [] { return true; }));
            QVERIFY(!dialog.isVisible());
            QCOMPARE(dialog.isFinished, isFinished);
        }
    }

    /** A wait without sleep keeps a processor core busy. However busy the machine is, a pass takes
       no less than its 10 ms. */
    void waitingSleeps() {
        constexpr int duration = 300; // ms
        int asked = 0;
        QElapsedTimer elapsed;
        elapsed.start();
        DialogSupport::waitUntil([&] {
            ++asked;
            return elapsed.hasExpired(duration);
        });
        QVERIFY2(asked <= duration / 10 + 2, qPrintable(QString::number(asked)));
    }
};

TEST_CLASS(TestConnectSelectDialog)
#include "tst_connect_select_dialog.moc"
