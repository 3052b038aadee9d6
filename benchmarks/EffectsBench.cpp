// Shader effects. Loading: a typical effect with its include, from files to all that a host asks
// for. Translating: one shader from text to GLSL, against the HLSL front end of glslang from text
// to SPIR-V, which is the first half of the way from it to GLSL. Costs are microseconds.
#include "support/PairedRuns.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

#ifdef OS_BENCH_GLSLANG
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#endif

namespace {

constexpr int kRuns = 200;

constexpr char kInclude[] = R"(#ifndef COMMON
#define COMMON
#define PS(f, ...) { PixelShader = compile PROFILE f(__VA_ARGS__); }
#define LUMA float3(0.299, 0.587, 0.114)
#define INPUT(tex, samp) texture tex : SOURCE; sampler2D samp = sampler_state { \
    Texture = <tex>; AddressU = Clamp; AddressV = Clamp; MinFilter = Linear; MagFilter = Linear; };
#define TARGET(tex, samp) texture tex : RENDERCOLORTARGET; sampler2D samp = sampler_state { \
    Texture = <tex>; AddressU = Clamp; AddressV = Clamp; MinFilter = Linear; MagFilter = Linear; };
#endif
)";

constexpr char kShader[] = R"(
float4 Lift = { 0, 0, 0, 0 }; float Gain = 1; float Soft = 0.2; float Tolerance = 0.3;
float4 Key = { 0, 1, 0, 1 };
struct Input { float2 uv : TEXCOORD0; };
static const float weights[5] = { 0.0625, 0.25, 0.375, 0.25, 0.0625 };
float2 chroma(float3 c)
{
    float3x3 m = { 0.299, 0.587, 0.114, -0.169, -0.331, 0.5, 0.5, -0.419, -0.081 };
    float3 y = mul(m, c);
    return y.yz;
}
float4 blurred(float2 uv, float2 step)
{
    float4 sum = 0;
    for (int i = 0; i < 5; i++)
        sum += tex2D(Look, uv + step * (i - 2)) * weights[i];
    return sum;
}
float4 main(Input IN) : COLOR0
{
    float4 c = blurred(IN.uv, float2(0.001, 0));
    float3 graded = saturate(c.rgb * Gain + Lift.rgb);
    float far = distance(chroma(graded), chroma(Key.rgb));
    float a = smoothstep(Tolerance, Tolerance + Soft, far);
    if (a > 0.5 && graded.r < 0.25)
        graded = lerp(graded, dot(graded, float3(0.299, 0.587, 0.114)), a);
    float4 result = float4(graded, c.a * a);
    result.rgb *= result.a;
    return result;
}
)";

/// Ends the program where what is measured does not work.
void require(bool isFine, const std::string& why)
{
    if (isFine)
        return;
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

class Files
{
public:
    Files()
        : folder_(std::filesystem::temp_directory_path() /
                  ("effects-bench-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(folder_);
        std::ofstream(folder_ / "common.fxh") << kInclude;
        std::ofstream effect(effectPath());
        effect << "#include \"common.fxh\"\nINPUT(Image, Look)\nTARGET(Pass1, Pass1Look)\n"
               << kShader;
        effect << "float Amount < string UIName = \"Amount\"; float UIMax = 4.0; > = 1.0;\n"
                  "technique Grade { pass P0 < string Script = \"RENDERCOLORTARGET0 = Pass1;\"; > "
                  "PS(main) pass P1 PS(main) }\n";
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;
    ~Files()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string effectPath() const { return (folder_ / "grade.fx").string(); }

private:
    std::filesystem::path folder_;
};

double load(const std::string& path)
{
    return Bench::timed(kRuns * 1000.0, [&] {
        for (int i = 0; i < kRuns; ++i) {
            EffectCompiler::Context context;
            const auto effect = context.createFromFile(path, {"-DPROFILE=glslf"});
            require(effect != nullptr, context.listing());
            Bench::keep(effect);
        }
    });
}

double translate()
{
    const std::string text = std::string("sampler2D Look;") + kShader +
                             "technique { pass { PixelShader = compile glslf main(); } }";
    return Bench::timed(kRuns * 1000.0, [&] {
        for (int i = 0; i < kRuns; ++i) {
            EffectCompiler::Context context;
            const auto effect = context.createFromText(text, "e.fx", {});
            require(effect != nullptr, context.listing());
            std::string listing;
            require(effect->translate(0, 0, 130, listing).has_value(), listing);
        }
    });
}

#ifdef OS_BENCH_GLSLANG
double translateByGlslang()
{
    const std::string text = std::string("sampler2D Look;") + kShader;
    const auto messages = static_cast<EShMessages>(EShMsgReadHlsl | EShMsgSpvRules |
                                                   EShMsgVulkanRules | EShMsgHlslDX9Compatible);
    return Bench::timed(kRuns * 1000.0, [&] {
        for (int i = 0; i < kRuns; ++i) {
            glslang::TShader shader(EShLangFragment);
            const char* source = text.c_str();
            shader.setStrings(&source, 1);
            shader.setEntryPoint("main");
            shader.setEnvInput(glslang::EShSourceHlsl, EShLangFragment, glslang::EShClientVulkan,
                               100);
            shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
            shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
            shader.setAutoMapLocations(true);
            shader.setAutoMapBindings(true);
            require(shader.parse(GetDefaultResources(), 100, false, messages), shader.getInfoLog());
            glslang::TProgram program;
            program.addShader(&shader);
            require(program.link(messages), program.getInfoLog());
            std::vector<unsigned int> words;
            glslang::GlslangToSpv(*program.getIntermediate(EShLangFragment), words);
            Bench::keep(words);
        }
    });
}
#endif

} // namespace

int main()
{
    const Files files;
    Bench::printHeader("Shader effects, without a driver", "us");
    Bench::compare(
        "load an effect, one millisecond being 1000",
        {{"ours", [&] { return load(files.effectPath()); }}, {"1 ms", [] { return 1000.0; }}},
        {{{"1 ms"}, 1.0}});
#ifdef OS_BENCH_GLSLANG
    glslang::InitializeProcess();
    Bench::compare("translate a shader",
                   {{"ours", translate}, {"glslang's HLSL to SPIR-V", translateByGlslang}},
                   {{{"glslang's HLSL to SPIR-V"}, 0.3}});
    glslang::FinalizeProcess();
#else
    Bench::compare("translate a shader", {{"ours", translate}, {"1 ms", [] { return 1000.0; }}},
                   {{{"1 ms"}, 0.0}});
#endif
    return 0;
}
