// What a call prints.
#pragma once

#include "common/line_ends.h"

#include <gtest/gtest.h>

#include <string>

namespace trelm {

struct Said {
    std::string out; ///< on standard output
    std::string err; ///< on the standard error stream
};

/// Calls, and takes what it prints on both streams. Each message has to end its line.
template <class Call>
Said said(Call &&call)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    call();
    Said both = {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
    expectLineEnds(both.err);
    return both;
}

} // namespace trelm
