#pragma once

#include <string>

#include <gtest/gtest.h>

namespace Velmara {

/// Names a test of a row by the row's `rule`.
constexpr struct RuleName {
    template <class Row> std::string operator()(testing::TestParamInfo<Row> const& row) const { return row.param.rule; }
} ruleName;

} // namespace Velmara
