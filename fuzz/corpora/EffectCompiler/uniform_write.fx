float4 k; float4 main(float2 uv:TEXCOORD0):COLOR { k.x=0.5; return float4(k.x,0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
