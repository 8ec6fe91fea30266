/**
 * What the library says to the people at the terminal.
 */
#ifndef SIMULATOR_COMPLAINT_H
#define SIMULATOR_COMPLAINT_H

#include <string>

namespace kvasim {

/** One line on standard error, in the library's name. Control characters are shown as '?'. */
void complain(const std::string& message);

} // namespace kvasim

#endif
