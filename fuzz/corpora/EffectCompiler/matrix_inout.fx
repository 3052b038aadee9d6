void f(inout float3x3 m){ m[0][0]*=.5; m[1]=float3(1,2,3);} float4 main(float2 uv:TEXCOORD0):COLOR { float3x3 m={1,0,0,0,1,0,0,0,1}; f(m); return float4(m[0][0],m[1].x-1,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
