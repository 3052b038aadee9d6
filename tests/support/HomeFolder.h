#pragma once

#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <string>

/// A home of the test's own, with no folders of the desktop's set up in it.
class HomeFolder : public TemporaryFolder
{
public:
    explicit HomeFolder(const std::string& subfolder = {})
    {
        const std::string home = subfolder.empty() ? path() : path(subfolder);
        std::filesystem::create_directories(home);
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            const char* value = std::getenv(kNames[i]);
            isSet_[i] = value != nullptr;
            saved_[i] = value ? value : "";
            unsetenv(kNames[i]);
        }
        setenv("HOME", home.c_str(), 1);
    }
    ~HomeFolder()
    {
        for (std::size_t i = 0; i < std::size(kNames); ++i)
            if (isSet_[i])
                setenv(kNames[i], saved_[i].c_str(), 1);
            else
                unsetenv(kNames[i]);
    }

private:
    static constexpr const char* kNames[] = {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "TMPDIR",
                                             "VANTOR_DATA"};
    std::string saved_[std::size(kNames)];
    bool isSet_[std::size(kNames)] = {};
};
