/**
 * The bench as JSON, exact for every byte of every record: what is written and read again is the
 * same bench.
 *
 *     {"version": 1,
 *      "instruments": [
 *        {"serialNumber": 1000001,
 *         "plugged": true,
 *         "port": {"type": 1, "name": "USB"},
 *         "device": {"serialNumber": 1000001, "firmware": [1, 12, 3],
 *                    "macAddress": "02:00:00:0f:42:41",
 *                    "reserved1": {"fill": 0}, "reserved2": {"fill": 0}},
 *         "wirelessModule": true,
 *         "factoryOptionsReserved": {"fill": 0},
 *         "network": {"active": {"APConnectUse": 1, "DHCPUse": 0, "IPAddress": "192.168.0.10",
 *                                "SubnetMask": "255.255.255.0", "DefaultGateway": "192.168.0.1",
 *                                "DNS": "192.168.0.1", "SSID": "name", "EncryptKey": "key"},
 *                     "pending": null},
 *         "powerOffMode": 1,
 *         "startUpMs": 1500,
 *         "calibration": {"committed": {"white": {"serialNumber": "12345678", "values": [38]},
 *                                       "ambientAdapter": {"serialNumber": "00012345",
 *                                                          "values": [75]},
 *                                       "reserved": {"seed": 1}},
 *                         "staged": null}}],
 *      "faults": []}
 *
 * How values are written: see JsonFields.h (texts, bytes, single-precision values, binary-coded
 * decimal); rules for faults: see FaultRules.h.
 *
 * | Field                           | Values                      | Left out                     |
 * |---------------------------------|-----------------------------|------------------------------|
 * | `version`                       | 1                           | refused                      |
 * | `instruments`                   | array; no serial twice      | refused                      |
 * | `faults`                        | array                       | no rules                     |
 * | `serialNumber`                  | signed 32-bit               | refused                      |
 * | `plugged`                       | true, false                 | true                         |
 * | `port.type`                     | unsigned 32-bit, 1 is USB   | 1                            |
 * | `port.name`                     | text of 36 bytes            | "USB"                        |
 * | `device.serialNumber`           | unsigned 32-bit             | as `serialNumber`            |
 * | `device.firmware`               | unsigned, two signed 32-bit | [1, 0, 0]                    |
 * | `device.macAddress`             | six bytes of hexadecimal    | 02:00 and `serialNumber`     |
 * | `device.reserved1`, `reserved2` | 8 and 10 bytes              | zero                         |
 * | `wirelessModule`                | true, false or 0 to 255     | true                         |
 * | `factoryOptionsReserved`        | 15 bytes                    | zero                         |
 * | `network.active`                | settings                    | 192.168.0.10/24, both uses 0 |
 * | `network.pending`               | settings or null            | null; fields as in `active`  |
 * | `powerOffMode`                  | 0 to 255                    | 0                            |
 * | `startUpMs`                     | 0 to 600000                 | 1500                         |
 * | `calibration.committed`         | record                      | plausible values, seed 1     |
 * | `calibration.staged`            | record or null              | null; as in `committed`      |
 *
 * A field that is given has to be right, and no other field may be given.
 */
#ifndef SIMULATOR_BENCHJSON_H
#define SIMULATOR_BENCHJSON_H

#include "simulator/Bench.h"
#include "simulator/JsonText.h"

#include <string>

namespace kvasim {

/** The version that is written and read. */
constexpr int benchVersion = 1;

/** Whether security keys are shown. Hidden, {"length": bytes} takes the place of the key; such a
    document is for showing and is not read again. */
enum class Keys { Shown, Hidden };

/** @throws InputError with the path of the field and the reason. */
Bench benchFromJson(const Json& json);
Json benchToJson(const Bench& bench, Keys keys = Keys::Shown);

/** @param path the place of @p json in its document.
    @throws InputError as above. */
Instrument instrumentFromJson(const Json& json, const std::string& path);
Json instrumentToJson(const Instrument& instrument, Keys keys = Keys::Shown);

/** The parts of an instrument's JSON, as above. */
Json portToJson(const KVA_PORTINFO& port);
Json networkToJson(const KVA_NETWORKINFO& network, Keys keys);

/** Merges @p patch into @p target as a JSON merge patch does (null removes a field, which then has
    its default), but for bytes ({"hex"}, {"fill"}, {"seed"}), which are replaced as a whole. */
void mergeInto(Json& target, const Json& patch);

} // namespace kvasim

#endif
