#include "common/GraphicsReport.h"

#include <gtest/gtest.h>

namespace App {
namespace {

TEST(GraphicsReportTextTest, IsWrittenForPeopleAndForPrograms)
{
    const std::vector<iSystemInfo::GraphicsFact> facts = {{"Vendor", L"A \"quoted\" \\ name\n"},
                                                          {"GLSL version", L"4.50 \u00E4"}};
    EXPECT_EQ(writeReport(facts, false), "Vendor        A \"quoted\" \\ name\n\n"
                                         "GLSL version  4.50 \xC3\xA4\n");
    EXPECT_EQ(writeReport(facts, true),
              "[\n"
              "  {\"name\": \"Vendor\", \"value\": \"A \\\"quoted\\\" \\\\ name\\u000a\"},\n"
              "  {\"name\": \"GLSL version\", \"value\": \"4.50 \xC3\xA4\"}\n"
              "]\n");
    EXPECT_EQ(writeReport({}, true), "[\n]\n");
}

} // namespace
} // namespace App
