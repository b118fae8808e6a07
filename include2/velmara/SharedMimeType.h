#pragma once

#include <set>
#include <string>
#include <vector>

#include <velmara/Export.h>

namespace Velmara {

/// One type of a shared-mime-info database as it was read: plain data, unchanged afterwards.
struct VELMARA_EXPORT SharedMimeType {
    /// A pattern for names: of those that fit, the heaviest count, and of these the longest.
    struct GlobPattern {
        std::string pattern; ///< "" matches no name
        /// As the database gives it, or its default.
        int weight = 50;
        bool ignoreCase = true;
    };

    /// A set of tests on the content.
    struct Magic {
        /// A test on the content, and tests nested in it.
        struct Match {
            /// How the bytes of a value stand in the content.
            enum Type { String, Big16, Big32, Host16, Host32, Little16, Little32, Byte };

            /// What must be found, as bytes in the order of the content. In all types but String a
            /// byte of value 0 stands here as the letter "X", and likewise in a masked String: the
            /// tests put an "X" in the place of each 0 byte of the content as well, except that a Byte
            /// without a mask is compared as it stands.
            std::string value;
            int type = String;
            /// First and last place that is tried, from the start of the content.
            int offsetStart = 0;
            int offsetEnd = 0;
            bool hasMask = false;
            /// Hexadecimal digits, two to a byte, in the order of the content; a character that is no
            /// such digit counts as 0.
            std::string mask;
            /// If there are any, one of them must hold too.
            std::vector<Match> matches;
        };

        std::vector<Match> matches; ///< any one of them speaks for the type
        /// The higher counts.
        int priority = 50;
    };

    /// Its name, "image/png".
    std::string mimeType;
    std::set<std::string> subClassOf; ///< the types that this one is a kind of
    /// In the order of the database.
    std::vector<Magic> magics;
    std::vector<GlobPattern> globs;
};

/// How the type of a content and a name came about. What it points at belongs to the database.
struct VELMARA_EXPORT MimeTypeExplanation {
    /// A pattern that fits the name.
    struct GlobHit {
        /// The type that it stands for, and the pattern itself.
        SharedMimeType const* type;
        SharedMimeType::GlobPattern const* glob;
        bool kept; ///< of the highest weight and, among those, of the longest pattern
    };
    /// A test that holds for the content.
    struct MagicHit {
        /// The type that it stands for, and the test itself.
        SharedMimeType const* type;
        SharedMimeType::Magic const* magic;
        SharedMimeType::Magic::Match const* match;
    };
    /// What decided.
    enum Reason {
        EmptyInput,           ///< neither a name nor two bytes
        NothingMatched,       ///< a name that fits no pattern, and less than two bytes
        LooksLikeText,        ///< nothing fits, and the first bytes are text
        LooksBinary,          ///< nothing fits, and the first bytes are no text
        NameAlone,            ///< no test holds: the kept pattern that comes first in the database
        ContentAlone,         ///< no pattern fits: the first test of the highest priority
        ContentOverName,      ///< both: the content wins
        NameWithinContainer,  ///< the content is a container, and the name a kind of it
        ContainerWithoutName, ///< the content is a container, and no kept pattern is a kind of it
    };

    std::vector<GlobHit> globs;   ///< in the order of the database
    std::vector<MagicHit> magics; ///< in the order of the database
    /// What decided.
    Reason reason;
    std::string const* mimeType; ///< the answer, never null
};

} // namespace Velmara
