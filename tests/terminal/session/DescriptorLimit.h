#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace orvo::test {

/// Lets this process open only `count` descriptors more, for as long as it lives.
class DescriptorLimit {
public:
    explicit DescriptorLimit(int count) {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_previous), 0);
        const int lowestFree = ::dup(0);
        ::close(lowestFree);
        // The limit counts numbers, so that descriptors above it are of no concern.
        const rlimit limit{static_cast<rlim_t>(lowestFree + count), m_previous.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &m_previous); }

private:
    rlimit m_previous{};
};

}  // namespace orvo::test
