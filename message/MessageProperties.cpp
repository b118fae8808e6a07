#include <velmara/MessageProperties.h>

namespace Velmara {

NewsLetterStatus::NewsLetterStatus() = default;

NewsLetterStatus::~NewsLetterStatus() = default;

DMARCStatus::DMARCStatus() = default;

DMARCStatus::~DMARCStatus() = default;

MPartAttribute* MessageAttributeContainer::attribute(std::string const& name) const
{
    return find(name).get(); // the map keeps the object
}

Ref<MPartAttribute> MessageAttributeContainer::find(std::string const& name) const
{
    auto const found = m_attributes.find(name);
    return found == m_attributes.end() ? Ref<MPartAttribute>() : found->second;
}

void MessageAttributeContainer::attribute(std::string const& name, Ref<MPartAttribute> const& value)
{
    m_attributes[name] = value;
}

MessageProperties::MessageProperties() = default;

MessageProperties::~MessageProperties() = default;

RefMessageProperties::RefMessageProperties(bool create)
{
    if (create) holder = newRefCounted(new MessageProperties, false);
}

RefMessageProperties::~RefMessageProperties() = default;

} // namespace Velmara
