float4 main(float2 uv:TEXCOORD0):COLOR { if(uv.x>0.9) discard; clip(1-uv.x); return float4(uv.x,0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
