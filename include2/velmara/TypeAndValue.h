#pragma once

#include <string>

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// A name ("type") and a value; the base of all header implementations.
class VELMARA_EXPORT TypeAndValueImpl : virtual public RefImpl {
public:
    TypeAndValueImpl();
    /// Null pointers count as empty strings.
    TypeAndValueImpl(char const* type, char const* value);
    TypeAndValueImpl(std::string const& type, std::string const& value);
    TypeAndValueImpl(TypeAndValueImpl const&) = default;
    TypeAndValueImpl& operator=(TypeAndValueImpl const&) = default;
    ~TypeAndValueImpl() override;

    /// Equal type and value, to the byte.
    virtual bool operator==(TypeAndValueImpl const& other) const;

    /// As it stands; nothing is trimmed or folded.
    std::string const& type() const { return m_type; }
    std::string const& value() const { return m_value; }
    void type(std::string const& text) { m_type = text; }
    void value(std::string const& text) { m_value = text; }

protected:
    /// As the handle gives it.
    std::string m_type;
    mutable std::string m_value; // a lazy parse may mend it: see ContentType
};

/// Handle on a pair of name and value, such as a parameter of a header. Copies share the pair.
class VELMARA_EXPORT TypeAndValue : public Ref<TypeAndValueImpl> {
public:
    /// A null handle.
    TypeAndValue();
    TypeAndValue(std::string const& type, std::string const& value);
    /// A new object is wrapped with `addRef` false.
    TypeAndValue(TypeAndValueImpl* impl, bool addRef);
    TypeAndValue(TypeAndValue const&) = default;
    TypeAndValue& operator=(TypeAndValue const&) = default;
    ~TypeAndValue() override;

    /// On a null handle these throw Exception with the operation's name (code 1).
    virtual std::string const& type() const;
    /// Equal type and value, or both null.
    virtual bool operator==(TypeAndValue const& other) const;
    std::string const& value() const;
};

} // namespace Velmara
