#pragma once

#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"
#include "OS/Host/EffectCompiler/Token.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// Makes the tree of an effect from its tokens. After an error it goes on behind the next ";" or
/// "}", so that one run finds several.
///
/// Few names are reserved: "sample", "point", "pass", "shared", "texture" and the like are names
/// wherever no type, qualifier or keyword can stand.
class Parser
{
public:
    Parser(std::vector<Token> tokens, SyntaxTree& tree, Messages& messages);

    void run();

private:
    /// Thrown after an error was reported, and caught where parsing can go on.
    struct Fault
    {
    };
    /// Thrown when nothing more is to be said.
    struct Stop
    {
    };

    struct Qualifiers
    {
        bool isStatic = false;
        bool isConst = false;
        bool isUniform = false;
        Variable::Direction direction = Variable::Direction::eIn;
    };

    /// Counts nesting while it lives.
    class Nesting
    {
    public:
        explicit Nesting(Parser& parser);
        ~Nesting() { --parser_.nesting_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Parser& parser_;
    };

    // Tokens: Parser.cpp
    const Token& peek(std::size_t ahead = 0) const;
    Token take();
    bool accept(std::string_view symbol);
    bool acceptKeyword(std::string_view keyword);
    void expect(std::string_view symbol);
    std::string expectName(std::string_view what);
    bool isKeyword(const Token& token, std::string_view keyword) const;
    [[noreturn]] void fail(const std::string& text);
    [[noreturn]] void failAt(SourcePlace place, const std::string& text);
    [[noreturn]] void failUnexpected();
    void recover(std::size_t start);
    /// Skips what stands in brackets, from the opening one on.
    void skipBrackets();

    // Declarations: ParserDeclarations.cpp
    void parseTopLevel();
    bool isTechniqueAhead() const;
    Qualifiers parseQualifiers();
    bool isDeclarationAhead() const;
    std::string parseSemantics();
    void parseDeclarators(const Qualifiers& qualifiers, const Type& type,
                          std::vector<Variable*>& variables, bool isGlobal);
    Variable* parseDeclarator(const Qualifiers& qualifiers, const Type& type, bool isGlobal);
    void sizeFromInitialiser(Variable& variable);
    Function* parseFunction(const Type& result, std::string name, SourcePlace place,
                            const Record* owner);
    Variable* parseParameter();
    void declare(Variable& variable);
    void enterLocal(const Variable& variable);
    /// Forgets the locals behind the first ones.
    void leaveScope(std::size_t locals);
    const Variable* find(std::string_view name) const;

    // Types: ParserTypes.cpp
    Type parseType();
    std::optional<Type> typeNamed(const Token& token) const;
    bool isTypeAhead() const;
    Type parseTemplateType(bool isMatrix);
    Type parseRecordType();
    Record* startRecord(bool isInterface);
    void parseMember(Record& record);
    void addField(Record& record, Field field);
    void parseTypedef();
    std::vector<int> parseDimensions();
    void addDimensions(Type& type, const std::vector<int>& outer, SourcePlace place);

    // Effects: ParserEffects.cpp
    std::vector<Annotation> parseAnnotations();
    void parseAnnotation(std::vector<Annotation>& annotations);
    void parseTechnique();
    void parsePass(TechniqueSyntax& technique);
    std::vector<State> parseStates();
    State parseState();
    void parseStateValue(State& state);

    // Statements: ParserStatements.cpp
    Statement* parseBlock();
    Statement* parseStatement();
    Statement* parseKeywordStatement(const Token& keyword);
    Statement* parseIf();
    Statement* parseFor();
    Statement* parseDeclaration();
    Statement* makeStatement(Statement::Kind kind, SourcePlace place);
    Expression* parseParenthesised();

    // Expressions: ParserExpressions.cpp
    Expression* parseExpression(); ///< with commas
    Expression* parseAssignment();
    Expression* parseConditional();
    Expression* parseBinary(int lowest);
    Expression* parseUnary();
    Expression* parsePostfix();
    Expression* parsePrimary();
    Expression* parseCast();
    bool isCastAhead() const;
    Expression* parseInitialiser();
    std::vector<Expression*> parseArguments();
    Expression* make(Expression::Kind kind, SourcePlace place,
                     std::vector<Expression*> operands = {}, std::string text = {});

    std::vector<Token> tokens_;
    std::size_t position_ = 0;
    SyntaxTree& tree_;
    Messages& messages_;
    ConstantEvaluator evaluator_;
    std::unordered_map<std::string, Type> types_; ///< structs and typedefs
    std::unordered_map<std::string_view, const Variable*> globals_;
    std::vector<const Variable*> locals_; ///< in scope, the innermost last
    std::unordered_map<std::string_view, std::vector<const Variable*>> localsByName_; ///< likewise
    std::vector<const Record*> openRecords_;
    int nesting_ = 0;
};

} // namespace EffectCompiler
