struct PO{ float4 c:COLOR0; }; void main(in float2 uv:TEXCOORD0, out PO o){ o.c=float4(uv,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
