#include <velmara/Installation.h>

#include <gmock/gmock.h>
#include <libxml/xmlversion.h>
#include <unicode/uvernum.h>

namespace Velmara {
namespace {

using testing::EndsWith;
using testing::MatchesRegex;

TEST(Installation, VersionIsThatOfTheProject)
{
    EXPECT_THAT(Installation::version(), MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(Installation, TellsTheLibrariesThatTheProcessRunsWith)
{
    // Where it was built and where it runs is one place here.
    EXPECT_EQ(U_ICU_VERSION, Installation::icuVersion());
    EXPECT_EQ(LIBXML_DOTTED_VERSION, Installation::libxml2Version());
}

TEST(Installation, PathsAreTheFixedOnesBelowTheRootOfTheBuild)
{
    EXPECT_THAT(Installation::typeDatabase(), EndsWith("/var/spool/etc/shared_mime_info.xml"));
    EXPECT_THAT(Installation::magicFile(), EndsWith("/panelweb/antispam/magic/magic.vmara"));
    EXPECT_THAT(Installation::wordDirectory(), EndsWith("/var/spool/etc/dict"));
}

} // namespace
} // namespace Velmara
