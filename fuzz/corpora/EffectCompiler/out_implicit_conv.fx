void f(out half3 b){ b=half3(.5,0,0);} float4 main(float2 uv:TEXCOORD0):COLOR { float4 r=1; f(r.rgb); return r;} 
technique { pass { PixelShader = compile PROFILE main(); } }
