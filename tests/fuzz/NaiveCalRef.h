#ifndef TESTS_FUZZ_NAIVECALREF_H
#define TESTS_FUZZ_NAIVECALREF_H

#include <cstddef>
#include <string>

/** A second, slow and plain implementation of the calibration file's rules, over a text in memory.
    The product's own is compared with it. */
namespace NaiveCalRef {

/** What a read of the whole file makes of a record. */
struct Reading {
    bool accepted;
    std::string record;  ///< its bytes
    std::string printed; ///< on the standard output
};

/** @param isAdapter  the rules of the adapter's file, or of the white plate's
    @param record     its bytes before */
Reading read(const std::string& text, bool isAdapter, const std::string& record);

} // namespace NaiveCalRef

#endif
