#include "command/NetworkFields.h"

#include "command/FieldTexts.h"

#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace {

using Address = NetworkFields::Address;

/** As a number, whose bits are those of the address from left to right. */
std::uint32_t bits(const Address& address) {
    std::uint32_t result = 0;
    for (const std::uint8_t octet : address)
        result = result << 8U | octet;
    return result;
}

QString textOf(const Address& address) {
    const std::uint8_t octets[4] = {address[0], address[1], address[2], address[3]};
    return FieldTexts::address(octets);
}

Address addressOf(const std::uint8_t (&octets)[4]) {
    return {octets[0], octets[1], octets[2], octets[3]};
}

/** Whether it is ones, then zeros, with at least one of each. */
bool isMask(const Address& address) {
    const std::uint32_t zeros = ~bits(address);
    return zeros != 0 && bits(address) != 0 && (zeros & (zeros + 1)) == 0;
}

/** Whether an instrument could have the address: not "this", the machine itself, or several. */
bool isOfAHost(const Address& address) {
    constexpr std::uint8_t loopback = 127;
    constexpr std::uint8_t firstMulticast = 224;
    return address[0] != 0 && address[0] != loopback && address[0] < firstMulticast;
}

/** Whether it is the network's own address or its broadcast address. */
bool isReserved(const Address& ip, const Address& mask) {
    const std::uint32_t host = ~bits(mask);
    constexpr std::uint32_t pointToPoint = 1; // a network of two addresses, both usable
    return host > pointToPoint && ((bits(ip) & host) == 0 || (bits(ip) & host) == host);
}

template <std::size_t Size>
void put(const std::optional<Address>& address, std::uint8_t (&octets)[Size]) {
    if (address)
        std::copy(address->begin(), address->end(), octets);
}

template <std::size_t Size>
void put(const std::optional<std::string>& text, char (&field)[Size]) {
    if (!text)
        return;
    std::memset(field, 0, Size);
    std::memcpy(field, text->data(), std::min(text->size(), Size - 1));
}

} // namespace

bool NetworkFields::any() const {
    return wireless || dhcp || ip || mask || gateway || dns || ssid || key;
}

void NetworkFields::mergeInto(KVA_NETWORKINFO& info) const {
    info.APConnectUse = wireless.value_or(info.APConnectUse);
    info.DHCPUse = dhcp.value_or(info.DHCPUse);
    put(ip, info.IPAddress);
    put(mask, info.SubnetMask);
    put(gateway, info.DefaultGateway);
    put(dns, info.DNS);
    put(ssid, info.SSID);
    put(key, info.EncryptKey);
}

std::vector<AddressFault> addressFaults(const std::optional<Address>& ip,
                                        const std::optional<Address>& mask,
                                        const std::optional<Address>& gateway) {
    using Field = AddressFault::Field;
    std::vector<AddressFault> faults;
    const bool hasMask = mask && isMask(*mask);
    if (mask && !hasMask)
        faults.push_back(
            {Field::Mask,
             Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is no network mask such as 255.255.255.0."),
                  {textOf(*mask)})});
    if (!ip)
        return faults;
    if (!isOfAHost(*ip) || (hasMask && isReserved(*ip, *mask)))
        faults.push_back(
            {Field::Ip, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is no address that an instrument "
                                                            "can have."),
                             {textOf(*ip)})});
    if (!gateway || bits(*gateway) == 0)
        return faults;
    if (*ip == *gateway)
        faults.push_back(
            {Field::Ip,
             Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is the address of the gateway as well."),
                  {textOf(*ip)})});
    else if (hasMask && ((bits(*ip) ^ bits(*gateway)) & bits(*mask)) != 0)
        faults.push_back(
            {Field::Ip,
             Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                    "%1 is outside the network that mask %2 and gateway %3 make."),
                  {textOf(*ip), textOf(*mask), textOf(*gateway)})});
    return faults;
}

Text changedAddressFault(const KVA_NETWORKINFO& held, const KVA_NETWORKINFO& wanted) {
    const auto isOther = [](const auto& left, const auto& right) {
        return addressOf(left) != addressOf(right);
    };
    const bool isChanged = held.DHCPUse != wanted.DHCPUse ||
                           isOther(held.IPAddress, wanted.IPAddress) ||
                           isOther(held.SubnetMask, wanted.SubnetMask) ||
                           isOther(held.DefaultGateway, wanted.DefaultGateway);
    if (!isChanged || wanted.DHCPUse != eDHCP_OFF)
        return {};
    const auto faults = addressFaults(addressOf(wanted.IPAddress), addressOf(wanted.SubnetMask),
                                      addressOf(wanted.DefaultGateway));
    return faults.empty() ? Text() : faults.front().text;
}
