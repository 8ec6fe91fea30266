#ifndef TESTS_SUPPORT_GIVEUP_H
#define TESTS_SUPPORT_GIVEUP_H

#include <QString>

#include <cstdio>
#include <cstdlib>

/** Ends the program: the test itself is wrong. Not by qFatal, whose text a `DebugLog` would keep.
 */
[[noreturn]] inline void giveUp(const QString& reason) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
    std::abort();
}

#endif
