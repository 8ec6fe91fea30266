#ifndef TESTS_SUPPORT_QTINUSE_H
#define TESTS_SUPPORT_QTINUSE_H

#include <QtGlobal>

#if QT_VERSION_MAJOR == 5
#include <QTextCodec>

#include <langinfo.h>
#endif

/** What differs between the versions of Qt that the tool is built with; all else is the same. */
namespace QtInUse {

/** Qt 6 takes UTF-8 for the local encoding, under each locale. */
constexpr bool isAlwaysUtf8 = QT_VERSION_MAJOR > 5;

/** Blocks of the heap that come and go from look to look, without growing, where nothing else is
    different: 10,406 to 10,410 in 8,000 rounds with Qt 6.4. */
constexpr int movingBlocks = QT_VERSION_MAJOR > 5 ? 8 : 0;

/** Makes the encoding of the locale Qt's local one, unless that is always UTF-8. */
inline void takeEncodingOfLocale() {
#if QT_VERSION_MAJOR == 5
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(::nl_langinfo(CODESET)));
#endif
}

} // namespace QtInUse

#endif
