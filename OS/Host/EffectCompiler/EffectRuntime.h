#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Loads effect files: techniques made of passes, with parameters, textures and samplers, whose
/// vertex and fragment programs are written in the effect language (a C-like shading language with
/// float4, sampler2D, mul and tex2D). Everything here is plain data and text; nothing calls GL.
/// What the driver says of a program comes in through iProgramBuilder.
///
/// Nothing here throws, and no input makes it crash, hang or take memory without bound: faults come
/// back as a listing of lines "file(line) : error : text".
namespace EffectCompiler {

enum class Error
{
    eNone,
    eFile,          ///< it or a file that it includes cannot be read
    eCompile,       ///< the listing says what is wrong
    eInvalidProfile ///< a pass asks for a profile that is not known
};

enum class BaseType
{
    eVoid,
    eBool,
    eInt,
    eFloat, ///< float, half, fixed and double alike
    eString,
    eTexture,
    eSampler,
    eStruct
};

enum class TextureKind
{
    eNone,
    eAny, ///< "texture" and "sampler", without dimension
    e1D,
    e2D,
    e3D,
    eCube,
    eRect
};

/// The type of a parameter, an annotation or a state's value.
struct ValueType
{
    BaseType base = BaseType::eVoid;
    TextureKind texture = TextureKind::eNone; ///< of textures and samplers
    int rows = 1;                             ///< 1 for scalars and vectors
    int columns = 1;
    std::vector<int> arraySizes; ///< outer first; empty for what is no array
    std::string name;            ///< as the effect writes it: "float4x4"

    friend bool operator==(const ValueType&, const ValueType&) = default;
};

struct Value
{
    ValueType type;
    std::vector<double> numbers; ///< of numeric types: row by row, element by element; false is 0
    std::string text;            ///< a string, or the name of the parameter referred to
};

struct Annotation
{
    std::string name;
    Value value;
};

/// "AddressU = Clamp;" in a sampler or a pass. Enumerants come as the GL value of that meaning;
/// names are as written.
struct StateAssignment
{
    std::string name;
    int index = -1; ///< of "Texture[1]"
    Value value;
};

/// What the host may set. Static globals, and const ones with a value, are no parameters.
struct Parameter
{
    std::string name;
    ValueType type;
    std::optional<std::string> semantic; ///< as written
    std::vector<Annotation> annotations;
    std::optional<Value> initial;        ///< where its initialiser is constant
    std::vector<StateAssignment> states; ///< of samplers; "Texture" refers to a parameter by text
};

struct Pass
{
    std::string name;
    std::vector<Annotation> annotations;
    std::vector<StateAssignment> states; ///< all but the programs
    bool hasVertexProgram = false;
    bool hasFragmentProgram = false;
};

struct Technique
{
    std::string name;
    std::vector<Annotation> annotations;
    std::vector<Pass> passes;
};

/// A uniform of a translated program.
struct Uniform
{
    std::string parameter; ///< the effect's name of it
    std::string name;      ///< in the GLSL text; arrays without "[0]"
    ValueType type;
    /// A value bound in the pass, as in "compile PROFILE main(0.5)": set it instead of the
    /// parameter's.
    std::optional<Value> fixed;
};

/// What a pass draws with, as GLSL. Matrices are declared so that the effect's rows are uploaded
/// row by row with transpose = GL_FALSE.
///
/// Vertex attributes: 0 "cga_POSITION", 2 "cga_NORMAL", 3 "cga_COLOR0", 4 "cga_COLOR1", 8 + n
/// "cga_TEXCOORDn"; bind them before linking. A pass without a vertex program gets one that
/// transforms gl_Vertex by gl_ModelViewProjectionMatrix and passes gl_Color and gl_MultiTexCoord0
/// to 7 on.
struct ProgramText
{
    std::string vertex;
    std::string fragment;
    std::vector<Uniform> uniforms;
};

/// Whoever has GL: compiles and links. Called by Effect::validate.
class iProgramBuilder
{
public:
    virtual ~iProgramBuilder() = default;
    /// 130, or 120 where that is all there is.
    virtual int glslVersion() const = 0;
    /// @param log what the driver says, as it says it
    /// @return whether the program can be used
    virtual bool build(const ProgramText& text, std::string& log) = 0;
};

/// A loaded effect. Constant but for the last listing; one thread at a time.
class Effect
{
public:
    virtual ~Effect() = default;

    virtual const std::vector<Parameter>& parameters() const = 0; ///< in file order
    virtual const std::vector<Technique>& techniques() const = 0; ///< in file order
    /// The file and all that it includes, in the order they were first read.
    virtual const std::vector<std::string>& files() const = 0;

    /// The GLSL of a pass. @param version 130 or 120
    /// @return nothing when it cannot be expressed, with the reason in listing
    virtual std::optional<ProgramText> translate(std::size_t technique, std::size_t pass,
                                                 int version, std::string& listing) const = 0;
    /// Whether every pass of a technique can be translated and is taken by the driver.
    /// @param listing gets the reasons, the driver's mapped back to the effect's lines
    virtual bool validate(std::size_t technique, iProgramBuilder& builder,
                          std::string& listing) const = 0;
};

/// Makes effects, and keeps what was wrong with the last one.
class Context
{
public:
    Context();
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    /// @param path UTF-8
    /// @param arguments as for a C preprocessor: "-DNAME=VALUE", "-DNAME", "-IFOLDER"
    /// @return null on failure: see error() and listing()
    std::unique_ptr<Effect> createFromFile(const std::string& path,
                                           const std::vector<std::string>& arguments);
    /// As createFromFile, of text in memory. @param path what messages call it, and where its
    /// includes are looked for
    std::unique_ptr<Effect> createFromText(const std::string& text, const std::string& path,
                                           const std::vector<std::string>& arguments);

    /// Of the last call.
    Error error() const { return error_; }
    /// Of the last call: a line for each fault, "file(line) : error : text\n"; empty for none. Also
    /// warnings of one that succeeded.
    const std::string& listing() const { return listing_; }

private:
    Error error_ = Error::eNone;
    std::string listing_;
};

} // namespace EffectCompiler
