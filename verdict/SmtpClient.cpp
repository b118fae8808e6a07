#include <velmara/SmtpClient.h>

namespace Velmara {

namespace {

HostName _hostNameOf(std::string const& given, SocketAddress const& address)
{
    bool const isLiteral = !given.empty() && given.front() == '[';
    return HostName(isLiteral ? address.asINET().asString(true) : given, true, false);
}

} // namespace

SmtpClient::SmtpClient() = default;

SmtpClient::SmtpClient(std::string const& hostname, sockaddr const& address, bool flag)
    : m_holder(newRefCounted(new SmtpClientImpl, false))
{
    SmtpClientImpl& client = *m_holder->ptr;
    client.address = SocketAddress(address, flag);
    client.hostname = _hostNameOf(hostname, client.address);
}

SmtpClient::SmtpClient(SmtpClient const& other)
    : m_holder(other.m_holder ? new RefCounted<SmtpClientImpl>(other.m_holder->ptr, true) : nullptr)
{}

SmtpClient& SmtpClient::operator=(SmtpClient const& other)
{
    RefCountedImplCopy(m_holder, other.m_holder);
    return *this;
}

SmtpClient::~SmtpClient()
{
    delete m_holder;
}

SmtpClientImpl& SmtpClient::impl(char const* operation) const
{
    if (isNull()) throw Exception(operation, 1, nullptr, 0);
    return *m_holder->ptr;
}

HostName const& SmtpClient::hostname() const
{
    return impl("hostname").hostname;
}

SocketAddress const& SmtpClient::address() const
{
    return impl("address").address;
}

IPAddress const& SmtpClient::ipAddress() const
{
    return impl("ipAddress").address.asINET();
}

std::string const& SmtpClient::envelopeFrom() const
{
    return impl("envelopeFrom").envelopeFrom;
}

void SmtpClient::envelopeFrom(std::string const& address)
{
    impl("envelopeFrom").envelopeFrom = address;
}

std::string const& SmtpClient::authenticationType() const
{
    return impl("authenticationType").authenticationType;
}

void SmtpClient::authenticationType(std::string const& name)
{
    impl("authenticationType").authenticationType = name;
}

std::string const& SmtpClient::authenticationCredentials() const
{
    return impl("authenticationCredentials").authenticationCredentials;
}

void SmtpClient::authenticationCredentials(std::string const& text)
{
    impl("authenticationCredentials").authenticationCredentials = text;
}

} // namespace Velmara
