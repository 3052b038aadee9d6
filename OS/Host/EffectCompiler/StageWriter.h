#pragma once

#include "OS/Host/EffectCompiler/GlslNames.h"
#include "OS/Host/EffectCompiler/GlslValue.h"
#include "OS/Host/EffectCompiler/LineWriter.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <deque>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

enum class Stage
{
    eVertex,
    eFragment
};

/// What both programs of a pass share: the names of what the effect declares at file scope.
struct PassNames
{
    explicit PassNames(const SyntaxTree& tree);

    GlslNames names;
    std::unordered_map<const Variable*, std::string> globals;
    std::unordered_map<const Record*, std::string> records;
    std::unordered_map<const Field*, std::string> fields;
};

/// One of the programs of a pass while it is written: what it uses, and the text of each piece.
///
/// Functions are written once each, and once for each set of structs that they are given in place
/// of interfaces. Whoever writes an expression asks here for the names of what it refers to, and
/// that is what makes it part of the program.
class StageWriter
{
public:
    /// A function as GLSL has it.
    struct Instance
    {
        const Function* function;
        /// Of each parameter, the struct that stands for its interface; else null.
        std::vector<const Record*> records;
        std::string name;
        LineWriter text;
        std::vector<const Instance*> callees;
    };

    /// @param names extended with those of this stage's functions
    StageWriter(const SyntaxTree& tree, PassNames& names, Stage stage, int version,
                Messages& messages);

    Stage stage() const { return stage_; }
    int version() const { return version_; }
    GlslNames& names() { return names_.names; }
    const SyntaxTree& tree() const { return tree_; }

    /// Reports that this program cannot be written. GLSL's reasons, not the effect's faults.
    void refuse(SourcePlace place, const std::string& reason);
    bool isRefused() const { return isRefused_; }

    /// The type's name in GLSL, without its dimensions; makes structs part of the program.
    std::string typeName(const Type& type, SourcePlace place);
    /// "float name[6]": GLSL 1.30 knows arrays of one dimension.
    std::string declaration(const Type& type, const std::string& name, SourcePlace place);
    /// "float[6]"
    std::string arrayTypeName(const Type& type, SourcePlace place);
    const std::string& fieldName(const Record& record, const std::string& field);

    /// A global's value; makes it part of the program.
    GlslValue global(const Variable& variable, SourcePlace place);
    /// Whether it is declared "const" in GLSL.
    bool isConstant(const Variable& variable);
    /// A function of the effect; writes it later.
    Instance& instance(const Function& function, const std::vector<const Record*>& records);
    /// A call's name for a helper; makes it part of the program.
    std::string helper(std::string_view name, const std::string& type);
    void requireTextureLod() { usesTextureLod_ = true; }

    /// Writes the functions asked for, and what they ask for, until nothing is missing.
    void writeFunctions();
    /// What main() must do first: "k_1 = k;", in the order of the globals.
    void writeStart(LineWriter& out) const;
    /// Helpers, structs, globals and functions, once all functions are written.
    std::string declarations();
    /// "#extension" lines, once all else is written.
    std::string extensions() const;
    /// The uniforms that it uses; what is of this stage alone may stand twice.
    void addUniforms(std::vector<Uniform>& uniforms);
    /// A uniform that is no parameter of the effect: one of the entry function.
    std::string entryUniform(const Variable& parameter);

private:
    struct UsedGlobal
    {
        bool isConst = false; ///< in GLSL
        bool isUniform = false;
        bool isDeferred = false; ///< set in main()
        std::string copy;        ///< of a uniform that is written to: what stands for it
        std::string initialiser; ///< of those set where they are declared
        LineWriter start;        ///< of those set in main()
    };

    void addRecord(const Record& record, SourcePlace place);
    void writeRecord(const Record& record);
    UsedGlobal& use(const Variable& variable, SourcePlace place);
    void initialise(const Variable& variable, UsedGlobal& used);
    void addLeaves(std::vector<Uniform>& uniforms, const Type& type, const std::string& parameter,
                   const std::string& name);
    void declareGlobals(LineWriter& out);
    void declareFunctions(LineWriter& out);
    void noteSampler(const Type& type);

    const SyntaxTree& tree_;
    PassNames& names_;
    Stage stage_;
    int version_;
    Messages& messages_;
    bool isRefused_ = false;
    bool usesTextureLod_ = false;
    bool usesRectangles_ = false;

    std::set<const Record*> usedRecords_;
    LineWriter records_;
    std::unordered_map<const Variable*, UsedGlobal> usedGlobals_;
    std::vector<const Variable*> globalOrder_; ///< as they were first used
    std::vector<const Variable*> entryUniforms_;
    std::map<std::string, std::string> helpers_; ///< by name and type: the text
    std::deque<Instance> instances_;
    std::map<std::pair<const Function*, std::vector<const Record*>>, Instance*> instancesByKey_;
    std::size_t written_ = 0; ///< of instances_
};

} // namespace EffectCompiler
