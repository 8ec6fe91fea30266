#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/SettingWindow.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/ModalAnswerer.h"
#include "tests/support/TestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

namespace {

const QString title = "Spectrophotometer Configuration Tool VQ-TL4";
const QString source = "Failed to connect device.";
const QString translated = "測定器に接続できませんでした。";
const QString lost = "The connection with the measuring instrument was disconnected.";

/** An operation of the settings dialog that shows a box, and the icon of that box. */
struct BoxRow {
    const char* name;
    void (InitSettingDialog::*show)(const QString&);
    QMessageBox::Icon icon;
};

const QVector<BoxRow> operations = {
    {"error", &InitSettingDialog::showErrorMessage, QMessageBox::Critical},
    {"information", &InitSettingDialog::showInfoMessage, QMessageBox::Information},
};

struct TextRow {
    const char* name;
    QString message;
};

} // namespace

Q_DECLARE_METATYPE(BoxRow)
Q_DECLARE_METATYPE(TextRow)

/** The message boxes of the settings dialog. */
class TestMessageBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void look_data() { addRows(operations); }
    void look() {
        QFETCH(const BoxRow, row);
        InitSettingDialog dialog;
        ModalAnswerer answerer;
        answerer.onBox = [&](QMessageBox& box) {
            QCOMPARE(box.windowModality(), Qt::ApplicationModal);
            QCOMPARE(box.textFormat(), Qt::AutoText);
            QCOMPARE(box.informativeText() + box.detailedText(), QString());
            QVERIFY(!box.iconPixmap().size().isEmpty());
        };
        (dialog.*row.show)(source);
        QCOMPARE(answerer.boxes.size(), 1);
        const ModalAnswerer::Box box = answerer.boxes[0];
        QCOMPARE(box.title, title);
        QCOMPARE(box.text, source);
        QCOMPARE(box.icon, row.icon);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.flags, closableFlags());
        QVERIFY(box.isModal);
        QVERIFY(!box.hasParent);
        QVERIFY(!box.hasWindowIcon); // until the window is prepared
        for (const QWidget* widget : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<const QMessageBox*>(widget));

        dialog.connectDevice(-1, true);
        QImage icon;
        answerer.onBox = [&](QMessageBox& shown) { icon = iconOf(shown); };
        (dialog.*row.show)(source);
        QCOMPARE(icon, programIcon());
    }

    void text_data() {
        addRows(QVector<TextRow>{
            {"line break at the end", "Failed to connect device.\n"},
            {"line breaks", "one\ntwo\n\n"},
            {"blanks around", "  text  "},
            {"blank", " "},
            {"Japanese", translated},
            {"beyond the basic plane", "\xF0\xA9\xB8\xBD"},
            {"percent", "100% %1 %s %n"},
            {"ampersand", "a & b &c"},
            {"long", QString(2000, 'x')},
            {"empty", ""},
        });
    }

    void text() {
        QFETCH(const TextRow, row);
        InitSettingDialog dialog;
        ModalAnswerer answerer;
        QStringList labels;
        answerer.onBox = [&](QMessageBox& box) {
            labels.append(box.findChild<QLabel*>("qt_msgbox_label")->text());
            QCOMPARE(box.text(), row.message);
            QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        };
        dialog.showErrorMessage(row.message);
        for (const LanguageRow& language : languages) {
            const InstalledTranslation translation(language.name);
            dialog.showErrorMessage(row.message);
            dialog.showInfoMessage(row.message);
        }
        const QString& text = row.message;
        QCOMPARE(labels, QStringList({text, text, text, text, text}));
    }

    void translatedByTheBox_data() { addRows(operations); }
    /** In the dialog's context; a text that is translated already stays as it is. */
    void translatedByTheBox() {
        QFETCH(const BoxRow, row);
        InitSettingDialog dialog;
        ModalAnswerer answerer;
        const InstalledTranslation japanese("jp");
        QCOMPARE(InitSettingDialog::tr("Failed to connect device."), translated);
        (dialog.*row.show)(source);
        (dialog.*row.show)(translated);
        const MarkingTranslator marking;
        (dialog.*row.show)("測定器\n");
        const auto marked = [](const char* text) {
            return MarkingTranslator::marked("InitSettingDialog", text);
        };
        QCOMPARE(answerer.texts(), QStringList({translated, translated, marked("測定器\n")}));
        QCOMPARE(answerer.boxes[0].title, QString("分光測色計設定ツール VQ-TL4"));
        QCOMPARE(answerer.boxes[2].title, marked(qPrintable(title)));
    }

    void dismissed_data() { addRows(operations); }
    /** The box's answer, by OK or by closing it, changes nothing. */
    void dismissed() {
        QFETCH(const BoxRow, row);
        SettingWindow window;
        QVERIFY(window.connectAndShow());
        TestBench::clearCalls();
        for (const bool isClosed : {false, true}) {
            ModalAnswerer answerer;
            answerer.closesBoxes = isClosed;
            (*window.dialog.*row.show)(source);
            QCOMPARE(answerer.boxes.size(), 1);
            QVERIFY(window.dialog->isVisible());
            QVERIFY(!window.dialog->isFinished);
            QCOMPARE(window.ctrl.use_count(), 2L);
        }
        QCOMPARE(TestBench::calls(), QStringList());
    }

    /** The watch notices at once that the connection is lost while a message is open. Its report
       comes on top of the message. */
    void timersRunMeanwhile() {
        SettingWindow window;
        QVERIFY(window.connectAndShow());
        QStringList texts;
        const QMessageBox* message = nullptr;
        QElapsedTimer waiting;
        QTimer user;
        connect(&user, &QTimer::timeout, &user, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            if (!message) {
                message = box;
                waiting.start();
                TestBench::emitEvent(eEventCode_DisConnect);
            }
            if (box == message && texts.isEmpty() && !waiting.hasExpired(10000))
                return; // for the report
            texts.append(box->text());
            box->button(QMessageBox::Ok)->click();
        });
        user.start(1);
        window.dialog->showInfoMessage(source);
        QCOMPARE(texts, QStringList({lost, source}));
    }
};

TEST_CLASS(TestMessageBoxes)
#include "tst_message_boxes.moc"
