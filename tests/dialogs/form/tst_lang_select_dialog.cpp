#include "dialogs/LangSelectDialog.h"

#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/DebugLog.h"
#include "tests/support/TestMain.h"

#include <QSignalSpy>

#include <limits>

namespace {

constexpr int englishCode = 1;
constexpr int japaneseCode = 2;

/** The dialog as a user sees and handles it. */
class Dialog : public LangSelectDialog {
public:
    QPushButton& okButton() const { return *findChild<QPushButton*>("pushButton"); }
    QRadioButton& english() const { return *findChild<QRadioButton*>("engRadioBtn"); }
    QRadioButton& japanese() const { return *findChild<QRadioButton*>("jpnRadioBtn"); }
    QString groupTitle() const { return findChild<QGroupBox*>("langselgrpBox")->title(); }

    /** The language whose radio button is checked; 0 unless it is exactly one. */
    int checked() const {
        if (english().isChecked() == japanese().isChecked())
            return 0;
        return english().isChecked() ? englishCode : japaneseCode;
    }

    static void click(QAbstractButton& button) {
        // Near the left edge: a radio button is not clicked beside its text.
        QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, QPoint(10, button.height() / 2));
    }
};

struct ChoiceRow {
    const char* name;
    int code;
    QByteArray clicks; ///< e: English, j: Japanese
    int preselected;   ///< by the code
};

struct EndRow {
    const char* name;
    std::function<void(Dialog&)> act;
    bool isFinished;
    bool isCancelled;
    bool isVisible;
};

} // namespace

/** The language selection dialog. Nothing of it is logged. */
class TestLangSelectDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<DebugLog>(); }
    void cleanup() {
        const QStringList lines = m_log->lines();
        m_log.reset();
        QCOMPARE(lines, QStringList());
    }

    /** What setLanguage applies is not there before. */
    void afterConstruction() {
        const Dialog dialog;
        QVERIFY(!dialog.isFinished);
        QVERIFY(!dialog.isCancelled);
        QCOMPARE(dialog.languageCode, japaneseCode);
        QCOMPARE(dialog.checked(), japaneseCode);
        QVERIFY(dialog.okButton().styleSheet().isEmpty());
    }

    void choice_data() {
        addRows(QVector<ChoiceRow>{
            {"English", 1, "", englishCode},
            {"Japanese", 2, "", japaneseCode},
            {"0", 0, "", japaneseCode},
            {"3", 3, "", japaneseCode},
            {"-1", -1, "", japaneseCode},
            {"highest", std::numeric_limits<int>::max(), "", japaneseCode},
            {"lowest", std::numeric_limits<int>::min(), "", japaneseCode},
            {"English, Japanese", 1, "ej", englishCode},
            {"Japanese, English", 1, "je", englishCode},
            {"English over Japanese", 2, "e", japaneseCode},
            {"Japanese over English", 1, "j", englishCode},
            {"checked English again", 1, "e", englishCode},
            {"checked Japanese again", 2, "jj", japaneseCode},
            {"to and fro", 2, "ejeje", japaneseCode},
        });
    }

    /** The last click wins; without one it is the language that was preselected. */
    void choice() {
        const auto row = rowOf<ChoiceRow>();
        Dialog dialog;
        dialog.setLanguage(row.code);
        QCOMPARE(dialog.languageCode, row.preselected);
        QCOMPARE(dialog.checked(), row.preselected);
        QVERIFY(!dialog.isFinished);
        QVERIFY(!dialog.isCancelled);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(iconOf(dialog), programIcon());
        QCOMPARE(dialog.windowFlags(), closableFlags());
        QCOMPARE(dialog.okButton().styleSheet(),
                 QString("QPushButton:default{background-color:gainsboro;}"));
        QCOMPARE(dialog.minimumSize(), QSize(351, 170));
        QCOMPARE(dialog.maximumSize(), QSize(351, 170));
        QCOMPARE(dialog.size(), QSize(351, 170));
        dialog.show();
        int language = row.preselected;
        for (const char button : row.clicks) {
            Dialog::click(button == 'e' ? dialog.english() : dialog.japanese());
            language = button == 'e' ? englishCode : japaneseCode;
            QCOMPARE(dialog.languageCode, language);
            QCOMPARE(dialog.checked(), language);
            QVERIFY(!dialog.isFinished);
        }
        Dialog::click(dialog.okButton());
        QCOMPARE(dialog.languageCode, language);
        QVERIFY(dialog.isFinished);
    }

    /** The window's title and its button keep the language that they were made in. */
    void textsAreTranslatedWhenPrepared() {
        Dialog dialog;
        const InstalledTranslation japanese("jp");
        QCOMPARE(dialog.groupTitle(), QString("LanguageType"));
        dialog.setLanguage(englishCode);
        QCOMPARE(dialog.groupTitle(), QString("言語"));
        QCOMPARE(dialog.japanese().text(), QString("日本語"));
        QCOMPARE(dialog.english().text(), QString("English"));
        QCOMPARE(dialog.windowTitle(), QString("Select Language"));

        const auto marked = [](const char* text) {
            return MarkingTranslator::marked("LangSelectDialog", text);
        };
        const MarkingTranslator marking;
        dialog.setLanguage(englishCode);
        QCOMPARE(dialog.groupTitle(), marked("LanguageType"));
        QCOMPARE(dialog.japanese().text(), marked("Japanese"));
        QCOMPARE(dialog.english().text(), marked("English"));
    }

    void checkingInCodeIsNoChoice() {
        Dialog dialog;
        dialog.setLanguage(japaneseCode);
        dialog.english().setChecked(true);
        QCOMPARE(dialog.languageCode, japaneseCode);
    }

    void ends_data() {
        const auto ok = [](Dialog& dialog) { Dialog::click(dialog.okButton()); };
        const auto key = [](Qt::Key pressed) {
            return [pressed](Dialog& dialog) { QTest::keyClick(&dialog, pressed); };
        };
        const auto close = [](Dialog& dialog) {
            const QSignalSpy finished(&dialog, &QDialog::finished);
            QVERIFY(dialog.close());
            QCOMPARE(finished.count(), 1); // closed as any dialog is
        };
        addRows(QVector<EndRow>{
            {"OK is no cancel", ok, true, false, false},
            {"Return presses OK", key(Qt::Key_Return), true, false, false},
            {"closed is cancelled", close, true, true, false},
            {"Escape is no cancel", key(Qt::Key_Escape), false, false, true},
            {"closed after OK",
             [=](Dialog& dialog) {
                 ok(dialog);
                 dialog.show();
                 close(dialog);
             },
             true, false, false},
            {"hidden is no cancel", [](Dialog& dialog) { dialog.hide(); }, false, false, false},
        });
    }

    /** The language stays as it was clicked, cancelled or not. */
    void ends() {
        const auto row = rowOf<EndRow>();
        Dialog dialog;
        dialog.setLanguage(japaneseCode);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        Dialog::click(dialog.english());
        row.act(dialog);
        QCOMPARE(dialog.isFinished, row.isFinished);
        QCOMPARE(dialog.isCancelled, row.isCancelled);
        QCOMPARE(dialog.isVisible(), row.isVisible);
        QCOMPARE(dialog.languageCode, englishCode);
        QVERIFY(!row.isVisible || (dialog.close() && dialog.isCancelled));
    }

    void preparedTwice() {
        Dialog dialog;
        dialog.setLanguage(englishCode);
        dialog.setLanguage(japaneseCode);
        QCOMPARE(dialog.languageCode, japaneseCode);
        QCOMPARE(dialog.checked(), japaneseCode);
        QCOMPARE(dialog.size(), QSize(351, 170));
    }

private:
    std::unique_ptr<DebugLog> m_log;
};

TEST_CLASS(TestLangSelectDialog)
#include "tst_lang_select_dialog.moc"
