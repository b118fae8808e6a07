#include <velmara/IPAddress.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <tuple>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

/// The system reads C strings: what lies behind a NUL would go unseen.
bool _read(int family, std::string const& text, unsigned char* bytes)
{
    return text.size() == std::strlen(text.c_str()) && inet_pton(family, text.c_str(), bytes) == 1;
}

std::string _allGroups(unsigned char const* bytes)
{
    std::string text;
    for (int i = 0; i < 16; i += 2) {
        char group[8];
        std::snprintf(group, sizeof group, i == 0 ? "%x" : ":%x", bytes[i] << 8 | bytes[i + 1]);
        text += group;
    }
    return text;
}

} // namespace

IPAddress::IPAddress(unsigned char const* bytes, unsigned char length) : m_length(length)
{
    std::copy_n(bytes, length, m_bytes.begin());
}

IPAddress::IPAddress(std::string const& text)
{
    if (_read(AF_INET, text, m_bytes.data()))
        m_length = 4;
    else if (_read(AF_INET6, text, m_bytes.data()))
        m_length = 16;
    else
        m_bytes.fill(0);
}

std::string IPAddress::asString(bool compressed) const
{
    if (m_length == 0) return std::string();
    if (m_length == 16 && !compressed) return _allGroups(m_bytes.data());
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(m_length == 4 ? AF_INET : AF_INET6, m_bytes.data(), text, sizeof text);
}

bool IPAddress::isValidIPAddress(std::string const& text)
{
    return !IPAddress(text).isNull();
}

bool IPAddress::operator==(IPAddress const& other) const
{
    return m_length == other.m_length && m_bytes == other.m_bytes;
}

bool IPAddress::operator<(IPAddress const& other) const
{
    return std::tie(m_length, m_bytes) < std::tie(other.m_length, other.m_bytes);
}

namespace {

constexpr int _unreadable = -1;

int _decimal(std::string const& text)
{
    if (text.empty() || text.size() > 3) return _unreadable;
    int number = 0;
    for (char c : text) {
        if (!isDigit(static_cast<unsigned char>(c))) return _unreadable;
        number = number * 10 + (c - '0');
    }
    return number;
}

/// How many bits are set in front, if none is set behind the first that is not.
int _leadingBits(IPAddress const& mask)
{
    int bits = 0;
    bool ended = false;
    for (unsigned int i = 0; i < mask.length() * 8; ++i) {
        bool const set = mask.bytes()[i / 8] >> (7 - i % 8) & 1;
        if (set && ended) return _unreadable;
        if (!set) ended = true;
        bits += set;
    }
    return bits;
}

/// What stands behind the slash, for an address of `length` bytes.
int _prefixBits(std::string const& text, unsigned int length)
{
    IPAddress const mask(text);
    if (!mask.isNull()) return mask.length() == length ? _leadingBits(mask) : _unreadable;
    int const bits = _decimal(text);
    return bits <= static_cast<int>(length) * 8 ? bits : _unreadable;
}

unsigned char _maskByte(unsigned int bits, unsigned int index)
{
    if (bits >= (index + 1) * 8) return 0xff;
    return bits <= index * 8 ? 0 : static_cast<unsigned char>(0xff << (8 - bits % 8));
}

} // namespace

IPAddressMask::IPAddressMask(std::string const& text)
{
    size_t const slash = text.find('/');
    IPAddress const address(text.substr(0, slash));
    if (address.isNull()) return;
    int const all = static_cast<int>(address.length()) * 8;
    int const bits = slash == std::string::npos ? all : _prefixBits(text.substr(slash + 1), address.length());
    if (bits == _unreadable) return;
    m_network = address;
    m_bits = static_cast<unsigned char>(bits);
    for (unsigned int i = 0; i < address.length(); ++i) m_network.m_bytes[i] &= _maskByte(m_bits, i);
}

bool IPAddressMask::matches(IPAddress const& address) const
{
    if (isNull() || address.m_length != m_network.m_length) return false;
    for (unsigned int i = 0; i < address.m_length; ++i)
        if ((address.m_bytes[i] & _maskByte(m_bits, i)) != m_network.m_bytes[i]) return false;
    return true;
}

std::string IPAddressMask::asString() const
{
    return isNull() ? std::string() : m_network.asString(true) + '/' + std::to_string(m_bits);
}

bool IPAddressMask::operator==(IPAddressMask const& other) const
{
    return m_network == other.m_network && m_bits == other.m_bits;
}

bool IPAddressMask::operator<(IPAddressMask const& other) const
{
    return std::tie(m_network, m_bits) < std::tie(other.m_network, other.m_bits);
}

SocketAddress::SocketAddress(sockaddr const& address, bool foldMapped)
{
    if (address.sa_family == AF_INET) {
        sockaddr_in in4;
        std::memcpy(&in4, &address, sizeof in4);
        m_address = IPAddress(reinterpret_cast<unsigned char const*>(&in4.sin_addr), 4);
        m_port = ntohs(in4.sin_port);
    } else if (address.sa_family == AF_INET6) {
        sockaddr_in6 in6;
        std::memcpy(&in6, static_cast<void const*>(&address), sizeof in6);
        bool const fold = foldMapped && IN6_IS_ADDR_V4MAPPED(&in6.sin6_addr);
        m_address = fold ? IPAddress(in6.sin6_addr.s6_addr + 12, 4) : IPAddress(in6.sin6_addr.s6_addr, 16);
        m_port = ntohs(in6.sin6_port);
    }
}

bool SocketAddress::operator==(SocketAddress const& other) const
{
    return m_address == other.m_address && m_port == other.m_port;
}

bool SocketAddress::operator<(SocketAddress const& other) const
{
    return std::tie(m_address, m_port) < std::tie(other.m_address, other.m_port);
}

} // namespace Velmara
