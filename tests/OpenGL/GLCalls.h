#pragma once

/// Counts the library's own GL calls: the linker sends them through here (see
/// tests/CMakeLists.txt). The toolkit's are not among them.
struct GLCalls
{
    /// How often a texture was specified, and how often pixels were copied into one.
    static int texturesSpecified();
    static int uploads();
};
