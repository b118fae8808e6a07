#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <velmara/Hasher.h>
#include <velmara/HasherImpl.h>

namespace VelmaraCommand {

/// The signature of one body, with what a person wants to know of how it came about.
class Signing {
public:
    explicit Signing(Velmara::Hasher::DataType type);

    /// Hands over prefixes of the body until the hasher has enough, as a daemon would. `wholeSize` is that
    /// of a body of which only the beginning is at hand.
    void process(std::string_view body, size_t firstRead, size_t wholeSize);

    char const* kind() const;
    bool isText() const;
    unsigned int lookedAt() const { return m_hasher.processedDataLength(); }
    /// How many bytes entered the digest; 0 without one.
    size_t entered() const;
    std::string signature() const { return m_hasher.digestAsHexString(); }
    char const* whyNone() const;
    /// What entered the digest; empty without one.
    std::string extract() const;

private:
    void give(std::string_view prefix, size_t wholeSize);

    Velmara::HasherImpl* m_impl; // owned by the handle
    Velmara::Hasher m_hasher;
};

/// The kinds by name, for a person to choose one.
std::vector<std::string> signingKinds();

/// DataNone for a name that is no kind.
Velmara::Hasher::DataType signingKindOf(std::string const& name);

} // namespace VelmaraCommand
