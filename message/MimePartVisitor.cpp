#include <velmara/MimePartVisitor.h>

namespace Velmara {

MimePartVisitor::MimePartVisitor() = default;

MimePartVisitor::~MimePartVisitor() = default;

void MimePartVisitor::source(MediaIn&)
{}

void MimePartVisitor::init(MimePart*)
{}

void MimePartVisitor::visitSkippedPart(MimeSkippedPart&)
{}

void MimePartVisitor::visitRfc822Msg(MimeRfc822Msg&)
{}

void MimePartVisitor::visitPreamble(MimePreamble&)
{}

void MimePartVisitor::visitEpilogue(MimeEpilogue&)
{}

bool MimePartVisitor::visitMPart(MimeRfc822MPart&)
{
    return true;
}

bool MimePartVisitor::visitSPart(MimeRfc822SPart&)
{
    return true;
}

void MimePartVisitor::done()
{}

} // namespace Velmara
