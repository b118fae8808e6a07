#include <velmara/HtmlDocVisitor.h>

namespace Velmara {

HtmlDocVisitor::~HtmlDocVisitor() = default;
void HtmlDocVisitor::text(_xmlNode const*)
{}
void HtmlDocVisitor::meta(_xmlNode const*)
{}
void HtmlDocVisitor::node(_xmlNode const*)
{}
void HtmlDocVisitor::href(_xmlNode const*)
{}
void HtmlDocVisitor::image(_xmlNode const*)
{}
void HtmlDocVisitor::form(_xmlNode const*)
{}
void HtmlDocVisitor::ignore(_xmlNode const*)
{}
void HtmlDocVisitor::background(_xmlNode const*)
{}
void HtmlDocVisitor::tags(_xmlNode const*)
{}
void HtmlDocVisitor::cdata(_xmlNode const*)
{}
void HtmlDocVisitor::comment(_xmlNode const*)
{}
void HtmlDocVisitor::endTag(_xmlNode const*)
{}
void HtmlDocVisitor::done()
{}

} // namespace Velmara
