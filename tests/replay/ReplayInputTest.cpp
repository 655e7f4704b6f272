// The capture notation kv_replay reads: what becomes a send, an awaited answer, a pace, and
// what is refused.

#include "ReplayInput.h"

#include <gtest/gtest.h>

using namespace orbline::replay;

namespace {

std::string Shape(const std::vector<Step>& steps) {
    std::string shape;
    for (const Step& s : steps) {
        switch (s.kind) {
            case StepKind::Send:
                shape += "S" + std::to_string(s.bytes.size());
                break;
            case StepKind::Reply:
                shape += "R" + std::to_string(s.length);
                break;
            case StepKind::Pause:
                shape += "P" + std::to_string(s.milliseconds);
                break;
            case StepKind::Rate:
                shape += "B" + std::to_string(s.length);
                break;
            case StepKind::Chunk:
                shape += "C" + std::to_string(s.length) + "/" + std::to_string(s.milliseconds);
                break;
        }
        shape += ' ';
    }
    return shape;
}

}  // namespace

TEST(ReplayCapture, ReadsTheSimulatorsNotationAndRefusesWhatCannotBePlayed) {
    struct Case {
        const char* text;
        const char* shape;  // empty: refused
    };
    const Case cases[] = {
        // The simulator's remarks and comments are skipped; a CR LF capture reads the same.
        {"pty /dev/pts/3 as tty\r\n= port opened\r\n# x\r\n> <ENQ>\r\n< <ACK>\r\npassed\r\n",
         "S1 R1 "},
        {"rate 9600\nchunk 16 30\n> AB<STX>\npause 500\n< \n", "B9600 C16/30 S3 P500 R0 "},
        // A printed log shortens long answers: the length is kept.
        {"> <ENQ>\n< <STX>1H|... (300 bytes)\n", "S1 R300 "},
        // A shortened piece of the instrument has lost its bytes.
        {"> <STX>1H|... (300 bytes)\n", ""},
        {"> <NOSUCH>\n", ""},
        {"< <ACK>\n", ""},  // nothing the instrument sent
    };
    for (const Case& c : cases) {
        std::string error;
        const auto steps = ParseCapture(c.text, error);
        EXPECT_EQ(steps ? Shape(*steps) : std::string(), c.shape) << c.text;
        EXPECT_EQ(error.empty(), steps.has_value()) << c.text;
    }
}
