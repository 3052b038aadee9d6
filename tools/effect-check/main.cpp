#include "Dump.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

constexpr char kUsage[] =
    "Usage: effect-check [--dump] FILE...\n"
    "\n"
    "Reads effect files and translates their techniques, without a graphics driver, and prints\n"
    "what is wrong with them.\n"
    "\n"
    "  --dump   print parameters, states, techniques, passes and the GLSL of their programs\n"
    "\n"
    "Status: 0 when each file has a technique that can be used, 1 when one has none, 2 when the\n"
    "command line is wrong.\n";

bool isUsable(const iFXFile::Technique& technique)
{
    return std::all_of(technique.passes_.begin(), technique.passes_.end(),
                       [](const iFXFile::Pass& pass) { return pass.isTranslated_; });
}

/// @return whether it can be used
bool check(const char* path, bool isDumping)
{
    const auto file = OS()->mediaServices()->compileFXFile(OS()->utils()->fromUTF8(path, -1));
    std::fputs(file->getListing().c_str(), stderr);
    for (const iFXFile::Technique& technique : file->getTechniques()) {
        for (const iFXFile::Pass& pass : technique.passes_)
            std::fputs(pass.listing_.c_str(), stderr);
    }
    if (isDumping && file->isCompiled())
        std::fputs(dump(*file).c_str(), stdout);
    if (!file->isCompiled())
        return false;
    const auto& techniques = file->getTechniques();
    if (std::any_of(techniques.begin(), techniques.end(), isUsable))
        return true;
    std::fprintf(stderr, "%s : error : no technique can be used\n", path);
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    bool isDumping = false;
    bool areFine = true;
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (argument == "--dump") {
            isDumping = true;
        } else if (argument.starts_with("-") && argument.size() > 1) {
            std::fprintf(stderr, "effect-check: unknown option %s\n%s", argv[i], kUsage);
            return 2;
        } else {
            ++files;
        }
    }
    if (files == 0) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] != '-')
            areFine = check(argv[i], isDumping) && areFine;
    }
    return areFine ? 0 : 1;
}
