#ifndef DIALOGS_LANGUAGE_H
#define DIALOGS_LANGUAGE_H

#include <QString>

#include <array>

/**
 * A language of the windows. To add one, add a row to `Language::all`, a radio button to the form
 * of the language dialog, and a `.ts` file to `resources/`.
 */
struct Language {
    int code; ///< `LangSelectDialog::languageCode`
    const char*
        localePart;       ///< chosen by a system locale with this in its name; null: by all others
    const char* fileName; ///< of its translation, in Resources
    const char* radioButton; ///< object name in the language dialog
    const char* name;        ///< on that button; context "LangSelectDialog"
    const char* description; ///< of that button, for screen readers; context "LangSelectDialog"
    const char* chosenLine;  ///< debug line when it is chosen: a format that takes the code
    const char* failure;     ///< message when its translation cannot be loaded; context "QObject"

    static constexpr int english = 1;
    static constexpr int japanese = 2;

    static const std::array<Language, 2> all;

    /** The language with this code; null when there is none. */
    static const Language* ofCode(int code);
    /** The language for a system locale such as "ja_JP"; upper and lower case are the same. */
    static const Language& ofLocale(const QString& localeName);
};

#endif
