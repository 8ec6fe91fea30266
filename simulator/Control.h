/**
 * Control of the simulator by requests: JSON in, JSON out.
 *
 * | Request                                              | Answer, besides "ok": true           |
 * |------------------------------------------------------|--------------------------------------|
 * | {"command": "list"}                                  | "instruments": [{"serialNumber",     |
 * |                                                      | "plugged", "starting", "connected",  |
 * |                                                      | "port"}]                             |
 * | {"command": "state"}                                 | "bench"                              |
 * | {"command": "show", "serialNumber": n}               | "instrument"                         |
 * | {"command": "plug", "serialNumber": n}, "unplug"     |                                      |
 * | {"command": "powerCycle", "serialNumber": n}         |                                      |
 * | {"command": "set", "serialNumber": n, "patch": {…}}  |                                      |
 * | {"command": "addFault", "fault": {…}}                |                                      |
 * | {"command": "faults"}                                | "faults": the rules in force         |
 * | {"command": "clearFaults"}                           |                                      |
 * | {"command": "log"}                                   | "calls": no more than 1000           |
 * | {"command": "clearLog"}                              |                                      |
 * | {"command": "event", "code": n}                      |                                      |
 *
 * "state" and "show" hide security keys unless "reveal": true is given. "log" takes "after": the
 * number of the last call already known. "event" takes "rawDataCount" and "error" as well, both 0
 * where left out. A request that is refused is answered by {"ok": false, "error": "reason"}.
 */
#ifndef SIMULATOR_CONTROL_H
#define SIMULATOR_CONTROL_H

#include "simulator/Simulator.h"

#include <string>
#include <string_view>

namespace kvasim {

/** Answers one request, whatever its bytes; throws nothing but std::bad_alloc. Any thread. */
std::string answerRequest(Simulator& simulator, std::string_view request);

} // namespace kvasim

#endif
