#include <velmara/Header.h>

#include <typeinfo>

#include <velmara/StringOperations.h>
#include <velmara/TypedHeader.h>

#include "runtime/Ascii.h"

namespace Velmara {

HeaderImpl::HeaderImpl() = default;

HeaderImpl::HeaderImpl(char const* name, char const* value) : TypeAndValueImpl(name, value)
{}

HeaderImpl::HeaderImpl(std::string const& name, std::string const& value) : TypeAndValueImpl(name, value)
{}

HeaderImpl::~HeaderImpl() = default;

std::string const& HeaderImpl::typeLowerCase(std::string const& name) const
{
    if (!m_typeLowerCase) {
        auto lowered = std::make_unique<std::string>();
        copyStringToLower(name, *lowered, 0, name.size());
        m_typeLowerCase = std::move(lowered);
    }
    return *m_typeLowerCase;
}

std::string const& HeaderImpl::asString(std::string const& name) const
{
    if (!m_asString) {
        auto text = std::make_unique<std::string>();
        text->reserve(name.size() + 2 + value().size());
        text->append(name).append(": ").append(value());
        m_asString = std::move(text);
    }
    return *m_asString;
}

ParsedHeaderImpl::~ParsedHeaderImpl() = default;

Header::Header() = default;

Header::Header(char const* name, char const* value) : TypeAndValue(new HeaderImpl(name, value), false)
{}

Header::Header(std::string const& name, std::string const& value) : TypeAndValue(new HeaderImpl(name, value), false)
{}

Header::~Header() = default;

std::string const& Header::type() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return get()->type();
}

std::string const& Header::value() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return get()->value();
}

std::string const& Header::asString() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return implementation<HeaderImpl>().asString(type());
}

HeaderImpl* Header::newImpl()
{
    return new HeaderImpl;
}

Header& Header::operator=(Header const& other)
{
    TypeAndValue::operator=(other);
    return *this;
}

bool Header::operator==(Header const& other) const
{
    if (this == &other) return true;
    if (isNull() || other.isNull()) return false;
    return get() == other.get() ||
           (stringCompareNoCase(type(), other.type()) && stringCompareNoCase(value(), other.value()));
}

// Classes build their assignment on this, so this must not be built on theirs.
void Header::assign(Header const& other)
{
    if (get() == other.get()) return;
    release();
    if (other.isNull()) return;
    create(std::string());
    TypeAndValueImpl const& made = *get();
    bool const namedByClass = &type() != &made.type(); // any other name lies in the text alone
    bool const plain = typeid(made) == typeid(HeaderImpl);
    release();
    if (namedByClass)
        assignValue(other);
    else if (plain)
        TypeAndValue::operator=(other);
    else
        assignNameAndValue(other);
}

std::string const& Header::typeLowerCase() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return implementation<HeaderImpl>().typeLowerCase(type());
}

std::string Header::unfolded() const
{
    if (isNull()) throw HeaderException(__LINE__);
    std::string const& text = value();
    size_t lineEnd = text.find('\n');
    if (lineEnd == std::string::npos) return text;

    std::string result;
    result.reserve(text.size());
    for (size_t start = 0;;) {
        result.append(text, start, lineEnd - start);
        start = text.find_first_not_of("\r\n\t ", lineEnd);
        if (start == std::string::npos) return result;
        lineEnd = text.find('\n', start);
        if (lineEnd == std::string::npos) return result.append(text.c_str() + start);
    }
}

void Header::create(std::string const& value)
{
    std::unique_ptr<HeaderImpl> made(newImpl());
    made->value(value);
    TypeAndValue::operator=(TypeAndValue(made.release(), false));
}

void Header::assignValue(Header const& other)
{
    if (get() == other.get()) return;
    release();
    if (other.isNull()) return;
    if (!stringCompareNoCase(other.type(), type())) throw Exception("assign", 2, nullptr, 0);
    create(other.value());
}

void Header::assignNameAndValue(Header const& other)
{
    if (get() == other.get()) return;
    release();
    if (other.isNull()) return;
    std::unique_ptr<HeaderImpl> made(newImpl());
    made->type(other.type());
    made->value(other.value());
    TypeAndValue::operator=(TypeAndValue(made.release(), false));
}

MediaOut& operator<<(MediaOut& out, Header const& header)
{
    return out << header.asString();
}

} // namespace Velmara
