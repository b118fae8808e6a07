#include <velmara/Md5Hasher.h>

#include <md5.h>

namespace Velmara {

struct Md5Hasher::State {
    State() { MD5Init(&context); }

    MD5_CTX context;                              // valid until finalize
    unsigned char digest[MD5_DIGEST_LENGTH] = {}; // valid once finished
    bool finished = false;
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
    if (m_state->finished) *m_state = State();
    if (n > 0) MD5Update(&m_state->context, bytes, n);
}

void Md5Hasher::finalize()
{
    if (m_state->finished) return;
    MD5Final(m_state->digest, &m_state->context);
    m_state->finished = true;
}

std::string Md5Hasher::digest() const
{
    if (!m_state->finished) return std::string();
    return std::string(m_state->digest, m_state->digest + sizeof m_state->digest);
}

std::string Md5Hasher::digestAsHexString() const
{
    if (!m_state->finished) return std::string();
    std::string hex;
    hex.reserve(2 * sizeof m_state->digest);
    for (unsigned char c : m_state->digest) {
        hex += "0123456789abcdef"[c >> 4];
        hex += "0123456789abcdef"[c & 15];
    }
    return hex;
}

} // namespace Velmara
