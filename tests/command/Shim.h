#ifndef TESTS_COMMAND_SHIM_H
#define TESTS_COMMAND_SHIM_H

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <string>

/** A setting of the shim; empty where there is none. */
inline const char* setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/** The function that the shim stands before. */
template <typename Function>
Function next(Function /*own*/, const char* symbol) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, symbol));
}
#define NEXT(function) next(&function, #function)

inline void killIfDue(const char* moment, int call) {
    const std::string due = moment + (":" + std::to_string(call));
    if (due == setting("SHIM_KILL"))
        std::raise(SIGKILL);
    if (due == setting("SHIM_STOP"))
        std::raise(SIGSTOP);
}

/** See `SHIM_UNSYNCED`. */
void noteUnsynced(const char* function);

#endif
