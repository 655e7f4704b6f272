// Result edit 0990, where the scenarios don't reach: the identifier as the launch's rule sets it,
// the checksum digit the cut leaves in the body, and the bound of the measurement table.

#include "common/RuntimeError.h"
#include "edits/MdlEdit009.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(Parse0990, RuleOfTheLaunchTheDigitLeftInTheBodyAndTheBound) {
    const std::tuple<QString, SampleRule, QString, QString> cases[] = {
        {u"|PID=123  |CMT=short"_s, {}, u"123"_s, u"short7"_s},
        {u"|BGD= 100"_s, {u"0"_s, u"F-1"_s}, u"F-1"_s, {}},
        {u"|PID=55"_s + QString(14, QChar(0x7F)), {u"2"_s, {}}, QString(), {}},
    };
    for (const auto& [body, rule, sampleId, comment] : cases) {
        const auto rows = ParseFrames0990({u"\u0002D1WBD"_s + body + u"7A\u0003\r\n"_s}, rule);
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(std::pair(rows[0].sampleId, rows[0].comment), std::pair(sampleId, comment));
    }
    const QString frame = u"\u0002D1WBD|BGD= 100A7\u0003\r\n"_s;
    EXPECT_EQ(ParseFrames0990({frame.repeated(2000)}, {}).size(), 2000u);
    EXPECT_THROW(ParseFrames0990({frame.repeated(1000), frame.repeated(1001)}, {}), RuntimeError);
}
