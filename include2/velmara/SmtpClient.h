#pragma once

#include <string>

#include <velmara/HostName.h>
#include <velmara/IPAddress.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// What an SmtpClient points at.
struct VELMARA_EXPORT SmtpClientImpl : virtual public RefImpl {
    /// As of SmtpClient.
    HostName hostname;
    SocketAddress address;
    std::string envelopeFrom;
    std::string authenticationType;
    std::string authenticationCredentials;
};

/// An SMTP client as a mail daemon sees it: the name that it gave, its address, its envelope sender and
/// how it authenticated. It connects to nothing and sends nothing; credentials are held in plain text,
/// as they were set.
///
/// Copies share one record, so a change through one shows in all; a record belongs to one thread at a
/// time. Every operation on a null handle throws Exception with the operation's name (code 1).
class VELMARA_EXPORT SmtpClient {
public:
    /// A null handle.
    SmtpClient();
    /// The record of a client. A host name that begins with "[" (an address literal, RFC 5321) is not
    /// believed: the text of the socket's own address stands in its place. `flag` folds an IPv4-mapped
    /// IPv6 address to IPv4; see SocketAddress.
    SmtpClient(std::string const& hostname, sockaddr const& address, bool flag);
    SmtpClient(SmtpClient const& other);
    SmtpClient& operator=(SmtpClient const& other);
    virtual ~SmtpClient();

    /// True without a record.
    bool isNull() const { return !m_holder || !m_holder->ptr; }

    /// The name that it gave, and the address that it came from.
    HostName const& hostname() const;
    SocketAddress const& address() const;
    /// The address within the socket address.
    IPAddress const& ipAddress() const;
    std::string const& envelopeFrom() const;
    void envelopeFrom(std::string const& address);
    /// The name of the authentication mechanism.
    std::string const& authenticationType() const;
    void authenticationType(std::string const& name);
    std::string const& authenticationCredentials() const;
    void authenticationCredentials(std::string const& text);

private:
    SmtpClientImpl& impl(char const* operation) const;

    RefCounted<SmtpClientImpl>* m_holder = nullptr; // owned
};

} // namespace Velmara
