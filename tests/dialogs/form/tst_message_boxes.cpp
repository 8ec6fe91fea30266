#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

const QString title = "Spectrophotometer Configuration Tool VQ-TL4";
const QString source = "Failed to connect device.";
const QString translated = "測定器に接続できませんでした。";

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

} // namespace

/** The message boxes of the settings dialog. */
class TestMessageBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void look_data() { addRows(operations); }
    void look() {
        const auto row = rowOf<BoxRow>();
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
        addRows(QVector<NamedValue<QString>>{
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
        const auto row = rowOf<NamedValue<QString>>();
        InitSettingDialog dialog;
        ModalAnswerer answerer;
        QStringList labels;
        answerer.onBox = [&](QMessageBox& box) {
            labels.append(box.findChild<QLabel*>("qt_msgbox_label")->text());
            QCOMPARE(box.text(), row.value);
            QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        };
        dialog.showErrorMessage(row.value);
        for (const LanguageRow& language : languages) {
            const InstalledTranslation translation(language.name);
            dialog.showErrorMessage(row.value);
            dialog.showInfoMessage(row.value);
        }
        const QString& text = row.value;
        QCOMPARE(labels, QStringList({text, text, text, text, text}));
    }

    /** In the dialog's context; a text that is translated already stays as it is. */
    void translatedByTheBox_data() { addRows(operations); }
    void translatedByTheBox() {
        const auto row = rowOf<BoxRow>();
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
        const QStringList texts = {translated, translated, marked("測定器\n")};
        for (int i = 0; i < texts.size(); ++i)
            QCOMPARE(answerer.boxes.value(i).text, texts[i]);
        QCOMPARE(answerer.boxes[0].title, QString("分光測色計設定ツール VQ-TL4"));
        QCOMPARE(answerer.boxes[2].title, marked(qPrintable(title)));
    }

    /** The box's answer, by OK or by closing it, changes nothing. */
    void dismissed_data() { addRows(operations); }
    void dismissed() {
        const auto row = rowOf<BoxRow>();
        ConnectedFixture f;
        const QStringList before = f.everything();
        for (const bool isClosed : {false, true}) {
            f.clearRecords();
            f.answers.closesBoxes = isClosed;
            (f.dialog.*row.show)(source);
            QCOMPARE(f.boxes().size(), 1);
            QCOMPARE(f.calls(), QStringList());
            QCOMPARE(f.everything(), before);
            QCOMPARE(f.controller.use_count(), 3L);
            QVERIFY(f.dialog.isVisible());
            QVERIFY(!f.dialog.isFinished);
        }
    }
};

TEST_CLASS(TestMessageBoxes)
#include "tst_message_boxes.moc"
