#ifndef COMMAND_NETWORKFIELDS_H
#define COMMAND_NETWORKFIELDS_H

#include "command/Text.h"
#include "instrument/KvaSdk.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** Some of the network settings. What is not named stays as the instrument holds it. */
struct NetworkFields {
    using Address = std::array<std::uint8_t, 4>;

    std::optional<std::uint32_t> wireless; ///< `eAPConnect_…`
    std::optional<std::uint32_t> dhcp;     ///< `eDHCP_…`
    std::optional<Address> ip;
    std::optional<Address> mask;
    std::optional<Address> gateway;
    std::optional<Address> dns;
    std::optional<std::string> ssid; ///< bytes; at most 32
    std::optional<std::string> key;  ///< bytes; at most 64

    bool any() const;
    /** Puts what is named into @p info; no other field changes. */
    void mergeInto(KVA_NETWORKINFO& info) const;
};

/** What is wrong with the addresses of an instrument that does not get them by DHCP. */
struct AddressFault {
    enum class Field { Ip, Mask };
    Field field; ///< the one to be mended
    Text text;
};

/** Every fault; what is missing is not judged. A gateway of 0.0.0.0 is none. */
std::vector<AddressFault> addressFaults(const std::optional<NetworkFields::Address>& ip,
                                        const std::optional<NetworkFields::Address>& mask,
                                        const std::optional<NetworkFields::Address>& gateway);

/** The first fault of the addresses in @p wanted, where they or the use of DHCP are other than in
    @p held, and are used; empty where there is none. */
Text changedAddressFault(const KVA_NETWORKINFO& held, const KVA_NETWORKINFO& wanted);

#endif
