#include "simulator/kvasim/StartingBench.h"

#include "simulator/JsonText.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr char startingBench[] =
    R"(// A bench of simulated instruments. Name it in KVASIM_BENCH and start the tool.
//
// The file is also where the instruments keep their state: with the first change that is saved, the
// comments are gone and all fields are written out. Keep a copy of what you want to keep.
//
// Only "version", "instruments" and each "serialNumber" must be there; every other field has a
// default. docs/simulator.md describes all of them; "kvasim bench check FILE" checks a file.
{
  "version": 1,
  "instruments": [
    {
      "serialNumber": 1000001,
      "plugged": true,
      // 1 is USB, every other number a network port.
      "port": {"type": 1, "name": "USB"},
      "device": {"firmware": [1, 12, 3], "macAddress": "02:00:00:0f:42:41"},
      "wirelessModule": true,
      "network": {
        "active": {
          "APConnectUse": 1, // wireless LAN: 0 off, 1 on
          "DHCPUse": 0,
          "IPAddress": "192.168.0.10",
          "SubnetMask": "255.255.255.0",
          "DefaultGateway": "192.168.0.1",
          "DNS": "192.168.0.1",
          "SSID": "measuring-room",
          "EncryptKey": "spectral-demo-1"
        },
        // Settings that were written and wait for a power cycle.
        "pending": null
      },
      // 0 never, 1 after 15 minutes, 2 after 30, 3 after 60.
      "powerOffMode": 1,
      // From switching on until it answers again, in milliseconds.
      "startUpMs": 1500,
      "calibration": {
        // 38 values under "white", 75 under "ambientAdapter", as "values".
        "committed": {
          "white": {"serialNumber": "12345678"},
          "ambientAdapter": {"serialNumber": "00012345"}
        },
        "staged": null
      }
    },
    {
      "serialNumber": 1000002,
      "port": {"type": 2, "name": "192.168.0.20"},
      "network": {"active": {"APConnectUse": 1, "IPAddress": "192.168.0.20"}}
    }
  ],
  // Rules that make calls fail, for instance the third connection:
  // {"function": "KVA_Connect", "call": 3, "result": "KVA_ERROR_CONNECT_TIMEOUT"}
  "faults": []
}
)";

[[noreturn]] void fail(const std::string& path, int error) {
    throw InputError(path + ": cannot be written: " + std::generic_category().message(error));
}

} // namespace

void writeStartingBench(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        fail(path, errno);
    const std::size_t size = std::strlen(startingBench);
    const ssize_t written = ::write(file, startingBench, size);
    int error = written < 0 ? errno : 0;
    if (::close(file) != 0 && error == 0)
        error = errno;
    if (error == 0 && written == static_cast<ssize_t>(size))
        return;
    ::unlink(path.c_str());
    fail(path, error == 0 ? ENOSPC : error);
}

} // namespace kvasim
