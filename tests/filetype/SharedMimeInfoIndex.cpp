// The quick answer is that of the plain walk over all records.
#include <velmara/SharedMimeInfo.h>

#include <gtest/gtest.h>

#include <random>

#include "support/Collected.h"
#include "support/PlainMimeType.h"
#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

using Match = SharedMimeType::Magic::Match;

/// The database of the developer's data root, or the one that the distribution installs; null without.
SharedMimeInfoImpl const* _freedesktop()
{
    static std::unique_ptr<SharedMimeInfoImpl const> const database = []() -> decltype(databaseOf("")) {
        try {
            return std::make_unique<SharedMimeInfoImpl const>();
        } catch (Exception const&) {
        }
        try {
            return std::make_unique<SharedMimeInfoImpl const>("/usr/share/mime/packages/freedesktop.org.xml");
        } catch (Exception const&) {
            return nullptr;
        }
    }();
    return database.get();
}

/// Names and contents that come near to what the database knows: made of its own patterns and values,
/// some of them spoilt.
class Generator {
public:
    explicit Generator(SharedMimeInfoImpl const& database)
    {
        for (SharedMimeType const& type : database.types()) {
            for (auto const& glob : type.globs) m_globs.push_back(&glob);
            for (auto const& magic : type.magics)
                for (Match const& match : magic.matches) m_matches.push_back(&match);
        }
    }

    std::string name()
    {
        if (below(10) == 0) return "";
        std::string text;
        for (unsigned parts = 1 + below(3); parts > 0; --parts) text += part();
        if (below(4) == 0 && !text.empty()) text[below(text.size())] = static_cast<char>(byte());
        return text;
    }

    std::string content()
    {
        std::string data(below(3) == 0 ? below(4) : below(2000), '\0');
        unsigned const kind = below(4);
        for (char& c : data) c = kind == 0 ? 0 : static_cast<char>(kind == 1 ? byte() : 'a' + below(26));
        for (unsigned times = below(4); times > 0; --times) plant(*m_matches[below(m_matches.size())], data);
        if (below(8) == 0 && !data.empty()) data.resize(below(data.size()));
        return data;
    }

private:
    unsigned below(size_t n) { return static_cast<unsigned>(m_random() % n); }
    unsigned byte() { return below(256); }

    std::string part()
    {
        std::string text;
        for (char c : m_globs[below(m_globs.size())]->pattern) {
            if (c == '*')
                text.append(below(3), 'a');
            else if (c != '[' && c != ']')
                text += below(8) == 0 ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        }
        return text;
    }

    void plant(Match const& match, std::string& data)
    {
        size_t const at = static_cast<size_t>(match.offsetStart) +
                          below(static_cast<size_t>(match.offsetEnd - match.offsetStart) + 1 + below(2));
        if (at > 40000) return;
        if (data.size() < at + match.value.size()) data.resize(at + match.value.size(), 'X');
        data.replace(at, match.value.size(), match.value);
        for (size_t i = at; i < at + match.value.size(); ++i)
            if (data[i] == 'X' && below(2)) data[i] = 0;
        if (below(6) == 0 && !match.value.empty()) data[at + below(match.value.size())] = static_cast<char>(byte());
        if (!match.matches.empty()) plant(match.matches[below(match.matches.size())], data);
    }

    std::mt19937 m_random{20};
    std::vector<SharedMimeType::GlobPattern const*> m_globs;
    std::vector<Match const*> m_matches;
};

TEST(SharedMimeInfoIndex, AnswersLikeThePlainWalkOverTheFreedesktopDatabase)
{
    SharedMimeInfoImpl const* const database = _freedesktop();
    ASSERT_TRUE(database) << "install shared-mime-info, or run data/stage-data.sh";
    ASSERT_GT(database->types().size(), 500u);
    PlainMimeType const plain(*database);
    Generator generator(*database);
    std::set<std::string> types;
    std::map<MimeTypeExplanation::Reason, int> reasons;
    for (int round = 0; round < 10000; ++round) {
        std::string const data = generator.content(), name = generator.name();
        std::string const expected = plain(data, name);
        MimeTypeExplanation const why = database->explain(bytes(data), name);
        ASSERT_EQ(expected, database->mimeType(bytes(data), name)) << "round " << round << ", name " << name;
        ASSERT_EQ(expected, *why.mimeType) << "round " << round << ", name " << name;
        types.insert(expected);
        ++reasons[why.reason];
    }
    EXPECT_GT(types.size(), 300u); // or the generator comes near to nothing
    for (int reason = MimeTypeExplanation::EmptyInput; reason <= MimeTypeExplanation::ContainerWithoutName; ++reason)
        EXPECT_GT(reasons[static_cast<MimeTypeExplanation::Reason>(reason)], 0) << "reason " << reason;
}

TEST(SharedMimeInfoIndex, FindsEveryPatternOfTheFreedesktopDatabase)
{
    SharedMimeInfoImpl const* const database = _freedesktop();
    ASSERT_TRUE(database) << "install shared-mime-info, or run data/stage-data.sh";
    PlainMimeType const plain(*database);
    for (SharedMimeType const& type : database->types())
        for (auto const& glob : type.globs)
            for (std::string const& name : {glob.pattern, "x" + glob.pattern, glob.pattern + "x"})
                EXPECT_EQ(plain("", name), database->mimeType(Buffer(), name)) << name;
}

TEST(SharedMimeInfoIndex, KnowsTheKindsOfTheFreedesktopDatabase)
{
    SharedMimeInfoImpl const* const database = _freedesktop();
    ASSERT_TRUE(database) << "install shared-mime-info, or run data/stage-data.sh";
    PlainMimeType const plain(*database);
    for (std::string const& type : database->mimeTypeList())
        for (char const* parent : {"application/zip", "application/gzip", "application/xml", "text/plain",
                                   "application/octet-stream", "application/x-ole-storage"})
            EXPECT_EQ(plain.isKindOf(type, parent), database->isMimeTypeEqualOrSubclassOf(type, parent))
                << type << " in " << parent;
}

/// A database of small random tests over few letters, so that much of it fits much of the content.
std::string _randomDatabase(std::mt19937& random)
{
    auto const below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    auto const number = [](unsigned n) { return std::to_string(n); };
    static char const* const kinds[] = {"string", "big16", "big32", "host16", "little16", "little32", "byte"};
    static char const* const values[] = {"a",    "ab",     "ba", "aa",   "61", "6162",
                                         "0x00", "0x6100", "X",  "\\0a", "\\", "0x5861"};
    static char const* const masks[] = {"", "", "", "0xff", "0xffff", "0xff00", "0xdfdf", "0xf", "0x0000", "zz"};
    static char const* const globs[] = {"*.a", "*.ab", "a", "*a", "*", "a*", "[ab]a", "*[ab]", "?.a", "*.A"};
    std::string xml;
    for (unsigned types = 1 + below(6), t = 0; t < types; ++t) {
        xml += "<mime-type type=\"" + std::string(below(6) == 0 ? "application/zip" : "x/" + number(t)) + "\">";
        if (below(3) == 0) xml += "<sub-class-of type=\"application/zip\"/>";
        for (unsigned count = below(4); count > 0; --count)
            xml += "<glob pattern=\"" + std::string(globs[below(10)]) + "\" weight=\"" + number(50 + below(2)) +
                   "\" case-sensitive=\"" + (below(2) ? "true" : "false") + "\"/>";
        xml += "<magic priority=\"" + number(50 + below(2)) + "\">";
        std::string close = "</magic></mime-type>";
        for (unsigned count = below(5); count > 0; --count) {
            unsigned const start = below(4), end = start + (below(2) ? below(4) : below(2) * 600);
            xml += "<match type=\"" + std::string(kinds[below(7)]) + "\" value=\"" + values[below(12)] +
                   "\" offset=\"" + number(start) + ":" + number(end) + "\" mask=\"" + masks[below(10)] + "\"";
            bool const nested = below(3) == 0;
            xml += nested ? ">" : "/>";
            if (nested) close = "</match>" + close;
        }
        xml += close;
    }
    return xml;
}

TEST(SharedMimeInfoIndex, AnswersLikeThePlainWalkOverRandomDatabases)
{
    std::mt19937 random(7);
    auto const text = [&](size_t most) {
        std::string letters(random() % most, 'a');
        for (char& c : letters) c = "aabX.A\0"[random() % 7];
        return letters;
    };
    for (int round = 0; round < 1000; ++round) {
        std::string const xml = _randomDatabase(random);
        auto const database = databaseWith(xml);
        PlainMimeType const plain(*database);
        for (int question = 0; question < 10; ++question) {
            std::string const data = text(question == 0 ? 1000 : 10), name = text(5);
            ASSERT_EQ(plain(data, name), database->mimeType(bytes(data), name)) << xml << '\n' << name << '\n' << data;
        }
    }
}

} // namespace
} // namespace Velmara
