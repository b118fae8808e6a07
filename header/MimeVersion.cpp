#include <velmara/MimeVersion.h>

namespace Velmara {

MimeVersionImpl::MimeVersionImpl()
{
    type(MimeVersion::htype);
}

MimeVersionImpl::~MimeVersionImpl() = default;

bool MimeVersionImpl::operator==(TypeAndValueImpl const&) const
{
    return false;
}

std::string MimeVersionImpl::version() const
{
    return m_value.substr(0, 3);
}

std::string MimeVersion::version() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().version();
}

} // namespace Velmara
