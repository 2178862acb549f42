#ifndef ARBORIST_TESTS_SUPPORT_CASE_NAME_H
#define ARBORIST_TESTS_SUPPORT_CASE_NAME_H

#include <string>

#include <gtest/gtest.h>

/// Names a parameterized test after the `name` of its case: the last argument of INSTANTIATE_TEST_SUITE_P.
struct CaseName {
    template <typename Case>
    std::string operator()(const testing::TestParamInfo<Case>& testCase) const
    {
        return testCase.param.name;
    }
};

#endif
