struct Counter
{
    float n;
    void add(float n) { this.n += n; }
    float twice() { add(.25); add(n); return n; }
};
float4 main() : COLOR { Counter a[2]; a[0].n = 9; a[1].n = 0; float r = a[1].twice(); a[1].add(r / 2); return float4(a[1].n, r, a[0].n - 9, 1); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
