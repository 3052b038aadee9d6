float4 main(float2 uv:TEXCOORD0):COLOR { float3x4 m={.5,0,0,0, 0,.25,0,0, 0,0,0,0}; float4 v=float4(1,1,1,1); return float4(mul(m,v),1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
