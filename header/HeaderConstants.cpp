// The class-wide constants of the headers, all in this one place: they are made before anything else
// that the library makes at load and go last, so tables that are built at load may use them.
#include <velmara/ContentType.h>
#include <velmara/HeaderContainer.h>
#include <velmara/RefHeaderList.h>

#define VELMARA_MADE_FIRST __attribute__((init_priority(101)))

namespace Velmara {

VELMARA_MADE_FIRST std::string const ContentType::htype("Content-Type");

VELMARA_MADE_FIRST Header const HeaderContainerImpl::m_empty;
VELMARA_MADE_FIRST Header const RefHeaderList::m_empty;

} // namespace Velmara
