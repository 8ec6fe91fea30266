#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/SettingWindow.h"
#include "tests/dialogs/form/Translations.h"

#include "instrument/KvaSdk.h"
#include "simulator/KvaSim.h"
#include "tests/support/ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QTimer>
#include <QtTest>

Q_DECLARE_METATYPE(QMessageBox::Icon)

namespace {

using Show = void (InitSettingDialog::*)(const QString&);

const QString title = QStringLiteral("Spectrophotometer Configuration Tool VQ-TL4");
const QString source = QStringLiteral("Failed to connect device.");

/** The setting dialog's operation whose boxes bear an icon. */
Show operationOf(QMessageBox::Icon icon) {
    return icon == QMessageBox::Critical ? &InitSettingDialog::showErrorMessage
                                         : &InitSettingDialog::showInfoMessage;
}

QMessageBox* openBox() {
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

} // namespace

/** The message boxes of the settings dialog. */
class TestMessageBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void look_data();
    void look();
    void noWindowIconAtFirst_data() { look_data(); }
    void noWindowIconAtFirst();
    void windowIconOnceConnected_data() { look_data(); }
    void windowIconOnceConnected();
    void text_data();
    void text();
    void emptyMessage();
    void translatedByTheBox_data() { look_data(); }
    void translatedByTheBox();
    void alreadyTranslated_data() { look_data(); }
    void alreadyTranslated();
    void lookedUpInTheDialogsContext_data() { look_data(); }
    void lookedUpInTheDialogsContext();
    void dismissed_data();
    void dismissed();
    void nothingIsLeft();
    void timersRunMeanwhile();
};

void TestMessageBoxes::look_data() {
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::newRow("error") << QMessageBox::Critical;
    QTest::newRow("information") << QMessageBox::Information;
}

void TestMessageBoxes::look() {
    QFETCH(QMessageBox::Icon, icon);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    Qt::WindowModality modality = Qt::NonModal;
    Qt::TextFormat format = Qt::RichText;
    QString informative = source;
    QSize iconSize;
    answerer.onBox = [&](QMessageBox& box) {
        modality = box.windowModality();
        format = box.textFormat();
        informative = box.informativeText() + box.detailedText();
        iconSize = box.iconPixmap().size();
    };
    (dialog.*operationOf(icon))(source);
    QCOMPARE(answerer.boxes.size(), 1);
    const ModalAnswerer::Box& box = answerer.boxes[0];
    QCOMPARE(box.title, title);
    QCOMPARE(box.text, source);
    QCOMPARE(box.icon, icon);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(box.flags,
             onceSet(Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                     Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint));
    QVERIFY(box.isModal);
    QCOMPARE(modality, Qt::ApplicationModal);
    QVERIFY(!box.hasParent);
    QCOMPARE(format, Qt::AutoText);
    QCOMPARE(informative, QString());
    QVERIFY(!iconSize.isEmpty());
}

void TestMessageBoxes::noWindowIconAtFirst() {
    QFETCH(QMessageBox::Icon, icon);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    (dialog.*operationOf(icon))(source);
    QCOMPARE(answerer.boxes.size(), 1);
    QVERIFY(!answerer.boxes[0].hasWindowIcon);
}

void TestMessageBoxes::windowIconOnceConnected() {
    QFETCH(QMessageBox::Icon, icon);
    const QString iconPath = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                             QStringLiteral("/../Resources/VQ_TL4.ico"));
    const QImage expected = QIcon(iconPath).pixmap(32).toImage();
    QVERIFY(!expected.isNull());
    SettingWindow window;
    window.dialog->connectDevice(-1, true);
    ModalAnswerer answerer;
    QImage shown;
    answerer.onBox = [&](QMessageBox& box) { shown = box.windowIcon().pixmap(32).toImage(); };
    (*window.dialog.*operationOf(icon))(source);
    QCOMPARE(answerer.boxes.size(), 1);
    QCOMPARE(shown, expected);
}

void TestMessageBoxes::text_data() {
    QTest::addColumn<QString>("message");
    QTest::newRow("line break at the end") << QStringLiteral("Failed to connect device.\n");
    QTest::newRow("line breaks") << QStringLiteral("one\ntwo\n\n");
    QTest::newRow("blanks around") << QStringLiteral("  text  ");
    QTest::newRow("blank") << QStringLiteral(" ");
    QTest::newRow("Japanese") << QStringLiteral("測定器に接続できませんでした。");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("\xF0\xA9\xB8\xBD");
    QTest::newRow("percent") << QStringLiteral("100% %1 %s %n");
    QTest::newRow("ampersand") << QStringLiteral("a & b &c");
    QTest::newRow("long") << QString(2000, QLatin1Char('x'));
}

void TestMessageBoxes::text() {
    QFETCH(QString, message);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    for (const char* language : languages) {
        const InstalledTranslation translation(QString::fromLatin1(language));
        QVERIFY(translation.isLoaded());
        dialog.showErrorMessage(message);
        dialog.showInfoMessage(message);
    }
    QCOMPARE(answerer.texts(), QStringList({message, message, message, message}));
}

void TestMessageBoxes::emptyMessage() {
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    QStringList labels;
    answerer.onBox = [&](QMessageBox& box) {
        labels.append(box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))->text());
    };
    dialog.showErrorMessage(QString());
    for (const char* language : languages) {
        const InstalledTranslation translation(QString::fromLatin1(language));
        dialog.showErrorMessage(QString());
        dialog.showInfoMessage(QStringLiteral(""));
    }
    QCOMPARE(labels, QStringList({QString(), QString(), QString(), QString(), QString()}));
    QCOMPARE(answerer.boxes.size(), 5);
    QCOMPARE(answerer.boxes[0].title, title);
    for (const ModalAnswerer::Box& box : answerer.boxes)
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
}

void TestMessageBoxes::translatedByTheBox() {
    QFETCH(QMessageBox::Icon, icon);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    const InstalledTranslation japanese(QStringLiteral("jp"));
    QVERIFY(japanese.isLoaded());
    (dialog.*operationOf(icon))(source);
    QCOMPARE(answerer.texts(), QStringList(QStringLiteral("測定器に接続できませんでした。")));
    QCOMPARE(answerer.boxes[0].title, QStringLiteral("分光測色計設定ツール VQ-TL4"));
}

void TestMessageBoxes::alreadyTranslated() {
    QFETCH(QMessageBox::Icon, icon);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    const InstalledTranslation japanese(QStringLiteral("jp"));
    QVERIFY(japanese.isLoaded());
    const QString translated = InitSettingDialog::tr("Failed to connect device.");
    QVERIFY(translated != source);
    (dialog.*operationOf(icon))(translated);
    QCOMPARE(answerer.texts(), QStringList(translated));
}

void TestMessageBoxes::lookedUpInTheDialogsContext() {
    QFETCH(QMessageBox::Icon, icon);
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    const MarkingTranslator marking;
    (dialog.*operationOf(icon))(QStringLiteral("測定器\n"));
    QCOMPARE(answerer.boxes.size(), 1);
    QCOMPARE(answerer.boxes[0].text, MarkingTranslator::marked("InitSettingDialog", "測定器\n"));
    QCOMPARE(answerer.boxes[0].title,
             MarkingTranslator::marked("InitSettingDialog", title.toUtf8().constData()));
}

void TestMessageBoxes::dismissed_data() {
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<bool>("closed");
    QTest::newRow("error, OK") << QMessageBox::Critical << false;
    QTest::newRow("error, closed") << QMessageBox::Critical << true;
    QTest::newRow("information, OK") << QMessageBox::Information << false;
    QTest::newRow("information, closed") << QMessageBox::Information << true;
}

/** The box's answer changes nothing. */
void TestMessageBoxes::dismissed() {
    QFETCH(QMessageBox::Icon, icon);
    QFETCH(bool, closed);
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    ModalAnswerer answerer;
    answerer.closesBoxes = closed;
    KvaSim_ClearCallLog();
    (*window.dialog.*operationOf(icon))(source);
    QCOMPARE(answerer.boxes.size(), 1);
    QVERIFY(window.dialog->isVisible());
    QVERIFY(!window.dialog->isFinished);
    QVERIFY(window.ctrl.use_count() == 2);
    char* log = KvaSim_CallLog();
    const QByteArray calls(log);
    KvaSim_Free(log);
    QCOMPARE(calls, QByteArray("[]"));
}

void TestMessageBoxes::nothingIsLeft() {
    InitSettingDialog dialog;
    ModalAnswerer answerer;
    dialog.showErrorMessage(source);
    dialog.showInfoMessage(source);
    QCOMPARE(answerer.boxes.size(), 2);
    QVERIFY(!openBox());
    for (const QWidget* widget : QApplication::topLevelWidgets())
        QVERIFY(!qobject_cast<const QMessageBox*>(widget));
}

/** A connection that is lost while a message is open is noticed by the watch at once, and reported
    on top of the message. */
void TestMessageBoxes::timersRunMeanwhile() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    QStringList texts;
    const QMessageBox* message = nullptr;
    QElapsedTimer waiting;
    QTimer user;
    connect(&user, &QTimer::timeout, &user, [&] {
        QMessageBox* box = openBox();
        if (!box)
            return;
        if (!message) {
            message = box;
            waiting.start();
            KvaSim_EmitEvent(eEventCode_DisConnect, 0, 0);
        }
        if (box == message && texts.isEmpty() && !waiting.hasExpired(10000))
            return; // for the report
        texts.append(box->text());
        box->button(QMessageBox::Ok)->click();
    });
    user.start(1);
    window.dialog->showInfoMessage(source);
    QCOMPARE(texts,
             QStringList(
                 {QStringLiteral("The connection with the measuring instrument was disconnected."),
                  source}));
}

QTEST_MAIN(TestMessageBoxes)

#include "tst_message_boxes.moc"
