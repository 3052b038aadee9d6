interface I{ float get(float x); }; struct A:I{ float s; float get(float x){return x*s;} }; float4 main(float2 uv:TEXCOORD0):COLOR { A a; a.s=1; return float4(a.get(uv.x),0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
