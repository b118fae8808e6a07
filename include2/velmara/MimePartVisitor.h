#pragma once

#include <velmara/MediaIn.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class MimePart;
class MimeSkippedPart;
class MimeRfc822Msg;
class MimePreamble;
class MimeEpilogue;
class MimeRfc822MPart;
class MimeRfc822SPart;

/// What a walk over a message calls: override what you care for.
///
/// The tree calls the `visit...` operations only, depth first and in the order of the message. Who
/// drives the walk calls the other three, if the visitor wants them:
///
///     visitor.init(message->root());
///     message->root()->visit(&visitor);
///     visitor.done();
///
/// A body that is read while its part is visited is read while it is parsed, once and in order. A
/// visitor that comes back to it later has to wait until the walk has ended.
class VELMARA_EXPORT MimePartVisitor : virtual public RefImpl {
public:
    MimePartVisitor();
    ~MimePartVisitor() override;

    /// For the use of who drives the walk; the defaults do nothing.
    virtual void source(MediaIn& in);
    virtual void init(MimePart* root);

    /// A part that has no children; the defaults do nothing.
    virtual void visitSkippedPart(MimeSkippedPart& part);
    virtual void visitRfc822Msg(MimeRfc822Msg& part);
    virtual void visitPreamble(MimePreamble& part);
    virtual void visitEpilogue(MimeEpilogue& part);
    /// Whether to go into the children, or the nested message; the default says yes. What nobody goes
    /// into is not parsed, only run over.
    virtual bool visitMPart(MimeRfc822MPart& part);
    virtual bool visitSPart(MimeRfc822SPart& part);

    /// When the walk has ended; the default does nothing.
    virtual void done();
};

} // namespace Velmara
