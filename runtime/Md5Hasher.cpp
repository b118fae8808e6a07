#include <velmara/Md5Hasher.h>

#include <md5.h>

namespace Velmara {

struct Md5Hasher::State {
    State() { MD5Init(&context); }

    MD5_CTX context;    // valid until finalize
    std::string digest; // 16 bytes from finalize on, empty before
};

Md5Hasher::Md5Hasher() : m_state(std::make_unique<State>())
{}

Md5Hasher::Md5Hasher(Md5Hasher const& other) : m_state(std::make_unique<State>(*other.m_state))
{}

Md5Hasher& Md5Hasher::operator=(Md5Hasher const& other)
{
    *m_state = *other.m_state;
    return *this;
}

Md5Hasher::~Md5Hasher() = default;

void Md5Hasher::update(unsigned char const* bytes, unsigned int n)
{
    if (!m_state->digest.empty()) *m_state = State();
    if (n > 0) MD5Update(&m_state->context, bytes, n);
}

void Md5Hasher::finalize()
{
    if (!m_state->digest.empty()) return;
    unsigned char bytes[MD5_DIGEST_LENGTH];
    MD5Final(bytes, &m_state->context);
    m_state->digest.assign(bytes, bytes + sizeof bytes);
}

std::string Md5Hasher::digest() const
{
    return m_state->digest;
}

std::string Md5Hasher::digestAsHexString() const
{
    std::string hex;
    for (char c : m_state->digest) {
        hex += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
        hex += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
    }
    return hex;
}

} // namespace Velmara
