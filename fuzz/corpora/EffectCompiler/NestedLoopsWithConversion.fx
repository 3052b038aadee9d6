bool next(inout int i) { i++; return i < 4; }
float4 main() : COLOR
{
    float s = 0;
    for (float a = 0; next(a); ) { float b = a - 1; while (next(b)) s += .25; }
    return float4(s, 0, 0, 1);
}
technique t { pass p { FragmentProgram = compile glslf main(); } }
