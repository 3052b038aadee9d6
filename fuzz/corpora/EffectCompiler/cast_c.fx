float4 main(float2 uv:TEXCOORD0):COLOR { float3 a=(float3)0.5; int i=(int)1.9; float2 b=(float2)float4(.5,.25,0,0); float x=(half)b.y; return float4(a.x*i,x,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
