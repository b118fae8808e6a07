#pragma once

#include <velmara/Header.h>

namespace Velmara {

/// Base of an implementation that reads its value once, at the first question. A subclass reads the
/// value in `read`, into mutable fields, and calls `parse` in each accessor.
class VELMARA_EXPORT ParsedHeaderImpl : public HeaderImpl {
public:
    using HeaderImpl::HeaderImpl;
    ~ParsedHeaderImpl() override;

    /// Reads the value unless that has been done.
    void parse() const
    {
        if (m_parsed) return;
        read();
        m_parsed = true;
    }

private:
    virtual void read() const = 0;

    mutable bool m_parsed = false;
};

/// What all typed headers have in common: how they are made, assigned and named. A typed header is
///
///     class Lines : public TypedHeader<Lines, LinesImpl> {
///     public:
///         static std::string const htype;
///         Lines() = default;
///         Lines(std::string const& value) : TypedHeader(value) {}
///         Lines(Header const& other) : TypedHeader(other) {}
///         using TypedHeader::operator=;
///         // and its accessors, each with a null test of its own
///     };
///
/// An assignment from the same class shares the implementation (it is the class's own copy assignment);
/// one from any other header takes the value and reads it anew. The constructor of `Impl` sets the name.
/// Headers that differ by their name alone have their accessors in a class `Base` between Header and
/// this one.
template <class Handle, class Impl, class Base = Header> class VELMARA_EXPORT TypedHeader : public Base {
public:
    /// The class-wide name, also of a null handle.
    std::string const& type() const override { return Handle::htype; }
    /// One that has the name and no value.
    HeaderImpl* newImpl() override { return new Impl; }
    /// Takes the value of a header of the same name: see Header::assignValue.
    Header& operator=(Header const& other) override
    {
        this->assignValue(other);
        return *this;
    }
    /// Shares the implementation.
    virtual Handle& operator=(Handle const& other) = 0;

protected:
    TypedHeader() = default;
    /// An empty value leaves the handle null.
    explicit TypedHeader(std::string const& value)
    {
        if (!value.empty()) this->create(value);
    }
    /// From a plain header: the text is read anew.
    explicit TypedHeader(Header const& other) { this->assignValue(other); }
    TypedHeader(TypedHeader const&) = default;
    TypedHeader& operator=(TypedHeader const&) = default;

    /// What this handle points at; it must not be null.
    Impl const& impl() const { return this->template implementation<Impl>(); }
};

} // namespace Velmara
