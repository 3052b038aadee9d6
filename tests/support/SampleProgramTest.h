#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

/// A sample application as a program, with a folder of its own for each test, which is its home.
class SampleProgramTest : public testing::Test
{
protected:
    /// @param name what the program's own lines begin with, before ": "
    SampleProgramTest(std::string name, std::string path)
        : name_(std::move(name)), path_(std::move(path)),
          folder_(std::filesystem::temp_directory_path() /
                  (name_ + "-" + testing::UnitTest::GetInstance()->current_test_info()->name() +
                   std::to_string(getpid())))
    {
        std::filesystem::create_directories(folder_);
    }
    ~SampleProgramTest() override { std::filesystem::remove_all(folder_); }

    struct Outcome
    {
        int status;         // -1: a signal ended it
        std::string errors; // the program's own lines on standard error
    };
    Outcome run(const std::string& arguments) const
    {
        const std::string errors = (folder_ / "errors").string();
        const int status = std::system(("HOME='" + folder_.string() + "' '" + path_ + "' " +
                                        arguments + " >/dev/null 2>'" + errors + "'")
                                           .c_str());
        std::ifstream file(errors);
        std::string text;
        for (std::string line; std::getline(file, line);)
            if (line.starts_with(name_ + ": "))
                text += line + "\n";
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
    }

    const std::string name_, path_;
    const std::filesystem::path folder_;
};
