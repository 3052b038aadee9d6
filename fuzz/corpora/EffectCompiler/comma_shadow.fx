float4 main(float2 uv:TEXCOORD0):COLOR { float a=0,b=0; for(int i=0,j=1;i<2;i++,j++){ float a=1; b+=0.125*a; } a=.5; return float4(a,b,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
