#include "tests/dialogs/form/InstrumentList.h"

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/DebugLog.h"

#include <QIcon>
#include <QtTest>

using namespace InstrumentList;

/** The instrument selection dialog. */
class TestConnectSelectDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void afterConstruction();
    void controllerIsShared();
    void listed_data();
    void listed();
    void preparedWindow();
    void titleIsTranslatedWhenPrepared();
    void okAtOnce();
    void thirdRow();
    void selectionIsLogged();
    void returnPressesOk();
    void noCloseButton();
    void escapeIsNoChoice();
    void closedIsNoChoice();
    void reusedWithFewer();
    void reusedIsNotReset();
    void emptyOnFirstUse();
    void emptyOnReuse();
};

void TestConnectSelectDialog::afterConstruction() {
    const ConnectSelectDialog dialog;
    QVERIFY(!dialog.isFinished);
    QCOMPARE(dialog.portNum, 0);
    QCOMPARE(list(dialog).count(), 0);
    QVERIFY(okButton(dialog).styleSheet().isEmpty());
    QVERIFY(dialog.windowIcon().isNull());
    QCOMPARE(dialog.minimumSize(), QSize(0, 0));
}

void TestConnectSelectDialog::controllerIsShared() {
    KvaSim_LoadJson(R"({"version": 1, "instruments": []})");
    const auto first = std::make_shared<CKvaSdk_Ctrl>();
    const auto second = std::make_shared<CKvaSdk_Ctrl>();
    KvaSim_ClearCallLog();
    {
        ConnectSelectDialog dialog;
        dialog.setSdkCtrl(first);
        QCOMPARE(first.use_count(), 2L);
        dialog.setSdkCtrl(second);
        QCOMPARE(first.use_count(), 1L);
        QCOMPARE(second.use_count(), 2L);
        dialog.setDeviceList(three);
        dialog.show();
        clickOk(dialog);
        QCOMPARE(second.use_count(), 2L);
    }
    QCOMPARE(second.use_count(), 1L);
    char* log = KvaSim_CallLog();
    const QByteArray calls(log);
    KvaSim_Free(log);
    QCOMPARE(calls, QByteArray("[]"));
}

void TestConnectSelectDialog::listed_data() {
    QTest::addColumn<QStringList>("devices");
    QStringList many;
    for (int i = 0; i < 150; ++i)
        many.append(QStringLiteral("VARNE-1(USB,Serial#%1)").arg(i));
    QTest::newRow("one") << QStringList{three[0]};
    QTest::newRow("three") << three;
    QTest::newRow("150") << many;
    QTest::newRow("same twice") << QStringList{three[0], three[0]};
    QTest::newRow("not sorted") << QStringList{three[2], three[0], three[1]};
    QTest::newRow("placeholders") << QStringList{QStringLiteral("VARNE-1(%1,Serial#%2)"),
                                                 QStringLiteral("100%"), QStringLiteral("%s%n")};
    QTest::newRow("markup") << QStringList{QStringLiteral("<b>VARNE-1</b>"), QStringLiteral("&a")};
    QTest::newRow("empty text") << QStringList{QString(), three[0]};
    QTest::newRow("Japanese") << QStringList{QStringLiteral("測定器"), three[0]};
}

void TestConnectSelectDialog::listed() {
    QFETCH(QStringList, devices);
    ConnectSelectDialog dialog;
    const DebugLog log;
    dialog.setDeviceList(devices);
    QCOMPARE(rows(dialog), devices);
    QCOMPARE(list(dialog).currentRow(), 0);
    QCOMPARE(list(dialog).selectedItems().size(), 1);
    QVERIFY(list(dialog).item(0)->isSelected());
    QCOMPARE(dialog.portNum, 0);
    QVERIFY(!dialog.isFinished);
    QCOMPARE(log.lines(), QStringList(selectedLine(0)));
    QCOMPARE(log.others(), QStringList());
}

void TestConnectSelectDialog::preparedWindow() {
    ConnectSelectDialog dialog;
    const QString iconPath = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                             QStringLiteral("/../Resources/VQ_TL4.ico"));
    const QImage image = QIcon(iconPath).pixmap(32).toImage();
    QVERIFY(!image.isNull());
    // The same each time.
    for (const QStringList& devices : {three, two}) {
        dialog.setDeviceList(devices);
        QCOMPARE(dialog.windowIcon().pixmap(32).toImage(), image);
        QCOMPARE(dialog.windowFlags(),
                 onceSet(Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                         Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
        QCOMPARE(okButton(dialog).styleSheet(),
                 QStringLiteral("QPushButton:default{background-color:gainsboro;}"));
        QCOMPARE(dialog.minimumSize(), QSize(520, 213));
        QCOMPARE(dialog.maximumSize(), QSize(520, 213));
        QCOMPARE(dialog.size(), QSize(520, 213));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Select Device"));
        QVERIFY(!dialog.isVisible());
    }
}

void TestConnectSelectDialog::titleIsTranslatedWhenPrepared() {
    ConnectSelectDialog dialog;
    const InstalledTranslation japanese(QStringLiteral("jp"));
    QVERIFY(japanese.isLoaded());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Select Device"));
    dialog.setDeviceList(three);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("測定器の選択"));
    QCOMPARE(rows(dialog), three);
    const MarkingTranslator marking;
    dialog.setDeviceList(three);
    QCOMPARE(dialog.windowTitle(),
             MarkingTranslator::marked("ConnectSelectDialog", "Select Device"));
    QCOMPARE(rows(dialog), three);
}

void TestConnectSelectDialog::okAtOnce() {
    ConnectSelectDialog dialog;
    const DebugLog log;
    dialog.setDeviceList(three);
    dialog.show();
    clickOk(dialog);
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.portNum, 0);
    QCOMPARE(log.lines(), QStringList(selectedLine(0)));
}

void TestConnectSelectDialog::thirdRow() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    clickRow(dialog, 2);
    QCOMPARE(dialog.portNum, 2);
    QVERIFY(!dialog.isFinished);
    clickOk(dialog);
    QVERIFY(dialog.isFinished);
    QCOMPARE(dialog.portNum, 2);
}

void TestConnectSelectDialog::selectionIsLogged() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    const DebugLog log;
    clickRow(dialog, 2);
    clickRow(dialog, 1);
    QTest::keyClick(&list(dialog), Qt::Key_Up);
    QCOMPARE(log.lines(), QStringList({selectedLine(2), selectedLine(1), selectedLine(0)}));
    QCOMPARE(dialog.portNum, 0);
}

void TestConnectSelectDialog::returnPressesOk() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(&dialog, Qt::Key_Return);
    QVERIFY(dialog.isFinished);
    QVERIFY(!dialog.isVisible());
}

void TestConnectSelectDialog::noCloseButton() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    QVERIFY(!(dialog.windowFlags() & Qt::WindowCloseButtonHint));
}

void TestConnectSelectDialog::escapeIsNoChoice() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QTest::keyClick(&list(dialog), Qt::Key_Escape);
    QVERIFY(dialog.isVisible());
    QVERIFY(!dialog.isFinished);
}

void TestConnectSelectDialog::closedIsNoChoice() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    dialog.close();
    QVERIFY(!dialog.isFinished);
}

void TestConnectSelectDialog::reusedWithFewer() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    clickRow(dialog, 2);
    clickOk(dialog);
    QCOMPARE(dialog.portNum, 2);

    dialog.isFinished = false;
    const DebugLog log;
    dialog.setDeviceList(two);
    QCOMPARE(rows(dialog), two);
    QCOMPARE(list(dialog).currentRow(), 0);
    QVERIFY(list(dialog).item(0)->isSelected());
    QCOMPARE(dialog.portNum, 0);
    QVERIFY(!log.lines().isEmpty());
    QCOMPARE(log.lines().last(), selectedLine(0));
    dialog.show();
    clickOk(dialog);
    QVERIFY(dialog.isFinished);
    QCOMPARE(dialog.portNum, 0);
}

void TestConnectSelectDialog::reusedIsNotReset() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    clickOk(dialog);
    dialog.setDeviceList(two);
    QVERIFY(dialog.isFinished);
}

void TestConnectSelectDialog::emptyOnFirstUse() {
    ConnectSelectDialog dialog;
    const DebugLog log;
    dialog.setDeviceList({});
    dialog.show();
    QCOMPARE(list(dialog).count(), 0);
    QCOMPARE(list(dialog).currentRow(), -1);
    clickOk(dialog);
    QVERIFY(dialog.isFinished);
    QCOMPARE(dialog.portNum, 0);
    QCOMPARE(log.lines(), QStringList());
}

void TestConnectSelectDialog::emptyOnReuse() {
    ConnectSelectDialog dialog;
    dialog.setDeviceList(three);
    dialog.show();
    clickRow(dialog, 2);
    clickOk(dialog);
    dialog.isFinished = false;
    dialog.setDeviceList({});
    const int before = dialog.portNum;
    dialog.show();
    QCOMPARE(list(dialog).count(), 0);
    clickOk(dialog);
    QVERIFY(dialog.isFinished);
    QCOMPARE(dialog.portNum, before);
}

QTEST_MAIN(TestConnectSelectDialog)

#include "tst_connect_select_dialog.moc"
