static const int kTwo = 2;
float4 main() : COLOR
{
    float r = 0;
    for (int i = 0; i < 5; i++) { switch (i) { case 1: continue; case kTwo: { float r = 9; break; } case 4: break; default: r += .25; } if (i == 4) r += .25; }
    return float4(r, 0, 0, 1);
}
technique t { pass p { FragmentProgram = compile glslf main(); } }
