#include <velmara/Logger.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Velmara {
namespace {

using Messages = std::vector<std::pair<unsigned int, std::string>>;

class LoggerTest : public testing::Test {
protected:
    LoggerTest()
    {
        Logger::setSink([this](unsigned int id, std::string const& text) { m_messages.emplace_back(id, text); });
    }
    ~LoggerTest() override { Logger::setSink(nullptr); }

    Messages m_messages;
};

TEST_F(LoggerTest, FormatsLikePrintfAndKeepsTheIdentifier)
{
    Logger::instance(false).log(0x3000024, 0, "%s has %d", "mail", 5);
    EXPECT_EQ((Messages{{0x3000024, "mail has 5"}}), m_messages);
}

TEST_F(LoggerTest, CutsNoLongMessage)
{
    std::string const text(100000, 'x');
    Logger::instance(false).log(1, 0, "%s", text.c_str());
    ASSERT_EQ(1u, m_messages.size());
    EXPECT_EQ(text, m_messages[0].second);
}

TEST_F(LoggerTest, IsOneObjectWhateverTheFlag)
{
    EXPECT_EQ(&Logger::instance(false), &Logger::instance(true));
}

TEST_F(LoggerTest, WhatTheSinkThrowsIsDropped)
{
    Logger::setSink([](unsigned int, std::string const&) { throw std::runtime_error("full"); });
    EXPECT_NO_THROW(Logger::instance(false).log(1, 0, "x"));
}

TEST_F(LoggerTest, ASinkMayReplaceItself)
{
    Logger::setSink([this](unsigned int, std::string const&) {
        Logger::setSink([this](unsigned int id, std::string const& text) { m_messages.emplace_back(id, text); });
    });
    Logger::instance(false).log(1, 0, "lost");
    Logger::instance(false).log(2, 0, "kept");
    EXPECT_EQ((Messages{{2, "kept"}}), m_messages);
}

} // namespace
} // namespace Velmara
