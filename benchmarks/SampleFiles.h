#ifndef BENCHMARKS_SAMPLEFILES_H
#define BENCHMARKS_SAMPLEFILES_H

#include "instrument/KvaSdk.h"

#include <string>
#include <vector>

/** What the files of the benchmarks hold. Any failure to make one ends the program. */
namespace SampleFiles {

/** Settings with both texts of a usual length. */
KVA_NETWORKINFO networkInfo();

/** Makes @p count files of these settings as the tool writes them.
    @return their paths, in @p folder, which must exist */
std::vector<std::string> makeNetworkFiles(const std::string& folder, const std::string& name,
                                          int count);

/** Paths of the same form, without the files. */
std::vector<std::string> newPaths(const std::string& folder, const std::string& name, int count);

/** Makes a calibration value file of @p valueCount values.
    @return its path */
std::string makeCalibrationFile(const std::string& folder, const std::string& name, int valueCount);

} // namespace SampleFiles

#endif
