#include "dialogs/DialogSupport.h"
#include "tests/dialogs/form/InstrumentList.h"
#include "tests/support/DebugLog.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <utility>

using namespace InstrumentList;

namespace {

/** What is done to a dialog while it waits for the choice; the steps run from the event loop, one
    at a time, each when its time has come. */
class User {
public:
    struct Step {
        std::function<bool()> hasCome;
        std::function<void()> act;
    };

    explicit User(QVector<Step> steps) : m_steps(std::move(steps)) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { act(); });
        m_timer.start(1);
        m_elapsed.start();
    }

    /** Nothing of what the user was waiting for has come in time. */
    bool hasGivenUp() const { return m_elapsed.hasExpired(10000); }
    bool isDone() const { return m_next == m_steps.size(); }

private:
    void act() {
        if (!isDone() && m_steps[m_next].hasCome())
            m_steps[m_next++].act();
    }

    QVector<Step> m_steps;
    int m_next = 0;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
};

} // namespace

/** The choice of an instrument with the selection dialog. */
class TestChooseInstrument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chosen_data();
    void chosen();
    void chosenOnceMore();
    void chooseShowsTheWindowAgain();
    void chooseIsAbandoned();
    void chooseIsAbandonedAtOnce();
    void leavesItsFlagToItsOwner();
    void chosenAndAbandonedAtOnce();
    void waitingSleeps();
};

void TestChooseInstrument::chosen_data() {
    QTest::addColumn<int>("row"); // negative: OK at once
    QTest::addColumn<int>("portNum");
    QTest::newRow("OK at once") << -1 << 0;
    QTest::newRow("first") << 0 << 0;
    QTest::newRow("second") << 1 << 1;
    QTest::newRow("third") << 2 << 2;
}

void TestChooseInstrument::chosen() {
    QFETCH(int, row);
    QFETCH(int, portNum);
    ConnectSelectDialog dialog;
    User user({{[&] { return dialog.isVisible(); },
                [&] {
                    if (row >= 0)
                        clickRow(dialog, row);
                    clickOk(dialog);
                }}});
    const DebugLog log;
    QVERIFY(dialog.choose(three, [&] { return user.hasGivenUp(); }));
    QVERIFY(user.isDone());
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isVisible());
    QVERIFY(!dialog.isModal());
    QCOMPARE(dialog.portNum, portNum);
    QStringList lines = {selectedLine(0)};
    if (portNum > 0)
        lines.append(selectedLine(portNum));
    QCOMPARE(log.lines(), lines + QStringList(chosenLine(portNum)));
}

void TestChooseInstrument::chosenOnceMore() {
    ConnectSelectDialog dialog;
    for (const QStringList& devices : {three, two}) {
        User user({{[&] { return dialog.isVisible(); },
                    [&] {
                        QCOMPARE(rows(dialog), devices);
                        QCOMPARE(dialog.portNum, 0);
                        clickRow(dialog, devices.size() - 1);
                        clickOk(dialog);
                    }}});
        QVERIFY(dialog.choose(devices, [&] { return user.hasGivenUp(); }));
        QCOMPARE(dialog.portNum, devices.size() - 1);
        dialog.isFinished = false; // as its owner does
    }
}

/** A window manager may close a window that has no close button. */
void TestChooseInstrument::chooseShowsTheWindowAgain() {
    ConnectSelectDialog dialog;
    User user({{[&] { return dialog.isVisible(); }, [&] { dialog.close(); }},
               {[&] { return dialog.isVisible(); }, [&] { dialog.hide(); }},
               {[&] { return dialog.isVisible(); },
                [&] {
                    clickRow(dialog, 1);
                    clickOk(dialog);
                }}});
    QVERIFY(dialog.choose(three, [&] { return user.hasGivenUp(); }));
    QVERIFY(user.isDone());
    QCOMPARE(dialog.portNum, 1);
    QVERIFY(!dialog.isVisible());
}

void TestChooseInstrument::chooseIsAbandoned() {
    ConnectSelectDialog dialog;
    bool isAbandoned = false;
    User user({{[&] { return dialog.isVisible(); },
                [&] {
                    clickRow(dialog, 1);
                    isAbandoned = true;
                }}});
    const DebugLog log;
    QVERIFY(!dialog.choose(three, [&] { return isAbandoned || user.hasGivenUp(); }));
    QVERIFY(user.isDone());
    QVERIFY(!dialog.isVisible());
    QVERIFY(!dialog.isFinished);
    QVERIFY(!log.lines().contains(chosenLine(1)));
}

void TestChooseInstrument::chooseIsAbandonedAtOnce() {
    ConnectSelectDialog dialog;
    QVERIFY(!dialog.choose(three, [] { return true; }));
    QVERIFY(!dialog.isVisible());
}

void TestChooseInstrument::leavesItsFlagToItsOwner() {
    ConnectSelectDialog dialog;
    dialog.isFinished = true; // of an earlier choice
    QVERIFY(!dialog.choose(three, [] { return true; }));
    QVERIFY(dialog.isFinished);
}

void TestChooseInstrument::chosenAndAbandonedAtOnce() {
    ConnectSelectDialog dialog;
    bool isAbandoned = false;
    User user({{[&] { return dialog.isVisible(); },
                [&] {
                    clickRow(dialog, 2);
                    clickOk(dialog);
                    isAbandoned = true;
                }}});
    const DebugLog log;
    QVERIFY(!dialog.choose(three, [&] { return isAbandoned || user.hasGivenUp(); }));
    QVERIFY(user.isDone());
    QVERIFY(!dialog.isVisible());
    QVERIFY(!log.lines().contains(chosenLine(2)));
}

/** A wait without sleep keeps a processor core busy. However busy the machine is, a pass takes no
    less than its 10 ms. */
void TestChooseInstrument::waitingSleeps() {
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

QTEST_MAIN(TestChooseInstrument)

#include "tst_choose_instrument.moc"
