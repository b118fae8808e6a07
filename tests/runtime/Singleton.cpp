#include <velmara/Singleton.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace Velmara {
namespace {

struct Plain : Singleton<Plain> {};

TEST(Singleton, GivesOneObject)
{
    EXPECT_EQ(&Plain::instance(), &Plain::instance());
}

struct FailsOnce : Singleton<FailsOnce> {
    FailsOnce()
    {
        if (attempts++ == 0) throw std::runtime_error("first");
    }
    static int attempts;
};
int FailsOnce::attempts = 0;

TEST(Singleton, AConstructorThatThrowsIsTriedAgain)
{
    EXPECT_THROW(FailsOnce::instance(), std::runtime_error);
    EXPECT_EQ(nullptr, FailsOnce::s_instance.load());
    EXPECT_EQ(FailsOnce::s_instance, &FailsOnce::instance());
    EXPECT_EQ(2, FailsOnce::attempts);
}

} // namespace
} // namespace Velmara
