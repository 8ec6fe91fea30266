#include "tests/dialogs/settings/SettingsFixture.h"

namespace {

const QString connectButton = "ConnectPushBtn";
const QString listCall = "KVA_GetDevicePortList";

QStringList listedAndConnected() {
    return QStringList{listCall, listCall} + SettingsFixture::connectCalls;
}

QString takenLine(int row) {
    return QString("select portNum[main]:%1").arg(row);
}

/** The second is a network instrument. */
QJsonArray instruments(int count) {
    QJsonArray array;
    for (int i = 0; i < count; ++i) {
        QJsonObject object = TestBench::instrument(42 + i);
        if (i == 1)
            object["port"] = QJsonObject{{"type", 2}, {"name", "192.168.0.10"}};
        array.append(object);
    }
    return array;
}

/** How often a window was raised, which not every window system shows. */
class RaiseCounter : public QObject {
public:
    explicit RaiseCounter(QWidget& window) { window.installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override {
        count += event->type() == QEvent::ZOrderChange ? 1 : 0;
        return QObject::eventFilter(object, event);
    }
    int count = 0;
};

/** The dialog without a connection. */
class UnconnectedFixture : public SettingsFixture {
public:
    explicit UnconnectedFixture(int attached) : SettingsFixture(instruments(attached)) {
        controller->GetDevicePortList(); // a list from before that must not be used
        dialog.connectDevice(-1, false);
        dialog.show();
        clearRecords();
        // A choice that does not come to its end is abandoned then.
        QTimer::singleShot(20000, &dialog, &QWidget::close);
    }

    void whenOffered(const std::function<void(Choice choice)>& action) {
        auto* poll = new QTimer(&dialog);
        QObject::connect(poll, &QTimer::timeout, &dialog, [this, poll, action] {
            if (!selection.isVisible())
                return;
            poll->stop();
            action(Choice(selection));
        });
        poll->start(1);
    }
};

struct NoChoice {
    const char* name;
    int attached;
    QString failingFunction;
    int failingCall;
    QStringList records;
};

struct ChosenRow {
    const char* name;
    int attached;
    int row;
    QString serialNo;
};

struct Leave {
    const char* name;
    bool isByButton;
    bool isAfterOk;
};

} // namespace

/** The Connect button, with the choice of an instrument where there are several. */
class TestConnectButton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutChoice_data() {
        const QString none = "information: The measuring instruments is not connected.";
        const QString two = "port count[2] \n";
        const QStringList notConnected = {"error: Failed to connect device.",
                                          listCall,
                                          listCall,
                                          "KVA_Connect",
                                          "port count[1] \n",
                                          "conect error \n"};
        addRows(QVector<NoChoice>{
            {"none attached", 0, "", 0, {none, listCall, listCall, "port count[0] \n"}},
            {"they cannot be counted", 1, listCall, 1, {none, listCall, "port count[1] \n"}},
            {"they cannot be listed", 2, listCall, 2, {none, listCall, listCall, two}},
            {"it cannot be connected", 1, "KVA_Connect", 1, notConnected},
            {"one instrument", 1, "", 0, listedAndConnected() + SettingsFixture::connectLines()},
        });
    }

    void withoutChoice() {
        const auto row = rowOf<NoChoice>();
        UnconnectedFixture f(row.attached);
        if (row.failingCall > 0)
            TestBench::answer(row.failingFunction, KVA_ERROR_CONNECT_TIMEOUT, row.failingCall);
        bool isOffered = false;
        f.whenOffered([&](Choice) { isOffered = true; });
        const Qt::WindowFlags flags = f.dialog.windowFlags();
        f.click(connectButton);

        const bool isConnected = f.boxes().isEmpty();
        QCOMPARE(f.records(), row.records);
        QCOMPARE(f.disabled(), isConnected ? SettingsFixture::disabledWhenConnected
                                           : SettingsFixture::disabledWhenNotConnected);
        QCOMPARE(f.dialog.focusWidget() == &f.child(connectButton), !isConnected);
        QCOMPARE(watchOf(f.dialog).isActive(), isConnected);
        QVERIFY(!isOffered);
        QVERIFY(!f.selection.isVisible());
        QCOMPARE(f.dialog.windowFlags(), flags);
    }

    void choice_data() {
        addRows(QVector<ChosenRow>{{"two, the first as offered", 2, 0, "00000042"},
                                   {"two, the second", 2, 1, "00000043"},
                                   {"three, the third", 3, 2, "00000044"}});
    }

    void choice() {
        const auto row = rowOf<ChosenRow>();
        UnconnectedFixture f(row.attached);
        QStringList rows;
        QStringList callsBefore;
        QStringList disabledBefore;
        f.whenOffered([&](Choice choice) {
            rows = choice.rows();
            callsBefore = f.calls();
            disabledBefore = f.disabled();
            if (row.row != choice.list.currentRow())
                choice.select(row.row);
            choice.accept();
        });
        f.click(connectButton);

        QCOMPARE(rows, QStringList({"VARNE-1(USB,Serial#00000042)",
                                    "VARNE-1(192.168.0.10,Serial#00000043)",
                                    "VARNE-1(USB,Serial#00000044)"})
                           .mid(0, row.attached));
        QCOMPARE(callsBefore, (QStringList{listCall, listCall}));
        QCOMPARE(disabledBefore, SettingsFixture::disabledWhenNotConnected);
        QStringList lines = SettingsFixture::connectLines(row.attached);
        lines.insert(1, takenLine(row.row));
        lines.insert(1, Choice::selectedLine(0));
        if (row.row != 0)
            lines.insert(2, Choice::selectedLine(row.row));
        QCOMPARE(f.lines(), lines);
        QCOMPARE(f.calls(), listedAndConnected());
        const QStringList connection = TestBench::detailedCalls().filter("KVA_Connect ");
        QVERIFY2(connection.constFirst().endsWith(R"("wait":10} 0)"), qPrintable(connection[0]));
        QCOMPARE(f.identity().constFirst(), row.serialNo);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
        QVERIFY(!f.selection.isVisible());
    }

    void choiceOffersAFreshListEachTime() {
        UnconnectedFixture f(3);
        f.whenOffered([](Choice choice) {
            choice.select(2);
            choice.accept();
        });
        f.click(connectButton);
        f.click("disConnectPushBtn");
        TestBench::unplug(42);
        f.clearRecords();

        QStringList rows;
        int current = -1;
        f.whenOffered([&](Choice choice) {
            rows = choice.rows();
            current = choice.list.currentRow();
            choice.accept();
        });
        f.click(connectButton);
        QCOMPARE(rows, (QStringList{"VARNE-1(192.168.0.10,Serial#00000043)",
                                    "VARNE-1(USB,Serial#00000044)"}));
        QCOMPARE(current, 0);
        QCOMPARE(f.lines().constFirst(), "port count[2] \n");
        QCOMPARE(f.lines().indexOf(takenLine(0)), f.lines().indexOf(Choice::selectedLine(0)) + 1);
        QCOMPARE(f.identity().constFirst(), "00000043");
    }

    void choiceHasNoOtherWayOut() {
        UnconnectedFixture f(2);
        f.whenOffered([&](Choice) {
            QTest::keyClick(&f.selection, Qt::Key_Escape);
            QVERIFY(f.selection.isVisible());
            QVERIFY(!f.selection.isModal());
            f.selection.close(); // as a window manager may
            f.whenOffered([&](Choice) {
                QVERIFY(!f.selection.isFinished);
                f.selection.hide();
                f.whenOffered([](Choice choice) { choice.accept(); });
            });
        });
        f.click(connectButton);
        QCOMPARE(f.calls(), listedAndConnected());
    }

    void connectPressedAgainDuringTheChoice() {
        UnconnectedFixture f(2);
        f.whenOffered([&](Choice) {
            // Prepared before the button is pressed: a second choice would not come back by itself.
            f.whenOffered([](Choice choice) {
                choice.select(1);
                choice.accept();
            });
            const RaiseCounter raises(f.selection);
            f.click(connectButton);
            QVERIFY(f.selection.isVisible());
            QCOMPARE(raises.count, 1);
            QCOMPARE(f.calls(), (QStringList{listCall, listCall}));
        });
        f.click(connectButton);

        QCOMPARE(f.calls(), listedAndConnected());
        QCOMPARE(f.lines().count(takenLine(1)), 1);
        QCOMPARE(f.identity().constFirst(), "00000043");
        QCOMPARE(f.boxes(), QStringList());
        QVERIFY(!f.selection.isVisible());
    }

    void dialogClosedDuringTheChoice_data() {
        addRows(QVector<Leave>{{"by the Close button", true, false},
                               {"by the title bar", false, false},
                               {"by the Close button, in one pass with OK", true, true},
                               {"by the title bar, in one pass with OK", false, true}});
    }

    void dialogClosedDuringTheChoice() {
        const auto row = rowOf<Leave>();
        UnconnectedFixture f(2);
        f.whenOffered([&](Choice choice) {
            if (row.isAfterOk)
                choice.accept();
            if (row.isByButton)
                f.click("ClosePushBtn");
            else
                f.dialog.close();
        });
        f.click(connectButton);

        QVERIFY(f.dialog.isFinished);
        QVERIFY(!f.dialog.isVisible());
        QVERIFY(!f.selection.isVisible());
        QCOMPARE(f.records(),
                 (QStringList{listCall, listCall, "port count[2] \n", Choice::selectedLine(0)}));
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected);
        QVERIFY(!watchOf(f.dialog).isActive());
    }
};

TEST_CLASS(TestConnectButton)
#include "tst_connect_button.moc"
