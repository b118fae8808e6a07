#pragma once

#include <memory>
#include <string>

#include <velmara/MediaOut.h>
#include <velmara/TypeAndValue.h>

namespace Velmara {

/// What a Header points at: name, value and two caches, which are made only when someone asks.
class VELMARA_EXPORT HeaderImpl : public TypeAndValueImpl {
public:
    HeaderImpl();
    /// Null pointers count as empty strings.
    HeaderImpl(char const* name, char const* value);
    HeaderImpl(std::string const& name, std::string const& value);
    ~HeaderImpl() override;

    /// `name` as the handle knows it, made once: later calls give what the first one made.
    std::string const& typeLowerCase(std::string const& name) const;
    std::string const& asString(std::string const& name) const;

private:
    mutable std::unique_ptr<std::string> m_typeLowerCase; // null until asked for
    mutable std::unique_ptr<std::string> m_asString;      // null until asked for
};

/// One header of a message: a name and a value, kept as they stood. Base of the typed headers, which
/// are made from a plain one on demand: `ContentType type(headers.find(ContentType::htype));`.
///
/// Copies share the text and its caches. The caches are filled even through a const handle, so headers
/// that share their text belong to one thread at a time. On a null handle whatever looks at the name
/// or the value throws HeaderException (code 1); a null typed header still knows its class's name.
class VELMARA_EXPORT Header : public TypeAndValue {
public:
    /// A null handle.
    Header();
    Header(char const* name, char const* value);
    Header(std::string const& name, std::string const& value);
    Header(Header const&) = default;
    ~Header() override;

    /// Name and value as they stand; nothing is trimmed or folded.
    std::string const& type() const override;
    std::string const& value() const;
    /// "Name: value", without a line end, as it was at the first call.
    virtual std::string const& asString() const;
    /// A new empty implementation of this class.
    virtual HeaderImpl* newImpl();
    /// A plain header shares the other's text, whatever its name; a typed one takes the value only.
    virtual Header& operator=(Header const& other);
    /// Same name and value, both without regard to case. A null header equals only itself.
    virtual bool operator==(Header const& other) const;
    using TypeAndValue::operator==;

    /// What assignment does, by the object's type() and newImpl(): a class that overrides these two can
    /// build its assignment and its constructor from a header on this.
    void assign(Header const& other);

    /// The name in lower case, made once and kept with the implementation.
    std::string const& typeLowerCase() const;
    /// The value with each line break and the white space behind it taken out; nothing stands in their
    /// place, and a CR before the LF stays. Behind the last break the text ends at a NUL.
    std::string unfolded() const;

protected:
    /// Makes this handle one on a new implementation with that value.
    void create(std::string const& value);
    /// Takes the value of a header of the same name (ASCII case does not count), to be read again from
    /// its text. A null header makes this one null; another name throws Exception "assign" (code 2)
    /// and leaves it null.
    void assignValue(Header const& other);
    /// Takes the name and the value of any header, to be read again from its text: what the other points
    /// at may be of another class. A null header makes this one null.
    void assignNameAndValue(Header const& other);

    /// The implementation, which must be there and be of that class.
    template <class Impl> Impl const& implementation() const { return static_cast<Impl const&>(*get()); }
};

/// Writes `asString()` and gives the medium back.
VELMARA_EXPORT MediaOut& operator<<(MediaOut& out, Header const& header);

} // namespace Velmara
