// The class-wide constants of the headers, all in this one place: they are made before anything else
// that the library makes at load and go last, so tables that are built at load may use them.
#include <velmara/ContentDisposition.h>
#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/HeaderContainer.h>
#include <velmara/ListId.h>
#include <velmara/MimeVersion.h>
#include <velmara/Received.h>
#include <velmara/RefHeaderList.h>
#include <velmara/References.h>

#define VELMARA_MADE_FIRST __attribute__((init_priority(101)))

namespace Velmara {

VELMARA_MADE_FIRST std::string const ContentType::htype("Content-Type");
VELMARA_MADE_FIRST std::string const ContentEncoding::htype("Content-Transfer-Encoding");
VELMARA_MADE_FIRST std::string const ContentDisposition::htype("Content-Disposition");
VELMARA_MADE_FIRST std::string const MimeVersion::htype("MIME-Version");
VELMARA_MADE_FIRST std::string const Received::htype("Received");
VELMARA_MADE_FIRST std::string const References::htype("References");
VELMARA_MADE_FIRST std::string const ListId::htype("List-Id");

VELMARA_MADE_FIRST Header const HeaderContainerImpl::m_empty;
VELMARA_MADE_FIRST Header const RefHeaderList::m_empty;

} // namespace Velmara
