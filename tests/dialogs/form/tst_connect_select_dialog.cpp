#include "dialogs/ConnectSelectDialog.h"

#include "dialogs/DialogSupport.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/DebugLog.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestMain.h"

namespace {

const QStringList three = {"VARNE-1(USB,Serial#1000001)", "VARNE-1(192.168.0.20,Serial#1000002)",
                           "VARNE-1(192.168.0.21,Serial#1000003)"};
const QStringList two = {"VARNE-1(USB,Serial#1000007)", "VARNE-1(USB,Serial#1000008)"};

/** The dialog as a user sees and handles it. */
class Dialog : public ConnectSelectDialog {
public:
    QListWidget& list() const { return *findChild<QListWidget*>("connectlistWidget"); }
    QPushButton& okButton() const { return *findChild<QPushButton*>("pushButton"); }

    /** Lists the devices, shows the window and clicks the row. @param row negative: none */
    void open(const QStringList& devices, int row = -1) {
        setDeviceList(devices);
        show();
        clickRow(row);
    }

    void clickOk() const { QTest::mouseClick(&okButton(), Qt::LeftButton); }

    /** @param row  negative: none */
    void clickRow(int row) const {
        if (row >= 0)
            QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier,
                              list().visualItemRect(list().item(row)).center());
    }

    QStringList rows() const {
        QStringList texts;
        for (int i = 0; i < list().count(); ++i)
            texts.append(list().item(i)->text());
        return texts;
    }
};

QString selectedLine(int row) {
    return QString("select portNum[ConnectSelectDialog]:%1").arg(row);
}

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
        QCOMPARE(dialog.rows(), QStringList());
        QVERIFY(dialog.okButton().styleSheet().isEmpty());
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
            dialog.open(three);
            dialog.clickOk();
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
        QCOMPARE(dialog.rows(), row.value);
        QCOMPARE(dialog.list().currentRow(), 0);
        QCOMPARE(dialog.list().selectedItems(), {dialog.list().item(0)});
        QCOMPARE(dialog.portNum, 0);
        QVERIFY(!dialog.isFinished);
        QCOMPARE(log.lines(), QStringList(selectedLine(0)));
    }

    void preparedWindow() {
        Dialog dialog;
        // The same each time.
        for (const QStringList& devices : {three, two}) {
            dialog.setDeviceList(devices);
            QCOMPARE(iconOf(dialog), programIcon());
            QCOMPARE(dialog.windowFlags(), titledFlags());
            QCOMPARE(dialog.okButton().styleSheet(),
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
        QCOMPARE(dialog.rows(), three);
        const MarkingTranslator marking;
        dialog.setDeviceList(three);
        QCOMPARE(dialog.windowTitle(),
                 MarkingTranslator::marked("ConnectSelectDialog", "Select Device"));
        QCOMPARE(dialog.rows(), three);
    }

    void selectionIsLogged() {
        Dialog dialog;
        dialog.open(three);
        const DebugLog log;
        dialog.clickRow(2);
        QCOMPARE(dialog.portNum, 2);
        QVERIFY(!dialog.isFinished);
        dialog.clickRow(1);
        QTest::keyClick(&dialog.list(), Qt::Key_Up);
        QCOMPARE(log.lines(), QStringList({selectedLine(2), selectedLine(1), selectedLine(0)}));
        QCOMPARE(dialog.portNum, 0);
    }

    void returnPressesOk() {
        Dialog dialog;
        dialog.open(three);
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
        dialog.open(three, 2);
        dialog.clickOk();
        QVERIFY(dialog.isFinished);
        QCOMPARE(dialog.portNum, 2);
        const DebugLog log;
        dialog.setDeviceList(row.value);
        QVERIFY(dialog.isFinished); // its owner clears it
        dialog.isFinished = false;
        const int portNum = isEmpty ? dialog.portNum : 0;
        QCOMPARE(dialog.rows(), row.value);
        QCOMPARE(dialog.list().currentRow(), isEmpty ? -1 : 0);
        QCOMPARE(dialog.list().selectedItems().size(), isEmpty ? 0 : 1);
        QCOMPARE(dialog.portNum, portNum);
        QVERIFY(isEmpty || log.lines().endsWith(selectedLine(0)));
        dialog.show();
        dialog.clickOk();
        QVERIFY(dialog.isFinished);
        QCOMPARE(dialog.portNum, portNum);
    }

    void emptyOnFirstUse() {
        Dialog dialog;
        const DebugLog log;
        dialog.open({});
        QCOMPARE(dialog.list().count(), 0);
        QCOMPARE(dialog.list().currentRow(), -1);
        dialog.clickOk();
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
