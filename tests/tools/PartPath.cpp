#include "facts/PartPath.h"

#include <string>

#include <gtest/gtest.h>

#include <velmara/Velmara.h>

namespace VelmaraCommand {
namespace {

using namespace Velmara;

class PartPathTest : public testing::Test {
protected:
    PartView parsed(std::string const& bytes)
    {
        m_in = BufferMediaIn(bytes);
        m_message = Rfc822Msg::parse(m_in);
        return finishedRootOf(*m_message.get());
    }

private:
    MediaIn m_in;
    Ref<Rfc822Msg> m_message;
};

constexpr char mail[] = "Content-Type: multipart/mixed; boundary=a\n\npre\n--a\n\none\n--a\n"
                        "Content-Type: message/rfc822\n\nSubject: x\n\ntwo\n--a\n"
                        "Content-Transfer-Encoding: base64\n\nQUI=\n--a\n\n--a--\npost\n";

TEST_F(PartPathTest, PartsComeInTheOrderOfTheMessage)
{
    std::string parts;
    for (PartView const& view : partsFrom(parsed(mail))) parts += view.path + ' ' + nameOf(view.kind) + '\n';
    EXPECT_EQ("1 multipart\n1.0 preamble\n1.1 leaf\n1.2 message\n1.2.1 leaf\n1.3 leaf\n1.4 leaf\n1.5 epilogue\n",
              parts);
}

TEST_F(PartPathTest, OnlyTextAroundPartsHasNoHeaders)
{
    std::string paths;
    for (PartView const& view : partsFrom(parsed(mail)))
        if (!hasHeaders(view.kind)) paths += view.path + ' ';
    EXPECT_EQ("1.0 1.5 ", paths);
}

TEST_F(PartPathTest, BodiesAreDecodedAndMayBeEmpty)
{
    PartView const root = parsed(mail);
    EXPECT_EQ("AB", decodedBodyOf(*findPart(root, "1.3").part));
    EXPECT_EQ("", decodedBodyOf(*findPart(root, "1.4").part));
    EXPECT_EQ("one\n", decodedBodyOf(*findPart(root, "1.1").part));
}

TEST_F(PartPathTest, APathThatNamesNoPartGivesNone)
{
    PartView const root = parsed(mail);
    EXPECT_EQ(nullptr, findPart(root, "1.6").part);
    EXPECT_EQ(nullptr, findPart(root, "2").part);
    EXPECT_EQ(nullptr, findPart(root, "1.1.1").part);
    EXPECT_EQ(nullptr, findPart(root, "").part);
    EXPECT_EQ("1.2.1", findPart(root, "1.2.1").path);
}

} // namespace
} // namespace VelmaraCommand
