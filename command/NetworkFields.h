#ifndef COMMAND_NETWORKFIELDS_H
#define COMMAND_NETWORKFIELDS_H

#include "command/Text.h"
#include "instrument/KvaSdk.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** Some of the network settings. Others stay as the instrument holds them. */
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
    /** Copies the named fields into @p info; no other field changes. */
    void mergeInto(KVA_NETWORKINFO& info) const;
};

/** An error in the addresses of an instrument that does not use DHCP. */
struct AddressFault {
    enum class Field { Ip, Mask };
    Field field; ///< the one to be corrected
    Text text;
};

/** Every fault; missing addresses are not checked. A gateway of 0.0.0.0 means none. */
std::vector<AddressFault> addressFaults(const std::optional<NetworkFields::Address>& ip,
                                        const std::optional<NetworkFields::Address>& mask,
                                        const std::optional<NetworkFields::Address>& gateway);

/** The first fault of the addresses in @p wanted, if they are used and they or the use of DHCP
    differ from @p held; empty if there is none. */
Text changedAddressFault(const KVA_NETWORKINFO& held, const KVA_NETWORKINFO& wanted);

#endif
