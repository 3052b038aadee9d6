struct S{float w; float2 o;}; static const S tab[2]={{.25,{0,0}},{.25,{1,1}}}; float4 main(float2 uv:TEXCOORD0):COLOR { float a=0; for(int i=0;i<2;i++) a+=tab[i].w; return float4(a,0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
