#pragma once

#include <gtest/gtest.h>

#include <string>

#include <velmara/Exception.h>

namespace Velmara {

/// The line that the HeaderException of a null handle carries, which tells the accessors apart; checks
/// everything else about it.
template <class Call> unsigned int lineOfRefusal(Call call, std::string const& file = "HeaderImpl")
{
    try {
        call();
    } catch (HeaderException const& refusal) {
        EXPECT_EQ("HeaderException", refusal.message());
        EXPECT_EQ(1, refusal.code());
        EXPECT_EQ(file, refusal.fileName());
        return refusal.lineNumber();
    }
    ADD_FAILURE() << "nothing thrown";
    return 0;
}

} // namespace Velmara
