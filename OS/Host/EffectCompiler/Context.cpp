#include "OS/Host/EffectCompiler/Checker.h"
#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/LoadedEffect.h"
#include "OS/Host/EffectCompiler/Parser.h"
#include "OS/Host/EffectCompiler/Preprocessor.h"

namespace EffectCompiler {
namespace {

/// From a file's text to an effect, step by step; each step only where the one before was fine.
std::unique_ptr<Effect> load(SourceFiles& files, const SourceFiles::File& file,
                             const std::vector<std::string>& arguments, Messages& messages,
                             Error& error)
{
    Preprocessor preprocessor(files, messages);
    for (const std::string& argument : arguments)
        preprocessor.addArgument(argument);
    auto tree = std::make_unique<SyntaxTree>();
    Parser(preprocessor.run(file), *tree, messages).run();
    error = preprocessor.isFileMissing() ? Error::eFile : Error::eCompile;
    if (messages.hasErrors())
        return nullptr;
    check(*tree, messages);
    if (messages.hasErrors())
        return nullptr;
    auto effect = std::make_unique<LoadedEffect>(std::move(tree), files.paths(), messages);
    if (effect->hasUnknownProfile())
        error = Error::eInvalidProfile;
    if (messages.hasErrors())
        return nullptr;
    error = Error::eNone;
    return effect;
}

} // namespace

Context::Context() = default;
Context::~Context() = default;

std::unique_ptr<Effect> Context::createFromFile(const std::string& path,
                                                const std::vector<std::string>& arguments)
{
    SourceFiles files;
    Messages messages;
    messages.addFile(path);
    std::unique_ptr<Effect> effect;
    if (const SourceFiles::File* file = files.read(path)) {
        effect = load(files, *file, arguments, messages, error_);
    } else {
        messages.error({}, "cannot be read");
        error_ = Error::eFile;
    }
    listing_ = messages.listing();
    return effect;
}

std::unique_ptr<Effect> Context::createFromText(const std::string& text, const std::string& path,
                                                const std::vector<std::string>& arguments)
{
    SourceFiles files;
    Messages messages;
    messages.addFile(path);
    std::unique_ptr<Effect> effect;
    if (text.size() <= Limits::kSourceBytes) {
        effect = load(files, *files.add(path, text), arguments, messages, error_);
    } else {
        messages.error({}, "the effect is too long");
        error_ = Error::eCompile;
    }
    listing_ = messages.listing();
    return effect;
}

} // namespace EffectCompiler
