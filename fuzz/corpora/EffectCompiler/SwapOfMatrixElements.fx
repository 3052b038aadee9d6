float4 main() : COLOR { float2x2 m = {0, .25, .5, 0}; m._m01_m10 = m._m10_m01; return float4(m._m01_m10, m[0][0], 1); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
