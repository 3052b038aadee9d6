float4 main(float2 uv:TEXCOORD0):COLOR { float4x4 m=0; m[0]=float4(.25,0,0,0); m._m10=.5; return float4(m._m00_m10,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
