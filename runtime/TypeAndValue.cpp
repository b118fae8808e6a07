#include <velmara/TypeAndValue.h>

namespace Velmara {

TypeAndValueImpl::TypeAndValueImpl() = default;

TypeAndValueImpl::TypeAndValueImpl(char const* type, char const* value)
    : m_type(type ? type : ""), m_value(value ? value : "")
{}

TypeAndValueImpl::TypeAndValueImpl(std::string const& type, std::string const& value) : m_type(type), m_value(value)
{}

TypeAndValueImpl::~TypeAndValueImpl() = default;

bool TypeAndValueImpl::operator==(TypeAndValueImpl const& other) const
{
    return m_type == other.m_type && m_value == other.m_value;
}

TypeAndValue::TypeAndValue() = default;

TypeAndValue::TypeAndValue(std::string const& type, std::string const& value)
    : Ref(new TypeAndValueImpl(type, value), false)
{}

TypeAndValue::TypeAndValue(TypeAndValueImpl* impl, bool addRef) : Ref(impl, addRef)
{}

TypeAndValue::~TypeAndValue() = default;

std::string const& TypeAndValue::type() const
{
    if (isNull()) throw Exception("type", 1, "TypeAndValue", __LINE__);
    return get()->type();
}

std::string const& TypeAndValue::value() const
{
    if (isNull()) throw Exception("value", 1, "TypeAndValue", __LINE__);
    return get()->value();
}

bool TypeAndValue::operator==(TypeAndValue const& other) const
{
    if (isNull() || other.isNull()) return isNull() && other.isNull();
    return *get() == *other.get();
}

} // namespace Velmara
