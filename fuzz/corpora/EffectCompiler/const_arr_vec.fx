const float2 o[2]={{.5,0},{0,.25}}; float4 main(float2 uv:TEXCOORD0):COLOR { float2 s=0; for(int i=0;i<2;++i) s+=o[i]; return float4(s,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
