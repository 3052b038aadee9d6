static const float2x2 a = {.25, 0, 0, .5};
static const float2x2 b = float2x2((float2x2)((float2x2)a._m00)._m00 * 0 + a);
float4 main() : COLOR { return float4(b[0][0], b[1][1], b[0][1], 1); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
