#include <velmara/HeaderWithEmailAddress.h>
#include <velmara/Rfc2369ListHeader.h>

/// Made at the first call, so that headers can be made while the program is being loaded.
#define VELMARA_HEADER_NAME(function, text)                                                                            \
    std::string const& function()                                                                                      \
    {                                                                                                                  \
        static std::string const name(text);                                                                           \
        return name;                                                                                                   \
    }

namespace Velmara {

VELMARA_HEADER_NAME(fromType, "From")
VELMARA_HEADER_NAME(replyToType, "Reply-To")
VELMARA_HEADER_NAME(inReplyToType, "In-Reply-To")
VELMARA_HEADER_NAME(returnPathType, "Return-Path")
VELMARA_HEADER_NAME(messageID, "Message-ID")
VELMARA_HEADER_NAME(toType, "To")
VELMARA_HEADER_NAME(ccType, "Cc")
VELMARA_HEADER_NAME(referencesType, "References")
VELMARA_HEADER_NAME(listHelpType, "List-Help")
VELMARA_HEADER_NAME(listPostType, "List-Post")
VELMARA_HEADER_NAME(listOwnerType, "List-Owner")
VELMARA_HEADER_NAME(listArchiveType, "List-Archive")
VELMARA_HEADER_NAME(listSubscribeType, "List-Subscribe")
VELMARA_HEADER_NAME(listUnsubscribeType, "List-Unsubscribe")

} // namespace Velmara
