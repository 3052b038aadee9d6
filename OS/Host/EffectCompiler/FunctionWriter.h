#pragma once

#include "OS/Host/EffectCompiler/StageWriter.h"

#include <unordered_map>

namespace EffectCompiler {

/// Writes the statements and expressions of one function.
///
/// What GLSL has no expression for becomes statements that run before the one it stands in: a
/// temporary for an argument that must be converted on its way out, an "if" for a "&&" whose right
/// side needs such statements. Operands are evaluated from left to right wherever that can be
/// seen: one whose value a later one may change is kept in a temporary first.
class FunctionWriter
{
public:
    /// @param instance null in main() and in initialisers
    FunctionWriter(StageWriter& stage, StageWriter::Instance* instance);

    void writeFunction();

    /// The value of an expression; what must run before it is held until flush().
    GlslValue value(const Expression& expression);
    /// Adds what values need before them.
    void flush(LineWriter& out, SourcePlace place, int depth);
    /// Initialisers outside of functions: everything must be one expression.
    void forbidStatements() { mayHaveStatements_ = false; }
    GlslValue convert(GlslValue value, const Type& from, const Type& to, SourcePlace place);
    /// A value with every number in it the same.
    GlslValue filled(const Type& type, const GlslValue& number, const Type& numberType,
                     SourcePlace place);
    GlslValue zero(const Type& type, SourcePlace place);
    /// The struct that stands for an expression's interface, or its own; null for others.
    const Record* recordOf(const Expression& expression) const;

private:
    /// A statement that runs before the current one.
    struct Line
    {
        int depth;
        std::string text;
    };
    using Lines = std::vector<Line>;

    /// Something to assign to: text, or where GLSL has no lvalue for it, that of each part.
    struct Target
    {
        std::string text;
        std::vector<std::string> parts;
        Type type;
    };

    /// What a call wants of an argument.
    struct Passed
    {
        Type type;
        Variable::Direction direction;
    };

    /// How often the text of a target will stand there.
    enum class Use
    {
        eOnce,
        eRepeated,     ///< so what is long in it is kept in a temporary
        eBeforeEffects ///< of others: so what they may change is kept, too
    };

    // Statements: StatementWriter.cpp.
    void write(const Statement& statement);
    void writeBlock(const Statement* statement);
    void writeDeclaration(const Variable& variable);
    std::string declared(const Variable& variable);
    void writeExpression(const Expression& expression);
    void writeIf(const Statement& statement, const std::string& before);
    void writeFor(const Statement& statement);
    std::string forStart(const Statement& statement);
    void writeLoop(const Statement& statement, const Expression* condition, const Expression* step,
                   bool isConditionFirst);
    void writeDo(const Statement& statement);
    void writeSwitch(const Statement& statement);
    void writeReturn(const Statement& statement);
    void writeParameters();
    void line(SourcePlace place, const std::string& text);
    void flushHere(SourcePlace place) { flush(out(), place, depth_); }
    LineWriter& out() { return instance_->text; }

    // Expressions: ExpressionWriter.cpp.
    GlslValue nameValue(const Expression& expression);
    GlslValue unaryValue(const Expression& expression);
    GlslValue stepValue(const Expression& expression);
    GlslValue binaryValue(const Expression& expression);
    GlslValue commaValue(const Expression& expression);
    GlslValue logicValue(const Expression& expression);
    GlslValue arithmetic(const std::string& sign, const Type& type, GlslValue left, GlslValue right,
                         bool areMatrices, SourcePlace place);
    GlslValue comparison(const std::string& sign, const Type& type, const GlslValue& left,
                         const GlslValue& right);
    GlslValue conditionalValue(const Expression& expression);
    GlslValue assignValue(const Expression& expression);
    GlslValue compoundValue(const Expression& expression);
    GlslValue constructorValue(const Expression& expression);
    GlslValue castValue(const Expression& expression);
    GlslValue listValue(const Expression& expression);
    std::string elementTexts(const GlslValue& array, const Expression& expression);
    /// The operand itself where a cast only makes a scalar a vector, which GLSL's operators do.
    const Expression* scalarOf(const Expression& expression) const;
    std::vector<GlslValue> operandValues(const std::vector<const Expression*>& operands);
    void keepBefore(std::size_t& mark, GlslValue& value, const Expression& operand);

    // What is indexed and assigned to: TargetWriter.cpp.
    Target target(const Expression& expression, Use use);
    Target indexTarget(const Expression& expression, Use use);
    Target elementTarget(const Expression& expression, Target base, const GlslValue& index);
    Target flatTarget(const Expression& expression, const Target& base,
                      const std::vector<const Expression*>& indices,
                      const std::vector<GlslValue>& values);
    GlslValue indexValue(const Expression& index, Use use, bool isAlone);
    Target memberTarget(const Expression& expression, Use use);
    Target swizzled(const Expression& expression, Target object);
    Target matrixElements(const Expression& expression, const Target& object);
    GlslValue read(const Target& target, SourcePlace place);
    GlslValue objectValue(const Expression& expression);
    /// Writes an assignment as statements before the current one.
    void assign(const Target& target, const std::string& value, SourcePlace place);
    std::string elementText(const std::string& object, const Type& type, int row, int column);

    // Calls: CallWriter.cpp.
    GlslValue callValue(const Expression& expression);
    GlslValue callOf(const Expression& expression);
    GlslValue intrinsicValue(const Expression& expression);
    GlslValue mulValue(const Expression& expression);
    GlslValue transposeValue(const Expression& expression);
    std::vector<GlslValue> arguments(const std::vector<Expression*>& operands, std::size_t first,
                                     const std::vector<Passed>& parameters);
    GlslValue argument(const Expression& expression, const Type& parameter,
                       Variable::Direction direction, bool mayChange);
    std::string selfArgument(const Expression& object, bool isWritten, Use use);
    StageWriter::Instance& calledInstance(const Expression& expression);
    GlslValue completeCall(const Expression& expression, const std::string& text);

    void pre(const std::string& text) { pre_.push_back({0, text}); }
    /// Keeps a value in a temporary.
    GlslValue keep(const GlslValue& value, const Type& type, SourcePlace place);
    /// Keeps it unless it is as good as kept.
    GlslValue stable(const GlslValue& value, const Type& type, SourcePlace place);
    std::string temporary(const Type& type, SourcePlace place, const std::string& value);
    bool isUnchanging(const Expression& expression) const;
    void refuse(SourcePlace place, const std::string& reason) { stage_.refuse(place, reason); }

    StageWriter& stage_;
    StageWriter::Instance* instance_;
    std::unordered_map<const Variable*, std::string> locals_;
    std::unordered_map<const Variable*, const Record*> concrete_;
    Lines pre_;
    Lines post_; ///< copies back what a call gave out
    int depth_ = 0;
    bool mayHaveStatements_ = true;
};

} // namespace EffectCompiler
