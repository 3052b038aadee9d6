#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/System/iSystemInfo.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace {

std::vector<iSystemInfo::GraphicsFact> report()
{
    std::vector<iSystemInfo::GraphicsFact> facts;
    OS()->systemInfo()->getGraphicsReport(facts);
    return facts;
}

std::string valueOf(const std::vector<iSystemInfo::GraphicsFact>& facts, const char* name)
{
    for (const auto& fact : facts)
        if (fact.name_ == name)
            return OS()->utils()->toUTF8(fact.value_).c_str();
    return "(missing)";
}

TEST(GraphicsReport, NamesTheDriverItsLimitsAndItsFormats)
{
    const auto facts = report();
    for (const char* name : {"Context", "Vendor", "Renderer", "Version", "GLSL version"}) {
        EXPECT_NE(valueOf(facts, name), "(missing)") << name;
        EXPECT_NE(valueOf(facts, name), "") << name;
    }
    EXPECT_GE(std::stoi(valueOf(facts, "Largest texture")), 1024);
    EXPECT_GE(std::stoi(valueOf(facts, "Texture units")), 2);
    EXPECT_EQ(valueOf(facts, "Format 8 bits a channel"),
              "kept with 8 bits a colour, 8 of alpha; can be drawn into");
    EXPECT_EQ(valueOf(facts, "Format 16 bits a channel"),
              "kept with 16 bits a colour, 16 of alpha; can be drawn into");
    EXPECT_EQ(facts.back().name_, "Device ratio");
    EXPECT_EQ(OS()->systemInfo()->getGraphicsDriverVendor(),
              OS()->utils()->fromUTF8(valueOf(facts, "Vendor").c_str(), -1));
}

TEST(GraphicsReport, AppendsTheSameEveryTime)
{
    auto facts = report();
    const std::size_t once = facts.size();
    OS()->systemInfo()->getGraphicsReport(facts);
    ASSERT_EQ(facts.size(), 2 * once);
    for (std::size_t i = 0; i < once; ++i) {
        EXPECT_EQ(facts[i].name_, facts[once + i].name_);
        EXPECT_EQ(facts[i].value_, facts[once + i].value_);
    }
}

} // namespace
