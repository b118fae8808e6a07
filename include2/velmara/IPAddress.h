#pragma once

#include <array>
#include <string>

#include <velmara/Export.h>

struct sockaddr;

namespace Velmara {

/// An IPv4 or IPv6 address, or none.
///
/// Text is read as strictly as the system reads it: four decimal numbers without leading zeros, or
/// the forms of RFC 4291; no brackets, no zone, no white space, nothing short such as "192.0.2". An
/// IPv4 address and its IPv6-mapped form are two addresses; only SocketAddress folds them.
class VELMARA_EXPORT IPAddress {
public:
    /// Null.
    IPAddress() = default;
    /// Null where the text is no address.
    IPAddress(std::string const& text);

    /// Whether it is none.
    bool isNull() const { return m_length == 0; }
    /// 4 or 16; 0 for null.
    unsigned int length() const { return m_length; }
    /// In network order, the first `length()` of them in use.
    std::array<unsigned char, 16> const& bytes() const { return m_bytes; }

    /// "" for null. IPv4 is the same either way; IPv6 is compressed by RFC 5952 or has all eight groups.
    std::string asString(bool compressed) const;
    static bool isValidIPAddress(std::string const& text);

    /// Same length and bytes.
    bool operator==(IPAddress const& other) const;
    bool operator!=(IPAddress const& other) const { return !(*this == other); }
    /// Null, then IPv4 by number, then IPv6 by number.
    bool operator<(IPAddress const& other) const;

private:
    friend class IPAddressMask;
    friend class SocketAddress;
    IPAddress(unsigned char const* bytes, unsigned char length);

    std::array<unsigned char, 16> m_bytes{}; // zero behind the length
    unsigned char m_length = 0;
};

/// A network: an address and the number of leading bits that count.
///
/// The bits behind them are ignored, so "192.0.2.7/24" is "192.0.2.0/24". A network holds addresses of
/// its own kind only: no IPv6 network holds an IPv4 address, and "0.0.0.0/0" no mapped one.
class VELMARA_EXPORT IPAddressMask {
public:
    /// Null; it matches nothing.
    IPAddressMask() = default;
    /// Reads "192.0.2.0/24", "192.0.2.0/255.255.255.0", "2001:db8::/32" or a bare address, which is a
    /// network of one. Anything else, also a mask with gaps, gives null.
    IPAddressMask(std::string const& text);

    /// Whether it is none.
    bool isNull() const { return m_network.isNull(); }
    /// Whether the address lies in the network; one of the other length never does.
    bool matches(IPAddress const& address) const;
    /// "192.0.2.0/24", with the number of bits for a bare address too; "" for null.
    std::string asString() const;

    /// Same network and number of bits.
    bool operator==(IPAddressMask const& other) const;
    bool operator!=(IPAddressMask const& other) const { return !(*this == other); }
    /// By address, then wider networks first.
    bool operator<(IPAddressMask const& other) const;

private:
    IPAddress m_network; // the bits that do not count are 0
    unsigned char m_bits = 0;
};

/// The peer of a connection: address and port.
class VELMARA_EXPORT SocketAddress {
public:
    /// A null address, port 0.
    SocketAddress() = default;
    /// Of a family other than AF_INET and AF_INET6 nothing is taken. The object must be as large as its
    /// family says. With `foldMapped` an IPv4-mapped IPv6 address, as dual-stack sockets report IPv4
    /// peers, becomes the IPv4 address that lists of networks name.
    SocketAddress(sockaddr const& address, bool foldMapped);

    /// Without an address.
    bool isNull() const { return m_address.isNull(); }
    /// The address, and the port in the order of the host.
    IPAddress const& asINET() const { return m_address; }
    unsigned short port() const { return m_port; }

    /// Address and port; ordered by the one, then the other.
    bool operator==(SocketAddress const& other) const;
    bool operator!=(SocketAddress const& other) const { return !(*this == other); }
    bool operator<(SocketAddress const& other) const;

private:
    IPAddress m_address;
    unsigned short m_port = 0; // in host order
};

} // namespace Velmara
