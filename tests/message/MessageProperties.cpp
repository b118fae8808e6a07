#include <velmara/MessageProperties.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

namespace Velmara {
namespace {

class Mark : public MPartAttribute {
public:
    Type type() const override { return TypeText; }
};

Ref<MPartAttribute> newMark()
{
    return Ref<MPartAttribute>(new Mark, false);
}

template <size_t n> bool allZero(unsigned char const (&bytes)[n])
{
    return std::all_of(bytes, bytes + n, [](unsigned char byte) { return byte == 0; });
}

TEST(MessageProperties, ANewRecordHasAListOfHeadersAndNothingElse)
{
    RefMessageProperties const record(true);
    EXPECT_TRUE(record->sender.isNull());
    EXPECT_TRUE(record->recipient.isNull());
    ASSERT_FALSE(record->headers.isNull());
    EXPECT_TRUE(record->headers.headers().empty());
    EXPECT_EQ(0u, record->size);
    EXPECT_TRUE(record->received.records.empty());
    EXPECT_TRUE(record->greyListKey.empty());
    EXPECT_TRUE(record->attributes.attributes().empty());
    EXPECT_TRUE(record->message.isNull());
}

TEST(MessageProperties, AllBytesOfANewRecordAreZero)
{
    RefMessageProperties const record(true);
    EXPECT_EQ(5u, sizeof record->flags);
    EXPECT_EQ(20u, sizeof record->values);
    EXPECT_EQ(10u, sizeof record->newsLetter.values);
    EXPECT_EQ(8u, sizeof record->dmarc.values);
    EXPECT_TRUE(allZero(record->flags));
    EXPECT_TRUE(allZero(record->values));
    EXPECT_TRUE(allZero(record->received.marks));
    EXPECT_TRUE(allZero(record->newsLetter.values));
    EXPECT_TRUE(allZero(record->dmarc.values));
}

TEST(MessageProperties, TheSpfResultOfANewRecordIsEmpty)
{
    SPFStatus const spf;
    EXPECT_EQ(0, spf.result);
    EXPECT_EQ(0, spf.reason);
    EXPECT_EQ("", spf.domain);
    EXPECT_TRUE(spf.address.isNull());
    EXPECT_EQ(8u, sizeof spf.result + sizeof spf.reason);
}

TEST(MessageProperties, EachRecordHasAListOfItsOwn)
{
    RefMessageProperties const first(true), second(true);
    first->headers.add(Header("A", "1"));
    EXPECT_TRUE(second->headers.headers().empty());
}

TEST(MessageProperties, HandlesShareTheRecord)
{
    RefMessageProperties const record(true);
    RefMessageProperties const copy(record);
    RefMessageProperties assigned(false);
    assigned = record;
    record->size = 7;
    EXPECT_EQ(7u, copy->size);
    EXPECT_EQ(7u, assigned->size);
}

TEST(MessageProperties, ANullHandleThrows)
{
    RefMessageProperties record(false);
    EXPECT_TRUE(record.isNull());
    try {
        record->size = 1;
        ADD_FAILURE() << "nothing thrown";
    } catch (Exception const& refusal) {
        EXPECT_EQ("operator->", refusal.message());
        EXPECT_EQ(1, refusal.code());
    }
}

TEST(MessageProperties, CannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible<MessageProperties>::value);
    EXPECT_TRUE((std::is_base_of<NonCopyable, MessageProperties>::value));
    EXPECT_TRUE(std::has_virtual_destructor<NewsLetterStatus>::value);
    EXPECT_TRUE(std::has_virtual_destructor<DMARCStatus>::value);
}

TEST(MessageProperties, KeepsThePartAlive)
{
    Ref<MimePart> part;
    {
        RefMessageProperties const record(true);
        record->message = Ref<MimePart>(new MimePreamble(MediaIn()), false);
        part = record->message;
        EXPECT_EQ(2, part->count.load());
    }
    EXPECT_EQ(1, part->count.load());
}

TEST(MessageAttributeContainer, AMissingNameGivesNull)
{
    MessageAttributeContainer const attributes;
    EXPECT_EQ(nullptr, attributes.attribute("a"));
    EXPECT_TRUE(attributes.find("a").isNull());
}

TEST(MessageAttributeContainer, KeepsTheLastOfAName)
{
    MessageAttributeContainer attributes;
    Ref<MPartAttribute> const first = newMark(), second = newMark();
    attributes.attribute("a", first);
    EXPECT_EQ(first.get(), attributes.attribute("a"));
    attributes.attribute("a", second);
    EXPECT_EQ(second.get(), attributes.attribute("a"));
    EXPECT_EQ(second.get(), attributes.find("a").get());
    EXPECT_EQ(1u, attributes.attributes().size());
    EXPECT_EQ(1, first->count.load()) << "the old handle is gone";
}

TEST(MessageAttributeContainer, NamesHaveCase)
{
    MessageAttributeContainer attributes;
    attributes.attribute("a", newMark());
    EXPECT_EQ(nullptr, attributes.attribute("A"));
    attributes.attribute("A", newMark());
    EXPECT_EQ(2u, attributes.attributes().size());
}

TEST(MessageAttributeContainer, ANullHandleIsAnEntryWithoutAnObject)
{
    MessageAttributeContainer attributes;
    attributes.attribute("a", Ref<MPartAttribute>());
    EXPECT_EQ(nullptr, attributes.attribute("a"));
    EXPECT_EQ(1u, attributes.attributes().count("a"));
}

} // namespace
} // namespace Velmara
