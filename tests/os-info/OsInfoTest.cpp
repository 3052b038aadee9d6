#include "Report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace OsInfo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Outcome
{
    int status = -1;
    std::string output;
};

Outcome run(const std::string& arguments)
{
    Outcome outcome;
    FILE* const pipe =
        popen((std::string(OS_INFO_PROGRAM " ") + arguments + " 2>/dev/null").c_str(), "r");
    std::array<char, 4096> buffer;
    while (const std::size_t length = std::fread(buffer.data(), 1, buffer.size(), pipe))
        outcome.output.append(buffer.data(), length);
    const int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

QJsonObject parsed(const std::string& text)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError)
        << error.errorString().toStdString() << " at " << error.offset << " of\n"
        << text;
    return document.object();
}

bool hasDisplay()
{
    return std::getenv("DISPLAY") && std::getenv("OPENCL_LAYERS");
}

} // namespace

TEST(OsInfo, WhateverIsInAReportIsWrittenSoThatItCanBeParsed)
{
    const std::string odd = "\"\\\n\t\x01 \xC3\xA4 \xF0\x9F\x98\x80";
    const std::string broken = "a\xFF\xC0\x80\xED\xA0\x80\xE2\x82z\xF4\x90\x80\x80";
    const Report report = {
        {"one",
         "One",
         Section::eOne,
         {{{"odd", "Odd", odd},
           {"broken", "Broken", broken},
           {"yes", "Yes", true},
           {"number", "Number", std::int64_t{-5}},
           {"half", "Half", 0.5},
           {"infinite", "Infinite", std::numeric_limits<double>::infinity()},
           {"bytes", "Bytes", Bytes{3ull << 30}}}}},
        {"many",
         "Many",
         Section::eMany,
         {{{"a", "A", std::int64_t{1}}}, {{"a", "A", std::string()}}}},
        {"named",
         "Named",
         Section::eNamed,
         {{{"", "Twice", std::string("x")}, {"", "Twice", true}}}},
        {"empty", "Empty", Section::eMany, {}},
        {"nothing", "Nothing", Section::eOne, {}},
    };
    const QJsonObject json = parsed(writeJson(report));
    const QJsonObject one = json["one"].toObject();
    EXPECT_EQ(one["odd"].toString().toStdString(), odd);
    EXPECT_EQ(one["broken"].toString().count(QChar::ReplacementCharacter), 12);
    EXPECT_EQ(one["broken"].toString().remove(QChar::ReplacementCharacter), "az");
    EXPECT_EQ(one["bytes"].toDouble(), 3221225472.0);
    EXPECT_TRUE(one["yes"].toBool() && one["number"].toInt() == -5 &&
                one["half"].toDouble() == 0.5 && one["infinite"].isNull());
    EXPECT_EQ(json["many"].toArray().size(), 2);
    EXPECT_EQ(json["named"].toArray()[1].toObject()["name"].toString(), "Twice");
    EXPECT_TRUE(json["empty"].toArray().isEmpty() && json["nothing"].toObject().isEmpty());

    const std::string text = writeText(report);
    EXPECT_THAT(text, HasSubstr("  Bytes     3.0 GiB\n"));
    EXPECT_THAT(text, HasSubstr("Many\n- A  1\n- A  -\n"));
    EXPECT_THAT(text, HasSubstr("Empty\n  none\n"));
}

TEST(OsInfo, TellsOfThisMachine)
{
    const Outcome outcome = run("--json");
    EXPECT_EQ(outcome.status, 0);
    const QJsonObject json = parsed(outcome.output);
    EXPECT_EQ(json["processors"].toObject()["count"].toInt(), sysconf(_SC_NPROCESSORS_CONF));
    EXPECT_GT(json["memory"].toObject()["physicalBytes"].toDouble(), 1e6);
    EXPECT_FALSE(json["versions"].toObject()["library"].toString().isEmpty());
    EXPECT_TRUE(json["serialPorts"].isArray());
    EXPECT_TRUE(json["midi"].isArray());
    EXPECT_EQ(json["folders"].toObject()["home"].toString(), "~/");
    EXPECT_EQ(json["graphics"].toArray()[0].toObject()["name"].toString(), "Context");

    const QJsonArray devices = json["compute"].toArray();
    ASSERT_EQ(devices.size(), 1) << "the runtime for processors";
    const QJsonObject device = devices[0].toObject();
    EXPECT_EQ(device["chosen"].toBool(), hasDisplay());
    EXPECT_EQ(device["gpu"].toBool(), hasDisplay());
    EXPECT_EQ(device["reason"].toString(), hasDisplay() ? "" : "is no GPU");
    EXPECT_EQ(json["monitors"].toArray().isEmpty(), false);
    const QJsonArray messages = json["messages"].toArray();
    EXPECT_EQ(messages.size(), hasDisplay() ? 0 : 1) << "why there is no GL";
}

TEST(OsInfo, TellsPeopleTheSame)
{
    const Outcome outcome = run("");
    EXPECT_EQ(outcome.status, 0);
    for (const char* title :
         {"Versions\n", "\nProcessors\n", "\nMemory\n", "\nGraphics\n", "\nMonitors\n",
          "\nCompute devices\n", "\nFolders\n", "\nWhat the library printed\n"})
        EXPECT_THAT(outcome.output, HasSubstr(title));
    EXPECT_THAT(outcome.output, Not(HasSubstr(std::getenv("HOME"))));
    char host[256] = "";
    gethostname(host, sizeof host - 1);
    if (std::string(host).size() > 5) { // not a part of any word
        EXPECT_THAT(outcome.output, Not(HasSubstr(host)));
    }
}

TEST(OsInfo, RefusesWhatItDoesNotKnow)
{
    EXPECT_EQ(run("--nonsense").status, 2);
    EXPECT_EQ(run("--json more").status, 2);
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("--version").output.rfind("os-info 0.", 0), 0u);
    EXPECT_EQ(run("--json >/dev/full").status, 1);
}

} // namespace OsInfo
