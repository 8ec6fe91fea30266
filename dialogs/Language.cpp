#include "dialogs/Language.h"

#include <QtGlobal>

#include <algorithm>

const std::array<Language, 2> Language::all = {{
    {Language::english, nullptr, "en.qm", "engRadioBtn",
     QT_TRANSLATE_NOOP("LangSelectDialog", "English"),
     QT_TRANSLATE_NOOP("LangSelectDialog", "The windows are in English"), "select English:%d",
     QT_TRANSLATE_NOOP("QObject", "Failed to set select(English) language.")},
    {Language::japanese, "ja", "jp.qm", "jpnRadioBtn",
     QT_TRANSLATE_NOOP("LangSelectDialog", "Japanese"),
     QT_TRANSLATE_NOOP("LangSelectDialog", "The windows are in Japanese"), "select japanese:%d",
     QT_TRANSLATE_NOOP("QObject", "Failed to set select(japanese) language.")},
}};

const Language* Language::ofCode(int code) {
    const auto* found =
        std::find_if(all.begin(), all.end(), [code](const Language& l) { return l.code == code; });
    return found == all.end() ? nullptr : found;
}

const Language& Language::ofLocale(const QString& localeName) {
    const auto* found = std::find_if(all.begin(), all.end(), [&](const Language& l) {
        return l.localePart &&
               localeName.contains(QLatin1String(l.localePart), Qt::CaseInsensitive);
    });
    return found == all.end() ? *ofCode(english) : *found;
}
