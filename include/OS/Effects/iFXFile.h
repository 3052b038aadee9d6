#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

#include <vector>

/// What an effect file says, and what becomes of it: for tools. Made without GL by
/// OS()->mediaServices()->compileFXFile(). Never changes; any thread.
class OS_API iFXFile : public iObject
{
public:
    using Text = LightweightString<char>;

    struct Value
    {
        Text type_;                   ///< as the file writes it: "float4x4"
        std::vector<double> numbers_; ///< of numeric types, row by row
        Text text_;                   ///< a string, or the name of a parameter
    };
    struct Annotation
    {
        Text name_;
        Value value_;
    };
    /// "AddressU = Clamp;" of a sampler or a pass: enumerants come as GL's value of that meaning.
    struct State
    {
        Text name_;
        int index_ = -1; ///< of "Texture[1]"
        Value value_;
    };
    struct Parameter
    {
        Text name_;
        Text type_; ///< with the sizes of an array: "float[4]"
        bool hasSemantic_ = false;
        Text semantic_;
        std::vector<Annotation> annotations_;
        bool hasInitial_ = false;
        Value initial_;
        std::vector<State> states_; ///< of samplers
    };
    struct Pass
    {
        Text name_;
        std::vector<Annotation> annotations_;
        std::vector<State> states_;
        bool hasVertexProgram_ = false;
        bool hasFragmentProgram_ = false;
        bool isTranslated_ = false;
        Text vertexText_; ///< GLSL
        Text fragmentText_;
        Text listing_; ///< why it is not, and warnings
    };
    struct Technique
    {
        Text name_;
        std::vector<Annotation> annotations_;
        std::vector<Pass> passes_;
    };

    ~iFXFile() override = default;

    /// Whether the file could be compiled; the rest is empty where it could not.
    virtual bool isCompiled() const = 0;
    /// A line for each fault, "file(line) : error : text\n", warnings too.
    virtual const Text& getListing() const = 0;
    virtual const std::vector<Parameter>& getParameters() const = 0; ///< in file order
    virtual const std::vector<Technique>& getTechniques() const = 0; ///< in file order
    /// The file and all that it includes.
    virtual const std::vector<LightweightString<wchar_t>>& getFiles() const = 0;
};
