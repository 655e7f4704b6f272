#pragma once
// The instrument's end of a pseudo-terminal pair for tests: the code under test opens
// `device()`, the test plays the instrument through `line`.

#include <gtest/gtest.h>

#include <string>

#include "PtyPair.h"
#include "SimLine.h"

namespace orbline::test {

struct LineHarness {
    sim::PtyPair pty;
    sim::SimLine line{pty.masterFd()};

    const std::string& device() const { return pty.slavePath(); }
};

// Bytes in the simulator's notation ("<STX>1H|<CR>..."); a bad notation fails the test.
inline sim::Bytes Notation(const std::string& text) {
    std::string error;
    const auto bytes = sim::ParseBytes(text, error);
    EXPECT_TRUE(bytes.has_value()) << error;
    return bytes.value_or(sim::Bytes{});
}

}  // namespace orbline::test
