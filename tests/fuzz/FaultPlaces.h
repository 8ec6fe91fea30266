#ifndef TESTS_FUZZ_FAULTPLACES_H
#define TESTS_FUZZ_FAULTPLACES_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "tests/fuzz/FuzzFile.h"

#include <tuple>

/** Each fault lies within the file, or right behind it; they are in order, and say something. */
inline void requirePlaces(const Faults& faults, const InputFile& file) {
    const QList<QByteArray> lines = file.content.split('\n');
    std::tuple<int, int> before;
    for (const Fault& fault : faults) {
        require(fault.line >= 1 && fault.line <= lines.size() + 1);
        const int length = fault.line <= lines.size() ? lines[fault.line - 1].size() : 0;
        require(fault.column >= 1 && fault.column <= length + 1);
        require(std::tie(fault.line, fault.column) >= before);
        before = std::tie(fault.line, fault.column);
        require(!fault.text.english().isEmpty() && !fault.toString().isEmpty());
    }
}

#endif
