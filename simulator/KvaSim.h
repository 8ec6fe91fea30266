/**
 * Control of the simulated libKVASDK: what a person does to real instruments, for tests and tools.
 *
 *
 * Serial numbers are those of the port list. JSON texts are UTF-8 and NUL-terminated; the forms of
 * a bench, an instrument and a rule are those of a bench file. A function that returns false, or
 * null, has done nothing; `KvaSim_LastError` says why. A null text is refused.
 *
 * Any thread may call any function, an event handler included. The header is valid C.
 */
#ifndef SIMULATOR_KVASIM_H
#define SIMULATOR_KVASIM_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Replaces the present bench by that of a file, or by one that is kept in memory only. The
    connection ends without an event, and calls are counted anew; log and handler stay. */
bool KvaSim_LoadFile(const char* path);
bool KvaSim_LoadJson(const char* json);

/** Drops bench, connection and log; a registered handler stays. The next use reads the bench from
    the environment (`KVASIM_BENCH`) again. */
void KvaSim_Reset(void);

/** Plugs an instrument, which delivers a standby event, or unplugs it. Unplugging the connected one
   loses the connection and delivers a disconnect event. True without an event when nothing
    changes. */
bool KvaSim_Plug(int32_t serialNumber);
bool KvaSim_Unplug(int32_t serialNumber);

/** Switches an instrument off and on: pending network settings become active, staged calibration
    data is dropped. For the connected one the connection is lost, and a disconnect and then a
    standby event are delivered. It is ready again at once; its "startUpMs" is ignored. */
bool KvaSim_PowerCycle(int32_t serialNumber);

/** Merges a JSON merge patch into an instrument, for instance {"powerOffMode": 7}; null gives a
    field its default. Bytes ({"hex"}, {"fill"}, {"seed"}) are replaced as a whole. Setting
    "plugged" has the effects of `KvaSim_Plug` and `KvaSim_Unplug`. */
bool KvaSim_Set(int32_t serialNumber, const char* jsonMergePatch);

/** Adds a rule to the bench; removes all rules. */
bool KvaSim_AddFault(const char* json);
void KvaSim_ClearFaults(void);

/** Queues an event for the handler; nothing happens without one. */
void KvaSim_EmitEvent(uint32_t code, uint32_t rawDataCount, int32_t error);

/** Waits until all queued events are delivered, except the standby event of an instrument that is
    still starting; from within a handler, returns at once. */
void KvaSim_WaitForEvents(void);

/** The whole bench as JSON, security keys included, and the log as a JSON array of {"seq",
    "function", "arguments", "result", "resultName", "durationUs"}: the last 100 000 calls, oldest
    first. Free with `KvaSim_Free`. */
char* KvaSim_State(void);
char* KvaSim_CallLog(void);

/** Empties the log; its numbers continue. */
void KvaSim_ClearCallLog(void);

/** Why this thread's last call was refused, in one line; empty when it was not. Valid until this
    thread's next call of a function of this header. */
const char* KvaSim_LastError(void);

/** Frees a text; null is allowed. */
void KvaSim_Free(char* text);

#ifdef __cplusplus
}
#endif

#endif
