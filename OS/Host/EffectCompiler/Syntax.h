#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/Messages.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

/// The syntax tree of an effect, as the parser makes it and the checker completes it.
///
/// Nodes live as long as their SyntaxTree, in its arenas; everything refers to them by plain
/// pointers. Trees are bounded, so walking them by recursion is safe: the parser refuses nesting
/// beyond Limits::kDepth, expressions deeper than Limits::kOperators ("a + b + c .." is as deep as
/// it is long), and types of more than Limits::kElements elements.
namespace EffectCompiler {

struct Limits
{
    static constexpr std::size_t kSourceBytes = 16u << 20; ///< after preprocessing
    static constexpr std::size_t kTokens = 500'000;        ///< likewise
    static constexpr int kDepth = 200;      ///< of nested expressions, blocks, includes and types
    static constexpr int kOperators = 1000; ///< of an expression, on the way to its deepest part
    static constexpr int kElements = 65536; ///< of a type, all dimensions and fields counted
    static constexpr std::size_t kFields = 1024;   ///< of a struct
    static constexpr std::size_t kOverloads = 256; ///< of a function; methods of a struct
};

struct Record;
struct Function;
struct Intrinsic;
struct Variable;
struct Expression;

/// A type in the language. Types are equal where all of it is.
struct Type
{
    enum class Scalar : std::uint8_t
    {
        eVoid,
        eBool,
        eInt,
        eUint,
        eFloat, ///< half, fixed and double too
        eString,
        eTexture,
        eSampler,
        eRecord,
        eError ///< of what had a fault already: converts to and from everything, silently
    };

    Scalar scalar = Scalar::eVoid;
    TextureKind texture = TextureKind::eNone;
    std::uint8_t rows = 1;          ///< of matrices; 1 for scalars and vectors
    std::uint8_t columns = 1;       ///< 1 for scalars
    bool isVector = false;          ///< float1 is no float
    bool isMatrix = false;          ///< float1x4 is no float4
    const Record* record = nullptr; ///< of structs and interfaces
    std::vector<int> dims; ///< of arrays, outer first; 0 takes its size from the initialiser

    friend bool operator==(const Type&, const Type&) = default;
};

/// The type's name as the effect writes it: "float4x3", "sampler2D", "Light[3]".
std::string nameOf(const Type& type);

struct Field
{
    std::string name;
    Type type;
    std::string semantic; ///< as written; empty for none
    SourcePlace place;
};

/// A struct or an interface.
struct Record
{
    std::string name; ///< of those without one: made up, and no identifier
    SourcePlace place;
    bool isInterface = false;
    const Record* implements = nullptr; ///< "struct Spot : Light"
    std::vector<Field> fields;
    std::vector<Function*> methods;
    std::size_t elements = 0; ///< of all fields: scalars, vectors, matrices and objects
    int depth = 1;            ///< how far structs are nested in it
};

struct Expression
{
    enum class Kind : std::uint8_t
    {
        eNumber,      ///< value, type
        eBool,        ///< value
        eString,      ///< text
        eName,        ///< text: a variable
        eUnary,       ///< text: "-" "+" "!" "~" "++" "--"; operand
        ePostfix,     ///< text: "++" "--"; operand
        eBinary,      ///< text: the operator, "," too; two operands
        eAssign,      ///< text: "=" "+=" ..; target and value
        eConditional, ///< condition and two values
        eCall,        ///< text: the function's name; operands are the arguments
        eMethodCall,  ///< text: the method's name; operands: the object, then the arguments
        eConstructor, ///< castType(operands)
        eCast,        ///< (castType)operand
        eIndex,       ///< operand[operand]
        eMember,      ///< operand.text: a field, a swizzle, elements of a matrix, or "length"
        eList         ///< { operands }
    };

    Kind kind = Kind::eNumber;
    SourcePlace place;
    std::string text;
    double value = 0.0;
    Type castType; ///< of constructors and casts
    std::vector<Expression*> operands;
    int depth = 1; ///< one more than its deepest operand's

    // Completed by the checker.
    Type type;
    bool isLvalue = false;
    const Variable* variable = nullptr;   ///< of names
    const Function* function = nullptr;   ///< of calls of functions that the effect defines
    const Intrinsic* intrinsic = nullptr; ///< of calls of functions of the language
    bool hasEffects = false;              ///< whether it assigns to something, or calls what does
};

/// A state's value as written, before names are looked up.
struct State
{
    std::string name;
    int index = -1;
    SourcePlace place;
    Expression* value = nullptr; ///< for texture references an eName
    std::string profile, entry;  ///< of "compile PROFILE ENTRY(..)"; profile "asm" for asm { }
    std::vector<Expression*>
        arguments; ///< of compile: they bind the entry's uniform parameters in order

    const Function* function = nullptr; ///< what entry names; completed by the checker
};

/// A parameter of an effect, a global, a local, or a parameter of a function.
struct Variable
{
    enum class Direction : std::uint8_t
    {
        eIn,
        eOut,
        eInOut
    };

    std::string name;
    SourcePlace place;
    Type type; ///< dims are resolved by the parser, which evaluates constant expressions
    std::string semantic;
    Expression* initialiser = nullptr;
    bool isGlobal = false;
    bool isParameter = false; ///< of a function
    bool isStatic = false;
    bool isConst = false;
    bool isUniform = false;
    Direction direction = Direction::eIn;
    std::vector<Annotation> annotations;
    const std::vector<State>* states = nullptr; ///< of samplers

    // Completed by the checker.
    bool isWritten = false;        ///< anywhere in the effect
    bool hasConstantValue = false; ///< of globals: GLSL too takes the initialiser for constant

    /// Whether the host may set it: a global that is neither static nor const with a value.
    bool isEffectParameter() const { return isGlobal && !isStatic && !(isConst && initialiser); }
};

struct Statement
{
    enum class Kind : std::uint8_t
    {
        eExpression, ///< expression; null for ";"
        eDeclare,    ///< variables
        eBlock,      ///< statements
        eIf,         ///< expression; statements: then, else
        eFor,        ///< statements: the first; expression; step; body
        eWhile,      ///< expression; body
        eDo,         ///< body; expression
        eSwitch,     ///< expression; body is a block with eCase and eDefault in it
        eCase,       ///< expression
        eDefault,
        eReturn, ///< expression; null for none
        eBreak,
        eContinue,
        eDiscard
    };

    Kind kind = Kind::eExpression;
    SourcePlace place;
    Expression* expression = nullptr;
    Expression* step = nullptr;
    std::vector<Variable*> variables;
    std::vector<Statement*> statements;
    Statement* body = nullptr;
};

struct Function
{
    std::string name;
    SourcePlace place;
    Type result;
    std::string semantic;
    std::vector<Variable*> parameters;
    Statement* body = nullptr;      ///< null for a prototype, and for an interface's method
    const Record* owner = nullptr;  ///< of methods
    Function* definition = nullptr; ///< of a prototype, once it is seen; set by the checker

    // Completed by the checker.
    Variable* self = nullptr; ///< of methods: the object
    bool hasEffects = false;  ///< writes to a global, or calls what does
    std::vector<const Function*>
        callees; ///< each once, with bodies; of interfaces, all that may be
};

struct PassSyntax
{
    std::string name;
    SourcePlace place;
    std::vector<Annotation> annotations;
    std::vector<State> states;
};

struct TechniqueSyntax
{
    std::string name;
    SourcePlace place;
    std::vector<Annotation> annotations;
    std::vector<PassSyntax> passes;
};

/// One effect file with all its includes.
struct SyntaxTree
{
    std::vector<Variable*> globals;   ///< in file order
    std::vector<Function*> functions; ///< in file order, prototypes too, methods too
    std::vector<Record*> records;     ///< in file order
    std::vector<TechniqueSyntax> techniques;

    // Owners of the nodes.
    std::deque<Expression> expressions;
    std::deque<Statement> statements;
    std::deque<Variable> variables;
    std::deque<Function> functionNodes;
    std::deque<Record> recordNodes;
    std::deque<std::vector<State>> stateLists;
};

} // namespace EffectCompiler
