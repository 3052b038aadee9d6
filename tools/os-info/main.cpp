// os-info: what the library sees of this machine, in one report for bug reports and programs.
#include "Gather.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kBadArguments = 2;
constexpr char kHelp[] =
    "os-info: what the library sees of this machine, to paste into a bug report\n"
    "\n"
    "  os-info            for people\n"
    "  os-info --json     for programs: one object\n"
    "  os-info --help     this text\n"
    "  os-info --version  the version\n"
    "\n"
    "It names neither the computer nor the user. GL is told of where DISPLAY "
    "leads to a display.\n";

} // namespace

int main(int argc, char** argv)
{
    const char* const option = argc > 1 ? argv[1] : "";
    const bool json = std::strcmp(option, "--json") == 0;
    if (argc > 2 || (argc == 2 && !json && std::strcmp(option, "--help") != 0 &&
                     std::strcmp(option, "--version") != 0)) {
        std::fprintf(stderr, "os-info: unknown option %s (--help lists the options)\n",
                     argc > 2 ? argv[2] : option);
        return kBadArguments;
    }
    if (argc == 2 && !json) {
        std::fputs(std::strcmp(option, "--help") == 0 ? kHelp : "os-info " OS_INFO_VERSION "\n",
                   stdout);
        return EXIT_SUCCESS;
    }
    const OsInfo::Report report = OsInfo::gather();
    const std::string text = json ? OsInfo::writeJson(report) : OsInfo::writeText(report);
    const bool written = std::fputs(text.c_str(), stdout) != EOF && std::fflush(stdout) != EOF;
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}
