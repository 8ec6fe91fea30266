#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Measure.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/ModalAnswerer.h"
#include "tests/support/TestMain.h"

#include <QDialogButtonBox>
#include <QScreen>
#include <QScrollBar>
#include <QTextDocument>

namespace {

struct MessageRow {
    QByteArray name;
    QString language;
    QString text;
};

/** A text in a widget of the settings dialog. */
struct ValueRow {
    const char* name;
    const char* widget;
    const char* value;
};

struct FileDialogRow {
    const char* name;
    const char* language;
    const char* slot;
    QStringList buttons;
    const char* fileName;
};

QTabWidget& tabsOf(const QWidget& dialog) {
    return *dialog.findChild<QTabWidget*>("setBasetabWidget");
}

/** The settings dialog as its owner shows it, without an instrument, with the tab of that widget
    on top. */
std::unique_ptr<InitSettingDialog> shownSettings(const char* widget = "setBasetabWidget") {
    auto dialog = std::make_unique<InitSettingDialog>();
    dialog->connectDevice(-1, true);
    dialog->show();
    for (int tab = 0; tab < 4 && !findWidget(*dialog, widget)->isVisible(); ++tab)
        tabsOf(*dialog).setCurrentIndex(tab);
    return dialog;
}

QString misfits(const QWidget& window) {
    return Measure::misfits(window).join('\n');
}

/** The texts of the buttons at the edge of one of Qt's own windows. */
QStringList buttonTexts(const QDialog& window) {
    QStringList texts;
    const auto boxes = window.findChildren<QDialogButtonBox*>();
    for (const QDialogButtonBox* box : boxes) {
        for (const QAbstractButton* button : box->buttons())
            texts.append(button->text());
    }
    texts.sort();
    return texts;
}

/** A language's translation; none for "untranslated". */
std::unique_ptr<InstalledTranslation> install(const LanguageRow& row) {
    return qstrcmp(row.name, "untranslated") == 0
               ? nullptr
               : std::make_unique<InstalledTranslation>(row.name);
}

} // namespace

/** Every text of every window, messages included, is in its language and shown whole. */
class TestTextFit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_font.isInUse()); }
    void glyphs_data() { addRows(languages); }
    void glyphs() {
        const auto row = rowOf<LanguageRow>();
        for (const TranslationEntry& entry : entriesOf(row.name))
            QCOMPARE(Measure::missingGlyphs(entry.translation), QString());
        // U+FDD0 is no character; no font has it.
        QCOMPARE(Measure::missingGlyphs(QChar(0xFDD0)), QString(QChar(0xFDD0)));
    }

    void windows_data() { addRows(QVector<LanguageRow>{{"untranslated"}} + languages); }
    void windows() {
        const auto row = rowOf<LanguageRow>();
        const auto translation = install(row);
        const auto dialog = shownSettings();
        QStringList measured;
        for (int tab = 0; tab < tabsOf(*dialog).count(); ++tab) {
            tabsOf(*dialog).setCurrentIndex(tab);
            QCOMPARE(misfits(*dialog), QString());
            measured += Measure::measuredTexts(*dialog);
        }
        for (const WidgetRow& widget : settingForm().widgets) {
            const QString text = shownText(*dialog, widget);
            QVERIFY2(measured.contains(text) || text.isEmpty(), widget.name);
        }

        LangSelectDialog language;
        language.setLanguage(Language::english);
        language.show();
        QCOMPARE(misfits(language), QString());
        QCOMPARE(Measure::measuredTexts(language).size(), 4);

        ConnectSelectDialog selection;
        selection.setDeviceList({"VARNE-1(USB,Serial#1000001)"});
        selection.show();
        QCOMPARE(misfits(selection), QString());
        QCOMPARE(Measure::measuredTexts(selection).size(), 1);
    }

    void values_data() {
        addRows(QVector<ValueRow>{
            {"serial number", "serialNolabel", "4294967295"},
            {"firmware version", "firmVersionlabel", "4294967295.-2147483648.-2147483648"},
            {"MAC address", "MACAddresslabel", "DD:DD:DD:DD:DD:DD"},
            {"plate", "curWCalibPlateSerialNolabel", "88888888"},
            {"plate of file", "selFileSerialNolabel", "88888888"},
            {"adapter", "curAmbAdpSerialNolabel", "88888888"},
            {"adapter of file", "selAmbAdpFSerialNolabel", "88888888"},
        });
    }

    void values() {
        const auto row = rowOf<ValueRow>();
        const auto dialog = shownSettings(row.widget);
        auto* label = dialog->findChild<QLabel*>(row.widget);
        QVERIFY(label && label->isVisible());
        label->setText(row.value);
        QVERIFY(Measure::measuredTexts(*dialog).contains(row.value));
        QCOMPARE(misfits(*dialog), QString());
    }

    void octets() {
        constexpr int marginBesideText = 2; // QLineEdit's own, on either side
        const auto dialog = shownSettings();
        const auto edits = dialog->findChild<QWidget*>("tcpIPGroupBox")->findChildren<QLineEdit*>();
        QCOMPARE(edits.size(), 16);
        for (const QLineEdit* edit : edits) {
            QStyleOptionFrame option;
            option.initFrom(edit);
            option.lineWidth =
                edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit);
            const QRect space =
                edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
            const QFontMetrics metrics = edit->fontMetrics();
            QVERIFY2(metrics.horizontalAdvance("255") + 2 * marginBesideText <= space.width(),
                     qPrintable(edit->objectName()));
            QVERIFY2(metrics.height() <= space.height(), qPrintable(edit->objectName()));
        }
    }

    void instruments() {
        for (const char* device :
             {"VARNE-1(USB,Serial#2147483647)", "VARNE-1(255.255.255.255,Serial#2147483647)"}) {
            ConnectSelectDialog dialog;
            dialog.setDeviceList({device});
            dialog.show();
            const auto* list = dialog.findChild<QListWidget*>("connectlistWidget");
            QVERIFY2(list->sizeHintForColumn(0) <= list->viewport()->width(), device);
            QVERIFY2(!list->horizontalScrollBar()->isVisible(), device);
            QCOMPARE(list->textElideMode(), Qt::ElideRight);
        }
    }

    void message_data() {
        QVector<MessageRow> rows;
        for (const LanguageRow& language : languages) {
            for (const TranslationEntry& entry : entriesOf(language.name)) {
                const QString name =
                    QString(language.name) + ' ' + entry.context + ": " + entry.source;
                if (isMessage(entry))
                    rows.append({name.toUtf8(), language.name, entry.translation});
            }
        }
        addRows(rows);
    }

    /** Every message is shown whole, as plain text. */
    void message() {
        const auto row = rowOf<MessageRow>();
        const InstalledTranslation translation(row.language);
        QVERIFY(!Qt::mightBeRichText(row.text));
        QCOMPARE(Measure::missingGlyphs(row.text), QString());
        InitSettingDialog dialog;
        ModalAnswerer answerer;
        answerer.onBox = [&](QMessageBox& box) {
            QCOMPARE(misfits(box), QString());
            QVERIFY(Measure::measuredTexts(box).contains(row.text));
            QVERIFY(box.screen()->availableGeometry().contains(box.geometry()));
            QVERIFY(box.fontMetrics().horizontalAdvance(box.windowTitle()) < box.width());
        };
        dialog.showErrorMessage(row.text);
        QCOMPARE(answerer.boxes.size(), 1);
    }

    void qtFileDialog_data() {
        const char* open = "on_readToFilePushBtn_clicked";
        const char* save = "on_writeFilePushBtn_clicked";
        addRows(QVector<FileDialogRow>{
            {"open, English", "en", open, {"&Open", "Cancel"}, "File &name:"},
            {"save, English", "en", save, {"&Save", "Cancel"}, "File &name:"},
            {"open, Japanese", "jp", open, {"キャンセル", "開く(&O)"}, "ファイル名(&N):"},
            {"save, Japanese", "jp", save, {"キャンセル", "保存(&S)"}, "ファイル名(&N):"},
        });
    }

    /** Qt's own windows speak the language of the tool. */
    void qtFileDialog() {
        const auto row = rowOf<FileDialogRow>();
        const InstalledTranslation translation(row.language);
        InitSettingDialog window;
        ModalAnswerer answerer;
        answerer.onFileDialog = [&](QFileDialog& dialog) {
            QCOMPARE(buttonTexts(dialog), row.buttons);
            QCOMPARE(dialog.labelText(QFileDialog::FileName), QString(row.fileName));
        };
        QVERIFY(QMetaObject::invokeMethod(&window, row.slot));
        QCOMPARE(answerer.fileDialogs.size(), 1);
    }

    /** Such as the file dialog's question whether to replace a file. */
    void qtMessageBox() {
        const auto shown = [](const char* language) {
            const InstalledTranslation translation(language);
            return buttonTexts(QMessageBox(QMessageBox::Question, "", "",
                                           QMessageBox::Ok | QMessageBox::Yes | QMessageBox::No));
        };
        QCOMPARE(shown("en"), QStringList({"&No", "&Yes", "OK"}));
        QCOMPARE(shown("jp"), QStringList({"OK", "いいえ(&N)", "はい(&Y)"}));
    }

    void misfitIsSeen_data() {
        addRows(QVector<ValueRow>{
            {"label", "serialNoTLabel", "text"},
            {"right-aligned label", "curWCalibPlateSerialNoTlabel", "text"},
            {"label out of its box", "selWCPFileTlabel", "text"},
            {"button", "ConnectPushBtn", "text"},
            {"radio button", "enableRadioBtn", "text"},
            {"group", "wLanFileCtrlGroupBox", "title"},
            {"tab", "setBasetabWidget", nullptr},
        });
    }

    /** The measure itself: a text that is made longer, sign by sign, is found in the end. It is not
        found before it is as wide as its widget may show. */
    void misfitIsSeen() {
        const auto row = rowOf<ValueRow>();
        const auto dialog = shownSettings(row.widget);
        QWidget* widget = findWidget(*dialog, row.widget);
        QVERIFY(widget && widget->isVisible());
        QCOMPARE(misfits(*dialog), QString());
        QString text;
        while (misfits(*dialog).isEmpty() && text.size() < 400) {
            text.append('n');
            if (row.value)
                widget->setProperty(row.value, text);
            else
                tabsOf(*dialog).setTabText(3, text);
            tabsOf(*dialog).repaint();
        }
        const int width = widget->fontMetrics().horizontalAdvance(text);
        QVERIFY(width > widget->width() / 4);
        QVERIFY(width <= widget->width() + widget->fontMetrics().horizontalAdvance('n'));
    }

private:
    const Measure::ProgramFont m_font;
};

TEST_CLASS(TestTextFit)
#include "tst_text_fit.moc"
