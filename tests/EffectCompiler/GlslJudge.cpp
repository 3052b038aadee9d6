#include "GlslJudge.h"

#include <array>
#include <cstdio>

void GlslJudge::add(const std::string& name, const EffectCompiler::ProgramText& text)
{
    write(name + ".vert", text.vertex);
    write(name + ".frag", text.fragment);
}

void GlslJudge::write(const std::string& file, const std::string& text)
{
    folder_.write(file, text);
    texts_[file] = text;
}

std::string GlslJudge::verdict()
{
    std::string said;
    std::string command = "cd " + folder_.path() + " && glslangValidator";
    for (const auto& [file, text] : texts_)
        command += " " + file;
    if (!texts_.empty()) {
        FILE* judge = popen((command + " 2>&1").c_str(), "r");
        std::array<char, 4000> line{};
        while (judge && fgets(line.data(), line.size(), judge))
            said += line.data();
        const int status = judge ? pclose(judge) : 0;
        constexpr int kNotFound = 127 << 8;
        if (status == 0 || status == kNotFound)
            said.clear();
    }
    for (const auto& [file, text] : texts_) {
        if (said.find(file + "\nERROR") != std::string::npos)
            said += file + ":\n" + text;
    }
    texts_.clear();
    return said;
}
