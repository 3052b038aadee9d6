struct S { float w[2][2]; float x; };
float get(S s, int i, int j) { return s.w[i][j]; }
float4 main() : COLOR { S s = {{{0, .25}, {.5, 0}}, 1}; s.w[1][1] += s.w[0][0]; return float4(get(s, 0, 1), get(s, 1, 0), s.w[1][1], s.x); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
