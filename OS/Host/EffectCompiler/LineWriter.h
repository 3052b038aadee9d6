#pragma once

#include "OS/Host/EffectCompiler/Messages.h"

#include <string>
#include <string_view>

namespace EffectCompiler {

/// GLSL text that knows which line of the effect each of its lines comes from, and says so with
/// #line wherever that is not the line that follows.
class LineWriter
{
public:
    /// Adds a line. @param depth of indentation
    void add(SourcePlace place, int depth, std::string_view text);
    /// Adds lines that come from nowhere.
    void addPlain(std::string_view text);
    /// Adds what another wrote.
    void append(const LineWriter& other);

    const std::string& text() const { return text_; }
    bool isEmpty() const { return text_.empty(); }

private:
    std::string text_;
    SourcePlace next_; ///< what GLSL takes the next line for; line 0 for none
};

} // namespace EffectCompiler
