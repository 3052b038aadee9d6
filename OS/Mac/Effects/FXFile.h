#pragma once

#include <OS/Effects/iFXFile.h>

#include <string>

/// iFXFile: one file, compiled when it is made.
class FXFile final : public iFXFile
{
public:
    explicit FXFile(const LightweightString<wchar_t>& path);

    bool isCompiled() const override { return isCompiled_; }
    const Text& getListing() const override { return listing_; }
    const std::vector<Parameter>& getParameters() const override { return parameters_; }
    const std::vector<Technique>& getTechniques() const override { return techniques_; }
    const std::vector<LightweightString<wchar_t>>& getFiles() const override { return files_; }

private:
    bool isCompiled_ = false;
    Text listing_;
    std::vector<Parameter> parameters_;
    std::vector<Technique> techniques_;
    std::vector<LightweightString<wchar_t>> files_;
};
