typedef float3 vec_t; typedef float arr[2]; float4 main(float2 uv:TEXCOORD0):COLOR { vec_t a=0; a.x=uv.x; return float4(a,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
