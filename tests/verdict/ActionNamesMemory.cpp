// What C callers get when memory is short: null, and nothing is lost. The allocators of the process are replaced,
// so this stands in a program of its own.
#include <velmara/ActionNames.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

int left = INT_MAX;      // calls until one fails
bool isCounting = false; // only while the library is at work

bool fails()
{
    return isCounting && left-- == 0;
}

} // namespace

extern "C" void* calloc(size_t n, size_t size) noexcept
{
    if (fails()) return nullptr;
    auto* const bytes = static_cast<char volatile*>(std::malloc(n * size));
    // Volatile, or the compiler would see a call of calloc in this.
    if (bytes) std::fill_n(bytes, n * size, '\0');
    return const_cast<char*>(bytes);
}

extern "C" char* strdup(char const* text) noexcept
{
    if (fails()) return nullptr;
    auto* const copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
    return copy ? std::strcpy(copy, text) : nullptr;
}

namespace Velmara {
namespace {

ActionNames::ActionString* stringsWithFailingCall(int call)
{
    ActionNames const& names = ActionNames::instance();
    left = call;
    isCounting = true;
    ActionNames::ActionString* const strings = names.actionStrings();
    isCounting = false;
    return strings;
}

// That the names made so far are given back is seen by a sanitizer.
TEST(ActionNamesMemory, AnyFailedAllocationGivesNull)
{
    constexpr int calls = 1 + 26; // the array and the names
    for (int call = 0; call < calls; ++call) EXPECT_EQ(nullptr, stringsWithFailingCall(call)) << call;
    ActionNames::ActionString* const strings = stringsWithFailingCall(calls);
    ASSERT_NE(nullptr, strings);
    for (ActionNames::ActionString* row = strings; row->name; ++row) std::free(row->name);
    std::free(strings);
}

} // namespace
} // namespace Velmara
