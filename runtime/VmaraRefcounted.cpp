#include <velmara/VmaraRefcounted.h>

namespace Velmara {

RefImpl::~RefImpl() = default;

} // namespace Velmara
