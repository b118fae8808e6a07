#pragma once

#include <memory>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// MD5 (RFC 1321) over the bytes given to `update`, in as many pieces as the caller likes.
///
/// It tells copies of known content apart and nothing more: whoever writes a message can make two
/// contents with the same digest. A copy goes on by itself from where the original stands. An object
/// belongs to one thread at a time.
class VELMARA_EXPORT Md5Hasher {
public:
    /// Of no bytes yet.
    Md5Hasher();
    /// Goes on by itself from where the other stands.
    Md5Hasher(Md5Hasher const& other);
    Md5Hasher& operator=(Md5Hasher const& other);
    ~Md5Hasher();

    /// Null is fine for 0 bytes. The first call behind `finalize` begins a new digest.
    void update(unsigned char const* bytes, unsigned int n);
    /// Makes the digest available. A second call changes nothing.
    void finalize();

    /// The 16 bytes; empty before `finalize` and from the next `update` on.
    std::string digest() const;
    /// The digest as 32 lower-case digits; empty when that is.
    std::string digestAsHexString() const;

private:
    struct State;
    std::unique_ptr<State> m_state; // never null
};

} // namespace Velmara
