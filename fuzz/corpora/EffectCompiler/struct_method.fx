struct A{ float x; float get(){return x;} }; float4 main(float2 uv:TEXCOORD0):COLOR { A a; a.x=uv.x; return float4(a.get(),0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
