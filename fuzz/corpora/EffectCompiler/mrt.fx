struct PO{ float4 c:COLOR0; float4 d:COLOR1;}; PO main(float2 uv:TEXCOORD0){ PO o; o.c=float4(uv,0,1); o.d=0; return o;} 
technique { pass { PixelShader = compile PROFILE main(); } }
