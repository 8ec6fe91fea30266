#ifndef TESTS_DIALOGS_FORM_TRANSLATIONS_H
#define TESTS_DIALOGS_FORM_TRANSLATIONS_H

#include <QString>
#include <QTranslator>
#include <QVector>

/** An entry of a translation source file. */
struct TranslationEntry {
    QString context;
    QString source;
    QString comment; ///< disambiguation
    QString translation;
    QString type; ///< of the translation: "unfinished", "vanished", "obsolete"; empty: finished
};

/** The languages of the tool, by the base names of their files. */
inline const char* const languages[] = {"en", "jp"};

/** The path of the source file of a language. */
QString translationSourcePath(const QString& language);

/** The entries of a translation source file; empty when it cannot be read or parsed. */
QVector<TranslationEntry> readTranslationSource(const QString& path);

/** The translation that a language's source file gives; null when there is none. */
QString translationOf(const QString& language, const QString& context, const QString& source);

/** Installs a language's compiled file from the Resources folder, while it exists. */
class InstalledTranslation {
public:
    explicit InstalledTranslation(const QString& language);
    ~InstalledTranslation();
    InstalledTranslation(const InstalledTranslation&) = delete;
    InstalledTranslation& operator=(const InstalledTranslation&) = delete;

    bool isLoaded() const { return m_isLoaded; }

private:
    QTranslator m_translator;
    bool m_isLoaded;
};

/** Marks each text that is looked up, so that what was looked up, and in which context, can be
    seen: "[context|source]". Installed while it exists. */
class MarkingTranslator : public QTranslator {
public:
    MarkingTranslator();
    ~MarkingTranslator() override;

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;

    static QString marked(const char* context, const char* source);
};

#endif
