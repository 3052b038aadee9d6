#include "OS/Host/EffectCompiler/StateMatrices.h"

#include <algorithm>
#include <cctype>

namespace EffectCompiler {
namespace {

/// Takes what stands before the next point, in lower case.
std::string nextStep(std::string_view& path)
{
    const std::size_t end = std::min(path.find('.'), path.size());
    std::string step(path.substr(0, end));
    std::transform(step.begin(), step.end(), step.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    path.remove_prefix(std::min(end + 1, path.size()));
    return step;
}

constexpr int kNone = -1;
constexpr int kUnknown = -2;

/// Takes "[2]" off a step. @return its digit, kNone, or kUnknown where there is no such unit
int takeIndex(std::string& step)
{
    if (step.empty() || step.back() != ']')
        return kNone;
    const std::size_t open = step.find('[');
    if (open == std::string::npos || open + 3 != step.size())
        return kUnknown;
    const int index = step[open + 1] - '0';
    step.resize(open);
    return index >= 0 && index < 8 ? index : kUnknown;
}

/// What GLSL calls the transpose of what comes after a matrix.
const char* transposed(const std::string& form)
{
    if (form.empty())
        return "Transpose";
    if (form == "inverse")
        return "InverseTranspose";
    if (form == "transpose")
        return "";
    if (form == "invtrans")
        return "Inverse";
    return nullptr;
}

} // namespace

std::string stateMatrix(std::string_view path)
{
    const std::string state = nextStep(path);
    if ((state != "state" && state != "glstate") || nextStep(path) != "matrix")
        return {};
    std::string matrix = nextStep(path);
    const int index = takeIndex(matrix);
    const char* form = transposed(nextStep(path));
    if (!form || !path.empty() || index == kUnknown)
        return {};
    if (matrix == "texture")
        return std::string("gl_TextureMatrix") + form + "[" + std::to_string(std::max(index, 0)) +
               "]";
    if (matrix == "modelview" && index <= 0)
        return std::string("gl_ModelViewMatrix") + form;
    if (index != kNone)
        return {}; // a row of it
    if (matrix == "mvp")
        return std::string("gl_ModelViewProjectionMatrix") + form;
    if (matrix == "projection")
        return std::string("gl_ProjectionMatrix") + form;
    return {};
}

} // namespace EffectCompiler
