// What all typed headers have in common, tested on each of them.
#include <velmara/TypedHeader.h>

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include <velmara/ContentDisposition.h>
#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/HeaderContainer.h>
#include <velmara/HeaderWithEmailAddress.h>
#include <velmara/ListId.h>
#include <velmara/MimeVersion.h>
#include <velmara/Received.h>
#include <velmara/References.h>
#include <velmara/Rfc2369ListHeader.h>
#include <velmara/StringOperations.h>

#include "support/Refusals.h"

namespace Velmara {
namespace {

template <class T> class TypedHeaders : public testing::Test {};

using All = testing::Types<ContentType, ContentEncoding, ContentDisposition, MimeVersion, Received, References, ListId,
                           HeaderFrom, HeaderMessageId, HeaderTo, HeaderReferences, HeaderListHelp>;
TYPED_TEST_SUITE(TypedHeaders, All);

TYPED_TEST(TypedHeaders, KnowTheirNameEvenWhenNull)
{
    EXPECT_EQ(&TypeParam::htype, &TypeParam().type());
    EXPECT_TRUE(TypeParam().isNull());
}

TYPED_TEST(TypedHeaders, HoldAValueButNotAnEmptyOne)
{
    TypeParam header("value;");
    EXPECT_EQ("value;", header.value());
    EXPECT_EQ(TypeParam::htype + ": value;", header.asString());
    EXPECT_TRUE(TypeParam("").isNull());
}

TYPED_TEST(TypedHeaders, TakeTheValueOfAPlainHeaderOfTheirNameInAnyCase)
{
    Header plain(stringToLower(TypeParam::htype), "value;");
    TypeParam made(plain), assigned, taken;
    assigned = plain;
    taken.assign(plain);
    for (TypeParam const& typed : {made, assigned, taken}) {
        EXPECT_EQ("value;", typed.value());
        EXPECT_NE(&plain.value(), &typed.value());
        EXPECT_EQ(TypeParam::htype, Header(typed).type());
    }
}

TYPED_TEST(TypedHeaders, TakeAnEmptyValueFromAHeader)
{
    TypeParam header(Header(TypeParam::htype, ""));
    ASSERT_FALSE(header.isNull());
    EXPECT_EQ("", header.value());
}

TYPED_TEST(TypedHeaders, OfAMissingHeaderAreNull)
{
    HeaderContainer const headers;
    TypeParam header(headers.find(TypeParam::htype));
    EXPECT_TRUE(header.isNull());
    lineOfRefusal([&] { header.value(); });
}

TYPED_TEST(TypedHeaders, AreNullAfterAnAssignmentFromANullHeader)
{
    TypeParam header("value;");
    header = Header();
    EXPECT_TRUE(header.isNull());
}

TYPED_TEST(TypedHeaders, RefuseAHeaderOfAnotherNameAndLoseTheirValue)
{
    TypeParam header("value;");
    try {
        header = Header("Subject", "x");
        FAIL();
    } catch (Exception const& refusal) {
        EXPECT_EQ("assign", refusal.message());
        EXPECT_EQ(2, refusal.code());
        EXPECT_EQ("", refusal.fileName());
        EXPECT_EQ(0u, refusal.lineNumber());
    }
    EXPECT_TRUE(header.isNull());
    EXPECT_THROW(TypeParam{Header("Subject", "x")}, Exception);
}

TYPED_TEST(TypedHeaders, CopiesShareAPlainAssignmentDoesNot)
{
    TypeParam header("value;");
    TypeParam copy(header), assigned;
    assigned = header;
    EXPECT_EQ(&header.value(), &copy.value());
    EXPECT_EQ(&header.value(), &assigned.value());

    TypeParam read;
    read = static_cast<Header const&>(header);
    EXPECT_NE(&header.value(), &read.value());
    EXPECT_EQ(header.value(), read.value());
}

TYPED_TEST(TypedHeaders, AssignmentFromTheSameTextChangesNothing)
{
    TypeParam header("value;");
    std::string const* value = &header.value();
    Header const shared(header);
    header = shared;
    EXPECT_EQ(value, &header.value());
    header.assign(header);
    EXPECT_EQ(value, &header.value());
}

TYPED_TEST(TypedHeaders, AssignThroughTheBaseAsThemselves)
{
    TypeParam header("value;");
    Header& base = header;
    base = Header(TypeParam::htype, "other");
    EXPECT_EQ("other", header.value());
    EXPECT_THROW(base = Header("Subject", "x"), Exception);
    EXPECT_TRUE(header.isNull());
}

TYPED_TEST(TypedHeaders, AssignAStringAsAValue)
{
    TypeParam header;
    header = std::string("value;");
    EXPECT_EQ("value;", header.value());
}

TYPED_TEST(TypedHeaders, MakeImplementationsOfTheirName)
{
    Ref<TypeAndValueImpl> made(TypeParam().newImpl(), false);
    EXPECT_EQ(TypeParam::htype, made->type());
    EXPECT_EQ("", made->value());
}

TYPED_TEST(TypedHeaders, InAListKeepTheirNameAndText)
{
    HeaderContainer headers;
    headers.add(TypeParam("value;"), false);
    EXPECT_EQ(TypeParam::htype, headers.find(TypeParam::htype).type());
    EXPECT_EQ("value;", headers.find(TypeParam::htype).value());
}

/// The place of a virtual operation in its class's table (the C++ ABI of the platform).
template <class Operation> size_t slotOf(Operation operation)
{
    size_t offset;
    static_assert(sizeof operation >= sizeof offset);
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

// Programs are linked against the order of the virtual operations: a new one goes behind these.
TYPED_TEST(TypedHeaders, KeepTheOrderOfTheirVirtualOperations)
{
    using Type = std::string const& (TypeAndValue::*)() const;
    using EqualsPair = bool (TypeAndValue::*)(TypeAndValue const&) const;
    using AssignHeader = Header& (Header::*)(Header const&);
    using EqualsHeader = bool (Header::*)(Header const&) const;
    using AssignSame = TypeParam& (TypeParam::*)(TypeParam const&);
    EXPECT_EQ(2u, slotOf(static_cast<Type>(&TypeAndValue::type))); // behind the destructor's two
    EXPECT_EQ(3u, slotOf(static_cast<EqualsPair>(&TypeAndValue::operator==)));
    EXPECT_EQ(4u, slotOf(&Header::asString));
    EXPECT_EQ(5u, slotOf(&Header::newImpl));
    EXPECT_EQ(6u, slotOf(static_cast<AssignHeader>(&Header::operator=)));
    EXPECT_EQ(7u, slotOf(static_cast<EqualsHeader>(&Header::operator==)));
    EXPECT_EQ(8u, slotOf(static_cast<AssignSame>(&TypeParam::operator=)));
    EXPECT_EQ(2 * sizeof(void*), sizeof(TypeParam));
}

// Made while the program is still being loaded, when the names must be there already.
ContentType const madeAtLoad(Header("content-type", "text/html"));
HeaderTo const addressedAtLoad(Header("to", "a@a.example"));

TEST(TypedHeader, CanBeMadeAtLoad)
{
    EXPECT_EQ("Content-Type: text/html", madeAtLoad.asString());
    EXPECT_EQ("To: a@a.example", addressedAtLoad.asString());
}

TEST(TypedHeader, NamesAreThese)
{
    EXPECT_EQ("MIME-Version", MimeVersion::htype);
    EXPECT_EQ("Content-Type", ContentType::htype);
    EXPECT_EQ("Content-Transfer-Encoding", ContentEncoding::htype);
    EXPECT_EQ("Content-Disposition", ContentDisposition::htype);
    EXPECT_EQ("Received", Received::htype);
    EXPECT_EQ("References", References::htype);
    EXPECT_EQ("List-Id", ListId::htype);
    EXPECT_EQ("From", HeaderFrom::htype);
    EXPECT_EQ("Reply-To", HeaderReplyTo::htype);
    EXPECT_EQ("In-Reply-To", HeaderInReplyTo::htype);
    EXPECT_EQ("Return-Path", HeaderReturnPath::htype);
    EXPECT_EQ("Message-ID", HeaderMessageId::htype);
    EXPECT_EQ("To", HeaderTo::htype);
    EXPECT_EQ("Cc", HeaderCc::htype);
    EXPECT_EQ("References", HeaderReferences::htype);
    EXPECT_EQ("List-Help", HeaderListHelp::htype);
    EXPECT_EQ("List-Post", HeaderListPost::htype);
    EXPECT_EQ("List-Owner", HeaderListOwner::htype);
    EXPECT_EQ("List-Archive", HeaderListArchive::htype);
    EXPECT_EQ("List-Subscribe", HeaderListSubscribe::htype);
    EXPECT_EQ("List-Unsubscribe", HeaderListUnsubscribe::htype);
}

// Headers that differ by their name alone: the accessors stand in a base between Header and each of them.
std::string const& linesName()
{
    static std::string const name("Lines");
    return name;
}

std::string const& bytesName()
{
    static std::string const name("Bytes");
    return name;
}

struct LengthImpl : ParsedHeaderImpl {
    void read() const override { length = value().size(); }
    mutable size_t length = 0;
};

template <std::string const& (*name)()> struct NamedLengthImpl : LengthImpl {
    NamedLengthImpl() { type(name()); }
};

struct LengthBase : Header {
    using Header::operator=;
    size_t length() const
    {
        if (isNull()) throw HeaderException(__LINE__);
        implementation<LengthImpl>().parse();
        return implementation<LengthImpl>().length;
    }
};

template <std::string const& (*name)()> struct Length : TypedHeader<Length<name>, NamedLengthImpl<name>, LengthBase> {
    using Shared = TypedHeader<Length<name>, NamedLengthImpl<name>, LengthBase>;
    static std::string const& htype;
    Length() = default;
    Length(std::string const& value) : Shared(value) {}
    Length(Header const& other) : Shared(other) {}
    using Shared::operator=;
};
template <std::string const& (*name)()> std::string const& Length<name>::htype = name();

TEST(TypedHeader, CanShareAccessorsUnderSeveralNames)
{
    Length<linesName> lines(Header("lines", "123")), copy;
    Length<bytesName> bytes("12345");
    LengthBase const& base = bytes;
    copy = lines;
    EXPECT_EQ(3u, copy.length());
    EXPECT_EQ(5u, base.length());
    EXPECT_EQ("Lines: 123", Header(lines).asString());
    EXPECT_EQ("Bytes: 12345", base.asString());
    EXPECT_THROW(bytes = Header("Lines", "1"), Exception);
    EXPECT_THROW(bytes.length(), HeaderException);
}

struct CountingImpl : ParsedHeaderImpl {
    void read() const override { ++readings; }
    mutable int readings = 0;
};

TEST(ParsedHeaderImpl, ReadsOnce)
{
    CountingImpl impl;
    EXPECT_EQ(0, impl.readings);
    impl.parse();
    impl.parse();
    EXPECT_EQ(1, impl.readings);
}

struct FailingImpl : ParsedHeaderImpl {
    void read() const override { throw Exception("read", 5, nullptr, 0); }
};

TEST(ParsedHeaderImpl, AReadingThatFailedIsTriedAgain)
{
    FailingImpl impl;
    EXPECT_THROW(impl.parse(), Exception);
    EXPECT_THROW(impl.parse(), Exception);
}

} // namespace
} // namespace Velmara
