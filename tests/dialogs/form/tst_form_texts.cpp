#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/TestMain.h"

/** The texts of the forms, untranslated and translated. */
class TestFormTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void widget_data() { addRows(allWidgets()); }
    void widget() {
        QFETCH(const FormWidget, row);
        const char* text = row.widget.text;
        const bool hasText = *text != '\0';
        const auto shown = [&] { return shownText(*row.form.create(), row.widget); };
        QVERIFY(findWidget(*row.form.create(), row.widget.name));
        QCOMPARE(shown(), QString(text));
        for (const LanguageRow& language : languages) {
            const InstalledTranslation translation(language.name);
            const QString translated = translationOf(language.name, row.form.name, text);
            QCOMPARE(translated.isEmpty(), !hasText);
            QCOMPARE(shown(), translated);
        }
        const MarkingTranslator marking;
        QCOMPARE(shown(), hasText ? MarkingTranslator::marked(row.form.name, text) : QString());
    }

    void title_data() { addRows(allForms()); }
    void title() {
        QFETCH(const FormTable, row);
        {
            const InstalledTranslation english("en");
            QCOMPARE(row.create()->windowTitle(), QString(row.title));
        }
        {
            const InstalledTranslation japanese("jp");
            QCOMPARE(row.create()->windowTitle(), QString(row.japaneseTitle));
        }
        const MarkingTranslator marking;
        QCOMPARE(row.create()->windowTitle(), MarkingTranslator::marked(row.name, row.title));
    }
};

TEST_CLASS(TestFormTexts)
#include "tst_form_texts.moc"
