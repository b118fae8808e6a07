// The retry of ISO-2022-JP as Shift_JIS is for failures of ICU that no input brings about. Here the
// program's own ucnv_toUnicode and ucnv_open stand before ICU's and fail when told to.
#include <velmara/Velmara.h>

#include <dlfcn.h>

#include <deque>
#include <thread>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include "support/Collected.h"

#define VELMARA_TEXT_OF(name) #name
#define VELMARA_SYMBOL(name) VELMARA_TEXT_OF(name)

namespace {

enum Answer { Works, Fails, FailsBehindOneByte };

std::deque<Answer> s_answers; // of the next calls of ucnv_toUnicode; afterwards all work
bool s_alwaysFails = false;   // but when this is set
std::string s_unknown;        // a name that ucnv_open refuses

template <class Function> Function* _icu(char const* symbol)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

extern "C" void ucnv_toUnicode(UConverter* converter, UChar** target, UChar const* targetLimit, char const** source,
                               char const* sourceLimit, std::int32_t* offsets, UBool flush, UErrorCode* status)
{
    static auto* icu = _icu<decltype(ucnv_toUnicode)>(VELMARA_SYMBOL(ucnv_toUnicode));
    Answer answer = s_alwaysFails ? Fails : Works;
    if (!s_answers.empty()) {
        answer = s_answers.front();
        s_answers.pop_front();
    }
    if (answer == FailsBehindOneByte) sourceLimit = *source + 1;
    if (answer != Fails) icu(converter, target, targetLimit, source, sourceLimit, offsets, flush, status);
    if (answer != Works) *status = U_INTERNAL_PROGRAM_ERROR;
}

extern "C" UConverter* ucnv_open(char const* name, UErrorCode* status)
{
    static auto* icu = _icu<decltype(ucnv_open)>(VELMARA_SYMBOL(ucnv_open));
    return s_unknown == name ? nullptr : icu(name, status);
}

namespace Velmara {
namespace {

using std::string;

class VmaraConvRetry : public testing::Test {
protected:
    VmaraConvRetry()
    {
        s_answers.clear();
        s_alwaysFails = false;
        s_unknown.clear();
    }
    ~VmaraConvRetry() override { s_alwaysFails = false; }

    void write(string const& text) { m_converter.write(bytes(text)); }

    Collected m_out;
    VmaraConv m_converter{m_out.media(), "iso-2022-jp", "UTF-8", false};
};

// "お" in Shift_JIS; under ISO-2022-JP both bytes are bad.
char const* const _shiftJis = "\x82\xa8";

TEST_F(VmaraConvRetry, AFailureReadsOnAsShiftJis)
{
    s_answers = {Fails};
    write(_shiftJis);
    EXPECT_EQ("お", m_out.take());
    write(_shiftJis);
    EXPECT_EQ("お", m_out.take());
    m_converter.end();
}

TEST_F(VmaraConvRetry, WhatWasReadBeforeTheFailureStays)
{
    s_answers = {FailsBehindOneByte};
    write(string("A") + _shiftJis);
    EXPECT_EQ("Aお", m_out.take());
}

TEST_F(VmaraConvRetry, ASecondFailureGoesBackToTheFirstSet)
{
    // Failing: the first set, and the second set at once. In between try_open drains the first.
    s_answers = {Fails, Works, Fails};
    write(string("A") + _shiftJis);
    EXPECT_EQ("A", m_out.take());
}

TEST_F(VmaraConvRetry, ProgressInTheSecondSetKeepsItInSpiteOfALaterFailure)
{
    // The calls: first set, its drain, a whole buffer in the second set, the failure, the rest.
    s_answers = {Fails, Works, Works, Fails};
    string const manyUnits(512, 'a');
    write(manyUnits + _shiftJis);
    EXPECT_EQ(manyUnits + "お", m_out.take());
    s_answers = {Fails};
    write(_shiftJis);
    EXPECT_EQ("お", m_out.take()) << "no retry is left, and the set stays";
}

TEST_F(VmaraConvRetry, WithoutTheRetryAFailureIsTriedAgainInTheFirstSet)
{
    m_converter.retry_on_failure(false);
    m_converter.retry_on_failure(true); // arms nothing
    s_answers = {Fails};
    write(string("A") + _shiftJis);
    EXPECT_EQ("A", m_out.take());
}

TEST(VmaraConvOpening, AnUnavailableSecondSetGoesBackToTheFirst)
{
    // On a thread of its own, where no converter waits to be used again.
    std::thread([] {
        s_unknown = "SHIFT_JIS";
        s_answers = {Fails};
        Collected out;
        VmaraConv converter(out.media(), "ISO-2022-JP", "UTF-8", false);
        converter.write(bytes(string("A") + _shiftJis));
        EXPECT_EQ("A", out.take());
        EXPECT_TRUE(converter.ok());
    }).join();
    s_unknown.clear();
}

TEST_F(VmaraConvRetry, WhereEverythingFailsTheRestIsCopied)
{
    s_alwaysFails = true;
    write(string("A") + _shiftJis);
    EXPECT_EQ(string("A") + _shiftJis, m_out.take());
    s_alwaysFails = false;
    EXPECT_TRUE(m_converter.ok()) << "copying from now on";
    write(_shiftJis);
    EXPECT_EQ(_shiftJis, m_out.take());
}

TEST_F(VmaraConvRetry, AFlushThatOnlyFailsEndsAllTheSame)
{
    s_alwaysFails = true;
    m_converter.end();
    EXPECT_EQ(1, m_out.ends());
}

} // namespace
} // namespace Velmara
