int ki;
void fill(out float a[2], float x) { a[0] = x; a[1] = 2 * x; }
float4 main() : COLOR { float a[3][2]; fill(a[ki], .25); return float4(a[2][0], a[ki][1], 0, 1); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
