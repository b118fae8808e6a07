#include <velmara/ClassifierNames.h>

#include <cstring>
#include <iterator>

#include "verdict/NameMatch.h"

namespace Velmara {

namespace {

using Names = ClassifierNames;

struct Row {
    unsigned int number;
    char const* name;
    Names::Category category;
};

constexpr Row _classifiers[] = {
    {0, "Not Spam", Names::CategoryClean},
    {1, "User Safe", Names::CategoryClean},
    {2, "User Block", Names::CategoryBulk},
    {3, "System Safe", Names::CategoryClean},
    {4, "System Block", Names::CategoryBulk},
    {5, "DNSBL", Names::CategoryBulk},
    {6, "SURBL", Names::CategoryBulk},
    {7, "Tessary AntiSpam", Names::CategoryBulk},
    {8, "Tessary AntiSpam-Safe", Names::CategoryClean},
    {9, "Bayesian", Names::CategoryBulk},
    {10, "Heuristic", Names::CategoryBulk},
    {11, "Dictionary Filter", Names::CategoryBulk},
    {12, "Banned Word", Names::CategoryBulk},
    {13, "Header Analysis", Names::CategoryBulk},
    {14, "Forged IP", Names::CategoryBulk},
    {15, "Quarantine Control", Names::CategoryClean},
    {16, "Virus as Spam", Names::CategoryBulk},
    {17, "Attachment Filter", Names::CategoryContent},
    {18, "Grey List", Names::CategorySession},
    {19, "Bypass Scan On Auth", Names::CategoryClean},
    {20, "Disclaimer", Names::CategoryClean},
    {21, "Defer Delivery", Names::CategoryClean},
    {22, "Session Domain", Names::CategoryBulk},
    {23, "Session Limits", Names::CategorySession},
    {24, "Session Safe", Names::CategoryClean},
    {25, "Session Block", Names::CategoryBulk},
    {26, "Content Monitor and Filter", Names::CategoryContent},
    {27, "Content Monitor as Spam", Names::CategoryBulk},
    {28, "Attachment as Spam", Names::CategoryBulk},
    {29, "Image Spam", Names::CategoryBulk},
    {30, "Sender Reputation", Names::CategoryBulk},
    {31, "Access Control-Relay Denied", Names::CategoryBulk},
    {32, "Safelist Word", Names::CategoryClean},
    {33, "Domain Safe", Names::CategoryClean},
    {34, "Domain Block", Names::CategoryBulk},
    {35, "SPF", Names::CategoryBulk},
    {36, "Domain Key", Names::CategoryBulk},
    {37, "DKIM", Names::CategoryBulk},
    {38, "Recipient Verification", Names::CategoryBulk},
    {39, "Bounce Verification", Names::CategoryBulk},
    {40, "Endpoint Reputation", Names::CategoryBulk},
    {41, "TLS Enforcement", Names::CategoryClean},
    {42, "Message Cryptography", Names::CategoryClean},
    {43, "Delivery Control", Names::CategoryClean},
    {44, "Encrypted Content", Names::CategoryClean},
    {45, "SPF Failure", Names::CategoryBulk},
    {46, "Fragmented email", Names::CategoryContent},
    {47, "Email contains image", Names::CategoryContent},
    {48, "Content Requires Encryption", Names::CategoryClean},
    {49, "Tessary AntiSpam-IP", Names::CategoryBulk},
    {50, "Session Remote", Names::CategorySession},
    {51, "Tessary Phishing", Names::CategoryBulk},
    {52, "Virus Signature", Names::CategoryVirus},
    {53, "Sender Address Rate Control", Names::CategorySession},
    {54, "SMTP Auth Failure", Names::CategoryBulk},
    {55, "Access Control-Reject", Names::CategoryBulk},
    {56, "Access Control-Discard", Names::CategoryBulk},
    {57, "Access Control-Safe-Relay", Names::CategoryClean},
    {58, "Tessary WebFilter", Names::CategoryBulk},
    {59, "Newsletter Suspicious", Names::CategoryBulk},
    {60, "TLS Session", Names::CategorySession},
    {61, "Policy Match", Names::CategoryClean},
    {62, "Dynamic Safe List", Names::CategoryClean},
    {63, "Sender Verification", Names::CategorySession},
    {64, "Behavior Analysis", Names::CategoryBulk},
    {65, "Tessary Outbreak", Names::CategoryBulk},
    {66, "Newsletter", Names::CategorySession},
    {67, "DMARC Failure", Names::CategoryBulk},
    {68, "File Signature", Names::CategoryVirus},
    {69, "Boxmere", Names::CategoryVirus},
    {70, "Malware Outbreak", Names::CategoryVirus},
    {71, "Data Loss Prevention", Names::CategoryContent},
    {72, "Data Loss Prevention as Spam", Names::CategoryBulk},
    {73, "Data Loss Prevention Requires Encryption", Names::CategoryContent},
    {74, "Access Control-Safe", Names::CategoryClean},
};

constexpr bool _numberedInOrder()
{
    for (unsigned int i = 0; i < std::size(_classifiers); ++i)
        if (_classifiers[i].number != i) return false;
    return true;
}
static_assert(std::size(_classifiers) == ClassifierNames::count && _numberedInOrder(),
              "the table is indexed by the number");

struct CategoryRow {
    Names::Category category;
    char const* name;
};

constexpr CategoryRow _categories[] = {
    {Names::CategoryClean, "Clean"},
    {Names::CategorySession, "Clean"}, // reports show session measures as clean mail,
                                       // and filters count them as spam
    {Names::CategoryBulk, "Bulk"},
    {Names::CategoryVirus, "Virus"},
    {Names::CategoryContent, "Content"},
};

} // namespace

ClassifierNames::ClassifierNames()
{
    for (Row const& row : _classifiers) m_names.emplace_back(row.name);
    for (CategoryRow const& row : _categories) m_categoryNames.emplace(row.category, row.name);
}

ClassifierNames& ClassifierNames::instance()
{
    static auto* names = new ClassifierNames; // lives to process exit, so late logs may still ask
    return *names;
}

std::string const& ClassifierNames::mapToString(ClassifierType type) const
{
    static auto const* none = new std::string("None");
    return type < m_names.size() ? m_names[type] : *none;
}

ClassifierNames::Category ClassifierNames::category(ClassifierType type) const
{
    return type < std::size(_classifiers) ? _classifiers[type].category : CategoryClean;
}

std::string const& ClassifierNames::categoryName(Category category) const
{
    auto const found = m_categoryNames.find(category);
    return found == m_categoryNames.end() ? m_categoryNames.at(CategoryClean) : found->second;
}

std::string const& ClassifierNames::categoryName(ClassifierType type) const
{
    return categoryName(category(type));
}

bool ClassifierNames::isSpamClassifier(ClassifierType type) const
{
    return category(type) != CategoryClean;
}

ClassifierType ClassifierNames::findTypeByString(char const* name) const
{
    for (Row const& row : _classifiers)
        if (name && std::strcmp(row.name, name) == 0) return row.number;
    return 0;
}

bool ClassifierNames::checkTypeByString(char const* text, bool substring) const
{
    for (std::string const& name : m_names)
        if (nameMatches(name, text, substring)) return true;
    return false;
}

} // namespace Velmara
