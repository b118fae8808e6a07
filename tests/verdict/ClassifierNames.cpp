#include <velmara/ClassifierNames.h>

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace Velmara {
namespace {

struct Group {
    ClassifierNames::Category category;
    char const* categoryName;
    bool spam;
    std::vector<std::pair<ClassifierType, char const*>> classifiers;
};

/// By category, as reports group them; the table of the library is by number.
std::vector<Group> const _groups = {
    {ClassifierNames::CategoryClean,
     "Clean",
     false,
     {{0, "Not Spam"},
      {1, "User Safe"},
      {3, "System Safe"},
      {8, "Tessary AntiSpam-Safe"},
      {15, "Quarantine Control"},
      {19, "Bypass Scan On Auth"},
      {20, "Disclaimer"},
      {21, "Defer Delivery"},
      {24, "Session Safe"},
      {32, "Safelist Word"},
      {33, "Domain Safe"},
      {41, "TLS Enforcement"},
      {42, "Message Cryptography"},
      {43, "Delivery Control"},
      {44, "Encrypted Content"},
      {48, "Content Requires Encryption"},
      {57, "Access Control-Safe-Relay"},
      {61, "Policy Match"},
      {62, "Dynamic Safe List"},
      {74, "Access Control-Safe"}}},
    {ClassifierNames::CategorySession,
     "Clean",
     true,
     {{18, "Grey List"},
      {23, "Session Limits"},
      {50, "Session Remote"},
      {53, "Sender Address Rate Control"},
      {60, "TLS Session"},
      {63, "Sender Verification"},
      {66, "Newsletter"}}},
    {ClassifierNames::CategoryBulk,
     "Bulk",
     true,
     {{2, "User Block"},
      {4, "System Block"},
      {5, "DNSBL"},
      {6, "SURBL"},
      {7, "Tessary AntiSpam"},
      {9, "Bayesian"},
      {10, "Heuristic"},
      {11, "Dictionary Filter"},
      {12, "Banned Word"},
      {13, "Header Analysis"},
      {14, "Forged IP"},
      {16, "Virus as Spam"},
      {22, "Session Domain"},
      {25, "Session Block"},
      {27, "Content Monitor as Spam"},
      {28, "Attachment as Spam"},
      {29, "Image Spam"},
      {30, "Sender Reputation"},
      {31, "Access Control-Relay Denied"},
      {34, "Domain Block"},
      {35, "SPF"},
      {36, "Domain Key"},
      {37, "DKIM"},
      {38, "Recipient Verification"},
      {39, "Bounce Verification"},
      {40, "Endpoint Reputation"},
      {45, "SPF Failure"},
      {49, "Tessary AntiSpam-IP"},
      {51, "Tessary Phishing"},
      {54, "SMTP Auth Failure"},
      {55, "Access Control-Reject"},
      {56, "Access Control-Discard"},
      {58, "Tessary WebFilter"},
      {59, "Newsletter Suspicious"},
      {64, "Behavior Analysis"},
      {65, "Tessary Outbreak"},
      {67, "DMARC Failure"},
      {72, "Data Loss Prevention as Spam"}}},
    {ClassifierNames::CategoryVirus,
     "Virus",
     true,
     {{52, "Virus Signature"}, {68, "File Signature"}, {69, "Boxmere"}, {70, "Malware Outbreak"}}},
    {ClassifierNames::CategoryContent,
     "Content",
     true,
     {{17, "Attachment Filter"},
      {26, "Content Monitor and Filter"},
      {46, "Fragmented email"},
      {47, "Email contains image"},
      {71, "Data Loss Prevention"},
      {73, "Data Loss Prevention Requires Encryption"}}},
};

TEST(ClassifierNames, EachRowHasItsNameAndCategory)
{
    ClassifierNames const& names = ClassifierNames::instance();
    std::set<ClassifierType> seen;
    for (Group const& group : _groups)
        for (auto const& [type, name] : group.classifiers) {
            EXPECT_EQ(name, names.mapToString(type));
            EXPECT_EQ(group.category, names.category(type)) << name;
            EXPECT_EQ(group.categoryName, names.categoryName(type)) << name;
            EXPECT_EQ(group.spam, names.isSpamClassifier(type)) << name;
            EXPECT_EQ(type, names.findTypeByString(name)) << name;
            EXPECT_TRUE(names.checkTypeByString(name, false)) << name;
            seen.insert(type);
        }
    EXPECT_EQ(75u, seen.size());
}

TEST(ClassifierNames, NumbersBeyondTheTableAreNoneAndClean)
{
    ClassifierNames const& names = ClassifierNames::instance();
    for (ClassifierType type : {75u, 0xFFFFFFFFu}) {
        EXPECT_EQ("None", names.mapToString(type));
        EXPECT_EQ(0, names.category(type));
        EXPECT_EQ("Clean", names.categoryName(type));
        EXPECT_FALSE(names.isSpamClassifier(type));
    }
}

TEST(ClassifierNames, AnUnknownCategoryIsCalledClean)
{
    for (int number : {5, 7, 8, 99, -1, std::numeric_limits<int>::max()}) {
        auto const category = static_cast<ClassifierNames::Category>(number);
        EXPECT_EQ(number, int{category});
        EXPECT_EQ("Clean", ClassifierNames::instance().categoryName(category)) << number;
    }
}

TEST(ClassifierNames, FindMindsCaseAndGivesNotSpamOnAMiss)
{
    ClassifierNames const& names = ClassifierNames::instance();
    EXPECT_EQ(35u, names.findTypeByString("SPF"));
    EXPECT_EQ(0u, names.findTypeByString("spf"));
    EXPECT_EQ(0u, names.findTypeByString("SPF "));
    EXPECT_EQ(0u, names.findTypeByString(nullptr));
}

TEST(ClassifierNames, CheckIgnoresCaseAndCanLookInsideNames)
{
    ClassifierNames const& names = ClassifierNames::instance();
    EXPECT_TRUE(names.checkTypeByString("spf", false));
    EXPECT_FALSE(names.checkTypeByString("antispam", false));
    EXPECT_TRUE(names.checkTypeByString("ANTISPAM", true));
    EXPECT_FALSE(names.checkTypeByString("no such", true));
    EXPECT_FALSE(names.checkTypeByString(nullptr, true));
}

} // namespace
} // namespace Velmara
