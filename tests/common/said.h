// What a call prints.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace trelm {

struct Said {
    std::string out; ///< on standard output
    std::string err; ///< on the standard error stream
};

/// Calls, and takes what it prints on both streams.
template <class Call>
Said said(Call &&call)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    call();
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

} // namespace trelm
